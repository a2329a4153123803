#include <base/exBase.h>
#include <base/exReporter.h>
#include <base/inBuildInfoUtil.h>
#include <base/inInit.h>
#include <base/inPackageManager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

// Packages of the tests' own, tagged with local types, that log their hooks.
std::vector<std::string> hookLog;

struct TagA {};
struct TagB {};
struct TagC {};
struct TagLoopX {};
struct TagLoopY {};
struct TagMissing {};
struct TagThrows {};
struct TagAfterThrows {};

template <class Tag>
struct LoggingPackage : InInit<Tag> {
    explicit LoggingPackage(const char* name, bool throws = false)
        : InInit<Tag>(name)
        , throws(throws) {}
    void startup() override {
        hookLog.push_back(std::string("start ") + this->getName());
        if (throws) {
            throw ExBase("start-up refused");
        }
    }
    void shutdown() override { hookLog.push_back(std::string("stop ") + this->getName()); }
    bool throws;
};

template <class P, class... Deps>
std::unique_ptr<P> makePackage(const char* name, bool throws = false) {
    auto p = std::make_unique<P>(name, throws);
    p->registerPackage();
    (p->InPackageInit::addDependency(InInit<Deps>::getType()), ...);
    return p;
}

class PackageManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        hookLog.clear();
        ExReporter::getInstance().clear();
    }
    void TearDown() override { InPackageManager::getInstance().shutdownAll(); }

    static bool reported(const std::string& fragment) {
        for (const auto& r : ExReporter::getInstance().getReports()) {
            if (r.text().find(fragment) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    static InPackageManager::State state(const char* name) {
        return InPackageManager::getInstance().getState(name);
    }
};

TEST_F(PackageManagerTest, StartsDependenciesFirstAndStopsInReverse) {
    // Registered in an order that is not the start order.
    auto c = makePackage<LoggingPackage<TagC>, TagB, TagA>("test.c");
    auto b = makePackage<LoggingPackage<TagB>, TagA>("test.b");
    auto a = makePackage<LoggingPackage<TagA>, ZnInit::base>("test.a");
    auto& manager = InPackageManager::getInstance();
    EXPECT_EQ(manager.startAll(), 0);
    EXPECT_EQ(hookLog, (std::vector<std::string>{"start test.a", "start test.b", "start test.c"}));
    EXPECT_EQ(manager.startAll(), 0); // once each
    EXPECT_EQ(hookLog.size(), 3u);

    bool listed = false;
    for (const auto& info : manager.list()) {
        if (info.name == "test.c") {
            listed = true;
            EXPECT_EQ(info.dependencies, (std::vector<std::string>{"test.b", "test.a"}));
            EXPECT_EQ(info.state, InPackageManager::State::Started);
        }
    }
    EXPECT_TRUE(listed);

    hookLog.clear();
    manager.shutdownAll();
    EXPECT_EQ(hookLog, (std::vector<std::string>{"stop test.c", "stop test.b", "stop test.a"}));
    EXPECT_EQ(state("test.a"), InPackageManager::State::Stopped);
}

TEST_F(PackageManagerTest, MissingDependencyCycleAndThrowingStartAreReportedAndContained) {
    auto lonely = makePackage<LoggingPackage<TagA>, TagMissing>("test.lonely");
    auto x = makePackage<LoggingPackage<TagLoopX>, TagLoopY>("test.x");
    auto y = makePackage<LoggingPackage<TagLoopY>, TagLoopX>("test.y");
    auto thrower = makePackage<LoggingPackage<TagThrows>, ZnInit::base>("test.thrower", true);
    auto after = makePackage<LoggingPackage<TagAfterThrows>, TagThrows>("test.after");
    auto fine = makePackage<LoggingPackage<TagB>, ZnInit::base>("test.fine");

    EXPECT_EQ(InPackageManager::getInstance().startAll(), 5);

    EXPECT_EQ(state("test.lonely"), InPackageManager::State::Blocked);
    EXPECT_TRUE(reported("package test.lonely: missing dependency"));
    EXPECT_TRUE(reported("TagMissing"));
    EXPECT_EQ(state("test.x"), InPackageManager::State::Blocked);
    EXPECT_EQ(state("test.y"), InPackageManager::State::Blocked);
    EXPECT_TRUE(reported("dependency cycle: test.x -> test.y -> test.x"));
    EXPECT_EQ(state("test.thrower"), InPackageManager::State::Failed);
    EXPECT_TRUE(reported("package test.thrower: start-up refused"));
    EXPECT_EQ(state("test.after"), InPackageManager::State::Blocked);
    EXPECT_TRUE(reported("dependency test.thrower did not start"));
    // The host carries on: the healthy package started, and so did the
    // platform's own.
    EXPECT_EQ(state("test.fine"), InPackageManager::State::Started);
    EXPECT_EQ(state("base"), InPackageManager::State::Started);
    EXPECT_EQ(std::count(hookLog.begin(), hookLog.end(), "start test.after"), 0);
}

struct RecordInfo : InBuildInfo {
    explicit RecordInfo(int& deaths)
        : deaths(deaths) {}
    ~RecordInfo() override { ++deaths; }
    const char* getDescription() const override { return "test record"; }
    const char* getLibraryName() const override { return "libTest"; }
    const char* getReleaseYear() const override { return "2026"; }
    const char* getVersion() const override { return "1.0"; }
    const char* getBuildKind() const override { return ""; }
    int getMajorVersion() const override { return 1; }
    int getMinorVersion() const override { return 0; }
    int getBuildCode() const override { return 7; }
    const char* getBuildNumber() const override { return "1"; }
    const char* getBuildDate() const override { return "today"; }
    const char* getBuildFlavour() const override { return "test"; }
    int& deaths;
};

} // namespace
