#include "gfxScene.h"

#include <gfx/mfRangeManipulator.h>
#include <gfx/mfTransientToolToolset.h>
#include <pluginAPI/piCommandStack.h>
#include <pluginAPI/piInputValue.h>

#include <base/cbMethod.h>
#include <base/exBase.h>

namespace {

// A tool whose one bar (at the world origin, 80 window pixels wide: the
// world's 8 at the scene's zoom) writes the amount while dragged.
class BarTool : public MfTool {
public:
    explicit BarTool(const RCShdPtr<PiInput>& input)
        : bar(new MfRangeManipulator(GeRectangle<float>(0, 80, 0, 10), "bar"))
        , value(PiInputValue<double>::createTyped(input, nullptr)) {
        addManipulator(bar);
    }
    void monitorManipulation(const PiEventContext&) override {
        value->setValue(bar->getValue() / 80.0);
    }

    RCShdPtr<MfRangeManipulator> bar;
    RCShdPtr<PiInputValue<double>> value;
};

// A handler with four tools, "pick 1" and "pick 2" transient.
class ToolsetScene : public GfxScene {
protected:
    void SetUp() override {
        GfxScene::SetUp();
        plain = rcMake<MfToolset>(viewer);
        transient = rcMake<MfTransientToolToolset>(viewer, plain, "pick 1", "pick 2");
        handler = rcMake<MfCurrentToolEventHandler>(transient);
        for (const char* name : {"pick 1", "pick 2", "sample", "adjust"}) {
            tools[name] = rcMake<BarTool>(amount);
            handler->appendTool(name, tools[name]);
        }
        handler->addToolChangedCb(&changed);
        viewer.handler = handler;
    }

    void drag(float fromX, float toX) {
        auto p = press(at(fromX, 0.5f));
        viewer.deliver(p);
        auto m = move(at(toX, 0.5f));
        viewer.deliver(m);
        auto r = release(at(toX, 0.5f));
        viewer.deliver(r);
    }

    RCShdPtr<MfToolset> plain;
    RCShdPtr<MfTransientToolToolset> transient;
    RCShdPtr<MfCurrentToolEventHandler> handler;
    std::map<std::string, RCShdPtr<BarTool>> tools;
    int changes = 0;
    struct Counter {
        int* n;
        void count() { ++*n; }
    } counter{&changes};
    CbMethod<Counter, CbEmptyType> changed{&counter, &Counter::count};
};

TEST_F(ToolsetScene, ASetStartsOnItsLastToolAppendedThatIsNotTransient) {
    // Never on a pick nobody asked for.
    EXPECT_EQ(handler->getCurrentTool(), "adjust");
    // A handler that joins hears of the current tool at once.
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(handler->getCurrentMfTool(), tools["adjust"]);
    EXPECT_EQ(handler->getToolset()->getToolNames(),
              (std::vector<std::string>{"pick 1", "pick 2", "sample", "adjust"}));
}

TEST_F(ToolsetScene, ATransientToolReturnsToThePreviousToolAfterOneManipulation) {
    changes = 0;
    handler->setCurrentTool("sample");
    handler->setCurrentTool("pick 2");
    EXPECT_EQ(transient->getReturnTool(), "sample");
    EXPECT_EQ(changes, 2);

    auto p = press(at(1.0f, 0.5f));
    viewer.deliver(p);
    EXPECT_EQ(handler->getCurrentTool(), "pick 2"); // not before the release
    auto r = release(at(1.0f, 0.5f));
    viewer.deliver(r);
    EXPECT_EQ(handler->getCurrentTool(), "sample");
    EXPECT_EQ(changes, 3);

    // The other tool stays current after its manipulations.
    drag(2.0f, 6.0f);
    EXPECT_EQ(handler->getCurrentTool(), "sample");
    EXPECT_NEAR(amount->getTypedValue<double>(0.0), 0.75, 1e-6);
}

TEST_F(ToolsetScene, ChangingToolsDuringADragEndsTheDragAndItsStep) {
    handler->setCurrentTool("sample");
    auto p = press(at(1.0f, 0.5f));
    viewer.deliver(p);
    auto m = move(at(7.0f, 0.5f));
    viewer.deliver(m);
    EXPECT_TRUE(handler->isManipulating());
    EXPECT_TRUE(stack().isStepOpen());
    handler->setCurrentTool("adjust");
    EXPECT_FALSE(tools["sample"]->isManipulating());
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 1);
    // The release that follows goes to the new tool, which has nothing to
    // release.
    auto r = release(at(7.0f, 0.5f));
    viewer.deliver(r);
    EXPECT_FALSE(tools["adjust"]->isManipulating());
    EXPECT_EQ(stack().getStepCount(), 1);
}

TEST_F(ToolsetScene, DestroyingTheHandlerDuringADragClosesTheStep) {
    handler->setCurrentTool("sample");
    auto p = press(at(1.0f, 0.5f));
    viewer.deliver(p);
    auto m = move(at(5.0f, 0.5f));
    viewer.deliver(m);
    viewer.handler.reset();
    handler.reset();
    transient.reset();
    tools.clear();
    plain.reset();
    EXPECT_FALSE(stack().isStepOpen());
    EXPECT_EQ(stack().getStepCount(), 1);
}

} // namespace
