#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(locale.weekday_name(1, true), "lundi");
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
    EXPECT_EQ(locale.time_format(true), "%I:%M:%S %p %z");
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
    ASSERT_EQ(zones.size(), 1u + 49u * 2u);
    EXPECT_EQ(zones[0].second, "Local Time");
    EXPECT_EQ(zones[1].second, "GMT+12 NODST");
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
