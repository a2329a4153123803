#include <tesseraUtil/tsUtils.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace {

using Rgba = CoRgbaColorTyped<float>;
using Box = CoAffineMatrixTyped<float>;

CoRgbColorTyped<float> inCube(const Box& box, const Rgba& c) {
    return box.transform(c.r, c.g, c.b);
}

// Colours as a sample-patch drag over a grainy green screen and the edge of a
// skin-toned subject would pick them: a few thousand distinct values, each
// picked several times.
class PickedColours : public ::testing::Test {
protected:
    void SetUp() override {
        std::mt19937 rng(7);
        std::normal_distribution<float> grain(0.0f, 0.01f);
        for (int i = 0; i < 3000; ++i) {
            const float mix = (i % 10) / 9.0f;
            distinct.append({0.1f + 0.5f * mix + grain(rng), 0.5f - 0.1f * mix + grain(rng),
                             0.12f + 0.2f * mix + grain(rng), 1.0f});
        }
        for (int pass = 0; pass < 4; ++pass) {
            for (std::size_t i = pass; i < distinct.size(); i += 3) {
                picked.append(distinct[i]);
            }
        }
    }

    List<Rgba> distinct;
    List<Rgba> picked;
};

TEST_F(PickedColours, UniqueColoursKeepTheOrderOfFirstAppearance) {
    const Vector<Rgba> unique = TsUtils::makeUnique(picked);
    // Pass p picks every third colour from index p; pass 3 only repeats
    // colours already seen. So the order is 0, 3, 6, ..., then 1, 4, ...,
    // then 2, 5, ...
    ASSERT_EQ(unique.size(), distinct.size());
    std::size_t k = 0;
    for (std::size_t start = 0; start < 3; ++start) {
        for (std::size_t i = start; i < distinct.size(); i += 3, ++k) {
            ASSERT_EQ(unique[k], distinct[i]) << "at " << k;
        }
    }
}

TEST_F(PickedColours, FittedBoxHoldsEveryColourAndTouchesTheExtremes) {
    const Box box = TsUtils::computeMinimalBoxMatrix(TsUtils::makeUnique(picked));
    ASSERT_NE(box, Box::IDENTITY);
    std::array<float, 3> lo{1, 1, 1}, hi{-1, -1, -1};
    for (const Rgba& c : picked) {
        const auto q = inCube(box, c);
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_LE(std::fabs(q[axis]), 1.0f);
            lo[axis] = std::min(lo[axis], q[axis]);
            hi[axis] = std::max(hi[axis], q[axis]);
        }
    }
    // Tight: the extreme colours lie on the faces.
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(lo[axis], -1.0f, 1e-4f);
        EXPECT_NEAR(hi[axis], 1.0f, 1e-4f);
    }
}

TEST(TsUtilsUnique, EqualValuesAreOneColourWhateverTheirBits) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    List<Rgba> colours{{0.0f, 0.5f, 0.1f, 1.0f}, {-0.0f, 0.5f, 0.1f, 1.0f}, // 0 and -0
                       {0.0f, 0.5f, 0.1f, 0.5f},                            // differs in alpha only
                       {nan, 0.0f, 0.0f, 1.0f},  {nan, 0.0f, 0.0f, 1.0f},
                       {0.0f, 0.5f, 0.1f, 1.0f}};
    const Vector<Rgba> unique = TsUtils::makeUnique(colours);
    ASSERT_EQ(unique.size(), 3u);
    EXPECT_EQ(unique[0], colours[0]);
    EXPECT_EQ(unique[1], colours[2]);
    EXPECT_TRUE(std::isnan(unique[2].r));
    EXPECT_TRUE(TsUtils::makeUnique({}).empty());
}

TEST(TsUtilsUnique, ManyDistinctColoursAreAllKept) {
    // More colours than the table's first batch and a colliding pattern of
    // low bits: every value differs only in its top bits.
    List<Rgba> colours;
    for (int i = 0; i < 100000; ++i) {
        colours.append({static_cast<float>(i), 1.0f, 0.0f, 1.0f});
        colours.append({static_cast<float>(i), 1.0f, 0.0f, 1.0f});
    }
    const Vector<Rgba> unique = TsUtils::makeUnique(colours);
    ASSERT_EQ(unique.size(), 100000u);
    EXPECT_EQ(unique[99999].r, 99999.0f);
}

TEST(TsUtilsBox, OneColourGetsASmallRegularBoxAroundIt) {
    const Rgba c{0.2f, 0.6f, 0.1f, 1.0f};
    const Box box = TsUtils::computeMinimalBoxMatrix({c, c});
    const auto centre = inCube(box, c);
    EXPECT_NEAR(centre.r, 0.0f, 1e-5f);
    EXPECT_NEAR(centre.g, 0.0f, 1e-5f);
    EXPECT_NEAR(centre.b, 0.0f, 1e-5f);
    // The face lies MinHalfExtent away (and a hair more).
    const float h = TsUtils::MinHalfExtent;
    EXPECT_NEAR(inCube(box, {c.r + h, c.g, c.b, 1}).r, 1.0f, 1e-3f);
    EXPECT_NEAR(inCube(box, {c.r, c.g - h, c.b, 1}).g, -1.0f, 1e-3f);
    Box inverse;
    EXPECT_TRUE(box.computeInverse(inverse));
}

TEST(TsUtilsBox, ZeroSizeOnOneAxisOnly) {
    // A flat blue channel: the other two axes are fitted exactly.
    const Box box = TsUtils::computeMinimalBoxMatrix(
        {{0.0f, 0.2f, 0.3f, 1.0f}, {0.4f, 0.6f, 0.3f, 1.0f}, {0.2f, 0.4f, 0.3f, 1.0f}});
    EXPECT_NEAR(box.get(0, 0), 5.0f, 1e-4f);
    EXPECT_NEAR(box.get(1, 1), 5.0f, 1e-4f);
    EXPECT_NEAR(box.get(2, 2), 1.0f / TsUtils::MinHalfExtent, 1.0f);
    EXPECT_NEAR(inCube(box, {0.4f, 0.6f, 0.3f, 1.0f}).r, 1.0f, 1e-4f);
    EXPECT_NEAR(inCube(box, {0.4f, 0.6f, 0.3f, 1.0f}).b, 0.0f, 1e-4f);
}

TEST(TsUtilsBox, NoUsableColourMeansNoBox) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(TsUtils::computeMinimalBoxMatrix({}), Box::IDENTITY);
    EXPECT_EQ(TsUtils::computeMinimalBoxMatrix({{inf, 0, 0, 1}}), Box::IDENTITY);
    // A non-finite colour among good ones is skipped.
    const Box box = TsUtils::computeMinimalBoxMatrix({{inf, 0, 0, 1}, {0.5f, 0.5f, 0.5f, 1}});
    EXPECT_NEAR(inCube(box, {0.5f, 0.5f, 0.5f, 1}).r, 0.0f, 1e-5f);
}

TEST(TsUtilsBox, AFittedBoxIsNeverTheIdentity) {
    // The unit cube itself: the fit must still answer "a box".
    const Box box = TsUtils::computeMinimalBoxMatrix({{-1, -1, -1, 1}, {1, 1, 1, 1}});
    EXPECT_NE(box, Box::IDENTITY);
    EXPECT_NEAR(box.get(0, 0), 1.0f, 1e-5f);
    EXPECT_NE(TsUtils::avoidIdentity(Box::IDENTITY), Box::IDENTITY);
    EXPECT_LT(TsUtils::avoidIdentity(Box::IDENTITY)[0], 1.0f);
    const Box other = TsUtils::computeMinimalBoxMatrix({{0, 0, 0, 1}, {1, 1, 1, 1}});
    EXPECT_EQ(TsUtils::avoidIdentity(other), other);
}

TEST(TsUtilsBox, ExtremeColoursStayInsideAtLargeMagnitudes) {
    // Bright, narrow boxes stress float rounding of the translation.
    std::mt19937 rng(11);
    std::uniform_real_distribution<float> spread(0.0f, 0.003f);
    Vector<Rgba> colours;
    for (int i = 0; i < 1000; ++i) {
        colours.append({40.0f + spread(rng), 12.0f + spread(rng), 7.0f, 1.0f});
    }
    const Box box = TsUtils::computeMinimalBoxMatrix(colours);
    for (const Rgba& c : colours) {
        EXPECT_LE(TsUtils::boxDistance(box, c.r, c.g, c.b), 1.0f);
    }
}

TEST(TsUtilsArrange, BoxIsCentredOnTheKeyColourAndStillHoldsTheSample) {
    const CoRgbColorTyped<float> key{0.1f, 0.5f, 0.1f};
    // Grain sampled on one side of the key colour.
    Vector<Rgba> grain{
        {0.10f, 0.50f, 0.10f, 1}, {0.13f, 0.55f, 0.12f, 1}, {0.12f, 0.53f, 0.11f, 1}};
    const Box box = TsUtils::computeMinimalBoxMatrix(grain);
    const Box arranged = TsUtils::arrangeMatrixForPatchEdge(key, box);
    const auto k = arranged.transform(key);
    EXPECT_NEAR(k.r, 0.0f, 1e-5f);
    EXPECT_NEAR(k.g, 0.0f, 1e-5f);
    EXPECT_NEAR(k.b, 0.0f, 1e-5f);
    for (const Rgba& c : grain) {
        EXPECT_LE(TsUtils::boxDistance(arranged, c.r, c.g, c.b), 1.0f + 1e-5f);
    }
    // And the mirror image of the far corner about the key colour.
    EXPECT_NEAR(TsUtils::boxDistance(arranged, 0.07f, 0.45f, 0.08f), 1.0f, 1e-3f);
    EXPECT_GT(TsUtils::boxDistance(arranged, 0.06f, 0.5f, 0.1f), 1.0f);
}

TEST(TsUtilsArrange, NoBoxStaysNoBox) {
    EXPECT_EQ(TsUtils::arrangeMatrixForPatchEdge({0.1f, 0.5f, 0.1f}, Box::IDENTITY), Box::IDENTITY);
    // A box centred on the origin around a black key: the key is already the
    // centre, the box is unchanged.
    const Box box =
        TsUtils::computeMinimalBoxMatrix({{-0.1f, -0.1f, -0.1f, 1}, {0.1f, 0.1f, 0.1f, 1}});
    const Box arranged = TsUtils::arrangeMatrixForPatchEdge({0, 0, 0}, box);
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(arranged[i], box[i], 1e-3f);
    }
}

} // namespace
