#pragma once

#include <string>
#include <tesseraCore/tesseraCoreExport.h>

// Names of the degrain stage's viewer tools: 0 and 1 the key-colour pick
// tools ("Pick Key Colour 1", "Pick Key Colour 2"), 2 "Sample Degrain"; any
// other index answers "".
class TS_CORE_API TsDgTool {
public:
    static const std::string& getManipToolName(int index);
    static constexpr int ManipToolCount = 3;
};
