#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::pair<std::string, int> run(const std::string& command) {
    const ProgramResult r = runProgram(command);
    return {r.out, r.status};
}

const std::string runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

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
