// The keyer group's main panel, in both generations, on the host's panel
// built from the real panel description.
#include "keyerPanelScene.h"
#include "tsMgUi.h"

#include <gfx/wsFontUtils.h>
#include <tesseraCore/tsDgTool.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsInterface3.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsNodeSelectChangedEvent.h>
#include <tesseraCore/tsSpillBlendTool.h>
#include <ui/uiPanelDescription.h>

namespace {

class MainPanel : public ::testing::TestWithParam<int>, public KeyerPanelScene {
protected:
    void SetUp() override { build(GetParam()); }
    void TearDown() override { tearDown(); }

    bool firstGeneration() const { return GetParam() == 1; }

    // The node every area shows; empty when the areas disagree or show none.
    RCShdPtr<PiNode> shown() const {
        RCShdPtr<PiNode> node = area("tsMatteGen")->getNode();
        for (const char* name : {"tsDegrain", "tsSpillBlend", "tsOtherUi"}) {
            if (!PiGraphObject::areEqual(area(name)->getNode(), node)) {
                return RCShdPtr<PiNode>();
            }
        }
        return node;
    }
    std::string shownName() const {
        const RCShdPtr<PiNode> node = shown();
        return node ? node->getName() : std::string("-");
    }
    RCShdPtr<PiNode> selected() const {
        const auto first = SnSelection::getCurrent()->first();
        const auto* item = dynamic_cast<const PiSnItem<PiNode>*>(first.get());
        return item ? item->get() : RCShdPtr<PiNode>();
    }
};

INSTANTIATE_TEST_SUITE_P(BothGenerations, MainPanel, ::testing::Values(1, 2), generationName);

TEST_P(MainPanel, ShowsTheSelectedKeyerNodeAndLightsItsSlot) {
    ASSERT_TRUE(panel->getController());
    EXPECT_EQ(shownName(), "-");
    EXPECT_EQ(slotOn(), -1);
    EXPECT_TRUE(showsName(0, "keyer1"));
    EXPECT_TRUE(showsName(1, "keyer2"));
    EXPECT_TRUE(showsName(2, ""));

    select(keyers[1]);
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);
    // The matte-generation area holds the module's panel for that node.
    EXPECT_TRUE(dynamic_cast<TsMgUi*>(area("tsMatteGen")->getContent().controller.get()));

    select(keyers[2]);
    EXPECT_EQ(shownName(), "keyer3");
    EXPECT_EQ(slotOn(), -1);

    select(keyers[0]);
    EXPECT_EQ(shownName(), "keyer1");
    EXPECT_EQ(slotOn(), 0);
}

TEST_P(MainPanel, WithNoNodeOfTheGroupSelectedItShowsTheKeyersSelectedNode) {
    group->setSelectedNode(keyers[1]);
    settle();
    EXPECT_EQ(shownName(), "keyer2");
    EXPECT_EQ(slotOn(), 1);

    // The application's selection comes first.
    select(keyers[0]);
    group->setSelectedNode(keyers[2]);
    settle();
    EXPECT_EQ(shownName(), "keyer1");
    EXPECT_EQ(slotOn(), 0);

    // A boundary node is a node of generation 2's panel only.
    select(stranger);
    SnSelection::getCurrent()->clear();
    group->setSelectedNode(group->getInputNode());
    settle();
    if (firstGeneration()) {
        EXPECT_EQ(shownName(), "keyer1");
    } else {
        EXPECT_FALSE(area("tsMatteGen")->hasContent());
        EXPECT_EQ(slotOn(), -1);
    }
}

} // namespace
