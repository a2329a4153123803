#pragma once

class SessionInterpreter;

// The session commands of the pointer and the keyboard over the viewer, sent as
// window-system events (ViewerDriver): `press`, `release`, `click`, `move`,
// `drag`, `key`, `keydown`, `keyup`, `hotkey`, and the query `hotkey` (see
// docs/session-scripts.md).
class PointerCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
