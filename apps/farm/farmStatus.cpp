#include "farmCommands.h"
#include "frameCheck.h"
#include "slurm.h"

#include <base/fsInputFile.h>

#include <filesystem>
#include <map>
#include <ostream>
#include <sstream>

namespace {

// The last line of a log that says something; "" when there is none.
std::string lastLine(const std::string& path) {
    std::string text;
    std::string error;
    // A log of a task is small; past this it is something else.
    constexpr std::uint64_t LogBytes = 64ull << 20;
    if (!FsInputFile::read(path, LogBytes, "a log", text, error)) {
        return "(" + error + ")";
    }
    std::istringstream lines(text);
    std::string line;
    std::string last;
    while (std::getline(lines, line)) {
        if (line.find_first_not_of(" \t\r") != std::string::npos) {
            last = line;
        }
    }
    return last;
}

} // namespace

std::string FarmCommands::farmProgram(const FarmJob& job) {
    std::error_code ec;
    const std::filesystem::path beside =
        std::filesystem::path(job.program).parent_path() / "tessera-farm";
    if (std::filesystem::is_regular_file(beside, ec)) {
        return beside.string();
    }
    return std::filesystem::read_symlink("/proc/self/exe", ec).string();
}

int FarmCommands::status(const std::string& id, std::ostream& out, std::ostream& err) {
    std::vector<Slurm::Task> tasks;
    std::string error;
    if (!Slurm::tasks(id, tasks, error)) {
        err << "tessera-farm: " << error << "\n";
        return 1;
    }
    std::map<int, const Slurm::Task*> byIndex;
    for (const Slurm::Task& t : tasks) {
        byIndex[t.index] = &t;
    }
    int pending = 0;
    int running = 0;
    int done = 0;
    std::vector<const Slurm::Task*> failed;
    for (const auto& [index, task] : byIndex) {
        switch (Slurm::phaseOf(task->state)) {
        case Slurm::Phase::Pending:
            ++pending;
            break;
        case Slurm::Phase::Running:
            ++running;
            break;
        case Slurm::Phase::Done:
            ++done;
            break;
        case Slurm::Phase::Failed:
            failed.push_back(task);
            break;
        }
    }
    const Slurm::Task& any = *byIndex.begin()->second;
    out << "job " << id << " (" << any.name << "): " << byIndex.size()
        << (byIndex.size() == 1 ? " chunk: " : " chunks: ") << pending << " pending, " << running
        << " running, " << done << " done, " << failed.size() << " failed\n";
    const int exitStatus = pending + running > 0 ? 3 : failed.empty() ? 0 : 1;

    // The rest comes from the job's script, kept beside its outputs.
    const std::string script =
        (std::filesystem::path(any.workDir) / "farm" / (any.name + ".sbatch")).string();
    FarmJob job;
    if (!FarmJob::read(script, job, error)) {
        err << "tessera-farm: the job's frames are not known: " << error << "\n";
        return 1;
    }
    const FrameCheck::Report written =
        FrameCheck::run(job.outputs, job.frames, FrameCheck::Depth::Header);
    out << "frames written: " << written.complete.size() << " of " << job.frames.count() << " ("
        << job.frames.toString() << ")\n";
    const std::vector<PiFrameRange> chunks = job.getChunks();
    for (const Slurm::Task* task : failed) {
        const std::string log = job.getLogPath(id, task->index);
        out << "chunk " << task->index;
        if (task->index >= 0 && static_cast<std::size_t>(task->index) < chunks.size()) {
            out << " (frames " << chunks[task->index].first << "-" << chunks[task->index].last
                << ")";
        }
        out << " " << task->state << ", log " << log << ":\n  " << lastLine(log) << "\n";
    }
    return exitStatus;
}
