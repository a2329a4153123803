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

TEST_F(ViewerScene, ToolsWriteAtTheViewersFrame) {
    const RCShdPtr<PiInput> spill = keyer->getSpillInput(0);
    spill->setKey(0.0, PiValue(0.2));
    spill->setKey(20.0, PiValue(0.6));
    stack().clear();
    viewer->setFrame(10.0);
    auto tool = rcMake<SliderTool>(spill, timePath(), GePoint2<float>(32.0f, 24.0f));
    installTools({{"Adjust Spill", tool}});
    const QPointF centre = window(32.0f, 24.0f);
    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(60, 0));
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, centre + QPointF(60, 0));
    ASSERT_EQ(spill->getKeyCount(), 3);
    EXPECT_TRUE(spill->hasKeyAt(10.0));
    EXPECT_NEAR(spill->getTypedValue<double>(10.0), 0.7, 1e-6);
    EXPECT_DOUBLE_EQ(spill->getTypedValue<double>(0.0), 0.2);
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(spill->getKeyCount(), 2);
    EXPECT_DOUBLE_EQ(spill->getTypedValue<double>(10.0), 0.4);
}

TEST_F(ViewerScene, EventsReachTheToolInWindowCoordinatesWithTheirKeys) {
    auto tool = rcMake<LoggingTool>();
    installTools({{"log", tool}});
    sendMouse(viewer.get(), QEvent::MouseButtonPress, QPointF(10, 20), Qt::LeftButton,
              Qt::ShiftModifier);
    sendMouse(viewer.get(), QEvent::MouseMove, QPointF(12, 21), Qt::LeftButton, Qt::ShiftModifier);
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, QPointF(12, 21));
    sendKey(viewer.get(), Qt::Key_Escape);
    sendKey(viewer.get(), Qt::Key_Escape, Qt::NoModifier, QString(), QEvent::KeyRelease);
    QFocusEvent out(QEvent::FocusOut);
    QCoreApplication::sendEvent(viewer.get(), &out);
    EXPECT_EQ(tool->log, (std::vector<std::string>{"down 10,20", "move 12,21", "up 12,21",
                                                   "key down Escape 12,21", "key up Escape 12,21",
                                                   "focus out"}));
    EXPECT_EQ(tool->modifiers[0], EvKeyboardState::ShiftMask);
    EXPECT_EQ(tool->modifiers[2], 0u);
}

TEST_F(ViewerScene, AHotkeyGoesToTheCurrentHandlerAndAPlainKeyAsAKey) {
    auto tool = rcMake<LoggingTool>();
    installTools({{"log", tool}});
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const unsigned matte = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Matte");
    registry.addHotkeyHandler(matte, viewer->getEventHandler());
    sendMouse(viewer.get(), QEvent::MouseMove, QPointF(30, 40), Qt::NoButton);
    sendKey(viewer.get(), Qt::Key_M, Qt::NoModifier, "m");
    sendKey(viewer.get(), Qt::Key_N, Qt::NoModifier, "n");
    registry.removeHotkeyHandler(matte, viewer->getEventHandler());
    EXPECT_EQ(tool->log,
              (std::vector<std::string>{"move 30,40", "hotkey " + std::to_string(matte) + " 30,40",
                                        "key down N 30,40"}));
}

TEST_F(ViewerScene, TheMiddleButtonPansAndTheWheelZoomsAboutThePointer) {
    auto tool = rcMake<LoggingTool>();
    installTools({{"log", tool}});
    const GePoint2<float> before = VwUtils::windowToWorldOrtho(viewer->getView(), {100, 100});
    sendMouse(viewer.get(), QEvent::MouseButtonPress, QPointF(100, 100), Qt::MiddleButton);
    sendMouse(viewer.get(), QEvent::MouseMove, QPointF(130, 90), Qt::MiddleButton);
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, QPointF(130, 90), Qt::MiddleButton);
    EXPECT_TRUE(tool->log.empty());
    const GePoint2<float> moved = VwUtils::windowToWorldOrtho(viewer->getView(), {130, 90});
    EXPECT_FLOAT_EQ(moved.x, before.x);
    EXPECT_FLOAT_EQ(moved.y, before.y);

    const float zoom = viewer->getView().getZoom();
    const GePoint2<float> under = VwUtils::windowToWorldOrtho(viewer->getView(), {50, 60});
    QWheelEvent wheel(QPointF(50, 60), viewer->mapToGlobal(QPointF(50, 60)), QPoint(),
                      QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(viewer.get(), &wheel);
    EXPECT_FLOAT_EQ(viewer->getView().getZoom(), zoom * 1.25f);
    const GePoint2<float> still = VwUtils::windowToWorldOrtho(viewer->getView(), {50, 60});
    EXPECT_NEAR(still.x, under.x, 1e-4);
    EXPECT_NEAR(still.y, under.y, 1e-4);

    sendKey(viewer.get(), Qt::Key_Home);
    EXPECT_FLOAT_EQ(viewer->getView().getZoom(), zoom);
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

TEST_F(ViewerScene, FailuresOfHotkeysAndDrawingAreContainedToo) {
    auto tool = rcMake<LoggingTool>();
    tool->throwOn = "hotkey";
    installTools({{"log", tool}});
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const unsigned spill = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Adjust Spill");
    registry.addHotkeyHandler(spill, viewer->getEventHandler());
    sendKey(viewer.get(), Qt::Key_S, Qt::NoModifier, "s");
    registry.removeHotkeyHandler(spill, viewer->getEventHandler());
    EXPECT_TRUE(reported("logging tool broke on hotkey"));

    class BrokenDrawing : public MfTool {
    public:
        void draw(const VwView&) const override { throw std::logic_error("cannot draw"); }
    };
    installTools({{"broken", rcMake<BrokenDrawing>()}});
    viewer->grab();
    EXPECT_TRUE(reported("viewer test viewer: drawing: cannot draw"));
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

TEST_F(ViewerScene, RequestsPostedByAToolRunRightAfterItsEvent) {
    struct Mark : EvRequestEvent {
        explicit Mark(bool& ran)
            : _ran(ran) {}
        void process() override { _ran = true; }
        bool& _ran;
    };
    bool ran = false;
    auto tool = rcMake<SliderTool>(keyer->getSpillInput(0), timePath(), GePoint2<float>(32, 24));
    tool->onMonitor = [&] {
        UiApplication::getInstance().postRequest(OPtr<EvRequestEvent>(new Mark(ran)));
        EXPECT_FALSE(ran);
    };
    installTools({{"Adjust Spill", tool}});
    const QPointF centre = window(32.0f, 24.0f);
    sendMouse(viewer.get(), QEvent::MouseButtonPress, centre);
    sendMouse(viewer.get(), QEvent::MouseMove, centre + QPointF(5, 0));
    EXPECT_TRUE(ran);
    sendMouse(viewer.get(), QEvent::MouseButtonRelease, centre + QPointF(5, 0));
}

TEST_F(ViewerScene, TheViewerShowsTheCursorOfItsTool) {
    auto pick = PiImgPick::create(keyer->getImageInput(), timePath(), 0);
    auto tool =
        rcMake<MfImgPickColorTool>(*pick, *viewer, RCShdPtr<PiNode>(keyer), viewer->getPath(),
                                   keyer->getKeyColorInput(TsTypes::KeyColor(0)));
    installTools({{"pick", tool}});
    sendMouse(viewer.get(), QEvent::MouseMove, window(10.0f, 10.0f), Qt::NoButton);
    EXPECT_EQ(viewer->cursor().shape(), Qt::BitmapCursor);
    installTools({});
    EXPECT_EQ(viewer->cursor().shape(), Qt::ArrowCursor);
}

// A pick started elsewhere (a panel's toggle): a grab takes the next click,
// finds the viewer under it through the main window and hands the click to
// the viewer's handler, which must see it in the viewer's coordinates.
TEST_F(ViewerScene, AGrabbedClickHandedToTheViewerUnderItPicksThere) {
    QWidget window;
    window.resize(600, 400);
    viewer->setParent(&window);
    viewer->setGeometry(120, 50, 400, 300);
    window.show();
    viewer->fitImage();
    UiMainWindow main(&window);

    auto pick = PiImgPick::create(keyer->getImageInput(), timePath(), 0);
    const RCShdPtr<PiStructuredInput> key = keyer->getKeyColorInput(TsTypes::KeyColor(0));
    auto tool =
        rcMake<MfImgPickColorTool>(*pick, *viewer, RCShdPtr<PiNode>(keyer), viewer->getPath(), key);
    installTools({{"pick", tool}});

    struct Picker : UiGrabHandler {
        Picker(UiMainWindow& main)
            : UiGrabHandler("picker")
            , _main(main) {}
        void callback(EvEvent& event) override {
            if (!event.isA<EvPointerButtonDownEvent>()) {
                return;
            }
            auto& device = static_cast<EvDeviceEvent&>(event);
            auto* area = dynamic_cast<VpDrawArea*>(_main.getWidgetAt(device.getCoord()));
            UiGrab::pointer().release();
            if (!area) {
                return;
            }
            const PiEventContext context(area->getViewer(), event);
            auto handler = rcCast<MfCurrentToolEventHandler>(area->getCurrentEventHandler());
            handler->handleEvent(context);
            EvPointerButtonUpEvent up(device.getCoord(), device.getKeyboardState());
            handler->handleEvent(PiEventContext(area->getViewer(), up));
        }
        UiMainWindow& _main;
    } picker(main);
    UiGrab::pointer().grab(&picker);

    // Pixel (40, 12) of the plate, clicked through the window.
    const QPointF inViewer = this->window(40.5f, 12.5f);
    sendMouse(&window, QEvent::MouseButtonPress, inViewer + QPointF(120, 50));
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    const CoRgbColorTyped<float> c = key->getTypedValue<CoRgbColorTyped<float>>(0.0);
    EXPECT_FLOAT_EQ(c.r, 40 / 64.0f);
    EXPECT_FLOAT_EQ(c.g, 12 / 48.0f);
    viewer->setParent(nullptr);
}

} // namespace
