// Colour through the shipped configuration, checked against values this test
// derives on its own: the primaries' matrices from their chromaticities, the
// sRGB curve from its published definition.
#include "support/colourMaths.h"

#include <tesseraCore/colour/tsColour.h>
#include <tesseraCore/colour/tsDisplayTransform.h>
#include <tesseraCore/io/tsPlateIO.h>

#include <OpenImageIO/imageio.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace colourMaths;

class ShippedConfig : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(TsColour::loadConfig(TsColour::getShippedConfigPath(), error)) << error;
        dir = fs::temp_directory_path() /
              ("tessera-colour-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
    std::string file(const std::string& name) const { return (dir / name).string(); }

    fs::path dir;
};

TEST_F(ShippedConfig, OutputsAreWrittenInTheirSpaceAndSayWhich) {
    PiImage image(3, 2, {0.18f, 0.5f, 0.02f, 0.5f});
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(image, file("lin.exr"), error)) << error;
    ASSERT_TRUE(TsPlateIO::write(image, file("cg.exr"), error, "ACEScg")) << error;
    ASSERT_TRUE(TsPlateIO::write(image, file("screen.png"), error)) << error;
    ASSERT_TRUE(TsPlateIO::write(image, file("screen.jpg"), error)) << error;
    EXPECT_FALSE(TsPlateIO::write(image, file("bad.exr"), error, "Rec.2020"));
    EXPECT_NE(error.find("\"Rec.2020\""), std::string::npos) << error;
    EXPECT_FALSE(fs::exists(file("bad.exr")));

    auto header = [&](const std::string& name) {
        auto in = OIIO::ImageInput::open(file(name));
        return in ? std::string(in->spec().get_string_attribute("colorSpace")) : "unreadable";
    };
    EXPECT_EQ(header("lin.exr"), "Linear Rec.709");
    EXPECT_EQ(header("cg.exr"), "ACEScg");
    EXPECT_EQ(header("screen.png"), "sRGB-encoded Rec.709");

    // Each reads back, automatically, as the image it was.
    for (const char* name : {"lin.exr", "cg.exr", "screen.png", "screen.jpg"}) {
        std::string used;
        const PiImagePtr back = TsPlateIO::read(file(name), error, "", &used);
        ASSERT_TRUE(back) << error;
        const double tolerance = std::string(name).ends_with(".jpg") ? 0.01 : 1e-4;
        EXPECT_NEAR(back->getPixel(1, 1).r, 0.18, tolerance) << name << " from " << used;
        EXPECT_NEAR(back->getPixel(1, 1).b, 0.02, tolerance) << name << " from " << used;
    }
    // The PNG holds the encoded value, straight.
    OIIO::ImageSpec straight;
    straight.attribute("oiio:UnassociatedAlpha", 1);
    auto in = OIIO::ImageInput::open(file("screen.png"), &straight);
    ASSERT_TRUE(in);
    std::vector<float> pixels(3 * 2 * 4);
    ASSERT_TRUE(in->read_image(0, 0, 0, 4, OIIO::TypeDesc::FLOAT, pixels.data()));
    EXPECT_NEAR(pixels[0], srgbEncode(0.18), 1e-4);
    EXPECT_NEAR(pixels[3], 0.5, 1e-4);
}

} // namespace
