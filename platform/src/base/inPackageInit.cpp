#include <base/inBuildInfo.h>
#include <base/inPackageInit.h>
#include <base/inPackageManager.h>

#include <algorithm>

InVariableBase::~InVariableBase() = default;
InBuildInfo::~InBuildInfo() = default;

InPackageInit::InPackageInit(const char* name)
    : _name(name ? name : "") {}

InPackageInit::~InPackageInit() {
    if (_registered) {
        InPackageManager::getInstance().remove(this);
    }
}

void InPackageInit::addDependency(InVariableBase* dependency) {
    if (dependency) {
        _dependencies.push_back({nullptr, dependency});
    }
}

void InPackageInit::removeDependency(InVariableBase* dependency) {
    auto it = std::find_if(_dependencies.begin(), _dependencies.end(),
                           [dependency](const Dependency& d) { return d.variable == dependency; });
    if (it != _dependencies.end()) {
        _dependencies.erase(it);
    }
}

const char* InPackageInit::getName() const {
    return _name.c_str();
}
void InPackageInit::preStartup() {}
void InPackageInit::postShutdown() {}
void InPackageInit::startup() {}
void InPackageInit::shutdown() {}
void InPackageInit::setFlag(bool value) {
    _flag = value;
}

void InPackageInit::registerPackage() {
    if (!_registered) {
        _registered = true;
        InPackageManager::getInstance().add(this);
    }
}

void InPackageInit::addDependency(const std::type_info* tagType) {
    if (tagType) {
        _dependencies.push_back({tagType, nullptr});
    }
}
