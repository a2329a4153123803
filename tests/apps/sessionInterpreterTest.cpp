#include "sessionScene.h"

#include <pluginAPI/piPath.h>
#include <tesseraCore/tsSetup.h>
#include <ui/uiViewer.h>

#include <fstream>

namespace {

// --- errors name the script and the line

TEST_F(SessionScene, ABadLineStopsTheRunNamingFileAndLine) {
    EXPECT_EQ(run("plate demo 128 72\n\nbogus 1 2\nundo\n", "s.tss"),
              "s.tss:3: unknown command \"bogus\"");
    EXPECT_EQ(run("frame 1.5x", "s.tss"), "s.tss:1: bad number \"1.5x\" for frame");
    EXPECT_EQ(run("press 10", "s.tss"), "s.tss:1: missing point y");
    EXPECT_EQ(run("press 10 20 hyper", "s.tss"),
              "s.tss:1: unknown modifier \"hyper\" (expected shift, ctrl, alt or meta, or a "
              "button: left, middle or right)");
    EXPECT_EQ(run("# nothing\nload missing.tessera", "s.tss").rfind("s.tss:2: ", 0), 0u);
    EXPECT_NE(run("load missing.tessera").find("missing.tessera"), std::string::npos);
    EXPECT_EQ(run("plate nowhere.exr"), "test.tss:1: cannot read plate \"" + path("nowhere.exr") +
                                            "\": No such file or directory");
    EXPECT_EQ(run("select keyer9"), "test.tss:1: no node \"keyer9\" in the keyer");
    EXPECT_EQ(run("undo"), "test.tss:1: there are 0 steps to undo, not 1");
    EXPECT_EQ(run("viewer colour"),
              "test.tss:1: the viewer's node has no stage \"colour\" (its stages: matte, degrain, "
              "spill)");
    EXPECT_EQ(run("tool Paint"), "test.tss:1: no stage of the viewer's node has a tool \"Paint\"");
    EXPECT_EQ(run("hotkey \"No Such Entry\""), "test.tss:1: no hotkey entry \"No Such Entry\"");
    EXPECT_EQ(run("key Hyper"), "test.tss:1: unknown key \"Hyper\"");
    EXPECT_EQ(run("set overall 0.5 0.2"), "test.tss:1: input \"overall\": expected 1 number");
    EXPECT_EQ(run("expect tool"), "test.tss:1: missing the comparison (==, !=, <, <=, >, >=, ~ "
                                  "or contains)");
    EXPECT_EQ(run("expect frame =="), "test.tss:1: missing the expected value");
    EXPECT_EQ(run("print colour"), "test.tss:1: unknown state \"colour\"");
    EXPECT_EQ(run("write matte out.tif"),
              "test.tss:1: cannot write image \"" + path("out.tif") +
                  "\": unsupported extension \".tif\" (images are written as .exr, .png or .jpg)");
    // Nothing of this left the session in a broken state.
    ok("plate demo 128 72\nset overall 0.25\nexpect input overall == 0.25");
}

TEST_F(SessionScene, AFailedExpectationSaysWhatItFound) {
    ok("set overall 0.25");
    EXPECT_EQ(run("\nexpect input overall == 0.3"),
              "test.tss:2: expected input overall == 0.3, but it is 0.25");
    EXPECT_EQ(run("expect input overall ~ 0.3 within 0.01"),
              "test.tss:1: expected input overall ~ 0.3, but it is 0.25 (more than 0.01 apart)");
    ok("expect input overall ~ 0.3 within 0.1\nexpect undo name == overall");
    EXPECT_EQ(interpreter->getExpectCount(), 2);
}

// --- setups

TEST_F(SessionScene, ASavedSetupLoadsBackAndABadOneIsRefusedWithItsLine) {
    ok("keyer nodes 2\n"
       "set overall 0.125\n"
       "set keyer2/spill.range 0.75\n"
       "save setups/a.tessera\n"
       "set overall 0.9\n"
       "set keyer2/spill.range 0.1\n"
       "load setups/a.tessera\n"
       "expect input overall == 0.125\n"
       "expect input keyer2/spill.range == 0.75\n"
       "expect undo name == Load Setup\n"
       "undo\n"
       "expect input overall == 0.9\n");
    {
        std::ofstream bad(path("bad.tessera"));
        bad << "tessera-setup 1\nnode \"keyer1\"\ninput \"overall\" double zero\nend\n";
    }
    const std::string error = run("set overall 0.4\nload bad.tessera");
    EXPECT_EQ(error.rfind("test.tss:2: ", 0), 0u) << error;
    EXPECT_NE(error.find("bad.tessera:3"), std::string::npos) << error;
    ok("expect input overall == 0.4");
}

} // namespace
