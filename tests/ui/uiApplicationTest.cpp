#include "uiScene.h"

#include <gfx/wsCursorRegistry.h>
#include <ui/uiMainWindow.h>

#include <QCursor>

#include <stdexcept>

namespace {

// A request that logs its name, can post another and can throw.
class LogRequest : public EvRequestEvent {
public:
    LogRequest(std::vector<std::string>& log, std::string name, bool fail = false,
               std::string then = {})
        : _log(log)
        , _name(std::move(name))
        , _fail(fail)
        , _then(std::move(then)) {}
    void process() override {
        _log.push_back(_name);
        if (!_then.empty()) {
            UiApplication::getInstance().postRequest(
                OPtr<EvRequestEvent>(new LogRequest(_log, _then)));
        }
        if (_fail) {
            throw std::runtime_error("request " + _name + " failed");
        }
    }

private:
    std::vector<std::string>& _log;
    std::string _name;
    bool _fail;
    std::string _then;
};

using UiApplicationTest = UiScene;

TEST_F(UiApplicationTest, RequestsRunLaterInOrderAndTheirFailuresAreContained) {
    UiApplication& app = UiApplication::getInstance();
    std::vector<std::string> log;
    app.postRequest(OPtr<EvRequestEvent>(new LogRequest(log, "first", false, "posted by first")));
    app.postRequest(OPtr<EvRequestEvent>(new LogRequest(log, "second", true)));
    app.postRequest(OPtr<EvRequestEvent>(new LogRequest(log, "third")));
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(app.getPendingRequestCount(), 3);
    EXPECT_EQ(app.processRequests(), 4);
    EXPECT_EQ(log, (std::vector<std::string>{"first", "second", "third", "posted by first"}));
    EXPECT_TRUE(reported("request second failed"));
    EXPECT_EQ(app.processRequests(), 0);
}

TEST_F(UiApplicationTest, TheEventLoopRunsWhatTheHostDidNot) {
    std::vector<std::string> log;
    UiApplication::getInstance().postRequest(OPtr<EvRequestEvent>(new LogRequest(log, "late")));
    QCoreApplication::processEvents();
    EXPECT_EQ(log, std::vector<std::string>{"late"});
    EXPECT_EQ(UiApplication::getInstance().getPendingRequestCount(), 0);
}

TEST_F(UiApplicationTest, OverrideCursorsStackAndAnExtraPopIsReported) {
    UiApplication& app = UiApplication::getInstance();
    auto& cursors = WsCursorRegistry::getInstance();
    const int depth = app.getOverrideCursorDepth();
    app.pushOverrideCursor(cursors.getCursor(WsCursorRegistry::Cross));
    app.pushOverrideCursor(cursors.getCursor(WsCursorRegistry::Pick));
    EXPECT_EQ(app.getOverrideCursor()->getName(), WsCursorRegistry::Pick);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::BitmapCursor);
    app.popOverrideCursor();
    EXPECT_EQ(app.getOverrideCursor()->getName(), WsCursorRegistry::Cross);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::CrossCursor);
    app.popOverrideCursor();
    EXPECT_EQ(app.getOverrideCursorDepth(), depth);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    app.popOverrideCursor();
    EXPECT_TRUE(reported("pop with no override cursor pushed"));
    EXPECT_EQ(app.getOverrideCursorDepth(), 0);
}

TEST_F(UiApplicationTest, TheMainWindowAnswersTheUiWidgetUnderAScreenPoint) {
    QWidget window;
    window.resize(300, 200);
    auto* target = new LoggingWidget(&window, "target");
    target->setGeometry(50, 40, 100, 80);
    auto* plain = new QWidget(target); // no UiWidget of its own
    plain->setGeometry(10, 10, 20, 20);
    window.show();
    UiMainWindow main(&window);

    auto global = [&](QWidget* w, int x, int y) {
        const QPoint p = w->mapToGlobal(QPoint(x, y));
        return GePoint2<float>(static_cast<float>(p.x()), static_cast<float>(p.y()));
    };
    EXPECT_EQ(main.getWidgetAt(global(target, 80, 60)), target);
    EXPECT_EQ(main.getWidgetAt(global(plain, 5, 5)), target);
    EXPECT_EQ(main.getWidgetAt(global(&window, 10, 10)), nullptr);
    EXPECT_EQ(main.getWidgetAt(global(&window, 400, 10)), nullptr);
    EXPECT_EQ(UiWidget::fromQWidget(plain), target);
}

TEST_F(UiApplicationTest, TheKeyboardStateHoldsTheKeysPressedAndTheModifiersReported) {
    LoggingWidget widget;
    sendKey(&widget, Qt::Key_Q, Qt::NoModifier, "q");
    EvKeyboardState state =
        UiApplication::getInstance().getKeyboardState(EvKeyboardState::ShiftMask);
    EXPECT_TRUE(state.isKeyDown(EvKeyCode::KeyQ));
    EXPECT_TRUE(state.isKeyDown(EvKeyCode::KeyShift));
    sendKey(&widget, Qt::Key_Q, Qt::NoModifier, "q", QEvent::KeyRelease);
    state = UiApplication::getInstance().getKeyboardState(0);
    EXPECT_FALSE(state.isKeyDown(EvKeyCode::KeyQ));
    EXPECT_FALSE(state.isKeyDown(EvKeyCode::KeyShift));
}

} // namespace
