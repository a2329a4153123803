// Panel descriptions with a widget missing or of the wrong kind: the panel's
// controller is not made, and the host reports once what was wrong, naming
// the widget (and both kinds).
#include "keyerPanelScene.h"
#include "support/takeReports.h"
#include "support/testTemp.h"

#include <tesseraCore/tsDgInterface.h>
#include <tesseraCore/tsInterface.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSpillBlendInterface.h>
#include <ui/uiNodeWidgetFactory.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

using Factory = RCShdPtr<RCBase<LkCounter<int>>> (*)(const RCShdPtr<PiNode>&,
                                                     const RCShdPtr<PiWidget>&,
                                                     const RCShdPtr<const PiTimePath>&);

template <class Interface>
RCShdPtr<RCBase<LkCounter<int>>> stagePanel(const RCShdPtr<PiNode>& node,
                                            const RCShdPtr<PiWidget>& widget,
                                            const RCShdPtr<const PiTimePath>& time) {
    return rcCast<Interface>(node->getController())->createUi(widget, time);
}

RCShdPtr<RCBase<LkCounter<int>>> mainPanel(const RCShdPtr<PiNode>& node,
                                           const RCShdPtr<PiWidget>& widget,
                                           const RCShdPtr<const PiTimePath>& time) {
    return TsInterface::createInstanceData(widget, rcCast<PiGroupNode>(node), time);
}

struct Edit {
    const char* file;
    Factory factory;
    const char* from;
    const char* to;
    const char* report;
};

void PrintTo(const Edit& e, std::ostream* os) {
    *os << e.file << ": " << e.report;
}

class PanelDescriptions : public ::testing::TestWithParam<Edit>, public KeyerPanelScene {
protected:
    void SetUp() override { build(1); }
    void TearDown() override {
        edited.reset();
        UiNodeWidgetFactory::unregister("edited");
        tearDown();
    }
    std::unique_ptr<UiPanel> edited;
};

TEST_P(PanelDescriptions, AreRefusedNamingTheWidget) {
    const Edit& e = GetParam();
    std::ifstream in(std::string(std::getenv("TESSERA_SOURCE_DIR")) + "/tools/tessera/resources/" +
                     e.file);
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const auto at = text.find(e.from);
    ASSERT_NE(at, std::string::npos) << e.from;
    text.replace(at, std::string(e.from).size(), e.to);
    const std::string path = testTempPath(std::string("tesseraEdited") + e.file);
    std::ofstream(path) << text;
    UiNodeWidgetFactory::registerStage("edited", path, nullptr, e.factory);
    const RCShdPtr<PiNode> node = e.factory == &mainPanel ? RCShdPtr<PiNode>(group) : keyers[1];
    edited = std::make_unique<UiPanel>("edited");
    edited->setStage("edited", node, timePathOf(node));
    EXPECT_FALSE(edited->getController());
    const std::vector<std::string> reports = takeReports();
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports[0].find(e.report), std::string::npos) << reports[0];
}

INSTANTIATE_TEST_SUITE_P(
    Edited, PanelDescriptions,
    ::testing::Values(
        Edit{"tsMainPanel.ui", &mainPanel, R"(name="nodeSelectLabel3")", R"(name="slotLabel3")",
             "PiLabel 'nodeSelectLabel3'"},
        Edit{"tsMainPanel.ui", &mainPanel, R"(<widget class="UiNodeWidgetArea" name="tsDegrain">)",
             R"(<widget class="QLabel" name="tsDegrain">)",
             "UiLabel 'tsDegrain' is not a PiNodeWidget"},
        Edit{"tsMatteGenPanel.ui", &stagePanel<TsMgInterface>, R"(name="keyColor2Toggle")",
             R"(name="pick2")", "PiDualState 'keyColor2Toggle'"},
        Edit{"tsMatteGenPanel.ui", &stagePanel<TsMgInterface>,
             R"(<widget class="QComboBox" name="patchSelectMenu">)",
             R"(<widget class="QLabel" name="patchSelectMenu">)",
             "UiLabel 'patchSelectMenu' is not a PiMenu"},
        Edit{"tsDegrainPanel.ui", &stagePanel<TsDgInterface>, R"(name="keyColor2Toggle")",
             R"(name="pick2")", "PiDualState 'keyColor2Toggle'"},
        Edit{"tsSpillBlendPanel.ui", &stagePanel<TsSpillBlendInterface>,
             R"(<widget class="UiTrackballWidget" name="spillEdgeBalance">)",
             R"(<widget class="QLabel" name="spillEdgeBalance">)",
             "UiLabel 'spillEdgeBalance' is not a PiTrackball"}));

} // namespace
