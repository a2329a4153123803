// Colour management in a session: a plate's colour space keys as the same
// picture would in linear Rec.709, and an unknown one is refused.
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

} // namespace
