#include "farmJob.h"

#include "host/sessionScript.h"

#include <base/fsInputFile.h>
#include <base/znLimits.h>
#include <tesseraCore/io/tsSequence.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

const std::string RecordPrefix = "# tessera-farm ";

// A value of an #SBATCH line: sbatch reads double quotes around a value that
// holds blanks.
std::string sbatchValue(const std::string& value) {
    return value.find_first_of(" \t") == std::string::npos ? value : "\"" + value + "\"";
}

// A file name in an #SBATCH --output pattern, where % starts a replacement.
std::string outputPatternPath(const std::string& path) {
    std::string out;
    for (const char c : path) {
        out += c == '%' ? std::string("%%") : std::string(1, c);
    }
    return out;
}

bool parseCount(const std::string& text, int minimum, int& value) {
    const char* end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    return ec == std::errc() && ptr == end && !text.empty() && value >= minimum;
}

} // namespace

std::string shellWord(const std::string& word) {
    const bool plain =
        !word.empty() && word.find_first_not_of("abcdefghijklmnopqrstuvwxyz"
                                                "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                                "0123456789/._-+=:,@%") == std::string::npos;
    if (plain) {
        return word;
    }
    std::string out = "'";
    for (const char c : word) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + "'";
}

std::string FarmJob::getName() const {
    const std::string stem = fs::path(session).stem().string();
    if (frames.getRanges().size() == 1) {
        return stem + "." + frames.toString();
    }
    return stem + "." + std::to_string(frames.first()) + "-" + std::to_string(frames.last()) + "." +
           std::to_string(frames.count()) + "-frames";
}

std::string FarmJob::getScriptPath() const {
    return (fs::path(outDir) / "farm" / (getName() + ".sbatch")).string();
}

std::string FarmJob::getLogPath(const std::string& job, int task) const {
    return (fs::path(outDir) / "farm" / "logs" /
            (getName() + "." + job + "_" + std::to_string(task) + ".log"))
        .string();
}

std::string FarmJob::script() const {
    const std::vector<PiFrameRange> chunks = getChunks();
    const std::string retriesText = std::to_string(retries);
    std::ostringstream s;
    s << "#!/bin/bash\n"
         "# A Tessera shot render on Slurm, written by tessera-farm submit: a job array\n"
         "# with one task a chunk of frames. Each task runs tessera-run with --resume,\n"
         "# so a task that runs again renders only the frames it had not finished.\n"
         "# Submit it again with: sbatch "
      << shellWord(getScriptPath())
      << "\n"
         "# or run one chunk here with: bash "
      << shellWord(getScriptPath()) << " CHUNK\n#\n";
    auto record = [&s](const std::string& key, const std::string& value) {
        if (!value.empty()) {
            s << RecordPrefix << key << ": " << value << "\n";
        }
    };
    record("session", session);
    record("out", outDir);
    record("frames", frames.toString());
    record("chunk", std::to_string(chunk));
    record("retries", retriesText);
    record("partition", partition);
    record("cpus", cpus > 0 ? std::to_string(cpus) : "");
    record("missing", missing);
    record("program", program);
    record("module", module);
    record("resources", resources);
    record("ocio", ocio);
    for (const std::string& output : outputs) {
        record("output", output);
    }
    const std::string logs = (fs::path(outDir) / "farm" / "logs" / getName()).string();
    s << "#SBATCH --job-name=" << sbatchValue(getName()) << "\n"
      << "#SBATCH --array=0-" << chunks.size() - 1 << "\n"
      << "#SBATCH --chdir=" << sbatchValue(outDir) << "\n"
      << "#SBATCH --output=" << sbatchValue(outputPatternPath(logs) + ".%A_%a.log") << "\n"
      << "#SBATCH --open-mode=append\n"
      << "#SBATCH --requeue\n";
    if (!partition.empty()) {
        s << "#SBATCH --partition=" << sbatchValue(partition) << "\n";
    }
    if (cpus > 0) {
        s << "#SBATCH --cpus-per-task=" << cpus << "\n";
    }

    s << "\n# The build this was made with: every node runs the same one.\n"
      << "program=" << shellWord(program) << "\n"
      << "export TESSERA_MODULE=" << shellWord(module) << "\n"
      << "export TESSERA_RESOURCE_PATH=" << shellWord(resources) << "\n";
    if (!ocio.empty()) {
        s << "export OCIO=" << shellWord(ocio) << "\n";
    }
    s << "\nchunks=(";
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        const PiFrameRange& c = chunks[i];
        s << (i % 8 == 0 ? "\n    " : " ") << c.first << "-" << c.last;
    }
    s << "\n)\n"
         "task=${SLURM_ARRAY_TASK_ID:-${1-}}\n"
         "if ! [[ $task =~ ^[0-9]+$ ]] || [ \"$task\" -ge ${#chunks[@]} ]; then\n"
         "    echo \"tessera-farm: $0 renders chunks 0 to $((${#chunks[@]} - 1)): sbatch $0, or "
         "bash $0 CHUNK\" >&2\n"
         "    exit 2\n"
         "fi\n"
         "frames=${chunks[$task]}\n"
         "attempt=$((${SLURM_RESTART_COUNT:-0} + 1))\n"
         "echo \"tessera-farm: chunk $task, frames $frames, attempt $attempt, on $HOSTNAME\"\n"
         "\n"
         "# TESSERA_FARM_FAIL_ONCE=CHUNK makes that chunk fail its first attempt, to try\n"
         "# the retries.\n"
         "if [ \"${TESSERA_FARM_FAIL_ONCE-}\" = \"$task\" ] && [ \"$attempt\" -eq 1 ]; then\n"
         "    echo \"tessera-farm: chunk $task fails its first attempt (TESSERA_FARM_FAIL_ONCE)\" "
         ">&2\n"
         "    status=1\n"
         "else\n"
         "    \"$program\" "
      << shellWord(session) << " --frames \"$frames\" --resume --out " << shellWord(outDir);
    if (!missing.empty()) {
        s << " --missing " << shellWord(missing);
    }
    s << "\n"
         "    status=$?\n"
         "fi\n"
         "\n"
         "# Slurm puts a failed chunk back in the queue, at most "
      << retriesText
      << " times (it counts the\n"
         "# restarts); the frames the chunk finished stay done.\n"
         "if [ \"$status\" -ne 0 ] && [ \"$status\" -lt 128 ] && [ -n \"${SLURM_JOB_ID-}\" ] &&\n"
         "    [ \"$attempt\" -le "
      << retriesText
      << " ]; then\n"
         "    echo \"tessera-farm: chunk $task failed (exit status $status); requeued for attempt "
         "$((attempt + 1)) of "
      << retries + 1
      << "\" >&2\n"
         "    scontrol requeue \"$SLURM_JOB_ID\"\n"
         "fi\n"
         "exit \"$status\"\n";
    return s.str();
}

bool FarmJob::read(const std::string& path, FarmJob& out, std::string& error) {
    std::string text;
    if (!FsInputFile::read(path, ZnLimits::ScriptBytes, "a farm script", text, error)) {
        error = path + ": " + error;
        return false;
    }
    FarmJob job;
    std::string framesText;
    std::istringstream lines(text);
    std::string line;
    int number = 0;
    while (std::getline(lines, line) && (line.empty() || line[0] == '#')) {
        ++number;
        if (line.rfind(RecordPrefix, 0) != 0) {
            continue;
        }
        const std::size_t colon = line.find(": ", RecordPrefix.size());
        if (colon == std::string::npos) {
            error = path + ":" + std::to_string(number) + ": a record without a value";
            return false;
        }
        const std::string key = line.substr(RecordPrefix.size(), colon - RecordPrefix.size());
        const std::string value = line.substr(colon + 2);
        bool ok = true;
        if (key == "session") {
            job.session = value;
        } else if (key == "out") {
            job.outDir = value;
        } else if (key == "frames") {
            framesText = value;
            ok = FrameList::parse(value, job.frames, error);
        } else if (key == "chunk") {
            ok = parseCount(value, 1, job.chunk);
        } else if (key == "retries") {
            ok = parseCount(value, 0, job.retries);
        } else if (key == "partition") {
            job.partition = value;
        } else if (key == "cpus") {
            ok = parseCount(value, 1, job.cpus);
        } else if (key == "missing") {
            job.missing = value;
        } else if (key == "program") {
            job.program = value;
        } else if (key == "module") {
            job.module = value;
        } else if (key == "resources") {
            job.resources = value;
        } else if (key == "ocio") {
            job.ocio = value;
        } else if (key == "output") {
            job.outputs.push_back(value);
        }
        if (!ok) {
            error = path + ":" + std::to_string(number) + ": bad " + key + " \"" + value + "\"";
            return false;
        }
    }
    if (job.session.empty() || job.outDir.empty() || framesText.empty() || job.program.empty() ||
        job.outputs.empty()) {
        error = path + ": not a farm script of tessera-farm (it lacks its session, out, frames, "
                       "program or output records)";
        return false;
    }
    out = std::move(job);
    return true;
}

bool FarmJob::findOutputs(std::string& error) {
    SessionScript script;
    try {
        script = SessionScript::read(session);
    } catch (const SessionError& e) {
        error = e.getLine() == 0 ? e.getSource() + ": " + e.getMessage() : e.what();
        return false;
    }
    outputs.clear();
    for (const SessionScript::Line& line : script.getLines()) {
        const auto& words = line.words;
        if (!words.empty() && words[0] == "render") {
            error = session + ":" + std::to_string(line.number) +
                    ": the session renders frames itself (render): on the farm every task "
                    "would render them; take the line out and let tessera-farm share the "
                    "frames out";
            return false;
        }
        if (words.size() >= 3 && words[0] == "write" && TsSequence::isPattern(words[2])) {
            const fs::path file(words[2]);
            outputs.push_back((file.is_absolute() ? file : fs::path(outDir) / file).string());
        }
    }
    if (outputs.empty()) {
        error = session +
                ": the session writes no frame-pattern output (write KIND NAME.####.exr): "
                "there is nothing to render on the farm";
        return false;
    }
    return true;
}

bool FarmJob::findBuild(std::string& error) {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    const fs::path bin = ec ? fs::current_path() : exe.parent_path();
    program = (bin / "tessera-run").string();
    if (!fs::is_regular_file(program, ec)) {
        error = "tessera-run is not beside tessera-farm (" + program + ")";
        return false;
    }
    const char* moduleEnv = std::getenv("TESSERA_MODULE");
    module = moduleEnv && *moduleEnv ? moduleEnv
                                     : (bin.parent_path() / "lib" / TESSERA_MODULE_FILE).string();
    module = fs::absolute(module, ec).string();
    const char* resourcesEnv = std::getenv("TESSERA_RESOURCE_PATH");
    resources =
        resourcesEnv && *resourcesEnv ? resourcesEnv : fs::path(module).parent_path().string();
    const char* ocioEnv = std::getenv("OCIO");
    ocio = ocioEnv ? ocioEnv : "";
    return true;
}
