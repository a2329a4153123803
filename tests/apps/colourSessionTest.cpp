// Colour management in a session: a plate's colour space, what the viewer
// shows through, and the choices kept by setups and undone like any edit.
#include "sessionScene.h"
#include "support/colourMaths.h"

#include "host/sessionArgs.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/render/tsViewRender.h>

#include <ui/uiViewer.h>

#include <OpenImageIO/imageio.h>

#include <QImage>

#include <cmath>
#include <cstring>
#include <fstream>

namespace {

using namespace colourMaths;

class ColourSession : public SessionScene {
protected:
    void SetUp() override {
        SessionScene::SetUp();
        std::string error;
        ASSERT_TRUE(TsColour::loadConfig(TsColour::getShippedConfigPath(), error)) << error;
    }
    std::string answer(const std::string& query) {
        ok("print " + query);
        std::string text = takePrinted();
        while (!text.empty() && text.back() == '\n') {
            text.pop_back();
        }
        return text.substr(text.find(" = ") + 3);
    }
    PiImagePtr render(TsViewMode mode) { return TsViewRender::render(shown(), 0.0, mode); }
};

// The same picture, written once as linear Rec.709 and once converted to
// ACEScg by the test's own matrix, keys to the same matte.
TEST_F(ColourSession, AnAcesCgPlateKeysLikeTheSamePictureInLinearRec709) {
    ok("plate demo 320 180");
    const CoRgbColorTyped<float> screen = session->getDemo()->pickScreenColour();
    const PiImage& plate = *session->getPlate()->getImageAt(0);
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(plate, path("linear.exr"), error)) << error;
    const Matrix toAcesCg = inverse(acesCgToRec709());
    std::vector<float> pixels;
    for (int j = plate.getHeight() - 1; j >= 0; --j) {
        for (int i = 0; i < plate.getWidth(); ++i) {
            const CoRgbaColorTyped<float> c = plate.getPixel(i, j);
            const Vector v = times(toAcesCg, {c.r, c.g, c.b});
            pixels.insert(pixels.end(), {float(v[0]), float(v[1]), float(v[2])});
        }
    }
    auto out = OIIO::ImageOutput::create(path("acescg.exr"));
    const OIIO::ImageSpec spec(plate.getWidth(), plate.getHeight(), 3, OIIO::TypeDesc::FLOAT);
    ASSERT_TRUE(out && out->open(path("acescg.exr"), spec));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::FLOAT, pixels.data()) && out->close());

    ok("plate linear.exr\nset keyColor1 " + SessionArgs::format(screen.r) + " " +
       SessionArgs::format(screen.g) + " " + SessionArgs::format(screen.b));
    EXPECT_EQ(answer("colorspace plate"), "Linear Rec.709");
    const PiImagePtr linear = render(TsViewMode::Matte);
    ok("plate acescg.exr colorspace ACEScg\nexpect colorspace plate == ACEScg");
    const PiImagePtr acesCg = render(TsViewMode::Matte);
    ASSERT_TRUE(linear && acesCg);
    double worst = 0.0, sum = 0.0;
    for (int j = 0; j < linear->getHeight(); ++j) {
        for (int i = 0; i < linear->getWidth(); ++i) {
            const double d = std::fabs(linear->getPixel(i, j).r - acesCg->getPixel(i, j).r);
            worst = std::max(worst, d);
            sum += linear->getPixel(i, j).r;
        }
    }
    EXPECT_LT(worst, 1e-3);
    EXPECT_GT(sum, 0.1 * linear->getPixelCount()) << "the matte is not all black";
    EXPECT_LT(sum, 0.9 * linear->getPixelCount()) << "the matte is not all white";
}

// Display, view, exposure and gamma change the screen: the same drag picks
// the same key colour, and the keyer writes the same pixels.
TEST_F(ColourSession, TheViewerTransformChangesWhatIsShownOnly) {
    ok("plate demo 320 180\nbackground demo\nview composite");
    const QImage standard = session->getViewer().grab().toImage();
    ok("drag 4 176 20 160 steps 4\nwrite comp standard.exr\nwrite comp standard.png");
    const std::string picked = answer("input keyColor1");
    ok("undo\ndisplay sRGB view Raw\nexposure 2.5\ngamma 1.8\n"
       "expect display == sRGB view Raw\nexpect exposure == 2.5\nexpect gamma == 1.8");
    EXPECT_NE(session->getViewer().grab().toImage(), standard);
    ok("drag 4 176 20 160 steps 4\nwrite comp graded.exr\nwrite comp graded.png");
    EXPECT_EQ(answer("input keyColor1"), picked);
    for (const char* kind : {"exr", "png"}) {
        std::string error;
        const PiImagePtr a = TsPlateIO::read(path(std::string("standard.") + kind), error);
        const PiImagePtr b = TsPlateIO::read(path(std::string("graded.") + kind), error);
        ASSERT_TRUE(a && b) << error;
        EXPECT_EQ(std::memcmp(a->data(), b->data(), 16 * a->getPixelCount()), 0) << kind;
    }
    EXPECT_EQ(run("display P3"),
              "test.tss:1: display \"P3\" is not in the colour configuration \"" +
                  TsColour::getShippedConfigPath() + "\" (it has: sRGB)");
    EXPECT_EQ(run("gamma 0"), "test.tss:1: a gamma is a number above 0");
}

TEST_F(ColourSession, AnUnknownColourSpaceStopsTheLineAndChangesNothing) {
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(PiImage(8, 8, {0.2f, 0.4f, 0.1f, 1.0f}), path("p.exr"), error));
    ok("plate p.exr");
    const std::string list = "(it has: Linear Rec.709, ACEScg, ACES2065-1, "
                             "sRGB-encoded Rec.709, Raw)";
    const std::string config =
        " is not in the colour configuration \"" + TsColour::getShippedConfigPath() + "\" ";
    EXPECT_EQ(run("plate p.exr colorspace LogC"),
              "test.tss:1: colour space \"LogC\"" + config + list);
    EXPECT_EQ(run("background colorspace \"ARRI LogC\""),
              "test.tss:1: colour space \"ARRI LogC\"" + config + list);
    EXPECT_EQ(run("write comp out.exr colorspace Cineon"),
              "test.tss:1: cannot write image \"" + path("out.exr") +
                  "\": colour space \"Cineon\"" + config + list);
    EXPECT_FALSE(std::filesystem::exists(path("out.exr")));
    std::ofstream(path("damaged.ocio")) << "ocio_profile_version: 2\nroles: [\n";
    EXPECT_EQ(run("ocio damaged.ocio")
                  .rfind("test.tss:1: cannot read the colour configuration \"" +
                             path("damaged.ocio") + "\": ",
                         0),
              0u);
    ok("expect colorspace plate == Linear Rec.709\nexpect undo count == 0");
}

// The plate's colour space is the keyer's choice: an undo step, saved with
// the setup, and the plate is read again in it.
TEST_F(ColourSession, APlatesColourSpaceIsAnEditKeptBySetups) {
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(PiImage(8, 8, {0.5f, 0.25f, 0.125f, 1.0f}), path("p.exr"), error,
                                 "ACEScg"));
    ok("plate p.exr\nexpect colorspace plate == ACEScg\n"
       "expect pixel source 1 1 ~ 0.5 0.25 0.125 1 within 1e-5");
    ok("plate colorspace Raw\nexpect undo == Plate Colour Space\nexpect colorspace plate == Raw");
    const std::string raw = answer("pixel source 1 1");
    EXPECT_NE(raw, "0.5 0.25 0.125 1") << "the ACEScg values, taken as they are";
    ok("save raw.tessera\nundo\nexpect colorspace plate == ACEScg");
    ok("expect pixel source 1 1 ~ 0.5 0.25 0.125 1 within 1e-5");
    ok("load raw.tessera\nexpect colorspace plate == Raw");
    EXPECT_EQ(answer("pixel source 1 1"), raw);
    std::ifstream setup(path("raw.tessera"));
    const std::string text((std::istreambuf_iterator<char>(setup)), {});
    EXPECT_NE(text.find("input \"plateColorSpace\" strings 1 \"Raw\""), std::string::npos) << text;
}

} // namespace
