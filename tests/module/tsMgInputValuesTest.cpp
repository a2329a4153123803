#include "tsMgInputValues.h"

#include <base/cbMethod.h>
#include <base/exBase.h>
#include <base/rcCast.h>
#include <pluginAPI/piGraph.h>
#include <tesseraCore/tsKeyerGroup.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>
#include <vector>

namespace {

// A handler of parameter broadcasts that logs (id, parameter) and may act
// inside its callback.
struct Listener : CbHandler<const TsMgTypes::MatteParam> {
    Listener(std::vector<int>& log, int id)
        : log(log)
        , id(id) {}
    void callback(const TsMgTypes::MatteParam& p) override {
        log.push_back(10 * id + p);
        if (action) {
            action();
        }
    }
    std::vector<int>& log;
    int id;
    std::function<void()> action;
};

// A keyer node in a graph, seen at frame 10 of a time client, with its value
// holder.
class MatteValues : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        group = TsKeyerGroup::create("keyer");
        graph->getRoot()->addNode(group);
        node = group->getKeyerNode(0);
        mg = rcCast<TsMgInterface>(node->getController());
        clock = std::make_unique<TmTimeClient>(10.0);
        timePath = RCShdPtr<const PiTimePath>(
            new PiTimePath(clock.get(), RCShdPtr<const PiPath>(new PiPath(node))));
        values =
            RCShdPtr<TsMgInputValues>(new TsMgInputValues(RCWeakPtr<TsMgInterface>(mg), timePath));
    }
    void write(TsMgTypes::MatteParam p, double v) {
        mg->getMatteParamInput(p)->setValue(clock->getTime(), PiValue(v));
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<TsKeyerGroup> group;
    RCShdPtr<TsKeyerNode> node;
    RCShdPtr<TsMgInterface> mg;
    std::unique_ptr<TmTimeClient> clock;
    RCShdPtr<const PiTimePath> timePath;
    RCShdPtr<TsMgInputValues> values;
    std::vector<int> log;
};

TEST_F(MatteValues, ChangesAreBroadcastToHandlersInRegistrationOrder) {
    Listener a(log, 1), b(log, 2), c(log, 3);
    values->getDispatcher().addHandler(&b);
    values->getDispatcher().addHandler(&a);
    values->getDispatcher().addHandler(&c);
    values->getDispatcher().addHandler(&a); // once only
    write(TsMgTypes::DeepHueMinus, 0.7);
    EXPECT_EQ(log, (std::vector<int>{24, 14, 34}));
    log.clear();
    write(TsMgTypes::KeyBlend, 0.5);
    EXPECT_EQ(log, (std::vector<int>{28, 18, 38}));
    // The view is up to date once the broadcast is over.
    EXPECT_FALSE(values->getParamValue(TsMgTypes::KeyBlend)->needsUpdate());
    EXPECT_EQ(values->getValue(TsMgTypes::KeyBlend), 0.5f);
}

TEST_F(MatteValues, UndoAndRedoAreBroadcastLikeEdits) {
    Listener a(log, 1);
    values->getDispatcher().addHandler(&a);
    {
        PiUndoGuard step(graph->getCommandStack(), "Two parameters");
        EXPECT_TRUE(values->setValue(TsMgTypes::Shadows, 0.2));
        EXPECT_TRUE(values->setValue(TsMgTypes::Highlights, 0.9));
    }
    graph->getCommandStack().undo();
    graph->getCommandStack().redo();
    EXPECT_EQ(log, (std::vector<int>{11, 12, 12, 11, 11, 12}));
}

TEST_F(MatteValues, BroadcastsWorkOnASnapshotOfTheHandlers) {
    Listener a(log, 1), b(log, 2), late(log, 3);
    values->getDispatcher().addHandler(&a);
    values->getDispatcher().addHandler(&b);
    a.action = [&] {
        values->getDispatcher().removeHandler(&b);
        values->getDispatcher().addHandler(&late);
    };
    write(TsMgTypes::Overall, 0.1);
    EXPECT_EQ(log, (std::vector<int>{10}));
    a.action = nullptr;
    log.clear();
    write(TsMgTypes::Overall, 0.2);
    EXPECT_EQ(log, (std::vector<int>{10, 30}));
}

TEST_F(MatteValues, TheBlendedKeyColourMixesTheKeyColoursByParameterEight) {
    values->getKeyColor(0)->setValue({1.0f, 0.2f, 0.4f});
    values->getKeyColor(1)->setValue({0.2f, 0.6f, 1.0f});
    EXPECT_EQ(values->getBlendedKeyColor(), CoRgbColorTyped<float>(1.0f, 0.2f, 0.4f));
    values->setValue(TsMgTypes::KeyBlend, 0.25);
    const CoRgbColorTyped<float> mixed = values->getBlendedKeyColor();
    EXPECT_FLOAT_EQ(mixed.r, 0.8f);
    EXPECT_FLOAT_EQ(mixed.g, 0.3f);
    EXPECT_FLOAT_EQ(mixed.b, 0.55f);
}

} // namespace
