#include "hostPackages.h"

#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>
#include <resmgt/liResourcePath.h>

#include <cstdlib>
#include <filesystem>

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

void HostPackages::shutdownAndUnload() {
    auto& manager = InPackageManager::getInstance();
    manager.shutdownAll();
    manager.unloadModules();
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
