#include "tsMgEventHandler.h"
#include "mgScene.h"
#include "tesseraUiZnmoduleInit.h"

#include <base/exBase.h>
#include <gfx/mfToolset.h>
#include <ui/uiHotkeyRegistry.h>

namespace {

unsigned hotkeyEntry(const std::string& name) {
    return UiHotkeyRegistry::getInstance().findEntry(UiHotkeyRegistry::TesseraDomain, name);
}

// The scene with the node given three patches, the first current.
class MatteHandler : public MgScene {
protected:
    void SetUp() override {
        MgScene::SetUp();
        for (int i = 0; i < 3; ++i) {
            mg->createPatch();
        }
        mg->makePatchCurrent(0);
        stack().clear();
    }

    // A hotkey as the viewer widget's handler passes it on.
    bool hotkey(const std::string& name) {
        EvHotkeyEvent event(at(blockCentre(Key)), EvKeyboardState(), hotkeyEntry(name));
        return deliver(event);
    }
};

TEST_F(MatteHandler, HoldsTheStageToolsInTheirOrderTheLastCurrent) {
    const std::vector<std::string> expected{
        TsMgTool::getManipToolName(0), TsMgTool::getManipToolName(1), TsMgTool::getManipToolName(3),
        TsMgTool::getManipToolName(2)};
    EXPECT_EQ(handler().getToolset()->getToolNames(), expected);
    // Not a key-colour pick: a click would replace a key colour unasked.
    EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(2));
}

TEST_F(MatteHandler, TheSampleMatteHotkeyMakesTheSampleMatteToolCurrent) {
    for (int from : {0, 1, 3}) {
        useTool(from);
        EvHotkeyEvent event(at(blockCentre(Key)), EvKeyboardState(), hotkeyEntry("Sample Matte"));
        EXPECT_TRUE(deliver(event));
        EXPECT_TRUE(event.isProcessed());
        EXPECT_EQ(currentTool(), TsMgTool::getManipToolName(2)) << "from tool " << from;
    }
}

TEST_F(MatteHandler, TheHandlerLeavesTheHotkeysWhenItGoes) {
    UiHotkeyRegistry& registry = UiHotkeyRegistry::getInstance();
    const unsigned matte = hotkeyEntry("Sample Matte");
    EXPECT_TRUE(registry.isRegistered(matte, viewer->getEventHandler()));
    viewer->setNode(RCShdPtr<PiNode>());
    EXPECT_FALSE(registry.isRegistered(matte, viewer->getEventHandler()));
}

TEST_F(MatteHandler, OnlyAKeyerNodeGetsAHandler) {
    auto plain = rcMake<PiNode>("plain");
    graph->getRoot()->addNode(plain);
    EXPECT_THROW(tsMgEventHandlerFactory(*viewer, plain, rcMake<PiPath>(plain)), ExCastFailed);
    EXPECT_THROW(tsMgEventHandlerFactory(*viewer, RCShdPtr<PiNode>(), viewer->getPath()),
                 ExNullPtr);
}

TEST(MatteToolsStartUp, RegistersTheFactoryAndTheUndoNamesInTableOrder) {
    EXPECT_EQ(TsMgInterface::getEhFactory(), &tsMgEventHandlerFactory);

    int count = 0;
    const TsModuleInitialiser* table = tsModuleInitialisers(count);
    std::vector<std::string> ours;
    for (int i = 0; i < count; ++i) {
        const std::string source = table[i].source;
        if (source == "tsAddSampleTool" || source == "tsMgSampleMatteTool" ||
            source == "tsMgSamplePatchTool" || source == "tsMgEventHandler" ||
            source == "tsImgPickKeyColorsTool") {
            ours.push_back(source);
        }
    }
    EXPECT_EQ(ours, (std::vector<std::string>{"tsAddSampleTool", "tsMgSampleMatteTool",
                                              "tsMgSamplePatchTool", "tsMgEventHandler",
                                              "tsImgPickKeyColorsTool"}));
    ASSERT_GE(count, 1);
    EXPECT_STREQ(table[0].source, "tsAddSampleTool");

    std::vector<std::string> ids;
    for (const std::string& id : MsgServer::getInstance().getRegisteredIds()) {
        if (id == "MSG_TS_SET_MATTE_SAMPLE" || id == "MSG_TS_SET_PATCH_SAMPLE" ||
            id == "MSG_TS_SET_KEY_COLOR") {
            ids.push_back(id);
        }
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"MSG_TS_SET_MATTE_SAMPLE", "MSG_TS_SET_PATCH_SAMPLE",
                                             "MSG_TS_SET_KEY_COLOR"}));
}

} // namespace
