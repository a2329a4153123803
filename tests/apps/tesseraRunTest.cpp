// tessera-run as a process: exit statuses, errors naming the script's file
// and line, outputs.
#include "support/runProgram.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

using Result = ProgramResult;

// Runs a shell command; standard output and error together.
Result run(const std::string& command) {
    return runProgram(command + " 2>&1");
}

const std::string runner = std::string(TESSERA_BIN_DIR) + "/tessera-run";

class TesseraRunScene : public ::testing::Test {
protected:
    void SetUp() override {
        dir = std::filesystem::temp_directory_path() /
              ("tessera-run-" + std::to_string(::getpid()) + "-" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir);
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    std::string script(const std::string& name, const std::string& text) const {
        const std::string p = (dir / name).string();
        std::ofstream(p) << text;
        return p;
    }

    std::filesystem::path dir;
};

TEST_F(TesseraRunScene, ABadScriptFailsWithItsFileAndLine) {
    const std::string s =
        script("bad.tss", "plate demo 128 72\n# a comment\nframe one\nset overall 0.2\n");
    const Result r = run(runner + " --quiet " + s);
    EXPECT_EQ(r.status, 1);
    EXPECT_NE(r.out.find("tessera-run: " + s + ":3: bad number \"one\" for frame"),
              std::string::npos)
        << r.out;

    const std::string w =
        script("widget.tss", "plate demo 128 72\nwidget matte noSuchToggle toggle\n");
    const Result unknownWidget = run(runner + " --quiet " + w);
    EXPECT_EQ(unknownWidget.status, 1);
    EXPECT_NE(unknownWidget.out.find(w + ":2: "), std::string::npos) << unknownWidget.out;

    const std::string e = script("expect.tss", "set overall 0.25\nexpect input overall == 0.5\n");
    const Result failed = run(runner + " --quiet " + e);
    EXPECT_EQ(failed.status, 1);
    EXPECT_NE(failed.out.find(e + ":2: expected input overall == 0.5, but it is 0.25"),
              std::string::npos)
        << failed.out;
}

} // namespace

namespace {

// Every session-script example of the docs (a block fenced as ```tss in
// docs/*.md) runs, so that the docs say what tessera-run does. An example
// is replayed from a script whose lines are numbered as in its document, so
// that a failure names the document's line.
TEST_F(TesseraRunScene, EveryExampleInTheDocsRuns) {
    const std::filesystem::path docs =
        std::filesystem::path(std::getenv("TESSERA_SOURCE_DIR")) / "docs";
    int examples = 0;
    for (const auto& entry : std::filesystem::directory_iterator(docs)) {
        if (entry.path().extension() != ".md") {
            continue;
        }
        const std::string doc = entry.path().filename().string();
        std::ifstream in(entry.path());
        std::string line;
        std::string example;
        int number = 0;
        int start = 0;
        while (std::getline(in, line)) {
            ++number;
            if (!start && line == "```tss") {
                start = number;
                example = std::string(static_cast<std::size_t>(number), '\n');
            } else if (start && line == "```") {
                const Result r = run(runner + " --quiet --out " + (dir / "out").string() + " " +
                                     script(doc + ".tss", example));
                EXPECT_EQ(r.status, 0) << "the example of " << doc << " at line " << start << ":\n"
                                       << r.out;
                ++examples;
                start = 0;
            } else if (start) {
                example += line + "\n";
            }
        }
        EXPECT_EQ(start, 0) << "an example of " << doc << " is not closed";
    }
    EXPECT_GT(examples, 0);
}

} // namespace

namespace {

// A setup rendered with no window system: neither the program nor the
// keyer's core needs an interface library, no platform plugin is asked for,
// and the pixels are those a session writes from the same setup.
TEST_F(TesseraRunScene, ASetupRendersWithNoWindowSystem) {
    for (const std::string& binary :
         {runner, std::string(TESSERA_BIN_DIR) + "/../lib/libZNtesseraCore.so"}) {
        const Result needed = run("readelf -d " + binary);
        ASSERT_EQ(needed.status, 0) << needed.out;
        EXPECT_NE(needed.out.find("NEEDED"), std::string::npos);
        EXPECT_EQ(needed.out.find("Qt"), std::string::npos) << binary << "\n" << needed.out;
    }
    const std::string s = script("key.tss", "plate demo 160 90\nset keyColor1 0.1 0.6 0.15\n"
                                            "set overall 0.4\nsave key.tessera\n"
                                            "write source plate.exr\nwrite matte matte.png\n");
    ASSERT_EQ(run(runner + " --quiet --out " + dir.string() + " " + s).status, 0);
    const std::string d = dir.string() + "/";
    const Result render = run("env -u QT_QPA_PLATFORM -u DISPLAY -u WAYLAND_DISPLAY " + runner +
                              " --render " + d + "key.tessera --plate " + d + "plate.exr --out " +
                              d + "r --write matte matte.png --write foreground fg.exr");
    ASSERT_EQ(render.status, 0) << render.out;
    EXPECT_EQ(render.out.find("QStandardPaths"), std::string::npos) << render.out;
    const Result same = run("idiff -a " + d + "matte.png " + d + "r/matte.png");
    EXPECT_EQ(same.status, 0) << same.out;

    // Frame patterns are written for each frame of the range.
    const Result shot = run("env -u QT_QPA_PLATFORM -u DISPLAY " + runner + " --render " + d +
                            "key.tessera --plate " + d + "plate.exr --out " + d +
                            "r --frames 7-9 --write matte m.####.png");
    ASSERT_EQ(shot.status, 0) << shot.out;
    for (const char* frame : {"0007", "0008", "0009"}) {
        EXPECT_EQ(run("idiff -a " + d + "matte.png " + d + "r/m." + frame + ".png").status, 0);
    }
    const Result missing = run(runner + " --render " + d + "key.tessera --plate " + d +
                               "none.exr --write matte " + d + "x.png");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.out.find(d + "none.exr"), std::string::npos) << missing.out;
    EXPECT_EQ(run(runner + " --render " + d + "key.tessera --plate demo").status, 2);
}

// A damaged configuration in $OCIO is reported with its file, and the
// shipped one serves: the session and a batch render both run.
TEST_F(TesseraRunScene, ADamagedOcioConfigurationIsReportedAndTheShippedOneServes) {
    const std::string config = script("damaged.ocio", "ocio_profile_version: 2\nroles: [oops\n");
    const std::string s = script("key.tss", "plate demo 160 90\nexpect reports == 1\n"
                                            "expect report contains " +
                                                config +
                                                "\n"
                                                "expect colorspace working == Linear Rec.709\n"
                                                "save key.tessera\nwrite source plate.exr\n");
    const std::string env = "env OCIO=" + config + " ";
    const Result session = run(env + runner + " --quiet --out " + dir.string() + " " + s);
    EXPECT_EQ(session.status, 0) << session.out;
    const std::string d = dir.string() + "/";
    const Result render = run(env + runner + " --render " + d + "key.tessera --plate " + d +
                              "plate.exr --out " + d + "r --write matte matte.exr");
    EXPECT_EQ(render.status, 0) << render.out;
    EXPECT_NE(render.out.find("cannot read the colour configuration \"" + config + "\""),
              std::string::npos)
        << render.out;
    EXPECT_TRUE(std::filesystem::exists(d + "r/matte.exr"));
}

} // namespace
