#pragma once

#include <string>
#include <vector>

// The scheduler's own commands (sbatch, squeue, sacct), run as programs found
// on PATH with the environment they are given (SLURM_CONF among it). Nothing
// here talks to the scheduler any other way.
class Slurm {
public:
    struct Result {
        int status = -1;   // the exit status; -1 when it could not run
        std::string out;   // standard output
        std::string error; // standard error, or why it could not run
    };
    static Result run(const std::vector<std::string>& command);

    // A task of a job array and its state as the scheduler words it
    // (PENDING, RUNNING, COMPLETED, FAILED, CANCELLED, ...).
    struct Task {
        int index = 0;
        std::string state;
        std::string name;    // the job's name
        std::string workDir; // and its working directory
    };
    enum class Phase { Pending, Running, Done, Failed };
    static Phase phaseOf(const std::string& state);

    // Submits a batch script; answers the job id, or "" with `error` saying
    // why (sbatch's own words).
    static std::string submit(const std::string& script, std::string& error);
    // The tasks of an array job: from squeue while the controller remembers
    // the job, from sacct's accounting after that. False, with `error`, when
    // neither knows it.
    static bool tasks(const std::string& job, std::vector<Task>& out, std::string& error);

    // One line of squeue -o '%i|%T|%j|%Z' or sacct -P -o JobID,State,JobName,WorkDir
    // into tasks: "42_3" is task 3, "42_[4-6,9%2]" tasks 4, 5, 6 and 9 not yet
    // started. False for a line of another job.
    static bool parseTaskLine(const std::string& line, const std::string& job,
                              std::vector<Task>& out);
};
