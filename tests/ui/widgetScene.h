#pragma once

// A small form of panel widgets built by hand (no description), and a
// handler that logs the callbacks it receives.

#include "uiScene.h"

#include <base/rcCast.h>
#include <pluginAPI/piContainer.h>
#include <pluginAPI/piWidget.h>
#include <ui/uiContainer.h>
#include <ui/uiEventCallback.h>
#include <ui/uiNodeWidgetArea.h>
#include <ui/uiTrackball.h>
#include <ui/uiTrackballWidget.h>
#include <ui/uiWidgetAdapter.h>
#include <ui/uiWidgetEvent.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <functional>
#include <string>
#include <vector>

// Logs "<kind> <widget>" for every callback, with " ctrl" / " shift" for the
// modifiers held and " on" / " off" for state changes; runs `then` after
// logging when set.
class CallbackLog {
public:
    void onEvent(EvEvent& event) {
        std::string entry;
        if (auto* w = dynamic_cast<UiWidgetEvent*>(&event)) {
            entry = std::to_string(w->getKind()) + " " + w->getWidgetName();
            const EvKeyboardState& keys = w->getKeyboardState();
            if (keys.isEnabled(EvKeyboardState::Ctrl)) {
                entry += " ctrl";
            }
            if (keys.isEnabled(EvKeyboardState::Shift)) {
                entry += " shift";
            }
        }
        if (auto* s = dynamic_cast<UiStateChanged*>(&event)) {
            entry += s->getState() ? " on" : " off";
        }
        log.push_back(entry);
        if (then) {
            then(event);
        }
    }

    // A handler of this log, registered on `widget` for `kind`.
    UiEventCallback<CallbackLog>& listen(PiWidget& widget, int kind) {
        handlers.push_back(
            std::make_unique<UiEventCallback<CallbackLog>>(this, &CallbackLog::onEvent));
        widget.addCallback(kind, handlers.back().get());
        return *handlers.back();
    }

    std::vector<std::string> log;
    std::function<void(EvEvent&)> then;
    std::vector<std::unique_ptr<UiEventCallback<CallbackLog>>> handlers;
};

// A panel of one of each kind of widget: two exclusive slot toggles, a check
// box, a menu, a label, a push button, a trackball, a number field, a group
// box holding a second label, and a node-widget area with a widget of its own
// inside (which belongs to the area's panel, not to this one).
class WidgetForm : public UiScene {
protected:
    void SetUp() override {
        UiScene::SetUp();
        root = new QWidget;
        root->setObjectName("form");
        auto* layout = new QVBoxLayout(root);
        slot0 = make<QToolButton>(layout, "slot0");
        slot1 = make<QToolButton>(layout, "slot1");
        for (QToolButton* b : {slot0, slot1}) {
            b->setCheckable(true);
            b->setAutoExclusive(true);
        }
        check = make<QCheckBox>(layout, "check");
        menu = make<QComboBox>(layout, "menu");
        menu->addItems({"Sample Matte", "Sample Patch"});
        label = make<QLabel>(layout, "label");
        button = make<QPushButton>(layout, "reset");
        trackball = make<UiTrackballWidget>(layout, "ball");
        field = make<QDoubleSpinBox>(layout, "field");
        group = make<QGroupBox>(layout, "group");
        inner = new QLabel(group);
        inner->setObjectName("innerLabel");
        area = make<UiNodeWidgetArea>(layout, "area");
        hidden = new QLabel(area);
        hidden->setObjectName("belongsToTheArea");
        container = rcCast<PiContainer>(UiWidgetAdapter::of(root));
    }
    void TearDown() override {
        container.reset();
        delete root;
        UiScene::TearDown();
    }

    template <class W>
    W* make(QVBoxLayout* layout, const char* name) {
        auto* w = new W(root);
        w->setObjectName(name);
        layout->addWidget(w);
        return w;
    }

    QWidget* root = nullptr;
    QToolButton* slot0 = nullptr;
    QToolButton* slot1 = nullptr;
    QCheckBox* check = nullptr;
    QComboBox* menu = nullptr;
    QLabel* label = nullptr;
    QPushButton* button = nullptr;
    UiTrackballWidget* trackball = nullptr;
    QDoubleSpinBox* field = nullptr;
    QGroupBox* group = nullptr;
    QLabel* inner = nullptr;
    UiNodeWidgetArea* area = nullptr;
    QLabel* hidden = nullptr;
    RCShdPtr<PiContainer> container;
    CallbackLog calls;
};
