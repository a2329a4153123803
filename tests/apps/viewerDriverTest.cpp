// The driver and the interpreter's pointer and key commands, against tools
// of the test's own on the session's viewer: what reaches a tool is what a
// user's hand would send, at the plate points the script names.
#include "sessionScene.h"
#include "ui/viewerScene.h"

#include "host/sessionArgs.h"

#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfToolset.h>
#include <ui/uiHotkeyRegistry.h>

#include <random>

namespace {

class DriverScene : public SessionScene {
protected:
    void SetUp() override {
        SessionScene::SetUp();
        ok("plate demo 64 64");
        log = rcMake<LoggingTool>();
        handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(session->getViewer()));
        handler->appendTool("log", log);
        session->getViewer().setEventHandler(handler);
    }
    void TearDown() override {
        handler.reset();
        SessionScene::TearDown();
    }
    // The window point of a plate point, rounded as the log writes it.
    std::string at(float x, float y) const {
        const GePoint2<float> w =
            ViewerDriver::plateToWindow(session->getViewer().getView(), {x, y});
        return std::to_string(std::lround(w.x)) + "," + std::to_string(std::lround(w.y));
    }

    RCShdPtr<LoggingTool> log;
    RCShdPtr<MfCurrentToolEventHandler> handler;
};

TEST_F(DriverScene, AHotkeyGoesToTheViewerOnlyWhenItsHandlerTakesIt) {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const unsigned entry = registry.getEntry(UiHotkeyRegistry::TesseraDomain, "Sample Matte");
    EXPECT_EQ(run("hotkey \"Sample Matte\""),
              "test.tss:1: hotkey \"Sample Matte\" is not taken by the viewer (stage none)");
    registry.addHotkeyHandler(entry, session->getViewer().getEventHandler());
    // A tap of its key: the hotkey, then the key's release.
    ok("move 5 5\nhotkey \"Sample Matte\"");
    ASSERT_EQ(log->log.size(), 3u);
    EXPECT_EQ(log->log[1], "hotkey " + std::to_string(entry) + " " + at(5, 5));
    EXPECT_EQ(log->log[2], "key up M " + at(5, 5));
    // The key of its binding, typed, is the same hotkey.
    ok("key M");
    ASSERT_EQ(log->log.size(), 5u);
    EXPECT_EQ(log->log[3], log->log[1]);
    EXPECT_EQ(log->log[4], log->log[2]);
    // Unbound, the entry is still delivered, as the hotkey itself.
    const UiHotkeyRegistry::Binding m = registry.getBinding(entry);
    registry.setBinding(entry, UiHotkeyRegistry::Binding());
    ok("hotkey \"Sample Matte\"");
    registry.setBinding(entry, m);
    ASSERT_EQ(log->log.size(), 6u);
    EXPECT_EQ(log->log[5], log->log[1]);
    registry.removeHotkeyHandler(entry, session->getViewer().getEventHandler());
}

TEST(ViewerDriver, APlatePointFromAWindowPointReplaysToThatWindowPoint) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> zoom(0.05f, 20.0f);
    std::uniform_real_distribution<float> pan(-3000.0f, 3000.0f);
    std::uniform_int_distribution<int> pixel(0, 3839);
    std::size_t longest = 0;
    for (int i = 0; i < 2000; ++i) {
        const VwView view(1920, 1080, zoom(random), {pan(random), pan(random)});
        const GePoint2<float> window{static_cast<float>(pixel(random)) + 0.5f * (i % 2),
                                     static_cast<float>(pixel(random) % 1080)};
        const GePoint2<double> plate = ViewerDriver::windowToPlate(view, window);
        // Written and read back as a script would.
        const std::string text = SessionArgs::format(plate.x) + " " + SessionArgs::format(plate.y);
        double x = 0.0;
        double y = 0.0;
        ASSERT_TRUE(SessionArgs::parseNumber(text.substr(0, text.find(' ')), x));
        ASSERT_TRUE(SessionArgs::parseNumber(text.substr(text.find(' ') + 1), y));
        const GePoint2<float> back = ViewerDriver::plateToWindow(view, {x, y});
        ASSERT_EQ(back.x, window.x) << i << " " << text;
        ASSERT_EQ(back.y, window.y) << i << " " << text;
        longest = std::max(longest, text.size());
    }
    EXPECT_LT(longest, 40u);
    // With the digits they need: whole pixels at a zoom of 2 are halves.
    const GePoint2<double> p =
        ViewerDriver::windowToPlate(VwView(400, 300, 2.0f, {16, 280}), {101, 37});
    EXPECT_EQ(SessionArgs::format(p.x) + " " + SessionArgs::format(p.y), "42.5 121.5");
}

} // namespace
