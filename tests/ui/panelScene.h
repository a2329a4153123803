#pragma once

// A keyer group with three keyer nodes in a graph, a node outside the group,
// the time of a viewer, and the host's panels: what the panel tests build on.

#include "uiScene.h"

#include <base/rcCast.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piPath.h>
#include <pluginAPI/piTimePath.h>
#include <pluginAPI/tmTimeClient.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <ui/uiPanel.h>

#include <filesystem>
#include <string>

class PanelScene : public UiScene {
protected:
    void SetUp() override {
        UiScene::SetUp();
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer", 1, 3);
        graph->getRoot()->addNode(group);
        stranger = rcMake<PiNode>("grade");
        graph->getRoot()->addNode(stranger);
        keyer1 = group->getKeyerNode(0);
        keyer2 = group->getKeyerNode(1);
        time.setTime(10.0);
        ExReporter::getInstance().clear();
    }
    void TearDown() override { UiScene::TearDown(); }

    RCShdPtr<const PiTimePath> timePathOf(const RCShdPtr<PiNode>& node) {
        return RCShdPtr<const PiTimePath>(
            new PiTimePath(&time, RCShdPtr<const PiPath>(new PiPath(node))));
    }
    PiCommandStack& history() { return graph->getCommandStack(); }

    // Where tests leave pictures of panels: the test's working directory in
    // the build tree.
    static std::string screenshotPath(const std::string& name) {
        std::filesystem::create_directories("screenshots");
        return (std::filesystem::current_path() / "screenshots" / name).string();
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<PiNode> stranger;
    RCShdPtr<TsKeyerNode> keyer1;
    RCShdPtr<TsKeyerNode> keyer2;
    TmTimeClient time;
};
