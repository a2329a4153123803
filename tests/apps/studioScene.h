#pragma once

// tessera-studio's real window under the offscreen platform, driven with the
// window system's events: the scene of the studio's tests.

#include "studioWindow.h"

#include "host/hostSession.h"
#include "host/viewerDriver.h"

#include <base/exReporter.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piNode.h>
#include <pluginAPI/piPath.h>
#include <ui/uiApplication.h>
#include <ui/uiViewer.h>
#include <ui/uiWidgetAdapter.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTimer>

#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <unistd.h>

inline std::string readFile(const std::filesystem::path& p) {
    std::ifstream in(p);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

inline void mouse(QWidget* w, QEvent::Type type, const QPointF& at,
                  Qt::MouseButton button = Qt::LeftButton,
                  Qt::KeyboardModifiers mods = Qt::NoModifier,
                  Qt::MouseButtons held = Qt::NoButton) {
    QMouseEvent e(type, at, w->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : button,
                  held, mods);
    QApplication::sendEvent(w, &e);
}

inline void click(QWidget* w, const QPointF& at, Qt::KeyboardModifiers mods = Qt::NoModifier) {
    mouse(w, QEvent::MouseButtonPress, at, Qt::LeftButton, mods, Qt::LeftButton);
    mouse(w, QEvent::MouseButtonRelease, at, Qt::LeftButton, mods, Qt::NoButton);
}

inline void key(QWidget* w, int k, Qt::KeyboardModifiers mods = Qt::NoModifier,
                const QString& text = QString()) {
    QKeyEvent press(QEvent::KeyPress, k, mods, text);
    QApplication::sendEvent(w, &press);
    QKeyEvent release(QEvent::KeyRelease, k, mods, text);
    QApplication::sendEvent(w, &release);
}

class StudioScene : public ::testing::Test {
protected:
    StudioScene() { UiApplication::getInstance(); }
    void SetUp() override {
        ExReporter::getInstance().clear();
        dir = std::filesystem::temp_directory_path() /
              ("tessera-studio-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
        studio = std::make_unique<StudioWindow>();
        studio->resize(1400, 860);
        studio->show();
        settle();
    }
    void TearDown() override {
        studio.reset();
        std::filesystem::remove_all(dir);
    }
    void settle() {
        for (int i = 0; i < 4; ++i) {
            QApplication::processEvents();
        }
        HostSession::settle();
    }

    HostSession& session() const { return studio->getSession(); }
    UiViewer& viewer() const { return session().getViewer(); }
    // A widget of a panel, as the window system has it.
    template <class W>
    W* widget(const std::string& panel, const std::string& name) const {
        const RCShdPtr<PiContainer> container = session().getPanel(panel);
        EXPECT_TRUE(container) << panel;
        if (!container) {
            return nullptr;
        }
        auto* adapter = dynamic_cast<UiWidgetAdapter*>(container->findWidget(name).get());
        W* w = adapter ? qobject_cast<W*>(adapter->getLiveWidget()) : nullptr;
        EXPECT_TRUE(w) << panel << " " << name;
        return w;
    }
    // The window point of a plate point in the studio's viewer.
    QPointF at(double x, double y) const {
        const GePoint2<float> p = ViewerDriver::plateToWindow(viewer().getView(), {x, y});
        return {p.x, p.y};
    }

    std::filesystem::path dir;
    std::unique_ptr<StudioWindow> studio;
};

// Runs tessera-run on a script; its exit status.
inline int replay(const std::filesystem::path& script, std::string& out) {
    const ProgramResult r = runProgram(std::string(TESSERA_BIN_DIR) + "/tessera-run --quiet " +
                                       script.string() + " 2>&1");
    out += r.out;
    return r.status;
}

// Answers the next modal dialog (a question, a file dialog) once it shows:
// `answer` gets it. Gives up after a minute.
inline void answerModal(std::function<void(QWidget&)> answer) {
    auto* timer = new QTimer;
    auto tries = std::make_shared<int>(0);
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, tries, answer] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal || ++*tries > 6000) {
            timer->stop();
            timer->deleteLater();
            if (modal) {
                answer(*modal);
            }
        }
    });
    timer->start();
}
