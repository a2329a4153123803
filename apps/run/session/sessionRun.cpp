// The part of tessera-run that drives the host's viewer and panels: session
// scripts replayed headless (the built-in demo session when none is given)
// and the package listing. tessera-run loads it only for those, so that a
// batch render loads no interface library.
#include "sessionRun.h"

#include "demoSession.h"
#include "host/hostPackages.h"
#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/widgetCommands.h"
#include "shotProgress.h"

#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/io/tsSequenceClip.h>

#include <QByteArray>
#include <QtGlobal>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

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

std::atomic<bool> interrupted{false};

// Renders the session's frame-pattern writes; answers the exit status: 0, 1
// for a failure, 130 when Ctrl+C stopped it.
int renderShot(const OutputWriter& writer, const SessionRunArgs& args, const std::string& command) {
    TsShotRender::Options options;
    options.resume = args.resume;
    if (*args.frames && !TsSequence::parseRange(args.frames, options.frames)) {
        std::cerr << "tessera-run: bad frame range \"" << args.frames << "\"\n";
        return 2;
    }
    ShotProgress progress(std::cerr, ::isatty(STDERR_FILENO) != 0);
    TsShotRender::Progress last;
    options.progress = [&](const TsShotRender::Progress& p) {
        last = p;
        if (!args.quiet) {
            progress(p);
        }
    };
    // Ctrl+C ends the render after the frames in flight.
    interrupted = false;
    options.stop = &interrupted;
    auto* previous = std::signal(SIGINT, [](int) { interrupted = true; });
    const TsShotRender::Result result = writer.renderShot(options);
    std::signal(SIGINT, previous);
    if (!args.quiet || !result.ok) {
        progress.finish(last);
    }
    if (result.interrupted || !result.error.empty()) {
        if (!result.error.empty()) {
            std::cerr << "tessera-run: " << result.error << "\n";
        }
        if (!result.unfinished.empty()) {
            std::cerr << "tessera-run: " << (result.interrupted ? "interrupted" : "stopped")
                      << " with frames " << result.unfinished.front() << " to "
                      << result.unfinished.back() << " not all written; resume with:\n  " << command
                      << " --resume\n";
        }
        return result.interrupted ? 130 : 1;
    }
    return 0;
}

// Runs the session; answers the exit status.
int replay(const SessionRunArgs& args) {
    const std::string file(args.session);
    const std::string out(args.out);
    SessionScript script;
    try {
        script = file.empty()
                     ? SessionScript::parse(TesseraRun::demoSession, "demoSession.tss (built in)")
                     : SessionScript::read(file);
    } catch (const SessionError& e) {
        // A script that cannot be read has no line to name.
        std::cerr << "tessera-run: "
                  << (e.getLine() == 0 ? e.getSource() + ": " + e.getMessage() : e.what()) << "\n";
        return e.getLine() == 0 ? 2 : 1;
    }

    Progress progress;
    SessionInterpreter::Options options;
    options.inputDir =
        file.empty() ? std::string() : std::filesystem::path(file).parent_path().string();
    options.outputDir = args.outGiven ? out : (file.empty() ? "out" : "");
    if (*args.missing) {
        TsSequenceClip::parseMissing(args.missing, options.missing);
    }
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
        if (status == 0 && !writer.getShotOutputs().empty()) {
            status = renderShot(writer, args, args.command);
        } else if (status == 0 && *args.frames) {
            std::cerr << "tessera-run: --frames renders the session's frame-pattern writes, and "
                         "it has none (write KIND NAME.####.exr)\n";
            status = 1;
        }
        if (status == 0 && file.empty()) {
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

// Headless: no display is needed, whatever the environment offers. A machine
// without a login session has no runtime directory: the toolkit gets a
// private one instead of a warning.
void goHeadless() {
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
}

} // namespace

extern "C" int tesseraRunSession(const SessionRunArgs* args) {
    if (args->listPackages) {
        const bool ok = HostPackages::loadAndStart(HostPackages::defaultModulePath());
        HostPackages::printPackages(std::cout);
        HostPackages::printRegistrations(std::cout, "after start-up");
        HostPackages::shutdownAndUnload(&std::cout);
        return ok ? 0 : 1;
    }
    goHeadless();
    return replay(*args);
}
