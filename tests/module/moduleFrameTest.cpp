#include "tesseraUiZnmoduleInit.h"

#include <base/inBuildInfoUtil.h>
#include <base/inPackageManager.h>

#include <gtest/gtest.h>

namespace {

const InPackageManager::PackageInfo*
modulePackage(const std::vector<InPackageManager::PackageInfo>& all) {
    for (const auto& p : all) {
        if (p.name == "tesseraUiZnmodule") {
            return &p;
        }
    }
    return nullptr;
}

TEST(ModuleFrame, PackageNamesItsTenDependenciesInOrderAndStarts) {
    const auto all = InPackageManager::getInstance().list();
    const auto* p = modulePackage(all);
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->state, InPackageManager::State::Started);
    EXPECT_EQ(p->dependencies, (std::vector<std::string>{"tesseraUtil", "tesseraZntool", "appUi",
                                                         "ui", "gfx", "internalAPI", "primitives",
                                                         "resmgt", "pluginAPI", "base"}));
}

TEST(ModuleFrame, BuildInformationAnswersEverySlot) {
    const auto infos = InBuildInfoUtil::listFor("tesseraUiZnmodule");
    ASSERT_EQ(infos.size(), 1u);
    const InBuildInfo& b = *infos[0];
    EXPECT_STRNE(b.getDescription(), "");
    EXPECT_STREQ(b.getLibraryName(), "libZntesseraUiZnmodule");
    EXPECT_STREQ(b.getReleaseYear(), "2013");
    EXPECT_STREQ(b.getVersion(), "8.0");
    EXPECT_STREQ(b.getBuildKind(), ""); // code 42 is not the development code 3
    EXPECT_EQ(b.getMajorVersion(), 8);
    EXPECT_EQ(b.getMinorVersion(), 0);
    EXPECT_EQ(b.getBuildCode(), 42);
    EXPECT_STREQ(b.getBuildNumber(), "2600");
    EXPECT_STREQ(b.getBuildDate(), "Jun 12 2012");
    EXPECT_STREQ(b.getBuildFlavour(), "opt.x86_64.intel");
}

} // namespace
