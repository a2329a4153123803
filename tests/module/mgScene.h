#pragma once

#include "support/qtInput.h"

// A keyer node showing a plate of flat colour blocks in a viewer widget, with
// the matte-generation handler that the module's registered factory makes for
// it, and synthetic events.
//
// The plate is 80 x 10 pixels: eight blocks of 10 x 10, block b covering
// x in [10 b, 10 b + 10). Each block's colour is placed in the softness space
// of the key colour K at intrusion 0 (the node's "Overall" is 0), so that
// the softness coordinates (d1, d2, d3) the tools measure are known:
//
//   0 Key         ( 0,    0,    0  )  the key colour itself
//   1 Foreground  ( 1,    0,    0  )  neutral, as far from the key as grey
//   2 Deep A      (-0.9,  0.6,  0  )  deeper than the key, hue turned one way
//   3 Deep B      (-0.9,  0.3,  0  )
//   4 Edge        ( 0.3,  0,    0  )
//   5 Highlight   ( 0,    0,    0.55)
//   6 Shadow      ( 0,    0,   -0.13)
//   7 Hue minus   ( 0.2, -0.07, 0  )
//
// The viewer is the host's viewer widget, shown (offscreen), in the keyer's
// "matte" stage: its handler is the one the module's registered factory
// made. One plate pixel is ten window pixels; world (0, 0) shows at window
// (50, 250). Gestures go through the widget as window-system events.

#include <base/exReporter.h>
#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <base/vwView.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/wsRecordingPainter.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piViewer.h>
#include <pluginAPI/tmTimeClient.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraUtil/tsMgUtils.h>
#include <ui/uiApplication.h>
#include <ui/uiQtEvents.h>
#include <ui/uiViewer.h>
#include <ui/uiWidget.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

enum Block { Key, Foreground, DeepA, DeepB, Edge, Highlight, Shadow, HueMinus, BlockCount };

// Synthetic pointer events at window points.
inline EvPointerButtonDownEvent press(const GePoint2<float>& p, unsigned modifiers = 0) {
    return EvPointerButtonDownEvent(p, EvKeyboardState(modifiers), EvButton::Left);
}
inline EvPointerMoveEvent move(const GePoint2<float>& p, unsigned modifiers = 0,
                               EvButton button = EvButton::Left) {
    return EvPointerMoveEvent(p, EvKeyboardState(modifiers), button);
}
inline EvPointerButtonUpEvent release(const GePoint2<float>& p, unsigned modifiers = 0) {
    return EvPointerButtonUpEvent(p, EvKeyboardState(modifiers), EvButton::Left);
}

// The text the module's message catalogue gives an id.
inline std::string catalogueText(const char* id) {
    const MsgFileGuard guard("tessera.msg");
    return MsgServer::getInstance().lookup(id);
}

// A softness coordinate of a colour as the tools compute it, in float: row
// k of the matrix applied to (r, g, b, 1).
inline float softness(const CoAffineMatrixTyped<float>& m, int k,
                      const CoRgbaColorTyped<float>& c) {
    return m[k] * c.r + m[4 + k] * c.g + m[8 + k] * c.b + m[12 + k];
}

// A colour within a few units in the last place of `start` whose softness
// coordinate k is exactly `target`; false when there is none.
inline bool findColourOn(const CoAffineMatrixTyped<float>& m, int k, float target,
                         const CoRgbaColorTyped<float>& start, CoRgbaColorTyped<float>& found) {
    const auto step = [](float v, int n) {
        for (int s = 0; s < std::abs(n); ++s) {
            v = std::nextafter(v, n < 0 ? -2.0f : 2.0f);
        }
        return v;
    };
    for (int i = -64; i <= 64; ++i) {
        for (int j = -64; j <= 64; ++j) {
            CoRgbaColorTyped<float> c = start;
            c.r = step(c.r, i);
            c.g = step(c.g, j);
            if (softness(m, k, c) == target) {
                found = c;
                return true;
            }
        }
    }
    return false;
}

constexpr unsigned Shift = EvKeyboardState::ShiftMask;
constexpr unsigned Ctrl = EvKeyboardState::CtrlMask;

// The application exists before any widget of a fixture is made.
struct MgApplication {
    MgApplication() { UiApplication::getInstance(); }
};

class MgScene : public ::testing::Test, private MgApplication {
protected:
    // The key colour of the plate's screen.
    static inline const CoRgbColorTyped<float> K{0.3f, 0.6f, 0.35f};

    void SetUp() override {
        ExReporter::getInstance().clear();
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer");
        graph->getRoot()->addNode(group);
        node = group->getKeyerNode(0);
        mg = rcCast<TsMgInterface>(node->getController());

        plate = rcMake<PiImage>(80, 10);
        for (int b = 0; b < BlockCount; ++b) {
            for (int j = 0; j < 10; ++j) {
                for (int i = 10 * b; i < 10 * b + 10; ++i) {
                    plate->setPixel(i, j, blockColour(static_cast<Block>(b)));
                }
            }
        }
        node->getImageInput()->setValue(0.0, PiValue(PiImagePtr(plate)));
        setKeyColours(K, K);
        setParam(TsMgTypes::Overall, 0.0);
        setParam(TsMgTypes::KeyBlend, 0.0);
        setParam(TsMgTypes::EdgeSoftness, 0.5);
        stack().clear();

        viewer = std::make_unique<UiViewer>(nullptr, "matte viewer");
        viewer->resize(1000, 400);
        viewer->show();
        viewer->setNode(node);
        ASSERT_EQ(viewer->getStage(), "matte");
        ASSERT_TRUE(viewer->getCurrentEventHandler());
        viewer->getMutableView().setZoom(10.0f);
        viewer->getMutableView().setPan({50.0f, 250.0f});
    }

    void TearDown() override {
        viewer.reset();
        // Nothing went wrong on the way: the host reports what it contains.
        for (const auto& r : ExReporter::getInstance().getReports()) {
            ADD_FAILURE() << r.text();
        }
        ExReporter::getInstance().clear();
    }

    // The softness coordinates (d1, d2, d3) of the blocks.
    static CoRgbColorTyped<float> blockCoordinates(Block b) {
        switch (b) {
        case Key:
            return {0.0f, 0.0f, 0.0f};
        case Foreground:
            return {1.0f, 0.0f, 0.0f};
        case DeepA:
            return {-0.9f, 0.6f, 0.0f};
        case DeepB:
            return {-0.9f, 0.3f, 0.0f};
        case Edge:
            return {0.3f, 0.0f, 0.0f};
        case Highlight:
            return {0.0f, 0.0f, 0.55f};
        case Shadow:
            return {0.0f, 0.0f, -0.13f};
        case HueMinus:
        default:
            return {0.2f, -0.07f, 0.0f};
        }
    }
    // The colour at softness coordinates d of a key colour (K unless told),
    // intrusion 0: key + |c| (d1 e1 + d2 e2 + d3 e3).
    static CoRgbaColorTyped<float> colourAt(const CoRgbColorTyped<float>& d,
                                            const CoRgbColorTyped<float>& key = K) {
        if (d.r == 0.0f && d.g == 0.0f && d.b == 0.0f) {
            return {key.r, key.g, key.b, 1.0f};
        }
        const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(key);
        const float w[3] = {d.r, d.g, d.b};
        double x[3] = {key.r, key.g, key.b};
        for (int k = 0; k < 3; ++k) {
            x[0] += axes.chroma * w[k] * axes.axis[k].r;
            x[1] += axes.chroma * w[k] * axes.axis[k].g;
            x[2] += axes.chroma * w[k] * axes.axis[k].b;
        }
        return {static_cast<float>(x[0]), static_cast<float>(x[1]), static_cast<float>(x[2]), 1.0f};
    }
    static CoRgbaColorTyped<float> blockColour(Block b) { return colourAt(blockCoordinates(b)); }

    // World and window points: the centre of a block, the boundary between a
    // block and the next.
    static GePoint2<float> blockCentre(Block b) {
        return {10.0f * static_cast<float>(b) + 5.0f, 5.0f};
    }
    static GePoint2<float> boundaryAfter(Block b) {
        return {10.0f * static_cast<float>(b) + 10.0f, 5.0f};
    }
    GePoint2<float> at(const GePoint2<float>& world) const {
        return VwUtils::worldToWindowOrtho(viewer->getView(), world);
    }

    // Paints the plate pixels [x0, x1) x [y0, y1) in one colour (a new plate,
    // with no undo step).
    void paintPlate(int x0, int x1, int y0, int y1, const CoRgbaColorTyped<float>& colour) {
        plate = rcMake<PiImage>(*plate);
        for (int j = y0; j < y1; ++j) {
            for (int i = x0; i < x1; ++i) {
                plate->setPixel(i, j, colour);
            }
        }
        node->getImageInput()->setValue(0.0, PiValue(PiImagePtr(plate)));
        stack().clear();
    }

    PiCommandStack& stack() { return graph->getCommandStack(); }
    MfCurrentToolEventHandler& handler() {
        return refCast<MfCurrentToolEventHandler>(*viewer->getCurrentEventHandler());
    }
    std::string currentTool() { return handler().getCurrentTool(); }
    void useTool(int index) { handler().setCurrentTool(TsMgTool::getManipToolName(index)); }

    // The viewer's frame (0 before there is a viewer).
    double now() const { return viewer ? viewer->getTime().getTime() : 0.0; }
    void setParam(TsMgTypes::MatteParam p, double v) {
        mg->getMatteParamInput(p)->setValue(now(), PiValue(v));
    }
    double param(TsMgTypes::MatteParam p) {
        return mg->getMatteParamInput(p)->getTypedValue<double>(now());
    }
    void setKeyColours(const CoRgbColorTyped<float>& k1, const CoRgbColorTyped<float>& k2) {
        mg->getKeyColorInput(TsTypes::KeyColor1)->setValue(0.0, PiValue(k1));
        mg->getKeyColorInput(TsTypes::KeyColor2)->setValue(0.0, PiValue(k2));
    }
    CoRgbColorTyped<float> keyColour(TsTypes::KeyColor k) {
        return mg->getKeyColorInput(k)->getTypedValue<CoRgbColorTyped<float>>(now());
    }

    // Pointer gestures at world points, through the widget.
    void mouse(QEvent::Type type, const GePoint2<float>& world, unsigned modifiers) {
        const GePoint2<float> p = at(world);
        sendMouse(viewer.get(), type, QPointF(p.x, p.y), Qt::LeftButton,
                  UiQtEvents::toQtModifiers(modifiers));
    }
    void click(const GePoint2<float>& world, unsigned modifiers = 0) {
        mouse(QEvent::MouseButtonPress, world, modifiers);
        mouse(QEvent::MouseButtonRelease, world, modifiers);
    }
    void drag(const GePoint2<float>& from, const GePoint2<float>& to, unsigned modifiers = 0,
              int steps = 4) {
        mouse(QEvent::MouseButtonPress, from, modifiers);
        for (int s = 1; s <= steps; ++s) {
            const float t = static_cast<float>(s) / static_cast<float>(steps);
            mouse(QEvent::MouseMove, {from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)},
                  modifiers);
        }
        mouse(QEvent::MouseButtonRelease, to, modifiers);
    }
    // An event handed to the viewer's handler as the widget does; answers
    // whether it was used.
    bool deliver(EvEvent& event) { return viewer->deliver(event); }
    bool deliver(EvEvent&& event) { return viewer->deliver(event); }
    // A click as events handed straight to the handler; answers whether the
    // press was used.
    bool clickEvents(const GePoint2<float>& world, unsigned modifiers = 0) {
        const bool used = deliver(press(at(world), modifiers));
        deliver(release(at(world), modifiers));
        return used;
    }
    const WsRecordingPainter& paint() { return viewer->getDisplayList(); }
    // A key press in the viewer widget, as the window system sends it.
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(viewer.get(), &event);
    }

    // Every input's state, to compare a node with itself later.
    std::vector<PiInputState> nodeState() const {
        std::vector<PiInputState> states;
        for (int i = 0; i < node->getInputCount(); ++i) {
            states.push_back(node->getInput(i)->getState());
        }
        return states;
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<TsKeyerNode> node;
    RCShdPtr<TsMgInterface> mg;
    RCShdPtr<PiImage> plate;
    std::unique_ptr<UiViewer> viewer;
};
