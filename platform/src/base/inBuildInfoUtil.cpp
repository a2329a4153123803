#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>

#include <memory>
#include <mutex>

namespace {

class EmptyBuildInfo : public InBuildInfo {
public:
    const char* getDescription() const override { return ""; }
    const char* getLibraryName() const override { return ""; }
    const char* getReleaseYear() const override { return ""; }
    const char* getVersion() const override { return ""; }
    const char* getBuildKind() const override { return ""; }
    int getMajorVersion() const override { return 0; }
    int getMinorVersion() const override { return 0; }
    int getBuildCode() const override { return 0; }
    const char* getBuildNumber() const override { return ""; }
    const char* getBuildDate() const override { return ""; }
    const char* getBuildFlavour() const override { return ""; }
};

struct Registry {
    std::mutex mutex;
    std::vector<std::pair<std::unique_ptr<InBuildInfo>, std::string>> entries;
};

Registry& registry() {
    // Never destroyed: records may belong to modules unloaded at exit; the
    // records themselves are freed with the registry, never before.
    static Registry* r = new Registry;
    return *r;
}

} // namespace

const InBuildInfo& InBuildInfoUtil::registerInfo(OPtr<InBuildInfo> info) {
    static const EmptyBuildInfo empty;
    if (!info) {
        return empty;
    }
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    const std::string package = InPackageManager::getInstance().getStartingPackage();
    r.entries.emplace_back(std::unique_ptr<InBuildInfo>(info.release()), package);
    return *r.entries.back().first;
}

std::vector<InBuildInfoUtil::Entry> InBuildInfoUtil::list() {
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    std::vector<Entry> out;
    for (auto& [info, package] : r.entries) {
        out.push_back({info.get(), package});
    }
    return out;
}

std::vector<const InBuildInfo*> InBuildInfoUtil::listFor(const std::string& package) {
    std::vector<const InBuildInfo*> out;
    for (const Entry& e : list()) {
        if (e.package == package) {
            out.push_back(e.info);
        }
    }
    return out;
}

void InBuildInfoUtil::dropFor(const std::string& package) {
    Registry& r = registry();
    std::lock_guard lock(r.mutex);
    std::erase_if(r.entries, [&package](const auto& e) { return e.second == package; });
}
