#pragma once

#include "farmJob.h"

#include <iosfwd>
#include <string>

// tessera-farm's three commands; each answers the program's exit status
// (0 done, 1 failed or incomplete, 2 bad input).
namespace FarmCommands {

// Writes the job's batch script beside its outputs and, unless writeOnly,
// submits it with sbatch. `job` holds what the command line asked for; the
// session's outputs and the build are found here.
int submit(FarmJob job, bool writeOnly, std::ostream& out, std::ostream& err);

// The chunks of a submitted job, pending, running, done and failed, from the
// scheduler; the frames written; the last line of each failed task's log.
// Exit status 0 when every chunk is done, 3 while some are pending or
// running, 1 when the job ended with failed chunks or is not known.
int status(const std::string& job, std::ostream& out, std::ostream& err);

// Whether every frame of the renders submitted into `dir` is there and whole
// (reading every pixel); names the frames that are not and prints the command
// that renders only those again. `frames` empty: the frames submitted.
int verify(const std::string& dir, const FrameList& frames, std::ostream& out, std::ostream& err);

// The tessera-farm beside a job's tessera-run (the build it was made with),
// or this one when that is gone.
std::string farmProgram(const FarmJob& job);

} // namespace FarmCommands
