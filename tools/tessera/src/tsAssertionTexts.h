#pragma once

#include <base/assertions.h>

// The module's assertions whose source, line and expression are part of its
// contract: hosts and tests match the report as it stands, so these texts
// are written here once, apart from where the code fails them.
struct TsAssertionText {
    const char* source;
    int line;
    const char* expression;

    [[noreturn]] void fail() const { Assertions::throwAssertionFailed(source, line, expression); }
};

namespace TsAssertionTexts {

// TsAddSampleTool: the base brings exactly two manipulators.
inline constexpr TsAssertionText AddSampleManipulators{"tools\\tessera\\src\\tsAddSampleTool", 70,
                                                       "size() == 2"};
// The sample-matte tool: its pick, and the bar a drag grasped.
inline constexpr TsAssertionText SampleMattePick{"tools\\tessera\\src\\tsMgSampleMatteTool", 563,
                                                 "_imgPick.pickColors( rect, colors )"};
inline constexpr TsAssertionText SampleMatteGrasped{"tools\\tessera\\src\\tsMgSampleMatteTool", 625,
                                                    "found"};
inline constexpr TsAssertionText SampleMatteDragged{
    "tools\\tessera\\src\\tsMgSampleMatteTool", 635,
    "_manip->getManipulator( _manipP )->isManipulating()"};
// The spill and blend tool: the bar a drag grasped.
inline constexpr TsAssertionText SpillBlendGrasped{"tools/tessera/src/tsSpillBlendMfTool", 416,
                                                   "found"};
inline constexpr TsAssertionText SpillBlendDragged{
    "tools/tessera/src/tsSpillBlendMfTool", 428,
    "_manip->getManipulator( _manipP )->isManipulating()"};

} // namespace TsAssertionTexts
