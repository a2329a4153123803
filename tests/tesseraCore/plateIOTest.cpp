#include <tesseraCore/io/tsPlateIO.h>

#include <base/exReporter.h>

#include <OpenImageIO/imageio.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A scratch directory with image files written by the test itself.
class PlateFiles : public ::testing::Test {
protected:
    fs::path dir;

    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir = fs::temp_directory_path() / (std::string("tessera-plateio-") + info->name() + "-" +
                                           std::to_string(static_cast<long>(::getpid())));
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    std::string file(const std::string& name) const { return (dir / name).string(); }

    // Writes `values` (rows top to bottom, `channels` a pixel) with OIIO.
    static void writeRaw(const std::string& path, const OIIO::ImageSpec& spec, OIIO::TypeDesc type,
                         const void* values) {
        auto out = OIIO::ImageOutput::create(path);
        ASSERT_TRUE(out) << OIIO::geterror();
        ASSERT_TRUE(out->open(path, spec)) << out->geterror();
        ASSERT_TRUE(out->write_image(type, values)) << out->geterror();
        ASSERT_TRUE(out->close());
    }

    void expectRefused(const std::string& path, const std::string& why) {
        std::string error;
        EXPECT_FALSE(TsPlateIO::read(path, error));
        EXPECT_NE(error.find(path), std::string::npos) << error;
        EXPECT_NE(error.find(why), std::string::npos) << error;
    }
};

TEST_F(PlateFiles, ExrDataWindowIsPlacedInTheDisplayWindow) {
    // Display window 8 x 6; data window 4 x 3 at (2, 1), premultiplied RGBA
    // (alpha 0.5 everywhere in it), the value of R the pixel's x + 10 y.
    OIIO::ImageSpec spec(4, 3, 4, OIIO::TypeDesc::FLOAT);
    spec.x = 2;
    spec.y = 1;
    spec.full_x = 0;
    spec.full_y = 0;
    spec.full_width = 8;
    spec.full_height = 6;
    spec.alpha_channel = 3;
    std::vector<float> values;
    for (int y = 1; y < 4; ++y) {
        for (int x = 2; x < 6; ++x) {
            values.insert(values.end(), {0.5f * (x + 10 * y), 0.25f, 0.0f, 0.5f});
        }
    }
    writeRaw(file("window.exr"), spec, OIIO::TypeDesc::FLOAT, values.data());

    std::string error;
    const PiImagePtr plate = TsPlateIO::read(file("window.exr"), error);
    ASSERT_TRUE(plate) << error;
    EXPECT_TRUE(error.empty());
    ASSERT_EQ(plate->getWidth(), 8);
    ASSERT_EQ(plate->getHeight(), 6);
    // File row y is plate row 5 - y; colour is straight again.
    EXPECT_EQ(plate->getPixel(2, 4), (CoRgbaColorTyped<float>{12.0f, 0.5f, 0.0f, 0.5f}));
    EXPECT_EQ(plate->getPixel(5, 2), (CoRgbaColorTyped<float>{35.0f, 0.5f, 0.0f, 0.5f}));
    // Outside the data window: transparent black.
    EXPECT_EQ(plate->getPixel(0, 0), (CoRgbaColorTyped<float>{0, 0, 0, 0}));
    EXPECT_EQ(plate->getPixel(1, 4), (CoRgbaColorTyped<float>{0, 0, 0, 0}));
    EXPECT_EQ(plate->getPixel(2, 5), (CoRgbaColorTyped<float>{0, 0, 0, 0}));
    EXPECT_EQ(plate->getPixel(6, 3), (CoRgbaColorTyped<float>{0, 0, 0, 0}));
}

TEST_F(PlateFiles, WrittenImagesReadBack) {
    PiImage image(5, 3);
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 5; ++i) {
            image.setPixel(i, j, {0.1f * i, 0.2f * j, 0.05f, i == 4 ? 0.25f : 1.0f});
        }
    }
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(image, file("out.exr"), error)) << error;
    ASSERT_TRUE(TsPlateIO::write(image, file("out.png"), error)) << error;
    EXPECT_FALSE(fs::exists(file("out.exr.part")));
    const PiImagePtr exr = TsPlateIO::read(file("out.exr"), error);
    const PiImagePtr png = TsPlateIO::read(file("out.png"), error);
    ASSERT_TRUE(exr && png) << error;
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 5; ++i) {
            for (int c = 0; c < 4; ++c) {
                EXPECT_NEAR(exr->getPixel(i, j)[c], image.getPixel(i, j)[c], 1e-6f);
                // 16 bits in sRGB: about 1e-4 at worst near black.
                EXPECT_NEAR(png->getPixel(i, j)[c], image.getPixel(i, j)[c], 2e-4f);
            }
        }
    }
}

} // namespace
