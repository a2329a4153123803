// The structured fuzzer: bytes decoded into a bounded stream of user actions
// on a real host session, across every tool and panel of the keyer. An
// action is a session-script line carried out by the session's interpreter
// (pointer press, move and release with modifiers, keys, hotkeys, widget
// actions, tool and stage switches, frames, edits, undo and redo, nodes
// selected, renamed and removed, setups saved and loaded), or one of the
// harness's own: extra viewers and panels made, driven and destroyed, the
// focus moved between viewers, and a destruction armed to happen in the
// middle of the next value-changed callback.
//
// After each stream, once the buttons and keys still held are let go:
//   - no undo step is open;
//   - the host reported nothing (no tool or panel failed on the way);
//   - undoing every step gives the keyer group's first setup text exactly,
//     redoing them gives its last;
// and, over the whole run, no sanitizer report.
//
// TESSERA_FUZZ_TRACE=1 prints each stream as the script it is (harness
// actions as comments), with what was refused: a failing input replays
// through tessera-run once the comments are read.
#include "fuzzSupport.h"

#include "host/hostSession.h"
#include "host/imageCommands.h"
#include "host/outputWriter.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"
#include "host/sessionScript.h"
#include "host/viewerDriver.h"
#include "host/widgetCommands.h"

#include <base/cbMethod.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsSetup.h>
#include <ui/uiDualState.h>
#include <ui/uiLabel.h>
#include <ui/uiMenu.h>
#include <ui/uiPanel.h>
#include <ui/uiPushButton.h>
#include <ui/uiTrackball.h>
#include <ui/uiValueEditor.h>
#include <ui/uiViewer.h>
#include <ui/uiWidgetAdapter.h>
#include <ui/uiWorkspace.h>

#include <fuzzer/FuzzedDataProvider.h>

#include <QCoreApplication>
#include <QFocusEvent>
#include <QWidget>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int MaxActions = 64;
constexpr int MaxExtraViewers = 2;
constexpr int MaxExtraPanels = 2;

const std::array<const char*, 7> Tools = {"Pick Key Colour 1", "Pick Key Colour 2", "Sample Matte",
                                          "Sample Patch",      "Sample Degrain",    "Adjust Spill",
                                          "Adjust Blend"};
const std::array<const char*, 13> Hotkeys = {
    "Sample Matte",   "Sample Patch 1", "Sample Patch 2", "Sample Patch 3", "Sample Patch 4",
    "Sample Patch 5", "Sample Patch 6", "Sample Patch 7", "Sample Patch 8", "Sample Patch 9",
    "Sample Degrain", "Adjust Spill",   "Adjust Blend"};
const std::array<const char*, 16> Keys = {"Escape", "Shift", "Control", "Alt", "M", "G",
                                          "S",      "B",     "1",       "2",   "9", "Space",
                                          "Return", "Home",  "Delete",  "Left"};
const std::array<const char*, 3> Stages = {"matte", "degrain", "spill"};
const std::array<const char*, 5> Views = {"source", "matte", "status", "foreground", "composite"};
const std::array<const char*, 7> NodeNames = {"keyer1", "keyer2", "keyer3", "Tessera",
                                              "hair",   "keyer1", "keyer12"};
const std::array<const char*, 3> StagePanels = {"tsMatteGen", "tsDegrain", "tsSpillBlend"};

// Inputs as the parameter editor edits them, with the kind of value each
// takes.
enum class Kind { Unit, Colour, Mode, Patch, Flag };
struct Editable {
    const char* name;
    Kind kind;
};
const std::array<Editable, 20> Inputs = {{
    {"overall", Kind::Unit},         {"shadows", Kind::Unit},       {"highlights", Kind::Unit},
    {"deepHuePlus", Kind::Unit},     {"hueMinus", Kind::Unit},      {"edgeSoftness", Kind::Unit},
    {"keyBlend", Kind::Unit},        {"keyColor1", Kind::Colour},   {"keyColor2", Kind::Colour},
    {"currentPatch", Kind::Patch},   {"patch1.mode", Kind::Mode},   {"patch1.range", Kind::Unit},
    {"patch1.softness", Kind::Unit}, {"degrain.on", Kind::Flag},    {"spill.amount", Kind::Unit},
    {"spill.range", Kind::Unit},     {"blend.amount", Kind::Unit},  {"blend.width", Kind::Unit},
    {"edgeBalance.x", Kind::Unit},   {"edgeBalance.y", Kind::Unit},
}};

struct Stats {
    long streams = 0;
    long actions = 0;
    long refused = 0;
    ~Stats() {
        if (streams) {
            std::cerr << "fuzz: " << streams << " streams, " << actions << " actions (" << refused
                      << " refused as a script would be)\n";
        }
    }
};
Stats stats;

std::shared_ptr<const TsDemoPlate> demoPlate() {
    static const std::shared_ptr<const TsDemoPlate> plate = [] {
        TsDemoPlate::Options options;
        options.width = 96;
        options.height = 64;
        return std::make_shared<const TsDemoPlate>(options);
    }();
    return plate;
}

std::string number(double value) {
    return SessionArgs::format(value);
}

// A viewer of the harness's own, beside the session's.
struct ExtraViewer {
    std::unique_ptr<UiViewer> viewer;
    std::unique_ptr<ViewerDriver> driver;
};

// One stream: a session, the harness's viewers and panels, and the decoder.
class Stream {
public:
    explicit Stream(FuzzedDataProvider& data)
        : _data(data)
        , _session(nullptr, 240, 160, nullptr)
        , _writer(_session) {
        SessionInterpreter::Options options;
        options.inputDir = dir().string();
        options.outputDir = dir().string();
        options.out = &_printed;
        _interpreter = std::make_unique<SessionInterpreter>(_session, options);
        _listener = ExReporter::getInstance().addListener(
            [this](const ExReporter::Report& r) { _unexplained.push_back(r.text()); });
        ImageCommands::add(*_interpreter, _writer);
        WidgetCommands::add(*_interpreter);
    }

    ~Stream() {
        ExReporter::getInstance().removeListener(_listener);
        if (_group) {
            _group->getController()->removeCallback<PiNodeEvent::NodeRemovedFromGroup>(&_onRemoved);
        }
        disarm();
        while (!_panels.empty()) {
            destroyPanel(0, false);
        }
        while (!_viewers.empty()) {
            destroyViewer(0, false);
        }
        _interpreter.reset();
    }

    static std::filesystem::path dir() { return fuzz::scratch() / "stream"; }

    void run() {
        const int generation = _data.ConsumeBool() ? 2 : 1;
        const int nodes = _data.ConsumeIntegralInRange(1, 3);
        line("keyer variant " + std::to_string(generation) + " nodes " + std::to_string(nodes));
        _session.setDemoPlate(demoPlate());
        trace("plate demo 96 64");
        _group = _session.getKeyer();
        _group->getController()->addCallback<PiNodeEvent::NodeRemovedFromGroup>(&_onRemoved);
        const std::string first = setupText();
        FUZZ_CHECK(_session.getCommandStack().getStepCount() == 0, "a new keyer has no history");

        for (int i = 0; i < MaxActions && _data.remaining_bytes() > 0; ++i) {
            const int undoable = _session.getCommandStack().getUndoCount();
            act();
            ++stats.actions;
            if (_session.getCommandStack().getUndoCount() != undoable) {
                trace("#   undo: " + std::to_string(_session.getCommandStack().getUndoCount()) +
                      " steps, the last \"" + _session.getCommandStack().getUndoName() + "\"");
            }
        }
        letGo();
        check(first);
    }

private:
    // --- carrying out

    void trace(const std::string& text) const {
        if (fuzz::tracing()) {
            std::cerr << text << "\n";
        }
    }

    // A line of the session language; a refusal is what a script would get,
    // and what the host reported on the way explains it.
    void line(const std::string& text) {
        trace(text);
        const std::size_t reports = _unexplained.size();
        try {
            _interpreter->execute(text, "stream");
        } catch (const SessionError& e) {
            ++stats.refused;
            trace("#   refused: " + e.getMessage());
            _unexplained.resize(reports);
        }
    }

    template <class T, std::size_t N>
    const T& pick(const std::array<T, N>& items) {
        return items[_data.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
    }

    std::string point() {
        const int x = _data.ConsumeIntegralInRange(-12, 108);
        const int y = _data.ConsumeIntegralInRange(-12, 76);
        const double half = _data.ConsumeBool() ? 0.5 : 0.0;
        return number(x + half) + " " + number(y + half);
    }

    std::string modifiers() {
        const auto mask = _data.ConsumeIntegral<std::uint8_t>();
        std::string out;
        const char* const names[] = {"shift", "alt", "ctrl", "meta"};
        for (int m = 0; m < 4; ++m) {
            if (mask & (1u << m) && mask & 0x10) {
                out += std::string(" ") + names[m];
            }
        }
        return out;
    }

    std::string button() {
        switch (_data.ConsumeIntegralInRange(0, 7)) {
        case 6:
            return " right";
        case 7:
            return " middle";
        default:
            return "";
        }
    }

    std::string value(Kind kind) {
        switch (kind) {
        case Kind::Unit:
            return number(_data.ConsumeIntegralInRange(-4, 24) / 16.0);
        case Kind::Colour:
            return number(_data.ConsumeIntegralInRange(0, 16) / 16.0) + " " +
                   number(_data.ConsumeIntegralInRange(0, 16) / 16.0) + " " +
                   number(_data.ConsumeIntegralInRange(0, 16) / 16.0);
        case Kind::Mode:
            return std::to_string(_data.ConsumeIntegralInRange(0, 4));
        case Kind::Patch:
            return std::to_string(_data.ConsumeIntegralInRange(0, 3));
        case Kind::Flag:
            return _data.ConsumeBool() ? "true" : "false";
        }
        return "0";
    }

    std::string inputName() {
        const Editable& input = pick(Inputs);
        std::string name = input.name;
        if (_data.ConsumeIntegralInRange(0, 3) == 0) {
            name = std::string(pick(NodeNames)) + "/" + name;
        }
        return name;
    }

    // The viewer a pointer or key action goes to: 0 the session's, k the
    // harness's k-th.
    int viewerIndex() {
        return _viewers.empty()
                   ? 0
                   : _data.ConsumeIntegralInRange(0, static_cast<int>(_viewers.size()));
    }

    void act() {
        switch (_data.ConsumeIntegralInRange(0, 31)) {
        case 0:
        case 1:
            pointer("press", true);
            break;
        case 2:
        case 3:
            pointer("move", false);
            break;
        case 4:
        case 5:
            pointer("release", true);
            break;
        case 6:
            pointer("click", true);
            break;
        case 7:
        case 8:
            drag();
            break;
        case 9:
            key();
            break;
        case 10:
            line("hotkey \"" + std::string(pick(Hotkeys)) + "\"");
            break;
        case 11:
        case 12:
            widget();
            break;
        case 13:
            line("tool \"" + std::string(pick(Tools)) + "\"");
            break;
        case 14:
            line(std::string("viewer ") + pick(Stages));
            break;
        case 15:
            line("frame " + std::to_string(_data.ConsumeIntegralInRange(-2, 30)));
            break;
        case 16: {
            const Editable& input = pick(Inputs);
            line(std::string(_data.ConsumeBool() ? "set " : "animate ") + input.name + " " +
                 value(input.kind));
            break;
        }
        case 17:
            line((_data.ConsumeBool() ? "lock " : "unlock ") + inputName());
            break;
        case 18:
        case 19: {
            const int steps = _data.ConsumeIntegralInRange(1, 3);
            line((_data.ConsumeBool() ? "undo " : "redo ") + std::to_string(steps));
            break;
        }
        case 20:
            line(_data.ConsumeIntegralInRange(0, 4) == 0
                     ? std::string("select none")
                     : "select " + TsValueText::quoteWord(pick(NodeNames)));
            break;
        case 21:
            line("rename " + TsValueText::quoteWord(pick(NodeNames)) + " " +
                 TsValueText::quoteWord(pick(NodeNames)));
            break;
        case 22:
            line("remove " + TsValueText::quoteWord(pick(NodeNames)));
            break;
        case 23:
            line(_data.ConsumeBool() ? "save stream.setup" : "load stream.setup");
            break;
        case 24:
            view();
            break;
        case 25:
            makeViewer();
            break;
        case 26:
            makePanel();
            break;
        case 27:
            destroy();
            break;
        case 28:
            focus();
            break;
        case 29:
            arm();
            break;
        case 30:
            line(std::string("view ") + pick(Views));
            break;
        default: {
            const char* const what[] = {"manipulators", "bars", "draw", "tool", "undo"};
            line(std::string("print ") + what[_data.ConsumeIntegralInRange(0, 4)]);
            break;
        }
        }
    }

    void pointer(const std::string& kind, bool withButton) {
        const int v = viewerIndex();
        const std::string at = point();
        const std::string mods = modifiers();
        const std::string which = withButton ? button() : "";
        if (v == 0) {
            line(kind + " " + at + mods + which);
            return;
        }
        // An extra viewer: the same line, by its own driver.
        trace("# viewer " + std::to_string(v) + ": " + kind + " " + at + mods + which);
        const std::string text = kind + " " + at + mods + which;
        SessionScript::Line parsed;
        std::string error;
        SessionScript::split(text, parsed, error);
        SessionArgs args(parsed.words, parsed.quoted);
        const GePoint2<double> p = args.point("point");
        unsigned mask = 0;
        EvButton b = EvButton::Left;
        args.modifiersAndButton(mask, withButton ? &b : nullptr);
        _target = _viewers[v - 1]->viewer.get();
        ViewerDriver& d = *_viewers[v - 1]->driver;
        if (kind == "press") {
            d.press(p, mask, b);
        } else if (kind == "move") {
            d.move(p, mask);
        } else if (kind == "release") {
            d.release(p, mask, b);
        } else {
            d.click(p, mask, b);
        }
        _target = nullptr;
        HostSession::settle();
    }

    void drag() {
        const std::string from = point();
        const std::string to = point();
        line("drag " + from + " " + to + " steps " +
             std::to_string(_data.ConsumeIntegralInRange(1, 6)) + modifiers() + button());
    }

    void key() {
        const std::string name = pick(Keys);
        const std::string mods = modifiers();
        switch (_data.ConsumeIntegralInRange(0, 2)) {
        case 0:
            line("key " + name + mods);
            break;
        case 1:
            line("keydown " + name + mods);
            _held.push_back(name);
            break;
        default:
            line("keyup " + name + mods);
            std::erase(_held, name);
            break;
        }
    }

    void view() {
        switch (_data.ConsumeIntegralInRange(0, 3)) {
        case 0:
            line("zoom " + number(_data.ConsumeIntegralInRange(1, 32) / 4.0));
            break;
        case 1:
            line("pan " + point());
            break;
        case 2:
            line("window " + std::to_string(_data.ConsumeIntegralInRange(64, 400)) + " " +
                 std::to_string(_data.ConsumeIntegralInRange(64, 300)));
            break;
        default:
            line("fit");
            break;
        }
    }

    // A widget of a panel of the session (by the session language) or of an
    // extra panel (through the same toolkit entries), with an action of its
    // kind.
    void widget() {
        const int p =
            _panels.empty() ? 0 : _data.ConsumeIntegralInRange(0, static_cast<int>(_panels.size()));
        if (p > 0) {
            panelWidget(p - 1);
            return;
        }
        const std::vector<std::string>& panels = HostSession::getPanelNames();
        const std::string panel =
            panels[_data.ConsumeIntegralInRange<std::size_t>(0, panels.size() - 1)];
        const std::vector<RCShdPtr<PiWidget>> widgets = WidgetCommands::widgetsOf(_session, panel);
        if (widgets.empty()) {
            line("widget " + panel + " none toggle");
            return;
        }
        const RCShdPtr<PiWidget>& w =
            widgets[_data.ConsumeIntegralInRange<std::size_t>(0, widgets.size() - 1)];
        const std::string kind = WidgetCommands::kindOf(*w);
        std::string action = "toggle";
        if (kind == "button") {
            action = "press";
        } else if (kind == "menu") {
            action = "select " + std::to_string(_data.ConsumeIntegralInRange(0, 4));
        } else if (kind == "number field") {
            action = "set " + number(_data.ConsumeIntegralInRange(-4, 24) / 16.0);
        } else if (kind == "trackball") {
            action = "drag " + std::to_string(_data.ConsumeIntegralInRange(-20, 20)) + " " +
                     std::to_string(_data.ConsumeIntegralInRange(-20, 20)) + " steps " +
                     std::to_string(_data.ConsumeIntegralInRange(1, 4));
        } else if (kind == "label") {
            action = "resize " + std::to_string(_data.ConsumeIntegralInRange(0, 200));
        }
        line("widget " + panel + " " + TsValueText::quoteWord(w->getName()) + " " + action +
             modifiers());
    }

    void panelWidget(int index) {
        UiPanel& panel = *_panels[static_cast<std::size_t>(index)];
        std::vector<RCShdPtr<UiWidgetAdapter>> widgets;
        for (QWidget* w : panel.findChildren<QWidget*>()) {
            if (!w->objectName().isEmpty() && !w->objectName().startsWith("qt_")) {
                if (RCShdPtr<UiWidgetAdapter> a = UiWidgetAdapter::of(w)) {
                    widgets.push_back(a);
                }
            }
        }
        if (widgets.empty()) {
            return;
        }
        const RCShdPtr<UiWidgetAdapter> w =
            widgets[_data.ConsumeIntegralInRange<std::size_t>(0, widgets.size() - 1)];
        const EvKeyboardState keys(_data.ConsumeBool() ? EvKeyboardState::ShiftMask : 0u);
        trace("# panel " + std::to_string(index + 1) + ": widget " + w->getName());
        _targetPanel = &panel;
        PiWidget* widget = w.get();
        if (auto* toggle = dynamic_cast<UiDualState*>(widget)) {
            toggle->click(keys);
        } else if (auto* menu = dynamic_cast<UiMenu*>(widget)) {
            if (menu->getItemCount() > 0) {
                const int item = _data.ConsumeIntegralInRange(0, menu->getItemCount() - 1);
                trace("#   choose \"" + menu->getItemText(item) + "\"");
                menu->choose(item, keys);
            }
        } else if (auto* field = dynamic_cast<UiValueEditor*>(widget)) {
            field->enter(_data.ConsumeIntegralInRange(-4, 24) / 16.0, keys);
        } else if (auto* ball = dynamic_cast<UiTrackball*>(widget)) {
            ball->drag(static_cast<float>(_data.ConsumeIntegralInRange(-20, 20)),
                       static_cast<float>(_data.ConsumeIntegralInRange(-20, 20)),
                       _data.ConsumeIntegralInRange(1, 4), keys);
        } else if (auto* button = dynamic_cast<UiPushButton*>(widget)) {
            button->click(keys);
        } else if (auto* label = dynamic_cast<UiLabel*>(widget)) {
            label->setWidth(_data.ConsumeIntegralInRange(0, 200));
        }
        _targetPanel = nullptr;
        HostSession::settle();
    }

    // --- the harness's viewers and panels

    RCShdPtr<PiNode> someKeyerNode() {
        const RCShdPtr<TsKeyerGroup>& group = _session.getKeyer();
        const int count = group->getKeyerNodeCount();
        if (count == 0) {
            return RCShdPtr<PiNode>();
        }
        return group->getKeyerNode(_data.ConsumeIntegralInRange(0, count - 1));
    }

    void makeViewer() {
        if (static_cast<int>(_viewers.size()) >= MaxExtraViewers) {
            return;
        }
        const RCShdPtr<PiNode> node = someKeyerNode();
        trace("# new viewer " + std::to_string(_viewers.size() + 1) + " on " +
              (node ? node->getName() : std::string("nothing")));
        auto extra = std::make_unique<ExtraViewer>();
        extra->viewer = std::make_unique<UiViewer>(nullptr, "fuzzViewer");
        extra->viewer->resize(_data.ConsumeIntegralInRange(64, 300),
                              _data.ConsumeIntegralInRange(64, 200));
        UiWorkspace::getInstance().addViewer(extra->viewer.get());
        exContain("fuzz: a viewer shows a node", [&] { extra->viewer->setNode(node); });
        extra->viewer->fitImage();
        extra->driver = std::make_unique<ViewerDriver>(*extra->viewer);
        _viewers.push_back(std::move(extra));
        HostSession::settle();
    }

    void makePanel() {
        if (static_cast<int>(_panels.size()) >= MaxExtraPanels) {
            return;
        }
        const RCShdPtr<const PiTimePath> time(
            new PiTimePath(&_session.getViewer().getTime(),
                           rcMake<PiPath>(RCShdPtr<PiNode>(_session.getKeyer()))));
        auto panel = std::make_unique<UiPanel>("fuzzPanel" + std::to_string(++_panelNames));
        const int kind = _data.ConsumeIntegralInRange(0, 3);
        if (kind == 0) {
            trace("# new panel " + std::to_string(_panels.size() + 1) + ": the group's");
            panel->setNode(_session.getKeyer(), time);
        } else {
            const RCShdPtr<PiNode> node = someKeyerNode();
            trace("# new panel " + std::to_string(_panels.size() + 1) + ": " +
                  StagePanels[kind - 1] + " of " +
                  (node ? node->getName() : std::string("nothing")));
            if (node) {
                panel->setStage(StagePanels[kind - 1], node, time);
            }
        }
        _panels.push_back(std::move(panel));
        HostSession::settle();
    }

    // Destroys a panel; `deferred` leaves the window-system widget to the
    // event loop (for a panel whose own widget is being used).
    void destroyPanel(std::size_t index, bool deferred) {
        std::unique_ptr<UiPanel> panel = std::move(_panels[index]);
        _panels.erase(_panels.begin() + static_cast<std::ptrdiff_t>(index));
        if (deferred) {
            exContain("fuzz: closing a panel",
                      [&] { panel->setNode(RCShdPtr<PiNode>(), RCShdPtr<const PiTimePath>()); });
            panel.release()->deleteLater();
        } else {
            exContain("fuzz: closing a panel", [&] { panel.reset(); });
        }
    }

    void destroyViewer(std::size_t index, bool deferred) {
        std::unique_ptr<ExtraViewer> extra = std::move(_viewers[index]);
        _viewers.erase(_viewers.begin() + static_cast<std::ptrdiff_t>(index));
        UiWorkspace::getInstance().removeViewer(extra->viewer.get());
        extra->driver.reset();
        if (deferred) {
            exContain("fuzz: a viewer lets its node go",
                      [&] { extra->viewer->setNode(RCShdPtr<PiNode>()); });
            extra->viewer.release()->deleteLater();
        } else {
            exContain("fuzz: closing a viewer", [&] { extra->viewer.reset(); });
        }
    }

    void destroy() {
        const bool viewer = _data.ConsumeBool();
        if (viewer && !_viewers.empty()) {
            const auto i = _data.ConsumeIntegralInRange<std::size_t>(0, _viewers.size() - 1);
            trace("# close viewer " + std::to_string(i + 1));
            destroyViewer(i, false);
        } else if (!viewer && !_panels.empty()) {
            const auto i = _data.ConsumeIntegralInRange<std::size_t>(0, _panels.size() - 1);
            trace("# close panel " + std::to_string(i + 1));
            destroyPanel(i, false);
        }
        HostSession::settle();
    }

    // The focus goes to a viewer (which becomes the current one) or leaves
    // it, as the window system tells it.
    void focus() {
        const int v = viewerIndex();
        QWidget* widget = v == 0 ? static_cast<QWidget*>(&_session.getViewer())
                                 : _viewers[static_cast<std::size_t>(v - 1)]->viewer.get();
        const bool in = _data.ConsumeBool();
        trace("# focus " + std::string(in ? "into" : "out of") + " viewer " + std::to_string(v));
        QFocusEvent event(in ? QEvent::FocusIn : QEvent::FocusOut, Qt::MouseFocusReason);
        QCoreApplication::sendEvent(widget, &event);
        HostSession::settle();
    }

    // The next value change of any keyer node destroys a viewer or a panel
    // of the harness's from inside the callback: at once, or deferred when
    // it is the one being used.
    void arm() {
        disarm();
        _armedViewer = _data.ConsumeBool();
        trace(std::string("# armed: the next value change closes a ") +
              (_armedViewer ? "viewer" : "panel"));
        const RCShdPtr<TsKeyerGroup>& group = _session.getKeyer();
        for (int i = 0; i < group->getKeyerNodeCount(); ++i) {
            const RCShdPtr<PiNodeController>& controller = group->getKeyerNode(i)->getController();
            controller->addCallback<PiNodeEvent::ValueChanged>(&_onValue);
            _armed.push_back(controller);
        }
    }

    void disarm() {
        for (const RCShdPtr<PiNodeController>& controller : _armed) {
            controller->removeCallback<PiNodeEvent::ValueChanged>(&_onValue);
        }
        _armed.clear();
    }

    void valueChanged(const PiNodeEvent&) {
        const bool viewer = _armedViewer;
        disarm();
        if (viewer && !_viewers.empty()) {
            const bool inUse = _viewers.back()->viewer.get() == _target;
            trace("#   closing viewer " + std::to_string(_viewers.size()) + " in the callback" +
                  (inUse ? " (deferred: in use)" : ""));
            destroyViewer(_viewers.size() - 1, inUse);
        } else if (!viewer && !_panels.empty()) {
            const bool inUse = _panels.back().get() == _targetPanel;
            trace("#   closing panel " + std::to_string(_panels.size()) + " in the callback" +
                  (inUse ? " (deferred: in use)" : ""));
            destroyPanel(_panels.size() - 1, inUse);
        }
    }

    // As the session does for its own viewer, the harness's viewers and
    // panels let a removed node go (its inputs are no longer the graph's).
    void nodeRemoved(const PiNodeEvent& event) {
        const PiNode* node = event.getNode().get();
        for (const auto& extra : _viewers) {
            if (extra->viewer->getNode().get() == node) {
                trace("#   viewer lets " + node->getName() + " go");
                exContain("fuzz: a viewer lets a removed node go",
                          [&] { extra->viewer->setNode(RCShdPtr<PiNode>()); });
            }
        }
        for (const auto& panel : _panels) {
            if (panel->getNode().get() == node) {
                trace("#   panel lets " + node->getName() + " go");
                exContain("fuzz: a panel lets a removed node go", [&] {
                    panel->setNode(RCShdPtr<PiNode>(), RCShdPtr<const PiTimePath>());
                });
            }
        }
    }

    // --- the end of a stream

    // The hand lets go: held buttons are released where the pointer is, held
    // keys come up.
    void letGo() {
        ViewerDriver& main = _interpreter->getDriver();
        for (const EvButton b : {EvButton::Left, EvButton::Middle, EvButton::Right}) {
            if (main.isButtonDown(b)) {
                line(std::string("release 0 0") + (b == EvButton::Right    ? " right"
                                                   : b == EvButton::Middle ? " middle"
                                                                           : ""));
            }
            // A release may close a viewer (an armed callback): look again
            // after each.
            for (bool released = true; released;) {
                released = false;
                for (const auto& extra : _viewers) {
                    if (extra->driver->isButtonDown(b)) {
                        _target = extra->viewer.get();
                        extra->driver->release(GePoint2<double>(0, 0), 0, b);
                        _target = nullptr;
                        released = true;
                        break;
                    }
                }
            }
        }
        for (const std::string& key : std::vector<std::string>(_held)) {
            line("keyup " + key);
        }
        _held.clear();
        HostSession::settle();
    }

    std::string setupText() const {
        LiString text;
        std::string error;
        FUZZ_CHECK(TsSetup::write(*_session.getKeyer(), text, error), "the keyer writes its setup");
        return text;
    }

    void check(const std::string& first) {
        PiCommandStack& stack = _session.getCommandStack();
        FUZZ_CHECK(!stack.isStepOpen(), "step \"" << stack.getOpenStepName() << "\" left open");
        const std::string last = setupText();
        const int done = stack.getUndoCount();
        trace("# " + std::to_string(done) + " steps to undo");
        FUZZ_CHECK(_session.undo(done) == done, "every step undoes");
        FUZZ_CHECK(!stack.isStepOpen(), "undo left a step open");
        const std::string undone = setupText();
        FUZZ_CHECK(undone == first, "undo of everything gives\n"
                                        << undone << "instead of\n"
                                        << first);
        FUZZ_CHECK(_session.redo(done) == done, "every step redoes");
        const std::string redone = setupText();
        FUZZ_CHECK(redone == last, "redo of everything gives\n"
                                       << redone << "instead of\n"
                                       << last);
        FUZZ_CHECK(_unexplained.empty(), _unexplained.size()
                                             << " reports, the first: " << _unexplained.front());
    }

    FuzzedDataProvider& _data;
    HostSession _session;
    OutputWriter _writer;
    std::ostringstream _printed;
    std::unique_ptr<SessionInterpreter> _interpreter;
    std::vector<std::unique_ptr<ExtraViewer>> _viewers;
    std::vector<std::unique_ptr<UiPanel>> _panels;
    int _panelNames = 0;
    std::vector<std::string> _held;
    // What the host reported that no refused line explains.
    std::vector<std::string> _unexplained;
    int _listener = 0;
    // What the harness's action in progress uses (a destruction in a
    // callback is deferred for it).
    QWidget* _target = nullptr;
    UiPanel* _targetPanel = nullptr;
    bool _armedViewer = false;
    std::vector<RCShdPtr<PiNodeController>> _armed;
    CbMethod<Stream, const PiNodeEvent> _onValue{this, &Stream::valueChanged};
    RCShdPtr<TsKeyerGroup> _group;
    CbMethod<Stream, const PiNodeEvent> _onRemoved{this, &Stream::nodeRemoved};
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::startHost();
    demoPlate();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider provider(data, size);
    std::filesystem::remove_all(Stream::dir());
    std::filesystem::create_directories(Stream::dir());
    ExReporter::getInstance().clear();
    {
        Stream stream(provider);
        stream.run();
    }
    HostSession::settle();
    ++stats.streams;
    return 0;
}
