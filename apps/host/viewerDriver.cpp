#include "viewerDriver.h"

#include <base/vwUtils.h>
#include <pluginAPI/piEventHandler.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiQtEvents.h>
#include <ui/uiViewer.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unordered_map>

namespace {

Qt::MouseButton toQtButton(EvButton button) {
    switch (button) {
    case EvButton::Left:
        return Qt::LeftButton;
    case EvButton::Middle:
        return Qt::MiddleButton;
    case EvButton::Right:
        return Qt::RightButton;
    case EvButton::None:
        break;
    }
    return Qt::NoButton;
}

// Host key codes to the window system's, built once from the toolkit's own
// mapping so that both directions agree.
const std::unordered_map<int, int>& qtKeys() {
    static const std::unordered_map<int, int> map = [] {
        std::unordered_map<int, int> m;
        auto add = [&m](int qtKey) {
            const EvKeyCode::KeyCode code = UiQtEvents::toKeyCode(qtKey);
            if (code != EvKeyCode::KeyNone && !m.count(code)) {
                m[code] = qtKey;
            }
        };
        for (int k = 0x20; k <= 0x7e; ++k) {
            add(k);
        }
        for (int k = 0x01000000; k <= 0x010000ff; ++k) {
            add(k);
        }
        return m;
    }();
    return map;
}

// The plate coordinate with the fewest significant digits that `map` takes
// to exactly `target`; `exact` (whose map is within rounding of the target)
// when no shorter one does.
template <class Map>
double shortest(double exact, float target, const Map& map) {
    for (int digits = 1; digits <= 17; ++digits) {
        char text[64];
        std::snprintf(text, sizeof(text), "%.*g", digits, exact);
        const double candidate = std::strtod(text, nullptr);
        if (map(candidate) == target) {
            return candidate;
        }
    }
    return exact;
}

} // namespace

ViewerDriver::ViewerDriver(UiViewer& viewer)
    : _viewer(viewer) {}

GePoint2<float> ViewerDriver::plateToWindow(const VwView& view, const GePoint2<double>& plate) {
    const double z = view.getZoom();
    return {static_cast<float>(view.getPan().x + z * plate.x),
            static_cast<float>(view.getPan().y - z * plate.y)};
}

GePoint2<double> ViewerDriver::windowToPlate(const VwView& view, const GePoint2<float>& window) {
    const double z = view.getZoom();
    const double x = (static_cast<double>(window.x) - view.getPan().x) / z;
    const double y = (view.getPan().y - static_cast<double>(window.y)) / z;
    return {shortest(x, window.x,
                     [&](double px) {
                         return plateToWindow(view, {px, y}).x;
                     }),
            shortest(y, window.y, [&](double py) {
                return plateToWindow(view, {x, py}).y;
            })};
}

GePoint2<float> ViewerDriver::panFor(const VwView& view, int width, int height,
                                     const GePoint2<double>& centre) {
    const double z = view.getZoom();
    return {static_cast<float>(width / 2.0 - z * centre.x),
            static_cast<float>(height / 2.0 + z * centre.y)};
}

GePoint2<double> ViewerDriver::centreOf(const VwView& view, int width, int height) {
    const double z = view.getZoom();
    const double x = (width / 2.0 - view.getPan().x) / z;
    const double y = (view.getPan().y - height / 2.0) / z;
    return {shortest(x, view.getPan().x,
                     [&](double cx) {
                         return panFor(view, width, height, {cx, y}).x;
                     }),
            shortest(y, view.getPan().y, [&](double cy) {
                return panFor(view, width, height, {x, cy}).y;
            })};
}

int ViewerDriver::toQtKey(EvKeyCode::KeyCode key) {
    const auto& map = qtKeys();
    const auto it = map.find(key);
    return it == map.end() ? 0 : it->second;
}

void ViewerDriver::pointer(int type, const GePoint2<double>& plate, unsigned modifiers,
                           EvButton button) {
    const GePoint2<float> w = plateToWindow(_viewer.getView(), plate);
    const QPointF local(w.x, w.y);
    const Qt::MouseButton qtButton = toQtButton(button);
    if (type == QEvent::MouseButtonPress) {
        _buttons |= qtButton;
    } else if (type == QEvent::MouseButtonRelease) {
        _buttons &= ~static_cast<unsigned>(qtButton);
    }
    QMouseEvent event(static_cast<QEvent::Type>(type), local, _viewer.mapToGlobal(local),
                      type == QEvent::MouseMove ? Qt::NoButton : qtButton,
                      Qt::MouseButtons(static_cast<int>(_buttons)),
                      UiQtEvents::toQtModifiers(modifiers));
    QCoreApplication::sendEvent(&_viewer, &event);
}

void ViewerDriver::press(const GePoint2<double>& plate, unsigned modifiers, EvButton button) {
    pointer(QEvent::MouseButtonPress, plate, modifiers, button);
}

void ViewerDriver::move(const GePoint2<double>& plate, unsigned modifiers) {
    pointer(QEvent::MouseMove, plate, modifiers, EvButton::None);
}

void ViewerDriver::release(const GePoint2<double>& plate, unsigned modifiers, EvButton button) {
    pointer(QEvent::MouseButtonRelease, plate, modifiers, button);
}

void ViewerDriver::click(const GePoint2<double>& plate, unsigned modifiers, EvButton button) {
    press(plate, modifiers, button);
    release(plate, modifiers, button);
}

void ViewerDriver::drag(const GePoint2<double>& from, const GePoint2<double>& to, int steps,
                        unsigned modifiers, EvButton button) {
    press(from, modifiers, button);
    for (int i = 1; i <= steps; ++i) {
        const double t = static_cast<double>(i) / steps;
        move(i == steps
                 ? to
                 : GePoint2<double>{from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t},
             modifiers);
    }
    release(to, modifiers, button);
}

bool ViewerDriver::key(int type, EvKeyCode::KeyCode code, unsigned modifiers) {
    const int qtKey = toQtKey(code);
    if (!qtKey) {
        return false;
    }
    const QString text = qtKey >= 0x20 && qtKey <= 0x7e ? QString(QChar(qtKey)) : QString();
    QKeyEvent event(static_cast<QEvent::Type>(type), qtKey, UiQtEvents::toQtModifiers(modifiers),
                    text);
    QCoreApplication::sendEvent(&_viewer, &event);
    return true;
}

bool ViewerDriver::keyDown(EvKeyCode::KeyCode code, unsigned modifiers) {
    return key(QEvent::KeyPress, code, modifiers);
}

bool ViewerDriver::keyUp(EvKeyCode::KeyCode code, unsigned modifiers) {
    return key(QEvent::KeyRelease, code, modifiers);
}

bool ViewerDriver::hotkey(unsigned entry) {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    UiGrabHandler* handler = _viewer.getEventHandler();
    if (!registry.isRegistered(entry, handler)) {
        return false;
    }
    const UiHotkeyRegistry::Binding binding = registry.getBinding(entry);
    if (binding.isBound() && toQtKey(binding.key) &&
        registry.findEntryFor(binding.key, binding.modifiers, handler) == entry) {
        // The user's way: a tap of the key it is bound to.
        keyDown(binding.key, binding.modifiers);
        keyUp(binding.key, binding.modifiers);
        return true;
    }
    // Unbound (or its key taken by another entry): the hotkey itself.
    EvKeyboardState keys = UiApplication::getInstance().getKeyboardState(binding.modifiers);
    EvHotkeyEvent event(_viewer.getPointerPosition(), keys, entry);
    _viewer.deliver(event);
    return true;
}

bool ViewerDriver::isButtonDown(EvButton button) const {
    return (_buttons & toQtButton(button)) != 0;
}
