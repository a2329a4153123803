// tessera-run: replays a session script headless, or with no arguments keys
// the built-in demo plate with the built-in demo session; renders a setup
// with no window system (--render).
//
// The program itself stands on the keyer's core alone. What drives the
// viewer and the panels (session replay, the package listing) lives in
// libtessera-run-session beside the host's libraries, loaded only when it is
// needed: a batch render, --help and --version load no interface library.
#include "batchRender.h"
#include "session/sessionRun.h"

#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/io/tsSequenceClip.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

void usage(std::ostream& os) {
    os << "usage: tessera-run [SESSION] [--out DIR] [--quiet] [--max-plate-pixels N]\n"
          "                  [--frames FIRST-LAST] [--resume] [--missing refuse|hold|black]\n"
          "                  [--module-path DIR]\n"
          "       tessera-run --render SETUP --plate FILE|demo [--background FILE|demo]\n"
          "                   [--frame N] [--out DIR] [--max-plate-pixels N]\n"
          "                   --write KIND FILE [--write KIND FILE ...]\n"
          "       tessera-run --list-packages [--module-path DIR]\n"
          "       tessera-run --help | --version\n"
          "\n"
          "  SESSION          a session script (docs/session-scripts.md); relative files it\n"
          "                   reads are found beside it; - reads it from standard input.\n"
          "                   Without one: the built-in demo session keys the built-in\n"
          "                   demo plate, outputs in out/\n"
          "  --out DIR        where relative files the session (or render) writes go\n"
          "                   (default: the current directory, out/ for the demo)\n"
          "  --quiet          no progress on standard error\n"
          "  --max-plate-pixels N\n"
          "                   read plates of up to N pixels (default 67108864, 8192 x 8192)\n"
          "  --frames F-L     after the session, render its frame-pattern writes (write\n"
          "                   matte out/matte.####.exr) for frames F to L; without it they\n"
          "                   are rendered for the plate's whole range\n"
          "  --resume         skip frames whose every output is already complete\n"
          "  --missing M      what a plate sequence does with a frame that has no file:\n"
          "                   refuse (the default: it does not open), hold the frame\n"
          "                   before, or black\n"
          "  --render SETUP   render a keyer setup with no window system: the plate (and\n"
          "                   background) keyed by the setup's selected keyer node at the\n"
          "                   frame (default 0); KIND is source, matte, status, foreground\n"
          "                   or comp, FILE an .exr or .png; a FILE that is a frame\n"
          "                   pattern (out/matte.####.exr) is written for every frame of\n"
          "                   --frames (the plate's range by default)\n"
          "  --list-packages  load the keyer's user-interface module, start every package\n"
          "                   and list them: name, state, dependencies, build information;\n"
          "                   then what the module registered, after start-up and after\n"
          "                   shut-down\n"
          "  --module-path DIR\n"
          "                   load the modules (*.so) of DIR too, after the keyer's module and\n"
          "                   those of $TESSERA_MODULE_PATH (repeatable)\n"
          "\n"
          "Exit status: 0 when every line ran and every expectation held, 1 when a line\n"
          "failed (the script's file and line are named) or an output could not be\n"
          "written, 2 for a bad command line or a script that cannot be read, 130 when\n"
          "Ctrl+C stopped a render (the frames written stay; --resume goes on from them).\n";
}

int badUsage(const std::string& what) {
    std::cerr << "tessera-run: " << what << "\n";
    usage(std::cerr);
    return 2;
}

// The session part, from beside the host's libraries (lib/ beside bin/).
int runSession(const SessionRunArgs& args) {
    std::error_code ec;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    const std::filesystem::path library =
        (ec ? std::filesystem::current_path() : exe.parent_path()).parent_path() / "lib" /
        "libtessera-run-session.so";
    void* handle = ::dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (!handle) {
        std::cerr << "tessera-run: cannot load " << library.string() << ": " << ::dlerror() << "\n";
        return 1;
    }
    // Never unloaded: the host's packages and the module stay until exit.
    const auto entry =
        reinterpret_cast<TesseraRunSessionEntry>(::dlsym(handle, "tesseraRunSession"));
    if (!entry) {
        std::cerr << "tessera-run: " << library.string() << " has no session entry\n";
        return 1;
    }
    return entry(&args);
}

int render(int argc, char** argv) {
    BatchRender::Options options;
    for (int i = 2; i < argc; ++i) {
        const std::string a = argv[i];
        auto value = [&](const char* what) -> std::string {
            if (i + 1 >= argc) {
                throw std::string("missing ") + what + " after " + a;
            }
            return argv[++i];
        };
        if (a == "--max-plate-pixels") {
            std::string error;
            if (!TsPlateIO::setMaxPixels(value("a number of pixels"), error)) {
                throw error;
            }
        } else if (a == "--plate") {
            options.plate = value("a plate file");
        } else if (a == "--background") {
            options.background = value("a background file");
        } else if (a == "--out") {
            options.outputDir = value("a directory");
        } else if (a == "--frame") {
            const std::string text = value("a frame");
            char* end = nullptr;
            options.frame = std::strtod(text.c_str(), &end);
            if (text.empty() || *end != '\0' || !std::isfinite(options.frame)) {
                throw "bad frame \"" + text + "\"";
            }
        } else if (a == "--frames") {
            options.frames = value("a frame range");
        } else if (a == "--resume") {
            options.resume = true;
        } else if (a == "--write") {
            const std::string kind = value("an output kind");
            const auto& kinds = BatchRender::getKinds();
            if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
                throw "unknown output kind \"" + kind +
                    "\" (source, matte, status, foreground or comp)";
            }
            options.outputs.emplace_back(kind, value("an output file"));
        } else if (!a.empty() && a[0] != '-' && options.setup.empty()) {
            options.setup = a;
        } else {
            throw "unexpected argument \"" + a + "\"";
        }
    }
    if (options.setup.empty()) {
        throw std::string("--render needs a setup file");
    }
    if (options.plate.empty()) {
        throw std::string("--render needs a plate (--plate FILE or --plate demo)");
    }
    if (options.outputs.empty()) {
        throw std::string("--render writes nothing without --write KIND FILE");
    }
    return BatchRender::run(options, std::cout, std::cerr);
}

} // namespace

int main(int argc, char** argv) {
    SessionRunArgs args;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            usage(std::cout);
            return 0;
        }
        if (a == "--version") {
            std::cout << "tessera-run " << TESSERA_VERSION << "\n";
            return 0;
        }
    }
    if (argc >= 2 && std::strcmp(argv[1], "--render") == 0) {
        try {
            return render(argc, argv);
        } catch (const std::string& what) {
            return badUsage(what);
        }
    }
    std::string modulePath;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--list-packages") {
            args.listPackages = true;
        } else if (a == "--module-path") {
            if (i + 1 >= argc) {
                return badUsage("missing a directory after --module-path");
            }
            modulePath += std::string(modulePath.empty() ? "" : ":") + argv[++i];
        }
    }
    if (!modulePath.empty()) {
        // The host reads the module search path from the environment, as a
        // program started from here does.
        const char* env = std::getenv("TESSERA_MODULE_PATH");
        modulePath = std::string(env && *env ? env : "") + (env && *env ? ":" : "") + modulePath;
        ::setenv("TESSERA_MODULE_PATH", modulePath.c_str(), 1);
    }
    if (args.listPackages) {
        for (int i = 1; i < argc; ++i) {
            const std::string a = argv[i];
            if (a == "--module-path") {
                ++i;
            } else if (a != "--list-packages") {
                return badUsage("--list-packages takes no \"" + a + "\"");
            }
        }
        return runSession(args);
    }
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--module-path") {
            ++i;
        } else if (a == "--quiet") {
            args.quiet = true;
        } else if (a == "--out" && i + 1 < argc) {
            args.out = argv[++i];
            args.outGiven = true;
        } else if (a == "--max-plate-pixels" && i + 1 < argc) {
            std::string error;
            if (!TsPlateIO::setMaxPixels(argv[++i], error)) {
                return badUsage(error);
            }

        } else if (a == "--frames" && i + 1 < argc) {
            args.frames = argv[++i];
            PiFrameRange range;
            if (!TsSequence::parseRange(args.frames, range)) {
                return badUsage("bad frame range \"" + std::string(args.frames) +
                                "\" (expected FIRST-LAST, as in 1001-1100)");
            }
        } else if (a == "--resume") {
            args.resume = true;
        } else if (a == "--missing" && i + 1 < argc) {
            args.missing = argv[++i];
            TsMissingFrames missing;
            if (!TsSequenceClip::parseMissing(args.missing, missing)) {
                return badUsage("--missing takes refuse, hold or black, not \"" +
                                std::string(args.missing) + "\"");
            }
        } else if (!a.empty() && (a[0] != '-' || a == "-") && *args.session == '\0') {
            args.session = argv[i];
        } else {
            return badUsage("unexpected argument \"" + a + "\"");
        }
    }
    // The command line, with --resume, for a render to be resumed.
    std::string command;
    for (int i = 0; i < argc; ++i) {
        const std::string a = argv[i];
        if (a != "--resume") {
            command += (i ? " " : "") + a;
        }
    }
    args.command = command.c_str();
    return runSession(args);
}
