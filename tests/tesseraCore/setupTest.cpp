#include <pluginAPI/piGraph.h>
#include <pluginAPI/piTypedAnimInput.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsMgInterface.h>
#include <tesseraCore/tsSetup.h>

#include <base/exReporter.h>
#include <base/rcCast.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Every input of a keyer group and its keyer nodes, node references by name,
// so that two groups in different graphs compare.
struct Snapshot {
    std::vector<std::string> names;
    std::vector<PiInputState> states;
    std::vector<std::string> refs;

    bool operator==(const Snapshot& o) const {
        return names == o.names && refs == o.refs && states == o.states;
    }
};

Snapshot snapshot(const TsKeyerGroup& group) {
    Snapshot s;
    auto add = [&s, &group](const PiNode& node) {
        for (int i = 0; i < node.getInputCount(); ++i) {
            const PiInput& in = *node.getInput(i);
            s.names.push_back(node.getName() + "." + in.getName());
            if (in.getType() == PiValueType::NodeRef) {
                const RCShdPtr<PiNode> n = group.resolve(in.getTypedValue<PiNodeRef>(0));
                s.refs.push_back(n ? n->getName() : "-");
            } else {
                s.states.push_back(in.getState());
            }
        }
    };
    add(group);
    for (int i = 0; i < group.getKeyerNodeCount(); ++i) {
        add(*group.getKeyerNode(i));
    }
    return s;
}

// A keyer group of two keyer nodes with edits of every kind, and a scratch
// directory for setup files.
class SetupScene : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("tessera-setup-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer", 1, 2);
        graph->getRoot()->addNode(group);
        edit(*group);
        ExReporter::getInstance().clear();
    }
    void TearDown() override { fs::remove_all(dir); }

    static void edit(TsKeyerGroup& g) {
        auto node = g.getKeyerNode(0);
        auto mg = rcCast<TsMgInterface>(node->getController());
        PiTypedAnimInput<double> overall(mg->getMatteParamInput(TsMgTypes::Overall));
        overall.setKey(0.0, 0.125);
        overall.setKey(48.5, 1.0 / 3.0);
        mg->getMatteParamInput(TsMgTypes::Overall)->setInterpolation(PiInterpolation::Linear);
        PiTypedAnimInput<CoRgbColorTyped<float>> key(mg->getKeyColorInput(TsTypes::KeyColor1));
        key.setKey(3.0, {0.1f, 0.7f, 0.2f});
        key.setKey(9.0, {0.11f, 0.69f, 0.25f});
        mg->getKeyColorInput(TsTypes::KeyColor2)
            ->setValue(0, PiValue(CoRgbColorTyped<float>(0, 0.6f, 0)));
        mg->getKeyColorInput(TsTypes::KeyColor2)->setLocked(true);
        mg->createPatch();
        mg->createPatch();
        mg->getPatchBoxInput(1, 2, 3)->setValue(0, PiValue(-0.0625));
        PiTypedAnimInput<int>(mg->getPatchModeInput(1)).setKey(5.0, 3);
        node->getDegrainInput()->setValue(0, PiValue(true));
        node->getInput("blend.width")->setValue(0, PiValue(0.9));
        g.getKeyerNode(1)->setName("hair \"fine\"");
        g.setSlotNode(0, g.getKeyerNode(1));
        g.setSlotNode(4, RCShdPtr<PiNode>(&g));
        g.setSelectedNode(g.getKeyerNode(0));
    }

    std::string path(const std::string& name) const { return (dir / name).string(); }
    void writeFile(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    std::string readFile(const std::string& name) const {
        std::ifstream in(path(name), std::ios::binary);
        std::ostringstream os;
        os << in.rdbuf();
        return os.str();
    }
    // Loading `text` is refused with a message naming the file and `line`
    // and containing `what`, and changes nothing.
    void expectRefused(const std::string& text, int line, const std::string& what) {
        writeFile("bad.setup", text);
        const Snapshot before = snapshot(*group);
        const int steps = graph->getCommandStack().getStepCount();
        LiString error;
        EXPECT_FALSE(TsSetup::load(*group, path("bad.setup"), error));
        EXPECT_NE(error.find("bad.setup:" + std::to_string(line) + ": "), std::string::npos)
            << error;
        EXPECT_NE(error.find(what), std::string::npos) << error;
        EXPECT_TRUE(snapshot(*group) == before);
        EXPECT_EQ(graph->getCommandStack().getStepCount(), steps);
    }

    fs::path dir;
    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    std::string why; // what a save or load that should work says when it does not
};

TEST_F(SetupScene, DamagedAndForeignFilesAreRefusedWithTheirLine) {
    std::string good;
    ASSERT_TRUE(TsSetup::write(*group, good, why)) << why;
    auto replaceLine = [&good](const std::string& start, const std::string& with) {
        std::istringstream in(good);
        std::string out, line;
        int number = 0, found = 0;
        while (std::getline(in, line)) {
            ++number;
            if (!found && line.rfind(start, 0) == 0) {
                found = number;
                line = with;
            }
            out += line + "\n";
        }
        return std::make_pair(out, found);
    };
    expectRefused("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 1, "not a keyer setup");
    expectRefused("tessera-setup 4\nend\n", 1, "version 4");
    expectRefused(
        good.substr(0, good.size() / 2),
        static_cast<int>(std::count(good.begin(), good.begin() + good.size() / 2, '\n')) + 1, "");
    {
        auto [text, line] = replaceLine("input \"overall\"", "input \"overal\" double 0.5");
        expectRefused(text, line, "no input \"overal\"");
    }
    {
        auto [text, line] = replaceLine("input \"overall\"", "input \"overall\" int 1");
        expectRefused(text, line, "holds double values, not int");
    }
    {
        auto [text, line] = replaceLine(
            "input \"overall\"", "input \"overall\" double 0.5 keys 2 4 0.1 linear 2 0.3 smooth");
        expectRefused(text, line, "increasing time");
    }
    {
        auto [text, line] = replaceLine("input \"shadows\"", "input \"shadows\" double nan");
        expectRefused(text, line, "not a finite number");
    }
    {
        auto [text, line] = replaceLine("input \"slot1\"", "input \"slot1\" node \"nobody\"");
        expectRefused(text, line, "refers to node \"nobody\"");
    }
    {
        auto [text, line] = replaceLine("group", "group \"keyer\" generation 2");
        expectRefused(text, line, "generation 2");
    }
    {
        auto [text, line] =
            replaceLine("input \"patchNames\"", "input \"patchNames\" strings 2 \"a");
        expectRefused(text, line, "not closed");
    }
}

// Setups of the first version load: a node's patch inputs beyond its names
// (left by a reset) were no patches and do not come back, its keys are
// linear, and a generation 2 group's slots, six inputs of their own
// then, go into its selected-nodes value.
TEST_F(SetupScene, FirstVersionSetupsLoad) {
    writeFile("node.setup", "tessera-setup 1\nnode \"keyer1\"\npatches 3\n"
                            "input \"patchNames\" strings 1 \"A\"\n"
                            "input \"patch1.range\" double 0.25\n"
                            "input \"overall\" double 0.5 keys 2 0 0 10 1\nend\n");
    const auto node = group->getKeyerNode(0);
    ASSERT_TRUE(TsSetup::load(*node, path("node.setup"), why)) << why;
    EXPECT_EQ(node->getPatchNames(), (std::vector<std::string>{"A"}));
    EXPECT_EQ(node->getPatchInputCount(), 1);
    EXPECT_EQ(node->getPatchRangeInput(0)->getTypedValue<double>(0), 0.25);
    const PiInput& overall = *node->getMatteParamInput(TsMgTypes::Overall);
    ASSERT_EQ(overall.getKeyCount(), 2);
    EXPECT_EQ(overall.getKeys()[0].interpolation, PiInterpolation::Linear);
    EXPECT_DOUBLE_EQ(overall.getTypedValue<double>(2.5), 0.25);

    auto other = PiGraph::create();
    auto second = TsKeyerGroup::create("keyer", 2, 2);
    other->getRoot()->addNode(second);
    writeFile("group.setup", "tessera-setup 1\ngroup \"keyer\" generation 2\n"
                             "input \"slot1\" node \"keyer2\"\ninput \"slot3\" node self\n"
                             "input \"selectedNodes\" node \"keyer2\"\n"
                             "node \"keyer1\"\nnode \"keyer2\"\nend\n");
    LiString error;
    ASSERT_TRUE(TsSetup::load(*second, path("group.setup"), error)) << error;
    EXPECT_EQ(second->getSlotName(0), "keyer2");
    EXPECT_EQ(second->getSlotName(1), "");
    EXPECT_EQ(second->getSlotName(2), "keyer");
    EXPECT_EQ(second->getSelectedNode(), second->getKeyerNode(1));
}

} // namespace
