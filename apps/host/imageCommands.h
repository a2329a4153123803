#pragma once

class SessionInterpreter;
class OutputWriter;

// The session commands and queries about images: `plate`, `background`,
// `view`, `write`, and the queries `plate`, `background`, `mode`, `pixel` and
// `score` (see
// docs/session-scripts.md). The writer must outlive the interpreter's use of
// them.
class ImageCommands {
public:
    static void add(SessionInterpreter& interpreter, OutputWriter& writer);
};
