#include "tesseraUiZnmoduleInit.h"

#include <base/exReporter.h>
#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

// What the module registers with the keyer library, as the keyer's own
// registries answer it.
struct Registration {
    std::string name;
    std::function<bool()> held;
};

const std::vector<Registration>& registrations() {
    static const std::vector<Registration> all{
        {"matte handler", [] { return TsMgInterface::getEhFactory() != nullptr; }},
        {"matte panel", [] { return TsMgInterface::getUiFactory() != nullptr; }},
        {"degrain handler", [] { return TsDgInterface::getEhFactory() != nullptr; }},
        {"degrain panel", [] { return TsDgInterface::getUiFactory() != nullptr; }},
        {"spill handler", [] { return TsSpillBlendInterface::getEhFactory() != nullptr; }},
        {"spill panel", [] { return TsSpillBlendInterface::getUiFactory() != nullptr; }},
        {"main panel", [] { return TsInterface::getInstanceDataFactory() != nullptr; }},
        {"main panel 3", [] { return TsInterface3::getInstanceDataFactory() != nullptr; }},
    };
    return all;
}

std::vector<std::string> held() {
    std::vector<std::string> names;
    for (const Registration& r : registrations()) {
        if (r.held()) {
            names.push_back(r.name);
        }
    }
    return names;
}

// The names in `a` that are not in `b`.
std::vector<std::string> minus(const std::vector<std::string>& a,
                               const std::vector<std::string>& b) {
    std::vector<std::string> out;
    for (const std::string& s : a) {
        if (std::find(b.begin(), b.end(), s) == b.end()) {
            out.push_back(s);
        }
    }
    return out;
}

using Changes = std::vector<std::pair<std::string, std::string>>; // source, registration

// The module as the host started it: every initialiser of the table has run
// once. The tests below shut it down and start it again, through the
// package's own hooks or one source at a time, and watch the keyer's
// registries change; they leave the module started as they found it.
class ModuleStartup : public ::testing::Test {
protected:
    void SetUp() override {
        ExReporter::getInstance().clear();
        table = tsModuleInitialisers(count);
    }
    void TearDown() override {
        EXPECT_EQ(held().size(), registrations().size()) << "the module is left started";
        for (const auto& r : ExReporter::getInstance().getReports()) {
            ADD_FAILURE() << r.text();
        }
        ExReporter::getInstance().clear();
    }

    // Shut-down: the finalisers, the last source first.
    Changes shutDown() {
        Changes withdrawn;
        for (int i = count; i-- > 0;) {
            const std::vector<std::string> before = held();
            table[i].fini();
            for (const std::string& name : minus(before, held())) {
                withdrawn.emplace_back(table[i].source, name);
            }
            EXPECT_TRUE(minus(held(), before).empty()) << table[i].source;
        }
        return withdrawn;
    }

    const TsModuleInitialiser* table = nullptr;
    int count = 0;
};

TEST_F(ModuleStartup, RunsTheFourteenSourcesInTheirOrder) {
    std::vector<std::string> sources;
    for (int i = 0; i < count; ++i) {
        sources.emplace_back(table[i].source);
    }
    EXPECT_EQ(sources,
              (std::vector<std::string>{
                  "tsAddSampleTool", "tsMgSampleMatteTool", "tsMgSamplePatchTool",
                  "tsMgEventHandler", "tsMgUi", "tsDgSampleTool", "tsDgEventHandler", "tsDgUi",
                  "tsSpillBlendMfTool", "tsSpillBlendEventHandler", "tsSpillBlendUi",
                  "tsImgPickKeyColorsTool", "tsUiImp", "tsUiImpGeneration2"}));
}

TEST_F(ModuleStartup, ShutDownWithdrawsTheSixStageFactoriesInReverseAndLeavesTheMainPanels) {
    ASSERT_EQ(held().size(), registrations().size());
    const auto mgEh = TsMgInterface::getEhFactory();
    const auto mainPanel = TsInterface::getInstanceDataFactory();
    const auto mainPanelGeneration2 = TsInterface3::getInstanceDataFactory();

    EXPECT_EQ(shutDown(), (Changes{{"tsSpillBlendUi", "spill panel"},
                                   {"tsSpillBlendEventHandler", "spill handler"},
                                   {"tsDgUi", "degrain panel"},
                                   {"tsDgEventHandler", "degrain handler"},
                                   {"tsMgUi", "matte panel"},
                                   {"tsMgEventHandler", "matte handler"}}));
    EXPECT_EQ(held(), (std::vector<std::string>{"main panel", "main panel 3"}));
    EXPECT_EQ(TsInterface::getInstanceDataFactory(), mainPanel);
    EXPECT_EQ(TsInterface3::getInstanceDataFactory(), mainPanelGeneration2);

    // The package's own hooks, as the host runs them: shut down and started
    // again (the instance-data factories cleared first, to see them come
    // back), with the catalogue let go afterwards.
    TsInterface::setInstanceDataFactory(nullptr);
    TsInterface3::setInstanceDataFactory(nullptr);
    const std::size_t catalogues = MsgServer::getInstance().openCatalogueCount();
    EXPECT_TRUE(InPackageManager::getInstance().restart("tesseraUiZnmodule"));
    EXPECT_EQ(held().size(), registrations().size());
    EXPECT_EQ(TsMgInterface::getEhFactory(), mgEh);
    EXPECT_EQ(TsInterface::getInstanceDataFactory(), mainPanel);
    EXPECT_EQ(TsInterface3::getInstanceDataFactory(), mainPanelGeneration2);
    EXPECT_EQ(MsgServer::getInstance().openCatalogueCount(), catalogues);
    EXPECT_EQ(InBuildInfoUtil::listFor("tesseraUiZnmodule").size(), 1u);
}

// An initialiser that throws: the exception goes on, the catalogue is let
// go, what ran before stays registered and what comes after does not run.
TEST_F(ModuleStartup, AnInitialiserThatThrowsStopsTheStartUpAndLetsTheCatalogueGo) {
    static std::vector<std::string> ran;
    ran.clear();
    const TsModuleInitialiser failing[] = {
        {"first", [] { ran.push_back("first"); }, [] {}},
        {"broken", [] { throw std::runtime_error("broken initialiser"); }, [] {}},
        {"last", [] { ran.push_back("last"); }, [] {}},
    };
    const std::size_t catalogues = MsgServer::getInstance().openCatalogueCount();
    EXPECT_THROW(tsModuleStartUp(failing, 3), std::runtime_error);
    EXPECT_EQ(ran, std::vector<std::string>{"first"});
    EXPECT_EQ(MsgServer::getInstance().openCatalogueCount(), catalogues);
}

} // namespace
