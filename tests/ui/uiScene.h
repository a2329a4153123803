#pragma once

#include "support/qtInput.h"

// Helpers of the toolkit tests: the application (offscreen), a widget that
// logs what reaches it, and synthetic window-system events.

#include <ui/uiApplication.h>
#include <ui/uiWidget.h>

#include <base/exReporter.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A widget that logs the keys and pointer presses it receives itself and the
// events its handler passes on; it marks hotkeys processed unless told not to.
class LoggingWidget : public QWidget, public UiWidget {
public:
    explicit LoggingWidget(QWidget* parent = nullptr, const LiString& name = "logging")
        : QWidget(parent)
        , UiWidget(this, name) {
        setFocusPolicy(Qt::StrongFocus);
    }

    std::vector<std::string> log;
    std::vector<unsigned> hotkeys;
    bool takeHotkeys = true;

protected:
    void handleEvent(EvEvent& event) override {
        if (auto* hotkey = dynamic_cast<EvHotkeyEvent*>(&event)) {
            hotkeys.push_back(hotkey->getEntry());
            event.setProcessed(takeHotkeys);
        }
    }
    void keyPressEvent(QKeyEvent* event) override {
        log.push_back("key " + event->text().toStdString());
    }
    void mousePressEvent(QMouseEvent* event) override {
        log.push_back("press " + std::to_string(event->position().toPoint().x()) + "," +
                      std::to_string(event->position().toPoint().y()));
    }
};

class UiScene : public ::testing::Test {
protected:
    // The application exists before any widget of a fixture is made.
    UiScene() { UiApplication::getInstance(); }
    void SetUp() override { ExReporter::getInstance().clear(); }
    void TearDown() override { ExReporter::getInstance().clear(); }

    static bool reported(const std::string& text) {
        for (const auto& r : ExReporter::getInstance().getReports()) {
            if (r.text().find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
};

inline void sendKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                    const QString& text = QString(), QEvent::Type type = QEvent::KeyPress) {
    QKeyEvent event(type, key, modifiers, text);
    QCoreApplication::sendEvent(widget, &event);
}
