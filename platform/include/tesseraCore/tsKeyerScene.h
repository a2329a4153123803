#pragma once

#include <tesseraCore/io/tsSequenceClip.h>
#include <tesseraCore/tesseraCoreExport.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>

#include <base/cbEmptyType.h>
#include <base/cbMethod.h>
#include <base/rcShdPtr.h>
#include <pluginAPI/piClip.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>

#include <array>
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
//
// A plate or background read from a file is read in the colour space the
// group holds for it (TsKeyerGroup), and read again whenever that choice
// changes (an edit, its undo, a setup load) or another colour configuration
// comes into use (refreshColour). A read that fails then is reported and
// leaves the image there was.
class TS_CORE_API TsKeyerScene {
public:
    enum class Source { Plate, Background };

    TsKeyerScene();
    ~TsKeyerScene();
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

    // --- the plate and the background (null for none): stills or sequences
    void setPlate(const PiClipPtr& plate, const std::string& name);
    void setBackground(const PiClipPtr& background, const std::string& name);
    const PiClipPtr& getPlate() const { return _plate; }
    const std::string& getPlateName() const { return _plateName; }
    const PiClipPtr& getBackground() const { return _background; }
    const std::string& getBackgroundName() const { return _backgroundName; }

    // --- files and their colour spaces
    // Reads the plate (the background) from a file (TsPlateIO) in the
    // group's choice of colour space, or in `space` when given ("" for
    // automatic), which then becomes the group's choice; and sets it under
    // `name`. False and `error` when the file cannot be read or the space is
    // not in the configuration, and nothing changes.
    // A file that is a frame pattern (name.####.exr) is read as a sequence,
    // opened as `sequence` says (TsSequenceClip).
    bool readSource(Source source, const std::string& path, const std::string& name,
                    std::string& error, const std::string* space = nullptr,
                    const TsSequenceOptions& sequence = {});
    // The colour space chosen for the source: a name, "" for automatic.
    std::string getColourSpace(Source source) const;
    // Sets the choice (an undo step, "Plate Colour Space" or "Background
    // Colour Space"); "" for automatic. False and `error` for a name the
    // configuration does not hold.
    bool setColourSpace(Source source, const std::string& space, std::string& error);
    // The space the source's file was converted from when last read; "" for
    // an image that came from no file.
    const std::string& getFileColourSpace(Source source) const;
    // Reads every source file again (another configuration is in use).
    void refreshColour();

    // --- setups of the whole group (TsSetup); false and `error` on failure
    bool saveSetup(const std::string& path, std::string& error) const;
    bool loadSetup(const std::string& path, std::string& error);
    // A setup opened on its own: the keyer becomes a new group of the
    // setup's generation, with no history, loaded from it.
    bool openSetup(const std::string& path, std::string& error);

private:
    // What a source was read from, and in which space.
    struct File {
        std::string path;      // "" for an image that came from no file
        std::string requested; // the choice it was read with
        std::string used;      // the space it was converted from
        TsSequenceOptions sequence;
    };

    void wirePlates();
    void attachGroup();
    void detachGroup();
    void colourChanged();
    const RCShdPtr<PiInput>& spaceInput(Source source) const;
    bool reread(Source source);

    RCShdPtr<PiGraph> _graph;
    RCShdPtr<TsKeyerGroup> _group;
    PiClipPtr _plate;
    PiClipPtr _background;
    std::string _plateName;
    std::string _backgroundName;
    std::array<File, 2> _files;
    CbMethod<TsKeyerScene, CbEmptyType> _colourChanged{this, &TsKeyerScene::colourChanged};
};
