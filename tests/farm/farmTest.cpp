// tessera-farm without a cluster: frame lists and their chunks, the batch
// script run by hand, and the command lines and sessions it refuses.
// tests/farm/cluster.sh runs it on a real Slurm cluster.
#include "farmJob.h"
#include "slurm.h"
#include "support/runProgram.h"
#include "support/testTemp.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

const std::string farm = std::string(TESSERA_BIN_DIR) + "/tessera-farm";

std::string chunksOf(const FrameList& list, int size) {
    std::string text;
    for (const PiFrameRange& c : list.chunks(size)) {
        text += (text.empty() ? "" : " ") + std::to_string(c.first) + "-" + std::to_string(c.last);
    }
    return text;
}

TEST(FrameList, ListsAreJoinedInOrderAndCutIntoChunks) {
    const struct {
        const char* text;
        const char* written;
        const char* chunksOf2;
    } cases[] = {
        {"1001-1005", "1001-1005", "1001-1002 1003-1004 1005-1005"},
        {"1017-1018,1005", "1005,1017-1018", "1005-1005 1017-1018"},
        {"3-5,1-4,6,9", "1-6,9", "1-2 3-4 5-6 9-9"},
        {"2147483644-2147483647", "2147483644-2147483647",
         "2147483644-2147483645 2147483646-2147483647"},
    };
    for (const auto& c : cases) {
        FrameList list;
        std::string error;
        ASSERT_TRUE(FrameList::parse(c.text, list, error)) << c.text << ": " << error;
        EXPECT_EQ(list.toString(), c.written);
        EXPECT_EQ(chunksOf(list, 2), c.chunksOf2) << c.text;
    }
    for (const char* bad : {"", "5-3", "1,,2", "1-", "-3", "one", "1;2"}) {
        FrameList list;
        std::string error;
        EXPECT_FALSE(FrameList::parse(bad, list, error)) << bad;
        EXPECT_NE(error.find("bad frames \"" + std::string(bad) + "\""), std::string::npos)
            << error;
    }
}

class FarmScript : public ::testing::Test {
protected:
    void SetUp() override {
        dir = testTempPath(::testing::UnitTest::GetInstance()->current_test_info()->name()) +
              "/a 'shot'";
        fs::create_directories(dir);
    }
    std::string session(const std::string& name, const std::string& text) const {
        const std::string path = dir + "/" + name;
        std::ofstream(path) << text;
        return path;
    }
    static ProgramResult run(const std::string& command) { return runProgram(command + " 2>&1"); }
    std::string dir;
};

// The script runs a chunk by hand as a farm node does; verify then names the
// frames of the other chunks, and its command renders only those.
TEST_F(FarmScript, RunsAChunkByHandAndVerifyNamesTheRest) {
    const std::string shot =
        session("shot.tss", "plate demo 128 72\nwrite matte out/matte.####.exr\n");
    const std::string out = dir + "/renders";
    const ProgramResult written =
        run(farm + " submit " + shellWord(shot) + " --frames 1-6 --chunk 2 --out " +
            shellWord(out) + " --write-only");
    ASSERT_EQ(written.status, 0) << written.out;
    const std::string script = out + "/farm/shot.1-6.sbatch";
    EXPECT_NE(written.out.find("submit it with: sbatch " + shellWord(script)), std::string::npos)
        << written.out;

    const ProgramResult chunk = run("bash " + shellWord(script) + " 1");
    ASSERT_EQ(chunk.status, 0) << chunk.out;
    EXPECT_NE(chunk.out.find("tessera-farm: chunk 1, frames 3-4, attempt 1"), std::string::npos);
    EXPECT_EQ(run("bash " + shellWord(script) + " 3").status, 2);

    const ProgramResult verify = run(farm + " verify " + shellWord(out));
    EXPECT_EQ(verify.status, 1);
    EXPECT_NE(verify.out.find(shot + ": 2 of 6 frames complete"), std::string::npos) << verify.out;
    EXPECT_NE(verify.out.find("frame 1: missing: " + out + "/out/matte.0001.exr"),
              std::string::npos);
    EXPECT_NE(verify.out.find(" submit " + shellWord(shot) + " --frames 1-2,5-6 --chunk 2 --out " +
                              shellWord(out)),
              std::string::npos)
        << verify.out;
}

TEST_F(FarmScript, RefusesWhatItCannotRender) {
    const std::string renders =
        session("renders.tss", "plate demo 128 72\nwrite matte m.####.exr\nrender 1-3\n");
    const std::string still = session("still.tss", "plate demo 128 72\nwrite matte m.exr\n");
    const std::string shot = session("shot.tss", "plate demo 128 72\nwrite matte m.####.exr\n");
    const std::string q = " " + shellWord(shot);
    const struct {
        std::string args;
        int status;
        std::string says;
    } cases[] = {
        {" submit " + shellWord(renders) + " --frames 1-3", 2,
         renders + ":3: the session renders frames itself (render)"},
        {" submit " + shellWord(still) + " --frames 1-3", 2,
         still + ": the session writes no frame-pattern output"},
        {" submit " + shellWord(dir + "/none.tss") + " --frames 1-3", 2,
         dir + "/none.tss: cannot read"},
        {" submit" + q, 2, "submit needs the frames to render"},
        {" submit" + q + " --frames 3-1", 2, "bad frames \"3-1\""},
        {" submit" + q + " --frames 1-3 --chunk 0", 2,
         "--chunk takes a whole number of at least 1"},
        {" submit" + q + " --frames 1-3 --missing skip", 2,
         "--missing takes refuse, hold or black"},
        {" status 12x", 2, "bad job id \"12x\""},
        {" verify " + shellWord(dir), 2, "holds no farm script"},
        {" resubmit", 2, "unknown command \"resubmit\""},
        // No Slurm to submit to: the script stays for another try.
        {" submit" + q + " --frames 1-3 --out " + shellWord(dir + "/o"), 1,
         "cannot run sbatch: No such file or directory (is Slurm's client installed"},
    };
    for (const auto& c : cases) {
        const ProgramResult r = run("PATH=/nonexistent " + farm + c.args);
        EXPECT_EQ(r.status, c.status) << c.args << "\n" << r.out;
        EXPECT_NE(r.out.find(c.says), std::string::npos) << c.args << "\n" << r.out;
    }
    EXPECT_TRUE(fs::exists(dir + "/o/farm/shot.1-3.sbatch"));
}

} // namespace
