#include "uiScene.h"

#include <ui/uiHotkeyRegistry.h>

#include <cstdio>
#include <fstream>

namespace {

class HotkeyScene : public UiScene {
protected:
    void SetUp() override {
        UiScene::SetUp();
        registry = &UiHotkeyRegistry::getInstance();
        matte = registry->getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Matte");
        patch3 = registry->getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Patch 3");
        widget = std::make_unique<LoggingWidget>();
    }
    void TearDown() override {
        widget.reset();
        for (const std::string& path : files) {
            std::remove(path.c_str());
        }
        UiScene::TearDown();
    }
    std::string writeTable(const std::string& name, const std::string& text) {
        const std::string path = ::testing::TempDir() + name;
        std::ofstream(path) << text;
        files.push_back(path);
        return path;
    }

    UiHotkeyRegistry* registry = nullptr;
    unsigned matte = 0, patch3 = 0;
    std::unique_ptr<LoggingWidget> widget;
    std::vector<std::string> files;
};

TEST_F(HotkeyScene, ABadTableIsReportedByLineAndTheRestIsRead) {
    const std::string path =
        writeTable("bad.hotkeys", "# a test table\n"
                                  "Test \"First\" Ctrl+Shift+F\n"
                                  "Test First F\n"
                                  "Test \"Second F2\n"
                                  "Test \"Third\" Hyper+T\n"
                                  "Test \"Fourth\" NoSuchKey\n"
                                  "Test \"Fifth\" F5 extra\n"
                                  "\n"
                                  "Test \"Sixth\" Alt+6   # trailing comment\n");
    EXPECT_EQ(registry->loadTable(path), 2);
    for (int line : {3, 4, 5, 6, 7}) {
        EXPECT_TRUE(reported(path + ":" + std::to_string(line) + ":")) << "line " << line;
    }
    EXPECT_FALSE(reported(path + ":2:"));
    EXPECT_TRUE(reported("\"Hyper\" is not a modifier"));
    EXPECT_TRUE(reported("\"NoSuchKey\" is not a key name"));
    EXPECT_EQ(registry->getBinding(registry->findEntry("Test", "First")).toString(),
              "Ctrl+Shift+F");
    EXPECT_EQ(registry->getBinding(registry->findEntry("Test", "Sixth")).toString(), "Alt+6");
    EXPECT_EQ(registry->findEntry("Test", "Third"), 0u);

    EXPECT_EQ(registry->loadTable(::testing::TempDir() + "missing.hotkeys"), -1);
    EXPECT_TRUE(reported("cannot read the hotkey table"));
}

} // namespace
