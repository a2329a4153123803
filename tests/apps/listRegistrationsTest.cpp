#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace {

// Runs a shell command and answers its standard output and exit status.
std::pair<std::string, int> run(const std::string& command) {
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) {
        return {"", -1};
    }
    std::array<char, 4096> buffer{};
    while (std::fgets(buffer.data(), buffer.size(), pipe)) {
        out += buffer.data();
    }
    const int status = pclose(pipe);
    return {out, WIFEXITED(status) ? WEXITSTATUS(status) : -1};
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
        "(second generation)\n" +
        messages;
    const std::string stopped = "registrations after shut-down:\n"
                                "  keyer factories: main panel, main panel (second generation)\n" +
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
