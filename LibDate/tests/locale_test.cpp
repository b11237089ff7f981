#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

using namespace Tervalon;

namespace {

// A locale with French names, as the platform would give them.
class FrenchLocale : public ZBLocale {
public:
    FrenchLocale()
    {
        set_local_names({"dim.", "lun.", "mar.", "mer.", "jeu.", "ven.", "sam."},
                        {"dimanche", "lundi", "mardi", "mercredi", "jeudi", "vendredi", "samedi"},
                        {"janv.", "f\xC3\xA9vr.", "mars", "avr.", "mai", "juin", "juil.", "ao\xC3\xBBt", "sept.", "oct.",
                         "nov.", "d\xC3\xA9" "c."},
                        {"janvier", "f\xC3\xA9vrier", "mars", "avril", "mai", "juin", "juillet", "ao\xC3\xBBt",
                         "septembre", "octobre", "novembre", "d\xC3\xA9" "cembre"});
        set_defaultlocale(false);
    }
};

// Puts the English locale back whatever a test installed.
class Locale : public ::testing::Test {
protected:
    void SetUp() override { ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 3, 10, 30, 0, 0, ZBDate::C_GMT)); }
    void TearDown() override
    {
        set_zblocale(nullptr);
        ZBDateUtils::clear_fixed_now();
    }
};

} // namespace

TEST_F(Locale, NamesMatchByUniquePrefixIgnoringCase)
{
    const ZBLocale& locale = zblocale();
    EXPECT_EQ(locale.weekday_number("tu"), 2);
    EXPECT_EQ(locale.weekday_number("THURS"), 4);
    EXPECT_EQ(locale.weekday_number("t"), -1);
    EXPECT_EQ(locale.weekday_number("Mondays"), -1);
    EXPECT_EQ(locale.month_number("j"), -1);
    EXPECT_EQ(locale.month_number("ju"), -1);
    EXPECT_EQ(locale.month_number("jul"), 6);
    EXPECT_EQ(locale.month_number("may"), 4);
    EXPECT_EQ(locale.month_number("SEPTEMBER"), 8);
}

TEST_F(Locale, LocalNamesInUtf8IgnoreCase)
{
    set_zblocale(new FrenchLocale());
    const ZBLocale& locale = zblocale();
    EXPECT_EQ(locale.month_number("F\xC3\x89VRIER"), 1);
    EXPECT_EQ(locale.month_number("ao\xC3\xBBt"), 7);
    EXPECT_EQ(locale.month_number("janv"), 0);
    EXPECT_EQ(locale.month_number("Feb"), 1); // English names still work
    EXPECT_EQ(locale.weekday_number("VENDREDI"), 5);
    EXPECT_EQ(locale.weekday_name(1, false), "lundi");
    EXPECT_EQ(locale.weekday_name(1, true), "lun.");
    EXPECT_EQ(locale.clean_date_string("lundi 3 F\xC3\x89VRIER"), "Mon 3 Feb");
    EXPECT_EQ(locale.clean_date_string("1 janv. 2027"), "1 Jan 2027");
    EXPECT_EQ(ZBDateUtils::read_date("1 f\xC3\xA9vrier 2027").to_iso(), "2027-02-01T10:30:00Z");
    EXPECT_EQ(ZBDateUtils::read_date("vendredi").to_iso(), "2026-03-06T10:30:00Z");
}

TEST_F(Locale, DayFormatsSetTheOrderOfParts)
{
    ZBLocale& locale = zblocale();
    locale.set_day_format(4);
    EXPECT_EQ(locale.get_date_style(), 0);
    EXPECT_EQ(ZBDateUtils::read_date("1/2/03").to_iso(), "2003-01-02T10:30:00Z");
    EXPECT_EQ(locale.day_format(false), "%m/%d/%y");
    EXPECT_EQ(locale.date_format(), "%a %m/%d/%y %H:%M:%S %z");
    locale.set_day_format(9);
    EXPECT_EQ(locale.day_format(true), "%m-%d");
    EXPECT_EQ(locale.get_format_number(), 9);
    locale.set_day_format(99);
    EXPECT_EQ(locale.get_format_number(), 0);
    locale.set_24hour_clock(false);
    EXPECT_EQ(locale.time_format(false), "%I:%M:%S %p %z");
    EXPECT_EQ(locale.date_format(), "%a %d/%m/%y %I:%M:%S %p %z");
}

TEST_F(Locale, Ordinals)
{
    const struct {
        int number;
        bool withLast;
        const char* text;
    } rows[] = {{1, false, "st"},  {2, false, "nd"}, {3, false, "rd"},  {4, false, "th"},       {11, false, "th"},
                {12, false, "th"}, {13, false, "th"}, {21, false, "st"}, {112, false, "th"},     {-1, true, "last"},
                {-2, true, "2nd last"}};
    for (const auto& row : rows)
        EXPECT_EQ(ZBLocale::get_ordinal(row.number, row.withLast), row.text) << row.number;
}

TEST_F(Locale, NumbersAndCurrency)
{
    ZBLocale& locale = zblocale();
    EXPECT_EQ(locale.to_currency(0.004), "$0.00");
    EXPECT_EQ(locale.to_currency(-0.004), "$0.00");
    EXPECT_EQ(locale.to_currency(-1234567.891), "-$1,234,567.89");
    EXPECT_EQ(locale.to_string(1234567L), "1,234,567");
    locale.set_groupsep(".");
    locale.set_decimal(",");
    locale.set_currency("EUR ");
    EXPECT_EQ(locale.to_string(1234.5), "1.234,50");
    EXPECT_DOUBLE_EQ(locale.to_double("EUR 1.234,50"), 1234.5);
    EXPECT_EQ(locale.to_int("1.234"), 1234);
}

TEST_F(Locale, ZonesAndWorkingWeek)
{
    ZBLocale& locale = zblocale();
    auto zones = ZBLocale::get_timezones();
    ASSERT_EQ(zones.size(), 1u + 55u * 2u);
    EXPECT_EQ(zones[0].second, "Local Time");
    EXPECT_EQ(zones[1].second, "GMT+14 NODST");
    EXPECT_TRUE(locale.set_timezone_str("gmt+05:30 nodst"));
    EXPECT_EQ(locale.get_timezone(), ZBDateUtils::seconds_to_zone(19800, false, false));
    locale.set_timezone(ZBDate::C_OriginalTime); // no choice: ignored
    EXPECT_EQ(locale.get_timezone(), ZBDateUtils::seconds_to_zone(19800, false, false));
    EXPECT_EQ(locale.get_workhours(), 8.0);
    EXPECT_TRUE(locale.is_workday(1));
    EXPECT_FALSE(locale.is_workday(0));
    EXPECT_FALSE(locale.is_workday(6));
    locale.set_workdays(0);
    EXPECT_EQ(locale.get_workdays(), ZBLocale::C_DefaultWorkDays);
}

// The flag of the name and format getters asks for the short form.
TEST_F(Locale, ShortFlagGivesTheShortForm)
{
    ZBLocale& locale = zblocale();
    EXPECT_EQ(locale.weekday_name(3, true), "Wed");
    EXPECT_EQ(locale.weekday_name(3, false), "Wednesday");
    EXPECT_EQ(locale.month_name(2, true), "Mar");
    EXPECT_EQ(locale.month_name(2, false), "March");
    EXPECT_EQ(locale.day_format(true), "%d/%b");
    EXPECT_EQ(locale.time_format(true), "%H:%M %z");
    EXPECT_EQ(locale.time_format(false), "%H:%M:%S %z");
    const ZBDate date(2026, 2, 4, 14, 5, 0, 0, ZBDate::C_GMT);
    EXPECT_EQ(date.to_string("%a %A %b %B"), "Thu Thursday Mar March");
    EXPECT_EQ(date.to_string("%T|%i|%t"), "14:05:00|14:05|14:05");
    locale.set_24hour_clock(false);
    EXPECT_EQ(date.to_string("%T|%i|%t"), "02:05:00 PM|02:05 PM|02:05 PM");
    EXPECT_EQ(date.to_string("%E"), "05/Mar/2026 02:05:00 PM");
}

TEST_F(Locale, ZoneTextsNameOneZoneEach)
{
    ZBLocale& locale = zblocale();
    const auto zones = ZBLocale::get_timezones();
    std::set<std::string> labels;
    for (const auto& zone : zones) {
        EXPECT_TRUE(labels.insert(zone.second).second) << zone.second;
        EXPECT_TRUE(zone.first == ZBDate::C_LocalTime || ZBDateUtils::is_fixed_zone(zone.first)) << zone.second;
    }
    EXPECT_TRUE(labels.count("GMT+12 DST"));
    EXPECT_TRUE(labels.count("GMT+12:45 NODST"));
    EXPECT_FALSE(labels.count("GMT+12:30 NODST"));

    locale.set_timezone(7200);
    EXPECT_EQ(locale.get_timezone_str(), "GMT+01 NODST");
    EXPECT_TRUE(locale.set_timezone_str("GMT"));
    EXPECT_EQ(locale.get_timezone(), ZBDate::C_GMT);
    EXPECT_TRUE(locale.set_timezone_str("GMT+12 DST"));
    EXPECT_EQ(locale.get_timezone(), 86401);
    EXPECT_EQ(locale.get_timezone_str(), "GMT+12 DST");
    EXPECT_FALSE(locale.set_timezone_str("GMT+25"));
    EXPECT_EQ(locale.get_timezone(), 86401);
    // The machine's zone is named by its own offset (TZ is UTC here).
    EXPECT_TRUE(locale.set_timezone_str("Local Time"));
    EXPECT_EQ(locale.get_timezone(), ZBDate::C_LocalTime);
    EXPECT_EQ(locale.get_timezone_str(), "GMT");
}

// A reference taken before the locale is replaced stays good: another thread
// may be reading it at that moment.
TEST_F(Locale, ReplacingKeepsTheOldLocaleAlive)
{
    const ZBLocale& before = zblocale();
    set_zblocale(new FrenchLocale());
    EXPECT_EQ(before.weekday_name(1, false), "Monday");
    EXPECT_EQ(zblocale().weekday_name(1, false), "lundi");
    // A change made on a copy is seen by new readers only.
    const ZBLocale& french = zblocale();
    update_zblocale([](ZBLocale& locale) { locale.set_workhours(6.5); });
    EXPECT_EQ(french.get_workhours(), 8.0);
    EXPECT_EQ(zblocale().get_workhours(), 6.5);
    EXPECT_EQ(zblocale().weekday_name(1, false), "lundi");
    set_zblocale(nullptr);
    std::vector<const ZBLocale*> seen(4, nullptr);
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&seen, i] { seen[i] = &zblocale(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const ZBLocale* one : seen)
        EXPECT_EQ(one, seen[0]);
    EXPECT_EQ(seen[0], &zblocale());
}
