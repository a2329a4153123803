#pragma once

class SessionInterpreter;

// The session commands and queries of the viewer's aids, which change what
// the viewer shows and never the keyer: `wipe`, `channel`, `backdrop`, and
// the queries `wipe`, `channel`, `backdrop`, `readout X Y` (the pixel
// readout at a plate point) and `screen X Y` (the colour the viewer shows
// there) (see docs/session-scripts.md).
class ViewerAidCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
