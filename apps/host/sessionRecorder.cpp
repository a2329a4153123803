#include "sessionRecorder.h"

#include "hostSession.h"
#include "outputWriter.h"
#include "sessionArgs.h"
#include "sessionScript.h"
#include "viewerDriver.h"
#include "widgetCommands.h"

#include <base/exReporter.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piWidget.h>
#include <tesseraCore/setup/tsValueText.h>
#include <ui/uiDualState.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiMenu.h>
#include <ui/uiPushButton.h>
#include <ui/uiQtEvents.h>
#include <ui/uiTrackball.h>
#include <ui/uiValueEditor.h>
#include <ui/uiViewer.h>
#include <ui/uiWidgetEvent.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace {

std::string modifierWords(unsigned mask) {
    std::string words;
    if (mask & EvKeyboardState::ShiftMask) {
        words += " shift";
    }
    if (mask & EvKeyboardState::CtrlMask) {
        words += " ctrl";
    }
    if (mask & EvKeyboardState::AltMask) {
        words += " alt";
    }
    if (mask & EvKeyboardState::MetaMask) {
        words += " meta";
    }
    return words;
}

std::string buttonWord(EvButton button) {
    switch (button) {
    case EvButton::Middle:
        return " middle";
    case EvButton::Right:
        return " right";
    case EvButton::Left:
    case EvButton::None:
        break;
    }
    return "";
}

const int ActionKinds[] = {PiWidget::Activated, PiWidget::DragBegin, PiWidget::DragMove,
                           PiWidget::DragEnd};

} // namespace

// Hears the actions on one panel's widgets.
class SessionRecorder::PanelListener : public CbHandler<EvEvent> {
public:
    PanelListener(SessionRecorder& recorder, const std::string& panel)
        : _recorder(recorder)
        , _panel(panel) {}

    void callback(EvEvent& event) override { _recorder.widgetAction(_panel, event); }

    // Listens to the widgets of the panel's container, when it changed.
    void follow(const RCShdPtr<PiContainer>& container, const HostSession& session) {
        if (container.get() == _container.get()) {
            return;
        }
        _container = container;
        for (const RCShdPtr<PiWidget>& w : WidgetCommands::widgetsOf(session, _panel)) {
            for (int kind : ActionKinds) {
                w->addCallback(kind, this);
            }
        }
    }

private:
    SessionRecorder& _recorder;
    std::string _panel;
    RCShdPtr<PiContainer> _container;
};

SessionRecorder::Pause::Pause(SessionRecorder& recorder)
    : _recorder(recorder) {
    ++_recorder._paused;
}

SessionRecorder::Pause::~Pause() {
    --_recorder._paused;
}

SessionRecorder::SessionRecorder(HostSession& session)
    : _session(session) {
    // Before anything else that filters the application's events (grabs,
    // hotkeys): filters installed last run first.
    QCoreApplication::instance()->installEventFilter(this);
    refresh();
}

SessionRecorder::~SessionRecorder() {
    if (QCoreApplication::instance()) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
}

void SessionRecorder::refresh() {
    for (const std::string& panel : HostSession::getPanelNames()) {
        std::unique_ptr<PanelListener>& listener = _listeners[panel];
        if (!listener) {
            listener = std::make_unique<PanelListener>(*this, panel);
        }
        listener->follow(_session.getPanel(panel), _session);
    }
}

// --- lines

void SessionRecorder::record(const std::string& line) {
    flushMove();
    _lines.push_back(line);
}

void SessionRecorder::flushMove() {
    if (!_pendingMove.empty()) {
        _lines.push_back(_pendingMove);
        _pendingMove.clear();
    }
}

void SessionRecorder::addLine(const std::string& line) {
    // What the line does to the view (a plate fitted) depends on the
    // window's size: the view is written again before the next event.
    record(line);
}

void SessionRecorder::restore(const std::vector<std::string>& lines) {
    _lines = lines;
    _pendingMove.clear();
    _keyDown.clear();
    _width = -1;
    _height = -1;
}

std::vector<std::string> SessionRecorder::getLines() const {
    std::vector<std::string> lines = _lines;
    if (!_pendingMove.empty()) {
        lines.push_back(_pendingMove);
    }
    return lines;
}

std::string SessionRecorder::getText() const {
    std::string text = "# Recorded by tessera-studio: replay with tessera-run.\n";
    for (const std::string& line : getLines()) {
        text += line + "\n";
    }
    return text;
}

bool SessionRecorder::save(const std::string& path, std::string& error) const {
    return OutputWriter::writeBytes(getText(), path, error);
}

// The view as the replay must have it before the next event: the window's
// size, then the zoom and the pan, exactly.
void SessionRecorder::viewLines() {
    const UiViewer& viewer = _session.getViewer();
    const VwView& view = viewer.getView();
    const bool resized = viewer.width() != _width || viewer.height() != _height;
    if (resized) {
        record("window " + std::to_string(viewer.width()) + " " + std::to_string(viewer.height()));
        _width = viewer.width();
        _height = viewer.height();
    }
    if (resized || view.getZoom() != _zoom || !(view.getPan() == _pan)) {
        record("zoom " + SessionArgs::format(view.getZoom()));
        const GePoint2<double> centre = ViewerDriver::centreOf(view, _width, _height);
        record("pan " + SessionArgs::format(centre.x) + " " + SessionArgs::format(centre.y));
        _zoom = view.getZoom();
        _pan = view.getPan();
    }
}

// --- the viewer

bool SessionRecorder::isViewer(QObject* object) const {
    return object == &_session.getViewer();
}

bool SessionRecorder::eventFilter(QObject* watched, QEvent* event) {
    if (_paused) {
        return false;
    }
    if (!isViewer(watched)) {
        // A user's action on a panel begins with a press: by then the
        // panels' widgets built since the last action are listened to.
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::KeyPress) {
            refresh();
        }
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
        pointer(static_cast<const QMouseEvent&>(*event));
        break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        key(static_cast<const QKeyEvent&>(*event));
        break;
    default:
        break;
    }
    return false;
}

void SessionRecorder::pointer(const QMouseEvent& event) {
    // The middle button navigates the view: what it leaves is written with
    // the next event.
    if (event.button() == Qt::MiddleButton || (event.buttons() & Qt::MiddleButton)) {
        return;
    }
    const unsigned modifiers = UiQtEvents::toModifierMask(event.modifiers());
    if (event.type() == QEvent::MouseMove && event.buttons() == Qt::NoButton && modifiers == 0) {
        // Feedback only: the last of a run of them is enough.
        viewLines();
        const GePoint2<double> p = ViewerDriver::windowToPlate(
            _session.getViewer().getView(),
            {static_cast<float>(event.position().x()), static_cast<float>(event.position().y())});
        _pendingMove = "move " + SessionArgs::format(p.x) + " " + SessionArgs::format(p.y);
        return;
    }
    viewLines();
    const GePoint2<double> p = ViewerDriver::windowToPlate(
        _session.getViewer().getView(),
        {static_cast<float>(event.position().x()), static_cast<float>(event.position().y())});
    const std::string at = " " + SessionArgs::format(p.x) + " " + SessionArgs::format(p.y);
    const std::string mods = modifierWords(modifiers);
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        record("press" + at + mods + buttonWord(UiQtEvents::toButton(event)));
        break;
    case QEvent::MouseButtonRelease:
        record("release" + at + mods + buttonWord(UiQtEvents::toButton(event)));
        break;
    default:
        record("move" + at + mods);
        break;
    }
}

void SessionRecorder::key(const QKeyEvent& event) {
    if (event.isAutoRepeat()) {
        return;
    }
    const EvKeyCode::KeyCode code = UiQtEvents::toKeyCode(event.key());
    if (code == EvKeyCode::KeyNone) {
        return;
    }
    const unsigned modifiers = UiQtEvents::toModifierMask(event.modifiers());
    const std::string name = EvKeyCode::toName(code);
    const std::string mods = modifierWords(modifiers);
    if (event.type() == QEvent::KeyPress) {
        UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
        const unsigned entry =
            registry.findEntryFor(code, modifiers, _session.getViewer().getEventHandler());
        viewLines();
        if (entry) {
            // A hotkey line is a tap: its release is part of it.
            record("hotkey " + TsValueText::quoteWord(registry.getEntryName(entry)));
            _keyDown = "hotkey " + name;
            return;
        }
        record("keydown " + name + mods);
        _keyDown = name + mods;
        return;
    }
    if (_keyDown == "hotkey " + name) {
        _keyDown.clear();
        return;
    }
    if (_keyDown == name + mods && !_lines.empty() && _pendingMove.empty() &&
        _lines.back() == "keydown " + name + mods) {
        _lines.back() = "key " + name + mods;
        _keyDown.clear();
        return;
    }
    _keyDown.clear();
    viewLines();
    record("keyup " + name + mods);
}

// --- the panels

void SessionRecorder::widgetAction(const std::string& panel, EvEvent& event) {
    if (_paused) {
        return;
    }
    const auto* action = dynamic_cast<const UiWidgetEvent*>(&event);
    if (!action) {
        return;
    }
    RCShdPtr<PiWidget> widget;
    if (const RCShdPtr<PiContainer> container = _session.getPanel(panel)) {
        exContain("recorder: panel " + panel,
                  [&] { widget = container->findWidget(action->getWidgetName()); });
    }
    if (!widget) {
        return;
    }
    const std::string head = "widget " + panel + " " + TsValueText::quoteWord(widget->getName());
    const std::string mods = modifierWords(action->getKeyboardState().getModifierMask());
    PiWidget* w = widget.get();
    switch (action->getKind()) {
    case PiWidget::Activated:
        if (dynamic_cast<UiDualState*>(w)) {
            record(head + " toggle" + mods);
        } else if (dynamic_cast<UiPushButton*>(w)) {
            record(head + " press" + mods);
        } else if (auto* menu = dynamic_cast<UiMenu*>(w)) {
            const int index = menu->getSelection();
            int same = 0;
            for (int i = 0; i < menu->getItemCount(); ++i) {
                same += menu->getItemText(i) == menu->getItemText(index) ? 1 : 0;
            }
            // By its text, quoted (an unquoted number is an index), unless
            // another entry has the same text.
            const std::string text = menu->getItemText(index);
            std::string quoted = TsValueText::quoteWord(text);
            if (quoted.empty() || quoted.front() != '"') {
                quoted = "\"" + quoted + "\"";
            }
            record(head + " select " + (same == 1 ? quoted : std::to_string(index)) + mods);
        } else if (auto* field = dynamic_cast<UiValueEditor*>(w)) {
            record(head + " set " + SessionArgs::format(field->getValue()) + mods);
        }
        break;
    case PiWidget::DragBegin:
        _dragSteps[panel + "/" + widget->getName()] = 0;
        break;
    case PiWidget::DragMove:
        ++_dragSteps[panel + "/" + widget->getName()];
        break;
    case PiWidget::DragEnd:
        if (auto* ball = dynamic_cast<UiTrackball*>(w)) {
            float dx = 0.0f;
            float dy = 0.0f;
            ball->getDelta(dx, dy);
            const int steps = std::max(1, _dragSteps[panel + "/" + widget->getName()]);
            _dragSteps.erase(panel + "/" + widget->getName());
            record(head + " drag " + SessionArgs::format(dx) + " " + SessionArgs::format(dy) +
                   " steps " + std::to_string(steps) + mods);
        }
        break;
    default:
        break;
    }
}
