#include <base/exReporter.h>
#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>
#include <base/typeName.h>

#include <algorithm>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>

InPackageManager& InPackageManager::getInstance() {
    // Never destroyed: package objects unregister during static termination.
    static InPackageManager* instance = new InPackageManager;
    return *instance;
}

const char* InPackageManager::stateName(State state) {
    switch (state) {
    case State::Registered:
        return "registered";
    case State::Started:
        return "started";
    case State::Failed:
        return "failed";
    case State::Blocked:
        return "blocked";
    case State::Stopped:
        return "stopped";
    }
    return "?";
}

void InPackageManager::add(InPackageInit* package) {
    if (!find(package)) {
        _records.push_back(std::make_unique<Record>(Record{package, State::Registered, {}}));
        if (_loading) {
            _loading->push_back(package->getName());
        }
    }
}

void InPackageManager::remove(InPackageInit* package) {
    std::erase_if(_records, [package](const auto& r) { return r->package == package; });
    std::erase(_started, package);
}

InPackageManager::Record* InPackageManager::find(const InPackageInit* package) {
    for (auto& r : _records) {
        if (r->package == package) {
            return r.get();
        }
    }
    return nullptr;
}

InPackageManager::Record* InPackageManager::findByTag(const std::type_info* tag) {
    for (auto& r : _records) {
        if (r->package->getTagType() && *r->package->getTagType() == *tag) {
            return r.get();
        }
    }
    return nullptr;
}

InPackageManager::Record* InPackageManager::findByVariable(const InVariableBase* variable) {
    for (auto& r : _records) {
        if (static_cast<const InVariableBase*>(r->package) == variable) {
            return r.get();
        }
    }
    return nullptr;
}

std::string InPackageManager::dependencyName(const InPackageInit::Dependency& d) const {
    auto* self = const_cast<InPackageManager*>(this);
    Record* r = d.tagType ? self->findByTag(d.tagType) : self->findByVariable(d.variable);
    if (r) {
        return r->package->getName();
    }
    return d.tagType ? typeNameOf(*d.tagType) : std::string("(unregistered dependency)");
}

bool InPackageManager::loadModule(const std::string& path) {
    std::vector<std::string> registered;
    _loading = &registered;
    dlerror();
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    _loading = nullptr;
    if (!handle) {
        const char* message = dlerror();
        ExReporter::getInstance().report("module " + path,
                                         std::string("cannot be loaded: ") +
                                             (message ? message : "unknown loader error"));
        return false;
    }
    _modules.push_back({path, handle, registered});
    return true;
}

void InPackageManager::unloadModules() {
    const bool keepMapped = std::getenv("TESSERA_NO_DLCLOSE") != nullptr;
    while (!_modules.empty()) {
        Module module = _modules.back();
        _modules.pop_back();
        for (const std::string& package : module.packages) {
            InBuildInfoUtil::dropFor(package);
        }
        if (!keepMapped) {
            dlclose(module.handle);
        }
    }
}

std::vector<std::string> InPackageManager::getModuleDirectories() const {
    std::vector<std::string> dirs;
    for (const Module& m : _modules) {
        std::error_code ec;
        auto dir = std::filesystem::absolute(m.path, ec).parent_path().string();
        if (std::find(dirs.begin(), dirs.end(), dir) == dirs.end()) {
            dirs.push_back(dir);
        }
    }
    return dirs;
}

std::string InPackageManager::source(const std::string& package) const {
    for (const Module& m : _modules) {
        if (std::find(m.packages.begin(), m.packages.end(), package) != m.packages.end()) {
            return "package " + package + " (module " + m.path + ")";
        }
    }
    return "package " + package;
}

bool InPackageManager::start(Record& record, std::vector<Record*>& path) {
    if (record.state == State::Started) {
        return true;
    }
    if (record.state == State::Failed || record.state == State::Blocked) {
        return false;
    }
    const std::string name = record.package->getName();
    if (std::find(path.begin(), path.end(), &record) != path.end()) {
        std::string cycle;
        auto it = std::find(path.begin(), path.end(), &record);
        for (; it != path.end(); ++it) {
            cycle += std::string((*it)->package->getName()) + " -> ";
        }
        cycle += name;
        for (auto it2 = std::find(path.begin(), path.end(), &record); it2 != path.end(); ++it2) {
            (*it2)->state = State::Blocked;
            (*it2)->reason = "dependency cycle: " + cycle;
        }
        ExReporter::getInstance().report(source(name), "dependency cycle: " + cycle);
        return false;
    }
    path.push_back(&record);
    for (const InPackageInit::Dependency& d : record.package->getDependencies()) {
        Record* dep = d.tagType ? findByTag(d.tagType) : findByVariable(d.variable);
        if (!dep) {
            record.state = State::Blocked;
            record.reason = "missing dependency " + dependencyName(d);
        } else if (!start(*dep, path)) {
            if (record.state != State::Blocked) {
                record.state = State::Blocked;
                record.reason = std::string("dependency ") + dep->package->getName() +
                                " did not start (" + dep->reason + ")";
            }
        }
        if (record.state == State::Blocked) {
            path.pop_back();
            // A cycle through this package was reported once already.
            if (record.reason.rfind("dependency cycle", 0) != 0) {
                ExReporter::getInstance().report(source(name), record.reason);
            }
            return false;
        }
    }
    path.pop_back();

    _starting = name;
    const bool ok = exContain(source(name), [&] {
        record.package->preStartup();
        record.package->startup();
    });
    _starting.clear();
    if (!ok) {
        record.state = State::Failed;
        auto reports = ExReporter::getInstance().getReports();
        record.reason = reports.empty() ? "start-up failed" : reports.back().message;
        return false;
    }
    record.state = State::Started;
    _started.push_back(record.package);
    return true;
}

int InPackageManager::startAll() {
    int failures = 0;
    // Starting may register packages (a start-up that loads a module); walk by
    // index over a snapshot of the records.
    std::vector<Record*> snapshot;
    for (auto& r : _records) {
        snapshot.push_back(r.get());
    }
    for (Record* r : snapshot) {
        std::vector<Record*> path;
        if (!start(*r, path)) {
            ++failures;
        }
    }
    return failures;
}

void InPackageManager::shutdownAll() {
    while (!_started.empty()) {
        InPackageInit* package = _started.back();
        _started.pop_back();
        const std::string name = package->getName();
        exContain(source(name), [&] {
            package->shutdown();
            package->postShutdown();
        });
        if (Record* r = find(package)) {
            r->state = State::Stopped;
        }
    }
}

bool InPackageManager::restart(const std::string& name) {
    Record* record = nullptr;
    for (const auto& r : _records) {
        if (name == r->package->getName()) {
            record = r.get();
        }
    }
    if (!record || record->state != State::Started) {
        ExReporter::getInstance().report("package " + name, "cannot restart a package that has "
                                                            "not started");
        return false;
    }
    InPackageInit* package = record->package;
    std::erase(_started, package);
    exContain(source(name), [&] {
        package->shutdown();
        package->postShutdown();
    });
    record->state = State::Stopped;
    InBuildInfoUtil::dropFor(name);
    std::vector<Record*> path;
    return start(*record, path);
}

InPackageManager::State InPackageManager::getState(const std::string& name) const {
    for (const auto& r : _records) {
        if (name == r->package->getName()) {
            return r->state;
        }
    }
    return State::Blocked;
}

std::vector<InPackageManager::PackageInfo> InPackageManager::list() const {
    std::vector<const Record*> ordered;
    for (InPackageInit* p : _started) {
        for (const auto& r : _records) {
            if (r->package == p) {
                ordered.push_back(r.get());
            }
        }
    }
    for (const auto& r : _records) {
        if (std::find(ordered.begin(), ordered.end(), r.get()) == ordered.end()) {
            ordered.push_back(r.get());
        }
    }
    std::vector<PackageInfo> out;
    for (const Record* r : ordered) {
        PackageInfo info{r->package->getName(), {}, r->state, r->reason, {}};
        for (const auto& d : r->package->getDependencies()) {
            info.dependencies.push_back(dependencyName(d));
        }
        info.buildInfo = InBuildInfoUtil::listFor(info.name);
        out.push_back(std::move(info));
    }
    return out;
}
