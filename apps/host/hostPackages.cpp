#include "hostPackages.h"

#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>
#include <resmgt/liResourcePath.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

std::string HostPackages::defaultModulePath() {
    if (const char* env = std::getenv("TESSERA_MODULE")) {
        return env;
    }
    std::error_code ec;
    const auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    const auto dir = ec ? std::filesystem::current_path() : exe.parent_path();
    return (dir.parent_path() / "lib" / TESSERA_MODULE_FILE).string();
}

bool HostPackages::loadAndStart(const std::string& modulePath) {
    auto& manager = InPackageManager::getInstance();
    bool ok = manager.loadModule(modulePath);
    if (ok) {
        LiResourcePath::addDirectory(std::filesystem::path(modulePath).parent_path().string());
    }
    return manager.startAll() == 0 && ok;
}

void HostPackages::shutdownAndUnload(std::ostream* report) {
    auto& manager = InPackageManager::getInstance();
    manager.shutdownAll();
    if (report) {
        printRegistrations(*report, "after shut-down");
    }
    manager.unloadModules();
}

void HostPackages::printRegistrations(std::ostream& os, const char* when) {
    const std::pair<const char*, bool> factories[] = {
        {"matte-generation handler", TsMgInterface::getEhFactory() != nullptr},
        {"matte-generation panel", TsMgInterface::getUiFactory() != nullptr},
        {"degrain handler", TsDgInterface::getEhFactory() != nullptr},
        {"degrain panel", TsDgInterface::getUiFactory() != nullptr},
        {"spill-and-blend handler", TsSpillBlendInterface::getEhFactory() != nullptr},
        {"spill-and-blend panel", TsSpillBlendInterface::getUiFactory() != nullptr},
        {"main panel", TsInterface::getInstanceDataFactory() != nullptr},
        {"main panel (generation 2)", TsInterface3::getInstanceDataFactory() != nullptr},
    };
    os << "registrations " << when << ":\n  keyer factories:";
    bool any = false;
    for (const auto& [name, held] : factories) {
        if (held) {
            os << (any ? ", " : " ") << name;
            any = true;
        }
    }
    os << (any ? "" : " none") << "\n  message subscriptions:";
    const std::vector<std::string> ids = MsgServer::getInstance().getRegisteredIds();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        os << (i ? ", " : " ") << ids[i];
    }
    os << (ids.empty() ? " none" : "") << "\n";
}

void HostPackages::printPackages(std::ostream& os) {
    for (const auto& p : InPackageManager::getInstance().list()) {
        os << p.name << " [" << InPackageManager::stateName(p.state) << "]";
        if (!p.reason.empty()) {
            os << " (" << p.reason << ")";
        }
        os << "\n  dependencies:";
        if (p.dependencies.empty()) {
            os << " none";
        }
        for (std::size_t i = 0; i < p.dependencies.size(); ++i) {
            os << (i ? ", " : " ") << p.dependencies[i];
        }
        os << "\n";
        for (const InBuildInfo* b : p.buildInfo) {
            os << "  build: " << b->getLibraryName() << " " << b->getVersion() << " ("
               << b->getMajorVersion() << "." << b->getMinorVersion() << "), released "
               << b->getReleaseYear() << ", build " << b->getBuildNumber() << " code "
               << b->getBuildCode() << " of " << b->getBuildDate() << ", " << b->getBuildFlavour();
            if (*b->getBuildKind()) {
                os << ", " << b->getBuildKind();
            }
            os << "\n  description: " << b->getDescription() << "\n";
        }
    }
}
