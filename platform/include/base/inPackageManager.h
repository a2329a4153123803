#pragma once

#include <base/baseExport.h>
#include <base/inBuildInfo.h>
#include <base/inPackageInit.h>

#include <memory>
#include <string>
#include <vector>

// The host's package manager: knows every registered package, loads module
// files, starts packages once each after their dependencies and shuts them
// down in the reverse order of their start.
//
// Failures never stop the host: a module that does not load, a dependency that
// is missing, a dependency cycle or a start-up hook that throws is reported
// (ExReporter) with the package's name, the module file it came from (when it
// came from one) and the reason; the package is left unstarted and packages
// that started stay started.
class TS_BASE_API InPackageManager {
public:
    enum class State { Registered, Started, Failed, Blocked, Stopped };

    struct PackageInfo {
        std::string name;
        std::vector<std::string> dependencies; // declared order
        State state;
        std::string reason; // why Failed or Blocked
        std::vector<const InBuildInfo*> buildInfo;
    };

    static InPackageManager& getInstance();
    static const char* stateName(State state);

    // Called by InPackageInit.
    void add(InPackageInit* package);
    void remove(InPackageInit* package);

    // Loads a module file; its packages register while it loads. Answers false
    // (and reports the loader's message) when it cannot be loaded.
    bool loadModule(const std::string& path);
    // Unloads the modules loaded here, the last first. With the environment
    // variable TESSERA_NO_DLCLOSE set, modules stay mapped (sanitizer runs
    // keep their stacks readable).
    void unloadModules();
    // The directories of the loaded modules, where their resources live.
    std::vector<std::string> getModuleDirectories() const;

    // Starts every registered package that has not started. Answers the number
    // of packages that could not start.
    int startAll();
    // Shuts down every started package, the last started first.
    void shutdownAll();
    // Shuts one started package down and starts it again (a plugin picking
    // up changed resources); its dependencies stay as they are, and its
    // build information is registered anew. False, reported, when the
    // package is not started or does not start again.
    bool restart(const std::string& name);

    State getState(const std::string& name) const;
    // Packages in start order, then those that did not start in registration
    // order.
    std::vector<PackageInfo> list() const;
    // The package whose start-up hook is running, or "".
    const std::string& getStartingPackage() const { return _starting; }

private:
    InPackageManager() = default;
    struct Record;
    Record* find(const InPackageInit* package);
    Record* findByTag(const std::type_info* tag);
    Record* findByVariable(const InVariableBase* variable);
    std::string dependencyName(const InPackageInit::Dependency& dependency) const;
    // "package NAME", with "(module FILE)" for a package a module registered.
    std::string source(const std::string& package) const;
    bool start(Record& record, std::vector<Record*>& path);

    struct Record {
        InPackageInit* package;
        State state = State::Registered;
        std::string reason;
    };
    std::vector<std::unique_ptr<Record>> _records; // registration order
    std::vector<InPackageInit*> _started;          // start order
    struct Module {
        std::string path;
        void* handle;
        std::vector<std::string> packages; // registered while it loaded
    };
    std::vector<Module> _modules;
    std::string _starting;
    std::vector<std::string>* _loading = nullptr;
};
