#include "mgScene.h"

namespace {

const CoRgbColorTyped<float> Black(0.0f, 0.0f, 0.0f);

// The scene with a fresh node's key colours: both black.
class KeyColourPick : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        setKeyColours(Black, Black);
        stack().clear();
    }
};

TEST_F(KeyColourPick, TheFirstPickSetsBothKeyColoursInOneNamedStep) {
    useTool(0);
    click(blockCentre(Key));
    EXPECT_EQ(keyColour(TsTypes::KeyColor1), K);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), K);
    ASSERT_EQ(stack().getUndoCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_KEY_COLOR"));
    EXPECT_NE(stack().getUndoName(), "MSG_TS_SET_KEY_COLOR"); // the text, not the id

    stack().undo();
    EXPECT_EQ(keyColour(TsTypes::KeyColor1), Black);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), Black);
}

TEST_F(KeyColourPick, TheSecondKeyColourToolFillsTheFirstToo) {
    useTool(1);
    click(blockCentre(Shadow));
    const CoRgbaColorTyped<float> shadow = blockColour(Shadow);
    const CoRgbColorTyped<float> expected(shadow.r, shadow.g, shadow.b);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), expected);
    EXPECT_EQ(keyColour(TsTypes::KeyColor1), expected);
}

TEST_F(KeyColourPick, TheCopiedColourIsTheMeanTheToolWrote) {
    // A drag picks the pixel under each event: two of the key block, three
    // of the foreground block.
    useTool(0);
    drag({7.5f, 5.5f}, {17.5f, 5.5f}, 0, 4);
    const CoRgbColorTyped<float> own = keyColour(TsTypes::KeyColor1);
    EXPECT_NE(own, K);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), own);
    EXPECT_EQ(stack().getUndoCount(), 1);
}

TEST_F(KeyColourPick, AnyOtherColourThanExactBlackIsKept) {
    const CoRgbColorTyped<float> nearlyBlack(0.0f, 0.0f, 0.001f);
    setKeyColours(Black, nearlyBlack);
    stack().clear();
    useTool(0);
    click(blockCentre(Key));
    EXPECT_EQ(keyColour(TsTypes::KeyColor1), K);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), nearlyBlack);

    // Negative zero is zero.
    setKeyColours(Black, CoRgbColorTyped<float>(-0.0f, 0.0f, -0.0f));
    click(blockCentre(Foreground));
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), keyColour(TsTypes::KeyColor1));
}

TEST_F(KeyColourPick, ALockedBlackKeyColourIsNotFilled) {
    mg->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
    stack().clear();
    useTool(0);
    click(blockCentre(Key));
    EXPECT_EQ(keyColour(TsTypes::KeyColor1), K);
    EXPECT_EQ(keyColour(TsTypes::KeyColor2), Black);
    EXPECT_TRUE(ExReporter::getInstance().getReports().empty());
}

TEST_F(KeyColourPick, APickReturnsToTheToolUsedBefore) {
    useTool(2);
    useTool(0);
    EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(0));
    click(blockCentre(Key));
    EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(2));
}

} // namespace
