#include "hostPackages.h"

#include <base/exReporter.h>
#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>
#include <resmgt/liResourcePath.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <algorithm>
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

std::vector<std::string> HostPackages::searchPathModules() {
    const char* env = std::getenv("TESSERA_MODULE_PATH");
    const std::string path = env ? env : "";
    std::vector<std::string> modules;
    std::size_t begin = 0;
    while (begin <= path.size()) {
        const std::size_t end = std::min(path.find(':', begin), path.size());
        const std::string dir = path.substr(begin, end - begin);
        begin = end + 1;
        if (dir.empty()) {
            continue;
        }
        std::error_code ec;
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(dir, ec)) {
            if (entry.path().extension() == ".so" && entry.is_regular_file(ec)) {
                found.push_back(entry.path().string());
            }
        }
        if (ec) {
            ExReporter::getInstance().report("module path " + dir, ec.message());
        }
        std::sort(found.begin(), found.end());
        modules.insert(modules.end(), found.begin(), found.end());
    }
    return modules;
}

bool HostPackages::loadAndStart(const std::string& modulePath) {
    auto& manager = InPackageManager::getInstance();
    std::vector<std::string> modules{modulePath};
    for (const std::string& m : searchPathModules()) {
        // The keyer's module once only, even when a directory of the path
        // holds it.
        std::error_code ec;
        if (!std::filesystem::equivalent(m, modulePath, ec)) {
            modules.push_back(m);
        }
    }
    bool ok = true;
    for (const std::string& m : modules) {
        if (manager.loadModule(m)) {
            LiResourcePath::addDirectory(std::filesystem::path(m).parent_path().string());
        } else {
            ok = false;
        }
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
