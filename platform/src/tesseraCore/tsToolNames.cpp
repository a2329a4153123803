#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <tesseraCore/tsTool3.h>

#include <array>

namespace {

const std::string none;

template <std::size_t N>
const std::string& pick(const std::array<std::string, N>& names, int index) {
    return index >= 0 && index < static_cast<int>(N) ? names[static_cast<std::size_t>(index)]
                                                     : none;
}

} // namespace

const std::string& TsMgTool::getManipToolName(int index) {
    static const std::array<std::string, ManipToolCount> names{
        "Pick Key Colour 1", "Pick Key Colour 2", "Sample Matte", "Sample Patch"};
    return pick(names, index);
}

const std::string& TsMgTool::getMatteParamName(TsMgTypes::MatteParam p) {
    static const std::array<std::string, TsMgTypes::MatteParamCount> names{
        "Overall",  "Shadows",   "Highlights",    "Deep Hue Plus", "Deep Hue Minus",
        "Hue Plus", "Hue Minus", "Edge Softness", "Key Blend"};
    return pick(names, static_cast<int>(p));
}

const std::string& TsMgTool::getMatteParamInputName(TsMgTypes::MatteParam p) {
    static const std::array<std::string, TsMgTypes::MatteParamCount> names{
        "overall", "shadows",  "highlights",   "deepHuePlus", "deepHueMinus",
        "huePlus", "hueMinus", "edgeSoftness", "keyBlend"};
    return pick(names, static_cast<int>(p));
}

const std::string& TsMgTool::getCurrentPatchName() {
    static const std::string name = "currentPatch";
    return name;
}

const std::string& TsMgTool::getPatchNamesName() {
    static const std::string name = "patchNames";
    return name;
}

const std::string& TsDgTool::getManipToolName(int index) {
    static const std::array<std::string, ManipToolCount> names{
        "Pick Key Colour 1", "Pick Key Colour 2", "Sample Degrain"};
    return pick(names, index);
}

const std::string& TsSpillBlendTool::getManipToolName(int index) {
    static const std::array<std::string, ManipToolCount> names{
        "Pick Key Colour 1", "Pick Key Colour 2", "Adjust Spill", "Adjust Blend"};
    return pick(names, index);
}

const std::string& TsTool3::getSelectedNodesName() {
    static const std::string name = "selectedNodes";
    return name;
}
