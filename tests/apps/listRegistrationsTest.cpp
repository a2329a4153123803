#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::pair<std::string, int> run(const std::string& command) {
    const ProgramResult r = runProgram(command);
    return {r.out, r.status};
}

const std::string runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

// The module's registrations as tessera-run --list-packages lists them: after
// start-up every factory and subscription; after shut-down the six stage
// factories are withdrawn, the main panels' factories stay, and the
// subscriptions stay until the module is unloaded.
TEST(TesseraRunRegistrations, StartUpRegistersEverythingAndShutDownWithdrawsTheStageFactories) {
    const auto [out, status] = run(runner + " --list-packages");
    ASSERT_EQ(status, 0) << out;
    const std::string messages =
        "  message subscriptions: MSG_TS_SET_MATTE_SAMPLE, MSG_TS_SET_PATCH_SAMPLE, "
        "MSG_TS_SET_DEGRAIN_SAMPLE, MSG_TS_SET_SPILL, MSG_TS_SET_BLEND, MSG_TS_SET_KEY_COLOR\n";
    const std::string started =
        "registrations after start-up:\n"
        "  keyer factories: matte-generation handler, matte-generation panel, degrain handler, "
        "degrain panel, spill-and-blend handler, spill-and-blend panel, main panel, main panel "
        "(generation 2)\n" +
        messages;
    const std::string stopped = "registrations after shut-down:\n"
                                "  keyer factories: main panel, main panel (generation 2)\n" +
                                messages;
    const auto atStart = out.find(started);
    const auto atStop = out.find(stopped);
    EXPECT_NE(atStart, std::string::npos) << out;
    EXPECT_NE(atStop, std::string::npos) << out;
    EXPECT_LT(atStart, atStop);
    // The packages come first.
    EXPECT_LT(out.find("tesseraUiZnmodule [started]"), atStart);
}

} // namespace
