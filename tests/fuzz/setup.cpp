// Keyer setups: any bytes loaded as a setup, into a keyer group or into one
// keyer node, are either refused with the file and what is wrong, changing
// nothing, or loaded as at most one undo step that undo takes back exactly
// and redo puts back; what was loaded saves as text that loads into a fresh
// keyer to the same text.
#include "fuzzSupport.h"

#include <pluginAPI/piGraph.h>
#include <tesseraCore/tsKeyerGroup.h>
#include <tesseraCore/tsKeyerNode.h>
#include <tesseraCore/tsSetup.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace {

const char* const Source = "fuzz.setup";

struct Keyer {
    RCShdPtr<PiGraph> graph = PiGraph::create();
    RCShdPtr<TsKeyerGroup> group;

    Keyer(int generation, int nodes) {
        group = TsKeyerGroup::create("keyer", generation, nodes);
        graph->getRoot()->addNode(group);
    }
    PiCommandStack& stack() const { return graph->getCommandStack(); }
};

// A keyer that is not at its defaults, so that a load has something to put
// back.
void edit(const Keyer& keyer) {
    const RCShdPtr<TsKeyerNode> node = keyer.group->getKeyerNode(0);
    node->getInput("overall")->setValue(0.0, PiValue(0.25));
    node->getInput("overall")->setKey(12.0, PiValue(0.75));
    node->getInput("keyColor1")->setValue(0.0, PiValue(CoRgbColorTyped<float>(0.1f, 0.7f, 0.2f)));
    node->getInput("keyColor2")->setLocked(true);
    keyer.group->getKeyerNode(1)->setName("hair");
    keyer.group->setSlotNode(2, keyer.group->getKeyerNode(1));
    keyer.stack().clear();
}

std::string text(const PiNode& keyer) {
    LiString out;
    std::string writeError;
    FUZZ_CHECK(TsSetup::write(keyer, out, writeError), "a keyer writes its setup");
    return out;
}

// Loads `setup` into `target` (the group of `keyer` or one of its nodes) and
// checks what the load did; `fresh(generation)` answers a target of the same
// kind in a keyer of its own: a group without keyer nodes (a group setup adds
// them in its order), or a node at its defaults.
template <class Fresh>
void load(const Keyer& keyer, PiNode& target, const std::string& setup, Fresh fresh) {
    PiCommandStack& stack = keyer.stack();
    const std::string before = text(target);
    const int done = stack.getUndoCount();
    LiString error;
    const bool loaded = TsSetup::read(target, setup, Source, error);
    FUZZ_CHECK(!stack.isStepOpen(), "a load leaves no step open");
    const std::string after = text(target);
    if (!loaded) {
        FUZZ_CHECK(error.rfind(Source, 0) == 0, "a refusal names the file: " << error);
        FUZZ_CHECK(after == before, "a refused setup changed the keyer (" << error << ")");
        FUZZ_CHECK(stack.getUndoCount() == done, "a refused setup made an undo step");
        return;
    }
    if (after == before) {
        return;
    }
    FUZZ_CHECK(stack.getUndoCount() == done + 1 && stack.getUndoName() == "Load Setup",
               stack.getUndoCount() - done << " steps, the last \"" << stack.getUndoName() << "\"");
    FUZZ_CHECK(stack.undo(), "the load is undone");
    FUZZ_CHECK(text(target) == before, "undo of a load gives back\n"
                                           << text(target) << "instead of\n"
                                           << before);
    FUZZ_CHECK(stack.redo(), "the load is redone");
    FUZZ_CHECK(text(target) == after, "redo of a load gives\n"
                                          << text(target) << "instead of\n"
                                          << after);

    PiNode& again = fresh(keyer.group->getGeneration());
    LiString againError;
    FUZZ_CHECK(TsSetup::read(again, after, "saved.setup", againError),
               "a saved setup loads: " << againError << "\n"
                                       << after);
    FUZZ_CHECK(text(again) == after, "a saved setup loads as\n"
                                         << text(again) << "instead of\n"
                                         << after);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::initProcess();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string setup(reinterpret_cast<const char*>(data), size);
    ExReporter::getInstance().clear();
    std::unique_ptr<Keyer> other;
    for (int generation : {1, 2}) {
        const Keyer keyer(generation, 2);
        edit(keyer);
        load(keyer, *keyer.group, setup, [&other](int g) -> PiNode& {
            other = std::make_unique<Keyer>(g, 0);
            return *other->group;
        });
    }
    const Keyer keyer(1, 2);
    edit(keyer);
    load(keyer, *keyer.group->getKeyerNode(0), setup, [&other](int g) -> PiNode& {
        other = std::make_unique<Keyer>(g, 1);
        return *other->group->getKeyerNode(0);
    });
    return 0;
}
