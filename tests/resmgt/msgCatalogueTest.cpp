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

} // namespace
