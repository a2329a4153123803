#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::pair<std::string, int> run(const std::string& command) {
    const ProgramResult r = runProgram(command);
    return {r.out, r.status};
}

const std::string runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

TEST(TesseraRun, ListPackagesStartsTheModuleAfterItsDependencies) {
    const auto [out, status] = run(runner + " --list-packages");
    ASSERT_EQ(status, 0) << out;
    const auto module = out.find("tesseraUiZnmodule [started]");
    ASSERT_NE(module, std::string::npos) << out;
    for (const char* dep :
         {"\ntesseraUtil [started]", "\ntesseraZntool [started]", "\nappUi [started]",
          "\nui [started]", "\ngfx [started]", "\ninternalAPI [started]", "\nprimitives [started]",
          "\nresmgt [started]", "\npluginAPI [started]"}) {
        const auto at = out.find(dep);
        ASSERT_NE(at, std::string::npos) << dep;
        EXPECT_LT(at, module) << dep << " listed after the module";
    }
    EXPECT_EQ(out.find("base [started]"), 0u);
    EXPECT_NE(out.find("  dependencies: tesseraUtil, tesseraZntool, appUi, ui, gfx, internalAPI, "
                       "primitives, resmgt, pluginAPI, base\n  build: libZntesseraUiZnmodule 8.0"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("build 2600"), std::string::npos);
    EXPECT_NE(out.find("Jun 12 2012"), std::string::npos);
}

TEST(TesseraRun, MissingModuleIsReportedAndTheHostStillAnswers) {
    const auto [out, status] =
        run("TESSERA_MODULE=/nonexistent/libZNtesseraUi.so " + runner + " --list-packages 2>&1");
    EXPECT_EQ(status, 1);
    EXPECT_NE(out.find("module /nonexistent/libZNtesseraUi.so: cannot be loaded"),
              std::string::npos)
        << out;
    EXPECT_NE(out.find("base [started]"), std::string::npos) << out;
    EXPECT_EQ(out.find("tesseraUiZnmodule"), std::string::npos) << out;
}

} // namespace
