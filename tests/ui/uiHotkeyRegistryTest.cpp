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

TEST_F(HotkeyScene, TheDefaultTableBindsTheKeyersEntries) {
    using B = UiHotkeyRegistry::Binding;
    EXPECT_EQ(registry->getBinding(matte), (B{EvKeyCode::KeyM, 0}));
    EXPECT_EQ(registry->getBinding(patch3), (B{EvKeyCode::Key3, 0}));
    const auto entry = [&](const char* name) {
        return registry->getBinding(registry->getEntry(UiHotkeyRegistry::TesseraDomain, name));
    };
    EXPECT_EQ(entry("Sample Degrain").toString(), "G");
    EXPECT_EQ(entry("Adjust Spill").toString(), "S");
    EXPECT_EQ(entry("Adjust Blend").toString(), "B");
    EXPECT_EQ(entry("Sample Patch 9").toString(), "9");
    // Entries keep their ids, and are made on request.
    EXPECT_EQ(registry->getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Matte"), matte);
    const unsigned fresh = registry->getEntry("Other", "Unbound Thing");
    EXPECT_FALSE(registry->getBinding(fresh).isBound());
    EXPECT_EQ(registry->getEntryName(fresh), "Unbound Thing");
    EXPECT_EQ(registry->findEntry("Other", "Nothing"), 0u);
}

TEST_F(HotkeyScene, AHotkeyGoesToTheRegisteredHandlerAndOtherKeysToTheWidget) {
    registry->addHotkeyHandler(matte, widget->getEventHandler());
    sendKey(widget.get(), Qt::Key_M, Qt::NoModifier, "m");
    EXPECT_EQ(widget->hotkeys, std::vector<unsigned>{matte});
    EXPECT_TRUE(widget->log.empty());

    // Not registered for "Sample Patch 3", not the same modifiers, or a plain
    // key: key events.
    sendKey(widget.get(), Qt::Key_3, Qt::NoModifier, "3");
    sendKey(widget.get(), Qt::Key_M, Qt::ShiftModifier, "M");
    sendKey(widget.get(), Qt::Key_Q, Qt::NoModifier, "q");
    EXPECT_EQ(widget->log, (std::vector<std::string>{"key 3", "key M", "key q"}));
    EXPECT_EQ(widget->hotkeys.size(), 1u);

    // A hotkey the handler leaves unprocessed goes on as a key.
    widget->takeHotkeys = false;
    sendKey(widget.get(), Qt::Key_M, Qt::NoModifier, "m");
    EXPECT_EQ(widget->hotkeys.size(), 2u);
    EXPECT_EQ(widget->log.back(), "key m");

    registry->removeHotkeyHandler(matte, widget->getEventHandler());
    widget->takeHotkeys = true;
    sendKey(widget.get(), Qt::Key_M, Qt::NoModifier, "m");
    EXPECT_EQ(widget->hotkeys.size(), 2u);
}

TEST_F(HotkeyScene, ADestroyedWidgetLeavesItsEntries) {
    registry->addHotkeyHandler(patch3, widget->getEventHandler());
    const CbHandler<EvEvent>* handler = widget->getEventHandler();
    EXPECT_TRUE(registry->isRegistered(patch3, handler));
    widget.reset();
    EXPECT_FALSE(registry->isRegistered(patch3, handler));
}

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

TEST_F(HotkeyScene, ModifiedBindingsNeedExactlyTheirModifiers) {
    const std::string path = writeTable("mods.hotkeys", "Test \"Modified\" Ctrl+K\n");
    ASSERT_EQ(registry->loadTable(path), 1);
    const unsigned modified = registry->findEntry("Test", "Modified");
    registry->addHotkeyHandler(modified, widget->getEventHandler());
    sendKey(widget.get(), Qt::Key_K, Qt::NoModifier, "k");
    sendKey(widget.get(), Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(widget->hotkeys.empty());
    sendKey(widget.get(), Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(widget->hotkeys, std::vector<unsigned>{modified});
}

TEST_F(HotkeyScene, AKeyTakenByASecondEntryLeavesTheFirst) {
    const std::string path = writeTable("clash.hotkeys", "Test \"One\" F9\nTest \"Two\" F9\n");
    EXPECT_EQ(registry->loadTable(path), 2);
    EXPECT_TRUE(reported(path + ":2:"));
    EXPECT_FALSE(registry->getBinding(registry->findEntry("Test", "One")).isBound());
    EXPECT_EQ(registry->getBinding(registry->findEntry("Test", "Two")).toString(), "F9");
}

TEST_F(HotkeyScene, HandlersForUnknownEntriesAreReported) {
    registry->addHotkeyHandler(100000, widget->getEventHandler());
    EXPECT_TRUE(reported("no hotkey entry 100000"));
}

} // namespace
