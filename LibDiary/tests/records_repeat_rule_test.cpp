#include "LibDiary/diary/zbdentry.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace Tervalon;

namespace {

std::string text_of(const ZBObject& object)
{
    std::string text;
    EXPECT_EQ(object.object_to_string(text, 0), ZBErrC_ok);
    return text;
}

// Records that never repeat share one rule that does not repeat; a rule given
// to one record must stay that record's alone, through copies too.
TEST(RecordRepeatRule, EachRecordKeepsItsOwnRule)
{
    ZBDEntry weekly;
    ZBDEntry plain;
    weekly.edit_repeat().from_string("T=3@N=1");
    EXPECT_TRUE(weekly.get_repeat().is_repeating());
    EXPECT_FALSE(plain.get_repeat().is_repeating());
    EXPECT_FALSE(ZBDEntry().get_repeat().is_repeating());

    ZBDEntry copy(weekly);
    copy.edit_repeat().set_interval(2);
    EXPECT_EQ(weekly.get_repeat().to_string(), "T=3@N=1");
    EXPECT_FALSE(copy == weekly);

    plain = weekly;
    EXPECT_TRUE(plain == weekly);
    weekly.set_defaults(true);
    EXPECT_FALSE(weekly.get_repeat().is_repeating());
    EXPECT_EQ(plain.get_repeat().to_string(), "T=3@N=1");

    plain = weekly;
    EXPECT_FALSE(plain.get_repeat().is_repeating());
    EXPECT_TRUE(plain == weekly);
}

// A text read over a live record replaces its rule, also with none.
TEST(RecordRepeatRule, ReadingReplacesTheRule)
{
    ZBDEntry weekly;
    weekly.set_summary("Weekly");
    weekly.edit_repeat().from_string("T=3@N=1");
    ZBDEntry plain;
    plain.set_summary("Plain");
    const std::string weeklyText = text_of(weekly);
    const std::string plainText = text_of(plain);
    EXPECT_NE(weeklyText.find("@Rpt"), std::string::npos);
    EXPECT_EQ(plainText.find("Rpt"), std::string::npos);

    ZBDEntry live;
    ASSERT_FALSE(iszbwarn(live.object_from_string(weeklyText, 0)));
    EXPECT_EQ(live.get_repeat().to_string(), "T=3@N=1");
    EXPECT_EQ(text_of(live), weeklyText);
    ASSERT_FALSE(iszbwarn(live.object_from_string(plainText, 0)));
    EXPECT_FALSE(live.get_repeat().is_repeating());
    EXPECT_EQ(text_of(live), plainText);
}

} // namespace
