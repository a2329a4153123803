#include <gfx/mfTransientToolToolset.h>

MfTransientToolToolset::MfTransientToolToolset(PiViewer& viewer, const RCShdPtr<MfToolset>& toolset,
                                               const std::string& transient1,
                                               const std::string& transient2)
    : MfToolset(viewer)
    , _inner(toolset)
    , _transient{transient1, transient2}
    , _forward(this, &MfTransientToolToolset::innerChanged) {
    _inner->addToolChangedCb(&_forward);
}

MfTransientToolToolset::~MfTransientToolToolset() = default;

void MfTransientToolToolset::appendTool(const std::string& name, const RCShdPtr<MfTool>& tool) {
    _inner->appendTool(name, tool);
    if (!_chosen && !isTransient(name)) {
        _inner->setCurrentTool(name);
    }
}

bool MfTransientToolToolset::setCurrentTool(const std::string& name) {
    const std::string before = _inner->getCurrentToolName();
    if (!_inner->getTool(name)) {
        return false;
    }
    _chosen = true;
    if (!isTransient(name)) {
        _previous.clear();
    } else if (!before.empty() && !isTransient(before)) {
        _previous = before;
    }
    return _inner->setCurrentTool(name);
}

RCShdPtr<MfTool> MfTransientToolToolset::getCurrentTool() const {
    return _inner->getCurrentTool();
}

std::string MfTransientToolToolset::getCurrentToolName() const {
    return _inner->getCurrentToolName();
}

RCShdPtr<MfTool> MfTransientToolToolset::getTool(const std::string& name) const {
    return _inner->getTool(name);
}

std::vector<std::string> MfTransientToolToolset::getToolNames() const {
    return _inner->getToolNames();
}

bool MfTransientToolToolset::isTransient(const std::string& name) const {
    return !name.empty() && (name == _transient[0] || name == _transient[1]);
}

void MfTransientToolToolset::manipulationFinished(const std::string& toolName) {
    if (isTransient(toolName) && !_previous.empty()) {
        const std::string back = _previous;
        _previous.clear();
        _inner->setCurrentTool(back);
    }
}

void MfTransientToolToolset::innerChanged() {
    notifyToolChanged();
}
