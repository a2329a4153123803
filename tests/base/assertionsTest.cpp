// An assertion names the place it failed at from the project's root, whatever
// path the build gave the compiler.
#include <base/assertions.h>
#include <base/exBase.h>

#include <gtest/gtest.h>

namespace {

TEST(Assertions, FailNamesTheCallersFileAndLine) {
    int line = 0;
    try {
        line = __LINE__ + 1;
        Assertions::fail("x > 0");
    } catch (const ExAssertionFailed& e) {
        EXPECT_EQ(e.getPath(), "tests/base/assertionsTest.cpp");
        EXPECT_EQ(e.getLine(), line);
        EXPECT_EQ(e.getExpression(), "x > 0");
    }
    EXPECT_NE(line, 0);
}

TEST(Assertions, ProjectPathsStartAtTheProjectsTopFolder) {
    for (const auto& [given, expected] : std::vector<std::pair<const char*, const char*>>{
             {"../../platform/src/ui/uiGrab.cpp", "platform/src/ui/uiGrab.cpp"},
             {"./tools/tessera/src/a.cpp", "tools/tessera/src/a.cpp"},
             {"/home/me/src/tessera/apps/host/b.cpp", "apps/host/b.cpp"},
             {"/tools/x/platform/include/base/c.h", "platform/include/base/c.h"},
             {"elsewhere.cpp", "elsewhere.cpp"}}) {
        EXPECT_EQ(Assertions::projectPath(given), expected) << given;
    }
}

} // namespace
