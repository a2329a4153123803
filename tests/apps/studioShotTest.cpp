// The studio's shot controls driven by the window system's own key and
// pointer events: keys over the viewer step and jump, a drag in the timeline
// scrubs and records one frame line, playback runs and stops, a field's key
// button keys the input, and the timeline shows the cached frames and the
// keys. A screenshot of the timeline goes to the build tree.
#include "shotControls.h"
#include "studioWindow.h"
#include "timeline.h"

#include "host/hostSession.h"
#include "host/sessionRecorder.h"
#include "support/qtInput.h"
#include "support/testTemp.h"

#include <pluginAPI/piContainer.h>
#include <tesseraCore/io/tsFrameCache.h>
#include <ui/uiApplication.h>
#include <ui/uiFieldKeys.h>
#include <ui/uiValueEditor.h>
#include <ui/uiViewer.h>

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class StudioShotScene : public ::testing::Test {
protected:
    StudioShotScene() { UiApplication::getInstance(); }
    void SetUp() override {
        dir = testTempPath(::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(dir);
        studio = std::make_unique<StudioWindow>();
        studio->resize(1400, 860);
        studio->show();
        // A 12-frame sequence of the demo plate, and a node keyed at its ends.
        ASSERT_TRUE(studio->perform("plate demo 320 180"));
        ASSERT_TRUE(studio->perform("write source " + dir + "/p.####.exr"));
        ASSERT_TRUE(studio->perform("render 101-112"));
        ASSERT_TRUE(studio->perform("plate " + dir + "/p.####.exr"));
        ASSERT_TRUE(studio->perform("animate overall 0.2"));
        ASSERT_TRUE(studio->perform("frame 112"));
        ASSERT_TRUE(studio->perform("animate overall 0.8"));
        ASSERT_TRUE(studio->perform("frame 101"));
        settle();
    }
    void settle() {
        for (int i = 0; i < 4; ++i) {
            QApplication::processEvents();
        }
        HostSession::settle();
    }
    void press(QWidget* w, int key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
        w->setFocus();
        QTest::keyClick(w, static_cast<Qt::Key>(key), mods);
        settle();
    }
    int frame() const { return static_cast<int>(studio->getSession().getFrame()); }
    Timeline& timeline() const { return studio->getShotControls().getTimeline(); }
    UiViewer& viewer() const { return studio->getSession().getViewer(); }

    std::string dir;
    std::unique_ptr<StudioWindow> studio;
};

TEST_F(StudioShotScene, KeysOverTheViewerStepAndJumpWithinTheShot) {
    EXPECT_EQ(timeline().getFirst(), 101);
    EXPECT_EQ(timeline().getLast(), 112);
    press(&viewer(), Qt::Key_Right);
    press(&viewer(), Qt::Key_Right);
    EXPECT_EQ(frame(), 103);
    press(&viewer(), Qt::Key_Left);
    EXPECT_EQ(frame(), 102);
    press(&viewer(), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(frame(), 112);
    press(&viewer(), Qt::Key_Right);
    EXPECT_EQ(frame(), 112) << "the step stops at the last frame";
    press(&viewer(), Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(frame(), 101);
    EXPECT_EQ(timeline().getFrame(), 101);
    // Each frame the user settles on is a line of the recording.
    std::vector<std::string> frames;
    for (const std::string& line : studio->getRecorder().getLines()) {
        if (line.rfind("frame ", 0) == 0) {
            frames.push_back(line);
        }
    }
    EXPECT_EQ(std::vector<std::string>(frames.end() - 5, frames.end()),
              (std::vector<std::string>{"frame 102", "frame 103", "frame 102", "frame 112",
                                        "frame 101"}));
}

TEST_F(StudioShotScene, ADragInTheTimelineScrubsAndRecordsWhereItStops) {
    const std::size_t before = studio->getRecorder().getText().size();
    const int y = timeline().height() / 2;
    sendMouse(&timeline(), QEvent::MouseButtonPress, QPointF(timeline().xOf(104), y));
    EXPECT_EQ(frame(), 104);
    EXPECT_TRUE(viewer().isInteractive()) << "frames run through at viewer resolution";
    sendMouse(&timeline(), QEvent::MouseMove, QPointF(timeline().xOf(108), y));
    EXPECT_EQ(frame(), 108);
    sendMouse(&timeline(), QEvent::MouseButtonRelease, QPointF(timeline().xOf(109), y));
    settle();
    EXPECT_EQ(frame(), 109);
    EXPECT_FALSE(viewer().isInteractive());
    EXPECT_EQ(studio->getRecorder().getText().substr(before), "frame 109\n");
    // The frame shown and the frames read ahead of the scrub are cached, and
    // the timeline shows them beside the keys of the animated input.
    TsFrameCache::getInstance().waitForReadAhead();
    studio->getShotControls().refresh();
    const std::vector<int>& cached = timeline().getCached();
    for (int f : {109, 110}) {
        EXPECT_NE(std::find(cached.begin(), cached.end(), f), cached.end()) << f;
    }
    EXPECT_EQ(timeline().getKeys(), (std::vector<int>{101, 112}));
    const QImage shot = timeline().grab().toImage();
    EXPECT_TRUE(shot.save(
        QString::fromStdString(std::string(TESSERA_BIN_DIR) + "/../studio-timeline.png")));
    // The current frame's line is red where it stands.
    const QColor line = shot.pixelColor(timeline().xOf(109), timeline().height() - 8);
    EXPECT_GT(line.red(), 180);
    EXPECT_LT(line.green(), 120);
}

TEST_F(StudioShotScene, PlaybackRunsThroughTheShotAndStopsOnAFrame) {
    ShotControls& controls = studio->getShotControls();
    press(&viewer(), Qt::Key_Space);
    EXPECT_TRUE(controls.isPlaying());
    for (int i = 0; i < 20 && frame() < 104; ++i) {
        QTest::qWait(50);
    }
    EXPECT_GE(frame(), 104);
    press(&viewer(), Qt::Key_Space);
    EXPECT_FALSE(controls.isPlaying());
    EXPECT_FALSE(viewer().isInteractive());
    const std::string text = studio->getRecorder().getText();
    EXPECT_NE(text.rfind("frame " + std::to_string(frame()) + "\n"), std::string::npos);
}

TEST_F(StudioShotScene, AFieldsKeyButtonKeysItsInputAtTheCurrentFrame) {
    auto* adapter = dynamic_cast<UiWidgetAdapter*>(
        studio->getSession().getPanel("other")->findWidget("overallField").get());
    auto* field = dynamic_cast<UiValueEditor*>(adapter);
    ASSERT_TRUE(field && field->getKeys());
    UiFieldKeys& keys = *field->getKeys();
    ASSERT_TRUE(studio->perform("frame 106"));
    EXPECT_EQ(keys.getState(), UiFieldKeys::State::Animated);
    auto* button = adapter->getLiveWidget()->findChild<QToolButton*>("overallFieldKey");
    ASSERT_TRUE(button);
    sendClick(button, QPointF(4, 4));
    settle();
    EXPECT_EQ(keys.getState(), UiFieldKeys::State::Key);
    EXPECT_EQ(studio->getSession().getCommandStack().getUndoName(), "Set Key");
    sendClick(button, QPointF(4, 4));
    settle();
    EXPECT_EQ(keys.getState(), UiFieldKeys::State::Animated);
    EXPECT_EQ(studio->getSession().getCommandStack().getUndoName(), "Delete Key");
}

} // namespace
