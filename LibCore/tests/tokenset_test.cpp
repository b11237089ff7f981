#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibCore/textstr/zbtokenset.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Tervalon;

namespace {

std::vector<std::string> tokens_of(const std::string& text, bool upper = false)
{
    ZBTokenSet set;
    zb_tokenise(text, set, upper);
    std::vector<std::string> out;
    while (!set.empty())
        out.push_back(set.pop_token());
    return out;
}

} // namespace

TEST(TokenSet, MultiTokenMarksMatchOnlyWhenExact)
{
    ZBTokenSet set;
    zb_tokenise("  $<X", set);
    EXPECT_TRUE(set.match("$<"));
    EXPECT_EQ(set.first_token(), "X");

    ZBTokenSet other;
    zb_tokenise(" $X", other);
    EXPECT_FALSE(other.match("$<"));
    // Only the white space went.
    EXPECT_EQ(other.size(), 2);
    EXPECT_EQ(other.first_token(), "$");

    ZBTokenSet split;
    zb_tokenise("$ <", split);
    EXPECT_FALSE(split.match("$<"));
    EXPECT_TRUE(split.match('$'));
    EXPECT_TRUE(split.match('<'));
    EXPECT_TRUE(split.empty());
    EXPECT_FALSE(split.match("x"));
}

TEST(TokenSet, MatchDoesNotOvershootAToken)
{
    ZBTokenSet set;
    zb_tokenise("EVERY 2", set);
    EXPECT_FALSE(set.match("EVER"));
    EXPECT_TRUE(set.match("every", true));
    EXPECT_TRUE(set.is_numeric());
}

TEST(TokenSet, LexerKindsAndLineNumbers)
{
    ZBTokenSet set;
    zb_tokenise("Due date_1 -12\n\n  at 9:30", set, false, 5);
    std::vector<std::string> expected = {"Due", " ", "date_", "1", " ", "-", "12", "\n\n  ", "at", " ", "9", ":", "30"};
    ASSERT_EQ(set.size(), int(expected.size()));
    for (int i = 0; i < set.size(); ++i)
        EXPECT_EQ(set.get_token(i), expected[size_t(i)]) << i;
    EXPECT_EQ(set.get_line_no(0), 5);
    EXPECT_EQ(set.get_line_no(7), 5);
    EXPECT_EQ(set.get_line_no(8), 7);
    EXPECT_EQ(set.last_token(), "30");
    EXPECT_EQ(set.pop_last_token(), "30");
    EXPECT_EQ(set.get_line_no(set.size() - 1), 7);
}

TEST(TokenSet, PushReadersStopWhereTheirKindEnds)
{
    ZBTokenSet set;
    std::string text = "-42-7abc_DEF9 x";
    int pos = set.push_numeric(text, 0, 1);
    EXPECT_EQ(pos, 3);
    pos = set.push_numeric(text, pos, 1);
    EXPECT_EQ(set.last_token(), "-7");
    pos = set.push_alpha(text, pos, true, 1);
    EXPECT_EQ(set.last_token(), "ABC_DEF");
    EXPECT_EQ(set.push_alpha(text, pos, false, 1), pos);
    pos = set.push_alphanum(text, pos, false, 1);
    EXPECT_EQ(set.last_token(), "9");
    pos = set.push_whitespace(text, pos, 1);
    EXPECT_EQ(pos, int(text.size()) - 1);
    // Out-of-range positions push nothing.
    int before = set.size();
    EXPECT_EQ(set.push_alpha(text, 99, false, 1), 99);
    EXPECT_EQ(set.push_numeric(text, -3, 1), -3);
    EXPECT_EQ(set.size(), before);
}

TEST(TokenSet, FirstTokenTestsLookPastWhiteSpace)
{
    ZBTokenSet set;
    zb_tokenise("   week", set);
    EXPECT_TRUE(set.is_alphabetic());
    EXPECT_FALSE(set.is_numeric());
    set.remove_all();
    zb_tokenise(" -5", set);
    EXPECT_FALSE(set.is_numeric()); // the lexer leaves '-' on its own
    set.remove_all();
    set.push_numeric("-5", 0, 1);
    EXPECT_TRUE(set.is_numeric());
    set.remove_all();
    EXPECT_FALSE(set.is_alphabetic());
    EXPECT_EQ(set.first_token(), "");
    EXPECT_EQ(set.pop_token(), "");
    EXPECT_EQ(set.pop_last_token(), "");
}

TEST(TokenSet, HostileInputNeitherCrashesNorLosesBytes)
{
    std::string hostile("a\0b", 3);
    hostile += "\xFF\xFE caf\xC3\xA9 \xE2\x82 \t\r\n";
    hostile += std::string(10000, '(');
    ZBTokenSet set;
    zb_tokenise(hostile, set, true);
    std::string joined;
    int count = set.size();
    while (!set.empty())
        joined += set.pop_token();
    EXPECT_EQ(joined.size(), hostile.size());
    EXPECT_GT(count, 10000);
    EXPECT_EQ(tokens_of("caf\xC3\xA9!", false), (std::vector<std::string>{"caf\xC3\xA9", "!"}));
    EXPECT_EQ(tokens_of("", false).size(), 0u);
}

TEST(TokenSet, ReadingALongInputFromTheFrontStaysLinear)
{
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += "a ";
    ZBTokenSet set;
    zb_tokenise(text, set);
    ASSERT_EQ(set.size(), 400000);
    int words = 0;
    while (!set.empty()) {
        set.pop_whitespace();
        if (set.match("a"))
            ++words;
    }
    EXPECT_EQ(words, 200000);
}

TEST(TokenSet, WhitespaceAtBothEnds)
{
    ZBTokenSet set;
    zb_tokenise(" \t x y \n ", set);
    EXPECT_EQ(set.pop_whitespace(), 1);
    EXPECT_EQ(set.pop_last_whitespace(), 1);
    EXPECT_EQ(set.first_token(), "x");
    EXPECT_EQ(set.last_token(), "y");
}
