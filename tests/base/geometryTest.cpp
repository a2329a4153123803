#include <base/assertions.h>
#include <base/coAffineMatrixTyped.h>
#include <base/exBase.h>
#include <base/geometry.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

CoAffineMatrixTyped<float> boxMatrix() {
    // A box of half-extents (0.1, 0.2, 0.05) around (0.2, 0.7, 0.3), rotated
    // slightly about the blue axis: the kind of matrix a colour box is.
    CoAffineMatrixTyped<float> m;
    const float c = 0.98f, s = 0.199f;
    m.set(0, 0, c / 0.1f);
    m.set(0, 1, -s / 0.1f);
    m.set(1, 0, s / 0.2f);
    m.set(1, 1, c / 0.2f);
    m.set(2, 2, 1 / 0.05f);
    const auto t = m.transform(0.2f, 0.7f, 0.3f);
    m.set(0, 3, -t.r);
    m.set(1, 3, -t.g);
    m.set(2, 3, -t.b);
    return m;
}

TEST(CoAffineMatrixTyped, StorageIsColumnMajorWithTranslationAt12) {
    CoAffineMatrixTyped<float> m;
    m.set(1, 3, 5.0f);
    m.set(2, 0, 7.0f);
    EXPECT_EQ(m[13], 5.0f);
    EXPECT_EQ(m[2], 7.0f);
    EXPECT_EQ(m.transform(1, 0, 0).b, 7.0f);
    EXPECT_EQ(m.transform(0, 0, 0).g, 5.0f);
    EXPECT_TRUE(CoAffineMatrixTyped<float>() == CoAffineMatrixTyped<float>::IDENTITY);
    m = CoAffineMatrixTyped<float>::IDENTITY;
    m[15] = 1.0000001f;
    EXPECT_FALSE(m == CoAffineMatrixTyped<float>::IDENTITY); // exact, in all sixteen
}

TEST(CoAffineMatrixTyped, InverseRoundTripsCornersOfTheCube) {
    const auto m = boxMatrix();
    const auto inv = m.computeInverse();
    const float corners[8][3] = {{-1, -1, -1}, {-1, -1, 1}, {-1, 1, -1}, {-1, 1, 1},
                                 {1, -1, -1},  {1, -1, 1},  {1, 1, -1},  {1, 1, 1}};
    for (const auto& c : corners) {
        const auto colour = inv.transform(c[0], c[1], c[2]);
        const auto back = m.transform(colour);
        EXPECT_NEAR(back.r, c[0], 1e-4);
        EXPECT_NEAR(back.g, c[1], 1e-4);
        EXPECT_NEAR(back.b, c[2], 1e-4);
    }
    const auto product = m * inv;
    for (int r = 0; r < 4; ++r) {
        for (int c = 0; c < 4; ++c) {
            EXPECT_NEAR(product.get(r, c), r == c ? 1.0f : 0.0f, 1e-4) << r << "," << c;
        }
    }
}

TEST(CoAffineMatrixTyped, SingularMatrixHasNoInverse) {
    CoAffineMatrixTyped<float> flat;
    flat.set(2, 2, 0.0f);
    CoAffineMatrixTyped<float> out;
    EXPECT_FALSE(flat.computeInverse(out));
    EXPECT_TRUE(out == CoAffineMatrixTyped<float>::IDENTITY);
    const CoAffineMatrixTyped<float> none = flat.computeInverse();
    for (float element : none.storage()) {
        EXPECT_TRUE(std::isnan(element));
    }
}

TEST(GeAffineMatrix3, TranslationAndInverse) {
    auto m = GeAffineMatrix3<float>::translation(10, -4);
    m = m * GeAffineMatrix3<float>::scaling(2, 3);
    const auto p = m.transformPoint({1, 1});
    EXPECT_EQ(p, (GePoint2<float>{12, -1}));
    GeAffineMatrix3<float> inv;
    ASSERT_TRUE(m.computeInverse(inv));
    EXPECT_EQ(inv.transformPoint(p), (GePoint2<float>{1, 1}));
    EXPECT_FALSE(GeAffineMatrix3<float>::scaling(0, 1).computeInverse(inv));
}

TEST(GeRectangle, UnionStartsFromTheFirstValidRectangle) {
    GeRectangle<float> none;
    EXPECT_FALSE(none.isValid());
    const GeRectangle<float> bar(-200, 200, -10, 10);
    EXPECT_EQ(bar.getWidth(), 400);
    const auto u = none.unite(bar).unite(GeRectangle<float>(-200, 200, -40, -20));
    EXPECT_EQ(u, GeRectangle<float>(-200, 200, -40, 10));
    EXPECT_EQ(bar.unite(none), bar);
    EXPECT_TRUE(bar.contains(200, -10));
    EXPECT_FALSE(bar.contains(200.5f, 0));
    EXPECT_FALSE(none.contains(0.5f, 0.5f));
}

} // namespace
