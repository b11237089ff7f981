// The foundation's moment and the full date agree: one clock, one format.
#include "LibCore/error/zberrdetails.h"
#include "LibCore/time/zbmoment.h"
#include "LibDate/date/zbdatemoment.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

using namespace Tervalon;

TEST(DateMoment, ConversionsKeepTheInstantAndBlankStaysBlank)
{
    const ZBDate date(2026, 2, 9, 8, 30, 15, 250000, ZBDate::C_GMT);
    const ZBMoment moment = zb_moment_from_date(date);
    EXPECT_EQ(date.to_micros(), moment.to_micros());
    EXPECT_EQ(date, zb_date_from_moment(moment, ZBDate::C_GMT));
    EXPECT_TRUE(zb_moment_from_date(ZBDate(ZBDate::E_Blank)).is_blank());
    EXPECT_TRUE(zb_moment_from_date(ZBDate()).is_blank());
    EXPECT_TRUE(zb_date_from_moment(ZBMoment()).is_blank());
}

TEST(DateMoment, FixingTheDateClockFixesTheFoundationsClock)
{
    const ZBDate fixed(2026, 4, 1, 9, 0, 0, 0, ZBDate::C_GMT);
    ZBDateUtils::set_fixed_now(fixed);
    EXPECT_EQ(fixed.to_micros(), ZBMoment::now().to_micros());
    EXPECT_EQ(fixed.to_micros(), ZBDateUtils::unow());
    ZBDateUtils::clear_fixed_now();
    EXPECT_NE(fixed.to_micros(), ZBMoment::now().to_micros());
}

TEST(DateMoment, RecordTimesPrintThroughTheDateFormats)
{
    // 14 November 2023, 22:13:20 UTC; the tests fix the machine's zone to UTC.
    const ZBMoment moment(1700000000000005LL);
    EXPECT_EQ("14/Nov/2023 22:13:20.000005", ZBErrDetails::format_time(moment.to_micros(), true));
    // Codes only the date library knows show that its formatter is the one in use.
    EXPECT_EQ("Tuesday November", moment.to_string("%A %B"));
    EXPECT_EQ(zb_date_from_moment(moment).to_string("%D %H:%M:%U"), moment.to_string("%D %H:%M:%U"));
    EXPECT_EQ(ZBMoment::plain_format(moment, "%D %H:%M:%U"), moment.to_string("%D %H:%M:%U"));
}
