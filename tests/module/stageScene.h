#pragma once

#include "support/qtInput.h"

// A keyer node in a viewer widget, shown in one of its stages ("degrain",
// "spill"), with the handler that the module's registered factory makes for
// that stage, and the stage's panel built from its description when a test
// asks for it.
//
// The plate is 40 x 20 pixels:
//   x in [0, 20)   grain: four colours close to the key colour K, repeating
//                  every 2 x 2 pixels
//   x in [20, 30)  the flat colour A
//   x in [30, 40)  the flat colour B
// Key colour 1 and 2 are both K (the key blend is 0).
//
// The view is at zoom 1 with world (0, 0) at window (100, 500): world (x, y)
// shows at window (100 + x, 500 - y). Gestures go through the widget as
// window-system events; hotkeys are handed to the viewer as its widget
// handler hands them on.

#include <base/coAffineMatrixTyped.h>
#include <base/exReporter.h>
#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <base/vwView.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfToolset.h>
#include <gfx/wsRecordingPainter.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piEventHandlingInterface.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiPanel.h>
#include <ui/uiQtEvents.h>
#include <ui/uiViewer.h>

#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace stages {

constexpr unsigned Shift = EvKeyboardState::ShiftMask;
constexpr unsigned Ctrl = EvKeyboardState::CtrlMask;

// The text the module's message catalogue gives an id.
inline std::string catalogueText(const char* id) {
    const MsgFileGuard guard("tessera.msg");
    return MsgServer::getInstance().lookup(id);
}

inline unsigned hotkeyEntry(const std::string& name) {
    return UiHotkeyRegistry::getInstance().findEntry(UiHotkeyRegistry::TesseraDomain, name);
}

// The application exists before any widget of a fixture is made.
struct StageApplication {
    StageApplication() { UiApplication::getInstance(); }
};

class StageScene : public ::testing::Test, private StageApplication {
protected:
    static inline const CoRgbColorTyped<float> K{0.2f, 0.7f, 0.3f};
    static inline const CoRgbaColorTyped<float> A{0.25f, 0.6f, 0.3f, 1.0f};
    static inline const CoRgbaColorTyped<float> B{0.15f, 0.75f, 0.35f, 1.0f};
    static inline const CoRgbaColorTyped<float> grain[4] = {{0.22f, 0.68f, 0.31f, 1.0f},
                                                            {0.18f, 0.72f, 0.29f, 1.0f},
                                                            {0.21f, 0.71f, 0.28f, 1.0f},
                                                            {0.19f, 0.69f, 0.32f, 1.0f}};
    // World points at the centre of a pixel of each region.
    static inline const GePoint2<float> onGrain{4.5f, 10.5f};
    static inline const GePoint2<float> onA{25.5f, 10.5f};
    static inline const GePoint2<float> onB{35.5f, 10.5f};

    // The stage the viewer shows ("degrain" or "spill").
    virtual std::string stage() const = 0;

    void SetUp() override {
        ExReporter::getInstance().clear();
        cursorDepth = UiApplication::getInstance().getOverrideCursorDepth();
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer");
        graph->getRoot()->addNode(group);
        node = group->getKeyerNode(0);

        plate = rcMake<PiImage>(40, 20);
        for (int j = 0; j < 20; ++j) {
            for (int i = 0; i < 40; ++i) {
                plate->setPixel(i, j, i < 20 ? grain[(i % 2) + 2 * (j % 2)] : i < 30 ? A : B);
            }
        }
        node->getImageInput()->setValue(0.0, PiValue(PiImagePtr(plate)));
        node->getKeyColorInput(TsTypes::KeyColor1)->setValue(0.0, PiValue(K));
        node->getKeyColorInput(TsTypes::KeyColor2)->setValue(0.0, PiValue(K));
        node->getMatteParamInput(TsMgTypes::KeyBlend)->setValue(0.0, PiValue(0.0));
        stack().clear();

        viewer = std::make_unique<UiViewer>(nullptr, "stage viewer");
        viewer->resize(800, 600);
        viewer->show();
        viewer->setNode(node);
        ASSERT_TRUE(viewer->setStage(stage()));
        ASSERT_EQ(viewer->getStage(), stage());
        ASSERT_TRUE(viewer->getCurrentEventHandler());
        viewer->getMutableView().setZoom(1.0f);
        viewer->getMutableView().setPan({100.0f, 500.0f});
        ASSERT_EQ(PiEventHandlingInterface::getInstance().getCurrentViewer(),
                  static_cast<PiViewer*>(viewer.get()));
    }

    void TearDown() override {
        panel.reset();
        viewer.reset();
        // Whatever a panel pushed, it popped.
        EXPECT_EQ(UiApplication::getInstance().getOverrideCursorDepth(), cursorDepth);
        // Nothing went wrong on the way: the host reports what it contains.
        for (const auto& r : ExReporter::getInstance().getReports()) {
            ADD_FAILURE() << r.text();
        }
        ExReporter::getInstance().clear();
    }

    // The stage panel `name` ("tsDegrain", "tsSpillBlend") of the node, built
    // from its description at the viewer's time.
    void openPanel(const std::string& name) {
        panel = std::make_unique<UiPanel>(name);
        const RCShdPtr<const PiTimePath> timePath(
            new PiTimePath(&viewer->getTime(), RCShdPtr<const PiPath>(new PiPath(node))));
        ASSERT_TRUE(panel->setStage(name, node, timePath));
        ASSERT_TRUE(panel->getController());
    }

    PiCommandStack& stack() { return graph->getCommandStack(); }
    MfCurrentToolEventHandler& handler() {
        return refCast<MfCurrentToolEventHandler>(*viewer->getCurrentEventHandler());
    }
    std::string currentTool() { return handler().getCurrentTool(); }
    void useTool(const std::string& name) { handler().setCurrentTool(name); }
    double time() { return viewer->getTime().getTime(); }
    double value(const RCShdPtr<PiInput>& input) { return input->getTypedValue<double>(time()); }
    void setValue(const RCShdPtr<PiInput>& input, double v) { input->setValue(time(), PiValue(v)); }

    GePoint2<float> at(const GePoint2<float>& world) const {
        return VwUtils::worldToWindowOrtho(viewer->getView(), world);
    }

    // Pointer gestures at world points, through the widget.
    void mouse(QEvent::Type type, const GePoint2<float>& world, unsigned modifiers = 0) {
        const GePoint2<float> p = at(world);
        sendMouse(viewer.get(), type, QPointF(p.x, p.y), Qt::LeftButton,
                  UiQtEvents::toQtModifiers(modifiers));
    }
    void press(const GePoint2<float>& world, unsigned modifiers = 0) {
        mouse(QEvent::MouseButtonPress, world, modifiers);
    }
    void moveTo(const GePoint2<float>& world, unsigned modifiers = 0) {
        mouse(QEvent::MouseMove, world, modifiers);
    }
    void release(const GePoint2<float>& world, unsigned modifiers = 0) {
        mouse(QEvent::MouseButtonRelease, world, modifiers);
    }
    void click(const GePoint2<float>& world, unsigned modifiers = 0) {
        press(world, modifiers);
        release(world, modifiers);
    }
    void drag(const GePoint2<float>& from, const GePoint2<float>& to, unsigned modifiers = 0,
              int steps = 4) {
        press(from, modifiers);
        for (int s = 1; s <= steps; ++s) {
            const float t = static_cast<float>(s) / static_cast<float>(steps);
            moveTo({from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)}, modifiers);
        }
        release(to, modifiers);
    }
    void pressKey(int key) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(viewer.get(), &event);
    }
    void loseFocus() {
        QFocusEvent event(QEvent::FocusOut, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(viewer.get(), &event);
    }
    // A hotkey as the viewer widget's handler hands it on; answers whether
    // the handler used it.
    bool hotkey(const std::string& name) {
        EvHotkeyEvent event(at({200.0f, 200.0f}), EvKeyboardState(), hotkeyEntry(name));
        const bool used = viewer->deliver(event);
        EXPECT_EQ(used, event.isProcessed()) << name;
        return used;
    }

    const WsRecordingPainter& paint() { return viewer->getDisplayList(); }

    int cursorDepth = 0;
    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<TsKeyerNode> node;
    RCShdPtr<PiImage> plate;
    std::unique_ptr<UiViewer> viewer;
    std::unique_ptr<UiPanel> panel;
};

} // namespace stages
