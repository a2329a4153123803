// Failures of the degrain and spill-and-blend tools and panels, each met
// through the host's own entry points (a viewer's event delivery, a widget's
// callback, a panel factory): the host reports it once with its text, no
// undo step stays open, and the viewer, its tools and the panels go on
// working. As for the matte tools, a public operation of the host stands in
// for an invariant that the host never breaks by itself.
#include "stageScene.h"
#include "support/takeReports.h"
#include "support/testTemp.h"

#include <gfx/mfRangeManipulator.h>
#include <pluginAPI/piEventHandler.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiDualState.h>
#include <ui/uiMenu.h>
#include <ui/uiNodeWidgetFactory.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace stages {
namespace {

const std::string& spillTool() {
    return TsSpillBlendTool::getManipToolName(2);
}

// The viewer in the spill stage with the spill tool current; its bars are
// shown around world (200, 200), off the plate.
class SpillBarFailures : public StageScene {
protected:
    std::string stage() const override { return "spill"; }
    void SetUp() override {
        StageScene::SetUp();
        useTool(spillTool());
    }

    static inline const GePoint2<float> P{200.0f, 200.0f};
    static GePoint2<float> offset(float dx, float dy) { return {P.x + dx, P.y + dy}; }
    RCShdPtr<PiInput> amount() { return node->getSpillInput(0); }
    MfTool& tool() { return *handler().getToolset()->getTool(spillTool()); }
    MfRangeManipulator& bar(int i) {
        return refCast<MfRangeManipulator>(*(*tool().begin())->getChild(i));
    }

    // The tool works as before: a focus loss hides the bars, a drag from a
    // press that shows them again is one named step, and the bar follows
    // changes made elsewhere.
    void expectTheToolStillWorks() {
        loseFocus();
        const int steps = stack().getUndoCount();
        drag(P, offset(100.0f, 0.0f));
        EXPECT_NEAR(value(amount()), 0.75, 1e-6);
        EXPECT_EQ(stack().getUndoCount(), steps + 1);
        EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_SPILL"));
        EXPECT_FALSE(stack().isStepOpen());
        setValue(amount(), 0.25);
        EXPECT_FLOAT_EQ(bar(0).getValue(), -100.0f);
        EXPECT_TRUE(takeReports().empty());
    }
};

TEST_F(SpillBarFailures, AGraspOfSomethingOtherThanABarIsReportedAndChangesNothing) {
    click(P); // shows the bars there
    const RCShdPtr<MfManipulator> foreign(
        new MfRangeManipulator(GeRectangle<float>(-1.0e4f, 1.0e4f, -1.0e4f, 1.0e4f), "foreign"));
    foreign->setFeedbackEventPredicate(!PrdPredicate<EvEvent>::all());
    tool().addManipulator(foreign);
    // Away from the bars: the foreign manipulator is grasped.
    press(offset(0.0f, 300.0f));
    release(offset(0.0f, 300.0f));
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{R"(viewer stage viewer: assertion failed: "found" at )"
                                       R"(tools/tessera/src/tsSpillBlendMfTool, line 416)"});
    EXPECT_FALSE(tool().isManipulating());
    EXPECT_FALSE(foreign->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_EQ(value(amount()), 0.5);

    foreign->setState(MfManipulator::Hidden);
    expectTheToolStillWorks();
}

TEST_F(SpillBarFailures, ABarThatLetsGoDuringItsDragIsReportedAndTheStepKeepsWhatWasDone) {
    press(P); // shows the bars and takes the amount bar
    moveTo(offset(50.0f, 0.0f));
    ASSERT_NEAR(value(amount()), 0.625, 1e-6);
    // The bar lets go behind its tool's back; the next move finds it idle.
    bar(0).abortManipulation();
    moveTo(offset(100.0f, 0.0f));
    release(offset(100.0f, 0.0f));
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{R"(viewer stage viewer: assertion failed: )"
                                       R"x("_manip->getManipulator( _manipP )->isManipulating()" )x"
                                       R"(at tools/tessera/src/tsSpillBlendMfTool, line 428)"});
    EXPECT_FALSE(tool().isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    ASSERT_EQ(stack().getStepCount(), 1);
    EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_SPILL"));
    EXPECT_NEAR(value(amount()), 0.625, 1e-6); // the failed move wrote nothing

    // Undone, the input and its bar are back where the drag began.
    ASSERT_TRUE(stack().undo());
    EXPECT_EQ(value(amount()), 0.5);
    EXPECT_FLOAT_EQ(bar(0).getValue(), 0.0f);
    expectTheToolStillWorks();
}

// The spill-and-blend panel beside a viewer that shows no tools, then none.
class SpillPanelWithoutTools : public StageScene {
protected:
    std::string stage() const override { return "spill"; }
    void SetUp() override {
        StageScene::SetUp();
        openPanel("tsSpillBlend");
    }
    RCShdPtr<UiDualState> toggle() { return panel->find<UiDualState>("keyColor1Toggle"); }
    RCShdPtr<UiMenu> menu() { return panel->find<UiMenu>("sampleMenu"); }
    int pushedCursors() {
        return UiApplication::getInstance().getOverrideCursorDepth() - cursorDepth;
    }
};

TEST_F(SpillPanelWithoutTools, ItsToggleAndMenuAreReportedOnceEachAndDoNothing) {
    viewer->setEventHandler(RCShdPtr<PiEventHandler>(new PiEventHandler));
    const std::string notTools =
        "cast failed: an object of type PiEventHandler is not a PiCurrentToolEventHandler";
    toggle()->click();
    EXPECT_EQ(takeReports(), std::vector<std::string>{"widget 'keyColor1Toggle': " + notTools});
    menu()->choose(1);
    EXPECT_EQ(takeReports(), std::vector<std::string>{"widget 'sampleMenu': " + notTools});
    EXPECT_EQ(pushedCursors(), 0);

    viewer.reset();
    toggle()->click();
    EXPECT_EQ(takeReports(),
              std::vector<std::string>{"widget 'keyColor1Toggle': null pointer where an object of "
                                       "type PiCurrentToolEventHandler is required"});
    EXPECT_EQ(pushedCursors(), 0);
    EXPECT_EQ(stack().getStepCount(), 0);
    EXPECT_FALSE(stack().isStepOpen());

    // A viewer in the spill stage again: both act.
    viewer = std::make_unique<UiViewer>(nullptr, "new viewer");
    viewer->setNode(node);
    ASSERT_TRUE(viewer->setStage("spill"));
    menu()->choose(1);
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(3));
    toggle()->click();
    EXPECT_EQ(currentTool(), TsSpillBlendTool::getManipToolName(0));
    EXPECT_EQ(pushedCursors(), 1);
    useTool(spillTool()); // takes the toggle's cursor back
    EXPECT_EQ(pushedCursors(), 0);
    EXPECT_TRUE(takeReports().empty());
}

// A stage panel built from an edited copy of its description, beside the
// viewer in the degrain stage.
class StagePanelDescriptions : public StageScene {
protected:
    static RCShdPtr<RCBase<LkCounter<int>>> degrainPanel(const RCShdPtr<PiNode>& n,
                                                         const RCShdPtr<PiWidget>& widget,
                                                         const RCShdPtr<const PiTimePath>& time) {
        return rcCast<TsDgInterface>(n->getController())->createUi(widget, time);
    }
    static RCShdPtr<RCBase<LkCounter<int>>>
    spillBlendPanel(const RCShdPtr<PiNode>& n, const RCShdPtr<PiWidget>& widget,
                    const RCShdPtr<const PiTimePath>& time) {
        return rcCast<TsSpillBlendInterface>(n->getController())->createUi(widget, time);
    }

    std::string stage() const override { return "degrain"; }
    void TearDown() override {
        edited.reset();
        UiNodeWidgetFactory::unregister("editedStage");
        StageScene::TearDown();
    }
    // Shows the panel `file` with `from` replaced by `to`; false when it has
    // no controller.
    bool show(const std::string& file, const std::string& from, const std::string& to,
              bool degrain) {
        std::ifstream in(std::string(std::getenv("TESSERA_SOURCE_DIR")) +
                         "/tools/tessera/resources/" + file);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const auto at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        if (at != std::string::npos) {
            text.replace(at, from.size(), to);
        }
        const std::string path = testTempPath("tesseraEdited" + file);
        std::ofstream(path) << text;
        UiNodeWidgetFactory::registerStage("editedStage", path, nullptr,
                                           degrain ? &degrainPanel : &spillBlendPanel);
        edited = std::make_unique<UiPanel>("edited");
        edited->setStage("editedStage", node,
                         RCShdPtr<const PiTimePath>(new PiTimePath(
                             &viewer->getTime(), RCShdPtr<const PiPath>(new PiPath(node)))));
        return static_cast<bool>(edited->getController());
    }
    // The one report, which contains `text`.
    static ::testing::AssertionResult reportedOnce(const std::string& text) {
        const std::vector<std::string> reports = takeReports();
        if (reports.size() == 1 && reports[0].find(text) != std::string::npos) {
            return ::testing::AssertionSuccess();
        }
        auto failure = ::testing::AssertionFailure() << "no single report of \"" << text << "\":";
        for (const std::string& r : reports) {
            failure << "\n  " << r;
        }
        return failure;
    }
    // The viewer's degrain tool still samples.
    void expectTheViewerStillWorks() {
        useTool(TsDgTool::getManipToolName(2));
        click(onA, Shift);
        EXPECT_TRUE(node->getDegrainInput()->getTypedValue<bool>(0.0));
        EXPECT_EQ(stack().getUndoName(), catalogueText("MSG_TS_SET_DEGRAIN_SAMPLE"));
        EXPECT_TRUE(takeReports().empty());
    }

    std::unique_ptr<UiPanel> edited;
};

TEST_F(StagePanelDescriptions, ADegrainPanelWithoutAKeyColourToggleIsAnErrorNamingIt) {
    EXPECT_FALSE(show("tsDegrainPanel.ui", R"(name="keyColor2Toggle")", R"(name="pick2")", true));
    EXPECT_TRUE(reportedOnce("PiDualState 'keyColor2Toggle'"));
    expectTheViewerStillWorks();
}

TEST_F(StagePanelDescriptions, ASpillPanelWithATrackballOfTheWrongKindIsAnErrorNamingIt) {
    EXPECT_FALSE(show("tsSpillBlendPanel.ui",
                      R"(<widget class="UiTrackballWidget" name="spillEdgeBalance">)",
                      R"(<widget class="QLabel" name="spillEdgeBalance">)", false));
    EXPECT_TRUE(reportedOnce("UiLabel 'spillEdgeBalance' is not a PiTrackball"));
    expectTheViewerStillWorks();
}

} // namespace
} // namespace stages
