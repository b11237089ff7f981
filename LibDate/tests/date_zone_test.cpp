#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/tests/tzguard.h"

#include <gtest/gtest.h>

using namespace Tervalon;
using Tervalon::Test::TzGuard;

TEST(DateZone, EncodingRoundTripsThroughSeconds)
{
    struct {
        int seconds;
        bool dst;
        int zone;
    } rows[] = {
        {0, false, 0},          {0, true, 1},          {3600, false, 7200},  {3600, true, 7201},
        {-18000, false, -36000}, {-18000, true, -36001}, {19800, false, 39600}, {43200, false, 86400},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.zone);
        EXPECT_EQ(row.zone, ZBDateUtils::seconds_to_zone(row.seconds, row.dst, false));
        EXPECT_EQ(row.seconds, ZBDateUtils::zone_to_seconds(row.zone, false));
        EXPECT_EQ(row.seconds + (row.dst ? 3600 : 0), ZBDateUtils::zone_to_seconds(row.zone, true));
        EXPECT_EQ(row.dst, ZBDateUtils::zone_is_dst(row.zone));
        // The offset seen on a summer clock, adjusted, gives the same zone.
        EXPECT_EQ(row.zone, ZBDateUtils::seconds_to_zone(ZBDateUtils::zone_to_seconds(row.zone, true), row.dst, true));
    }
    // Offsets beyond the range give GMT.
    EXPECT_EQ(ZBDate::C_GMT, ZBDateUtils::seconds_to_zone(90000, false, false));
    EXPECT_EQ(7201, ZBDateUtils::set_dst_flag(7200, true));
    EXPECT_EQ(-36001, ZBDateUtils::set_dst_flag(-36000, true));
    EXPECT_EQ(-36000, ZBDateUtils::set_dst_flag(-36001, false));
    EXPECT_EQ(7200, ZBDateUtils::set_dst_flag(7200, false));
    EXPECT_TRUE(ZBDateUtils::zones_equivalent(7200, 7201));
    EXPECT_TRUE(ZBDateUtils::zones_equivalent(-36000, -36001));
    EXPECT_FALSE(ZBDateUtils::zones_equivalent(7200, 7202));
}

TEST(DateZone, ZoneTexts)
{
    struct {
        int zone;
        int keep;
        const char* text;
    } rows[] = {
        {0, 0, "GMT"},
        {7200, 0, "GMT+01 NODST"},
        {7201, 0, "GMT+01 DST"},
        {-36000, 0, "GMT-05 NODST"},
        {39600, 0, "GMT+05:30 NODST"},
        {2 * 3601, 0, "GMT+01:00:01 NODST"},
        {ZBDate::C_LocalTime, 0, "Local Time"},
        {ZBDate::C_OriginalTime, 7201, "Keep (GMT+01 DST)"},
        {ZBDate::C_OriginalTime, ZBDate::C_LocalTime, "Keep (Local Time)"},
        {ZBDate::C_OriginalTime, ZBDate::C_DefaultTime, "Keep"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text, ZBDateUtils::zone_to_string(row.zone, row.keep));
}

TEST(DateZone, ADateNeverKeepsASymbolicZone)
{
    ZBDate d(2026, 5, 0, 12, 0, 0, 0, ZBDate::C_DefaultTime);
    EXPECT_EQ(0, d.get_timezone()); // TZ=UTC
    d.set_timezone(ZBDate::C_OriginalTime);
    EXPECT_EQ(0, d.get_timezone());
    d.set_timezone(7200);
    d.set_timezone(ZBDate::C_OriginalTime);
    EXPECT_EQ(7200, d.get_timezone());
    zblocale().set_timezone(-36000);
    d.set_timezone(ZBDate::C_DefaultTime);
    EXPECT_EQ(-36000, d.get_timezone());
    zblocale().set_timezone(ZBDate::C_LocalTime);
}

TEST(DateZone, LondonSummerAndWinterThroughTheCLibrary)
{
    TzGuard tz("Europe/London");
    EXPECT_EQ(0, ZBDateUtils::local_standard_zone());
    EXPECT_TRUE(ZBDateUtils::date_is_dst(0, 6, 2026));
    EXPECT_FALSE(ZBDateUtils::date_is_dst(0, 0, 2026));
    // 29 March 2026 is the change-over day; noon already counts as summer.
    EXPECT_FALSE(ZBDateUtils::date_is_dst(27, 2, 2026));
    EXPECT_TRUE(ZBDateUtils::date_is_dst(28, 2, 2026));
    ZBDate summer(2026, 6, 0, 12, 0, 0, 0, ZBDate::C_LocalTime);
    EXPECT_EQ(1, summer.get_timezone());
    EXPECT_EQ(11 * 3600, summer.get_second_of_day());
    ZBDate winter(2026, 0, 0, 12, 0, 0, 0, ZBDate::C_LocalTime);
    EXPECT_EQ(0, winter.get_timezone());
    EXPECT_EQ(12 * 3600, winter.get_second_of_day());
    EXPECT_TRUE(ZBDateUtils::date_is_local(summer));
    EXPECT_EQ("12:00", summer.to_string("%H:%M %z"));
    ZBDate t;
    t.set_time_t(1782907200, ZBDate::C_LocalTime); // 1 July 2026 12:00 UTC
    EXPECT_EQ("13:00", t.to_string("%H:%M"));
}

TEST(DateZone, CalendarStepsKeepTheClockTimeAcrossAChange)
{
    TzGuard tz("Europe/London");
    ZBDate summer(2026, 6, 0, 9, 30, 0, 0, ZBDate::C_LocalTime);
    ZBDateDetails d(summer, ZBDate::C_LocalTime);
    EXPECT_TRUE(d.m_isDST);
    d.m_month += 6;
    ZBDate winter = d.get_date(ZBDate::C_OriginalTime);
    EXPECT_EQ("2027-01-01 09:30", winter.to_string("%Y-%m-%d %H:%M"));
    EXPECT_EQ(0, winter.get_timezone());
    EXPECT_EQ(9 * 3600 + 1800, winter.get_second_of_day());

    ZBDateDetails forced(summer, ZBDate::C_LocalTime);
    forced.m_forceDST = true;
    forced.m_month += 6;
    ZBDate kept = forced.get_date(ZBDate::C_OriginalTime);
    EXPECT_EQ(1, kept.get_timezone());
    EXPECT_EQ(8 * 3600 + 1800, kept.get_second_of_day());

    // One calendar day over the spring change is 23 hours of elapsed time.
    ZBDate before(2026, 2, 27, 9, 0, 0, 0, ZBDate::C_LocalTime); // 28 March, still winter
    ZBDateDetails step(before, ZBDate::C_LocalTime);
    step.m_dayMonth += 1;
    ZBDate after = step.get_date(ZBDate::C_OriginalTime);
    EXPECT_EQ("2026-03-29 09:00", after.to_string("%Y-%m-%d %H:%M"));
    EXPECT_EQ(23 * 3600, (after - before).get_as_seconds());
    // A plain duration keeps elapsed time instead.
    EXPECT_EQ(24 * 3600, ((before + ZBDuration(1, 0, 0)) - before).get_as_seconds());
}

TEST(DateZone, OtherFixedZonesAreLeftAloneByLocalDST)
{
    TzGuard tz("Europe/London");
    ZBDate paris(2026, 6, 0, 12, 0, 0, 0, 7200);
    ZBDateDetails d(paris, ZBDate::C_OriginalTime);
    d.m_month += 6;
    ZBDate later = d.get_date(ZBDate::C_OriginalTime);
    EXPECT_EQ(7200, later.get_timezone());
    EXPECT_EQ(11 * 3600, later.get_second_of_day());
}

// Zones at and beyond twelve hours: each text reads the clock in its own zone
// or is refused, never taken as another zone.
TEST(DateZone, ZonesOfTwelveHoursAndMore)
{
    const struct {
        const char* text;
        const char* moment; // ISO 8601 in UTC; null: refused
        int zone;
        const char* zoneText;
    } rows[] = {
        {"9-Mar-2026 14:00 UTC+12", "2026-03-09T02:00:00Z", 86400, "GMT+12 NODST"},
        {"9-Mar-2026 14:00 UTC+12 DST", "2026-03-09T01:00:00Z", 86401, "GMT+12 DST"},
        {"9-Mar-2026 14:00 UTC+12:45", "2026-03-09T01:15:00Z", 91800, "GMT+12:45 NODST"},
        {"9-Mar-2026 14:00 UTC+12:45 DST", "2026-03-09T00:15:00Z", 91801, "GMT+12:45 DST"},
        {"9-Mar-2026 14:00 UTC+13", "2026-03-09T01:00:00Z", 93600, "GMT+13 NODST"},
        {"9-Mar-2026 14:00 UTC+14", "2026-03-09T00:00:00Z", 100800, "GMT+14 NODST"},
        {"9-Mar-2026 14:00 UTC-12", "2026-03-10T02:00:00Z", -86400, "GMT-12 NODST"},
        {"9-Mar-2026 14:00 UTC-12 DST", "2026-03-10T01:00:00Z", -86401, "GMT-12 DST"},
        {"9-Mar-2026 14:00 UTC+12:30", nullptr, 0, nullptr},
        {"9-Mar-2026 14:00 UTC+14:30", nullptr, 0, nullptr},
        {"9-Mar-2026 14:00 UTC+15", nullptr, 0, nullptr},
        {"9-Mar-2026 14:00 UTC-13", nullptr, 0, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        ZBDate date;
        const bool read = date.from_string(row.text);
        if (!row.moment) {
            EXPECT_FALSE(read);
            continue;
        }
        ASSERT_TRUE(read);
        EXPECT_EQ(row.moment, date.to_iso());
        EXPECT_EQ(row.zone, date.get_timezone());
        EXPECT_TRUE(ZBDateUtils::is_fixed_zone(date.get_timezone()));
        EXPECT_EQ(row.zoneText, ZBDateUtils::zone_to_string(date.get_timezone()));
        EXPECT_EQ("14:00", date.to_string("%H:%M"));
        // The stored text keeps the zone.
        std::string stored;
        date.write_stored(stored);
        ZBDate back;
        back.read_stored(stored);
        EXPECT_EQ(date, back) << stored;
    }
    // The offsets that would land on the symbolic zones have no code.
    EXPECT_FALSE(ZBDateUtils::offset_has_zone(45000, false));
    EXPECT_FALSE(ZBDateUtils::offset_has_zone(45000, true));
    EXPECT_FALSE(ZBDateUtils::is_fixed_zone(ZBDate::C_LocalTime));
    EXPECT_FALSE(ZBDateUtils::is_fixed_zone(ZBDate::C_DefaultTime));
    EXPECT_EQ(ZBDate::C_GMT, ZBDateUtils::seconds_to_zone(45000, false, false));
}
