#include "widgetScene.h"

#include <base/exBase.h>
#include <base/rcCast.h>
#include <gfx/wsFontUtils.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piLabel.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piTrackball.h>
#include <ui/uiApplication.h>
#include <ui/uiDualState.h>
#include <ui/uiGrab.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiLabel.h>
#include <ui/uiMenu.h>
#include <ui/uiPushButton.h>
#include <ui/uiValueEditor.h>
#include <ui/uiWorkspace.h>

#include <stdexcept>

namespace {

const EvKeyboardState ctrl(EvKeyboardState::CtrlMask);

using WidgetLookup = WidgetForm;

TEST_F(WidgetLookup, EachWidgetAnswersThePluginInterfaceOfItsKind) {
    EXPECT_TRUE(rcTestCast<PiDualState>(container->findWidget("slot0")));
    EXPECT_TRUE(rcTestCast<PiDualState>(container->findWidget("check")));
    EXPECT_TRUE(rcTestCast<PiMenu>(container->findWidget("menu")));
    EXPECT_TRUE(rcTestCast<PiLabel>(container->findWidget("label")));
    EXPECT_TRUE(rcTestCast<UiPushButton>(container->findWidget("reset")));
    EXPECT_TRUE(rcTestCast<PiTrackball>(container->findWidget("ball")));
    EXPECT_TRUE(rcTestCast<UiValueEditor>(container->findWidget("field")));
    EXPECT_TRUE(rcTestCast<PiContainer>(container->findWidget("group")));
    EXPECT_TRUE(rcTestCast<PiNodeWidget>(container->findWidget("area")));
    EXPECT_TRUE(rcTestCast<PiLabel>(container->findWidget("innerLabel")));
    EXPECT_FALSE(container->findWidget("nothing"));
    EXPECT_EQ(container->findWidget("form").get(), container.get());
}

TEST_F(WidgetLookup, TheSameWidgetIsTheSameObjectSoCallbacksSurviveTheNextLookup) {
    RCShdPtr<PiWidget> first = container->findWidget("menu");
    calls.listen(*first, PiWidget::Activated);
    first.reset();
    const auto again = container->findWidget<UiMenu>("menu");
    EXPECT_EQ(again->getCallbackCount(PiWidget::Activated), 1);
    again->choose(1);
    EXPECT_EQ(calls.log, std::vector<std::string>{"23 menu"});
}

TEST_F(WidgetLookup, AWidgetOfTheWrongKindNamesTheWidgetAndBothTypes) {
    try {
        container->findWidget<PiDualState>("menu");
        FAIL() << "no exception";
    } catch (const ExCastFailed& e) {
        EXPECT_EQ(e.getFrom(), "UiMenu 'menu'");
        EXPECT_EQ(e.getTo(), "PiDualState");
    }
    EXPECT_FALSE(container->findWidget<PiDualState>("missing"));
}

TEST_F(WidgetLookup, TheWidgetsOfAnAreasPanelBelongToThatPanel) {
    EXPECT_FALSE(container->findWidget("belongsToTheArea"));
    const auto inside = rcCast<PiContainer>(UiWidgetAdapter::of(group));
    EXPECT_TRUE(inside->findWidget("innerLabel"));
    EXPECT_FALSE(inside->findWidget("label"));
}

TEST_F(WidgetLookup, TheNearestOfTwoWidgetsOfOneNameIsFound) {
    auto* deep = new QLabel(group);
    deep->setObjectName("twin");
    auto* near = new QLabel(root);
    near->setObjectName("twin");
    EXPECT_EQ(rcCast<UiWidgetAdapter>(container->findWidget("twin"))->getLiveWidget(), near);
}

using Toggles = WidgetForm;

TEST_F(Toggles, APressFiresActivatedWithItsKeysBeforeTheStateChanges) {
    const auto toggle = container->findWidget<UiDualState>("check");
    calls.listen(*toggle, PiWidget::StateChanged);
    calls.listen(*toggle, PiWidget::Activated);
    toggle->click(ctrl);
    toggle->click();
    EXPECT_EQ(calls.log, (std::vector<std::string>{"23 check ctrl", "22 check ctrl on", "23 check",
                                                   "22 check off"}));
    EXPECT_FALSE(toggle->getState());
}

TEST_F(Toggles, APointerPressCarriesTheModifiersOfTheMouseEvent) {
    root->show();
    const auto toggle = container->findWidget<UiDualState>("check");
    calls.listen(*toggle, PiWidget::Activated);
    calls.listen(*toggle, PiWidget::StateChanged);
    sendMouse(check, QEvent::MouseButtonPress, QPointF(3, 3), Qt::LeftButton,
              Qt::ControlModifier | Qt::ShiftModifier);
    sendMouse(check, QEvent::MouseButtonRelease, QPointF(3, 3), Qt::LeftButton,
              Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(calls.log,
              (std::vector<std::string>{"23 check ctrl shift", "22 check ctrl shift on"}));
}

TEST_F(Toggles, SettingTheStateQuietlyFiresNothingNotEvenOnTheOtherExclusiveToggle) {
    const auto first = container->findWidget<UiDualState>("slot0");
    const auto second = container->findWidget<UiDualState>("slot1");
    for (const auto& t : {first, second}) {
        calls.listen(*t, PiWidget::StateChanged);
        calls.listen(*t, PiWidget::Activated);
    }
    first->setState(true);
    second->setState(true);
    EXPECT_FALSE(first->getState());
    EXPECT_TRUE(second->getState());
    second->setState(false); // an exclusive toggle can be switched off by the program
    EXPECT_FALSE(second->getState());
    EXPECT_TRUE(calls.log.empty());
    second->setState(true, true);
    EXPECT_EQ(calls.log, std::vector<std::string>{"22 slot1 on"});
}

TEST_F(Toggles, AClickOnAnExclusiveToggleThatIsOnLeavesItOn) {
    const auto first = container->findWidget<UiDualState>("slot0");
    const auto second = container->findWidget<UiDualState>("slot1");
    calls.listen(*first, PiWidget::StateChanged);
    calls.listen(*second, PiWidget::StateChanged);
    first->click();
    first->click();
    EXPECT_TRUE(first->getState());
    second->click();
    EXPECT_FALSE(first->getState());
    EXPECT_EQ(calls.log, (std::vector<std::string>{"22 slot0 on", "22 slot0 off", "22 slot1 on"}));
}

TEST_F(Toggles, APressWhoseHandlerSetsTheStateIsUsedUp) {
    const auto toggle = container->findWidget<UiDualState>("check");
    calls.listen(*toggle, PiWidget::StateChanged);
    calls.listen(*toggle, PiWidget::Activated);
    // As a panel does when the press makes a tool current and the tool
    // change lights the toggle.
    calls.then = [&](EvEvent&) { toggle->setState(true); };
    toggle->click();
    EXPECT_TRUE(toggle->getState());
    EXPECT_EQ(calls.log, std::vector<std::string>{"23 check"});
}

class Picker : public UiGrabHandler {
public:
    void callback(EvEvent& event) override {
        events.push_back(event.isA<EvPointerButtonDownEvent>() ? "down" : "other");
        event.setProcessed(true);
    }
    std::vector<std::string> events;
};

TEST_F(Toggles, APressThatTakesThePointerGrabLeavesTheToggleUpAndAsItWas) {
    root->show();
    const auto toggle = container->findWidget<UiDualState>("check");
    Picker picker;
    calls.listen(*toggle, PiWidget::Activated);
    calls.listen(*toggle, PiWidget::StateChanged);
    calls.then = [&](EvEvent&) { UiGrab::pointer().grab(&picker); };
    sendMouse(check, QEvent::MouseButtonPress, QPointF(3, 3));
    sendMouse(check, QEvent::MouseButtonRelease, QPointF(3, 3));
    EXPECT_FALSE(check->isDown());
    EXPECT_FALSE(toggle->getState());
    EXPECT_EQ(calls.log, std::vector<std::string>{"23 check"});
    EXPECT_EQ(picker.events, std::vector<std::string>{"other"}); // the release
    UiGrab::pointer().release();
}

using Menus = WidgetForm;

TEST_F(Menus, AChoiceFiresEvenForTheSelectedEntryButQuietSettersFireNothing) {
    const auto m = container->findWidget<UiMenu>("menu");
    calls.listen(*m, PiWidget::Activated);
    m->setSelection(1);
    EXPECT_EQ(m->getSelection(), 1);
    EXPECT_EQ(m->getSelectedText(), "Sample Patch");
    EXPECT_TRUE(calls.log.empty());
    m->choose(1, ctrl);
    m->setSelection(0, true);
    EXPECT_EQ(calls.log, (std::vector<std::string>{"23 menu ctrl", "23 menu"}));
    EXPECT_EQ(m->getSelection(), 0);
}

TEST_F(Menus, EntriesAreReplacedQuietly) {
    const auto m = container->findWidget<PiMenu>("menu");
    calls.listen(*m, PiWidget::Activated);
    m->removeAllItems();
    EXPECT_EQ(m->getItemCount(), 0);
    EXPECT_EQ(m->getSelection(), -1);
    EXPECT_EQ(m->getSelectedText(), "");
    m->appendItem("Patch 1");
    m->appendItem("New Patch");
    EXPECT_EQ(m->getSelection(), 0);
    EXPECT_EQ(m->getItemText(1), "New Patch");
    EXPECT_EQ(m->getItemText(2), "");
    m->setSelection(5);
    EXPECT_EQ(m->getSelection(), -1);
    EXPECT_TRUE(calls.log.empty());
}

TEST_F(Menus, AUserChoiceInTheComboBoxFires) {
    const auto m = container->findWidget<PiMenu>("menu");
    calls.listen(*m, PiWidget::Activated);
    emit menu->activated(1); // what the combo box does when the user picks an entry
    EXPECT_EQ(calls.log, std::vector<std::string>{"23 menu"});
}

// A label fitting a name to its width the way a panel does.
class FittedLabel {
public:
    FittedLabel(const RCShdPtr<UiLabel>& label, std::string name)
        : _label(label)
        , _name(std::move(name)) {
        _label->addCallback(PiWidget::Resized, &_resized);
        fit();
    }
    void fit() {
        const RCShdPtr<UiLabel> ui = rcCast<UiLabel>(_label->getUiWidget());
        _label->setText(WsFontUtils::truncateAtTheEnd(ui->getLabel().getFont(), _name,
                                                      ui->getCanvas().getWidth()));
    }
    void onResized(EvEvent&) { fit(); }

private:
    RCShdPtr<UiLabel> _label;
    std::string _name;
    UiEventCallback<FittedLabel> _resized{this, &FittedLabel::onResized};
};

using Labels = WidgetForm;

TEST_F(Labels, ANameTooWideForTheLabelIsCutAndResizingRecutsIt) {
    const auto l = container->findWidget<UiLabel>("label");
    const std::string name = "a keyer node with a very long name indeed";
    l->setWidth(60);
    const FittedLabel fitted(l, name);
    const std::string narrow = l->getText();
    EXPECT_LT(narrow.size(), name.size());
    EXPECT_EQ(narrow.substr(narrow.size() - 3), "...");
    EXPECT_LE(l->getLabel().getWidth(), 60);
    l->setWidth(1000);
    EXPECT_EQ(l->getText(), name);
    l->setWidth(120);
    EXPECT_GT(l->getText().size(), narrow.size());
    EXPECT_LT(l->getText().size(), name.size());
}

TEST_F(Labels, AShownLabelRefitsWhenItsLayoutResizesIt) {
    const auto l = container->findWidget<UiLabel>("label");
    const FittedLabel fitted(l, "slot name that is long enough to be cut somewhere");
    root->resize(80, 400);
    root->show();
    const std::string cut = l->getText();
    root->resize(900, 400);
    EXPECT_EQ(l->getText(), "slot name that is long enough to be cut somewhere");
    EXPECT_LT(cut.size(), l->getText().size());
}

using Trackballs = WidgetForm;

TEST_F(Trackballs, ADragReportsTheWholeDisplacementSinceThePressWithYUp) {
    const auto ball = container->findWidget<UiTrackball>("ball");
    std::vector<std::pair<float, float>> deltas;
    calls.listen(*ball, PiWidget::DragBegin);
    calls.listen(*ball, PiWidget::DragMove);
    calls.listen(*ball, PiWidget::DragEnd);
    calls.then = [&](EvEvent&) { deltas.emplace_back(ball->getDeltaX(), ball->getDeltaY()); };
    ball->drag(500.0f, -20.0f, 2);
    EXPECT_EQ(calls.log, (std::vector<std::string>{"5 ball", "24 ball", "24 ball", "6 ball"}));
    ASSERT_EQ(deltas.size(), 4u);
    EXPECT_EQ(deltas[0], std::make_pair(0.0f, 0.0f));
    EXPECT_EQ(deltas[1], std::make_pair(250.0f, -10.0f));
    EXPECT_EQ(deltas[3], std::make_pair(500.0f, -20.0f));
    EXPECT_FALSE(ball->isDragging());
}

TEST_F(Trackballs, ThePointerDragsIt) {
    root->show();
    const auto ball = container->findWidget<PiTrackball>("ball");
    calls.listen(*ball, PiWidget::DragMove);
    sendMouse(trackball, QEvent::MouseButtonPress, QPointF(10, 10));
    sendMouse(trackball, QEvent::MouseMove, QPointF(13, 4));
    EXPECT_TRUE(ball->isDragging());
    sendMouse(trackball, QEvent::MouseButtonRelease, QPointF(13, 4));
    EXPECT_EQ(ball->getDeltaX(), 3.0f);
    EXPECT_EQ(ball->getDeltaY(), 6.0f);
    EXPECT_EQ(calls.log, std::vector<std::string>{"24 ball"});
}

using Firing = WidgetForm;

class MarkRequest : public EvRequestEvent {
public:
    explicit MarkRequest(std::vector<std::string>& log)
        : _log(log) {}
    void process() override { _log.push_back("request"); }

private:
    std::vector<std::string>& _log;
};

TEST_F(Firing, RequestsPostedByACallbackRunRightAfterIt) {
    const auto b = container->findWidget<UiPushButton>("reset");
    calls.listen(*b, PiWidget::Activated);
    calls.then = [&](EvEvent&) {
        UiApplication::getInstance().postRequest(OPtr<EvRequestEvent>(new MarkRequest(calls.log)));
        calls.log.push_back("posted");
    };
    b->click();
    EXPECT_EQ(calls.log, (std::vector<std::string>{"23 reset", "posted", "request"}));
}

TEST_F(Firing, AThrowingHandlerIsReportedUnderTheWidgetsNameAndTheHostGoesOn) {
    const auto b = container->findWidget<UiPushButton>("reset");
    calls.listen(*b, PiWidget::Activated);
    calls.then = [](EvEvent&) { throw std::runtime_error("panel broke"); };
    b->click();
    b->click();
    EXPECT_EQ(calls.log.size(), 2u);
    EXPECT_TRUE(reported("widget 'reset': panel broke"));
}

TEST_F(Firing, AHandlerMayDestroyThePanelItListensTo) {
    const auto toggle = container->findWidget<UiDualState>("check");
    calls.listen(*toggle, PiWidget::Activated);
    calls.listen(*toggle, PiWidget::StateChanged);
    calls.then = [&](EvEvent&) {
        delete root;
        root = nullptr;
    };
    toggle->click();
    EXPECT_EQ(calls.log, std::vector<std::string>{"23 check"});
    EXPECT_FALSE(toggle->exists());
    container.reset();
}

TEST_F(Firing, AWidgetHeldLongerThanItLivesIsInert) {
    const auto l = container->findWidget<UiLabel>("label");
    const auto m = container->findWidget<UiMenu>("menu");
    const auto t = container->findWidget<UiDualState>("check");
    calls.listen(*m, PiWidget::Activated);
    delete root;
    root = nullptr;
    EXPECT_FALSE(l->exists());
    l->setText("ignored");
    l->setWidth(10);
    EXPECT_EQ(l->getText(), "");
    EXPECT_EQ(l->getCanvas().getWidth(), 0);
    EXPECT_TRUE(l->getLabel().getFont());
    m->choose(0);
    m->appendItem("ignored");
    EXPECT_EQ(m->getItemCount(), 0);
    EXPECT_EQ(m->getSelection(), -1);
    t->click();
    t->setState(true);
    EXPECT_FALSE(t->getState());
    EXPECT_FALSE(container->findWidget("menu"));
    EXPECT_FALSE(container->isActive());
    EXPECT_TRUE(calls.log.empty());
    calls.handlers.clear(); // handlers leave a widget that outlived its window-system widget
    EXPECT_EQ(m->getCallbackCount(PiWidget::Activated), 0);
}

TEST_F(Firing, AHandlerDestroyedFirstLeavesTheWidget) {
    const auto b = container->findWidget<UiPushButton>("reset");
    {
        CallbackLog shortLived;
        shortLived.listen(*b, PiWidget::Activated);
        EXPECT_EQ(b->getCallbackCount(PiWidget::Activated), 1);
    }
    EXPECT_EQ(b->getCallbackCount(PiWidget::Activated), 0);
    b->click();
}

using Activity = WidgetForm;

TEST_F(Activity, AContainerIsActiveWhenEnabledNotHiddenAndTheWorkspaceIsLive) {
    const auto inside = container->findWidget<PiContainer>("group");
    EXPECT_TRUE(inside->isActive()); // not shown yet is not hidden
    root->show();
    EXPECT_TRUE(inside->isActive());
    root->setEnabled(false);
    EXPECT_FALSE(inside->isActive());
    root->setEnabled(true);
    group->hide();
    EXPECT_FALSE(inside->isActive());
    group->show();
    {
        const UiWorkspaceSuspension loading;
        EXPECT_FALSE(inside->isActive());
    }
    EXPECT_TRUE(inside->isActive());
}

} // namespace
