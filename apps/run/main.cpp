// tessera-run: replays a session script headless, or with no arguments keys
// the built-in demo plate with the built-in demo session.
#include "demoSession.h"
#include "host/hostPackages.h"
#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"

#include <QByteArray>
#include <QtGlobal>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

void usage(std::ostream& os) {
    os << "usage: tessera-run [SESSION] [--out DIR] [--quiet]\n"
          "       tessera-run --list-packages\n"
          "\n"
          "  SESSION          a session script (docs/session-scripts.md); relative files it\n"
          "                   reads are found beside it. Without one: the built-in demo\n"
          "                   session keys the built-in demo plate, outputs in out/\n"
          "  --out DIR        where relative files the session writes go (default: the\n"
          "                   current directory, out/ for the demo)\n"
          "  --quiet          no progress on standard error\n"
          "  --list-packages  load the keyer's user-interface module, start every package\n"
          "                   and list them: name, state, dependencies, build information;\n"
          "                   then what the module registered, after start-up and after\n"
          "                   shut-down\n"
          "\n"
          "Exit status: 0 when every line ran and every expectation held, 1 when a line\n"
          "failed (the script's file and line are named), 2 for a bad command line.\n";
}

// Progress of a long replay on standard error: nothing for the first second,
// then at most twice a second, and a last line when done.
class Progress {
public:
    void operator()(std::size_t done, std::size_t total) {
        const auto now = std::chrono::steady_clock::now();
        if (done == total || now - _start < std::chrono::seconds(1) || now - _last < _every) {
            return;
        }
        _last = now;
        _shown = true;
        std::cerr << "tessera-run: line " << done << " of " << total << " ("
                  << (100 * done / (total ? total : 1)) << "%)\n";
    }
    void finish(std::size_t total) const {
        if (_shown) {
            const double seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - _start).count();
            std::cerr << "tessera-run: " << total << " lines in " << seconds << " s\n";
        }
    }

private:
    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point _last = _start;
    const std::chrono::milliseconds _every{500};
    bool _shown = false;
};

struct Arguments {
    std::string session; // empty: the demo
    std::string out;
    bool outGiven = false;
    bool quiet = false;
};

// Runs the session; answers the exit status.
int replay(const Arguments& args) {
    SessionScript script;
    try {
        script = args.session.empty()
                     ? SessionScript::parse(TesseraRun::demoSession, "demoSession.tss (built in)")
                     : SessionScript::read(args.session);
    } catch (const SessionError& e) {
        std::cerr << "tessera-run: " << e.getSource() << ": " << e.getMessage() << "\n";
        return e.getLine() == 0 ? 2 : 1;
    }

    Progress progress;
    SessionInterpreter::Options options;
    options.inputDir = args.session.empty()
                           ? std::string()
                           : std::filesystem::path(args.session).parent_path().string();
    options.outputDir = args.outGiven ? args.out : (args.session.empty() ? "out" : "");
    if (!args.quiet) {
        options.progress = [&progress](std::size_t done, std::size_t total) {
            progress(done, total);
        };
    }

    int status = 0;
    {
        HostSession session;
        OutputWriter writer(session);
        SessionInterpreter interpreter(session, options);
        ImageCommands::add(interpreter, writer);
        WidgetCommands::add(interpreter);
        try {
            interpreter.run(script);
            progress.finish(script.getLines().size());
        } catch (const SessionError& e) {
            std::cerr << "tessera-run: " << e.what() << "\n";
            status = 1;
        }
        if (status == 0 && args.session.empty()) {
            // The demo shows what it made.
            for (const auto& [kind, path] : writer.getWritten()) {
                if (kind == "summary") {
                    std::ifstream summary(path);
                    std::cout << summary.rdbuf();
                }
            }
        }
    }
    HostPackages::shutdownAndUnload();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--list-packages") == 0) {
        const bool ok = HostPackages::loadAndStart(HostPackages::defaultModulePath());
        HostPackages::printPackages(std::cout);
        HostPackages::printRegistrations(std::cout, "after start-up");
        HostPackages::shutdownAndUnload(&std::cout);
        return ok ? 0 : 1;
    }
    Arguments args;
    for (int i = 1; i < argc; ++i) {
        const std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            usage(std::cout);
            return 0;
        }
        if (a == "--quiet") {
            args.quiet = true;
        } else if (a == "--out" && i + 1 < argc) {
            args.out = argv[++i];
            args.outGiven = true;
        } else if (!a.empty() && a[0] != '-' && args.session.empty()) {
            args.session = a;
        } else {
            std::cerr << "tessera-run: unexpected argument \"" << a << "\"\n";
            usage(std::cerr);
            return 2;
        }
    }
    // Headless: no display is needed, whatever the environment offers. A
    // machine without a login session has no runtime directory: the
    // toolkit gets a private one instead of a warning.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        std::error_code ec;
        const std::filesystem::path runtime = std::filesystem::temp_directory_path(ec) /
                                              ("tessera-run-" + std::to_string(::getuid()));
        std::filesystem::create_directories(runtime, ec);
        std::filesystem::permissions(runtime, std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::replace, ec);
        if (!ec) {
            qputenv("XDG_RUNTIME_DIR", QByteArray::fromStdString(runtime.string()));
        }
    }
    return replay(args);
}
