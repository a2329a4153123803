#include <base/inPackageManager.h>
#include <resmgt/liResourcePath.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <sstream>

namespace {
std::mutex& mutex() {
    static std::mutex m;
    return m;
}
std::vector<LiString>& added() {
    static std::vector<LiString> dirs;
    return dirs;
}
} // namespace

void LiResourcePath::addDirectory(const LiString& directory) {
    std::lock_guard lock(mutex());
    auto& dirs = added();
    if (std::find(dirs.begin(), dirs.end(), directory) == dirs.end()) {
        dirs.push_back(directory);
    }
}

std::vector<LiString> LiResourcePath::getDirectories() {
    std::vector<LiString> dirs;
    if (const char* env = std::getenv("TESSERA_RESOURCE_PATH")) {
        std::stringstream ss(env);
        std::string dir;
        while (std::getline(ss, dir, ':')) {
            if (!dir.empty()) {
                dirs.push_back(dir);
            }
        }
    }
    {
        std::lock_guard lock(mutex());
        dirs.insert(dirs.end(), added().begin(), added().end());
    }
    for (const auto& dir : InPackageManager::getInstance().getModuleDirectories()) {
        dirs.push_back(dir);
    }
    return dirs;
}

LiString LiResourcePath::find(const LiString& name) {
    namespace fs = std::filesystem;
    std::error_code ec;
    if (name.empty()) {
        return "";
    }
    if (name.find('/') != LiString::npos && fs::is_regular_file(name, ec)) {
        return name;
    }
    for (const auto& dir : getDirectories()) {
        const fs::path candidate = fs::path(dir) / name;
        if (fs::is_regular_file(candidate, ec)) {
            return candidate.string();
        }
    }
    return "";
}
