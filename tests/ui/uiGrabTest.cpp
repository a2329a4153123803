#include "uiScene.h"

#include <ui/uiGrab.h>
#include <ui/uiGrabHandler.h>

#include <stdexcept>

namespace {

// A grab handler that logs what it receives, with the coordinates of device
// events, and marks them processed unless told not to.
class LoggingHandler : public UiGrabHandler {
public:
    explicit LoggingHandler(const LiString& name, UiWidget* origin = nullptr)
        : UiGrabHandler(name)
        , _origin(origin) {}
    UiWidget* getProcessOrigin() const override { return _origin; }
    void callback(EvEvent& event) override {
        std::string entry;
        if (event.isA<EvGrabLostEvent>()) {
            entry = "lost";
        } else if (event.isA<EvPointerButtonDownEvent>()) {
            entry = "down";
        } else if (event.isA<EvPointerButtonUpEvent>()) {
            entry = "up";
        } else if (event.isA<EvPointerMoveEvent>()) {
            entry = "move";
        } else if (event.isA<EvKeyDownEvent>()) {
            entry = std::string("key ") +
                    EvKeyCode::toName(static_cast<EvKeyEvent&>(event).getKeyCode());
        }
        if (auto* device = dynamic_cast<EvDeviceEvent*>(&event)) {
            const GePoint2<float> c = device->getCoord();
            entry += " " + std::to_string(static_cast<int>(c.x)) + "," +
                     std::to_string(static_cast<int>(c.y));
            global = device->getGlobalCoord();
        }
        log.push_back(entry);
        event.setProcessed(take);
        if (fail) {
            throw std::runtime_error("handler " + getName() + " failed");
        }
    }

    std::vector<std::string> log;
    GePoint2<float> global;
    bool take = true;
    bool fail = false;

private:
    UiWidget* _origin;
};

class GrabScene : public UiScene {
protected:
    void SetUp() override {
        UiScene::SetUp();
        window.resize(300, 200);
        target = new LoggingWidget(&window, "target");
        target->setGeometry(50, 40, 100, 80);
        window.show();
    }
    void TearDown() override {
        UiGrab::pointer().release();
        UiGrab::keyboard().release();
        UiScene::TearDown();
    }
    static std::string at(const QPoint& p) {
        return std::to_string(p.x()) + "," + std::to_string(p.y());
    }

    QWidget window;
    LoggingWidget* target = nullptr;
};

TEST_F(GrabScene, AGrabbedPointerGoesToTheHandlerInScreenCoordinates) {
    LoggingHandler picker("picker");
    UiGrab::pointer().grab(&picker);
    sendMouse(target, QEvent::MouseButtonPress, QPointF(10, 20));
    sendMouse(target, QEvent::MouseMove, QPointF(12, 22));
    sendMouse(target, QEvent::MouseButtonRelease, QPointF(12, 22));
    const QPoint g = target->mapToGlobal(QPoint(10, 20));
    ASSERT_EQ(picker.log.size(), 3u);
    EXPECT_EQ(picker.log[0], "down " + at(g));
    EXPECT_EQ(picker.log[1], "move " + at(g + QPoint(2, 2)));
    EXPECT_TRUE(target->log.empty()); // the widget saw nothing
    EXPECT_EQ(picker.global, GePoint2<float>(g.x() + 2, g.y() + 2));

    UiGrab::pointer().release();
    sendMouse(target, QEvent::MouseButtonPress, QPointF(10, 20));
    EXPECT_EQ(picker.log.size(), 3u);
    EXPECT_EQ(target->log, std::vector<std::string>{"press 10,20"});
}

TEST_F(GrabScene, AHandlerWithAnOriginGetsItsCoordinates) {
    LoggingHandler local("local", target);
    UiGrab::pointer().grab(&local);
    sendMouse(&window, QEvent::MouseButtonPress, QPointF(55, 45));
    ASSERT_EQ(local.log.size(), 1u);
    EXPECT_EQ(local.log[0], "down 5,5");
}

TEST_F(GrabScene, AKeyboardGrabTakesEveryKey) {
    LoggingHandler picker("picker");
    UiGrab::keyboard().grab(&picker);
    sendKey(target, Qt::Key_Escape);
    sendKey(target, Qt::Key_A, Qt::NoModifier, "a");
    ASSERT_EQ(picker.log.size(), 2u);
    EXPECT_EQ(picker.log[0].substr(0, 10), "key Escape");
    EXPECT_EQ(picker.log[1].substr(0, 5), "key A");
    EXPECT_TRUE(target->log.empty());
    UiGrab::keyboard().release(&picker);
    sendKey(target, Qt::Key_A, Qt::NoModifier, "a");
    EXPECT_EQ(target->log, std::vector<std::string>{"key a"});
}

TEST_F(GrabScene, AGrabTakenOverTellsTheHandlerThatLostIt) {
    LoggingHandler first("first"), second("second");
    UiGrab::pointer().grab(&first);
    UiGrab::keyboard().grab(&first);
    UiGrab::pointer().grab(&first); // again: nothing
    EXPECT_TRUE(first.log.empty());
    UiGrab::pointer().grab(&second);
    UiGrab::keyboard().grab(&second);
    EXPECT_EQ(first.log, (std::vector<std::string>{"lost", "lost"}));
    EXPECT_TRUE(second.log.empty());
    EXPECT_EQ(UiGrab::pointer().getHolder(), &second);
    // Releasing for a handler that does not hold the grab changes nothing.
    UiGrab::pointer().release(&first);
    EXPECT_EQ(UiGrab::pointer().getHolder(), &second);
}

TEST_F(GrabScene, AFailingHandlerIsContainedAndADestroyedOneLetsGo) {
    {
        LoggingHandler failing("failing");
        failing.fail = true;
        UiGrab::pointer().grab(&failing);
        sendMouse(target, QEvent::MouseButtonPress, QPointF(1, 1));
        EXPECT_TRUE(reported("handler failing failed"));
        EXPECT_TRUE(reported("grab handler failing"));
        LoggingHandler next("next");
        failing.fail = true;
        UiGrab::pointer().grab(&next); // the lost event throws too: contained
        EXPECT_EQ(UiGrab::pointer().getHolder(), &next);
        UiGrab::keyboard().grab(&next);
    }
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
}

TEST_F(GrabScene, UnprocessedPointerEventsGoOnWhenTheHandlerAllowsIt) {
    LoggingHandler watcher("watcher");
    watcher.take = false;
    watcher.setAllowPtrHandlingInGrab(true);
    UiGrab::pointer().grab(&watcher);
    // A plain child that ignores presses: Qt offers the press to its parent,
    // the target, which must not reach the handler a second time.
    auto* child = new QWidget(target);
    child->setGeometry(0, 0, 30, 30);
    child->show();
    sendMouse(child, QEvent::MouseButtonPress, QPointF(5, 6));
    EXPECT_EQ(watcher.log.size(), 1u);
    EXPECT_EQ(target->log, std::vector<std::string>{"press 5,6"});

    watcher.take = true;
    sendMouse(child, QEvent::MouseButtonPress, QPointF(7, 8));
    EXPECT_EQ(watcher.log.size(), 2u);
    EXPECT_EQ(target->log.size(), 1u);
}

} // namespace
