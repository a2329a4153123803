#include <pluginAPI/piGraph.h>
#include <pluginAPI/piTypedAnimInput.h>

#include <base/exBase.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// A node in a graph with one input of each animatable kind.
class AnimatedInputs : public ::testing::Test {
protected:
    void SetUp() override {
        graph = PiGraph::create();
        node = rcMake<PiNode>("node");
        amount = rcMake<PiInput>("amount", PiValue(0.5));
        mode = rcMake<PiInput>("mode", PiValue(0));
        colour = rcMake<PiStructuredInput>("colour", CoRgbColorTyped<float>(0, 0, 0));
        names = rcMake<PiInput>("names", PiValue(PiStringList{}));
        for (const auto& in : {amount, mode, RCShdPtr<PiInput>(colour), names}) {
            node->addInput(in);
        }
        graph->getRoot()->addNode(node);
    }

    RCShdPtr<PiGraph> graph;
    RCShdPtr<PiNode> node;
    RCShdPtr<PiInput> amount, mode, names;
    RCShdPtr<PiStructuredInput> colour;
};

TEST_F(AnimatedInputs, WithoutKeysAWriteAtAnyTimeSetsTheValueAtEveryTime) {
    PiTypedAnimInput<double> a(amount);
    EXPECT_TRUE(a.setValue(12.0, 0.25));
    EXPECT_FALSE(amount->hasKeys());
    EXPECT_EQ(a.getValue(-100.0), 0.25);
    EXPECT_EQ(a.getValue(1e6), 0.25);
}

// Between two keys a smooth curve eases out of the first and into the second:
// a + (b - a) (3 s^2 - 2 s^3) at a fraction s of the way.
double eased(double a, double b, double s) {
    return a + (b - a) * (3 * s * s - 2 * s * s * s);
}

TEST_F(AnimatedInputs, KeysInterpolateAndHoldOutsideTheirSpan) {
    PiTypedAnimInput<double> a(amount);
    ASSERT_TRUE(a.setKey(10.0, 0.2));
    ASSERT_TRUE(a.setKey(20.0, 0.6));
    EXPECT_DOUBLE_EQ(a.getValue(15.0), 0.4);
    EXPECT_DOUBLE_EQ(a.getValue(12.5), eased(0.2, 0.6, 0.25));
    EXPECT_EQ(a.getValue(10.0), 0.2);
    EXPECT_EQ(a.getValue(20.0), 0.6);
    EXPECT_EQ(a.getValue(0.0), 0.2);
    EXPECT_EQ(a.getValue(99.0), 0.6);
    EXPECT_TRUE(amount->setInterpolation(PiInterpolation::Linear));
    EXPECT_DOUBLE_EQ(a.getValue(12.5), 0.3);
    // With keys a write at a time sets (or adds) the key there; the key that
    // was there keeps its interpolation, a new one is smooth.
    EXPECT_TRUE(a.setValue(15.0, 1.0));
    EXPECT_EQ(amount->getKeyCount(), 3);
    EXPECT_EQ(a.getValue(15.0), 1.0);
    EXPECT_TRUE(a.setValue(20.0, 0.0));
    EXPECT_EQ(amount->getKeyCount(), 3);
    EXPECT_DOUBLE_EQ(a.getValue(12.5), 0.6) << "linear from the key at 10";
    EXPECT_DOUBLE_EQ(a.getValue(17.5), eased(1.0, 0.0, 0.5));
}

TEST_F(AnimatedInputs, SmoothCurvesPassTheirKeysWithoutKinksOrOvershoot) {
    PiTypedAnimInput<double> a(amount);
    for (const auto& [t, v] : {std::pair{0.0, 0.0}, {10.0, 0.9}, {14.0, 1.0}, {30.0, 0.2}}) {
        ASSERT_TRUE(a.setKey(t, v));
    }
    double previous = a.getValue(0.0);
    for (double t = 0.25; t <= 30.0; t += 0.25) {
        const double v = a.getValue(t);
        EXPECT_GE(v, 0.0) << t;
        EXPECT_LE(v, 1.0) << t;
        if (t <= 14.0) {
            EXPECT_GE(v, previous) << "rising keys rise all the way, at " << t;
        }
        previous = v;
    }
    // The slope is continuous through the key at 10.
    const double h = 1e-4;
    const double left = (a.getValue(10.0) - a.getValue(10.0 - h)) / h;
    const double right = (a.getValue(10.0 + h) - a.getValue(10.0)) / h;
    EXPECT_NEAR(left, right, 1e-3);
    EXPECT_GT(left, 0.0);
}

TEST_F(AnimatedInputs, IntegersHoldTheLastKeyColoursInterpolate) {
    PiTypedAnimInput<int> m(mode);
    m.setKey(0.0, 1);
    m.setKey(10.0, 3);
    EXPECT_EQ(m.getValue(9.99), 1);
    EXPECT_EQ(m.getValue(10.0), 3);

    PiTypedAnimInput<CoRgbColorTyped<float>> c(colour);
    c.setKey(0.0, {0.0f, 0.2f, 1.0f});
    c.setKey(4.0, {1.0f, 0.6f, 0.0f});
    const auto mid = c.getValue(1.0);
    EXPECT_FLOAT_EQ(mid.r, static_cast<float>(eased(0.0, 1.0, 0.25)));
    EXPECT_FLOAT_EQ(mid.g, static_cast<float>(eased(0.2, 0.6, 0.25)));
    EXPECT_FLOAT_EQ(mid.b, static_cast<float>(eased(1.0, 0.0, 0.25)));
}

TEST_F(AnimatedInputs, RemovingTheLastKeyKeepsItsValueAsTheConstant) {
    PiTypedAnimInput<double> a(amount);
    a.setKey(1.0, 0.1);
    a.setKey(5.0, 0.9);
    EXPECT_FALSE(a.removeKey(3.0));
    EXPECT_TRUE(a.removeKey(1.0));
    EXPECT_TRUE(a.removeKey(5.0));
    EXPECT_FALSE(amount->hasKeys());
    EXPECT_EQ(a.getValue(0.0), 0.9);
}

TEST_F(AnimatedInputs, LockedNonFiniteAndNonAnimatableWritesAreRefused) {
    PiTypedAnimInput<double> a(amount);
    amount->setLocked(true);
    EXPECT_FALSE(a.setValue(0.0, 0.1));
    EXPECT_FALSE(a.setKey(0.0, 0.1));
    EXPECT_EQ(a.getValue(0.0), 0.5);
    amount->setLocked(false);
    EXPECT_FALSE(a.setValue(0.0, std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(a.setValue(0.0, std::numeric_limits<double>::infinity()));
    EXPECT_EQ(a.getValue(0.0), 0.5);
    EXPECT_FALSE(colour->setValue(0.0, PiValue(CoRgbColorTyped<float>(0.f, std::nanf(""), 0.f))));
    EXPECT_FALSE(names->setKey(0.0, PiValue(PiStringList{"a"})));
    EXPECT_TRUE(names->setValue(3.0, PiValue(PiStringList{"a"})));
    EXPECT_FALSE(names->hasKeys());
}

TEST_F(AnimatedInputs, RangePoliciesClampWrites) {
    amount->setPolicy(RCShdPtr<const PiInputPolicy>(new PiRangeInputPolicy<double>(0.0, 1.0)));
    PiTypedAnimInput<double> a(amount);
    EXPECT_TRUE(a.setValue(0.0, 1.7));
    EXPECT_EQ(a.getValue(0.0), 1.0);
    EXPECT_TRUE(a.setKey(2.0, -3.0));
    EXPECT_EQ(a.getValue(2.0), 0.0);
}

TEST_F(AnimatedInputs, SetStateChecksWhatItIsGiven) {
    PiInputState state;
    state.constant = 0.3;
    state.keys = {{2.0, PiValue(0.1)}, {1.0, PiValue(0.2)}};
    EXPECT_FALSE(amount->setState(state)) << "keys out of order";
    state.keys = {{1.0, PiValue(0.1)}, {2.0, PiValue(4)}};
    EXPECT_FALSE(amount->setState(state)) << "a key of the wrong kind";
    state.keys = {{1.0, PiValue(0.1)}, {2.0, PiValue(0.7)}};
    state.locked = true;
    EXPECT_TRUE(amount->setState(state));
    EXPECT_TRUE(amount->getState() == state);
    // A locked input takes a whole state all the same (a setup being loaded).
    state.keys.clear();
    EXPECT_TRUE(amount->setState(state));
    EXPECT_EQ(amount->getTypedValue<double>(9.0), 0.3);
}

} // namespace
