#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/demo/tsDemoShot.h>
#include <tesseraCore/img/tsKeyerPass.h>

#include <tesseraUtil/tsMgUtils.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

using Rgb = CoRgbColorTyped<float>;

// The demo plate at a reduced size (quick in unoptimised builds), measured in
// the softness space of its own screen colour.
class DemoPlate : public ::testing::Test {
protected:
    static const TsDemoPlate& demo() {
        static const TsDemoPlate plate(TsDemoPlate::Options{640, 360, 1});
        return plate;
    }

    static CoAffineMatrixTyped<float> softness() {
        return TsMgUtils::getSoftnessMatrix(demo().pickScreenColour(), 0.0f);
    }
    static float truth(int i, int j) { return demo().getTruthAlpha()->getPixel(i, j).r; }
};

TEST_F(DemoPlate, SameOptionsGiveTheSameImagesAndSeedsDiffer) {
    const TsDemoPlate again(TsDemoPlate::Options{640, 360, 1});
    const TsDemoPlate other(TsDemoPlate::Options{640, 360, 2});
    const std::size_t bytes = 4 * demo().getPlate()->getPixelCount() * sizeof(float);
    EXPECT_EQ(std::memcmp(again.getPlate()->data(), demo().getPlate()->data(), bytes), 0);
    EXPECT_EQ(std::memcmp(again.getTruthAlpha()->data(), demo().getTruthAlpha()->data(), bytes), 0);
    EXPECT_NE(std::memcmp(other.getPlate()->data(), demo().getPlate()->data(), bytes), 0);
    EXPECT_NE(std::memcmp(other.getTruthAlpha()->data(), demo().getTruthAlpha()->data(), bytes), 0);
    EXPECT_EQ(demo().getBackground()->getWidth(), 640);
    EXPECT_EQ(TsDemoPlate().getPlate()->getWidth(), 1280);
}

TEST_F(DemoPlate, GroundTruthAgreesWithThePlate) {
    const PiImage& plate = *demo().getPlate();
    const PiImage& alpha = *demo().getTruthAlpha();
    const PiImage& fg = *demo().getTruthForeground();
    const CoAffineMatrixTyped<float> s = softness();
    // Where the truth is 0 the plate is screen (near the key colour on axis
    // 1, grain and uneven light aside); where it is 1 the plate is far from
    // it; between, the plate's distance from the screen follows the truth.
    int notScreen = 0, notSubject = 0, foregroundAlphaDiffers = 0;
    double sumA = 0, sumD = 0, sumAA = 0, sumDD = 0, sumAD = 0;
    int partial = 0;
    for (int j = 0; j < plate.getHeight(); ++j) {
        for (int i = 0; i < plate.getWidth(); ++i) {
            const float a = alpha.row(j)[4 * i];
            const float* p = plate.row(j) + 4 * i;
            const float d = s[0] * p[0] + s[4] * p[1] + s[8] * p[2] + s[12];
            foregroundAlphaDiffers += fg.row(j)[4 * i + 3] != a;
            if (a == 0.0f) {
                notScreen += std::fabs(d) >= 0.25f;
            } else if (a == 1.0f) {
                notSubject += d <= 0.5f;
            } else {
                ++partial;
                sumA += a;
                sumD += d;
                sumAA += a * a;
                sumDD += d * d;
                sumAD += a * d;
            }
        }
    }
    EXPECT_EQ(notScreen, 0);
    EXPECT_EQ(notSubject, 0);
    EXPECT_EQ(foregroundAlphaDiffers, 0);
    ASSERT_GT(partial, 1000);
    const double n = partial;
    const double correlation = (sumAD - sumA * sumD / n) /
                               std::sqrt((sumAA - sumA * sumA / n) * (sumDD - sumD * sumD / n));
    EXPECT_GT(correlation, 0.9);
}

TEST_F(DemoPlate, EdgesAreSoftOnOneSideAndHairIsThin) {
    // Along a row through the torso: the left edge is crisp, the right soft.
    const int j = static_cast<int>(0.15 * 360);
    int left = 0, right = 0;
    for (int i = 0; i < 640; ++i) {
        const float a = truth(i, j);
        if (a > 0.0f && a < 1.0f) {
            (i < 320 ? left : right) += 1;
        }
    }
    EXPECT_LE(left, 2);
    EXPECT_GE(right, left + 2);
    // Above the hair cap: strands, mostly partly covered pixels.
    int strands = 0, solid = 0;
    for (int jj = static_cast<int>(0.8 * 360); jj < 360; ++jj) {
        for (int i = 0; i < 640; ++i) {
            const float a = truth(i, jj);
            strands += a > 0.0f && a < 1.0f;
            solid += a == 1.0f;
        }
    }
    EXPECT_GT(strands, 300);
    EXPECT_LT(solid, strands / 4);
}

TEST_F(DemoPlate, ScreenCornerGivesTheKeyColour) {
    const Rgb picked = demo().pickScreenColour();
    const Rgb screen = demo().getScreenColour();
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(picked[c], screen[c], 0.003f);
    }
    const TsKeyerSettings settings = demo().makeDefaultSettings();
    EXPECT_EQ(settings.keyColors[0], picked);
    EXPECT_EQ(settings.keyColors[1], picked);
    EXPECT_EQ(settings.matte, TsKeyerSettings().matte);
}

TEST_F(DemoPlate, ScoreSeparatesInsideOutsideAndEdge) {
    const PiImage& truthImage = *demo().getTruthAlpha();
    const TsMatteScore perfect = demo().score(truthImage);
    EXPECT_EQ(perfect.all, 0.0);
    EXPECT_GT(perfect.insideCount, 10000u);
    EXPECT_GT(perfect.outsideCount, 100000u);
    EXPECT_GT(perfect.edgeCount, 1000u);
    EXPECT_EQ(perfect.insideCount + perfect.outsideCount + perfect.edgeCount, 640u * 360u);
    // The hair region is the band round the strands, within the edge band.
    EXPECT_GT(perfect.hairCount, 1000u);
    EXPECT_LT(perfect.hairCount, perfect.edgeCount);

    const TsMatteScore black = demo().score(PiImage(640, 360, {0, 0, 0, 1}));
    EXPECT_EQ(black.inside, 1.0);
    EXPECT_EQ(black.outside, 0.0);
    EXPECT_GT(black.edge, 0.1);
    EXPECT_LT(black.edge, 0.9);
    const TsMatteScore white = demo().score(PiImage(640, 360, {1, 1, 1, 1}));
    EXPECT_EQ(white.outside, 1.0);
    EXPECT_NEAR(white.edge + black.edge, 1.0, 1e-9);
    EXPECT_NEAR(white.hair + black.hair, 1.0, 1e-9);
    EXPECT_EQ(TsDemoPlate::score(truthImage, truthImage).hairCount, 0u); // no mask, no hair
    EXPECT_EQ(demo().score(PiImage(10, 10)).edgeCount, 0u);              // wrong size
}

// Every subject, with more grain, unevenness and spill: the truth still makes
// the plate (the screen where alpha is 0, far from it where alpha is 1), the
// fine detail is partly transparent, and the options change the screen as
// they say.
TEST(DemoPlateVariants, EverySubjectHasItsTruthAndFineDetail) {
    const std::vector<std::string>& names = TsDemoPlate::getSubjectNames();
    ASSERT_EQ(names.size(), 6u);
    for (std::size_t k = 0; k < names.size(); ++k) {
        TsDemoPlate::Subject subject;
        ASSERT_TRUE(TsDemoPlate::parseSubject(names[k], subject));
        EXPECT_EQ(static_cast<std::size_t>(subject), k);
        const TsDemoPlate plain(TsDemoPlate::Options{320, 180, 4, 1.0, 0.0, 1.0, subject});
        const TsDemoPlate hard(TsDemoPlate::Options{320, 180, 4, 3.0, 4.0, 2.0, subject});
        const TsMatteScore perfect = hard.score(*hard.getTruthAlpha());
        EXPECT_EQ(perfect.all, 0.0) << names[k];
        EXPECT_GT(perfect.hairCount, 50u) << names[k];
        EXPECT_GT(perfect.insideCount, 200u) << names[k];
        // Without unevenness the screen is the same colour in every corner
        // (grain aside); at 4 times the default it varies by a fifth and more.
        auto cornerRange = [](const TsDemoPlate& demo) {
            float low = 1e9f, high = 0.0f;
            for (const int i : {0, 308}) {
                for (const int j : {0, 168}) {
                    const float g = TsDemoPlate::medianColour(*demo.getPlate(), i, j, 12, 12).g;
                    low = std::min(low, g);
                    high = std::max(high, g);
                }
            }
            return high / low;
        };
        EXPECT_LT(cornerRange(plain), 1.02f) << names[k];
        EXPECT_GT(cornerRange(hard), 1.2f) << names[k];
    }
    TsDemoPlate::Subject subject = TsDemoPlate::Subject::Fur;
    EXPECT_FALSE(TsDemoPlate::parseSubject("Portrait", subject));
    EXPECT_EQ(subject, TsDemoPlate::Subject::Fur);
}

TEST_F(DemoPlate, DefaultKeyOfTheScreenColourIsAlreadyGood) {
    TsKeyerPass pass;
    pass.setPlate(demo().getPlate());
    pass.setSettings(demo().makeDefaultSettings());
    const TsMatteScore score = demo().score(*pass.render(TsViewMode::Matte));
    EXPECT_LT(score.outside, 0.002);
    EXPECT_LT(score.inside, 0.002);
    EXPECT_LT(score.edge, 0.1);
}

TEST_F(DemoPlate, DespillTakesTheGreenCastOffTheEdges) {
    TsKeyerSettings settings = demo().makeDefaultSettings();
    const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(settings.keyColors[0]);
    // The key's chroma in a colour, as a share of the key's own.
    auto cast = [&](const CoRgbaColorTyped<float>& c) {
        return -(axes.axis[0].r * c.r + axes.axis[0].g * c.g + axes.axis[0].b * c.b) / axes.chroma;
    };
    auto meanCast = [&](const PiImage& image) {
        double sum = 0;
        int n = 0;
        for (int j = 0; j < image.getHeight(); ++j) {
            for (int i = 0; i < image.getWidth(); ++i) {
                const float a = truth(i, j);
                if (a > 0.3f && a < 0.95f) {
                    sum += cast(image.getPixel(i, j));
                    ++n;
                }
            }
        }
        return sum / n;
    };
    TsKeyerPass pass;
    pass.setPlate(demo().getPlate());
    const double plateCast = meanCast(*demo().getPlate());
    const double subjectCast = meanCast(*demo().getTruthForeground());
    EXPECT_GT(plateCast, 0.3);
    EXPECT_LT(subjectCast, 0.0);

    // The screen's share taken out of the edges leaves the spill on them;
    // the despill takes that off too, half of it at the default amount.
    auto castAt = [&](double amount) {
        settings.spill = {amount, 0.5};
        pass.setSettings(settings);
        return meanCast(*pass.render(TsViewMode::Foreground));
    };
    const double none = castAt(0.0), half = castAt(0.5), full = castAt(1.0);
    EXPECT_LT(none, plateCast / 3);
    EXPECT_GT(none, subjectCast + 0.05);
    EXPECT_LT(full, 0.02);
    EXPECT_NEAR(half, 0.5 * (none + full), 0.2 * (none - full));
}

// A shot: frame 1 is the still; later frames move the subject and dim the
// screen, each with its truth; a frame is the same however it is reached.
TEST(DemoShot, TheSubjectMovesAndTheLightDriftsDeterministically) {
    const TsDemoPlate::Options options{160, 90, 4};
    const TsDemoPlate still(options);
    const TsDemoShot shot(options, 30);
    EXPECT_EQ(shot.getFrameRange(), (PiFrameRange{1, 30, false}));
    const auto same = [](const PiImage& a, const PiImage& b) {
        return std::memcmp(a.row(0), b.row(0), sizeof(float) * 4 * a.getWidth() * a.getHeight()) ==
               0;
    };
    EXPECT_TRUE(same(*shot.plateAt(1)->getPlate(), *still.getPlate()));
    // The truth's centre of mass moves sideways; the screen's corner dims.
    const auto centre = [](const PiImage& truth) {
        double sum = 0.0, weighted = 0.0;
        for (int j = 0; j < truth.getHeight(); ++j) {
            for (int i = 0; i < truth.getWidth(); ++i) {
                sum += truth.getPixel(i, j).r;
                weighted += i * truth.getPixel(i, j).r;
            }
        }
        return weighted / sum;
    };
    const auto frame10 = shot.plateAt(10);
    EXPECT_GT(centre(*frame10->getTruthAlpha()) - centre(*still.getTruthAlpha()), 3.0);
    EXPECT_LT(shot.plateAt(30)->getScreenColour().g, 0.97f * still.getScreenColour().g);
    // Made again by another shot, after others: bit for bit the same.
    EXPECT_TRUE(same(*shot.plateAt(30)->getTruthAlpha(),
                     *TsDemoShot(options, 30).plateAt(30)->getTruthAlpha()));
    for (int f = 2; f <= 5; ++f) {
        shot.plateAt(f);
    }
    EXPECT_TRUE(same(*shot.plateAt(10)->getPlate(), *frame10->getPlate()));
    EXPECT_FALSE(same(*shot.plateAt(11)->getPlate(), *frame10->getPlate()));
}

TEST(DemoPlateMedian, MedianPerChannelOverAClippedRectangle) {
    PiImage image(4, 4, {0, 0, 0, 1});
    const float values[5] = {0.5f, 0.1f, 0.9f, 0.3f, 0.7f};
    for (int k = 0; k < 4; ++k) {
        image.setPixel(k, 3, {values[k], 1.0f - values[k], 0.2f, 1});
    }
    image.setPixel(3, 2, {values[4], 1.0f - values[4], 0.2f, 1});
    // The rectangle reaches beyond the image: only (2..3, 2..3) count.
    const Rgb m = TsDemoPlate::medianColour(image, 2, 2, 5, 5);
    // r over {0.9, 0.3, 0, 0.7}: the upper median 0.7.
    EXPECT_EQ(m.r, 0.7f);
    EXPECT_EQ(TsDemoPlate::medianColour(image, 10, 10, 2, 2), Rgb{});
}

} // namespace
