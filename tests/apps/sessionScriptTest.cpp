#include "host/sessionScript.h"
#include "host/sessionArgs.h"
#include "host/sessionInterpreter.h"

#include <gtest/gtest.h>
#include <tesseraCore/setup/tsValueText.h>

namespace {

std::vector<std::string> words(const std::string& line) {
    SessionScript::Line out;
    std::string error;
    EXPECT_TRUE(SessionScript::split(line, out, error)) << error;
    return out.words;
}

TEST(SessionScript, WordsQuotesEscapesAndComments) {
    EXPECT_EQ(words("hotkey \"Sample Patch 1\"  # the first patch"),
              (std::vector<std::string>{"hotkey", "Sample Patch 1"}));
    // A # inside a word is part of it (frame patterns: shot.####.exr).
    EXPECT_EQ(words("echo \"a # inside\" b#c #d"),
              (std::vector<std::string>{"echo", "a # inside", "b#c"}));
    EXPECT_EQ(words("rename keyer1 \"say \\\"hi\\\" \\\\ back\""),
              (std::vector<std::string>{"rename", "keyer1", "say \"hi\" \\ back"}));
    EXPECT_EQ(words("set patchNames \"\" x"),
              (std::vector<std::string>{"set", "patchNames", "", "x"}));
    EXPECT_TRUE(words("   # only a comment").empty());
}

TEST(SessionScript, LinesKeepTheirNumbersAndAnOpenQuoteNamesItsLine) {
    const SessionScript script =
        SessionScript::parse("# header\n\nplate demo\n  \nundo 2 # twice\n", "s.tss");
    ASSERT_EQ(script.getLines().size(), 2u);
    EXPECT_EQ(script.getLines()[0].number, 3);
    EXPECT_EQ(script.getLines()[1].number, 5);
    EXPECT_EQ(script.getLines()[1].text, "undo 2");
    try {
        SessionScript::parse("plate demo\nhotkey \"Sample Matte\n", "bad.tss");
        FAIL() << "an open quote was accepted";
    } catch (const SessionError& e) {
        EXPECT_EQ(e.getLine(), 2);
        EXPECT_EQ(std::string(e.what()).rfind("bad.tss:2: the quote opened at column 8", 0), 0u)
            << e.what();
    }
}

TEST(SessionCompare, NumbersCompareAsNumbersAndTextAsWords) {
    std::string why;
    EXPECT_TRUE(
        SessionInterpreter::compare("0.1 0.7 0.2", "==", {"0.1", "0.7000000001", "0.2"}, 0, why));
    EXPECT_FALSE(SessionInterpreter::compare("0.1 0.7 0.2", "==", {"0.1", "0.71", "0.2"}, 0, why));
    EXPECT_FALSE(SessionInterpreter::compare("0.1 0.7", "==", {"0.1", "0.7", "0"}, 0, why));
    EXPECT_TRUE(SessionInterpreter::compare("Pick Key Colour 1",
                                            "==", {"Pick", "Key", "Colour", "1"}, 0, why));
    EXPECT_TRUE(SessionInterpreter::compare("\"Patch 1\" \"Patch 2\"", "==", {"Patch 1", "Patch 2"},
                                            0, why));
    EXPECT_TRUE(SessionInterpreter::compare("Set Key Colour", "!=", {"Set", "Spill"}, 0, why));
    EXPECT_TRUE(SessionInterpreter::compare("0.52", "~", {"0.5"}, 0.05, why));
    EXPECT_FALSE(SessionInterpreter::compare("0.52", "~", {"0.5"}, 0.01, why));
    EXPECT_NE(why.find("apart"), std::string::npos);
    EXPECT_TRUE(SessionInterpreter::compare("3", "<", {"4"}, 0, why));
    EXPECT_FALSE(SessionInterpreter::compare("4", "<", {"4"}, 0, why));
    EXPECT_TRUE(SessionInterpreter::compare("4", ">=", {"4"}, 0, why));
    EXPECT_TRUE(
        SessionInterpreter::compare("viewer: no handler", "contains", {"no", "handler"}, 0, why));
    EXPECT_THROW(SessionInterpreter::compare("Sample Matte", "<", {"3"}, 0, why),
                 SessionArgs::Error);
    EXPECT_THROW(SessionInterpreter::compare("1 2", ">", {"1", "2"}, 0, why), SessionArgs::Error);
}

} // namespace
