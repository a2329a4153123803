#include "panelScene.h"

#include <base/exBase.h>
#include <pluginAPI/piCommandStack.h>
#include <ui/uiDualState.h>
#include <ui/uiInputMenu.h>
#include <ui/uiInputValueEditor.h>
#include <ui/uiMenu.h>
#include <ui/uiValueEditor.h>

namespace {

// The matte-generation panel of a keyer node with two patches, and its
// patch-mode menu and range and softness fields, bound as the panel's
// controller binds them.
class BoundFields : public PanelScene {
protected:
    void SetUp() override {
        PanelScene::SetUp();
        keyer1->createPatch();
        keyer1->createPatch();
        panel = std::make_unique<UiPanel>("matte");
        ASSERT_TRUE(panel->setStage("tsMatteGen", keyer1, timePathOf(keyer1)));
        ExReporter::getInstance().clear();
        container = panel->getContainer();
        range = UiInputValueEditor::getValueEditor(container, "patchRange");
        softness = UiInputValueEditor::getValueEditor(container, "patchSoft");
        mode = rcCast<UiMenu>(
            rcCast<UiWidgetAdapter>(container->findWidget("patchModeMenu"))->getUiWidget());
        bind(0);
    }
    void TearDown() override {
        range.reset();
        softness.reset();
        mode.reset();
        container.reset();
        panel.reset();
        PanelScene::TearDown();
    }

    void bind(int patch) {
        UiInputValueEditor::setInput(range, keyer1->getPatchRangeInput(patch), timePathOf(keyer1),
                                     UiInputValueEditor::Undoable);
        UiInputValueEditor::setInput(softness, keyer1->getPatchSoftnessInput(patch),
                                     timePathOf(keyer1), UiInputValueEditor::Undoable);
        UiInputMenu::setInput(mode, keyer1->getPatchModeInput(patch), timePathOf(keyer1),
                              UiInputMenu::Undoable);
    }
    double rangeOf(int patch) {
        return keyer1->getPatchRangeInput(patch)->getTypedValue<double>(10);
    }

    std::unique_ptr<UiPanel> panel;
    RCShdPtr<PiContainer> container;
    RCShdPtr<UiValueEditor> range;
    RCShdPtr<UiValueEditor> softness;
    RCShdPtr<UiMenu> mode;
};

TEST_F(BoundFields, AFieldShowsTheValueAtItsTimeAndFollowsEditsAndTime) {
    const RCShdPtr<PiInput> input = keyer1->getPatchRangeInput(0);
    input->setKey(0.0, PiValue(0.0));
    input->setKey(20.0, PiValue(0.5));
    EXPECT_DOUBLE_EQ(range->getValue(), 0.25);
    time.setTime(20.0);
    EXPECT_DOUBLE_EQ(range->getValue(), 0.5);
    input->setValue(20.0, PiValue(0.125));
    EXPECT_DOUBLE_EQ(range->getValue(), 0.125);
}

TEST_F(BoundFields, AnEditIsOneNamedUndoStepAndUndoMovesTheFieldBack) {
    const int steps = history().getStepCount();
    range->enter(0.3);
    mode->choose(2);
    EXPECT_DOUBLE_EQ(rangeOf(0), 0.3);
    EXPECT_EQ(keyer1->getPatchModeInput(0)->getTypedValue<int>(10), 2);
    EXPECT_EQ(history().getStepCount(), steps + 2);
    EXPECT_EQ(history().getStepNames().back(), "Set Patch Mode");
    EXPECT_EQ(history().getStepNames()[steps], "Set Patch Range");
    history().undo();
    history().undo();
    EXPECT_EQ(mode->getSelection(), 0);
    EXPECT_DOUBLE_EQ(range->getValue(), 0.0);
}

TEST_F(BoundFields, AnInputOfAnotherKindIsRefusedNamingIt) {
    try {
        UiInputMenu::setInput(mode, keyer1->getPatchRangeInput(0), timePathOf(keyer1),
                              UiInputMenu::Undoable);
        FAIL() << "no exception";
    } catch (const ExCastFailed& e) {
        EXPECT_EQ(e.getFrom(), "PiInput 'patch1.range' of double");
    }
    EXPECT_THROW(UiInputValueEditor::setInput(RCShdPtr<UiValueEditor>(),
                                              keyer1->getPatchRangeInput(0), timePathOf(keyer1),
                                              UiInputValueEditor::Undoable),
                 ExNullPtr);
}

using BoundToggles = PanelScene;

TEST_F(BoundToggles, TheDegrainSwitchWritesItsFlagAsOneStep) {
    UiPanel panel("degrain");
    ASSERT_TRUE(panel.setStage("tsDegrain", keyer1, timePathOf(keyer1)));
    const auto on = panel.find<UiDualState>("degrainOn");
    EXPECT_FALSE(on->getState());
    on->click();
    EXPECT_TRUE(keyer1->getDegrainInput()->getTypedValue<bool>(10));
    EXPECT_EQ(history().getUndoName(), "Switch Screen Degrain");
    history().undo();
    EXPECT_FALSE(on->getState());
    keyer1->getDegrainInput()->setValue(10, PiValue(true));
    EXPECT_TRUE(on->getState());
}

} // namespace
