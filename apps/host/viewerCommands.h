#pragma once

class SessionInterpreter;

// The session commands and queries of the keyer and its viewer: `keyer`,
// `viewer`, `window`, `zoom`, `pan`, `fit`, `tool`, `frame`, and the queries
// `tool`, `tools`, `stage`, `stages`, `zoom`, `centre`, `window` and `frame`
// (see docs/session-scripts.md).
class ViewerCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
