#include <ui/uiPanel.h>
#include <ui/uiWorkspace.h>

#include <base/exReporter.h>

#include <algorithm>

UiWorkspace& UiWorkspace::getInstance() {
    // Never destroyed: panels may leave it while the program exits.
    static UiWorkspace* instance = new UiWorkspace;
    return *instance;
}

void UiWorkspace::addPanel(UiPanel* panel) {
    if (panel && std::find(_panels.begin(), _panels.end(), panel) == _panels.end()) {
        _panels.push_back(panel);
        _changed.call();
    }
}

void UiWorkspace::removePanel(UiPanel* panel) {
    if (std::erase(_panels, panel) > 0) {
        _changed.call();
    }
}

UiPanel* UiWorkspace::findPanel(const LiString& name) const {
    for (auto it = _panels.rbegin(); it != _panels.rend(); ++it) {
        if ((*it)->getName() == name) {
            return *it;
        }
    }
    return nullptr;
}

void UiWorkspace::addViewer(PiViewer* viewer) {
    if (viewer && std::find(_viewers.begin(), _viewers.end(), viewer) == _viewers.end()) {
        _viewers.push_back(viewer);
        _changed.call();
    }
}

void UiWorkspace::removeViewer(PiViewer* viewer) {
    if (std::erase(_viewers, viewer) > 0) {
        _changed.call();
    }
}

void UiWorkspace::resume() {
    if (_suspended == 0) {
        ExReporter::getInstance().report("workspace", "resumed without a suspension; ignored");
        return;
    }
    --_suspended;
}
