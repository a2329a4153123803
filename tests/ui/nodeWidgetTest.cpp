#include "panelScene.h"

#include <base/cbMethod.h>
#include <base/exBase.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeWidget.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsMgInterface.h>
#include <ui/uiEventCallback.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiPushButton.h>
#include <ui/uiValueEditor.h>

#include <QCoreApplication>
#include <QEvent>

#include <stdexcept>

namespace {

std::vector<std::string> lifeLog;

// A stage panel's controller, as the user-interface module makes them: it
// finds its widgets in the container it is given and listens to its reset
// button; it logs when it is made and released, and whether its widgets
// still existed when it went.
class StageProbe : public RCBase<LkCounter<int>> {
public:
    StageProbe(TsMgInterface& keyer, const RCShdPtr<PiWidget>& widget,
               const RCShdPtr<const PiTimePath>& timePath)
        : _container(rcCast<PiContainer>(widget))
        , _timePath(timePath)
        , _node(keyer.getNode()->getName()) {
        _menu = _container->findWidget<PiMenu>("sampleMenu");
        _reset = _container->findWidget("reset");
        _reset->addCallback(PiWidget::Activated, &_resetPressed);
        lifeLog.push_back("made " + _node);
        last = this;
    }
    ~StageProbe() override {
        lifeLog.push_back("released " + _node + (_menu->exists() ? " before" : " after") +
                          " its widgets");
        if (last == this) {
            last = nullptr;
        }
    }
    void onReset(EvEvent&) {
        lifeLog.push_back("reset " + _node);
        if (onResetDo) {
            onResetDo();
        }
    }

    static RCShdPtr<RCBase<LkCounter<int>>> factory(TsMgInterface& keyer,
                                                    const RCShdPtr<PiWidget>& widget,
                                                    const RCShdPtr<const PiTimePath>& timePath) {
        if (failNext) {
            failNext = false;
            throw std::runtime_error("the panel could not bind");
        }
        return RCShdPtr<RCBase<LkCounter<int>>>(new StageProbe(keyer, widget, timePath));
    }

    static inline StageProbe* last = nullptr;
    static inline bool failNext = false;
    static inline std::function<void()> onResetDo;

    RCShdPtr<PiContainer> _container;
    RCShdPtr<const PiTimePath> _timePath;
    std::string _node;
    RCShdPtr<PiMenu> _menu;
    RCShdPtr<PiWidget> _reset;
    UiEventCallback<StageProbe> _resetPressed{this, &StageProbe::onReset};
};

// The main panel's controller, as the module's makes it: it keeps the four
// areas and fills them with the stage panels of the keyer node it is told.
class MainProbe : public RCBase<LkCounter<int>> {
public:
    explicit MainProbe(const RCShdPtr<PiWidget>& widget)
        : _container(rcCast<PiContainer>(widget)) {
        for (const char* name : {"tsMatteGen", "tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
            _areas.push_back(_container->findWidget<PiNodeWidget>(name));
        }
        lifeLog.push_back("made main");
        last = this;
    }
    ~MainProbe() override {
        lifeLog.push_back("released main");
        last = nullptr;
    }
    void show(const RCShdPtr<PiNode>& node) {
        for (const auto& area : _areas) {
            rcCast<UiNodeWidget>(area)->setContent(node);
        }
    }
    RCShdPtr<UiNodeWidget> area(int i) const { return rcCast<UiNodeWidget>(_areas.at(i)); }

    static RCShdPtr<RCBase<LkCounter<int>>> factory(const RCShdPtr<PiWidget>& widget,
                                                    const RCShdPtr<PiGroupNode>&,
                                                    const RCShdPtr<const PiTimePath>&) {
        return RCShdPtr<RCBase<LkCounter<int>>>(new MainProbe(widget));
    }

    static inline MainProbe* last = nullptr;

    RCShdPtr<PiContainer> _container;
    std::vector<RCShdPtr<PiNodeWidget>> _areas;
};

// The keyer's panels with stand-ins for the module's controllers of the main
// panel and the matte-generation stage (the keyer calls them through its own
// registries).
class NodeWidgets : public PanelScene {
protected:
    void SetUp() override {
        PanelScene::SetUp();
        lifeLog.clear();
        previousMain = TsInterface::getInstanceDataFactory();
        TsInterface::setInstanceDataFactory(&MainProbe::factory);
        TsMgInterface::registerUiFactory(&StageProbe::factory);
        panel = std::make_unique<UiPanel>("main");
        ASSERT_TRUE(panel->setNode(group, timePathOf(group)));
        main = MainProbe::last;
        ASSERT_TRUE(main);
    }
    void TearDown() override {
        panel.reset();
        TsMgInterface::unregisterUiFactory(&StageProbe::factory);
        TsInterface::setInstanceDataFactory(previousMain);
        StageProbe::onResetDo = nullptr;
        PanelScene::TearDown();
    }

    TsGroupInterface::InstanceDataFactory previousMain = nullptr;
    std::unique_ptr<UiPanel> panel;
    MainProbe* main = nullptr;
};

TEST_F(NodeWidgets, AStageAreaShowsItsOwnPanelWithTheControllerBoundToIt) {
    Iterator<UiNodeWidgetFactory::Item> built = main->area(0)->setContent(keyer1);
    ASSERT_EQ(built.getCardinality(), 1);
    built.first();
    EXPECT_EQ(built->name, "tsMatteGen");
    EXPECT_EQ(built->description, "tsMatteGenPanel.ui");
    EXPECT_TRUE(PiGraphObject::areEqual(built->node, keyer1));
    ASSERT_TRUE(StageProbe::last);
    EXPECT_EQ(built->controller.get(), static_cast<RCCounted*>(StageProbe::last));
    // The stage panel's own sample menu, not the main panel's.
    EXPECT_EQ(StageProbe::last->_menu->getItemCount(), 2);
    EXPECT_TRUE(PiGraphObject::areEqual(main->area(0)->getNode(), keyer1));
    // Read at the time of the panel around it, at the node's own path.
    EXPECT_EQ(StageProbe::last->_timePath->getTime(), 10.0);
    time.setTime(12.0);
    EXPECT_EQ(StageProbe::last->_timePath->getTime(), 12.0);
    EXPECT_EQ(StageProbe::last->_timePath->getPath()->toString(), "/keyer/keyer1");
    EXPECT_TRUE(ExReporter::getInstance().getReports().empty());
}

TEST_F(NodeWidgets, ANewNodeReleasesTheOldControllerBeforeTheNewOneIsMade) {
    main->area(0)->setContent(keyer1);
    main->area(0)->setContent(keyer2);
    EXPECT_EQ(lifeLog,
              (std::vector<std::string>{"made main", "made keyer1",
                                        "released keyer1 before its widgets", "made keyer2"}));
}

TEST_F(NodeWidgets, ANullNodeEmptiesTheArea) {
    main->area(0)->setContent(keyer1);
    QWidget* area = main->area(0)->getLiveWidget();
    EXPECT_FALSE(area->findChildren<QWidget*>().empty());
    const Iterator<UiNodeWidgetFactory::Item> built = main->area(0)->setContent(RCShdPtr<PiNode>());
    EXPECT_EQ(built.getCardinality(), 0);
    EXPECT_TRUE(built.atEnd());
    EXPECT_FALSE(main->area(0)->hasContent());
    EXPECT_TRUE(area->findChildren<QWidget*>().empty());
    EXPECT_EQ(lifeLog.back(), "released keyer1 before its widgets");
}

TEST_F(NodeWidgets, ANodeWithoutTheStageLeavesTheAreaEmptyQuietly) {
    main->show(group); // the group itself is selected
    for (int i = 0; i < 4; ++i) {
        EXPECT_FALSE(main->area(i)->hasContent());
    }
    EXPECT_TRUE(ExReporter::getInstance().getReports().empty());
}

TEST_F(NodeWidgets, TheRemainingSettingsEditTheNodesInputsWithoutAController) {
    main->show(keyer1);
    const RCShdPtr<PiInput> overall = keyer1->getMatteParamInput(TsMgTypes::Overall);
    overall->setKey(0.0, PiValue(0.2));
    overall->setKey(20.0, PiValue(0.6));
    const auto field =
        main->area(3)->getContent().container->findWidget<UiValueEditor>("overallField");
    EXPECT_NEAR(field->getValue(), 0.4, 1e-9); // at frame 10
    const int steps = history().getStepCount();
    field->enter(0.75);
    EXPECT_NEAR(overall->getTypedValue<double>(10.0), 0.75, 1e-9);
    EXPECT_EQ(history().getStepCount(), steps + 1);
    EXPECT_EQ(history().getUndoName(), "Set Overall");
    history().undo();
    EXPECT_NEAR(field->getValue(), 0.4, 1e-9);
}

TEST_F(NodeWidgets, AFailingControllerIsReportedAndItsWidgetsStayDisabled) {
    StageProbe::failNext = true;
    const Iterator<UiNodeWidgetFactory::Item> built = main->area(0)->setContent(keyer1);
    EXPECT_TRUE(reported("panel tsMatteGenPanel.ui for 'keyer1': the panel could not bind"));
    ASSERT_EQ(built.getCardinality(), 1);
    EXPECT_FALSE(built.item().controller);
    EXPECT_FALSE(built.item().container->isEnabled());
    main->area(0)->setContent(keyer2);
    EXPECT_TRUE(main->area(0)->getContent().container->isEnabled());
}

TEST_F(NodeWidgets, APanelReplacedFromItsOwnCallbackGoesSafely) {
    main->area(0)->setContent(keyer1);
    StageProbe::onResetDo = [this] { main->area(0)->setContent(keyer2); };
    const auto reset = main->area(0)->getContent().container->findWidget<UiPushButton>("reset");
    reset->click();
    EXPECT_FALSE(reset->exists() && reset->getLiveWidget()->isVisible());
    EXPECT_TRUE(PiGraphObject::areEqual(main->area(0)->getNode(), keyer2));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(reset->exists());
    // The old controller, whose callback was running, went once it was done.
    EXPECT_EQ(lifeLog,
              (std::vector<std::string>{"made main", "made keyer1", "reset keyer1", "made keyer2",
                                        "released keyer1 before its widgets"}));
}

TEST_F(NodeWidgets, DestroyingThePanelReleasesEveryControllerBeforeItsWidgets) {
    main->show(keyer1);
    panel.reset();
    EXPECT_EQ(lifeLog, (std::vector<std::string>{"made main", "made keyer1", "released main",
                                                 "released keyer1 before its widgets"}));
}

TEST_F(NodeWidgets, AHostPanelShowsTheMainPanelOfEachGenerationOrReportsItHasNone) {
    EXPECT_EQ(panel->getController().get(), static_cast<RCCounted*>(main));
    EXPECT_TRUE(panel->find("tsMainUiContainer"));
    EXPECT_FALSE(panel->setNode(stranger, timePathOf(stranger)));
    EXPECT_TRUE(reported("panel 'main': no panel is registered for 'grade'"));
    EXPECT_FALSE(panel->getContainer());
    EXPECT_EQ(lifeLog.back(), "released main");

    const RCShdPtr<TsKeyerGroup> second = TsKeyerGroup::create("second", 2, 1);
    graph->getRoot()->addNode(second);
    EXPECT_TRUE(panel->setNode(second, timePathOf(second)));
    EXPECT_EQ(panel->getNodeWidget().getContent().description, "tsMainPanelGeneration2.ui");
}

} // namespace
