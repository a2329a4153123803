// Shots: frame patterns and ranges, sequences with gaps and mixed sizes, the
// frame cache's budget, and a batch render that equals single-frame renders
// and resumes where it stopped.
#include "support/testTemp.h"

#include <tesseraCore/io/tsFrameCache.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/io/tsSequence.h>
#include <tesseraCore/io/tsSequenceClip.h>
#include <tesseraCore/render/tsShotRender.h>
#include <tesseraCore/render/tsViewRender.h>
#include <tesseraCore/tsKeyerScene.h>

#include <pluginAPI/piTypedAnimInput.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

TEST(FramePatterns, NameTheirFramesAndRangesParse) {
    struct Case {
        const char* pattern;
        int frame;
        const char* path;
    };
    for (const Case& c :
         {Case{"a/shot.####.exr", 7, "a/shot.0007.exr"},
          Case{"shot.####.exr", 10000, "shot.10000.exr"}, Case{"shot_@@@.dpx", 42, "shot_042.dpx"},
          Case{"shot.%05d.png", 3, "shot.00003.png"}, Case{"shot.%d.png", 3, "shot.3.png"}}) {
        TsSequence s;
        std::string error;
        ASSERT_TRUE(TsSequence::parse(c.pattern, s, error)) << c.pattern << ": " << error;
        EXPECT_EQ(s.pathOf(c.frame), c.path);
    }
    for (const char* still : {"shot.exr", "100%.png", "shot.%x.exr", "shot.%0d.png"}) {
        EXPECT_FALSE(TsSequence::isPattern(still)) << still;
    }
    PiFrameRange r;
    EXPECT_TRUE(TsSequence::parseRange("1001-1100", r));
    EXPECT_EQ(r, (PiFrameRange{1001, 1100, false}));
    EXPECT_TRUE(TsSequence::parseRange("7", r));
    EXPECT_EQ(r.count(), 1);
    for (const char* bad : {"", "-", "9-1", "1-", "a-b", "1-2-3", "-4"}) {
        EXPECT_FALSE(TsSequence::parseRange(bad, r)) << bad;
    }
}

// Frames written as files: frame f is a flat grey of f / 100.
class SequenceScene : public ::testing::Test {
protected:
    void SetUp() override {
        dir = testTempPath(::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void writeFrame(int frame, int width = 8, int height = 4, const char* name = "p.%04d.exr") {
        TsSequence s;
        std::string error;
        ASSERT_TRUE(TsSequence::parse(pattern(name), s, error));
        const float v = static_cast<float>(frame) / 100.0f;
        ASSERT_TRUE(
            TsPlateIO::write(PiImage(width, height, {v, v, v, 1.0f}), s.pathOf(frame), error))
            << error;
    }
    std::string pattern(const char* name = "p.%04d.exr") const { return dir + "/" + name; }
    RCShdPtr<TsSequenceClip> open(const std::string& range, TsMissingFrames missing,
                                  std::string& error) const {
        return TsSequenceClip::open(pattern(), {range, missing}, "", error);
    }
    static float grey(const PiClip& clip, double time) {
        const PiImagePtr image = clip.getImageAt(time);
        return image ? image->getPixel(0, 0).r : -1.0f;
    }
    std::string dir;
};

TEST_F(SequenceScene, TheRangeIsFoundOnDiskAndFramesOutsideItHoldItsEnds) {
    for (int f : {11, 12, 13}) {
        writeFrame(f);
    }
    std::ofstream(dir + "/p.012.exr") << "other padding: not a frame of the sequence";
    std::string error;
    const auto clip = open("", TsMissingFrames::Refuse, error);
    ASSERT_TRUE(clip) << error;
    EXPECT_EQ(clip->getFrameRange(), (PiFrameRange{11, 13, false}));
    EXPECT_EQ(clip->getClipWidth(), 8);
    EXPECT_FLOAT_EQ(grey(*clip, 12.0), 0.12f);
    EXPECT_FLOAT_EQ(grey(*clip, 12.4), 0.12f) << "the nearest frame";
    EXPECT_FLOAT_EQ(grey(*clip, 2.0), 0.11f);
    EXPECT_FLOAT_EQ(grey(*clip, 99.0), 0.13f);
}

TEST_F(SequenceScene, GapsAreRefusedHeldOrBlack) {
    for (int f : {1, 2, 5}) {
        writeFrame(f);
    }
    std::string error;
    EXPECT_FALSE(open("", TsMissingFrames::Refuse, error));
    EXPECT_NE(error.find("frame 3 of"), std::string::npos) << error;
    EXPECT_NE(error.find("p.0003.exr"), std::string::npos) << error;
    EXPECT_NE(error.find("and 1 more"), std::string::npos) << error;

    const auto held = open("", TsMissingFrames::Hold, error);
    ASSERT_TRUE(held) << error;
    EXPECT_FLOAT_EQ(grey(*held, 4.0), 0.02f);
    const auto black = open("1-6", TsMissingFrames::Black, error);
    ASSERT_TRUE(black) << error;
    EXPECT_EQ(black->getImageAt(3.0)->getPixel(7, 3), (CoRgbaColorTyped<float>{0, 0, 0, 0}));
    EXPECT_EQ(black->getImageAt(6.0)->getWidth(), 8) << "a missing last frame too";
    // A range none of whose frames exists opens nothing.
    EXPECT_FALSE(open("20-30", TsMissingFrames::Black, error));
    EXPECT_NE(error.find("20-30"), std::string::npos) << error;
}

TEST_F(SequenceScene, TheCacheKeepsFramesWithinItsBudgetAndReadsAhead) {
    for (int f = 1; f <= 6; ++f) {
        writeFrame(f);
    }
    TsFrameCache& cache = TsFrameCache::getInstance();
    const std::size_t budget = cache.getBudget();
    const std::size_t frameBytes = 8 * 4 * 4 * sizeof(float);
    cache.setBudget(3 * frameBytes);
    {
        std::string error;
        const auto clip = open("", TsMissingFrames::Refuse, error);
        ASSERT_TRUE(clip) << error;
        for (int f = 1; f <= 5; ++f) {
            grey(*clip, f);
        }
        EXPECT_EQ(clip->getCachedFrames(), (std::vector<int>{3, 4, 5}));
        EXPECT_LE(cache.getUsed(), 3 * frameBytes);
        // Reading ahead fills what is free and pushes nothing out.
        cache.setBudget(4 * frameBytes);
        clip->readAhead(5, 3);
        cache.waitForReadAhead();
        EXPECT_EQ(clip->getCachedFrames(), (std::vector<int>{3, 4, 5, 6}));
        // A render reads afresh and keeps nothing.
        EXPECT_FLOAT_EQ(clip->readFrame(1)->getPixel(0, 0).r, 0.01f);
        EXPECT_EQ(clip->getCachedFrames().size(), 4u);
    }
    EXPECT_EQ(cache.getUsed(), 0u) << "a clip that goes takes its frames";
    cache.setBudget(budget);
}

// A viewer smaller than the plate steps through frames that come with their
// reduced copies: made once, and made by the reader for frames read ahead.
TEST_F(SequenceScene, FramesReadAheadComeReducedForTheViewer) {
    for (int f = 1; f <= 3; ++f) {
        writeFrame(f);
    }
    std::string error;
    const auto clip = open("", TsMissingFrames::Refuse, error);
    ASSERT_TRUE(clip) << error;
    const PiImagePtr reduced = clip->getReducedAt(1, 2);
    ASSERT_TRUE(reduced);
    EXPECT_EQ(reduced->getWidth(), 4);
    EXPECT_EQ(reduced->getHeight(), 2);
    EXPECT_FLOAT_EQ(reduced->getPixel(1, 1).r, clip->getImageAt(1)->getPixel(2, 2).r);
    EXPECT_EQ(clip->getReducedAt(1, 2).get(), reduced.get()) << "kept, not made again";
    TsFrameCache& cache = TsFrameCache::getInstance();
    clip->readAhead(1, 2);
    cache.waitForReadAhead();
    const std::size_t frameBytes = 8 * 4 * 4 * sizeof(float);
    EXPECT_EQ(cache.getUsed(), 3 * (frameBytes + frameBytes / 4));
}

// A keyer over the sequence with an animated key.
class ShotRenderScene : public SequenceScene {
protected:
    void SetUp() override {
        SequenceScene::SetUp();
        for (int f = 1; f <= 6; ++f) {
            writeFrame(f);
        }
        outputs = {{"matte", TsViewMode::Matte, dir + "/out/matte.####.exr"},
                   {"comp", TsViewMode::Composite, dir + "/out/comp.####.png"}};
        fs::create_directories(dir + "/out");
        std::string error;
        scene.setPlate(open("", TsMissingFrames::Refuse, error), "p");
        node = scene.getActiveNode();
        PiTypedAnimInput<double> overall(node->getMatteParamInput(TsMgTypes::Overall));
        overall.setKey(1.0, 0.1);
        overall.setKey(6.0, 0.9);
        node->getKeyColorInput(TsTypes::KeyColor1)
            ->setValue(0.0, PiValue(CoRgbColorTyped<float>(0.0f, 0.04f, 0.0f)));
    }
    TsShotRender::Result render(PiFrameRange range, bool resume = false) {
        TsShotRender::Options options;
        options.frames = range;
        options.resume = resume;
        return TsShotRender::run(*node, outputs, options);
    }
    std::vector<TsShotRender::Output> outputs;
    TsKeyerScene scene;
    RCShdPtr<TsKeyerNode> node;
};

TEST_F(ShotRenderScene, ARenderedRangeEqualsSingleFrameRenders) {
    const TsShotRender::Result result = render({1, 6, false});
    ASSERT_TRUE(result.ok) << result.error;
    EXPECT_EQ(result.written, 6);
    for (int f = 1; f <= 6; ++f) {
        std::string error;
        const PiImagePtr written =
            TsPlateIO::read(TsShotRender::framePath(outputs[0].pattern, f), error);
        ASSERT_TRUE(written) << error;
        const PiImagePtr single = TsViewRender::render(*node, f, TsViewMode::Matte);
        for (int j = 0; j < 4; ++j) {
            for (int i = 0; i < 8; ++i) {
                EXPECT_EQ(written->getPixel(i, j).r, single->getPixel(i, j).r) << f;
            }
        }
    }
}

TEST_F(ShotRenderScene, AResumedRenderRedoesOnlyWhatIsIncomplete) {
    ASSERT_TRUE(render({1, 6, false}).ok);
    const std::string damaged = TsShotRender::framePath(outputs[1].pattern, 4);
    fs::resize_file(damaged, fs::file_size(damaged) / 2);
    fs::remove(TsShotRender::framePath(outputs[0].pattern, 5));
    const TsShotRender::Result resumed = render({1, 6, false}, true);
    ASSERT_TRUE(resumed.ok) << resumed.error;
    EXPECT_EQ(resumed.written, 2);
    EXPECT_EQ(resumed.skipped, 4);
    EXPECT_TRUE(TsShotRender::isComplete(damaged, 8, 4));
}

TEST_F(ShotRenderScene, AFailingFrameStopsTheRenderNamingItsFile) {
    fs::remove(dir + "/p.0003.exr");
    // The clip opened before the frame went: its read fails.
    const TsShotRender::Result result = render({1, 6, false});
    EXPECT_FALSE(result.ok);
    EXPECT_NE(result.error.find("frame 3"), std::string::npos) << result.error;
    EXPECT_NE(result.error.find("p.0003.exr"), std::string::npos) << result.error;
    EXPECT_FALSE(result.unfinished.empty());
    EXPECT_EQ(result.unfinished.front(), 3);
}

} // namespace
