#include <base/exReporter.h>
#include <resmgt/liStringUtil.h>
#include <resmgt/msgCatalogue.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace {

TEST(MsgCatalogue, ParsesEntriesCommentsAndEscapes) {
    const auto c = MsgCatalogue::parse("# comment\n"
                                       "\n"
                                       "MSG_A \"Set \\\"A\\\"\"\n"
                                       "  MSG_B\t\"back\\\\slash\"  # trailing comment\r\n",
                                       "test.msg");
    EXPECT_TRUE(c.errors().empty());
    EXPECT_EQ(c.find("MSG_A").value(), "Set \"A\"");
    EXPECT_EQ(c.find("MSG_B").value(), "back\\slash");
    EXPECT_FALSE(c.find("MSG_C"));
}

TEST(MsgCatalogue, MalformedLinesAreReportedWithFileAndLineAndSkipped) {
    const auto c = MsgCatalogue::parse("MSG_OK \"fine\"\n"
                                       "MSG_NOQUOTE text\n"
                                       "MSG_OPEN \"never closed\n"
                                       "\"no id\"\n"
                                       "MSG-DASH \"x\"\n"
                                       "MSG_OK \"again\"\n"
                                       "MSG_TAIL \"x\" junk\n",
                                       "bad.msg");
    ASSERT_EQ(c.errors().size(), 6u);
    EXPECT_EQ(c.errors()[0].line, 2);
    EXPECT_EQ(c.errors()[1].line, 3);
    EXPECT_EQ(c.errors()[4].text(), "bad.msg:6: message id MSG_OK defined twice");
    EXPECT_EQ(c.find("MSG_OK").value(), "fine");
    EXPECT_EQ(c.entries().size(), 1u);
}

TEST(MsgCatalogue, UnreadableFileIsOneFileLevelError) {
    const auto c = MsgCatalogue::load("/nonexistent/dir/x.msg");
    EXPECT_FALSE(c.isReadable());
    ASSERT_EQ(c.errors().size(), 1u);
    EXPECT_EQ(c.errors()[0].line, 0);
}

class MsgServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = std::filesystem::temp_directory_path() /
              ("tessera-msg-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir);
        setenv("TESSERA_RESOURCE_PATH", dir.c_str(), 1);
        ExReporter::getInstance().clear();
    }
    void TearDown() override {
        std::filesystem::remove_all(dir);
        unsetenv("TESSERA_RESOURCE_PATH");
    }
    void write(const std::string& name, const std::string& contents) {
        std::ofstream(dir / name) << contents;
    }
    static int reportsContaining(const std::string& fragment) {
        int n = 0;
        for (const auto& r : ExReporter::getInstance().getReports()) {
            n += r.text().find(fragment) != std::string::npos;
        }
        return n;
    }
    std::filesystem::path dir;
};

TEST_F(MsgServerTest, SubscriptionResolvesWhileTheGuardHoldsTheCatalogue) {
    write("server1.msg", "MSG_UNDO \"Set Thing\"\nbroken line\n");
    MsgSubscription sub("MSG_UNDO");
    EXPECT_EQ(sub.getText(), "MSG_UNDO"); // not registered yet
    {
        const MsgFileGuard guard("server1.msg");
        MsgServer::getInstance().registerSubscription(&sub);
        MsgServer::getInstance().registerSubscription(&sub); // again: harmless
    }
    EXPECT_EQ(sub.getText(), "Set Thing");
    EXPECT_TRUE(sub.isResolved());
    EXPECT_EQ(MsgServer::getInstance().openCatalogueCount(), 0u);
    EXPECT_EQ(reportsContaining("server1.msg:2"), 1);
    const auto ids = MsgServer::getInstance().getRegisteredIds();
    EXPECT_EQ(std::count(ids.begin(), ids.end(), "MSG_UNDO"), 1);
}

TEST_F(MsgServerTest, MissingFileOrIdFallsBackToTheIdAndIsReportedOnce) {
    MsgSubscription a("MSG_NOWHERE_A"), b("MSG_NOWHERE_B");
    {
        const MsgFileGuard guard("absent.msg");
        MsgServer::getInstance().registerSubscription(&a);
    }
    {
        const MsgFileGuard guard("absent.msg");
        MsgServer::getInstance().registerSubscription(&b);
        MsgServer::getInstance().registerSubscription(&b);
    }
    EXPECT_EQ(a.getText(), "MSG_NOWHERE_A");
    EXPECT_EQ(b.getText(), "MSG_NOWHERE_B");
    EXPECT_EQ(reportsContaining("absent.msg: not found"), 1);
    EXPECT_EQ(reportsContaining("MSG_NOWHERE_B"), 1);
}

TEST_F(MsgServerTest, DestroyedSubscriptionLeavesTheServer) {
    auto sub = std::make_unique<MsgSubscription>("MSG_SHORT_LIVED");
    MsgServer::getInstance().registerSubscription(sub.get());
    EXPECT_TRUE(MsgServer::getInstance().isRegistered(sub.get()));
    const MsgSubscription* raw = sub.get();
    sub.reset();
    EXPECT_FALSE(MsgServer::getInstance().isRegistered(raw));
}

TEST(LiStringUtil, ConvertsNumbersAndSanitisesNames) {
    EXPECT_EQ(LiStringUtil::convertNb(-12), "-12");
    EXPECT_EQ(LiStringUtil::convertNb(5), "5");
    EXPECT_EQ(LiStringUtil::sanitise("spill_amount", " "), "spill amount");
    EXPECT_EQ(LiStringUtil::sanitise("_edge..balance_", " "), "edge balance");
    EXPECT_EQ(LiStringUtil::sanitise("Key Blend", " "), "Key Blend");
}

} // namespace
