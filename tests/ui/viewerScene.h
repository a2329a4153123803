#pragma once

// A keyer node showing a plate in a viewer widget, and the tools the tests put
// on it: a slider tool whose bar writes an input of the node, and a tool that
// logs what reaches it.

#include "uiScene.h"

#include <base/rcCast.h>
#include <base/vwUtils.h>
#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfRangeManipulator.h>
#include <gfx/mfToolset.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piEventContext.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piTimePath.h>
#include <tesseraCore/tsKeyerNode.h>
#include <ui/uiViewer.h>

#include <functional>

// One bar, 300 window pixels wide (scaling behaviour 1), placed at a world
// point; its x extent [-150, 150] maps onto [0, 1] of the input.
class SliderTool : public MfTool {
public:
    SliderTool(const RCShdPtr<PiInput>& input, const RCShdPtr<const PiTimePath>& timePath,
               const GePoint2<float>& place)
        : bar(new MfRangeManipulator(GeRectangle<float>(-150, 150, -10, 10), "Spill"))
        , value(PiInputValue<double>::createTyped(input, timePath)) {
        bar->setScalingBehaviour(1);
        bar->setBaseTransform(GeAffineMatrix3<float>::translation(place.x, place.y));
        bar->setValue(static_cast<float>(value->getValue() * 300.0 - 150.0));
        addManipulator(bar);
        setUndoString("Set Spill");
    }
    void monitorManipulation(const PiEventContext&) override {
        if (onMonitor) {
            onMonitor();
        }
        value->setValue((bar->getValue() + 150.0) / 300.0);
    }

    RCShdPtr<MfRangeManipulator> bar;
    RCShdPtr<PiInputValue<double>> value;
    std::function<void()> onMonitor;
};

// Logs the kind of every event it gets and where, and uses none.
class LoggingTool : public MfTool {
public:
    bool handleEvent(const PiEventContext& context) override {
        EvEvent& e = context.getEvent();
        std::string entry = e.isA<EvHotkeyEvent>()              ? "hotkey"
                            : e.isA<EvKeyDownEvent>()           ? "key down"
                            : e.isA<EvKeyUpEvent>()             ? "key up"
                            : e.isA<EvPointerButtonDownEvent>() ? "down"
                            : e.isA<EvPointerButtonUpEvent>()   ? "up"
                            : e.isA<EvPointerMoveEvent>()       ? "move"
                            : e.isA<EvFocusOutEvent>()          ? "focus out"
                                                                : "other";
        if (auto* key = dynamic_cast<EvKeyEvent*>(&e)) {
            entry += std::string(" ") + EvKeyCode::toName(key->getKeyCode());
        }
        if (auto* hotkey = dynamic_cast<EvHotkeyEvent*>(&e)) {
            entry += " " + std::to_string(hotkey->getEntry());
            e.setProcessed(true);
        }
        if (context.hasDeviceEvent()) {
            const GePoint2<float> c = context.getDeviceEvent().getCoord();
            entry +=
                " " + std::to_string(std::lround(c.x)) + "," + std::to_string(std::lround(c.y));
            modifiers.push_back(context.getDeviceEvent().getKeyboardState().getModifierMask());
        }
        log.push_back(entry);
        if (throwOn == entry.substr(0, throwOn.size()) && !throwOn.empty()) {
            throw std::runtime_error("logging tool broke on " + entry);
        }
        return e.isProcessed();
    }
    std::vector<std::string> log;
    std::vector<unsigned> modifiers;
    std::string throwOn;
};

class ViewerScene : public UiScene {
protected:
    void SetUp() override {
        UiScene::SetUp();
        graph = PiGraph::create();
        keyer = TsKeyerNode::create("keyer");
        auto plate = rcMake<PiImage>(64, 48);
        for (int j = 0; j < 48; ++j) {
            for (int i = 0; i < 64; ++i) {
                plate->setPixel(i, j, {i / 64.0f, j / 48.0f, 0.25f, 1.0f});
            }
        }
        keyer->getImageInput()->setValue(0.0, PiValue(PiImagePtr(plate)));
        graph->getRoot()->addNode(keyer);
        graph->getCommandStack().clear();
        viewer = std::make_unique<UiViewer>(nullptr, "test viewer");
        viewer->resize(400, 300);
        viewer->show();
        viewer->setNode(keyer);
    }
    void TearDown() override {
        viewer.reset();
        UiScene::TearDown();
    }

    // A handler with the given tools, installed on the viewer, the first
    // current.
    RCShdPtr<MfCurrentToolEventHandler>
    installTools(const std::vector<std::pair<std::string, RCShdPtr<MfTool>>>& tools) {
        auto handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(*viewer));
        for (const auto& [name, tool] : tools) {
            handler->appendTool(name, tool);
        }
        viewer->setEventHandler(handler);
        return handler;
    }

    RCShdPtr<const PiTimePath> timePath() const {
        return RCShdPtr<const PiTimePath>(
            new PiTimePath(viewer->getTimeClient(), viewer->getPath()));
    }
    QPointF window(float x, float y) const {
        const GePoint2<float> p = VwUtils::worldToWindowOrtho(viewer->getView(), {x, y});
        return QPointF(p.x, p.y);
    }
    PiCommandStack& stack() { return graph->getCommandStack(); }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerNode> keyer;
    std::unique_ptr<UiViewer> viewer;
};
