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

} // namespace
