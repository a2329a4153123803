#pragma once

#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsMgTypes.h>

#include <string>

// Names of the matte-generation stage: its viewer tools, its parameters and
// the inputs the panels look up by name. The strings live as long as the
// library.
class TS_CORE_API TsMgTool {
public:
    // Tool 0 and 1: the key-colour pick tools of key colour 1 and 2
    // ("Pick Key Colour 1", "Pick Key Colour 2"); 2 "Sample Matte";
    // 3 "Sample Patch". Any other index answers "".
    static const std::string& getManipToolName(int index);
    static constexpr int ManipToolCount = 4;

    // "Overall", "Shadows", "Highlights", "Deep Hue Plus", "Deep Hue Minus",
    // "Hue Plus", "Hue Minus", "Edge Softness", "Key Blend"; "" for a value
    // outside 0..8.
    static const std::string& getMatteParamName(TsMgTypes::MatteParam p);
    // The socket name of a parameter's input ("overall", ..., "keyBlend").
    static const std::string& getMatteParamInputName(TsMgTypes::MatteParam p);
    // Every matte parameter ranges over [0, 1].
    static float getMatteParamMin() { return 0.0f; }
    static float getMatteParamMax() { return 1.0f; }
    static float getMatteParamMin(TsMgTypes::MatteParam) { return getMatteParamMin(); }
    static float getMatteParamMax(TsMgTypes::MatteParam) { return getMatteParamMax(); }

    // The node's current-patch input ("currentPatch", an int) and patch-names
    // input ("patchNames", a list of strings, one per patch in order).
    static const std::string& getCurrentPatchName();
    static const std::string& getPatchNamesName();
};
