#include "pointerCommands.h"

#include "hostSession.h"
#include "sessionArgs.h"
#include "sessionInterpreter.h"
#include "viewerDriver.h"

#include <base/evKeyCode.h>
#include <pluginAPI/piEventHandler.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiViewer.h>

namespace {

EvKeyCode::KeyCode keyArg(SessionArgs& args) {
    const std::string name = args.word("key name");
    const EvKeyCode::KeyCode key = EvKeyCode::fromName(name.c_str());
    if (key == EvKeyCode::KeyNone) {
        throw SessionArgs::Error("unknown key \"" + name + "\"");
    }
    return key;
}

// The entry of the keyer's hotkey domain named by the next word.
unsigned hotkeyArg(SessionArgs& a) {
    const std::string name = a.word("hotkey entry name");
    const unsigned entry =
        UiHotkeyRegistry::getInstance().findEntry(UiHotkeyRegistry::TesseraDomain, name);
    if (!entry) {
        throw SessionArgs::Error("no hotkey entry \"" + name + "\"");
    }
    return entry;
}

} // namespace

void PointerCommands::add(SessionInterpreter& interpreter) {
    SessionInterpreter& in = interpreter;
    HostSession& s = interpreter.getSession();
    ViewerDriver& d = interpreter.getDriver();

    auto pointer = [&d](auto action) {
        return [&d, action](SessionArgs& a) {
            const GePoint2<double> p = a.point("point");
            unsigned modifiers = 0;
            EvButton button = EvButton::Left;
            a.modifiersAndButton(modifiers, &button);
            action(d, p, modifiers, button);
        };
    };
    in.addCommand("press", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m,
                                      EvButton b) { dr.press(p, m, b); }));
    in.addCommand("release", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m,
                                        EvButton b) { dr.release(p, m, b); }));
    in.addCommand("click", pointer([](ViewerDriver& dr, GePoint2<double> p, unsigned m,
                                      EvButton b) { dr.click(p, m, b); }));
    in.addCommand("move", [&d](SessionArgs& a) {
        const GePoint2<double> p = a.point("point");
        unsigned modifiers = 0;
        a.modifiersAndButton(modifiers, nullptr);
        d.move(p, modifiers);
    });
    in.addCommand("drag", [&d](SessionArgs& a) {
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
    in.addCommand("key", keyCommand(true, true));
    in.addCommand("keydown", keyCommand(true, false));
    in.addCommand("keyup", keyCommand(false, true));
    in.addCommand("hotkey", [&d, &s](SessionArgs& a) {
        const std::string name = a.peek();
        const unsigned entry = hotkeyArg(a);
        a.end();
        if (!d.hotkey(entry)) {
            const std::string stage = s.getViewer().getStage();
            throw SessionArgs::Error("hotkey \"" + name + "\" is not taken by the viewer (stage " +
                                     (stage.empty() ? std::string("none") : "\"" + stage + "\"") +
                                     ")");
        }
    });

    interpreter.getProbe().addQuery("hotkey", [](SessionArgs& a) {
        const std::string binding =
            UiHotkeyRegistry::getInstance().getBinding(hotkeyArg(a)).toString();
        return binding.empty() ? std::string("unbound") : binding;
    });
}
