// The colour-space view's geometry: where known colours land (the key colour
// at the softness origin, a box's corners where its matrix puts them, the
// matte's level lines on the matte's levels), the camera's preset views, and
// the cloud's subsample and picking.
#include <tesseraCore/colourspace/tsCsCamera.h>
#include <tesseraCore/colourspace/tsCsCloud.h>
#include <tesseraCore/colourspace/tsCsMatte.h>
#include <tesseraCore/colourspace/tsCsScene.h>
#include <tesseraCore/tsKeyerSettings.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using Colour = CoRgbColorTyped<float>;

void expectNear(const Colour& a, const Colour& b, float within = 1e-4f) {
    EXPECT_NEAR(a.r, b.r, within);
    EXPECT_NEAR(a.g, b.g, within);
    EXPECT_NEAR(a.b, b.b, within);
}

TEST(ColourSpace, KnownColoursLandWhereTheKeyPutsThem) {
    TsKeyerSettings settings;
    settings.keyColors = {Colour{0.1f, 0.5f, 0.1f}, Colour{0.1f, 0.3f, 0.5f}};
    settings.matte[8] = 0.25; // key blend
    // A foreground patch: the box centred on (0.6, 0.3, 0.2), half sizes
    // 0.1, 0.05, 0.2 each way.
    TsKeyerSettings::Patch patch;
    patch.mode = 2;
    patch.box = CoAffineMatrixTyped<float>(
        {10.0f, 0, 0, 0, 0, 20.0f, 0, 0, 0, 0, 5.0f, 0, -6.0f, -6.0f, -1.0f, 1.0f});
    settings.patches = {patch, TsKeyerSettings::Patch()}; // the second: none sampled
    const TsCsMatte matte(settings);
    const TsCsScene scene = TsCsScene::build(settings, matte, {0, 0, 0}, {1, 1, 1});

    expectNear(scene.key, {0.1f, 0.45f, 0.2f});
    ASSERT_TRUE(scene.hasAxes);
    expectNear(scene.softness.transform(scene.key), {0, 0, 0});
    for (int k = 0; k < 3; ++k) {
        Colour unit{0, 0, 0};
        unit[k] = 1.0f;
        expectNear(scene.softness.transform(scene.key + scene.axes[k]), unit);
    }

    ASSERT_EQ(scene.boxes.size(), 1u);
    for (int k = 0; k < 8; ++k) {
        expectNear(scene.boxes[0].corners[k],
                   {(k & 1) ? 0.7f : 0.5f, (k & 2) ? 0.35f : 0.25f, (k & 4) ? 0.4f : 0.0f});
    }

    // The level lines lie on their levels (the matte is linear between the
    // grid's samples but at its kinks).
    for (std::size_t l = 0; l < TsCsScene::Levels.size(); ++l) {
        ASSERT_FALSE(scene.levels[l].empty()) << l;
        int off = 0;
        for (const TsCsScene::Segment& s : scene.levels[l]) {
            off += std::abs(matte.alphaOf(s.a) - TsCsScene::Levels[l]) > 0.02f;
        }
        EXPECT_LT(off, static_cast<int>(scene.levels[l].size()) / 20) << l;
    }

    // Looking along axis 1 from a camera centred on the key: the key in the
    // middle of the picture, one unit along the axis on top of it, nearer.
    TsCsCamera camera;
    camera.centre = scene.key;
    camera.lookAlong(scene.axes[0]);
    const TsCsProjection project(camera);
    const TsCsProjection::Point key = project(scene.key);
    const TsCsProjection::Point along = project(scene.key + scene.axes[0]);
    EXPECT_NEAR(key.x, 400.0f, 1e-3f);
    EXPECT_NEAR(key.y, 300.0f, 1e-3f);
    EXPECT_NEAR(along.x, key.x, 1e-2f);
    EXPECT_NEAR(along.y, key.y, 1e-2f);
    EXPECT_GT(along.depth, key.depth);
    // At elevation 0 the grey axis is up: white above black.
    camera.elevation = 0.0;
    EXPECT_LT(TsCsProjection(camera)(1, 1, 1).y, TsCsProjection(camera)(0, 0, 0).y);
}

TEST(ColourSpace, TheCloudKeepsToItsBudgetAndPicksItsPoints) {
    PiImage plate(100, 50);
    for (int j = 0; j < 50; ++j) {
        for (int i = 0; i < 100; ++i) {
            plate.setPixel(i, j, {i / 100.0f, j / 50.0f, 0.5f, 1.0f});
        }
    }
    plate.setPixel(2, 2, {std::numeric_limits<float>::quiet_NaN(), 0.0f, 0.0f, 1.0f});
    TsCsCloud cloud;
    cloud.build(plate, 200);
    EXPECT_EQ(cloud.getStep(), 5);
    EXPECT_EQ(cloud.size(), 199); // 20 x 10 but the pixel that is not a number
    for (int k = 0; k < cloud.size(); ++k) {
        const CoRgbaColorTyped<float> c = plate.getPixel(cloud.pixelX[k], cloud.pixelY[k]);
        ASSERT_EQ(cloud.colour(k), (Colour{c.r, c.g, c.b})) << k;
    }

    const TsCsProjection project{TsCsCamera()};
    const int k = cloud.size() / 2;
    const TsCsProjection::Point p = project(cloud.colour(k));
    EXPECT_EQ(cloud.pick(project, p.x + 0.5f, p.y, 3.0f), k);
    EXPECT_EQ(cloud.pick(project, -100.0f, -100.0f, 3.0f), -1);
}

} // namespace
