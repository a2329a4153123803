// Outputs under failure: a full disk (a file size limit), a recording that
// cannot be written. Nothing the user had is lost, and the error names the
// file and the reason.
#include "sessionScene.h"
#include "studioWindow.h"

#include "host/sessionRecorder.h"
#include "support/runProgram.h"

#include <QApplication>

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

const std::string Runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

std::string readFile(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::vector<std::string> filesIn(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(dir)) {
        names.push_back(e.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

using OutputFailure = SessionScene;

// Each kind of output, written once whole, then again by tessera-run under a
// file size limit of 1 KiB with SIGXFSZ ignored (every write past it fails
// with EFBIG, as on a full disk): the run fails naming the file and the
// reason, and the earlier file is there byte for byte, with nothing beside
// it.
TEST_F(OutputFailure, AnOutputThatDoesNotFitLeavesTheEarlierFileAndSaysWhy) {
    const std::vector<std::pair<std::string, std::string>> outputs = {
        {"source", "source.exr"},  {"source", "source.png"}, {"matte", "matte.exr"},
        {"matte", "matte.png"},    {"status", "status.exr"}, {"status", "status.png"},
        {"foreground", "fg.exr"},  {"foreground", "fg.png"}, {"comp", "comp.exr"},
        {"comp", "comp.png"},      {"viewer", "viewer.png"}, {"setup", "setup.tessera"},
        {"summary", "summary.txt"}};
    std::string first = "plate demo 64 64\n";
    for (const auto& [kind, file] : outputs) {
        first += "write " + kind + " " + file + "\n";
    }
    ok(first);
    std::map<std::string, std::string> earlier;
    for (const auto& [kind, file] : outputs) {
        earlier[file] = readFile(dir / file);
    }
    const std::vector<std::string> before = filesIn(dir);

    // Larger than the limit, each of them: a bigger plate, more nodes, a
    // longer history for the summary.
    std::string grown = "plate demo 256 256\nkeyer nodes 8\n";
    for (int i = 1; i <= 20; ++i) {
        grown += "set overall 0." + std::to_string(i % 10) + "\n";
    }
    for (const auto& [kind, file] : outputs) {
        std::ofstream(dir / "grown.tss") << grown << "write " << kind << " " << file << "\n";
        const ProgramResult r =
            runProgram("cd " + dir.string() + " && ulimit -f 1 && trap '' XFSZ && " + Runner +
                       " --quiet grown.tss 2>&1");
        EXPECT_EQ(r.status, 1) << file << ": " << r.out;
        EXPECT_NE(r.out.find("grown.tss:23: "), std::string::npos) << r.out;
        EXPECT_NE(r.out.find(file), std::string::npos) << r.out;
        EXPECT_NE(r.out.find(": File too large"), std::string::npos) << r.out;
        EXPECT_TRUE(readFile(dir / file) == earlier[file]) << file << " was changed";
        fs::remove(dir / "grown.tss");
        EXPECT_EQ(filesIn(dir), before) << file;
    }
}

class RecordingFailure : public ::testing::Test {
protected:
    void SetUp() override {
        UiApplication::getInstance();
        dir = fs::temp_directory_path() /
              ("tessera-recording-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
    std::string path(const std::string& name) const { return (dir / name).string(); }

    fs::path dir;
};

// --record with a file that cannot be written: the studio does not start.
TEST_F(RecordingFailure, ARecordingThatCannotBeWrittenStopsTheStudioAtOnce) {
    const std::string file = path("missing/session.tss");
    const ProgramResult r = runProgram("timeout 60 " + std::string(TESSERA_BIN_DIR) +
                                       "/tessera-studio --record " + file + " 2>&1");
    EXPECT_EQ(r.status, 2) << r.out;
    EXPECT_NE(r.out.find("cannot write \"" + file + "\": No such file or directory"),
              std::string::npos)
        << r.out;
}

} // namespace
