// The keyer's panels together, as a user works with them: the main panel on
// a keyer group, the selected node's matte-generation panel in its area, a
// patch made from the menu and a key colour picked from the panel into the
// viewer, both undone.
#include "keyerPanelScene.h"
#include "tsMgUi.h"

#include <tesseraCore/tsMgTool.h>

#include <QImage>

namespace {

class KeyerPanels : public ::testing::TestWithParam<int>, public KeyerPanelScene {
protected:
    void SetUp() override { build(GetParam()); }
    void TearDown() override { tearDown(); }
};

INSTANTIATE_TEST_SUITE_P(BothGenerations, KeyerPanels, ::testing::Values(1, 2), generationName);

TEST_P(KeyerPanels, APatchAndAKeyColourMadeFromThePanelsAndUndone) {
    select(keyers[1]);
    const auto matte = area("tsMatteGen");
    ASSERT_TRUE(PiGraphObject::areEqual(matte->getNode(), keyers[1]));
    ASSERT_TRUE(dynamic_cast<TsMgUi*>(matte->getContent().controller.get()));
    viewer->setNode(keyers[1]);
    settle();

    // The main panel's tool menu and the matte panel's agree on the tool.
    mainMenu()->choose(1);
    settle();
    EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(3));
    EXPECT_EQ(matteWidget<UiMenu>("sampleMenu")->getSelection(), 1);
    mainMenu()->choose(0);
    settle();
    EXPECT_EQ(matteWidget<UiMenu>("sampleMenu")->getSelection(), 0);
    history().clear();

    matteWidget<UiMenu>("patchSelectMenu")->choose(0);
    settle();
    EXPECT_EQ(mg(1)->getPatchCount(), 1);

    matteWidget<UiDualState>("keyColor1Toggle")->click();
    settle();
    click(viewer, viewerPoint(30.5f, 4.5f));
    const CoRgbColorTyped<float> picked = keyColour(1, TsTypes::KeyColor1);
    EXPECT_FLOAT_EQ(picked.r, Right.r);
    EXPECT_FLOAT_EQ(picked.b, Right.b);
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_EQ(history().getUndoCount(), 2);

    const QImage image = panel->grabImage();
    EXPECT_GT(image.width(), 300);
    EXPECT_GT(image.height(), 500);
    EXPECT_TRUE(image.save(QString::fromStdString(
        screenshotPath(GetParam() == 1 ? "keyerPanels.png" : "keyerPanelsGeneration2.png"))));

    history().undo();
    history().undo();
    EXPECT_EQ(keyColour(1, TsTypes::KeyColor1).r, 0.0f);
    EXPECT_EQ(mg(1)->getPatchCount(), 0);
    EXPECT_EQ(matteWidget<UiMenu>("patchSelectMenu")->getItemCount(), 1);
}

} // namespace
