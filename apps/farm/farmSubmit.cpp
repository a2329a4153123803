#include "farmCommands.h"
#include "slurm.h"

#include <base/fsAtomicFile.h>

#include <filesystem>
#include <ostream>

namespace {

namespace fs = std::filesystem;

// A path the script cannot record: its records are lines, and sbatch reads
// its values between double quotes.
bool recordable(const std::string& path) {
    return path.find_first_of("\n\r\"") == std::string::npos;
}

bool writeScript(const FarmJob& job, std::string& error) {
    const fs::path path = job.getScriptPath();
    std::error_code ec;
    fs::create_directories(path.parent_path() / "logs", ec);
    if (ec) {
        error = "cannot make " + (path.parent_path() / "logs").string() + ": " + ec.message();
        return false;
    }
    const std::string text = job.script();
    FsAtomicFile file(path.string());
    if (!file.open() || !file.append(text.data(), text.size()) || !file.commit()) {
        error = path.string() + ": " + file.getError();
        return false;
    }
    return true;
}

} // namespace

int FarmCommands::submit(FarmJob job, bool writeOnly, std::ostream& out, std::ostream& err) {
    std::error_code ec;
    job.session = fs::absolute(job.session, ec).lexically_normal().string();
    job.outDir =
        fs::absolute(job.outDir.empty() ? "." : job.outDir, ec).lexically_normal().string();
    if (job.outDir.size() > 1 && job.outDir.back() == '/') {
        job.outDir.pop_back();
    }
    std::string error;
    if (!job.findOutputs(error)) {
        err << "tessera-farm: " << error << "\n";
        return 2;
    }
    if (!job.findBuild(error)) {
        err << "tessera-farm: " << error << "\n";
        return 1;
    }
    for (const std::string& path : {job.session, job.outDir, job.program, job.module}) {
        if (!recordable(path)) {
            err << "tessera-farm: a farm script cannot hold a path with a newline or a double "
                   "quote: \""
                << path << "\"\n";
            return 2;
        }
    }
    for (const std::string& output : job.outputs) {
        if (!recordable(output)) {
            err << "tessera-farm: " << job.session << ": a farm script cannot hold the output \""
                << output << "\" (a newline or a double quote)\n";
            return 2;
        }
    }
    if (!writeScript(job, error)) {
        err << "tessera-farm: " << error << "\n";
        return 1;
    }
    const std::size_t chunks = job.getChunks().size();
    const std::string what = std::to_string(chunks) + (chunks == 1 ? " chunk" : " chunks") +
                             " of frames " + job.frames.toString() + " (" +
                             std::to_string(job.chunk) + " frames a chunk)";
    if (writeOnly) {
        out << "script: " << job.getScriptPath() << ": " << what << "\n"
            << "submit it with: sbatch " << shellWord(job.getScriptPath()) << "\n";
        return 0;
    }
    const std::string id = Slurm::submit(job.getScriptPath(), error);
    if (id.empty()) {
        err << "tessera-farm: " << error << "\n"
            << "tessera-farm: the script stays for another try: " << job.getScriptPath() << "\n";
        return 1;
    }
    out << "submitted job " << id << ": " << what << "\n"
        << "script: " << job.getScriptPath() << "\n"
        << "logs: " << job.getLogPath(id, 0) << ", ...\n"
        << "watch it with: " << shellWord(farmProgram(job)) << " status " << id << "\n";
    return 0;
}
