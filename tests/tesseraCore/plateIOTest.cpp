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

TEST_F(PlateFiles, EightBitPngIsDecodedToLinearAndFlipped) {
    // 2 x 2 RGB: top row black and white, bottom row mid grey and pure green.
    const std::vector<unsigned char> codes{0, 0, 0, 255, 255, 255, 128, 128, 128, 0, 255, 0};
    writeRaw(file("small.png"), OIIO::ImageSpec(2, 2, 3, OIIO::TypeDesc::UINT8),
             OIIO::TypeDesc::UINT8, codes.data());

    std::string error;
    const PiImagePtr plate = TsPlateIO::read(file("small.png"), error);
    ASSERT_TRUE(plate) << error;
    ASSERT_EQ(plate->getWidth(), 2);
    EXPECT_EQ(plate->getPixel(0, 1), (CoRgbaColorTyped<float>{0, 0, 0, 1}));
    EXPECT_EQ(plate->getPixel(1, 1), (CoRgbaColorTyped<float>{1, 1, 1, 1}));
    // Code 128 of an sRGB-encoded file is 21.6% linear.
    EXPECT_NEAR(plate->getPixel(0, 0).r, 0.21586f, 1e-5f);
    EXPECT_EQ(plate->getPixel(1, 0), (CoRgbaColorTyped<float>{0, 1, 0, 1}));
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

TEST_F(PlateFiles, TruncatedFilesAreRefusedWithTheReadersMessage) {
    PiImage image(64, 64, {0.2f, 0.5f, 0.1f, 1.0f});
    for (int j = 0; j < 64; ++j) {
        for (int i = 0; i < 64; ++i) {
            image.setPixel(i, j, {0.01f * i, 0.01f * j, 0.5f, 1.0f}); // against compression
        }
    }
    std::string error;
    std::vector<std::string> names{"cut.exr"};
#if !defined(TESSERA_SANITIZED)
    // The library's PNG reader leaks its message when it gives up on a
    // damaged file (it jumps out of a frame that owns a string), which the
    // leak checker of sanitised builds reports.
    names.push_back("cut.png");
#endif
    for (const std::string& name : names) {
        ASSERT_TRUE(TsPlateIO::write(image, file(name), error)) << error;
        fs::resize_file(file(name), fs::file_size(file(name)) / 2);
        const PiImagePtr plate = TsPlateIO::read(file(name), error);
        EXPECT_FALSE(plate) << name;
        EXPECT_NE(error.find(file(name)), std::string::npos) << error;
        // The reader's own text follows the file's name.
        EXPECT_GT(error.size(), error.find(file(name)) + file(name).size() + 5) << error;
    }
}

TEST_F(PlateFiles, OtherFilesAreRefusedAndNamed) {
    std::ofstream(file("notes.txt")) << "not an image\n";
    std::ofstream(file("fake.exr")) << "not an image either\n";
    std::string error;
    EXPECT_FALSE(TsPlateIO::read(file("notes.txt"), error));
    EXPECT_NE(error.find(file("notes.txt")), std::string::npos) << error;
    EXPECT_FALSE(TsPlateIO::read(file("fake.exr"), error));
    EXPECT_NE(error.find(file("fake.exr")), std::string::npos) << error;
    expectRefused(file("missing.exr"), "No such file or directory");
    expectRefused(dir.string(), "it is a directory, not a regular file");

    // Two channels: readable by the library, but not a plate.
    const std::vector<float> values(2 * 4 * 4, 0.5f);
    writeRaw(file("two.tif"), OIIO::ImageSpec(4, 4, 2, OIIO::TypeDesc::FLOAT),
             OIIO::TypeDesc::FLOAT, values.data());
    expectRefused(file("two.tif"), "2 channels");
}

TEST_F(PlateFiles, WriteFailuresLeaveEarlierFilesAlone) {
    const PiImage image(4, 4, {1, 0, 0, 1});
    std::string error;
    ASSERT_TRUE(TsPlateIO::write(image, file("keep.exr"), error));
    const auto size = fs::file_size(file("keep.exr"));
    EXPECT_FALSE(TsPlateIO::write(PiImage(), file("keep.exr"), error));
    EXPECT_NE(error.find("empty"), std::string::npos) << error;
    EXPECT_EQ(fs::file_size(file("keep.exr")), size);
    EXPECT_FALSE(TsPlateIO::write(image, file("out.bmp"), error));
    EXPECT_NE(error.find(".bmp"), std::string::npos) << error;
    EXPECT_FALSE(TsPlateIO::write(image, file("no/such/dir/out.exr"), error));
    EXPECT_NE(error.find("no/such/dir/out.exr"), std::string::npos) << error;
}

} // namespace
