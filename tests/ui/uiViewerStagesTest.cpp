#include "viewerScene.h"

#include <base/cbMethod.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <tesseraCore/tsSpillBlendTool.h>

#include <stdexcept>

namespace {

// Stage handlers as a module makes them: a tool set holding the stage's tool
// names, each a logging tool. The factories count what they made.
int made = 0;
bool failDegrain = false;

template <class Tool>
RCStrongPtr<PiEventHandler> makeStage(PiViewer& viewer) {
    auto handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(viewer));
    for (int i = 0; i < Tool::ManipToolCount; ++i) {
        handler->appendTool(Tool::getManipToolName(i), rcMake<LoggingTool>());
    }
    ++made;
    return RCStrongPtr<PiEventHandler>(handler);
}

RCStrongPtr<PiEventHandler> matteStage(PiViewer& v, const RCShdPtr<PiNode>&,
                                       const RCShdPtr<PiPath>&) {
    return makeStage<TsMgTool>(v);
}
RCStrongPtr<PiEventHandler> degrainStage(PiViewer& v, const RCShdPtr<PiNode>&,
                                         const RCShdPtr<PiPath>&) {
    if (failDegrain) {
        throw std::runtime_error("the degrain handler cannot be made");
    }
    return makeStage<TsDgTool>(v);
}
RCStrongPtr<PiEventHandler> spillStage(PiViewer& v, const RCShdPtr<PiNode>&,
                                       const RCShdPtr<PiPath>&) {
    return makeStage<TsSpillBlendTool>(v);
}

class StageScene : public ViewerScene {
protected:
    void SetUp() override {
        TsMgInterface::registerEhFactory(&matteStage);
        TsDgInterface::registerEhFactory(&degrainStage);
        TsSpillBlendInterface::registerEhFactory(&spillStage);
        made = 0;
        failDegrain = false;
        ViewerScene::SetUp();
        PiEventHandlingInterface::getInstance().setCurrentViewer(viewer.get());
        PiEventHandlingInterface::getInstance().addCurrentEventHandlerChangedCallback(&changed);
    }
    void TearDown() override {
        ViewerScene::TearDown();
        TsMgInterface::unregisterEhFactory(&matteStage);
        TsDgInterface::unregisterEhFactory(&degrainStage);
        TsSpillBlendInterface::unregisterEhFactory(&spillStage);
    }
    PiCurrentToolEventHandler& current() {
        return *rcCast<PiCurrentToolEventHandler>(viewer->getCurrentEventHandler());
    }

    int handlerChanges = 0;
    struct Count {
        int* n;
        void hit() { ++*n; }
    } count{&handlerChanges};
    CbMethod<Count, CbEmptyType> changed{&count, &Count::hit};
};

TEST_F(StageScene, AKeyerNodeIsShownInItsFirstStage) {
    EXPECT_EQ(viewer->getStages(), (std::vector<std::string>{"matte", "degrain", "spill"}));
    EXPECT_EQ(viewer->getStage(), "matte");
    EXPECT_EQ(made, 1);
    EXPECT_EQ(PiEventHandlingInterface::getInstance().getCurrentEventHandler(),
              viewer->getCurrentEventHandler());
}

TEST_F(StageScene, AToolOfAnotherStageSwitchesTheViewerToThatStage) {
    current().setCurrentTool(TsSpillBlendTool::getManipToolName(3));
    EXPECT_EQ(viewer->getStage(), "spill");
    EXPECT_EQ(current().getCurrentTool(), "Adjust Blend");
    EXPECT_EQ(handlerChanges, 1);
    EXPECT_EQ(PiEventHandlingInterface::getInstance().getCurrentEventHandler(),
              viewer->getCurrentEventHandler());

    // A tool the stage holds changes the tool only.
    current().setCurrentTool("Pick Key Colour 2");
    EXPECT_EQ(viewer->getStage(), "spill");
    EXPECT_EQ(current().getCurrentTool(), "Pick Key Colour 2");

    // A tool nobody holds changes nothing.
    current().setCurrentTool("Paint");
    EXPECT_EQ(viewer->getStage(), "spill");
    EXPECT_EQ(current().getCurrentTool(), "Pick Key Colour 2");
    EXPECT_EQ(made, 2);
}

TEST_F(StageScene, AStageWhoseHandlerFailsIsReportedAndLeavesNoHandler) {
    failDegrain = true;
    EXPECT_FALSE(viewer->setStage("degrain"));
    EXPECT_TRUE(reported("the degrain handler cannot be made"));
    EXPECT_FALSE(viewer->getCurrentEventHandler());
    // The viewer still takes events, and another stage works.
    sendMouse(viewer.get(), QEvent::MouseButtonPress, QPointF(10, 10));
    EXPECT_TRUE(viewer->setStage("matte"));
    EXPECT_FALSE(viewer->setStage("colour"));
    EXPECT_TRUE(reported("no viewer stage \"colour\""));
    EXPECT_EQ(viewer->getStage(), "matte");
}

TEST_F(StageScene, ANodeWithoutStagesGetsNoHandler) {
    auto plain = rcMake<PiNode>("plain");
    graph->getRoot()->addNode(plain);
    viewer->setNode(plain);
    EXPECT_TRUE(viewer->getStages().empty());
    EXPECT_FALSE(viewer->getCurrentEventHandler());
    EXPECT_FALSE(viewer->getImage());
    EXPECT_EQ(viewer->getCommandStack(), &graph->getCommandStack());
}

TEST_F(StageScene, TheCurrentViewerFollowsTheFocusAndFallsBackWhenItsViewerGoes) {
    auto& interface = PiEventHandlingInterface::getInstance();
    ASSERT_EQ(interface.getCurrentViewer(), viewer.get());
    auto other = std::make_unique<UiViewer>(nullptr, "other");
    auto third = std::make_unique<UiViewer>(nullptr, "third");
    other->setNode(keyer);
    EXPECT_EQ(interface.getCurrentViewer(), viewer.get()) << "made, not focused";
    QFocusEvent in(QEvent::FocusIn);
    QCoreApplication::sendEvent(other.get(), &in);
    EXPECT_EQ(interface.getCurrentViewer(), other.get());
    EXPECT_EQ(interface.getCurrentEventHandler(), other->getCurrentEventHandler());

    third.reset();
    EXPECT_EQ(interface.getCurrentViewer(), other.get()) << "a viewer that was not current went";
    const int before = handlerChanges;
    other.reset();
    EXPECT_EQ(interface.getCurrentViewer(), viewer.get()) << "the focus goes back";
    EXPECT_EQ(interface.getCurrentEventHandler(), viewer->getCurrentEventHandler());
    EXPECT_TRUE(interface.getCurrentEventHandler());
    EXPECT_EQ(handlerChanges, before + 1);
    viewer.reset();
    EXPECT_EQ(interface.getCurrentViewer(), nullptr);
    EXPECT_FALSE(interface.getCurrentEventHandler());
}

} // namespace
