#pragma once

// A small scene for the viewer-side tests that need no window: a graph with
// one node (an 8 x 6 plate, an "amount" in [0, 1], a "colour"), and a viewer
// of that node without a window.

#include <base/rcShdPtr.h>
#include <base/vwUtils.h>
#include <base/vwView.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfEventHandlerUtil.h>
#include <gfx/wsRecordingPainter.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputPolicy.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piViewer.h>
#include <pluginAPI/tmTimeClient.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

class TestViewer : public PiViewer {
public:
    TestViewer()
        : view(400, 300) {}

    const VwView& getView() const override { return view; }
    void redraw() override { ++redraws; }
    const TmTimeClient* getTimeClient() const override { return &time; }
    RCShdPtr<PiNode> getNode() const override { return node; }
    RCShdPtr<PiPath> getPath() const override { return path; }
    PiCommandStack* getCommandStack() const override {
        return node ? node->getCommandStack() : nullptr;
    }
    RCShdPtr<PiEventHandler> getCurrentEventHandler() const override { return handler; }
    bool offerTool(const std::string& name) override {
        offered.push_back(name);
        return false;
    }

    void show(const RCShdPtr<PiNode>& n) {
        node = n;
        path = rcMake<PiPath>(n);
    }

    // Delivers an event the way the host does; answers whether it was used.
    bool deliver(EvEvent& event) {
        PiEventContext context(*this, event);
        return MfEventHandlerUtil::deliver(*handler, context);
    }

    // Records both drawing passes of the handler.
    const WsRecordingPainter& paint() {
        painter.clear();
        view.setPainter(&painter);
        MfEventHandlerUtil::draw(*handler,
                                 GeRectangle<int>(0, view.getWidth(), 0, view.getHeight()), view);
        view.setPainter(nullptr);
        return painter;
    }

    VwView view;
    TmTimeClient time;
    RCShdPtr<PiNode> node;
    RCShdPtr<PiPath> path;
    RCShdPtr<PiEventHandler> handler;
    WsRecordingPainter painter;
    int redraws = 0;
    std::vector<std::string> offered;
};

// The colour of plate pixel (i, j): red i / 10, green j / 10, blue 0.5.
inline CoRgbaColorTyped<float> plateColour(int i, int j) {
    return {static_cast<float>(i) / 10.0f, static_cast<float>(j) / 10.0f, 0.5f, 1.0f};
}

class GfxScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        node = rcMake<PiNode>("plateNode");
        auto image = rcMake<PiImage>(8, 6);
        for (int j = 0; j < 6; ++j) {
            for (int i = 0; i < 8; ++i) {
                image->setPixel(i, j, plateColour(i, j));
            }
        }
        plate = rcMake<PiInput>("plate", PiValue(PiImagePtr(image)));
        amount = rcMake<PiInput>("amount", PiValue(0.5));
        amount->setPolicy(RCShdPtr<const PiInputPolicy>(new PiRangeInputPolicy<double>(0.0, 1.0)));
        colour = rcMake<PiStructuredInput>("colour", CoRgbColorTyped<float>(0, 0, 0));
        node->addInput(plate);
        node->addInput(amount);
        node->addInput(colour);
        graph->getRoot()->addNode(node);
        viewer.show(node);
        // One plate pixel is ten window pixels; world (0, 0) at window (50, 250).
        viewer.view.setZoom(10.0f);
        viewer.view.setPan({50.0f, 250.0f});
    }

    PiCommandStack& stack() { return graph->getCommandStack(); }

    // Window coordinates of a world point.
    GePoint2<float> at(float x, float y) const {
        return VwUtils::worldToWindowOrtho(viewer.view, {x, y});
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiNode> node;
    RCShdPtr<PiInput> plate, amount;
    RCShdPtr<PiStructuredInput> colour;
    TestViewer viewer;
};

// Synthetic events at window points.
inline EvPointerButtonDownEvent press(const GePoint2<float>& p, unsigned modifiers = 0,
                                      EvButton button = EvButton::Left) {
    return EvPointerButtonDownEvent(p, EvKeyboardState(modifiers), button);
}
inline EvPointerMoveEvent move(const GePoint2<float>& p, unsigned modifiers = 0,
                               EvButton button = EvButton::Left) {
    return EvPointerMoveEvent(p, EvKeyboardState(modifiers), button);
}
inline EvPointerButtonUpEvent release(const GePoint2<float>& p, unsigned modifiers = 0,
                                      EvButton button = EvButton::Left) {
    return EvPointerButtonUpEvent(p, EvKeyboardState(modifiers), button);
}
