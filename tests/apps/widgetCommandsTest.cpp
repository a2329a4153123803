// Widget actions of session scripts on the keyer's panels: found by name in
// the panel's container, acted on as a user would, undone like any edit.
#include "sessionScene.h"

#include <ui/uiPanel.h>

namespace {

TEST_F(SessionScene, FieldsMenusAndTogglesOfThePanelsEditTheShownNode) {
    ok("plate demo 128 72\n"
       "widget other overallField set 0.25\n"
       "expect input overall == 0.25\n"
       "expect value other overallField == 0.25\n"
       "widget degrain degrainOn toggle\n"
       "expect input degrain.on == true\n"
       "expect toggle degrain degrainOn == on\n"
       "widget spill spillAmount set 0.75\n"
       "expect input spill.amount == 0.75\n"
       "expect undo count == 3\n"
       "undo 3\n"
       "expect input overall == 0.5\n"
       "expect value other overallField == 0.5\n"
       "expect toggle degrain degrainOn == off\n");
    // The fields follow the node the viewer shows.
    ok("keyer nodes 2\nset keyer2/overall 0.125\nselect keyer2\n"
       "expect value other overallField == 0.125");
}

TEST_F(SessionScene, MenusAreChosenByTextOrByIndex) {
    ok("expect menu main sampleMenu entries == Sample Matte, Sample Patch, Sample Degrain, "
       "Adjust Spill, Adjust Blend\n"
       "widget spill sampleMenu select 1\n"
       "expect menu spill sampleMenu == Adjust Blend\n"
       "widget spill sampleMenu select \"Adjust Spill\"\n"
       "expect menu spill sampleMenu index == 0\n");
    EXPECT_EQ(run("widget spill sampleMenu select 5"),
              "test.tss:1: widget \"sampleMenu\" of panel spill has no entry 5 (it has 2)");
    EXPECT_EQ(run("widget spill sampleMenu select Paint"),
              "test.tss:1: widget \"sampleMenu\" of panel spill has no entry \"Paint\"");
}

TEST_F(SessionScene, AWidgetThatIsNotThereOrOfAnotherKindIsAnError) {
    EXPECT_EQ(run("widget matte noSuchToggle toggle"),
              "test.tss:1: panel matte has no widget \"noSuchToggle\"");
    EXPECT_EQ(run("widget colour x toggle"),
              "test.tss:1: unknown panel \"colour\" (expected main, matte, degrain, spill or "
              "other)");
    EXPECT_EQ(run("widget matte patchModeLabel toggle"),
              "test.tss:1: widget \"patchModeLabel\" of panel matte is a label: it cannot be "
              "toggled");
    EXPECT_EQ(run("widget other overallField drag 1 2"),
              "test.tss:1: widget \"overallField\" of panel other is a number field: it cannot "
              "be dragged");
    EXPECT_EQ(run("widget other overallField set 0.1 shift hyper"),
              "test.tss:1: unknown modifier \"hyper\" (expected shift, ctrl, alt or meta)");
    EXPECT_EQ(run("expect toggle matte patchModeLabel == on"),
              "test.tss:1: widget \"patchModeLabel\" of panel matte is a label, not a toggle");
    // A disabled widget cannot be used.
    const RCShdPtr<PiWidget> field = session->getPanel("other")->findWidget("overallField");
    field->setEnabled(false);
    EXPECT_EQ(run("widget other overallField set 0.1"),
              "test.tss:1: widget \"overallField\" of panel other is disabled");
    ok("expect enabled other overallField == false\nexpect input overall == 0.5");
}

TEST_F(SessionScene, LabelsResizeAndPanelsList) {
    ok("widget main nodeSelectLabel0 resize 20\nprint panel spill");
    const std::string out = takePrinted();
    EXPECT_NE(out.find("panel spill:\n"), std::string::npos) << out;
    EXPECT_NE(out.find("  spillAmount (number field) 0.5\n"), std::string::npos) << out;
    EXPECT_NE(out.find("  spillEdgeBalance (trackball) delta 0 0\n"), std::string::npos) << out;
}

} // namespace
