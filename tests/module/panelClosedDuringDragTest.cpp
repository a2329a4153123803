// A stage panel closed by the application in answer to an edit its own
// trackball drag makes: the panel's controller finishes the callback it is in
// and goes afterwards, the drag's undo step is closed with what was done, and
// the trackball's remaining moves reach nobody.
#include "stageScene.h"

#include <base/cbMethod.h>
#include <ui/uiTrackball.h>

#include <QCoreApplication>
#include <QEvent>

namespace stages {
namespace {

class ClosedDuringDrag : public StageScene {
protected:
    std::string stage() const override { return "spill"; }
    void SetUp() override {
        StageScene::SetUp();
        openPanel("tsSpillBlend");
        setValue(node->getEdgeBalanceInput(0), 0.2);
        setValue(node->getEdgeBalanceInput(1), 0.5);
        stack().clear();
        node->getEdgeBalanceInput(0)->addValueChangedCb(&onBalance);
    }
    void TearDown() override {
        node->getEdgeBalanceInput(0)->removeValueChangedCb(&onBalance);
        StageScene::TearDown();
    }

public:
    // The application closes the panel, as it would on its user's request.
    void closePanel() {
        if (panel && panel->getNode()) {
            panel->setNode(RCShdPtr<PiNode>(), RCShdPtr<const PiTimePath>());
        }
    }

protected:
    CbMethod<ClosedDuringDrag, CbEmptyType> onBalance{this, &ClosedDuringDrag::closePanel};
};

TEST_F(ClosedDuringDrag, TheFirstMoveIsWrittenAsOneClosedStepAndTheRestReachesNobody) {
    const RCShdPtr<UiTrackball> ball = panel->find<UiTrackball>("spillEdgeBalance");
    ASSERT_TRUE(ball);
    ball->drag(100.0f, 50.0f, 4);
    EXPECT_FALSE(panel->getController());
    // The move that closed the panel wrote both axes: its controller lived
    // to the end of its callback.
    EXPECT_NE(value(node->getEdgeBalanceInput(0)), 0.2);
    EXPECT_NE(value(node->getEdgeBalanceInput(1)), 0.5);
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"Set Spill Edge Balance"}));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(value(node->getEdgeBalanceInput(0)), 0.2);
    EXPECT_EQ(value(node->getEdgeBalanceInput(1)), 0.5);
}

} // namespace
} // namespace stages
