#pragma once

#include <base/baseExport.h>
#include <string>
#include <typeinfo>
#include <vector>

// Something a package can depend on. Packages themselves are the common case.
class TS_BASE_API InVariableBase {
public:
    InVariableBase() = default;
    InVariableBase(const InVariableBase&) = delete;
    InVariableBase& operator=(const InVariableBase&) = delete;
    virtual ~InVariableBase();
};

// A package of the host: a named unit (a library or a loaded module) with
// dependencies, started once after its dependencies and shut down before them.
// A library announces its package with one static object (see InInit).
class TS_BASE_API InPackageInit : public InVariableBase {
public:
    explicit InPackageInit(const char* name);
    ~InPackageInit() override;

    virtual void addDependency(InVariableBase* dependency);
    virtual void removeDependency(InVariableBase* dependency);
    virtual const char* getName() const;
    // Called before start-up and after shut-down; no package uses them yet.
    virtual void preStartup();
    virtual void postShutdown();
    // The package's hooks; the host calls each at most once per start.
    virtual void startup();
    virtual void shutdown();
    // A package-wide switch the host may set; its meaning is the package's.
    virtual void setFlag(bool value);

    // Announces the package to the host's package manager.
    void registerPackage();
    // Depends on the package whose tag has this type (InInit<tag>::getType()).
    void addDependency(const std::type_info* tagType);

    // The type of this package's tag, or null for an untagged package.
    const std::type_info* getTagType() const { return _tagType; }

    struct Dependency {
        const std::type_info* tagType = nullptr; // by tag ...
        InVariableBase* variable = nullptr;      // ... or directly
    };
    const std::vector<Dependency>& getDependencies() const { return _dependencies; }

protected:
    void setTagType(const std::type_info* tagType) { _tagType = tagType; }

private:
    std::string _name;
    const std::type_info* _tagType = nullptr;
    std::vector<Dependency> _dependencies;
    bool _registered = false;
    bool _flag = false;
};
