#pragma once

class SessionInterpreter;

// The session commands and queries of colour management: `display`,
// `exposure`, `gamma` (what the viewer shows through, never what the keyer
// computes), `ocio` (another configuration), and the queries `colorspace`,
// `display`, `exposure` and `gamma` (see docs/session-scripts.md). The colour
// spaces of plates and outputs go with `plate`, `background` and `write`
// (ImageCommands).
class ColourCommands {
public:
    static void add(SessionInterpreter& interpreter);
};
