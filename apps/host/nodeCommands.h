#pragma once

class SessionInterpreter;

// The session commands and queries of the keyer group's nodes: `select`,
// `rename`, `remove`, and the queries `node`, `nodes`, `selection`, `selected`
// and `slot` (see docs/session-scripts.md).
class NodeCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
