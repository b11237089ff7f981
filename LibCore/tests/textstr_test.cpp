#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbregexp.h"
#include "LibCore/textstr/zbtagvalue.h"
#include "LibCore/textstr/zbtextstr.h"

#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

using namespace Tervalon;

namespace {

class TextHelpers : public Tervalon::Test::QuietErrors {};

} // namespace

TEST_F(TextHelpers, WhitespaceFlagsApplyInOrderAndKeepInnerRuns)
{
    EXPECT_EQ(zb_elim_whitespace("  a  b ", true, true, true, true), "a  b");
    EXPECT_EQ(zb_elim_whitespace("\ta\r\nb\t", true, true, false, false), " ab ");
    // Tabs become blanks before trimming, so a trailing tab goes too.
    EXPECT_EQ(zb_elim_whitespace("x\t", true, false, false, true), "x");
    EXPECT_EQ(zb_elim_whitespace("x\t", false, false, false, false), "x\t");
    EXPECT_EQ(zb_elim_whitespace("a\nb", false, true, true, true), "ab");
    EXPECT_EQ(zb_elim_whitespace("   ", true, true, true, true), "");
    EXPECT_EQ(zb_skip_space(" \t x", 0), 3);
    EXPECT_EQ(zb_skip_space("  ", 0), 2);
    EXPECT_EQ(zb_skip_space("ab", 7), 2);
}

TEST_F(TextHelpers, FindInVectorRefusesAmbiguousAbbreviations)
{
    std::vector<std::string> months = {"January", "February", "March", "April", "May", "June", "July"};
    EXPECT_EQ(zb_find_in_vector("J", months, true, true), -1);
    EXPECT_EQ(zb_find_in_vector("ju", months, true, true), -1);
    EXPECT_EQ(zb_find_in_vector("jan", months, true, true), 0);
    EXPECT_EQ(zb_find_in_vector("jan", months, true, false), -1);
    EXPECT_EQ(zb_find_in_vector("May", months, false, false), 4);
    EXPECT_EQ(zb_find_in_vector("Ma", months, false, true), -1);
    EXPECT_EQ(zb_find_in_vector("x", {}, true, true), -1);
    // An exact entry wins over a longer one it prefixes.
    EXPECT_EQ(zb_find_in_vector("may", {"Mayday", "May"}, true, true), 1);
}

TEST_F(TextHelpers, CaseFoldingCoversAsciiAndUnicode)
{
    EXPECT_EQ(zb_compare_nocase("Apple", "apple"), 0);
    EXPECT_LT(zb_compare_nocase("apple", "Banana"), 0);
    EXPECT_GT(zb_compare_nocase("abc", "AB"), 0);
    EXPECT_EQ(zb_compare_nocase("\xC3\x89t\xC3\xA9", "\xC3\xA9T\xC3\x89"), 0);
    EXPECT_EQ(zb_toupper("stra\xC3\x9F" "e"), "STRASSE");
    EXPECT_EQ(zb_find_nocase("The Quick fox", "QUICK"), 4);
    EXPECT_EQ(zb_find_nocase("abcabc", "C", 3), 5);
    EXPECT_EQ(zb_find_nocase("abc", "abcd"), -1);
    // Stray bytes pass through untouched.
    EXPECT_EQ(zb_tolower("A\xFF"), "a\xFF");
}

TEST_F(TextHelpers, ForeignEncodingsBecomeUtf8)
{
    EXPECT_EQ(zb_clean_unicode("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(zb_clean_unicode("\x93quoted\x94"), "\xE2\x80\x9Cquoted\xE2\x80\x9D");
    EXPECT_EQ(zb_clean_unicode("caf\xC3\xA9"), "caf\xC3\xA9");
    // Overlong forms and surrogates are not UTF-8.
    EXPECT_FALSE(zb_is_valid_utf8("\xC0\xAF"));
    EXPECT_FALSE(zb_is_valid_utf8("\xED\xA0\x80"));
    EXPECT_TRUE(zb_is_valid_utf8(zb_clean_unicode("\xC0\xAF\xED\xA0\x80\xF4\x90\x80\x80")));
    EXPECT_EQ(zb_clean_string("\x01  a\x7F b\t\n"), "a b");
    EXPECT_EQ(zb_clean_paragraphs("\r\n\r\nfirst  \r\nsecond\r\r\r\nthird\n\n"), "first\nsecond\n\nthird");
}

TEST_F(TextHelpers, StreamEscapingRoundTripsAndKeepsALoneTrailingBackslash)
{
    EXPECT_EQ(zb_stream_out("a\nb\\c\rd"), "a\\nb\\\\cd");
    EXPECT_EQ(zb_stream_out(std::string("x\0y", 3)), "xy");
    EXPECT_EQ(zb_stream_in("a\\nb\\\\c\\qd"), "a\nb\\cqd");
    EXPECT_EQ(zb_stream_in("end\\"), "end\\");
    for (const std::string& text : {std::string("plain"), std::string("\\n literal"), std::string("\\"),
                                    std::string("line\nbreak\\\\"), std::string("")})
        EXPECT_EQ(zb_stream_in(zb_stream_out(text)), text) << text;
    // Escaped twice, a line feed stands as two backslashes and 'n'.
    EXPECT_EQ(zb_stream_out(zb_stream_out("\n")), "\\\\n");
}

TEST_F(TextHelpers, CsvRoundTripsAwkwardFields)
{
    std::vector<std::string> fields = {"plain", "with,comma", "say \"hi\"", "two\nlines", " padded ", "", "caf\xC3\xA9"};
    std::string line = zb_csv_line(fields);
    std::istringstream in(line + "\nnext,row\n");
    std::vector<std::string> read;
    EXPECT_EQ(zb_read_csv(in, read), ZBErrC_ok);
    EXPECT_EQ(read, fields);
    EXPECT_EQ(zb_read_csv(in, read), ZBErrC_ok);
    EXPECT_EQ(read, (std::vector<std::string>{"next", "row"}));
    EXPECT_EQ(zb_read_csv(in, read), ZBErrC_okEndOfFile);
}

TEST_F(TextHelpers, CsvLinesFromOtherProgramsAreReadForgivingly)
{
    std::vector<std::string> f;
    EXPECT_EQ(zb_read_csv("a,\"b\"\"c\",,d\r", f), ZBErrC_ok);
    EXPECT_EQ(f, (std::vector<std::string>{"a", "b\"c", "", "d"}));
    EXPECT_EQ(zb_read_csv("x;y", f, ';'), ZBErrC_ok);
    EXPECT_EQ(f.size(), 2u);
    EXPECT_EQ(zb_read_csv("\"open", f), ZBErrC_okNotFinished);
    EXPECT_EQ(zb_read_csv("", f), ZBErrC_ok);
    EXPECT_EQ(f, (std::vector<std::string>{""}));
    std::istringstream unterminated("\"never closed\nrest");
    EXPECT_EQ(zb_read_csv(unterminated, f), ZBErrC_ok);
    EXPECT_EQ(f, (std::vector<std::string>{"never closed\nrest"}));
}

TEST_F(TextHelpers, MovingReportsPositionsOutsideTheText)
{
    int pos = 0;
    EXPECT_EQ(zb_move_to("a=b=c", '=', pos), ZBErrC_ok);
    EXPECT_EQ(pos, 1);
    pos = 2;
    zb_move_to("a=b=c", '=', pos);
    EXPECT_EQ(pos, 3);
    pos = 4;
    zb_move_to("a=b=c", '=', pos);
    EXPECT_EQ(pos, 5);
    pos = 9;
    EXPECT_TRUE(iszbwarn(zb_move_to("abc", 'x', pos)));
    EXPECT_EQ(get_zberror().top()->get_code(), ZBErrC_StringBounds);
    EXPECT_TRUE(iszberr(zb_move_to(static_cast<const char*>(nullptr), 'x', pos)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "Assertion Failed: ( strng != nullptr )");
    pos = 0;
    std::string out;
    zb_read_to("key: value", ":;", pos, out);
    EXPECT_EQ(out, "key");
    EXPECT_EQ(pos, 3);
    char buffer[4];
    EXPECT_EQ(zb_copy_string(buffer, "abcdef", 4), ZBErrC_ok);
    EXPECT_STREQ(buffer, "abc");
    EXPECT_TRUE(iszberr(zb_copy_string(nullptr, "a", 4)));
}

TEST_F(TextHelpers, SplittingReplacingAndWrapping)
{
    EXPECT_EQ(zb_tokenise("a,,b,", ",", false), (std::vector<std::string>{"a", "", "b", ""}));
    EXPECT_EQ(zb_tokenise("a,,b,", ",", true), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(zb_replace_substr("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(zb_replace_substr("abc", "", "x"), "abc");
    std::string text = "one two one";
    EXPECT_EQ(zb_replace_substr(text, "one", "1", false), 1);
    EXPECT_EQ(text, "1 two one");
    std::string tag, value;
    EXPECT_TRUE(zb_tag_value("Hostname=pc=1", tag, value));
    EXPECT_EQ(value, "pc=1");
    EXPECT_FALSE(zb_tag_value("novalue", tag, value));
    EXPECT_EQ(zb_line_wrap("the quick brown fox", 9), "the quick\nbrown fox");
    EXPECT_EQ(zb_line_wrap("a verylongwordhere b", 5), "a\nverylongwordhere\nb");
    EXPECT_EQ(zb_line_wrap("keep\n\nbreaks", 20), "keep\n\nbreaks");
    EXPECT_EQ(zb_line_wrap("\xC3\xA9\xC3\xA9\xC3\xA9 \xC3\xA9\xC3\xA9", 6), "\xC3\xA9\xC3\xA9\xC3\xA9 \xC3\xA9\xC3\xA9");
}

TEST_F(TextHelpers, NumberReadersAreStrictAndIgnoreTheLocale)
{
    bool ok = true;
    EXPECT_EQ(zb_string_to_int(" 42 ", 0, &ok), 42);
    EXPECT_TRUE(ok);
    EXPECT_EQ(zb_string_to_int("42abc", -1, &ok), -1);
    EXPECT_FALSE(ok);
    EXPECT_EQ(zb_string_to_int("99999999999", 7, &ok), 7);
    EXPECT_FALSE(ok);
    EXPECT_EQ(zb_string_to_int("+5"), 5);
    EXPECT_EQ(zb_string_to_int("", 3, &ok), 3);
    EXPECT_EQ(zb_string_to_long("-9000000000"), -9000000000LL);
    EXPECT_DOUBLE_EQ(zb_string_to_double("1.5e3"), 1500.0);
    EXPECT_DOUBLE_EQ(zb_string_to_double("1,5", -1.0, &ok), -1.0);
    EXPECT_FALSE(ok);
    for (double v : {0.1, -2.5, 1e-300, 123456789.125, 1.0 / 3.0})
        EXPECT_EQ(zb_string_to_double(zb_double_to_string(v)), v);
    EXPECT_EQ(zb_double_to_string(0.1), "0.1");
    EXPECT_EQ(zb_double_to_string(2.0), "2");
    EXPECT_EQ(zb_double_to_string(2.345, 2), "2.35");
    EXPECT_TRUE(zb_string_to_bool(" Yes "));
    EXPECT_FALSE(zb_string_to_bool("off", true));
    EXPECT_TRUE(zb_string_to_bool("maybe", true, &ok));
    EXPECT_FALSE(ok);
}

TEST_F(TextHelpers, TagValuesAndPatterns)
{
    ZBTagValue tags;
    tags.from_string("file=a%20b&count=3&ratio=x", '&');
    EXPECT_EQ(tags.get_string("file"), "a%20b");
    EXPECT_EQ(tags.get_int("count"), 3);
    EXPECT_DOUBLE_EQ(tags.get_double("ratio", 1.5), 1.5);
    EXPECT_EQ(tags.get_int("missing", -1), -1);

    EXPECT_TRUE(ZBRegExp::match_filespec("*.zbd", "Diary.ZBD"));
    EXPECT_TRUE(ZBRegExp::match_filespec("d?ary*", "diary backup.zbd"));
    EXPECT_FALSE(ZBRegExp::match_filespec("*.zbd", "diary.zbd.bak"));
    EXPECT_TRUE(ZBRegExp::match_filespec("caf?.txt", "caf\xC3\xA9.txt"));
    // Many stars do not blow up.
    EXPECT_FALSE(ZBRegExp::match_filespec(std::string(30, '*') + "b", std::string(5000, 'a')));
    EXPECT_TRUE(ZBRegExp::match_regex("^wo+rk$", "WOOORK", true, false));
    EXPECT_FALSE(ZBRegExp::match_regex("work", "homework", false, true));
    EXPECT_FALSE(ZBRegExp::match_regex("([", "anything", false, false));
    EXPECT_TRUE(iszbwarn(-1));
}
