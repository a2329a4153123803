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

TEST_F(ShippedConfig, AcesCgConvertsToLinearRec709ByTheAdaptedPrimaries) {
    EXPECT_EQ(TsColour::getWorkingSpace(), "Linear Rec.709");
    const Matrix expected = acesCgToRec709();
    const std::vector<Vector> colours{{1, 0, 0},          {0, 1, 0},         {0, 0, 1},
                                      {0.18, 0.18, 0.18}, {0.9, 0.35, 0.02}, {4.0, -0.1, 0.5}};
    PiImage image(static_cast<int>(colours.size()), 1);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const Vector& c = colours[i];
        image.setPixel(static_cast<int>(i), 0,
                       {float(c[0]), float(c[1]), float(c[2]), 0.25f * float(i % 4)});
    }
    std::string error;
    ASSERT_TRUE(TsColour::convert(image, "ACEScg", TsColour::getWorkingSpace(), error)) << error;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const Vector e = times(expected, colours[i]);
        const CoRgbaColorTyped<float> got = image.getPixel(static_cast<int>(i), 0);
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(got[c], e[c], 2e-5 * std::max(1.0, std::fabs(e[c]))) << i << "/" << c;
        }
        EXPECT_EQ(got.a, 0.25f * float(i % 4)) << "alpha is left alone";
    }
    // Aliases and roles name the same spaces.
    std::string space;
    ASSERT_TRUE(TsColour::resolve("scene_linear", space, error));
    EXPECT_EQ(space, "Linear Rec.709");
    ASSERT_TRUE(TsColour::resolve("sRGB", space, error));
    EXPECT_EQ(space, "sRGB-encoded Rec.709");
}

TEST_F(ShippedConfig, EverySrgbCodeOfAPngReadsAsItsLinearValue) {
    std::vector<unsigned char> codes(256);
    for (int i = 0; i < 256; ++i) {
        codes[i] = static_cast<unsigned char>(i);
    }
    const std::string path = file("ramp.png");
    auto out = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(out && out->open(path, OIIO::ImageSpec(256, 1, 1, OIIO::TypeDesc::UINT8)));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::UINT8, codes.data()));
    ASSERT_TRUE(out->close());

    std::string error, used;
    const PiImagePtr plate = TsPlateIO::read(path, error, "", &used);
    ASSERT_TRUE(plate) << error;
    EXPECT_EQ(used, "sRGB-encoded Rec.709") << "a PNG declares the sRGB encoding";
    for (int i = 0; i < 256; ++i) {
        EXPECT_NEAR(plate->getPixel(i, 0).g, srgbDecode(i / 255.0), 2e-6) << "code " << i;
    }
    // Asked to, the same file is taken as it is.
    const PiImagePtr raw = TsPlateIO::read(path, error, "Raw", &used);
    ASSERT_TRUE(raw) << error;
    EXPECT_EQ(used, "Raw");
    EXPECT_NEAR(raw->getPixel(128, 0).r, 128 / 255.0, 1e-7);
}

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

TEST_F(ShippedConfig, TheDisplayTransformShowsTheViewAfterExposureAndBeforeGamma) {
    TsDisplayTransform display;
    EXPECT_EQ(display.getDisplay(), "sRGB");
    EXPECT_EQ(display.getView(), "Standard");
    const float pixels[] = {0.18f, 0.5f, 0.0f, 0.4f, 2.0f, -1.0f, 0.05f, 1.0f};
    auto shown = [&](int index) {
        std::array<unsigned char, 8> out{};
        display.apply(pixels, out.data(), 2);
        return out[static_cast<std::size_t>(index)];
    };
    auto byte = [](double v) { return std::lround(std::clamp(v, 0.0, 1.0) * 255.0); };
    EXPECT_NEAR(shown(0), byte(srgbEncode(0.18)), 1);
    EXPECT_NEAR(shown(1), byte(srgbEncode(0.5)), 1);
    EXPECT_EQ(shown(4), 255) << "clamped";
    EXPECT_EQ(shown(5), 0) << "clamped";
    EXPECT_NEAR(shown(3), byte(0.4), 1) << "alpha is scaled, never transformed";

    std::string error;
    ASSERT_TRUE(display.setExposure(1.0, error));
    EXPECT_NEAR(shown(0), byte(srgbEncode(0.36)), 1);
    EXPECT_NEAR(shown(3), byte(0.4), 1);
    ASSERT_TRUE(display.setGamma(2.0, error));
    EXPECT_NEAR(shown(0), byte(std::sqrt(srgbEncode(0.36))), 1);
    ASSERT_TRUE(display.setDisplay("sRGB", "Raw", error)) << error;
    EXPECT_NEAR(shown(6), byte(std::sqrt(0.1)), 1) << "Raw shows the values as they are";

    EXPECT_FALSE(display.setDisplay("sRGB", "Filmic", error));
    EXPECT_NE(error.find("view \"Filmic\" of display \"sRGB\""), std::string::npos) << error;
    EXPECT_NE(error.find("Standard, Raw"), std::string::npos) << error;
    EXPECT_FALSE(display.setDisplay("P3", "", error));
    EXPECT_NE(error.find(TsColour::getShippedConfigPath()), std::string::npos) << error;
    EXPECT_FALSE(display.setGamma(0.0, error));
    EXPECT_EQ(display.getView(), "Raw") << "a refused setting changes nothing";
}

TEST_F(ShippedConfig, ADamagedConfigurationIsRefusedAndTheOneInUseStays) {
    const std::string damaged = file("damaged.ocio");
    std::ofstream(damaged) << "ocio_profile_version: 2\nroles: [this is not\n";
    const std::string incomplete = file("incomplete.ocio");
    std::ofstream(incomplete) << "ocio_profile_version: 2\nroles:\n  scene_linear: Missing\n";
    for (const std::string& path : {damaged, incomplete, file("none.ocio")}) {
        std::string error;
        EXPECT_FALSE(TsColour::loadConfig(path, error));
        EXPECT_NE(error.find(path), std::string::npos) << error;
        EXPECT_NE(error.find(TsColour::getShippedConfigPath() + "\" stays in use"),
                  std::string::npos)
            << error;
    }
    EXPECT_EQ(TsColour::getConfigPath(), TsColour::getShippedConfigPath());
    std::string space, error;
    EXPECT_TRUE(TsColour::resolve("ACEScg", space, error)) << error;

    // An unknown name lists what there is.
    EXPECT_FALSE(TsColour::resolve("Log C", space, error));
    EXPECT_NE(error.find("colour space \"Log C\" is not in the colour configuration \"" +
                         TsColour::getShippedConfigPath() + "\""),
              std::string::npos)
        << error;
    EXPECT_NE(error.find("Linear Rec.709, ACEScg, ACES2065-1, sRGB-encoded Rec.709, Raw"),
              std::string::npos)
        << error;
}

} // namespace
