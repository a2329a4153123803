#pragma once

#include <base/inPackageInit.h>
#include <base/znInit.h>

#include <typeinfo>

// The package object of the package tagged Tag. A library defines one static
// InInit<ZnInit::xxx>; a package with start-up or shut-down work specialises
// the hooks of its own instantiation before defining the object.
template <class Tag>
class InInit : public InPackageInit {
public:
    explicit InInit(const char* name)
        : InPackageInit(name) {
        setTagType(getType());
    }

    static const std::type_info* getType() { return &typeid(Tag); }

    void preStartup() override {}
    void postShutdown() override {}
    void startup() override {}
    void shutdown() override {}
    void setFlag(bool value) override { InPackageInit::setFlag(value); }
};

// The package object of a platform library: registers itself, with its
// dependencies in the order given, when the library is loaded.
template <class Tag, class... Deps>
class InLibraryPackage : public InInit<Tag> {
public:
    explicit InLibraryPackage(const char* name)
        : InInit<Tag>(name) {
        this->registerPackage();
        (this->InPackageInit::addDependency(InInit<Deps>::getType()), ...);
    }
};
