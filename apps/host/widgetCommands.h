#pragma once

#include <base/rcShdPtr.h>

#include <string>
#include <vector>

class SessionInterpreter;
class SessionArgs;
class HostSession;
class PiWidget;
class QWidget;

// The session command that acts on the panels' widgets as a user does, and
// the queries that read them (see docs/session-scripts.md):
//
//   widget PANEL NAME toggle|press|select ENTRY|set VALUE|drag DX DY [steps N]|resize WIDTH
//          [modifiers]
//
// The widget is found by name in the panel's container (PiContainer), so that
// every panel works through the one mechanism, and the action goes through
// the toolkit's own entry for a user's action: its callbacks fire (contained)
// and the application's requests run after them.
class WidgetCommands {
public:
    static void add(SessionInterpreter& interpreter);

    // The widget NAME of the panel PANEL; SessionArgs::Error naming what is
    // missing.
    static RCShdPtr<PiWidget> find(const HostSession& session, const std::string& panel,
                                   const std::string& name);
    // "toggle", "menu", "label", "number field", "trackball", "button",
    // "node widget", "container".
    static std::string kindOf(const PiWidget& widget);
    // One line describing the widget's state, as `print panel` lists it.
    static std::string describe(const PiWidget& widget);
    // The named widgets of a panel, nearest first.
    static std::vector<RCShdPtr<PiWidget>> widgetsOf(const HostSession& session,
                                                     const std::string& panel);
};
