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

TEST(ModuleFrame, ARegularBuildIsNoDevelopmentBuild) {
    const auto infos = InBuildInfoUtil::listFor("tesseraUiZnmodule");
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_EQ(infos[0]->getBuildCode(), 42);
    EXPECT_STREQ(infos[0]->getBuildKind(), ""); // the development code is 3
}

} // namespace
