#include "widgetCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"

#include <base/exReporter.h>
#include <pluginAPI/piContainer.h>
#include <tesseraCore/setup/tsValueText.h>
#include <ui/uiContainer.h>
#include <ui/uiDualState.h>
#include <ui/uiGrab.h>
#include <ui/uiLabel.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiPushButton.h>
#include <ui/uiQtEvents.h>
#include <ui/uiTrackball.h>
#include <ui/uiValueEditor.h>
#include <ui/uiWidgetAdapter.h>

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

#include <cmath>
#include <functional>

namespace {

// The widget of a line (PANEL NAME), kept with its names for messages.
struct Target {
    std::string panel;
    std::string name;
    RCShdPtr<PiWidget> widget;

    std::string label() const {
        return "widget " + TsValueText::quote(name) + " of panel " + panel;
    }
    SessionArgs::Error wrongKind(const std::string& action) const {
        return SessionArgs::Error(label() + " is a " + WidgetCommands::kindOf(*widget) +
                                  ": it cannot " + action);
    }
};

Target target(const HostSession& session, SessionArgs& args) {
    Target t;
    t.panel = args.choice("panel", HostSession::getPanelNames());
    t.name = args.word("widget name");
    t.widget = WidgetCommands::find(session, t.panel, t.name);
    return t;
}

EvKeyboardState keysOf(SessionArgs& args) {
    unsigned modifiers = 0;
    args.modifiersAndButton(modifiers, nullptr);
    return EvKeyboardState(modifiers);
}

std::string yesNo(bool b) {
    return b ? "true" : "false";
}

// Notes, and takes, the pointer presses and releases that reach a widget.
class PressCatcher : public QObject {
public:
    explicit PressCatcher(QWidget* widget)
        : _widget(widget) {
        widget->installEventFilter(this);
    }
    ~PressCatcher() override {
        if (_widget) {
            _widget->removeEventFilter(this);
        }
    }
    bool eventFilter(QObject*, QEvent* event) override {
        const bool press = event->type() == QEvent::MouseButtonPress;
        if (press || event->type() == QEvent::MouseButtonRelease) {
            reached = reached || press;
            return true;
        }
        return false;
    }

    bool reached = false;

private:
    QPointer<QWidget> _widget;
};

// Whether a click on the widget reaches it. While a handler holds the
// pointer grab, the window system hands the click to the handler first (a
// pick started from a panel ends there); the widget acts only when the
// handler lets the press through. Without a grab every click reaches it.
bool clickReaches(PiWidget& widget, const EvKeyboardState& keys) {
    auto* adapter = dynamic_cast<UiWidgetAdapter*>(&widget);
    QWidget* w = adapter ? adapter->getLiveWidget() : nullptr;
    if (!UiGrab::pointer().isGrabbed() || !w) {
        return true;
    }
    const PressCatcher catcher(w);
    const QPointF centre(w->width() / 2.0, w->height() / 2.0);
    const Qt::KeyboardModifiers modifiers = UiQtEvents::toQtModifiers(keys.getModifierMask());
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, centre, w->mapToGlobal(centre), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                          modifiers);
        QCoreApplication::sendEvent(w, &event);
    }
    return catcher.reached;
}

} // namespace

RCShdPtr<PiWidget> WidgetCommands::find(const HostSession& session, const std::string& panel,
                                        const std::string& name) {
    const RCShdPtr<PiContainer> container = session.getPanel(panel);
    if (!container) {
        throw SessionArgs::Error("panel " + panel + " shows nothing");
    }
    RCShdPtr<PiWidget> widget;
    exContain("session: panel " + panel, [&] { widget = container->findWidget(name); });
    if (!widget) {
        throw SessionArgs::Error("panel " + panel + " has no widget " + TsValueText::quote(name));
    }
    return widget;
}

std::string WidgetCommands::kindOf(const PiWidget& w) {
    if (dynamic_cast<const UiDualState*>(&w)) {
        return "toggle";
    }
    if (dynamic_cast<const UiMenu*>(&w)) {
        return "menu";
    }
    if (dynamic_cast<const UiLabel*>(&w)) {
        return "label";
    }
    if (dynamic_cast<const UiValueEditor*>(&w)) {
        return "number field";
    }
    if (dynamic_cast<const UiTrackball*>(&w)) {
        return "trackball";
    }
    if (dynamic_cast<const UiPushButton*>(&w)) {
        return "button";
    }
    if (dynamic_cast<const UiNodeWidget*>(&w)) {
        return "node widget";
    }
    return "container";
}

std::string WidgetCommands::describe(const PiWidget& w) {
    std::string line = w.getName() + " (" + kindOf(w) + ")";
    if (const auto* toggle = dynamic_cast<const UiDualState*>(&w)) {
        line += toggle->getState() ? " on" : " off";
    } else if (const auto* menu = dynamic_cast<const UiMenu*>(&w)) {
        line += " " + TsValueText::quote(menu->getSelectedText()) + " of";
        for (int i = 0; i < menu->getItemCount(); ++i) {
            line += (i ? ", " : " ") + TsValueText::quote(menu->getItemText(i));
        }
    } else if (const auto* label = dynamic_cast<const UiLabel*>(&w)) {
        line += " " + TsValueText::quote(label->getText());
    } else if (const auto* field = dynamic_cast<const UiValueEditor*>(&w)) {
        line += " " + SessionArgs::format(field->getValue());
    } else if (const auto* ball = dynamic_cast<const UiTrackball*>(&w)) {
        float dx = 0.0f;
        float dy = 0.0f;
        ball->getDelta(dx, dy);
        line += " delta " + SessionArgs::format(dx) + " " + SessionArgs::format(dy);
    } else if (const auto* area = dynamic_cast<const UiNodeWidget*>(&w)) {
        line += area->getNode() ? " shows " + area->getNode()->getName() : " empty";
    }
    if (!w.isEnabled()) {
        line += " (disabled)";
    }
    return line;
}

std::vector<RCShdPtr<PiWidget>> WidgetCommands::widgetsOf(const HostSession& session,
                                                          const std::string& panel) {
    std::vector<RCShdPtr<PiWidget>> widgets;
    const RCShdPtr<PiContainer> container = session.getPanel(panel);
    auto* adapter = dynamic_cast<UiWidgetAdapter*>(container.get());
    QWidget* root = adapter ? adapter->getLiveWidget() : nullptr;
    if (!root) {
        return widgets;
    }
    for (QWidget* w : UiContainer::panelWidgets(root)) {
        const QString name = w->objectName();
        if (name.isEmpty() || name.startsWith("qt_")) {
            continue;
        }
        if (RCShdPtr<UiWidgetAdapter> a = UiWidgetAdapter::of(w)) {
            widgets.push_back(RCShdPtr<PiWidget>(a.get()));
        }
    }
    return widgets;
}

void WidgetCommands::add(SessionInterpreter& interpreter) {
    HostSession& s = interpreter.getSession();
    interpreter.addCommand("widget", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        const std::string action = a.choice(
            "widget action", {"toggle", "press", "select", "set", "key", "drag", "resize"});
        if (!t.widget->isEnabled()) {
            throw SessionArgs::Error(t.label() + " is disabled");
        }
        PiWidget* w = t.widget.get();
        // What the user's hand does, once the line is read whole.
        std::function<void()> act;
        EvKeyboardState keys;
        if (action == "toggle") {
            auto* toggle = dynamic_cast<UiDualState*>(w);
            if (!toggle) {
                throw t.wrongKind("be toggled");
            }
            keys = keysOf(a);
            act = [toggle, &keys] { toggle->click(keys); };
        } else if (action == "press") {
            keys = keysOf(a);
            if (auto* toggle = dynamic_cast<UiDualState*>(w)) {
                act = [toggle, &keys] { toggle->click(keys); };
            } else if (auto* button = dynamic_cast<UiPushButton*>(w)) {
                act = [button, &keys] { button->click(keys); };
            } else {
                throw t.wrongKind("be pressed");
            }
        } else if (action == "select") {
            auto* menu = dynamic_cast<UiMenu*>(w);
            if (!menu) {
                throw t.wrongKind("select an entry");
            }
            const bool byText = a.peekQuoted();
            const std::string entry = a.word("menu entry (its text, or its index from 0)");
            int index = -1;
            double number = 0.0;
            if (!byText && SessionArgs::parseNumber(entry, number) &&
                number == std::floor(number)) {
                index = static_cast<int>(number);
                if (index < 0 || index >= menu->getItemCount()) {
                    throw SessionArgs::Error(t.label() + " has no entry " + entry + " (it has " +
                                             std::to_string(menu->getItemCount()) + ")");
                }
            } else {
                for (int i = 0; i < menu->getItemCount() && index < 0; ++i) {
                    if (menu->getItemText(i) == entry) {
                        index = i;
                    }
                }
                if (index < 0) {
                    throw SessionArgs::Error(t.label() + " has no entry " +
                                             TsValueText::quote(entry));
                }
            }
            keys = keysOf(a);
            act = [menu, index, &keys] { menu->choose(index, keys); };
        } else if (action == "set") {
            auto* field = dynamic_cast<UiValueEditor*>(w);
            if (!field) {
                throw t.wrongKind("take a number");
            }
            const double value = a.number("value");
            keys = keysOf(a);
            act = [field, value, &keys] { field->enter(value, keys); };
        } else if (action == "key") {
            // The field's key actions, as its key button and context menu
            // give them.
            auto* field = dynamic_cast<UiValueEditor*>(w);
            UiFieldKeys* keysOfField = field ? field->getKeys() : nullptr;
            if (!keysOfField) {
                throw t.wrongKind("take keys (it edits no animatable input)");
            }
            const std::string what =
                a.choice("key action", {"set", "delete", "animation", "linear", "smooth"});
            keys = keysOf(a);
            act = [keysOfField, what] {
                if (what == "set") {
                    keysOfField->setKey();
                } else if (what == "delete") {
                    keysOfField->deleteKey();
                } else if (what == "animation") {
                    keysOfField->deleteAnimation();
                } else {
                    keysOfField->setInterpolation(what == "linear" ? PiInterpolation::Linear
                                                                   : PiInterpolation::Smooth);
                }
            };
        } else if (action == "drag") {
            auto* ball = dynamic_cast<UiTrackball*>(w);
            if (!ball) {
                throw t.wrongKind("be dragged");
            }
            const double dx = a.number("drag x");
            const double dy = a.number("drag y");
            int steps = 1;
            if (a.take("steps")) {
                steps = a.integer("number of steps");
                if (steps < 1 || steps > 100000) {
                    throw SessionArgs::Error("a drag takes 1 to 100000 steps");
                }
            }
            keys = keysOf(a);
            act = [ball, dx, dy, steps, &keys] {
                ball->drag(static_cast<float>(dx), static_cast<float>(dy), steps, keys);
            };
        } else {
            auto* label = dynamic_cast<UiLabel*>(w);
            if (!label) {
                throw t.wrongKind("be resized");
            }
            const int width = a.integer("width");
            if (width < 0 || width > 16384) {
                throw SessionArgs::Error("a width is 0 to 16384 pixels");
            }
            a.end();
            // A resize is the window's, not a click.
            label->setWidth(width);
            return;
        }
        a.end();
        if (clickReaches(*w, keys)) {
            act();
        }
    });

    SessionProbe& probe = interpreter.getProbe();
    probe.addQuery("toggle", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        const auto* toggle = dynamic_cast<const UiDualState*>(t.widget.get());
        if (!toggle) {
            throw SessionArgs::Error(t.label() + " is a " + kindOf(*t.widget) + ", not a toggle");
        }
        return std::string(toggle->getState() ? "on" : "off");
    });
    probe.addQuery("menu", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        const auto* menu = dynamic_cast<const UiMenu*>(t.widget.get());
        if (!menu) {
            throw SessionArgs::Error(t.label() + " is a " + kindOf(*t.widget) + ", not a menu");
        }
        if (a.take("entries")) {
            std::string entries;
            for (int i = 0; i < menu->getItemCount(); ++i) {
                entries += (i ? ", " : "") + menu->getItemText(i);
            }
            return entries.empty() ? std::string("none") : entries;
        }
        if (a.take("index")) {
            return std::to_string(menu->getSelection());
        }
        return menu->getSelection() < 0 ? std::string("none") : menu->getSelectedText();
    });
    probe.addQuery("label", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        const auto* label = dynamic_cast<const UiLabel*>(t.widget.get());
        if (!label) {
            throw SessionArgs::Error(t.label() + " is a " + kindOf(*t.widget) + ", not a label");
        }
        return label->getText();
    });
    probe.addQuery("value", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        const auto* field = dynamic_cast<const UiValueEditor*>(t.widget.get());
        if (!field) {
            throw SessionArgs::Error(t.label() + " is a " + kindOf(*t.widget) +
                                     ", not a number field");
        }
        return SessionArgs::format(field->getValue());
    });
    probe.addQuery("enabled", [&s](SessionArgs& a) {
        const Target t = target(s, a);
        return yesNo(t.widget->isEnabled());
    });
    probe.addQuery(
        "panel",
        [&s](SessionArgs& a) {
            const std::string panel = a.choice("panel", HostSession::getPanelNames());
            const RCShdPtr<PiContainer> container = s.getPanel(panel);
            return std::to_string(container ? widgetsOf(s, panel).size() : 0) + " widgets";
        },
        [&s](SessionArgs& a) {
            const std::string panel = a.choice("panel", HostSession::getPanelNames());
            std::vector<std::string> lines{"panel " + panel + ":"};
            if (!s.getPanel(panel)) {
                lines.back() += " shows nothing";
            }
            for (const RCShdPtr<PiWidget>& w : widgetsOf(s, panel)) {
                lines.push_back("  " + describe(*w));
            }
            return lines;
        },
        true);
}
