#pragma once

#include "sessionProbe.h"
#include "sessionScript.h"
#include "viewerDriver.h"

#include <tesseraCore/io/tsSequenceClip.h>

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>

class HostSession;
class SessionArgs;

// Carries out session scripts against a host session, one line at a time, as
// the user would: pointer and keys go to the viewer as window-system events
// (ViewerDriver), tools and stages change by name, history, frames, node
// selection and setups go through the session. `print` and `expect` read the
// state through the probe. The language is documented in
// docs/session-scripts.md.
//
// A line that cannot be carried out (an unknown command, a bad number, an
// unknown widget, a file that cannot be read) or an expectation that does not
// hold stops the run with a SessionError naming the script and the line.
// Failures of the module's code on the way are contained and reported, as in
// the studio, and the run goes on; scripts check them with `expect reports`.
//
// Relative paths of files read (plates, setups) are taken from the input
// directory (the script's own), or the output directory when the file is not
// there but the session wrote it; those of files written from the output
// directory. The commands come in tables by topic (viewerCommands,
// viewerAidCommands, pointerCommands, nodeCommands, inputCommands,
// historyCommands, colourCommands, overlayQueries), which the interpreter
// adds; those of other parts of the host (imageCommands, widgetCommands) join through addCommand.
class SessionInterpreter {
public:
    using Command = std::function<void(SessionArgs&)>;

    struct Options {
        std::string inputDir;        // "" for the current directory
        std::string outputDir;       // "" for the current directory
        std::ostream* out = nullptr; // where print and echo write; standard output when null
        // Called after each line: lines done, lines in all.
        std::function<void(std::size_t, std::size_t)> progress;
        // What sequences opened by `plate` and `background` do with a frame
        // that has no file, unless the line says.
        TsMissingFrames missing = TsMissingFrames::Refuse;
    };

    explicit SessionInterpreter(HostSession& session);
    SessionInterpreter(HostSession& session, Options options);
    ~SessionInterpreter();
    SessionInterpreter(const SessionInterpreter&) = delete;
    SessionInterpreter& operator=(const SessionInterpreter&) = delete;

    // Every line of the script, in order.
    void run(const SessionScript& script);
    // One line of a script named `source`.
    void execute(const SessionScript::Line& line, const std::string& source);
    // One line of text (tests, the studio's checks).
    void execute(const std::string& text, const std::string& source = "session");

    // A command replaces any command of the same name.
    void addCommand(const std::string& name, Command command);
    bool hasCommand(const std::string& name) const { return _commands.count(name) != 0; }

    HostSession& getSession() const { return _session; }
    SessionProbe& getProbe() { return _probe; }
    ViewerDriver& getDriver() { return _driver; }
    std::ostream& out() const;

    // Where a file that a line names is read from, or written to.
    std::string inputPath(const std::string& path) const;
    // Makes the directories the file goes into.
    std::string outputPath(const std::string& path) const;
    void setInputDir(const std::string& dir) { _options.inputDir = dir; }
    void setOutputDir(const std::string& dir) { _options.outputDir = dir; }

    TsMissingFrames getMissingFrames() const { return _options.missing; }

    // How many expectations held so far.
    int getExpectCount() const { return _expects; }

    // Compares an answer with what a script expects (see expect in the
    // documentation); false with `failure` explaining it, SessionArgs::Error
    // for an operator that does not apply to the values.
    static bool compare(const std::string& actual, const std::string& op,
                        const std::vector<std::string>& expected, double tolerance,
                        std::string& failure);

private:
    void addCommands();
    void expect(SessionArgs& args, const std::vector<std::string>& words,
                const std::vector<bool>& quoted);
    void print(SessionArgs& args);

    HostSession& _session;
    Options _options;
    SessionProbe _probe;
    ViewerDriver _driver;
    std::map<std::string, Command> _commands;
    // The line being carried out, for the commands that read its words.
    const SessionScript::Line* _line = nullptr;
    int _expects = 0;
};
