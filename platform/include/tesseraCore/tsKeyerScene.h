#pragma once

#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>

#include <base/rcShdPtr.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImage.h>

#include <string>

// What a keyer is worked on in, with no viewer and no panels: one keyer group
// with its keyer nodes in a graph of its own (whose command stack is the undo
// history), and the plate and background that every keyer node of the group
// is wired to. The programs put their viewer and panels around it; a batch
// render uses it alone.
//
// Plates are the host's wiring, not an edit: they are put on every keyer
// node's image input (and the background on its background input) without an
// undo step, and again on the keyer nodes that a setup load adds.
class TsKeyerScene {
public:
    TsKeyerScene();
    TsKeyerScene(const TsKeyerScene&) = delete;
    TsKeyerScene& operator=(const TsKeyerScene&) = delete;

    // Replaces the keyer by a new group of `generation` (1 or 2) with `nodes`
    // keyer nodes ("keyer1", ...): slots hold the first six, the first is
    // selected, and the history starts empty.
    void makeKeyer(int generation, int nodes);
    const RCShdPtr<TsKeyerGroup>& getKeyer() const { return _group; }
    const RCShdPtr<PiGraph>& getGraph() const { return _graph; }
    PiCommandStack& getCommandStack() const { return _graph->getCommandStack(); }
    // The group itself (by its name) or a node directly inside it; empty
    // when none has the name.
    RCShdPtr<PiNode> findNode(const std::string& name) const;
    // The keyer node the group has selected, else its first; empty when the
    // group has none. What is shown and rendered.
    RCShdPtr<TsKeyerNode> getActiveNode() const;

    // --- the plate and the background (null for none)
    void setPlate(const PiImagePtr& plate, const std::string& name);
    void setBackground(const PiImagePtr& background, const std::string& name);
    const PiImagePtr& getPlate() const { return _plate; }
    const std::string& getPlateName() const { return _plateName; }
    const PiImagePtr& getBackground() const { return _background; }
    const std::string& getBackgroundName() const { return _backgroundName; }

    // --- setups of the whole group (TsSetup); false and `error` on failure
    bool saveSetup(const std::string& path, std::string& error) const;
    bool loadSetup(const std::string& path, std::string& error);
    // A setup opened on its own: the keyer becomes a new group of the
    // setup's generation, with no history, loaded from it.
    bool openSetup(const std::string& path, std::string& error);

private:
    void wirePlates();

    RCShdPtr<PiGraph> _graph;
    RCShdPtr<TsKeyerGroup> _group;
    PiImagePtr _plate;
    PiImagePtr _background;
    std::string _plateName;
    std::string _backgroundName;
};
