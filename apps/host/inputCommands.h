#pragma once

class SessionInterpreter;

// The session commands and queries of inputs, as the parameter editor edits
// them: `set`, `animate`, `unkey`, `unanimate`, `interpolate`, `lock`,
// `unlock`, and the queries `input`, `keys`, `locked` and `inputs` (see
// docs/session-scripts.md).
class InputCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
