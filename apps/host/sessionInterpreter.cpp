#include "sessionInterpreter.h"

#include "hostSession.h"
#include "sessionArgs.h"

#include <base/evKeyCode.h>
#include <base/exReporter.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piPath.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiViewer.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>

namespace {

const std::vector<std::string> Operators = {"==", "!=", "<", "<=", ">", ">=", "~", "contains"};

bool isOperator(const std::string& w) {
    return std::find(Operators.begin(), Operators.end(), w) != Operators.end();
}

std::vector<std::string> wordsOf(const std::string& text) {
    SessionScript::Line line;
    std::string error;
    if (!SessionScript::split(text, line, error)) {
        return {text};
    }
    return line.words;
}

bool numbersOf(const std::vector<std::string>& words, std::vector<double>& out) {
    out.clear();
    for (const std::string& w : words) {
        double v = 0.0;
        if (!SessionArgs::parseNumber(w, v)) {
            return false;
        }
        out.push_back(v);
    }
    return !out.empty();
}

std::string joined(const std::vector<std::string>& words) {
    std::string out;
    for (const std::string& w : words) {
        out += (out.empty() ? "" : " ") + w;
    }
    return out;
}

EvKeyCode::KeyCode keyArg(SessionArgs& args) {
    const std::string name = args.word("key name");
    const EvKeyCode::KeyCode key = EvKeyCode::fromName(name.c_str());
    if (key == EvKeyCode::KeyNone) {
        throw SessionArgs::Error("unknown key \"" + name + "\"");
    }
    return key;
}

} // namespace

SessionInterpreter::SessionInterpreter(HostSession& session)
    : SessionInterpreter(session, Options()) {}

SessionInterpreter::SessionInterpreter(HostSession& session, Options options)
    : _session(session)
    , _options(std::move(options))
    , _probe(session)
    , _driver(session.getViewer()) {
    addCommands();
}

SessionInterpreter::~SessionInterpreter() = default;

std::ostream& SessionInterpreter::out() const {
    return _options.out ? *_options.out : std::cout;
}

void SessionInterpreter::addCommand(const std::string& name, Command command) {
    _commands[name] = std::move(command);
}

std::string SessionInterpreter::inputPath(const std::string& path) const {
    const std::filesystem::path p(path);
    if (p.is_absolute()) {
        return path;
    }
    const std::filesystem::path beside =
        _options.inputDir.empty() ? p : std::filesystem::path(_options.inputDir) / p;
    std::error_code ec;
    if (!std::filesystem::exists(beside, ec) && !_options.outputDir.empty()) {
        // A file the session wrote itself.
        const std::filesystem::path written = std::filesystem::path(_options.outputDir) / p;
        if (std::filesystem::exists(written, ec)) {
            return written.string();
        }
    }
    return beside.string();
}

std::string SessionInterpreter::outputPath(const std::string& path) const {
    std::filesystem::path p(path);
    if (!p.is_absolute() && !_options.outputDir.empty()) {
        p = std::filesystem::path(_options.outputDir) / p;
    }
    if (p.has_parent_path()) {
        std::error_code ec;
        std::filesystem::create_directories(p.parent_path(), ec);
    }
    return p.string();
}

void SessionInterpreter::run(const SessionScript& script) {
    const auto& lines = script.getLines();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        execute(lines[i], script.getSource());
        if (_options.progress) {
            _options.progress(i + 1, lines.size());
        }
    }
}

void SessionInterpreter::execute(const std::string& text, const std::string& source) {
    SessionScript::Line line;
    line.number = 1;
    std::string error;
    if (!SessionScript::split(text, line, error)) {
        throw SessionError(source, 1, error);
    }
    if (!line.words.empty()) {
        execute(line, source);
    }
}

void SessionInterpreter::execute(const SessionScript::Line& line, const std::string& source) {
    const std::string& name = line.words.front();
    const auto it = _commands.find(name);
    if (it == _commands.end()) {
        throw SessionError(source, line.number, "unknown command \"" + name + "\"");
    }
    _line = &line;
    try {
        SessionArgs args(line.words, line.quoted);
        it->second(args);
    } catch (const SessionArgs::Error& e) {
        _line = nullptr;
        throw SessionError(source, line.number, e.what());
    } catch (const SessionError&) {
        _line = nullptr;
        throw;
    }
    _line = nullptr;
    HostSession::settle();
}

RCShdPtr<PiInput> SessionInterpreter::writableInput(SessionArgs& args) {
    return _probe.findInput(args.word("input name"));
}

void SessionInterpreter::addCommands() {
    HostSession& s = _session;
    ViewerDriver& d = _driver;

    // --- the keyer and the viewer
    addCommand("keyer", [&s](SessionArgs& a) {
        int generation = 1;
        int nodes = 1;
        while (!a.atEnd()) {
            const std::string w = a.choice("keyer option", {"variant", "nodes"});
            if (w == "variant") {
                generation = std::stoi(a.choice("keyer variant", {"1", "2"}));
            } else {
                nodes = a.integer("number of keyer nodes");
                if (nodes < 1 || nodes > 64) {
                    throw SessionArgs::Error("a keyer holds 1 to 64 keyer nodes, not " +
                                             std::to_string(nodes));
                }
            }
        }
        s.makeKeyer(generation, nodes);
    });
    addCommand("viewer", [&s](SessionArgs& a) {
        const std::vector<std::string> stages = s.getViewer().getStages();
        const std::string stage = a.word("viewer stage");
        a.end();
        if (std::find(stages.begin(), stages.end(), stage) == stages.end()) {
            std::string list;
            for (const std::string& st : stages) {
                list += (list.empty() ? "" : ", ") + st;
            }
            throw SessionArgs::Error("the viewer's node has no stage \"" + stage +
                                     "\" (its stages: " + (list.empty() ? "none" : list) + ")");
        }
        if (!s.getViewer().setStage(stage)) {
            throw SessionArgs::Error("the viewer could not show stage \"" + stage +
                                     "\" (see the report before)");
        }
    });
    addCommand("window", [&s](SessionArgs& a) {
        const int width = a.integer("window width");
        const int height = a.integer("window height");
        a.end();
        if (width < 64 || height < 64 || width > 16384 || height > 16384) {
            throw SessionArgs::Error("a viewer window is 64 to 16384 pixels each way");
        }
        s.getViewer().resize(width, height);
        s.getViewer().fitImage();
    });
    addCommand("zoom", [&s](SessionArgs& a) {
        const double zoom = a.number("zoom");
        a.end();
        if (!(zoom >= 1.0 / 1024 && zoom <= 1024)) {
            throw SessionArgs::Error("a zoom is 1/1024 to 1024");
        }
        UiViewer& viewer = s.getViewer();
        VwView& view = viewer.getMutableView();
        view.setViewportSize(viewer.width(), viewer.height());
        const GePoint2<double> centre =
            ViewerDriver::centreOf(view, viewer.width(), viewer.height());
        view.setZoom(static_cast<float>(zoom));
        view.setPan(ViewerDriver::panFor(view, viewer.width(), viewer.height(), centre));
        viewer.redraw();
    });
    addCommand("pan", [&s](SessionArgs& a) {
        const GePoint2<double> p = a.point("plate point");
        a.end();
        UiViewer& viewer = s.getViewer();
        VwView& view = viewer.getMutableView();
        view.setViewportSize(viewer.width(), viewer.height());
        view.setPan(ViewerDriver::panFor(view, viewer.width(), viewer.height(), p));
        viewer.redraw();
    });
    addCommand("fit", [&s](SessionArgs& a) {
        a.end();
        s.getViewer().fitImage();
    });
    addCommand("tool", [&s](SessionArgs& a) {
        const std::string name = a.word("tool name");
        a.end();
        if (!s.setTool(name)) {
            throw SessionArgs::Error("no stage of the viewer's node has a tool \"" + name + "\"");
        }
    });
    addCommand("frame", [&s](SessionArgs& a) {
        const double frame = a.number("frame");
        a.end();
        s.setFrame(frame);
    });

    // --- pointer and keys
    auto pointer = [&d](auto action) {
        return [&d, action](SessionArgs& a) {
            const GePoint2<double> p = a.point("point");
            unsigned modifiers = 0;
            EvButton button = EvButton::Left;
            a.modifiersAndButton(modifiers, &button);
            action(d, p, modifiers, button);
        };
    };
    addCommand("press", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m, EvButton b) {
                   dr.press(p, m, b);
               }));
    addCommand("release", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m, EvButton b) {
                   dr.release(p, m, b);
               }));
    addCommand("click", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m, EvButton b) {
                   dr.click(p, m, b);
               }));
    addCommand("move", [&d](SessionArgs& a) {
        const GePoint2<double> p = a.point("point");
        unsigned modifiers = 0;
        a.modifiersAndButton(modifiers, nullptr);
        d.move(p, modifiers);
    });
    addCommand("drag", [&d](SessionArgs& a) {
        const GePoint2<double> from = a.point("start point");
        const GePoint2<double> to = a.point("end point");
        int steps = 10;
        if (a.take("steps")) {
            steps = a.integer("number of steps");
            if (steps < 1 || steps > 1000000) {
                throw SessionArgs::Error("a drag takes 1 to 1000000 steps");
            }
        }
        unsigned modifiers = 0;
        EvButton button = EvButton::Left;
        a.modifiersAndButton(modifiers, &button);
        d.drag(from, to, steps, modifiers, button);
    });
    auto keyCommand = [&d](bool down, bool up) {
        return [&d, down, up](SessionArgs& a) {
            const EvKeyCode::KeyCode key = keyArg(a);
            unsigned modifiers = 0;
            a.modifiersAndButton(modifiers, nullptr);
            if (ViewerDriver::toQtKey(key) == 0) {
                throw SessionArgs::Error(std::string("key \"") + EvKeyCode::toName(key) +
                                         "\" cannot be typed");
            }
            if (down) {
                d.keyDown(key, modifiers);
            }
            if (up) {
                d.keyUp(key, modifiers);
            }
        };
    };
    addCommand("key", keyCommand(true, true));
    addCommand("keydown", keyCommand(true, false));
    addCommand("keyup", keyCommand(false, true));
    addCommand("hotkey", [&d, &s](SessionArgs& a) {
        const std::string name = a.word("hotkey entry name");
        a.end();
        UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
        const unsigned entry = registry.findEntry(UiHotkeyRegistry::TesseraDomain, name);
        if (!entry) {
            throw SessionArgs::Error("no hotkey entry \"" + name + "\"");
        }
        if (!d.hotkey(entry)) {
            throw SessionArgs::Error("hotkey \"" + name + "\" is not taken by the viewer (stage " +
                                     (s.getViewer().getStage().empty()
                                          ? std::string("none")
                                          : "\"" + s.getViewer().getStage() + "\"") +
                                     ")");
        }
    });

    // --- nodes
    auto nodeArg = [&s](SessionArgs& a) {
        const std::string name = a.word("node name");
        RCShdPtr<PiNode> node = s.findNode(name);
        if (!node) {
            throw SessionArgs::Error("no node \"" + name + "\" in the keyer");
        }
        return node;
    };
    addCommand("select", [&s, nodeArg](SessionArgs& a) {
        if (a.take("none")) {
            a.end();
            s.select(RCShdPtr<PiNode>());
            return;
        }
        const RCShdPtr<PiNode> node = nodeArg(a);
        a.end();
        s.select(node);
    });
    addCommand("rename", [&s, nodeArg](SessionArgs& a) {
        const RCShdPtr<PiNode> node = nodeArg(a);
        const std::string name = a.word("new name");
        a.end();
        if (name.empty() || name.find('/') != std::string::npos) {
            throw SessionArgs::Error("a node name is not empty and holds no '/'");
        }
        s.rename(node, name);
    });
    addCommand("remove", [&s, nodeArg](SessionArgs& a) {
        const RCShdPtr<PiNode> node = nodeArg(a);
        a.end();
        if (!s.remove(node)) {
            throw SessionArgs::Error("node \"" + node->getName() + "\" cannot be removed");
        }
    });

    // --- inputs, as the parameter editor edits them
    auto write = [this, &s](bool asKey) {
        return [this, &s, asKey](SessionArgs& a) {
            const RCShdPtr<PiInput> input = writableInput(a);
            const std::vector<std::string> words = a.restWords();
            PiValue value;
            std::string error;
            if (!SessionProbe::parseValue(input->getType(), words, value, error)) {
                throw SessionArgs::Error("input \"" + input->getName() + "\": " + error);
            }
            bool written = false;
            exContain("session: writing " + input->getName(), [&] {
                written = asKey ? input->setKey(s.getFrame(), value)
                                : input->setValue(s.getFrame(), value);
            });
            if (!written) {
                throw SessionArgs::Error("input \"" + input->getName() + "\" refused the value" +
                                         (input->isLocked() ? " (it is locked)"
                                          : asKey && !input->isAnimatable()
                                              ? " (it does not animate)"
                                              : ""));
            }
        };
    };
    addCommand("set", write(false));
    addCommand("animate", write(true));
    auto lock = [this](bool locked) {
        return [this, locked](SessionArgs& a) {
            const RCShdPtr<PiInput> input = writableInput(a);
            a.end();
            exContain("session: locking " + input->getName(), [&] { input->setLocked(locked); });
        };
    };
    addCommand("lock", lock(true));
    addCommand("unlock", lock(false));

    // --- history and setups
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
    addCommand("undo", history(false));
    addCommand("redo", history(true));
    addCommand("save", [this, &s](SessionArgs& a) {
        const std::string path = outputPath(a.word("setup file"));
        a.end();
        std::string error;
        if (!s.saveSetup(path, error)) {
            throw SessionArgs::Error(error);
        }
    });
    addCommand("load", [this, &s](SessionArgs& a) {
        const std::string path = inputPath(a.word("setup file"));
        a.end();
        std::string error;
        if (!s.loadSetup(path, error)) {
            throw SessionArgs::Error(error);
        }
    });

    // --- reading the state
    addCommand("expect", [this](SessionArgs& a) { expect(a, _line->words, _line->quoted); });
    addCommand("print", [this](SessionArgs& a) { print(a); });
    addCommand("echo", [this](SessionArgs& a) { out() << a.rest() << "\n"; });
}

void SessionInterpreter::print(SessionArgs& args) {
    if (args.atEnd()) {
        throw SessionArgs::Error("missing what to print");
    }
    for (const std::string& line : _probe.listing(args)) {
        out() << line << "\n";
    }
    args.end();
    out().flush();
}

void SessionInterpreter::expect(SessionArgs& args, const std::vector<std::string>& words,
                                const std::vector<bool>& quoted) {
    // expect WHAT... OP VALUE... [within TOLERANCE]
    std::size_t op = 1;
    while (op < words.size() && (quoted[op] || !isOperator(words[op]))) {
        ++op;
    }
    if (op == 1) {
        throw SessionArgs::Error("missing what to expect");
    }
    if (op == words.size()) {
        throw SessionArgs::Error("missing the comparison (==, !=, <, <=, >, >=, ~ or contains)");
    }
    const std::vector<std::string> whatWords(words.begin(), words.begin() + op);
    const std::vector<bool> whatQuoted(quoted.begin(), quoted.begin() + op);
    SessionArgs what(whatWords, whatQuoted);
    const std::string actual = _probe.value(what);
    what.end();

    std::vector<std::string> expected(words.begin() + op + 1, words.end());
    double tolerance = 1e-3;
    if (expected.size() >= 2 && expected[expected.size() - 2] == "within") {
        if (!SessionArgs::parseNumber(expected.back(), tolerance) || tolerance < 0.0) {
            throw SessionArgs::Error("bad tolerance \"" + expected.back() + "\"");
        }
        expected.resize(expected.size() - 2);
    }
    if (expected.empty()) {
        throw SessionArgs::Error("missing the expected value");
    }
    std::string failure;
    if (!compare(actual, words[op], expected, tolerance, failure)) {
        std::string whatText;
        for (std::size_t i = 1; i < whatWords.size(); ++i) {
            whatText += (i > 1 ? " " : "") + SessionScript::quote(whatWords[i]);
        }
        throw SessionArgs::Error("expected " + whatText + " " + words[op] + " " + joined(expected) +
                                 ", but it is " + actual +
                                 (failure.empty() ? "" : " (" + failure + ")"));
    }
    while (!args.atEnd()) {
        args.word("");
    }
    ++_expects;
}

bool SessionInterpreter::compare(const std::string& actual, const std::string& op,
                                 const std::vector<std::string>& expected, double tolerance,
                                 std::string& failure) {
    const std::vector<std::string> actualWords = wordsOf(actual);
    std::vector<double> a;
    std::vector<double> e;
    const bool numeric = numbersOf(actualWords, a) && numbersOf(expected, e);
    if (op == "contains") {
        return actual.find(joined(expected)) != std::string::npos;
    }
    if (op == "==" || op == "!=") {
        bool equal = false;
        if (numeric && a.size() == e.size()) {
            equal = true;
            for (std::size_t i = 0; i < a.size(); ++i) {
                const double scale = std::max({1.0, std::fabs(a[i]), std::fabs(e[i])});
                equal = equal && std::fabs(a[i] - e[i]) <= 1e-6 * scale;
            }
        } else {
            equal = joined(actualWords) == joined(expected);
        }
        return op == "==" ? equal : !equal;
    }
    if (!numeric || a.size() != e.size() || (op != "~" && a.size() != 1)) {
        throw SessionArgs::Error("\"" + op + "\" compares numbers, and \"" + actual + "\" and \"" +
                                 joined(expected) + "\" are not " +
                                 (op == "~" ? "as many numbers" : "one number each"));
    }
    if (op == "~") {
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (std::fabs(a[i] - e[i]) > tolerance) {
                failure = "more than " + SessionArgs::format(tolerance) + " apart";
                return false;
            }
        }
        return true;
    }
    if (op == "<") {
        return a[0] < e[0];
    }
    if (op == "<=") {
        return a[0] <= e[0];
    }
    if (op == ">") {
        return a[0] > e[0];
    }
    return a[0] >= e[0];
}
