#include "historyCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

void HistoryCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();
    SessionProbe& probe = interpreter.getProbe();

    auto history = [&s](bool forward) {
        return [&s, forward](SessionArgs& a) {
            int steps = 1;
            if (!a.atEnd()) {
                steps = a.integer("number of steps");
                if (steps < 1) {
                    throw SessionArgs::Error("a number of steps is 1 or more");
                }
            }
            a.end();
            const int available =
                forward ? s.getCommandStack().getRedoCount() : s.getCommandStack().getUndoCount();
            if (steps > available) {
                throw SessionArgs::Error(
                    "there " + std::string(available == 1 ? "is " : "are ") +
                    std::to_string(available) + " step" + (available == 1 ? "" : "s") + " to " +
                    (forward ? "redo" : "undo") + ", not " + std::to_string(steps));
            }
            if (forward) {
                s.redo(steps);
            } else {
                s.undo(steps);
            }
        };
    };
    in.addCommand("undo", history(false));
    in.addCommand("redo", history(true));
    in.addCommand("save", [&in, &s](SessionArgs& a) {
        const std::string path = in.outputPath(a.word("setup file"));
        a.end();
        std::string error;
        if (!s.saveSetup(path, error)) {
            throw SessionArgs::Error(error);
        }
    });
    in.addCommand("load", [&in, &s](SessionArgs& a) {
        const std::string path = in.inputPath(a.word("setup file"));
        a.end();
        std::string error;
        if (!s.loadSetup(path, error)) {
            throw SessionArgs::Error(error);
        }
    });
    in.addCommand("open", [&in, &s](SessionArgs& a) {
        const std::string path = in.inputPath(a.word("setup file"));
        a.end();
        std::string error;
        if (!s.openSetup(path, error)) {
            throw SessionArgs::Error(error);
        }
    });

    probe.addQuery(
        "undo",
        [&s](SessionArgs& args) {
            const PiCommandStack& stack = s.getCommandStack();
            if (args.take("count")) {
                return std::to_string(stack.getUndoCount());
            }
            if (args.take("name")) {
                return SessionProbe::orNone(stack.getUndoName());
            }
            const std::vector<LiString> names = stack.getStepNames();
            return SessionProbe::list(
                std::vector<std::string>(names.begin(), names.begin() + stack.getUndoCount()));
        },
        [&s](SessionArgs&) {
            const PiCommandStack& stack = s.getCommandStack();
            const std::vector<LiString> names = stack.getStepNames();
            std::vector<std::string> lines;
            lines.push_back("undo: " + std::to_string(stack.getUndoCount()) + " done, " +
                            std::to_string(stack.getRedoCount()) + " undone");
            for (std::size_t i = 0; i < names.size(); ++i) {
                lines.push_back("  " + std::to_string(i + 1) + ". " + names[i] +
                                (static_cast<int>(i) < stack.getUndoCount() ? "" : " (undone)"));
            }
            return lines;
        });
    probe.addQuery("modified",
                   [&s](SessionArgs&) { return std::string(s.isModified() ? "true" : "false"); });
    probe.addQuery("redo", [&s](SessionArgs& args) {
        const PiCommandStack& stack = s.getCommandStack();
        if (args.take("count")) {
            return std::to_string(stack.getRedoCount());
        }
        if (args.take("name")) {
            return SessionProbe::orNone(stack.getRedoName());
        }
        const std::vector<LiString> names = stack.getStepNames();
        return SessionProbe::list(
            std::vector<std::string>(names.begin() + stack.getUndoCount(), names.end()));
    });
    probe.addQuery(
        "reports", [&s](SessionArgs&) { return std::to_string(s.getReports().size()); },
        [&s](SessionArgs&) {
            std::vector<std::string> lines;
            for (const auto& r : s.getReports()) {
                lines.push_back(r.text());
            }
            return lines;
        });
    probe.addQuery("report", [&s](SessionArgs&) {
        const auto& all = s.getReports();
        return all.empty() ? std::string("none") : all.back().text();
    });
}
