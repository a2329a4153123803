#pragma once

#include <base/cbMethod.h>
#include <base/exReporter.h>
#include <base/obObserver.h>
#include <base/rcShdPtr.h>
#include <gfx/mfImgPickTool.h>
#include <internalAPI/snSelection.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImage.h>
#include <pluginAPI/piNodeEvent.h>
#include <pluginAPI/piPath.h>
#include <tesseraCore/colour/tsDisplayTransform.h>
#include <tesseraCore/tsGroupInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsKeyerScene.h>

#include <memory>
#include <string>
#include <vector>

class QWidget;
class PiContainer;
class UiMainWindow;
class UiPanel;
class UiViewer;
class MsgFileGuard;
class TsDemoPlate;
class TsDemoShot;

// What both host programs are made of: the keyer scene (TsKeyerScene: one
// keyer group with its keyer nodes in a graph of their own, whose command
// stack is the undo history, and the plate and background they are wired
// to), the viewer that shows the keyer node the group has selected, the
// application's node selection, and the reports of everything that went
// wrong. The module is loaded and started once per process, before the first
// session; its message catalogue stays open for the life of the session and
// the hotkey table is read.
//
// The viewer follows the keyer: it shows the group's selected keyer node (the
// first keyer node when none is selected) and moves on when that node is
// selected away, removed or brought back by an undo. Selecting a keyer node of
// the group in the application's selection selects it in the group (an undo
// step of the keyer's, "Select Node"); the other way round, when the viewer
// has moved on, an application's selection that holds another keyer node of
// the group, or a node that left it, becomes the shown node, so that the
// panels show the node the viewer shows.
//
// Widgets that pick from any viewer (a panel's key-colour pick) find the
// viewer through the application's main window: unless the program set one,
// the session makes the viewer's window the main window.
//
// The keyer group's main panel is the session's too: its areas show the
// stage panels ("matte", "degrain", "spill", "other") of the shown node. Its
// controller (the module's) fills and follows them; a main panel left
// without a controller still shows the shown node's stage panels.
//
// Every call that runs module code (selection and node events, undo and
// redo, setup loads, tool changes) is contained: a failure is reported, the
// step it left open is closed, and the session carries on.
class HostSession : public ObObserver<Sn> {
public:
    // The viewer is a child of `viewerParent`, the main panel of
    // `panelParent` (top-level windows without them); the viewer is `width`
    // x `height` pixels.
    explicit HostSession(QWidget* viewerParent = nullptr, int width = 960, int height = 540,
                         QWidget* panelParent = nullptr);
    ~HostSession() override;
    HostSession(const HostSession&) = delete;
    HostSession& operator=(const HostSession&) = delete;

    // Loads and starts the module once per process (later calls answer what
    // the first one did).
    static bool startPackages();

    // --- the keyer
    // Replaces the keyer by a new group of `generation` (1 or 2) with
    // `nodes` keyer nodes ("keyer1", ...): slots hold the first six, the
    // first is selected, and the history starts empty.
    void makeKeyer(int generation, int nodes);
    TsKeyerScene& getScene() const { return *_scene; }
    const RCShdPtr<TsKeyerGroup>& getKeyer() const { return _scene->getKeyer(); }
    const RCShdPtr<PiGraph>& getGraph() const { return _scene->getGraph(); }
    PiCommandStack& getCommandStack() const { return _scene->getCommandStack(); }
    // The group itself (by its name) or a node directly inside it; empty
    // when none has the name.
    RCShdPtr<PiNode> findNode(const std::string& name) const { return _scene->findNode(name); }
    // The keyer node the viewer shows; empty when the group has none.
    RCShdPtr<TsKeyerNode> getShownNode() const { return _shown; }

    // The application's selection becomes the node alone (contained).
    void select(const RCShdPtr<PiNode>& node);
    void rename(const RCShdPtr<PiNode>& node, const std::string& name);
    // Removes a node of the group (not the group, not a boundary node);
    // false when it cannot be removed.
    bool remove(const RCShdPtr<PiNode>& node);

    // --- history (contained); answer how many steps were undone (redone)
    int undo(int steps = 1);
    int redo(int steps = 1);

    // --- setups of the whole group; false and `error` on failure (reported).
    // The setup saved or loaded is the one the history is clean at.
    bool saveSetup(const std::string& path, std::string& error) const;
    bool loadSetup(const std::string& path, std::string& error);
    // A setup opened on its own: the keyer becomes a new group of the
    // setup's generation with no history, loaded from it. A file that is no
    // setup changes nothing.
    bool openSetup(const std::string& path, std::string& error);
    // The setup changed since it was last saved or loaded (or the keyer made):
    // the history is not at its clean step.
    bool isModified() const;

    // --- the plate and the background (null for none)
    // A plate that is a sequence brings the frame into its range.
    void setPlate(const PiClipPtr& plate, const std::string& name);
    void setBackground(const PiClipPtr& background, const std::string& name);
    // Shows the built-in demo plate (a still, or a shot of frames 1 to N),
    // kept for its ground truth.
    void setDemoPlate(const std::shared_ptr<const TsDemoPlate>& still);
    void setDemoShot(const RCShdPtr<const TsDemoShot>& shot);
    // The demo plate shown at the current frame, with its truth; null for any
    // other plate.
    std::shared_ptr<const TsDemoPlate> getDemo() const;
    const PiClipPtr& getPlate() const { return _scene->getPlate(); }
    const std::string& getPlateName() const { return _scene->getPlateName(); }
    const PiClipPtr& getBackground() const { return _scene->getBackground(); }
    const std::string& getBackgroundName() const { return _scene->getBackgroundName(); }

    // --- files and colour
    // Reads the plate (the background) from a file in the colour space the
    // keyer chose for it (TsKeyerScene), or in `space` when given ("" for
    // automatic), which then becomes the keyer's choice (an undo step); false
    // and `error` when the file or the space cannot be used, and nothing
    // changes.
    bool readSource(TsKeyerScene::Source source, const std::string& path, const std::string& name,
                    const std::string* space, std::string& error,
                    const TsSequenceOptions& sequence = {});
    bool setColourSpace(TsKeyerScene::Source source, const std::string& space, std::string& error);
    // Makes the colour configuration at `path` the one in use and reads the
    // plate and background files again; false and `error` when it cannot be
    // read (the one in use stays).
    bool loadColourConfig(const std::string& path, std::string& error);
    // What the viewer shows the working space through; after a change, call
    // displayChanged so that the viewer shows it.
    TsDisplayTransform& getDisplayTransform() { return _display; }
    void displayChanged();

    // --- the viewer
    UiViewer& getViewer() const { return *_viewer; }
    double getFrame() const;
    void setFrame(double frame);
    // Makes the tool current in the viewer, by name, as a panel does (the
    // viewer switches to the stage that owns it); false when no stage has it.
    bool setTool(const std::string& name);
    std::string getTool() const;

    // --- panels
    // "main", "matte", "degrain", "spill", "other".
    static const std::vector<std::string>& getPanelNames();
    // The widgets of a panel; empty for an unknown name or a panel that
    // shows nothing.
    RCShdPtr<PiContainer> getPanel(const std::string& name) const;
    UiPanel& getMainPanel() const { return *_mainPanel; }

    // The colours the last pick of any image-pick tool took (key colours,
    // boxes), in the order taken.
    const std::vector<CoRgbColorTyped<float>>& getLastPicked() const { return _lastPicked; }

    // --- what went wrong since the session began, oldest first
    const std::vector<ExReporter::Report>& getReports() const { return _reports; }

    // Runs the application's queued requests and the window system's
    // deferred deletions: what the host does between two user actions.
    static void settle();

private:
    void update(const Sn& selection) override;
    void selectedNodeChanged(const PiNodeEvent& event);
    void nodeRemoved(const PiNodeEvent& event);
    void followKeyer();
    void selectShown();
    void attachGroup();
    void showPanels();
    void detachGroup();

    std::unique_ptr<MsgFileGuard> _catalogue;
    TsDisplayTransform _display; // outlives the viewer that shows through it
    std::unique_ptr<UiViewer> _viewer;
    std::unique_ptr<UiPanel> _mainPanel;
    std::unique_ptr<UiMainWindow> _mainWindow;
    std::unique_ptr<TsKeyerScene> _scene;
    RCShdPtr<TsKeyerNode> _shown;
    RCShdPtr<const TsDemoShot> _demo; // while its plate is shown
    std::vector<ExReporter::Report> _reports;
    std::vector<CoRgbColorTyped<float>> _lastPicked;
    MfImgPickTool::PickObserver _pickObserverBefore;
    int _listener = 0;
    CbMethod<HostSession, const PiNodeEvent> _selectChanged{this,
                                                            &HostSession::selectedNodeChanged};
    CbMethod<HostSession, const PiNodeEvent> _removed{this, &HostSession::nodeRemoved};
};
