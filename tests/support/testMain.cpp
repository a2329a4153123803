// The main of every test program: GoogleTest, with the host's error echo
// silenced (tests read reports through ExReporter instead).
#include <base/exReporter.h>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ExReporter::getInstance().setEcho(false);
    return RUN_ALL_TESTS();
}
