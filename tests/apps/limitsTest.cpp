// Limits on what a file may ask for: a plate's size, read from its header
// before anything is allocated; a panel description's nesting and widget
// count, checked before the designer-file loader sees it; names, one rule
// and one length on every path; and memory that runs out during a command,
// which fails the command alone.
#include "sessionScene.h"

#include "support/runProgram.h"

#include <base/znLimits.h>
#include <tesseraCore/io/tsPlateIO.h>
#include <tesseraCore/setup/tsValueText.h>
#include <tesseraCore/tsSetup.h>
#include <ui/uiPanelDescription.h>

#include <OpenImageIO/imageio.h>

#include <fstream>
#include <sys/resource.h>

namespace {

namespace fs = std::filesystem;

using Limits = SessionScene;

// A 64 x 64 EXR whose display window is `width` x `height`.
void writeExr(const std::string& path, int width, int height) {
    OIIO::ImageSpec spec(64, 64, 4, OIIO::TypeDesc::HALF);
    spec.full_width = width;
    spec.full_height = height;
    const std::vector<float> pixels(64 * 64 * 4, 0.5f);
    auto out = OIIO::ImageOutput::create(path);
    ASSERT_TRUE(out && out->open(path, spec));
    ASSERT_TRUE(out->write_image(OIIO::TypeDesc::FLOAT, pixels.data()));
    ASSERT_TRUE(out->close());
}

TEST_F(Limits, APlateIsRefusedByItsHeaderBeyondTheLimitThatAnOptionRaises) {
    writeExr(path("wide.exr"), 20000, 20000);
    EXPECT_EQ(run("plate wide.exr"),
              "test.tss:1: cannot read plate \"" + path("wide.exr") +
                  "\": its display window is 20000 x 20000 pixels, more than the 67108864 a plate "
                  "may have (--max-plate-pixels raises the limit)");
    EXPECT_EQ(session->getPlate(), nullptr);

    writeExr(path("small.exr"), 64, 64);
    std::ofstream(dir / "small.tss") << "plate small.exr\n";
    const std::string runner = std::string(TESSERA_BIN_DIR) + "/tessera-run --quiet ";
    const ProgramResult low =
        runProgram(runner + "--max-plate-pixels 4095 " + path("small.tss") + " 2>&1");
    EXPECT_EQ(low.status, 1);
    EXPECT_NE(low.out.find("64 x 64 pixels, more than the 4095 a plate may have"),
              std::string::npos)
        << low.out;
    EXPECT_EQ(runProgram(runner + "--max-plate-pixels 4096 " + path("small.tss")).status, 0);
    EXPECT_EQ(runProgram(runner + "--max-plate-pixels lots " + path("small.tss")).status, 2);
}

TEST_F(Limits, APanelDescriptionNestedTooDeepOrTooLargeIsRefusedWithItsLine) {
    const std::string head = "<?xml version=\"1.0\"?>\n<ui version=\"4.0\">\n";
    std::string deep = head;
    for (int i = 0; i < ZnLimits::PanelDepth; ++i) {
        deep += "<widget class=\"QWidget\" name=\"w" + std::to_string(i) + "\">\n";
    }
    std::ofstream(dir / "deep.ui") << deep;
    std::string wide = head + "<widget class=\"QWidget\" name=\"top\">\n";
    for (int i = 0; i < ZnLimits::PanelWidgets; ++i) {
        wide += "<widget class=\"QLabel\" name=\"l" + std::to_string(i) + "\"/>\n";
    }
    std::ofstream(dir / "wide.ui") << wide << "</widget>\n</ui>\n";

    LiString error;
    EXPECT_EQ(UiPanelDescription::build(path("deep.ui"), nullptr, error), nullptr);
    EXPECT_EQ(error, "panel description " + path("deep.ui") +
                         ":258: elements nested more than 256 deep (refused)");
    EXPECT_EQ(UiPanelDescription::build(path("wide.ui"), nullptr, error), nullptr);
    EXPECT_EQ(error,
              "panel description " + path("wide.ui") + ":10003: more than 10000 widgets (refused)");
}

// Memory that runs out in a command (here the address space limited to a
// little more than the process has) fails that command with "not enough
// memory"; the session, its plate and its history are as they were, and
// the next command runs.
TEST_F(Limits, ACommandThatRunsOutOfMemoryFailsAloneAndTheSessionGoesOn) {
#if defined(TESSERA_SANITIZED)
    GTEST_SKIP() << "the sanitizers reserve more address space than any limit leaves";
#else
    ok("plate demo 64 64\nset overall 0.25\nset overall 0.5\nundo\n");
    const PiClipPtr plate = session->getPlate();
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0;
    statm >> pages;
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_AS, &before), 0);
    rlimit limited = before;
    limited.rlim_cur = pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + (256u << 20);
    ASSERT_EQ(::setrlimit(RLIMIT_AS, &limited), 0);
    const std::string error = run("frame 1\nplate demo 8192 8192\n");
    ::setrlimit(RLIMIT_AS, &before);

    EXPECT_EQ(error, "test.tss:2: not enough memory");
    EXPECT_EQ(session->getPlate().get(), plate.get());
    EXPECT_EQ(stack().getUndoCount(), 1);
    EXPECT_EQ(stack().getRedoCount(), 1);
    ok("redo\nexpect input overall == 0.5\nundo 2\nexpect input overall == 0.5 within 0");
#endif
}

} // namespace
