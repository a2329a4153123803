#pragma once

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <resmgt/liString.h>
#include <ui/uiExport.h>

#include <vector>

class PiViewer;
class UiPanel;

// The host's workspace: the panels (UiPanel, by name) and the viewers that
// are open, and whether the workspace is live. While it is not (the host
// suspends it while it loads a setup or replaces its panels), containers
// answer no to the activity query (PiContainer::isActive), so panels leave
// alone the changes they would otherwise take for the user's.
class TS_UI_API UiWorkspace {
public:
    static UiWorkspace& getInstance();

    // Panels register themselves when made and leave when destroyed.
    void addPanel(UiPanel* panel);
    void removePanel(UiPanel* panel);
    const std::vector<UiPanel*>& getPanels() const { return _panels; }
    // The panel of that name made last; null when there is none.
    UiPanel* findPanel(const LiString& name) const;

    // The host registers its viewers, and removes each before it goes.
    void addViewer(PiViewer* viewer);
    void removeViewer(PiViewer* viewer);
    const std::vector<PiViewer*>& getViewers() const { return _viewers; }

    bool isLive() const { return _suspended == 0; }
    // Suspensions nest: the workspace is live again when each suspension has
    // been resumed.
    void suspend() { ++_suspended; }
    void resume();

    // Handlers run when a panel or viewer comes or goes.
    void addChangedCb(CbHandler<CbEmptyType>* handler) { _changed.addHandler(handler); }
    void removeChangedCb(CbHandler<CbEmptyType>* handler) { _changed.removeHandler(handler); }

private:
    UiWorkspace() = default;

    std::vector<UiPanel*> _panels;
    std::vector<PiViewer*> _viewers;
    int _suspended = 0;
    CbDispatcher<CbEmptyType> _changed;
};

// Suspends the workspace for as long as it lives.
class TS_UI_API UiWorkspaceSuspension {
public:
    UiWorkspaceSuspension() { UiWorkspace::getInstance().suspend(); }
    UiWorkspaceSuspension(const UiWorkspaceSuspension&) = delete;
    UiWorkspaceSuspension& operator=(const UiWorkspaceSuspension&) = delete;
    ~UiWorkspaceSuspension() { UiWorkspace::getInstance().resume(); }
};
