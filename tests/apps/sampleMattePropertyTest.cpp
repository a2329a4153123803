// The sample-matte tool's promise, as a property of the keyer: for any
// sampled colour, the bar the tool puts on top, dragged the right way (up to
// key more, down to key less), moves the matte at that colour towards what
// the artist wants there: transparent for a part of the screen, opaque for
// the subject. Random key colours, screens lit brighter or darker, shifted in
// hue or washed out, and random subject colours, clean or mixed with the
// screen; the real tool through the host.
#include "sessionScene.h"

#include "host/sessionArgs.h"

#include <tesseraUtil/tsMgAnimToAlgo.h>
#include <tesseraUtil/tsMgUtils.h>

#include <map>
#include <random>

namespace {

using Rgb = CoRgbColorTyped<float>;

class SampleMatteProperty : public SessionScene {
protected:
    static constexpr int W = 240;
    static constexpr int H = 120;

    std::mt19937 rng{20261125};
    float uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(rng); }

    // What `print WHAT` answers, after its "WHAT = ".
    std::string answer(const std::string& what) {
        ok("print " + what);
        const std::string text = takePrinted();
        const std::size_t at = text.find(" = ");
        return at == std::string::npos ? "" : text.substr(at + 3, text.size() - at - 4);
    }
    float matteAt() {
        double value = 0.0;
        const std::string pixel = answer("pixel matte 180 60");
        EXPECT_TRUE(SessionArgs::parseNumber(pixel.substr(0, pixel.find(' ')), value)) << pixel;
        return static_cast<float>(value);
    }

    Rgb randomKey() {
        const float lit = uniform(0.35f, 0.8f);
        const float a = uniform(0.03f, 0.2f), b = uniform(0.03f, 0.2f);
        return rng() % 2 ? Rgb{a, lit, b} : Rgb{a, b, lit};
    }

    // A part of the screen as another light and the camera show it: the key
    // colour at half to twice its brightness, a little washed out or shifted
    // in hue (together within the screen estimate's departure, a fifth of
    // the chroma).
    Rgb screenVariant(const Rgb& key) {
        const TsMgUtils::KeyAxes axes = TsMgUtils::getKeyAxes(key);
        const float s = uniform(0.5f, 2.0f);
        Rgb c = key * s;
        const Rgb grey = Rgb{1, 1, 1} * ((c.r + c.g + c.b) / 3.0f);
        c = c + (grey - c) * uniform(0.0f, 0.12f);
        return c + axes.axis[1] * (s * axes.chroma * uniform(-0.15f, 0.15f));
    }

    // A subject colour: clearly not the screen, mostly mixed with the screen
    // (a strand, an edge, a veil) and sometimes whole.
    Rgb subjectColour(const Rgb& key) {
        const CoAffineMatrixTyped<float> s = TsMgUtils::getSoftnessMatrix(key, 0.0f);
        for (;;) {
            const Rgb c{uniform(0.0f, 1.0f), uniform(0.0f, 1.0f), uniform(0.0f, 1.0f)};
            const Rgb d = s.transform(c.r, c.g, c.b);
            if (d.r > 0.7f || std::fabs(d.g) > 0.9f) {
                const float cover = rng() % 4 == 0 ? 1.0f : uniform(0.3f, 1.0f);
                return c * cover + key * (1.0f - cover);
            }
        }
    }

    void showPlate(const Rgb& key, const Rgb& sample) {
        auto plate = rcMake<PiImage>(W, H, CoRgbaColorTyped<float>{key.r, key.g, key.b, 1});
        for (int j = 0; j < H; ++j) {
            for (int i = W / 2; i < W; ++i) {
                plate->setPixel(i, j, {sample.r, sample.g, sample.b, 1});
            }
        }
        session->setPlate(plate, "property");
    }

    static std::string number(float v) { return SessionArgs::format(v); }
};

TEST_F(SampleMatteProperty, TheTopBarDraggedTheRightWayMovesTheMatteTowardsTheGoal) {
    const std::map<std::string, std::string> inputs{{"Overall", "overall"},
                                                    {"Shadows", "shadows"},
                                                    {"Highlights", "highlights"},
                                                    {"Deep Hue Plus", "deepHuePlus"},
                                                    {"Deep Hue Minus", "deepHueMinus"},
                                                    {"Hue Plus", "huePlus"},
                                                    {"Hue Minus", "hueMinus"},
                                                    {"Edge Softness", "edgeSoftness"}};
    int moved = 0, atGoal = 0;
    std::map<std::string, int> tops;
    for (int trial = 0; trial < 240; ++trial) {
        const Rgb key = randomKey();
        const bool screen = trial % 2 == 0;
        const Rgb sample = screen ? screenVariant(key) : subjectColour(key);
        showPlate(key, sample);
        ok("keyer\nset keyColor1 " + number(key.r) + " " + number(key.g) + " " + number(key.b));
        const float before = matteAt();
        if ((screen && before == 0.0f) || (!screen && before == 1.0f)) {
            ++atGoal;
            continue;
        }
        ok("hotkey \"Sample Matte\"\nclick 180 60");
        const std::string bars = answer("bars");
        const std::string top = bars.substr(0, bars.find(','));
        ASSERT_TRUE(inputs.count(top)) << "no bar for a colour off the goal: " << bars;
        ++tops[top];
        ok("key Escape\nset " + inputs.at(top) + (screen ? " 1" : " 0"));
        const float after = matteAt();
        ASSERT_TRUE(screen ? after < before : after > before)
            << (screen ? "screen " : "subject ") << sample.r << " " << sample.g << " " << sample.b
            << " on key " << key.r << " " << key.g << " " << key.b << ": " << top
            << " moved the matte from " << before << " to " << after;
        ++moved;
    }
    // Many samples need a bar, and the bars on top vary.
    EXPECT_GT(moved, 20);
    EXPECT_GE(tops.size(), 4u);
    EXPECT_GT(atGoal, 20);
}

} // namespace
