#pragma once

#include <tesseraCore/tesseraCoreExport.h>

// Types shared by the keyer's stages.
class TS_CORE_API TsTypes {
public:
    // The keyer's two key colours.
    enum KeyColor { KeyColor1 = 0, KeyColor2 = 1 };

    static KeyColor otherKeyColor(KeyColor k) { return k == KeyColor1 ? KeyColor2 : KeyColor1; }
};
