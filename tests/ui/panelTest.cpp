#include "panelScene.h"
#include "support/testTemp.h"

#include <base/exBase.h>
#include <pluginAPI/piDualState.h>
#include <pluginAPI/piLabel.h>
#include <pluginAPI/piMenu.h>
#include <pluginAPI/piNodeWidget.h>
#include <pluginAPI/piTrackball.h>
#include <resmgt/liStringUtil.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiContainer.h>
#include <ui/uiInputValueEditor.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidget.h>
#include <ui/uiPanelDescription.h>
#include <ui/uiPushButton.h>
#include <ui/uiWorkspace.h>

#include <QFile>
#include <QImage>

#include <fstream>
#include <memory>

namespace {

std::vector<std::string> entries(const RCShdPtr<PiMenu>& menu) {
    std::vector<std::string> texts;
    for (int i = 0; i < menu->getItemCount(); ++i) {
        texts.push_back(menu->getItemText(i));
    }
    return texts;
}

// A description built on its own, as the host builds it into a node widget.
class Description {
public:
    explicit Description(const std::string& name) {
        LiString error;
        widget.reset(UiPanelDescription::build(name, nullptr, error));
        EXPECT_TRUE(widget) << error;
        if (widget) {
            container = rcCast<PiContainer>(UiWidgetAdapter::of(widget.get()));
        }
    }
    ~Description() { container.reset(); }

    std::unique_ptr<QWidget> widget;
    RCShdPtr<PiContainer> container;
};

using PanelDescriptions = PanelScene;

// The names and kinds the main panel's controller looks for, in both
// generations, and the sample menu's entries, which must be the tool names in
// the controller's order for the menu to follow the current tool.
TEST_F(PanelDescriptions, BothMainPanelsHoldTheSlotsTheAreasAndTheToolMenu) {
    for (const char* file : {"tsMainPanel.ui", "tsMainPanelGeneration2.ui"}) {
        SCOPED_TRACE(file);
        const Description d(file);
        ASSERT_TRUE(d.container);
        EXPECT_TRUE(d.container->findWidget("tsMainUiContainer"));
        for (const char* area : {"tsOtherUi", "tsSpillBlend", "tsDegrain", "tsMatteGen"}) {
            EXPECT_TRUE(d.container->findWidget<PiNodeWidget>(area)) << area;
        }
        for (int i = 0; i < 6; ++i) {
            EXPECT_TRUE(
                d.container->findWidget<PiDualState>("nodeSelect" + LiStringUtil::convertNb(i)));
            EXPECT_TRUE(
                d.container->findWidget<PiLabel>("nodeSelectLabel" + LiStringUtil::convertNb(i)));
        }
        EXPECT_EQ(entries(d.container->findWidget<PiMenu>("sampleMenu")),
                  (std::vector<std::string>{
                      TsMgTool::getManipToolName(2), TsMgTool::getManipToolName(3),
                      TsDgTool::getManipToolName(2), TsSpillBlendTool::getManipToolName(2),
                      TsSpillBlendTool::getManipToolName(3)}));
    }
}

TEST_F(PanelDescriptions, TheMatteGenerationPanelHoldsWhatItsControllerBinds) {
    const Description d("tsMatteGenPanel.ui");
    ASSERT_TRUE(d.container);
    EXPECT_EQ(
        entries(d.container->findWidget<PiMenu>("sampleMenu")),
        (std::vector<std::string>{TsMgTool::getManipToolName(2), TsMgTool::getManipToolName(3)}));
    EXPECT_TRUE(d.container->findWidget<PiDualState>("keyColor1Toggle"));
    EXPECT_TRUE(d.container->findWidget<PiDualState>("keyColor2Toggle"));
    EXPECT_TRUE(d.container->findWidget<UiPushButton>("reset"));
    EXPECT_TRUE(d.container->findWidget<PiMenu>("patchSelectMenu"));
    const auto mode = rcCast<UiWidgetAdapter>(d.container->findWidget("patchModeMenu"));
    EXPECT_EQ(rcCast<UiMenu>(mode->getUiWidget())->getItemCount(), 4);
    EXPECT_TRUE(UiInputValueEditor::getValueEditor(d.container, "patchRange"));
    EXPECT_TRUE(UiInputValueEditor::getValueEditor(d.container, "patchSoft"));
}

TEST_F(PanelDescriptions, TheDegrainAndSpillPanelsHoldWhatTheirControllersBind) {
    const Description degrain("tsDegrainPanel.ui");
    ASSERT_TRUE(degrain.container);
    EXPECT_TRUE(degrain.container->findWidget<PiDualState>("keyColor1Toggle"));
    EXPECT_TRUE(degrain.container->findWidget<PiDualState>("keyColor2Toggle"));
    EXPECT_TRUE(degrain.container->findWidget<UiPushButton>("reset"));

    const Description spill("tsSpillBlendPanel.ui");
    ASSERT_TRUE(spill.container);
    EXPECT_TRUE(spill.container->findWidget<PiDualState>("keyColor1Toggle"));
    EXPECT_TRUE(spill.container->findWidget<PiDualState>("keyColor2Toggle"));
    EXPECT_TRUE(spill.container->findWidget<UiPushButton>("reset"));
    EXPECT_TRUE(spill.container->findWidget<PiTrackball>("spillEdgeBalance"));
    EXPECT_EQ(entries(spill.container->findWidget<PiMenu>("sampleMenu")),
              (std::vector<std::string>{TsSpillBlendTool::getManipToolName(2),
                                        TsSpillBlendTool::getManipToolName(3)}));
}

// Every "input" property of every stage panel names an input that a keyer
// node has, of a kind its widget edits: no panel reports anything when it is
// shown for a keyer node.
TEST_F(PanelDescriptions, EveryBoundFieldNamesAnInputOfTheKeyerNode) {
    for (const char* stage : {"tsMatteGen", "tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
        SCOPED_TRACE(stage);
        UiPanel panel("stage");
        EXPECT_TRUE(panel.setStage(stage, keyer1, timePathOf(keyer1)));
        for (const auto& report : ExReporter::getInstance().getReports()) {
            // Without the user-interface module the stages have no controller;
            // that is the only report expected.
            EXPECT_NE(report.text().find("no factory registered"), std::string::npos)
                << report.text();
        }
        ExReporter::getInstance().clear();
    }
}

class BrokenDescriptions : public PanelScene {
protected:
    std::string write(const std::string& name, const std::string& text) {
        const std::string path = testTempPath(name);
        std::ofstream(path) << text;
        return path;
    }
};

TEST_F(BrokenDescriptions, AreReportedWithTheFileAndTheReasonAndBuildNothing) {
    LiString error;
    EXPECT_EQ(UiPanelDescription::build("noSuchPanel.ui", nullptr, error), nullptr);
    EXPECT_NE(error.find("noSuchPanel.ui: not found"), std::string::npos) << error;

    const std::string garbage = write("tesseraGarbage.ui", "<ui version=\"4.0\"><widget class=");
    EXPECT_EQ(UiPanelDescription::build(garbage, nullptr, error), nullptr);
    EXPECT_NE(error.find(garbage + ": cannot be parsed"), std::string::npos) << error;

    const std::string empty = write("tesseraEmpty.ui", "\n");
    EXPECT_EQ(UiPanelDescription::build(empty, nullptr, error), nullptr);
    EXPECT_NE(error.find(empty + ": the file is empty"), std::string::npos) << error;
}

TEST_F(BrokenDescriptions, LeaveTheAreaEmptyAndTheHostRunning) {
    const std::string garbage = write("tesseraBroken.ui", "not a form at all");
    UiNodeWidgetFactory::registerStage("brokenStage", garbage, nullptr, nullptr);
    UiPanel panel("broken");
    EXPECT_FALSE(panel.setStage("brokenStage", keyer1, timePathOf(keyer1)));
    EXPECT_FALSE(panel.getContainer());
    EXPECT_TRUE(panel.findChildren<QWidget*>().empty());
    EXPECT_TRUE(reported("panel area 'broken': panel description " + garbage));
    UiNodeWidgetFactory::unregister("brokenStage");
    EXPECT_FALSE(panel.setStage("brokenStage", keyer1, timePathOf(keyer1)));
    EXPECT_TRUE(reported("no panel is registered for 'brokenStage'"));
}

TEST_F(BrokenDescriptions, AFieldNamingAnInputTheNodeLacksIsReportedAndLeftUnbound) {
    const std::string form = write("tesseraStrayInput.ui", R"(<?xml version="1.0"?>
<ui version="4.0">
 <widget class="QWidget" name="stray">
  <layout class="QVBoxLayout" name="layout">
   <item>
    <widget class="QDoubleSpinBox" name="typo">
     <property name="input" stdset="0"><string>overal</string></property>
    </widget>
   </item>
   <item>
    <widget class="QDoubleSpinBox" name="good">
     <property name="input" stdset="0"><string>overall</string></property>
    </widget>
   </item>
   <item>
    <widget class="QLabel" name="wrongKind">
     <property name="input" stdset="0"><string>shadows</string></property>
    </widget>
   </item>
  </layout>
 </widget>
</ui>)");
    UiNodeWidgetFactory::registerStage("strayStage", form, nullptr, nullptr);
    UiPanel panel("stray");
    EXPECT_TRUE(panel.setStage("strayStage", keyer1, timePathOf(keyer1)));
    EXPECT_TRUE(reported("widget 'typo': names the input 'overal', which 'keyer1' does not have"));
    EXPECT_TRUE(reported("widget 'wrongKind': names an input, but a UiLabel cannot edit one"));
    EXPECT_FALSE(panel.find<UiValueEditor>("typo")->getInput());
    EXPECT_TRUE(panel.find<UiValueEditor>("good")->getInput());
    UiNodeWidgetFactory::unregister("strayStage");
}

using Workspace = PanelScene;

TEST_F(Workspace, HoldsThePanelsByNameWhileTheyLive) {
    UiWorkspace& workspace = UiWorkspace::getInstance();
    const std::size_t before = workspace.getPanels().size();
    {
        UiPanel main("main");
        UiPanel matte("matte");
        EXPECT_EQ(workspace.getPanels().size(), before + 2);
        EXPECT_EQ(workspace.findPanel("matte"), &matte);
    }
    EXPECT_EQ(workspace.getPanels().size(), before);
    EXPECT_EQ(workspace.findPanel("matte"), nullptr);
}

using PanelPictures = PanelScene;

// The main panel with its four areas filled, as the host shows a keyer group
// with the first keyer node selected; the picture is left in the build tree
// for a person to look at.
TEST_F(PanelPictures, TheMainPanelLaysOutItsSlotsToolMenuAndStagePanels) {
    for (int generation : {1, 3}) {
        SCOPED_TRACE(generation);
        const RCShdPtr<TsKeyerGroup> g =
            TsKeyerGroup::create(generation == 1 ? "keyerA" : "keyerB", generation == 1 ? 1 : 2, 2);
        graph->getRoot()->addNode(g);
        UiPanel panel(generation == 1 ? "main" : "main3");
        ASSERT_TRUE(panel.setNode(g, timePathOf(g)));
        for (const char* area : {"tsMatteGen", "tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
            panel.find<UiNodeWidget>(area)->setContent(g->getKeyerNode(0));
            EXPECT_TRUE(panel.find<UiNodeWidget>(area)->hasContent()) << area;
        }
        panel.find<PiLabel>("nodeSelectLabel0")->setText("keyer1");
        const QImage image = panel.grabImage();
        EXPECT_GT(image.width(), 200);
        EXPECT_GT(image.height(), 300);
        EXPECT_TRUE(image.save(QString::fromStdString(
            screenshotPath(generation == 1 ? "mainPanel.png" : "mainPanelGeneration2.png"))));
    }
}

} // namespace
