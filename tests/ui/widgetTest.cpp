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

using Firing = WidgetForm;

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

using Activity = WidgetForm;

} // namespace
