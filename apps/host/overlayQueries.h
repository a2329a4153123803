#pragma once

class SessionInterpreter;

// The session queries of what the viewer draws over the image: `cursor`,
// `manipulators`, `bars`, `bar` and `draw` (see docs/session-scripts.md). Positions
// are answered in plate pixels.
class OverlayQueries {
public:
    static void add(SessionInterpreter& interpreter);
};
