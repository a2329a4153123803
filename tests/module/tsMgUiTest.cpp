// The matte-generation panel, as the main panel shows it for the selected
// keyer node, with a viewer showing that node in the same main window.
#include "tsMgUi.h"
#include "keyerPanelScene.h"
#include "support/testTemp.h"

#include <gfx/wsCursorRegistry.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <tesseraCore/tsMgTool.h>
#include <ui/uiGrabHandler.h>
#include <ui/uiNodeWidgetFactory.h>
#include <ui/uiPushButton.h>
#include <ui/uiValueEditor.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

std::vector<std::string> entries(const RCShdPtr<UiMenu>& menu) {
    std::vector<std::string> texts;
    for (int i = 0; i < menu->getItemCount(); ++i) {
        texts.push_back(menu->getItemText(i));
    }
    return texts;
}

std::string catalogueText(const char* id) {
    const MsgFileGuard guard("tessera.msg");
    return MsgServer::getInstance().lookup(id);
}

const std::string& toolName(int index) {
    return TsMgTool::getManipToolName(index);
}

bool isBlack(const CoRgbColorTyped<float>& c) {
    return c.r == 0.0f && c.g == 0.0f && c.b == 0.0f;
}

// A grab handler of someone else's that takes every event.
class OtherGrab : public UiGrabHandler {
public:
    OtherGrab()
        : UiGrabHandler("other") {}
    void callback(EvEvent& event) override { event.setProcessed(true); }
};

class MatteGenPanel : public ::testing::Test, public KeyerPanelScene {
protected:
    void SetUp() override {
        build(1);
        select(keyers[0]);
        ASSERT_TRUE(handler());
        handler()->setCurrentTool(toolName(2));
        settle();
        history().clear();
        cursors = UiApplication::getInstance().getOverrideCursorDepth();
    }
    void TearDown() override {
        tearDown();
        EXPECT_EQ(UiApplication::getInstance().getOverrideCursorDepth(), cursors);
    }

    RCShdPtr<UiMenu> patchMenu() const { return matteWidget<UiMenu>("patchSelectMenu"); }
    RCShdPtr<UiMenu> sampleMenu() const { return matteWidget<UiMenu>("sampleMenu"); }
    RCShdPtr<UiDualState> keyToggle(int index) const {
        return matteWidget<UiDualState>(index == 0 ? "keyColor1Toggle" : "keyColor2Toggle");
    }
    RCShdPtr<UiValueEditor> editor(const char* name) const {
        return matteWidget<UiValueEditor>(name);
    }
    RCShdPtr<UiMenu> modeMenu() const { return matteWidget<UiMenu>("patchModeMenu"); }
    const TsMgUi& controller() const {
        return dynamic_cast<const TsMgUi&>(*area("tsMatteGen")->getContent().controller);
    }
    // Whether the patch widgets edit the inputs of that patch.
    ::testing::AssertionResult boundTo(int patch) const {
        const auto m = mg(0);
        if (!PiGraphObject::areEqual(modeMenu()->getInput(), m->getPatchModeInput(patch)) ||
            !PiGraphObject::areEqual(editor("patchRange")->getInput(),
                                     m->getPatchRangeInput(patch)) ||
            !PiGraphObject::areEqual(editor("patchSoft")->getInput(),
                                     m->getPatchSoftnessInput(patch))) {
            return ::testing::AssertionFailure() << "not bound to patch " << patch;
        }
        return ::testing::AssertionSuccess();
    }
    int cursorDepth() const { return UiApplication::getInstance().getOverrideCursorDepth(); }

    int cursors = 0;
};

TEST_F(MatteGenPanel, WithNoPatchTheMenuOffersANewOneThatTheKeyerNames) {
    EXPECT_EQ(entries(patchMenu()), std::vector<std::string>{"New Patch"});
    EXPECT_EQ(patchMenu()->getSelection(), 0);
    EXPECT_TRUE(boundTo(0));

    patchMenu()->choose(0);
    settle();
    EXPECT_EQ(mg(0)->getPatchCount(), 1);
    EXPECT_EQ(entries(patchMenu()), (std::vector<std::string>{"Patch 1", "New Patch"}));
    EXPECT_EQ(patchMenu()->getSelection(), 0);
    EXPECT_EQ(history().getUndoName(), "New Patch");

    patchMenu()->choose(1);
    settle();
    EXPECT_EQ(entries(patchMenu()), (std::vector<std::string>{"Patch 1", "Patch 2", "New Patch"}));
    EXPECT_EQ(patchMenu()->getSelection(), 1);
    EXPECT_TRUE(boundTo(1));

    history().undo();
    EXPECT_EQ(entries(patchMenu()), (std::vector<std::string>{"Patch 1", "New Patch"}));
    EXPECT_EQ(patchMenu()->getSelection(), 0);
    EXPECT_TRUE(boundTo(0));
}

TEST_F(MatteGenPanel, ChoosingAPatchBindsItsModeRangeAndSoftness) {
    mg(0)->createPatch();
    mg(0)->createPatch();
    history().clear();
    EXPECT_EQ(patchMenu()->getSelection(), 1);
    EXPECT_TRUE(boundTo(1));

    patchMenu()->choose(0);
    settle();
    EXPECT_EQ(mg(0)->getCurrentPatch(), 0);
    EXPECT_TRUE(boundTo(0));
    editor("patchRange")->enter(0.25);
    modeMenu()->choose(2);
    settle();
    const double t = time.getTime();
    EXPECT_DOUBLE_EQ(mg(0)->getPatchRangeInput(0)->getTypedValue<double>(t), 0.25);
    EXPECT_EQ(mg(0)->getPatchModeInput(0)->getTypedValue<int>(t), 2);
    EXPECT_EQ(mg(0)->getPatchModeInput(1)->getTypedValue<int>(t), 0);
    EXPECT_EQ(history().getStepNames(),
              (std::vector<LiString>{"Select Patch", "Set Patch Range", "Set Patch Mode"}));

    // The current patch chosen again: asked for again, nothing changes.
    patchMenu()->choose(0);
    settle();
    EXPECT_EQ(mg(0)->getCurrentPatch(), 0);
    EXPECT_EQ(history().getStepCount(), 3);
    EXPECT_TRUE(boundTo(0));
    EXPECT_TRUE(reports().empty());
}

TEST_F(MatteGenPanel, FollowsThePatchInputsAndNoOther) {
    mg(0)->createPatch();
    mg(0)->createPatch();
    // A selection the panel did not make (shown without notification).
    patchMenu()->setSelection(-1);
    mg(0)->getMatteParamInput(TsMgTypes::Overall)->setValue(time.getTime(), PiValue(0.4));
    mg(0)->getPatchRangeInput(1)->setValue(time.getTime(), PiValue(0.6));
    mg(1)->createPatch(); // another node's patches
    for (int i = 0; i < 3; ++i) {
        history().undo();
    }
    EXPECT_EQ(patchMenu()->getSelection(), -1);
    EXPECT_EQ(patchMenu()->getItemCount(), 3);

    mg(0)->makePatchCurrent(0);
    EXPECT_EQ(patchMenu()->getSelection(), 0);
    EXPECT_TRUE(boundTo(0));
    history().undo();
    EXPECT_EQ(patchMenu()->getSelection(), 1);
    EXPECT_TRUE(boundTo(1));
    history().undo(); // the second patch goes
    EXPECT_EQ(entries(patchMenu()), (std::vector<std::string>{"Patch 1", "New Patch"}));
    EXPECT_EQ(patchMenu()->getSelection(), 0);
    EXPECT_TRUE(boundTo(0));
}

TEST_F(MatteGenPanel, ResetTesseraIsOneUndoStep) {
    const double t = time.getTime();
    mg(0)->getKeyColorInput(TsTypes::KeyColor1)->setValue(t, PiValue(Left));
    mg(0)->getMatteParamInput(TsMgTypes::Shadows)->setValue(t, PiValue(0.9));
    mg(0)->createPatch();
    mg(0)->getPatchSoftnessInput(0)->setValue(t, PiValue(0.7));
    const int steps = history().getStepCount();

    matteWidget<UiPushButton>("reset")->click();
    settle();
    EXPECT_EQ(history().getStepCount(), steps + 1);
    EXPECT_EQ(history().getUndoName(), "Reset Tessera");
    EXPECT_TRUE(isBlack(keyColour(0, TsTypes::KeyColor1)));
    EXPECT_EQ(mg(0)->getPatchCount(), 0);
    EXPECT_EQ(entries(patchMenu()), std::vector<std::string>{"New Patch"});

    history().undo();
    EXPECT_EQ(keyColour(0, TsTypes::KeyColor1).g, Left.g);
    EXPECT_DOUBLE_EQ(mg(0)->getMatteParamInput(TsMgTypes::Shadows)->getTypedValue<double>(t), 0.9);
    EXPECT_EQ(mg(0)->getPatchCount(), 1);
    EXPECT_DOUBLE_EQ(mg(0)->getPatchSoftnessInput(0)->getTypedValue<double>(t), 0.7);
    EXPECT_EQ(entries(patchMenu()), (std::vector<std::string>{"Patch 1", "New Patch"}));
    EXPECT_EQ(history().getStepCount(), steps + 1);
}

TEST_F(MatteGenPanel, ThePressOnAKeyColourToggleStartsAPickThatOneClickInAViewerMakes) {
    const auto toggle = keyToggle(0);
    toggle->click();
    settle();
    // The press took the grabs: the toggle lights with the tool, not the
    // click.
    EXPECT_FALSE(toggle->getState());
    EXPECT_EQ(UiGrab::pointer().getHolder(), &controller().getKeyColorPick());
    EXPECT_EQ(UiGrab::keyboard().getHolder(), &controller().getKeyColorPick());
    EXPECT_EQ(cursorDepth(), cursors + 1);
    EXPECT_EQ(UiApplication::getInstance().getOverrideCursor(),
              WsCursorRegistry::getInstance().getCursor(WsCursorRegistry::Pick));
    EXPECT_EQ(currentTool(), toolName(2));

    // The press that ends the pick is the pick tool's first event.
    const QPointF at = viewerPoint(5.5f, 10.5f);
    sendMouse(viewer, QEvent::MouseButtonPress, at);
    EXPECT_EQ(currentTool(), toolName(0));
    EXPECT_TRUE(toggle->getState());
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    sendMouse(viewer, QEvent::MouseButtonRelease, at);
    settle();

    const CoRgbColorTyped<float> picked = keyColour(0, TsTypes::KeyColor1);
    EXPECT_FLOAT_EQ(picked.r, Left.r);
    EXPECT_FLOAT_EQ(picked.g, Left.g);
    EXPECT_FLOAT_EQ(picked.b, Left.b);
    // The pick tool is transient: the tool before it is back, and the toggle
    // is off again.
    EXPECT_EQ(currentTool(), toolName(2));
    EXPECT_FALSE(toggle->getState());
    EXPECT_EQ(history().getUndoName(), catalogueText("MSG_TS_SET_KEY_COLOR"));
    history().undo();
    EXPECT_TRUE(isBlack(keyColour(0, TsTypes::KeyColor1)));
}

TEST_F(MatteGenPanel, APickClickOutsideEveryViewerEndsThePickAndChangesNothing) {
    keyToggle(1)->click();
    settle();
    ASSERT_TRUE(UiGrab::pointer().isGrabbed());
    // On the panel, in the main window.
    click(panel, QPointF(10, 10));
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    EXPECT_EQ(currentTool(), toolName(2));
    EXPECT_FALSE(keyToggle(1)->getState());

    // In a window that is not the main window.
    keyToggle(0)->click();
    settle();
    QWidget elsewhere;
    elsewhere.resize(100, 100);
    elsewhere.show();
    click(&elsewhere, QPointF(50, 50));
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    EXPECT_EQ(currentTool(), toolName(2));
    EXPECT_EQ(history().getStepCount(), 0);
}

TEST_F(MatteGenPanel, ALostGrabTakesTheCursorBackAndLeavesTheGrabs) {
    keyToggle(0)->click();
    settle();
    OtherGrab other;
    UiGrab::pointer().grab(&other);
    EXPECT_EQ(cursorDepth(), cursors);
    EXPECT_EQ(UiGrab::keyboard().getHolder(), &controller().getKeyColorPick());
    // The keyboard grab's loss later pops nothing more.
    UiGrab::keyboard().grab(&other);
    EXPECT_EQ(cursorDepth(), cursors);
    UiGrab::pointer().release();
    UiGrab::keyboard().release();
}

TEST_F(MatteGenPanel, APanelThatGoesDuringAPickLetsGoOfGrabsAndCursor) {
    keyToggle(0)->click();
    settle();
    ASSERT_EQ(cursorDepth(), cursors + 1);
    select(keyers[2]); // the main panel shows another node's panel
    EXPECT_FALSE(UiGrab::pointer().isGrabbed());
    EXPECT_FALSE(UiGrab::keyboard().isGrabbed());
    EXPECT_EQ(cursorDepth(), cursors);
    // The new panel works.
    keyToggle(1)->click();
    settle();
    EXPECT_EQ(cursorDepth(), cursors + 1);
    click(panel, QPointF(5, 5));
    EXPECT_EQ(cursorDepth(), cursors);
}

TEST_F(MatteGenPanel, TheSampleMenuSetsTheToolAndFollowsItOnlyToItsOwnTools) {
    sampleMenu()->choose(1);
    settle();
    EXPECT_EQ(currentTool(), toolName(3));
    sampleMenu()->choose(0);
    settle();
    EXPECT_EQ(currentTool(), toolName(2));

    handler()->setCurrentTool(toolName(3));
    EXPECT_EQ(sampleMenu()->getSelection(), 1);
    EXPECT_FALSE(keyToggle(0)->getState());
    EXPECT_FALSE(keyToggle(1)->getState());

    // A key-colour pick tool lights its toggle; the menu keeps its entry.
    handler()->setCurrentTool(toolName(1));
    EXPECT_EQ(sampleMenu()->getSelection(), 1);
    EXPECT_FALSE(keyToggle(0)->getState());
    EXPECT_TRUE(keyToggle(1)->getState());
    handler()->setCurrentTool(toolName(2));
    EXPECT_EQ(sampleMenu()->getSelection(), 0);
    EXPECT_FALSE(keyToggle(1)->getState());
}

TEST_F(MatteGenPanel, FollowsTheHandlerOfANewViewer) {
    auto second = std::make_unique<UiViewer>(window.get(), "second viewer");
    second->setGeometry(400, 420, 400, 300);
    second->show();
    second->setNode(keyers[0]);
    PiEventHandlingInterface::getInstance().setCurrentViewer(second.get());
    auto h = rcCast<PiCurrentToolEventHandler>(second->getCurrentEventHandler());
    // The new handler's tool shows at once.
    EXPECT_EQ(keyToggle(0)->getState(), h->getCurrentTool() == toolName(0));
    h->setCurrentTool(toolName(3));
    EXPECT_EQ(sampleMenu()->getSelection(), 1);
    // The first viewer's tool changes are no longer the panel's.
    handler()->setCurrentTool(toolName(1));
    EXPECT_FALSE(keyToggle(1)->getState());
    h.reset(); // a viewer's handler goes with its viewer
    second.reset();
}

TEST_F(MatteGenPanel, ASampleMenuChoiceWithNoViewerIsReported) {
    delete viewer;
    viewer = nullptr;
    sampleMenu()->choose(1);
    settle();
    bool found = false;
    for (const auto& r : ExReporter::getInstance().getReports()) {
        found = found || r.text().find("PiCurrentToolEventHandler") != std::string::npos;
    }
    EXPECT_TRUE(found);
    ExReporter::getInstance().clear();
}

// Matte-generation panel descriptions with widgets missing or of the wrong
// kind, shown on their own.
class MatteGenDescriptions : public MatteGenPanel {
protected:
    void show(const std::vector<std::pair<std::string, std::string>>& edits) {
        std::ifstream in(std::string(std::getenv("TESSERA_SOURCE_DIR")) +
                         "/tools/tessera/resources/tsMatteGenPanel.ui");
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        for (const auto& [from, to] : edits) {
            const auto at = text.find(from);
            ASSERT_NE(at, std::string::npos) << from;
            text.replace(at, from.size(), to);
        }
        const std::string path = testTempPath("tesseraEditedMatteGenPanel.ui");
        std::ofstream(path) << text;
        UiNodeWidgetFactory::registerStage(
            "editedMatteGen", path, nullptr,
            [](const RCShdPtr<PiNode>& node, const RCShdPtr<PiWidget>& widget,
               const RCShdPtr<const PiTimePath>& timePath) {
                return rcCast<TsMgInterface>(node->getController())->createUi(widget, timePath);
            });
        edited = std::make_unique<UiPanel>("edited");
        edited->setStage("editedMatteGen", keyers[1], timePathOf(keyers[1]));
    }
    void TearDown() override {
        edited.reset();
        UiNodeWidgetFactory::unregister("editedMatteGen");
        MatteGenPanel::TearDown();
    }
    bool reportedOnce(const std::string& text) {
        int found = 0;
        for (const auto& r : ExReporter::getInstance().getReports()) {
            found += r.text().find(text) != std::string::npos ? 1 : 0;
        }
        ExReporter::getInstance().clear();
        return found == 1;
    }

    std::unique_ptr<UiPanel> edited;
};

TEST_F(MatteGenDescriptions, WithoutSampleMenuAndResetTheRestWorks) {
    show({{R"(name="sampleMenu")", R"(name="toolMenu")"}, {R"(name="reset")", R"(name="clear")"}});
    ASSERT_TRUE(edited->getController());
    edited->find<UiMenu>("patchSelectMenu")->choose(0);
    EXPECT_EQ(mg(1)->getPatchCount(), 1);
    handler()->setCurrentTool(toolName(1));
    EXPECT_TRUE(edited->find<PiDualState>("keyColor2Toggle")->getState());
    edited->find<UiPushButton>("clear")->click(); // bound to nothing
    EXPECT_EQ(mg(1)->getPatchCount(), 1);
    EXPECT_TRUE(reports().empty());
}

TEST_F(MatteGenDescriptions, AMissingKeyColourToggleIsAnErrorNamingIt) {
    show({{R"(name="keyColor2Toggle")", R"(name="pick2")"}});
    EXPECT_FALSE(edited->getController());
    EXPECT_TRUE(reportedOnce("PiDualState 'keyColor2Toggle'"));
}

TEST_F(MatteGenDescriptions, AWidgetOfTheWrongKindIsAnErrorNamingItAndBothTypes) {
    show({{R"(<widget class="QComboBox" name="patchSelectMenu">)",
           R"(<widget class="QLabel" name="patchSelectMenu">)"}});
    EXPECT_FALSE(edited->getController());
    EXPECT_TRUE(reportedOnce("UiLabel 'patchSelectMenu' is not a PiMenu"));
}

} // namespace
