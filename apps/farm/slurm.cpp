#include "slurm.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

// Both ends of a pipe, closed when done with.
struct Pipe {
    std::array<int, 2> fds{-1, -1};
    bool open() { return ::pipe2(fds.data(), O_CLOEXEC) == 0; }
    void close(int end) {
        if (fds[end] >= 0) {
            ::close(fds[end]);
            fds[end] = -1;
        }
    }
    ~Pipe() {
        close(0);
        close(1);
    }
};

std::string firstWord(const std::string& text) {
    return text.substr(0, text.find(' '));
}

// "4-6,9%2" (the inside of 42_[...]) into its task numbers.
bool parseIndices(std::string text, std::vector<int>& out) {
    text = text.substr(0, text.find('%')); // a limit on the tasks running at once
    std::istringstream parts(text);
    std::string part;
    while (std::getline(parts, part, ',')) {
        int first = 0;
        int last = 0;
        char dash = 0;
        std::istringstream p(part);
        if (!(p >> first)) {
            return false;
        }
        last = first;
        if (p >> dash && (dash != '-' || !(p >> last))) {
            return false;
        }
        for (int i = first; i <= last; ++i) {
            out.push_back(i);
        }
    }
    return true;
}

} // namespace

Slurm::Result Slurm::run(const std::vector<std::string>& command) {
    Result result;
    Pipe out;
    Pipe err;
    if (!out.open() || !err.open()) {
        result.error = std::string("cannot make a pipe: ") + std::strerror(errno);
        return result;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.fds[1], STDERR_FILENO);
    std::vector<char*> argv;
    for (const std::string& word : command) {
        argv.push_back(const_cast<char*>(word.c_str()));
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    const int spawned = ::posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    out.close(1);
    err.close(1);
    if (spawned != 0) {
        result.error = "cannot run " + command[0] + ": " + std::strerror(spawned);
        return result;
    }
    // Both outputs at once, so that neither fills its pipe while the other is read.
    std::array<pollfd, 2> fds{pollfd{out.fds[0], POLLIN, 0}, pollfd{err.fds[0], POLLIN, 0}};
    std::array<std::string*, 2> into{&result.out, &result.error};
    int open = 2;
    while (open > 0) {
        if (::poll(fds.data(), fds.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        for (std::size_t i = 0; i < fds.size(); ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) {
                continue;
            }
            char buffer[4096];
            const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
            if (n > 0) {
                into[i]->append(buffer, static_cast<std::size_t>(n));
            } else if (n == 0 || errno != EINTR) {
                fds[i].fd = -1;
                --open;
            }
        }
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

Slurm::Phase Slurm::phaseOf(const std::string& state) {
    const std::string s = firstWord(state); // "CANCELLED by 0"
    if (s == "COMPLETED") {
        return Phase::Done;
    }
    if (s == "RUNNING" || s == "COMPLETING" || s == "CONFIGURING" || s == "SUSPENDED" ||
        s == "STAGE_OUT" || s == "SIGNALING" || s == "RESIZING") {
        return Phase::Running;
    }
    if (s == "PENDING" || s == "REQUEUED" || s == "REQUEUE_HOLD" || s == "REQUEUE_FED" ||
        s == "RESV_DEL_HOLD" || s == "SPECIAL_EXIT") {
        return Phase::Pending;
    }
    // FAILED, CANCELLED, TIMEOUT, NODE_FAIL, OUT_OF_MEMORY, BOOT_FAIL,
    // DEADLINE, PREEMPTED, REVOKED
    return Phase::Failed;
}

std::string Slurm::submit(const std::string& script, std::string& error) {
    const Result r = run({"sbatch", "--parsable", script});
    if (r.status != 0) {
        error = r.status < 0 ? r.error + " (is Slurm's client installed, and on PATH?)"
                             : "sbatch " + script + " failed: " + r.error;
        while (!error.empty() && error.back() == '\n') {
            error.pop_back();
        }
        return {};
    }
    // "42" or "42;cluster"
    std::string id = r.out.substr(0, r.out.find_first_of(";\n"));
    if (id.empty()) {
        error = "sbatch answered no job id";
    }
    return id;
}

bool Slurm::parseTaskLine(const std::string& line, const std::string& job, std::vector<Task>& out) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    std::string field;
    while (std::getline(in, field, '|')) {
        fields.push_back(field);
    }
    if (fields.size() < 4 || fields[0].rfind(job + "_", 0) != 0) {
        return false;
    }
    std::string index = fields[0].substr(job.size() + 1);
    std::vector<int> indices;
    if (!index.empty() && index.front() == '[' && index.back() == ']') {
        if (!parseIndices(index.substr(1, index.size() - 2), indices)) {
            return false;
        }
    } else if (!parseIndices(index, indices) || indices.size() != 1) {
        return false;
    }
    for (const int i : indices) {
        out.push_back({i, fields[1], fields[2], fields[3]});
    }
    return true;
}

bool Slurm::tasks(const std::string& job, std::vector<Task>& out, std::string& error) {
    out.clear();
    // What the controller remembers (every job, for MinJobAge after it ends).
    const Result queue = run({"squeue", "--jobs=" + job, "--states=all", "--array", "--noheader",
                              "--format=%i|%T|%j|%Z"});
    std::istringstream lines(queue.out);
    std::string line;
    while (queue.status == 0 && std::getline(lines, line)) {
        parseTaskLine(line, job, out);
    }
    if (!out.empty()) {
        return true;
    }
    // The accounting, where the cluster keeps one.
    const Result accounting = run({"sacct", "--jobs=" + job, "--allocations", "--noheader",
                                   "--parsable2", "--format=JobID,State,JobName,WorkDir"});
    lines = std::istringstream(accounting.out);
    while (accounting.status == 0 && std::getline(lines, line)) {
        parseTaskLine(line, job, out);
    }
    if (!out.empty()) {
        return true;
    }
    std::string why = queue.status < 0 ? queue.error : "squeue does not know it";
    why += accounting.status < 0    ? ""
           : accounting.status == 0 ? ", nor does sacct"
                                    : ", and sacct: " + accounting.error;
    while (!why.empty() && why.back() == '\n') {
        why.pop_back();
    }
    error = "job " + job + " is not an array job of the farm (" + why + ")";
    return false;
}
