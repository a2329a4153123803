#include "viewerScene.h"

#include <base/vwUtils.h>
#include <gfx/mfImgPickColorTool.h>
#include <gfx/wsCursorRegistry.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piImgPick.h>
#include <ui/uiGrab.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiMainWindow.h>

#include <QCursor>
#include <QWheelEvent>

#include <stdexcept>

namespace {

// The handle of the first bar in a display list: the narrow filled rectangle.
float handleX(const WsRecordingPainter& list) {
    for (const auto& item : list.getItems(WsRecordingPainter::Item::FilledRect)) {
        if (item.x1 - item.x0 < 20.0f) {
            return 0.5f * (item.x0 + item.x1);
        }
    }
    return -1.0f;
}

TEST_F(ViewerScene, ADragOfARangeManipulatorWritesTheInputAsOneUndoStep) {
    const RCShdPtr<PiInput> spill = keyer->getSpillInput(0);
    auto tool = rcMake<SliderTool>(spill, timePath(), GePoint2<float>(32.0f, 24.0f));
    auto handler = installTools({{"log", rcMake<LoggingTool>()}, {"Adjust Spill", tool}});
    handler->setCurrentTool("Adjust Spill");
    ASSERT_EQ(handler->getCurrentMfTool(), tool);
    // The plate is fitted: its centre is the viewer's centre.
    const QPointF centre = window(32.0f, 24.0f);
    EXPECT_NEAR(centre.x(), 200.0, 0.5);
    EXPECT_NEAR(centre.y(), 150.0, 0.5);
    EXPECT_DOUBLE_EQ(spill->getTypedValue<double>(0.0), 0.5);
    const float before = handleX(viewer->getDisplayList());
    EXPECT_NEAR(before, centre.x(), 0.5);

    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    for (int dx = 10; dx <= 90; dx += 10) {
        sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(dx, 3));
    }
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, centre + QPointF(90, 3));

    EXPECT_NEAR(spill->getTypedValue<double>(0.0), 0.8, 1e-6);
    ASSERT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), "Set Spill");
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_NEAR(handleX(viewer->getDisplayList()), before + 90.0f, 0.5f);

    ASSERT_TRUE(stack().undo());
    EXPECT_DOUBLE_EQ(spill->getTypedValue<double>(0.0), 0.5);
    ASSERT_TRUE(stack().redo());
    EXPECT_NEAR(spill->getTypedValue<double>(0.0), 0.8, 1e-6);

    // What the widget paints is what the list says: the bar's outline and
    // handle show in the rendered window.
    const QImage shot = viewer->grab().toImage();
    const QColor handle =
        shot.pixelColor(QPoint(static_cast<int>(before + 90.0f), static_cast<int>(centre.y())));
    EXPECT_GT(handle.lightness(), 180);
}

TEST_F(ViewerScene, AThrowingToolLeavesTheViewerRunningWithNoOpenStep) {
    const RCShdPtr<PiInput> spill = keyer->getSpillInput(0);
    auto tool = rcMake<SliderTool>(spill, timePath(), GePoint2<float>(32.0f, 24.0f));
    int calls = 0;
    tool->onMonitor = [&] {
        if (++calls == 3) {
            throw std::runtime_error("the slider broke");
        }
    };
    installTools({{"Adjust Spill", tool}});
    const QPointF centre = window(32.0f, 24.0f);
    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    for (int dx = 10; dx <= 50; dx += 10) {
        sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(dx, 0));
    }
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, centre + QPointF(50, 0));
    EXPECT_TRUE(reported("viewer test viewer: the slider broke"));
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_FALSE(tool->isManipulating());
    // The two writes before the throw are one step; the moves after it were
    // not a drag any more.
    EXPECT_EQ(stack().getStepCount(), 1);
    EXPECT_NEAR(spill->getTypedValue<double>(0.0), (20.0 + 150.0) / 300.0, 1e-6);

    // And the viewer carries on.
    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(-150, 0));
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, centre + QPointF(-150, 0));
    EXPECT_DOUBLE_EQ(spill->getTypedValue<double>(0.0), 0.0);
    EXPECT_EQ(stack().getStepCount(), 2);
}

TEST_F(ViewerScene, AViewerClosedDuringADragClosesTheStepEvenWhenItsHandlerLivesOn) {
    auto tool = rcMake<SliderTool>(keyer->getSpillInput(0), timePath(), GePoint2<float>(32, 24));
    const RCShdPtr<MfCurrentToolEventHandler> kept = installTools({{"Adjust Spill", tool}});
    const QPointF centre = window(32.0f, 24.0f);
    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(30, 0));
    EXPECT_TRUE(stack().isStepOpen());
    viewer.reset();
    EXPECT_FALSE(tool->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 1);
}

} // namespace
