// Saving a setup over an existing one never damages it: the new text is
// written to a temporary file beside the target and renamed over it only
// once it is whole and on disk. A save that dies half way (the process
// killed by the file size limit in the middle of its write) leaves the old
// file byte for byte; what it left is taken away by the next save.
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piGraph.h>
#include <pluginAPI/piTypedAnimInput.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSetup.h>

#include <base/exReporter.h>
#include <base/rcCast.h>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

// A keyer group whose setup is small, saved as "shot.setup"; then grown (many
// nodes and animation keys) so that its next save is much larger than the
// file size limits used below.
class AtomicSave : public ::testing::Test {
protected:
    static constexpr rlim_t Limit = 16 * 1024;

    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("tessera-save-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer", 1, 1);
        graph->getRoot()->addNode(group);
        overall(0).setKey(0.0, 0.25);
        ASSERT_TRUE(TsSetup::save(*group, target(), why)) << why;
        old = readFile(target());
        ASSERT_LT(old.size(), Limit);

        for (int n = 0; n < 4; ++n) {
            group->addKeyerNode("more");
        }
        const PiUndoGuard step(graph->getCommandStack(), "Animate");
        for (int n = 0; n < group->getKeyerNodeCount(); ++n) {
            for (int k = 0; k < 2000; ++k) {
                overall(n).setKey(static_cast<double>(k), 1.0 / (k + 3));
            }
        }
        LiString text;
        ASSERT_TRUE(TsSetup::write(*group, text, why)) << why;
        ASSERT_GT(text.size(), 8 * Limit);
        ExReporter::getInstance().clear();
    }
    void TearDown() override {
        fs::remove_all(dir);
        ExReporter::getInstance().clear();
    }

    PiTypedAnimInput<double> overall(int node) {
        return PiTypedAnimInput<double>(
            rcCast<TsMgInterface>(group->getKeyerNode(node)->getController())
                ->getMatteParamInput(TsMgTypes::Overall));
    }
    std::string target() const { return (dir / "shot.setup").string(); }
    static std::string readFile(const fs::path& p) {
        std::ifstream in(p, std::ios::binary);
        std::ostringstream os;
        os << in.rdbuf();
        return os.str();
    }
    // The files of the directory other than the target.
    std::vector<fs::path> others() const {
        std::vector<fs::path> found;
        for (const auto& e : fs::directory_iterator(dir)) {
            if (e.path().filename() != "shot.setup") {
                found.push_back(e.path());
            }
        }
        return found;
    }
    // The target is the old setup, byte for byte, and it still loads: into a
    // fresh group it gives back the same text.
    void expectOldSetupKept() {
        EXPECT_EQ(readFile(target()), old);
        const RCShdPtr<PiGraph> other = PiGraph::create();
        const RCShdPtr<TsKeyerGroup> fresh = TsKeyerGroup::create("keyer", 1, 1);
        other->getRoot()->addNode(fresh);
        LiString error;
        ASSERT_TRUE(TsSetup::load(*fresh, target(), error)) << error;
        LiString text;
        ASSERT_TRUE(TsSetup::write(*fresh, text, why)) << why;
        EXPECT_EQ(text, old);
    }

    fs::path dir;
    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    std::string why; // what a save or load that should work says when it does not
    std::string old;
};

TEST_F(AtomicSave, ASaveKilledInTheMiddleOfItsWriteLeavesTheOldSetup) {
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // The kernel kills the process (SIGXFSZ) when a write goes past the
        // limit; no core file.
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit core{0, 0};
        ::setrlimit(RLIMIT_CORE, &core);
        const rlimit size{Limit, Limit};
        ::setrlimit(RLIMIT_FSIZE, &size);
        const bool saved = TsSetup::save(*group, target(), why);
        ::_exit(saved ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the save was not killed: exit status "
                                     << (WIFEXITED(status) ? WEXITSTATUS(status) : -1);
    EXPECT_EQ(WTERMSIG(status), SIGXFSZ);

    expectOldSetupKept();
    // What the child had written when it died is in a hidden file beside the
    // target, cut at the limit: the kill did come in the middle of the write.
    const std::vector<fs::path> left = others();
    ASSERT_EQ(left.size(), 1u);
    EXPECT_EQ(left[0].filename().string().rfind(".shot.setup.", 0), 0u) << left[0];
    EXPECT_EQ(fs::file_size(left[0]), Limit);

    // The next save goes through and takes away what the killed one left,
    // but not the temporary file of a save still under way (its writer holds
    // it locked).
    const fs::path live = dir / ".shot.setup.saving-abcdef";
    const int liveFd = ::open(live.c_str(), O_RDWR | O_CREAT, 0644);
    ASSERT_GE(liveFd, 0);
    ASSERT_EQ(::flock(liveFd, LOCK_EX), 0);
    ASSERT_TRUE(TsSetup::save(*group, target(), why)) << why;
    LiString text;
    ASSERT_TRUE(TsSetup::write(*group, text, why)) << why;
    EXPECT_EQ(readFile(target()), text);
    EXPECT_EQ(others(), std::vector<fs::path>{live});
    ::close(liveFd);
}

} // namespace
