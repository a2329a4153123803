#pragma once

#include <string>
#include <tesseraCore/tesseraCoreExport.h>

// Names of the spill-and-blend stage's viewer tools: 0 and 1 the key-colour
// pick tools ("Pick Key Colour 1", "Pick Key Colour 2"), 2 "Adjust Spill",
// 3 "Adjust Blend"; any other index answers "".
class TS_CORE_API TsSpillBlendTool {
public:
    static const std::string& getManipToolName(int index);
    static constexpr int ManipToolCount = 4;
};
