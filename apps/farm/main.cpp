// tessera-farm: renders a shot on a Slurm farm. It writes the batch script
// and calls the scheduler's own commands (sbatch, squeue, sacct); the farm's
// tasks run tessera-run, as a workstation does. It keeps no queue, retries
// nothing itself and speaks no protocol: Slurm does all of that.
#include "farmCommands.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <string>
#include <vector>

namespace {

void usage(std::ostream& os) {
    os << "usage: tessera-farm submit SESSION --frames FRAMES [--chunk N] [--out DIR]\n"
          "                    [--partition P] [--cpus N] [--retries N]\n"
          "                    [--missing refuse|hold|black] [--write-only]\n"
          "       tessera-farm status JOB\n"
          "       tessera-farm verify DIR [--frames FRAMES]\n"
          "       tessera-farm --help\n"
          "\n"
          "  submit   render the session's frame-pattern writes (write matte\n"
          "           out/matte.####.exr) on the farm: one Slurm job array, a task per\n"
          "           chunk of N frames (default 10), each running tessera-run SESSION\n"
          "           --frames CHUNK --resume --out DIR (default: the current directory).\n"
          "           The batch script is kept in DIR/farm/, the tasks' logs in\n"
          "           DIR/farm/logs/; it records this build's tessera-run, module and\n"
          "           resources. A failed task is requeued by Slurm, at most --retries\n"
          "           times (default 2). --write-only writes the script and submits\n"
          "           nothing. Prints the job id.\n"
          "  status   the job's chunks pending, running, done and failed (squeue, or\n"
          "           sacct once the controller has forgotten the job), the frames\n"
          "           written, and the last line of each failed task's log\n"
          "  verify   whether every frame of the renders submitted into DIR is there and\n"
          "           whole (every pixel is read); names the missing and damaged ones\n"
          "           and prints the command that renders only those again\n"
          "\n"
          "  FRAMES   FIRST-LAST (1001-1100), a frame (1005), or a list of them\n"
          "           (1005,1017-1018)\n"
          "\n"
          "Exit status: 0 when done (submitted; every chunk done; every frame\n"
          "complete), 1 when something failed (a chunk, a frame missing or damaged),\n"
          "2 for a bad command line or a session that cannot be rendered on the farm,\n"
          "3 from status while chunks are pending or running.\n";
}

struct BadUsage {
    std::string what;
};

// The words after the command, taken one by one.
class Words {
public:
    Words(int argc, char** argv)
        : _words(argv + std::min(argc, 2), argv + argc) {}
    bool done() const { return _at >= _words.size(); }
    std::string next() { return _words[_at++]; }
    std::string value(const std::string& option) {
        if (done()) {
            throw BadUsage{"missing a value after " + option};
        }
        return next();
    }
    int count(const std::string& option, int minimum) {
        const std::string text = value(option);
        int n = 0;
        const auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), n);
        if (ec != std::errc() || ptr != text.data() + text.size() || text.empty() || n < minimum) {
            throw BadUsage{option + " takes a whole number of at least " + std::to_string(minimum) +
                           ", not \"" + text + "\""};
        }
        return n;
    }
    FrameList frames(const std::string& option) {
        FrameList list;
        std::string error;
        if (!FrameList::parse(value(option), list, error)) {
            throw BadUsage{error};
        }
        return list;
    }
    static BadUsage unexpected(const std::string& word) {
        return BadUsage{"unexpected argument \"" + word + "\""};
    }

private:
    std::vector<std::string> _words;
    std::size_t _at = 0;
};

int submit(Words& words) {
    FarmJob job;
    bool writeOnly = false;
    while (!words.done()) {
        const std::string w = words.next();
        if (w == "--frames") {
            job.frames = words.frames(w);
        } else if (w == "--chunk") {
            job.chunk = words.count(w, 1);
        } else if (w == "--out") {
            job.outDir = words.value(w);
        } else if (w == "--partition") {
            job.partition = words.value(w);
        } else if (w == "--cpus") {
            job.cpus = words.count(w, 1);
        } else if (w == "--retries") {
            job.retries = words.count(w, 0);
        } else if (w == "--missing") {
            job.missing = words.value(w);
            if (job.missing != "refuse" && job.missing != "hold" && job.missing != "black") {
                throw BadUsage{"--missing takes refuse, hold or black, not \"" + job.missing +
                               "\""};
            }
        } else if (w == "--write-only") {
            writeOnly = true;
        } else if (job.session.empty() && !w.empty() && w[0] != '-') {
            job.session = w;
        } else {
            throw Words::unexpected(w);
        }
    }
    if (job.session.empty()) {
        throw BadUsage{"submit needs a session script"};
    }
    if (job.frames.empty()) {
        throw BadUsage{"submit needs the frames to render (--frames 1001-1100)"};
    }
    return FarmCommands::submit(std::move(job), writeOnly, std::cout, std::cerr);
}

int status(Words& words) {
    if (words.done()) {
        throw BadUsage{"status needs a job id (the one submit printed)"};
    }
    const std::string job = words.next();
    if (!words.done()) {
        throw Words::unexpected(words.next());
    }
    if (job.empty() || job.find_first_not_of("0123456789") != std::string::npos) {
        throw BadUsage{"bad job id \"" + job + "\" (the number submit printed)"};
    }
    return FarmCommands::status(job, std::cout, std::cerr);
}

int verify(Words& words) {
    std::string dir;
    FrameList frames;
    while (!words.done()) {
        const std::string w = words.next();
        if (w == "--frames") {
            frames = words.frames(w);
        } else if (dir.empty() && !w.empty() && w[0] != '-') {
            dir = w;
        } else {
            throw Words::unexpected(w);
        }
    }
    if (dir.empty()) {
        throw BadUsage{"verify needs the outputs directory (submit's --out)"};
    }
    return FarmCommands::verify(dir, frames, std::cout, std::cerr);
}

} // namespace

int main(int argc, char** argv) {
    const std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help" || command == "-h") {
        usage(std::cout);
        return 0;
    }
    Words words(argc, argv);
    try {
        if (command == "submit") {
            return submit(words);
        }
        if (command == "status") {
            return status(words);
        }
        if (command == "verify") {
            return verify(words);
        }
        throw BadUsage{command.empty() ? "a command is needed: submit, status or verify"
                                       : "unknown command \"" + command + "\""};
    } catch (const BadUsage& e) {
        std::cerr << "tessera-farm: " << e.what << "\n";
        usage(std::cerr);
        return 2;
    }
}
