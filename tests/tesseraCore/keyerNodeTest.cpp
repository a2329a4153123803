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

} // namespace
