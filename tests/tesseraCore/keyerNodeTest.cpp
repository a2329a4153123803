#include <pluginAPI/piGraph.h>
#include <pluginAPI/piImageModifier.h>
#include <pluginAPI/piInputRgbColor.h>
#include <pluginAPI/piInputValue.h>
#include <pluginAPI/piToolInterface.h>
#include <pluginAPI/piTypedAnimInput.h>
#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsSetup.h>
#include <tesseraCore/tsSpillBlendInterface.h>

#include <base/exReporter.h>
#include <base/rcCast.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

bool sameSettings(const TsKeyerSettings& a, const TsKeyerSettings& b) {
    if (a.matte != b.matte || a.keyColors != b.keyColors || a.degrainBox != b.degrainBox ||
        a.degrainOn != b.degrainOn || a.spill != b.spill || a.blend != b.blend ||
        a.edgeBalanceX != b.edgeBalanceX || a.edgeBalanceY != b.edgeBalanceY ||
        a.patches.size() != b.patches.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.patches.size(); ++i) {
        const auto &p = a.patches[i], &q = b.patches[i];
        if (p.box != q.box || p.mode != q.mode || p.range != q.range || p.softness != q.softness) {
            return false;
        }
    }
    return true;
}

// A keyer group with one keyer node in a graph, viewed at the frame of a time
// client, as a viewer would see it.
class KeyerScene : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer");
        graph->getRoot()->addNode(group);
        node = group->getKeyerNode(0);
        mg = rcCast<TsMgInterface>(node->getController());
        dg = rcCast<TsDgInterface>(node->getController());
        sb = rcCast<TsSpillBlendInterface>(node->getController());
        clock = std::make_unique<TmTimeClient>(0.0);
        timePath = RCShdPtr<const PiTimePath>(
            new PiTimePath(clock.get(), RCShdPtr<const PiPath>(new PiPath(node))));
    }
    PiCommandStack& stack() { return graph->getCommandStack(); }
    RCShdPtr<PiInputValue<double>> param(TsMgTypes::MatteParam p) {
        return PiInputValue<double>::createTyped(mg->getMatteParamInput(p), timePath);
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<TsKeyerNode> node;
    RCShdPtr<TsMgInterface> mg;
    RCShdPtr<TsDgInterface> dg;
    RCShdPtr<TsSpillBlendInterface> sb;
    std::unique_ptr<TmTimeClient> clock;
    RCShdPtr<const PiTimePath> timePath;
};

TEST_F(KeyerScene, OneControllerAnswersEveryInterfaceOfTheNode) {
    const auto c = node->getController();
    EXPECT_EQ(static_cast<PiNodeController*>(mg.get()), c.get());
    EXPECT_EQ(static_cast<PiNodeController*>(dg.get()), c.get());
    EXPECT_EQ(static_cast<PiNodeController*>(sb.get()), c.get());
    auto image = rcCast<PiImageModifier>(c)->getInput();
    EXPECT_TRUE(PiGraphObject::areEqual(image, node->getImageInput()));
    EXPECT_EQ(image->getType(), PiValueType::Image);
    EXPECT_TRUE(PiGraphObject::areEqual(dg->getKeyBlendInput(),
                                        mg->getMatteParamInput(TsMgTypes::KeyBlend)));
    EXPECT_TRUE(PiGraphObject::areEqual(mg->getCurrentPatchInput(),
                                        node->getInput(TsMgTool::getCurrentPatchName())));
    EXPECT_TRUE(PiGraphObject::areEqual(mg->getPatchNamesInput(),
                                        node->getInput(TsMgTool::getPatchNamesName())));
}

TEST_F(KeyerScene, AFreshNodeHoldsTheDefaultSettings) {
    EXPECT_TRUE(sameSettings(node->getSettings(0.0), TsKeyerSettings()));
    EXPECT_EQ(mg->getPatchCount(), 0);
    EXPECT_EQ(mg->getCurrentPatch(), 0);
    // The current patch of a node without patches still has inputs to bind.
    ASSERT_TRUE(mg->getPatchModeInput(0));
    EXPECT_FALSE(mg->getPatchModeInput(1));
    EXPECT_FALSE(mg->getPatchBoxInput(0, 3, 0));
    EXPECT_EQ(mg->getPatchBoxInput(0, 1, 1)->getTypedValue<double>(0), 1.0);
}

TEST_F(KeyerScene, SpillBlendAndMatteInputsCarryTheirRange) {
    auto tools = rcCast<PiToolInterface>(node->getController());
    for (int i = 0; i < 2; ++i) {
        for (auto input :
             {sb->getSpillInput(i), sb->getBlendInput(i), sb->getEdgeBalanceInput(i)}) {
            auto range = rcCast<const PiRangeInputPolicy<double>>(tools->getInputPolicy(input));
            ASSERT_TRUE(range) << input->getName();
            EXPECT_EQ(range->getMin(), 0.0);
            EXPECT_EQ(range->getMax(), 1.0);
        }
    }
    EXPECT_EQ(sb->getSpillInput(0)->getName(), "spill.amount");
    EXPECT_FALSE(sb->getSpillInput(2));
    EXPECT_TRUE(param(TsMgTypes::Overall)->setValue(7.0));
    EXPECT_EQ(param(TsMgTypes::Overall)->getValue(), 1.0);
}

TEST_F(KeyerScene, NamedEditsUndoAndRedoExactlyWithAnimation) {
    const TsKeyerSettings fresh = node->getSettings(12.0);
    {
        PiUndoGuard step(stack(), "Key the shot");
        PiTypedAnimInput<double> overall(mg->getMatteParamInput(TsMgTypes::Overall));
        overall.setKey(0.0, 0.2);
        overall.setKey(24.0, 0.8);
        auto key = PiInputRgbColor::create(mg->getKeyColorInput(TsTypes::KeyColor1), timePath);
        key->setValue({0.1f, 0.7f, 0.2f});
    }
    {
        PiUndoGuard step(stack(), "Patch");
        const int patch = mg->createPatch();
        PiTypedAnimInput<double>(mg->getPatchBoxInput(patch, 0, 3)).setValue(0.0, -0.4);
        PiTypedAnimInput<int>(mg->getPatchModeInput(patch)).setValue(0.0, 2);
    }
    clock->setTime(12.0);
    param(TsMgTypes::EdgeSoftness)->setValue(0.9);
    sb->getEdgeBalanceInput(0)->setValue(0.0, PiValue(0.3));

    const TsKeyerSettings edited = node->getSettings(12.0);
    EXPECT_DOUBLE_EQ(edited.matte[0], 0.5);
    ASSERT_EQ(edited.patches.size(), 1u);
    EXPECT_EQ(edited.patches[0].box.get(0, 3), -0.4f);
    EXPECT_EQ(edited.patches[0].mode, 2);
    EXPECT_EQ(stack().getStepNames(),
              (std::vector<LiString>{"Key the shot", "Patch", "edgeSoftness", "edgeBalance.x"}));

    while (stack().undo()) {
    }
    EXPECT_TRUE(sameSettings(node->getSettings(12.0), fresh));
    EXPECT_FALSE(mg->getMatteParamInput(TsMgTypes::Overall)->hasKeys());
    EXPECT_EQ(mg->getPatchCount(), 0);
    while (stack().redo()) {
    }
    EXPECT_TRUE(sameSettings(node->getSettings(12.0), edited));
    EXPECT_EQ(mg->getMatteParamInput(TsMgTypes::Overall)->getKeyCount(), 2);
}

TEST_F(KeyerScene, PatchesAreNamedByTheKeyerAndUndoneAsOneStep) {
    EXPECT_EQ(mg->createPatch(), 0);
    EXPECT_EQ(mg->createPatch(), 1);
    EXPECT_EQ(mg->getPatchNames(), (std::vector<std::string>{"Patch 1", "Patch 2"}));
    EXPECT_EQ(mg->getCurrentPatch(), 1);
    EXPECT_EQ(stack().getStepNames(), (std::vector<LiString>{"New Patch", "New Patch"}));
    ASSERT_TRUE(mg->getPatchSoftnessInput(1));
    mg->makePatchCurrent(0);
    EXPECT_EQ(stack().getUndoName(), "Select Patch");

    ExReporter::getInstance().clear();
    mg->makePatchCurrent(5);
    EXPECT_EQ(mg->getCurrentPatch(), 0);
    EXPECT_EQ(ExReporter::getInstance().getReportCount(), 1u);

    stack().undo();
    stack().undo();
    EXPECT_EQ(mg->getPatchCount(), 1);
    EXPECT_EQ(mg->getCurrentPatch(), 0);
    EXPECT_EQ(mg->createPatch(), 1);
    EXPECT_EQ(mg->getPatchNames()[1], "Patch 2");
}

TEST_F(KeyerScene, UndoTakesAwayThePatchInputsANewPatchMadeAndRedoBringsTheSameBack) {
    const int inputs = node->getInputCount();
    mg->createPatch();
    mg->createPatch();
    ASSERT_EQ(node->getPatchInputCount(), 2);
    const RCShdPtr<PiInput> mode = node->getPatchModeInput(1);
    ASSERT_EQ(node->getInput(mode->getName()), mode);

    stack().undo();
    stack().undo();
    EXPECT_EQ(node->getPatchInputCount(), 1) << "a fresh node has the inputs of one patch";
    EXPECT_EQ(node->getInputCount(), inputs);
    EXPECT_FALSE(node->getInput(mode->getName()));
    EXPECT_EQ(mode->getNode(), nullptr);

    stack().redo();
    stack().redo();
    EXPECT_EQ(node->getPatchInputCount(), 2);
    EXPECT_EQ(node->getInput(mode->getName()), mode);
    EXPECT_EQ(node->getPatchModeInput(1), mode);
    mode->setValue(0.0, PiValue(2));
    EXPECT_EQ(stack().getUndoName(), mode->getName()) << "a restored input is undone as before";
}

// A patch is a name and a set of inputs on every path that makes or removes
// patches (a names edit, a new patch, a reset, a setup load); undo and redo
// put both back exactly, step by step.
TEST_F(KeyerScene, PatchNamesAndInputsGoTogetherOnEveryPathAndUndoExactly) {
    auto setup = [this] {
        LiString text;
        std::string error;
        EXPECT_TRUE(TsSetup::write(*group, text, error)) << error;
        return text;
    };
    auto inStep = [this] {
        return node->getPatchInputCount() == std::max(1, mg->getPatchCount()) &&
               mg->getPatchCount() == static_cast<int>(mg->getPatchNames().size());
    };
    std::vector<LiString> texts{setup()};
    auto done = [&] {
        EXPECT_TRUE(inStep()) << stack().getUndoName();
        texts.push_back(setup());
    };
    ASSERT_TRUE(mg->getPatchNamesInput()->setValue(0, PiValue(PiStringList{"A", "B", "C"})));
    EXPECT_EQ(stack().getUndoName(), "New Patch");
    done();
    ASSERT_TRUE(mg->getPatchRangeInput(2)->setValue(0, PiValue(0.5)));
    done();
    const LiString threePatches = texts.back();
    EXPECT_FALSE(mg->getPatchNamesInput()->setValue(0, PiValue(PiStringList{"A"})));
    EXPECT_EQ(mg->createPatch(), 3);
    done();
    mg->resetKeyer();
    done();
    std::string error;
    ASSERT_TRUE(TsSetup::read(*group, threePatches, "three patches", error)) << error;
    done();

    for (std::size_t i = texts.size() - 1; i-- > 0;) {
        ASSERT_TRUE(stack().undo());
        EXPECT_TRUE(inStep());
        EXPECT_EQ(setup(), texts[i]) << "undone to step " << i;
    }
    for (std::size_t i = 1; i < texts.size(); ++i) {
        ASSERT_TRUE(stack().redo());
        EXPECT_EQ(setup(), texts[i]) << "redone to step " << i;
    }
}

TEST_F(KeyerScene, ResetsAreOneStepAndSpareLockedInputs) {
    mg->createPatch();
    param(TsMgTypes::Shadows)->setValue(0.1);
    dg->getDegrainInput()->setValue(0, PiValue(true));
    dg->getDegrainBoxInput(2, 3)->setValue(0, PiValue(0.25));
    sb->getBlendInput(0)->setValue(0, PiValue(0.6));
    mg->getKeyColorInput(TsTypes::KeyColor2)->setValue(0, PiValue(CoRgbColorTyped<float>(0, 1, 0)));
    mg->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
    const TsKeyerSettings before = node->getSettings(0);
    const int steps = stack().getStepCount();

    mg->resetKeyer();
    EXPECT_EQ(stack().getStepCount(), steps + 1);
    EXPECT_EQ(stack().getUndoName(), "Reset Tessera");
    TsKeyerSettings expected;
    expected.keyColors[1] = {0, 1, 0};
    EXPECT_TRUE(sameSettings(node->getSettings(0), expected));

    stack().undo();
    EXPECT_TRUE(sameSettings(node->getSettings(0), before));
    dg->resetDegrain();
    EXPECT_EQ(stack().getUndoName(), "Reset Screen Degrain");
    EXPECT_FALSE(node->getSettings(0).degrainOn);
    sb->resetSpillBlend();
    EXPECT_EQ(stack().getUndoName(), "Reset Spill & Blend");
    EXPECT_EQ(node->getSettings(0).blend[0], 0.0);
}

TEST_F(KeyerScene, KeyColourTogglesGoWhenBothKeyColoursAreLocked) {
    EXPECT_FALSE(dg->hasNoKeyColorToggles());
    mg->getKeyColorInput(TsTypes::KeyColor1)->setLocked(true);
    EXPECT_FALSE(sb->hasNoKeyColorToggles());
    mg->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
    EXPECT_TRUE(sb->hasNoKeyColorToggles());
}

TEST_F(KeyerScene, SettingsFollowAnimationOverTime) {
    PiTypedAnimInput<CoRgbColorTyped<float>> key(mg->getKeyColorInput(TsTypes::KeyColor1));
    key.setKey(0.0, {0.0f, 1.0f, 0.0f});
    key.setKey(10.0, {0.0f, 0.0f, 1.0f});
    PiTypedAnimInput<bool>(dg->getDegrainInput()).setKey(5.0, true);
    PiTypedAnimInput<bool>(dg->getDegrainInput()).setKey(0.0, false);
    const TsKeyerSettings at2 = node->getSettings(2.5);
    // Smooth keys ease out of the first: a quarter of the way, 3/4^2 - 2/4^3.
    EXPECT_FLOAT_EQ(at2.keyColors[0].g, 1.0f - 0.15625f);
    EXPECT_FALSE(at2.degrainOn);
    EXPECT_TRUE(node->getSettings(5.0).degrainOn);
}

} // namespace
