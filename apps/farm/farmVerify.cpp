#include "farmCommands.h"
#include "frameCheck.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <ostream>

namespace {

namespace fs = std::filesystem;

// The renders of one session submitted into a directory: its outputs and
// frames over every submission, and the settings of the latest.
struct Shot {
    FarmJob job;
    fs::file_time_type time;
};

// The command that renders the frames of the problems again, on the farm, as
// the shot was submitted. A damaged file goes first: a task skips a frame
// whose files look whole from their headers (--resume), and a file cut short
// can.
std::string again(const FarmJob& job, const std::vector<FrameCheck::Problem>& problems) {
    std::string command;
    std::vector<int> frames;
    for (const FrameCheck::Problem& p : problems) {
        frames.push_back(p.frame);
        if (!p.missing) {
            command += (command.empty() ? "rm -f " : " ") + shellWord(p.file);
        }
    }
    command += (command.empty() ? "" : " && ") + shellWord(FarmCommands::farmProgram(job)) +
               " submit " + shellWord(job.session) + " --frames " +
               FrameList::of(frames).toString() + " --chunk " + std::to_string(job.chunk) +
               " --out " + shellWord(job.outDir);
    if (job.retries != FarmJob().retries) {
        command += " --retries " + std::to_string(job.retries);
    }
    if (!job.partition.empty()) {
        command += " --partition " + shellWord(job.partition);
    }
    if (job.cpus > 0) {
        command += " --cpus " + std::to_string(job.cpus);
    }
    if (!job.missing.empty()) {
        command += " --missing " + shellWord(job.missing);
    }
    return command;
}

} // namespace

int FarmCommands::verify(const std::string& dir, const FrameList& frames, std::ostream& out,
                         std::ostream& err) {
    const fs::path farm = fs::path(dir) / "farm";
    std::error_code ec;
    std::map<std::string, Shot> shots; // by session
    bool unreadable = false;
    for (fs::directory_iterator it(farm, ec), end; !ec && it != end; it.increment(ec)) {
        if (it->path().extension() != ".sbatch") {
            continue;
        }
        FarmJob job;
        std::string error;
        if (!FarmJob::read(it->path().string(), job, error)) {
            err << "tessera-farm: " << error << "\n";
            unreadable = true;
            continue;
        }
        const fs::file_time_type time = it->last_write_time(ec);
        auto [at, added] = shots.try_emplace(job.session, Shot{job, time});
        Shot& shot = at->second;
        if (!added) {
            for (const std::string& o : job.outputs) {
                if (std::find(shot.job.outputs.begin(), shot.job.outputs.end(), o) ==
                    shot.job.outputs.end()) {
                    shot.job.outputs.push_back(o);
                }
            }
            shot.job.frames.add(job.frames);
            if (time > shot.time) {
                job.outputs = shot.job.outputs;
                job.frames = shot.job.frames;
                shot = Shot{job, time};
            }
        }
    }
    if (shots.empty()) {
        err << "tessera-farm: " << farm.string()
            << " holds no farm script (NAME.sbatch): verify checks the frames of renders "
               "submitted into "
            << dir << " with tessera-farm submit --out " << dir << "\n";
        return 2;
    }

    bool complete = !unreadable;
    for (const auto& [session, shot] : shots) {
        const FrameList& checked = frames.empty() ? shot.job.frames : frames;
        const FrameCheck::Report report =
            FrameCheck::run(shot.job.outputs, checked, FrameCheck::Depth::Pixels);
        out << session << ": " << report.complete.size() << " of " << checked.count()
            << " frames complete (" << checked.toString() << ", " << shot.job.outputs.size()
            << (shot.job.outputs.size() == 1 ? " output" : " outputs") << ")\n";
        if (report.problems.empty()) {
            continue;
        }
        complete = false;
        for (const FrameCheck::Problem& p : report.problems) {
            out << "  frame " << p.frame << ": "
                << (p.missing ? "missing: " + p.file : "damaged: " + p.what) << "\n";
        }
        out << "render them again with:\n  " << again(shot.job, report.problems) << "\n";
    }
    return complete ? 0 : 1;
}
