#include <gfx/mfToolset.h>

#include <base/assertions.h>
#include <base/exReporter.h>
#include <pluginAPI/piEventContext.h>

MfToolset::MfToolset(PiViewer& viewer)
    : _viewer(viewer) {}

MfToolset::~MfToolset() {
    // A destructor passes nothing on: what a tool's ending throws is reported.
    for (const auto& entry : _tools) {
        exContain("tool \"" + entry.first + "\": ending its manipulation",
                  [&entry] { entry.second->interruptManipulation(); });
    }
}

void MfToolset::appendTool(const std::string& name, const RCShdPtr<MfTool>& tool) {
    *tool; // a null tool throws ExNullPtr
    if (getTool(name)) {
        Assertions::fail("!getTool(name)");
    }
    _tools.emplace_back(name, tool);
    if (_current < 0) {
        _current = 0;
        notifyToolChanged();
    }
}

bool MfToolset::setCurrentTool(const std::string& name) {
    for (std::size_t i = 0; i < _tools.size(); ++i) {
        if (_tools[i].first != name) {
            continue;
        }
        if (static_cast<int>(i) == _current) {
            notifyToolChanged();
            return true;
        }
        if (_current >= 0) {
            _tools[static_cast<std::size_t>(_current)].second->interruptManipulation();
        }
        _current = static_cast<int>(i);
        notifyToolChanged();
        return true;
    }
    return false;
}

RCShdPtr<MfTool> MfToolset::getCurrentTool() const {
    return _current < 0 ? RCShdPtr<MfTool>() : _tools[static_cast<std::size_t>(_current)].second;
}

std::string MfToolset::getCurrentToolName() const {
    return _current < 0 ? std::string() : _tools[static_cast<std::size_t>(_current)].first;
}

RCShdPtr<MfTool> MfToolset::getTool(const std::string& name) const {
    for (const auto& [n, tool] : _tools) {
        if (n == name) {
            return tool;
        }
    }
    return RCShdPtr<MfTool>();
}

std::vector<std::string> MfToolset::getToolNames() const {
    std::vector<std::string> names;
    for (const auto& entry : _tools) {
        names.push_back(entry.first);
    }
    return names;
}

bool MfToolset::handleEvent(const PiEventContext& context) {
    const RCShdPtr<MfTool> tool = getCurrentTool();
    if (!tool) {
        return false;
    }
    const std::string name = getCurrentToolName();
    const bool wasManipulating = tool->isManipulating();
    const bool used = tool->handleEvent(context);
    if (wasManipulating && !tool->isManipulating()) {
        manipulationFinished(name);
    }
    return used;
}

void MfToolset::addToolChangedCb(CbHandler<CbEmptyType>* handler) {
    _toolChanged.addHandler(handler);
}

void MfToolset::removeToolChangedCb(CbHandler<CbEmptyType>* handler) {
    _toolChanged.removeHandler(handler);
}

void MfToolset::manipulationFinished(const std::string&) {}

void MfToolset::notifyToolChanged() {
    _toolChanged.call();
}
