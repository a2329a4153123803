// Hostile files: a FIFO, a device, a directory or a huge file where a setup,
// a plate, a script, a catalogue, a hotkey table or a panel description
// belongs is refused at once, naming the file and what it is, instead of
// blocking or reading without end; so is a script that is not a regular
// file, and a script's parse error names its file and line.
#include "host/sessionScript.h"
#include "support/runProgram.h"
#include "support/takeReports.h"

#include <base/znLimits.h>
#include <pluginAPI/piGraph.h>
#include <resmgt/msgCatalogue.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsSetup.h>
#include <ui/uiApplication.h>
#include <ui/uiHotkeyRegistry.h>
#include <ui/uiPanelDescription.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

const std::string Runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

class HostileFiles : public ::testing::Test {
protected:
    void SetUp() override {
        UiApplication::getInstance();
        takeReports();
        dir = fs::temp_directory_path() /
              ("tessera-hostile-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir / "folder");
        ASSERT_EQ(::mkfifo((dir / "pipe").c_str(), 0644), 0);
        // A reader that blocks fails the test instead of hanging it.
        ::alarm(120);
    }
    void TearDown() override {
        ::alarm(0);
        fs::remove_all(dir);
        takeReports();
    }
    // A sparse file one byte over `limit`.
    std::string oversized(std::uint64_t limit) const {
        const fs::path p = dir / "huge";
        std::ofstream(p).close();
        fs::resize_file(p, limit + 1);
        return p.string();
    }

    fs::path dir;
};

struct Reader {
    const char* what;
    std::uint64_t limit;
    std::function<std::string(const std::string&)> read; // the error
};

TEST_F(HostileFiles, WhatIsNotARegularFileWithinItsLimitIsRefusedBeforeItIsRead) {
    const RCShdPtr<PiGraph> graph = PiGraph::create();
    const RCShdPtr<TsKeyerGroup> keyer = TsKeyerGroup::create("keyer", 1, 1);
    graph->getRoot()->addNode(keyer);
    const std::vector<Reader> readers = {
        {"setup", ZnLimits::SetupBytes,
         [&](const std::string& p) {
             LiString error;
             EXPECT_FALSE(TsSetup::load(*keyer, p, error));
             return error;
         }},
        {"plate", TsPlateIO::getMaxPixels() * ZnLimits::PlateBytesPerPixel,
         [](const std::string& p) {
             std::string error;
             EXPECT_FALSE(TsPlateIO::read(p, error));
             return error;
         }},
        {"script", ZnLimits::ScriptBytes,
         [](const std::string& p) {
             try {
                 SessionScript::read(p);
             } catch (const SessionError& e) {
                 return std::string(e.what());
             }
             return std::string("read");
         }},
        {"catalogue", ZnLimits::ResourceBytes,
         [](const std::string& p) {
             const MsgCatalogue c = MsgCatalogue::load(p);
             EXPECT_FALSE(c.isReadable());
             return c.errors().empty() ? std::string("read") : c.errors().front().text();
         }},
        {"hotkey table", ZnLimits::ResourceBytes,
         [](const std::string& p) {
             EXPECT_EQ(UiHotkeyRegistry::getInstance().loadTable(p), -1);
             const std::vector<std::string> reports = takeReports();
             return reports.empty() ? std::string("read") : reports.back();
         }},
    };
    const std::vector<std::pair<std::string, std::string>> files = {
        {(dir / "pipe").string(), "it is a FIFO, not a regular file"},
        {(dir / "folder").string(), "it is a directory, not a regular file"},
        {"/dev/zero", "it is a character device, not a regular file"}};
    for (const Reader& reader : readers) {
        for (const auto& [file, why] : files) {
            const std::string error = reader.read(file);
            EXPECT_NE(error.find(file), std::string::npos) << reader.what << ": " << error;
            EXPECT_NE(error.find(why), std::string::npos) << reader.what << ": " << error;
        }
        const std::string huge = oversized(reader.limit);
        const std::string error = reader.read(huge);
        EXPECT_NE(error.find(huge), std::string::npos) << reader.what << ": " << error;
        EXPECT_NE(error.find("more than the"), std::string::npos) << reader.what << ": " << error;
    }
    // Panel descriptions are found only as regular files; a huge one is
    // refused.
    LiString error;
    const std::string huge = oversized(ZnLimits::ResourceBytes);
    EXPECT_EQ(UiPanelDescription::build(huge, nullptr, error), nullptr);
    EXPECT_EQ(error, "panel description " + huge +
                         ": cannot be read (it holds 16.0 MiB, more than the 16 MiB a panel "
                         "description may hold)");
}

} // namespace
