#pragma once

class OutputWriter;
class SessionArgs;
class SessionInterpreter;

// `write colorspace FILE [azimuth A] [elevation E]`: the colour-space view of
// the shown node's key (ColourSpacePicture) as a PNG, 800 x 600, framed on
// the plate's colours and the key colours, from the camera's angles in degrees
// (30 and 20 unless given). The `write` command hands its line here when the
// kind is `colorspace`; the picture joins the outputs `writer` lists.
class ColourSpaceCommands {
public:
    static void write(SessionInterpreter& interpreter, SessionArgs& a, OutputWriter& writer);
};
