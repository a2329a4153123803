#pragma once

#include "frameList.h"

#include <string>
#include <vector>

// A shot render sent to the farm: what tessera-farm submit was asked for,
// what it found in the session, and the build it was made with. It becomes
// one Slurm batch script, a job array with a task per chunk of frames, kept
// beside the outputs (OUT/farm/NAME.sbatch, logs in OUT/farm/logs/). The
// script is the only record: it holds everything here in its header, so that
// status and verify read it back, and a wrangler can read it and submit it
// again by hand (sbatch FILE) or run one chunk on a workstation (bash FILE
// CHUNK).
struct FarmJob {
    std::string session; // absolute
    std::string outDir;  // absolute: tessera-run --out
    FrameList frames;
    int chunk = 10;                   // frames a task
    int retries = 2;                  // requeues of a failed task
    std::string partition;            // "": the cluster's default
    int cpus = 0;                     // a task's; 0: the cluster's default
    std::string missing;              // tessera-run --missing; "": refuse
    std::string program;              // tessera-run
    std::string module;               // TESSERA_MODULE
    std::string resources;            // TESSERA_RESOURCE_PATH
    std::string ocio;                 // OCIO; "": the shipped configuration
    std::vector<std::string> outputs; // the session's frame patterns, absolute

    // The session's name with its frames: shot.1001-1100, or
    // shot.1005-1017.2-frames for frames that are not one range.
    std::string getName() const;
    std::string getScriptPath() const;
    // The log of a task of a submitted job (its array job id).
    std::string getLogPath(const std::string& job, int task) const;
    std::vector<PiFrameRange> getChunks() const { return frames.chunks(chunk); }

    // The batch script's text.
    std::string script() const;
    // Reads a script written by script(); false, with `error` naming the
    // file and what is wrong, for any other file.
    static bool read(const std::string& path, FarmJob& out, std::string& error);

    // The session's frame-pattern writes (write KIND NAME.####.exr), where
    // tessera-run --out outDir writes them. False, with `error` naming the
    // session (and its line), when it cannot be read, writes no frame
    // pattern, or renders frames itself (a render line would render them in
    // every task).
    bool findOutputs(std::string& error);
    // The build this program belongs to: tessera-run beside it, the module
    // and the resources as tessera-run would find them from here. False,
    // with `error`, when tessera-run is not there.
    bool findBuild(std::string& error);
};

// A word as the shell reads it back unchanged: 'quoted' unless it is plain.
std::string shellWord(const std::string& word);
