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

using PanelPictures = PanelScene;

} // namespace
