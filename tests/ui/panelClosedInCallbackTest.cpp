// A panel closed by an answer to its own widget's edit: the edit is written
// (one undo step), the widget, still in use, goes once the host settles, and
// nothing it was bound to hears from it again.
#include "panelScene.h"

#include <base/cbMethod.h>
#include <ui/uiValueEditor.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

namespace {

// The keyer's remaining-settings panel of keyer1, whose fields are bound to
// the node's inputs; the application closes it when "overall" changes.
class ClosingPanelScene : public PanelScene {
protected:
    void SetUp() override {
        PanelScene::SetUp();
        panel = std::make_unique<UiPanel>("settings");
        ASSERT_TRUE(panel->setStage("tsOtherUi", keyer1, timePathOf(keyer1)));
        field = panel->find<UiValueEditor>("overallField");
        ASSERT_TRUE(field);
        widget = field->getLiveWidget();
        ASSERT_TRUE(widget);
        keyer1->getInput("overall")->addValueChangedCb(&onOverall);
    }
    void TearDown() override {
        keyer1->getInput("overall")->removeValueChangedCb(&onOverall);
        panel.reset();
        PanelScene::TearDown();
    }

public:
    void closePanel() {
        panel->setNode(RCShdPtr<PiNode>(), RCShdPtr<const PiTimePath>());
        ++closed;
    }

protected:
    std::unique_ptr<UiPanel> panel;
    RCShdPtr<UiValueEditor> field;
    QPointer<QWidget> widget;
    int closed = 0;
    CbMethod<ClosingPanelScene, CbEmptyType> onOverall{this, &ClosingPanelScene::closePanel};
};

TEST_F(ClosingPanelScene, TheEditIsWrittenAndTheFieldGoesOnceTheHostSettles) {
    field->enter(0.25);
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(keyer1->getInput("overall")->getTypedValue<double>(10.0), 0.25);
    EXPECT_EQ(history().getStepCount(), 1);
    EXPECT_FALSE(history().isStepOpen());
    EXPECT_FALSE(panel->getContainer());
    EXPECT_TRUE(widget) << "the field in use is not deleted under its own edit";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(widget);
    EXPECT_FALSE(field->getLiveWidget());
    // The binding went with the panel: an undo reaches no field.
    ASSERT_TRUE(history().undo());
    EXPECT_EQ(keyer1->getInput("overall")->getTypedValue<double>(10.0), 0.5);
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 0u);
}

} // namespace
