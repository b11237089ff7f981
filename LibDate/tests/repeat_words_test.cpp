#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

class RepeatWords : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 1, 8, 0, 0, 0, ZBDate::C_GMT)); }
    void TearDown() override
    {
        set_zblocale(nullptr);
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
};

ZBDateRepeat rule(const char* text)
{
    ZBDateRepeat repeat;
    EXPECT_FALSE(iszbwarn(repeat.from_string(text))) << text;
    return repeat;
}

} // namespace

TEST_F(RepeatWords, RulesDescribeThemselves)
{
    struct {
        const char* rule;
        const char* words;
    } rows[] = {
        {"T=2@N=1@A=32400", "Every day at 09:00"},
        {"T=2@N=1@A=32400,63000", "Every day at 09:00, 17:30"},
        {"T=3@N=2@D=1,3@A=61200", "Every 2 weeks on Mon, Wed at 17:00"},
        {"T=4@N=1@D=-2,-1,95", "Every month on 2nd last, last, last Friday"},
        {"T=5@N=1@D=159", "Every year on 60th day in Jan"},
        {"T=5@N=1@D=1102", "Every year on 3 Jun"},
        {"T=5@N=1@D=5012", "Every year on Tuesday week 2"},
        {"T=2@N=1@W=2", "Every day only on work days"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(row.words, rule(row.rule).to_natural(nullptr));
    }
}

TEST_F(RepeatWords, OffsetsReadFromTheStartOrForATaskFromTheDueDate)
{
    struct {
        const char* rule;
        const char* words;
    } rows[] = {
        {"T=3@D=1", "End of last repeat."},
        {"T=3@D=1@O=3610", "01:00 after start."},
        {"T=3@D=1@O=3610@C=3", "01:00 before end."},
        {"T=3@D=1@O=-61210", "At 17:00."},
        {"T=3@D=1@O=-61210@C=3", "Due date at 17:00."},
        {"T=3@D=1@O=-161210", "1 day after at 17:00."},
        {"T=3@D=1@O=-261210@C=3", "2 days before at 17:00."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.rule);
        EXPECT_EQ(row.words, rule(row.rule).offset_to_natural());
    }
}

TEST_F(RepeatWords, TimesFollowTheLocaleClock)
{
    ZBLocale* twelve = new ZBLocale;
    twelve->set_24hour_clock(false);
    set_zblocale(twelve);
    EXPECT_EQ("Every day at 09:00 AM, 05:30 PM", rule("T=2@N=1@A=32400,63000").to_natural(nullptr));
    EXPECT_EQ("At 05:00 PM.", rule("T=3@D=1@O=-61210").offset_to_natural());
}

TEST_F(RepeatWords, ExclusionsReadAsRangesOfDays)
{
    ZBDateRepeat repeat = rule("T=2@N=1@X=20260304,2026030620260307");
    EXPECT_EQ("04/Mar/2026-04/Mar/2026,06/Mar/2026-07/Mar/2026", repeat.get_exclude_string());
    EXPECT_EQ("Excluding 04/Mar/2026-04/Mar/2026,06/Mar/2026-07/Mar/2026", repeat.range_to_string(true));
    // The stored text keeps its own compact form.
    EXPECT_EQ("T=2@N=1@X=20260304,2026030620260307", repeat.to_string());
}
