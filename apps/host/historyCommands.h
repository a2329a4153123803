#pragma once

class SessionInterpreter;

// The session commands and queries of the history and of setups: `undo`,
// `redo`, `save`, `load`, `open`, and the queries `undo`, `redo`, `modified`,
// `reports` and `report` (see docs/session-scripts.md).
class HistoryCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
