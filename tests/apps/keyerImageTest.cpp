// What the viewer shows of the keyer, and what a session writes: the view
// modes, renders that follow the inputs, the viewer-resolution path of a
// drag, outputs read back, and the matte's score on the demo plate.
#include "sessionScene.h"
#include "ui/viewerScene.h"

#include "host/sessionArgs.h"
#include "host/viewerDriver.h"

#include <gfx/mfCurrentToolEventHandler.h>
#include <gfx/mfToolset.h>
#include <pluginAPI/piTimePath.h>
#include <tesseraCore/demo/tsDemoPlate.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/render/tsViewRender.h>

#include <OpenImageIO/imageio.h>

#include <QImage>

#include <fstream>
#include <sstream>

namespace {

class KeyerImageScene : public SessionScene {
protected:
    void SetUp() override {
        SessionScene::SetUp();
        ok("plate demo 640 360\nbackground demo");
        const CoRgbColorTyped<float> screen = session->getDemo()->pickScreenColour();
        std::ostringstream key;
        key << "set keyColor1 " << screen.r << " " << screen.g << " " << screen.b;
        keyColour = key.str();
    }
    UiViewer& viewer() const { return session->getViewer(); }
    TsViewRenderer& renderer() const {
        return dynamic_cast<TsViewRenderer&>(*viewer().getViewRenderer());
    }
    std::string keyColour;
};

TEST_F(KeyerImageScene, TheViewerShowsTheModeAndRendersOnlyWhenAnInputChanged) {
    ok("view matte\nexpect mode == matte");
    const PiImagePtr first = viewer().getImage();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getWidth(), 640);
    const int renders = renderer().getRenderCount();
    EXPECT_EQ(viewer().getImage().get(), first.get()) << "nothing changed: the same image";
    EXPECT_EQ(renderer().getRenderCount(), renders);

    // With black key colours nothing is keyed; the screen's colour keys the
    // screen out.
    EXPECT_EQ(first->getPixel(4, 350).r, 1.0f);
    ok(keyColour);
    const PiImagePtr keyed = viewer().getImage();
    EXPECT_EQ(renderer().getRenderCount(), renders + 1);
    EXPECT_EQ(keyed->getPixel(4, 350).r, 0.0f);
    EXPECT_EQ(keyed->getPixel(4, 350).a, 1.0f) << "a matte view is opaque grey";

    // Undo is an input change too.
    ok("undo");
    EXPECT_EQ(viewer().getImage()->getPixel(4, 350).r, 1.0f);

    ok("redo\nview status");
    const PiImagePtr status = viewer().getImage();
    for (int i = 0; i < 640; i += 7) {
        const float s = status->getPixel(i, 180).r;
        EXPECT_TRUE(s == 0.0f || s == 0.5f || s == 1.0f) << s;
    }
    ok("view source");
    EXPECT_EQ(viewer().getImage()->getPixel(10, 10).g,
              session->getPlate()->getImageAt(0)->getPixel(10, 10).g);
    EXPECT_EQ(run("view alpha"), "test.tss:1: unknown view mode \"alpha\" (expected source, "
                                 "matte, status, foreground or composite)");
}

TEST_F(KeyerImageScene, ADragShowsTheViewerResolutionAndItsEndTheFullOne) {
    ok(keyColour + "\nview composite");
    TsKeyerNode& node = shown();
    auto tool = rcMake<SliderTool>(
        node.getSpillInput(0),
        RCShdPtr<const PiTimePath>(new PiTimePath(viewer().getTimeClient(), viewer().getPath())),
        GePoint2<float>(320.0f, 180.0f));
    auto handler = rcMake<MfCurrentToolEventHandler>(rcMake<MfToolset>(viewer()));
    handler->appendTool("Adjust Spill", tool);
    viewer().setEventHandler(handler);

    ok("press 320 180\nmove 330 180");
    const PiImagePtr during = viewer().getImage();
    ASSERT_TRUE(during);
    EXPECT_EQ(during->getWidth(), 320) << "a 640 plate in a 480 window: halved";
    EXPECT_EQ(renderer().getReducedRenderCount(), 1);
    // The half-size image is painted over the whole plate: the screen shows
    // the same colour at the plate's corners as the reduced render holds.
    const QImage shot = viewer().grab().toImage();
    for (const auto& [i, j] : {std::pair{0, 0}, std::pair{639, 359}, std::pair{100, 300}}) {
        const GePoint2<float> at =
            ViewerDriver::plateToWindow(viewer().getView(), {i + 0.5, j + 0.5});
        unsigned char shown[4];
        session->getDisplayTransform().apply(during->row(j / 2) + 4 * (i / 2), shown, 1);
        EXPECT_NEAR(shot.pixelColor(static_cast<int>(at.x), static_cast<int>(at.y)).green(),
                    shown[1], 5)
            << i << "," << j;
    }
    ok("move 340 180");
    EXPECT_NE(viewer().getImage().get(), during.get()) << "each step re-renders";
    ok("release 340 180");
    const PiImagePtr after = viewer().getImage();
    EXPECT_EQ(after->getWidth(), 640);
    // The full render is the pass's own at the new values.
    const PiImagePtr reference = TsViewRender::render(node, 0.0, TsViewMode::Composite);
    EXPECT_EQ(after->getPixel(321, 181).r, reference->getPixel(321, 181).r);
    EXPECT_EQ(stack().getUndoName(), "Set Spill");
    viewer().setEventHandler(RCShdPtr<PiEventHandler>());
}

TEST_F(KeyerImageScene, OutputsAreWrittenAndReadBack) {
    ok(keyColour + "\nwrite source out/source.exr\nwrite matte out/matte.png\n"
                   "write viewer out/viewer.png\nwrite summary out/summary.txt");
    // The source written as EXR reads back as the plate it was.
    ok("plate out/source.exr\nexpect plate == out/source.exr 640x360");
    ok("expect pixel source 100 200 == " + [&] {
        const CoRgbaColorTyped<float> c = session->getPlate()->getImageAt(0)->getPixel(100, 200);
        std::ostringstream s;
        s << SessionArgs::format(c.r) << " " << SessionArgs::format(c.g) << " "
          << SessionArgs::format(c.b) << " 1";
        return s.str();
    }());
    EXPECT_EQ(run("expect score all < 1"),
              "test.tss:1: there is no ground truth: the plate is not the demo plate");
    EXPECT_EQ(run("write truth out/truth.exr"),
              "test.tss:1: there is no ground truth: the plate is not the demo plate");

    std::string error;
    const PiImagePtr matte = TsPlateIO::read(path("out/matte.png"), error);
    ASSERT_TRUE(matte) << error;
    EXPECT_EQ(matte->getWidth(), 640);
    const QImage shot(QString::fromStdString(path("out/viewer.png")));
    EXPECT_EQ(shot.width(), 480);
    EXPECT_EQ(shot.height(), 270);

    std::ifstream summary(path("out/summary.txt"));
    std::stringstream text;
    text << summary.rdbuf();
    EXPECT_NE(text.str().find("plate:      demo (640 x 360)"), std::string::npos) << text.str();
    EXPECT_NE(text.str().find("  edges    "), std::string::npos) << text.str();
    EXPECT_NE(text.str().find("undo history: 1 step done, 0 undone\n  1. keyColor1"),
              std::string::npos)
        << text.str();
    EXPECT_NE(text.str().find("  viewer: " + path("out/viewer.png")), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(path("out/summary.txt.part")));
}

// As compositors read them: the matte alone in an EXR's alpha channel, the
// foreground premultiplied RGBA.
TEST_F(KeyerImageScene, ExrOutputsHoldTheMatteInAlphaAndThePremultipliedForeground) {
    ok(keyColour + "\nwrite matte out/matte.exr\nwrite foreground out/fg.exr");
    const PiImagePtr fg = TsViewRender::render(shown(), 0.0, TsViewMode::Foreground);
    auto read = [&](const std::string& file, std::vector<std::string> channels) {
        auto in = OIIO::ImageInput::open(path(file));
        EXPECT_TRUE(in) << file;
        std::vector<float> data;
        if (in) {
            EXPECT_EQ(in->spec().channelnames, channels) << file;
            EXPECT_EQ(in->spec().alpha_channel, static_cast<int>(channels.size()) - 1);
            data.resize(fg->getPixelCount() * channels.size());
            EXPECT_TRUE(in->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, data.data()));
        }
        return data;
    };
    const std::vector<float> matte = read("out/matte.exr", {"A"});
    const std::vector<float> rgba = read("out/fg.exr", {"R", "G", "B", "A"});
    ASSERT_EQ(matte.size(), fg->getPixelCount());
    int partial = 0;
    for (int y = 0; y < fg->getHeight(); ++y) {
        for (int x = 0; x < fg->getWidth(); ++x) {
            // The file's rows go top down.
            const CoRgbaColorTyped<float> c = fg->getPixel(x, fg->getHeight() - 1 - y);
            const float* p = rgba.data() + 4 * (y * fg->getWidth() + x);
            ASSERT_EQ(matte[y * fg->getWidth() + x], c.a) << x << "," << y;
            ASSERT_EQ(p[3], c.a);
            ASSERT_FLOAT_EQ(p[1], c.g * c.a) << x << "," << y;
            partial += c.a > 0.0f && c.a < 1.0f;
        }
    }
    EXPECT_GT(partial, 0) << "the edges are soft";
}

TEST_F(KeyerImageScene, KeyingTheScreenColourBringsTheMatteCloseToTheTruth) {
    ok("print score all");
    const std::string unkeyed = takePrinted();
    ok(keyColour + "\nexpect score outside < 0.05\nexpect score inside < 0.05\n"
                   "expect score edge < 0.5\nprint score all");
    const std::string keyed = takePrinted();
    double before = 0.0;
    double after = 0.0;
    ASSERT_TRUE(SessionArgs::parseNumber(
        unkeyed.substr(unkeyed.find("= ") + 2, unkeyed.size() - unkeyed.find("= ") - 3), before));
    ASSERT_TRUE(SessionArgs::parseNumber(
        keyed.substr(keyed.find("= ") + 2, keyed.size() - keyed.find("= ") - 3), after));
    EXPECT_LT(after, before / 4) << unkeyed << keyed;
}

TEST_F(KeyerImageScene, DemoPlateVariantsComeWithTheirTruth) {
    ok("plate demo 160 90 subject fur spill 2 seed 3 grain 0.5 uneven 4\n"
       "expect plate == demo 160x90\nwrite truth out/truth.exr");
    const TsDemoPlate& demo = *session->getDemo();
    EXPECT_EQ(demo.getOptions().subject, TsDemoPlate::Subject::Fur);
    EXPECT_EQ(demo.getOptions().seed, 3u);
    EXPECT_EQ(demo.getOptions().uneven, 4.0);
    std::string error;
    const PiImagePtr truth = TsPlateIO::read(path("out/truth.exr"), error);
    ASSERT_TRUE(truth) << error;
    // The foreground read back straight, with the true alpha.
    int compared = 0;
    for (int j = 0; j < 90; j += 3) {
        for (int i = 0; i < 160; i += 3) {
            const CoRgbaColorTyped<float> t = truth->getPixel(i, j);
            const CoRgbaColorTyped<float> f = demo.getTruthForeground()->getPixel(i, j);
            ASSERT_EQ(t.a, demo.getTruthAlpha()->getPixel(i, j).r);
            if (t.a > 0.05f) {
                ASSERT_NEAR(t.r, f.r, 1e-4f);
                ++compared;
            }
        }
    }
    EXPECT_GT(compared, 50);
    ok("print score hair");
    EXPECT_EQ(takePrinted().rfind("score hair = ", 0), 0u);

    EXPECT_EQ(run("plate demo subject cat"),
              "test.tss:1: unknown subject \"cat\" (expected portrait, darkhair, lighthair, "
              "fur, lattice or stem)");
    EXPECT_EQ(run("plate demo 64 64 grain -1"),
              "test.tss:1: the demo plate's grain is a multiplier from 0 to 10");
    EXPECT_EQ(run("plate demo seed 2 colour 3")
                  .rfind("test.tss:1: unknown demo plate option \"colour\"", 0),
              0u);
    ok("expect plate == demo 160x90");

    // A demo shot: the truth of the frame shown.
    ok("plate demo 160 90 frames 20 seed 5\nframe 12\nwrite truth out/truth12.exr");
    EXPECT_EQ(session->getPlate()->getFrameRange(), (PiFrameRange{1, 20, false}));
    const PiImagePtr truth12 = TsPlateIO::read(path("out/truth12.exr"), error);
    ASSERT_TRUE(truth12) << error;
    const PiImagePtr frame12 = session->getDemo()->getTruthAlpha();
    EXPECT_EQ(truth12->getPixel(100, 40).a, frame12->getPixel(100, 40).r);
    ok("frame 1");
    EXPECT_NE(session->getDemo()->getTruthAlpha().get(), frame12.get());
    EXPECT_EQ(run("plate demo frames 0"), "test.tss:1: a demo shot has 1 to 10000 frames");
}

TEST_F(KeyerImageScene, AFileThatIsNoImageIsRefusedAndThePlateStays) {
    {
        std::ofstream junk(path("junk.exr"));
        junk << "not an image";
    }
    const std::string error = run("plate junk.exr");
    EXPECT_EQ(error.rfind("test.tss:1: cannot read plate \"" + path("junk.exr") + "\"", 0), 0u)
        << error;
    ok("expect plate == demo 640x360\nbackground none\nexpect background == none");
    EXPECT_EQ(run("background demo\nplate out.exr\nbackground demo").rfind("test.tss:2:", 0), 0u);
}

} // namespace
