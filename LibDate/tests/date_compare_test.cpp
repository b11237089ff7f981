#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using namespace Tervalon;

namespace {

ZBDate day(int d, int hour = 0)
{
    return ZBDate(2026, 2, d, hour, 0, 0, 0, ZBDate::C_GMT);
}

struct CompareRow {
    const char* name;
    ZBDate a;
    ZBDate b;
    bool lt, le, gt, ge;
};

} // namespace

TEST(DateCompare, BlankAndInvalidActLaterThanEveryRealDate)
{
    const ZBDate real = day(9);
    const ZBDate blank(ZBDate::E_Blank);
    const ZBDate invalid(ZBDate::E_Invalid);
    const CompareRow rows[] = {
        {"real < later", day(9), day(10), true, true, false, false},
        {"real == real", day(9), day(9), false, true, false, true},
        {"real vs blank", real, blank, true, true, false, false},
        {"blank vs real", blank, real, false, false, true, true},
        {"blank vs blank", blank, blank, false, false, true, true},
        {"invalid vs blank", invalid, blank, false, false, true, true},
        {"real vs invalid", real, invalid, true, true, false, false},
        {"zero vs real", ZBDate(ZBDate::E_Zero), real, true, true, false, false},
    };
    for (const CompareRow& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.lt, row.a < row.b);
        EXPECT_EQ(row.le, row.a <= row.b);
        EXPECT_EQ(row.gt, row.a > row.b);
        EXPECT_EQ(row.ge, row.a >= row.b);
    }
}

TEST(DateCompare, StatesAndDefaults)
{
    EXPECT_TRUE(ZBDate().is_invalid());
    EXPECT_FALSE(ZBDate().is_ok());
    EXPECT_TRUE(ZBDate(ZBDate::E_Zero).is_ok());
    EXPECT_TRUE(ZBDate(ZBDate::E_Zero).is_zero());
    // A real moment in year 9999 is ok; only the bare year is the marker.
    EXPECT_TRUE(ZBDate(9999, 5, 0, 0, ZBDate::C_GMT).is_ok());
    EXPECT_FALSE(ZBDate(9999, 0, 0, 0, ZBDate::C_GMT).is_ok());
}

TEST(DateCompare, SameMomentInTwoZonesIsNeitherEqualNorOrdered)
{
    ZBDate a = day(9, 12);
    ZBDate b = a;
    b.set_timezone(7200);
    EXPECT_NE(a, b);
    EXPECT_FALSE(a < b);
    EXPECT_FALSE(a > b);
    EXPECT_EQ(a.to_micros(), b.to_micros());
}

TEST(DateCompare, EarliestAndLatestSkipDatesThatAreNotOk)
{
    ZBDate d = ZBDate(ZBDate::E_Blank);
    d.set_earliest(day(9));
    EXPECT_EQ(day(9), d);
    d.set_earliest(ZBDate(ZBDate::E_Invalid));
    EXPECT_EQ(day(9), d);
    d.set_earliest(day(5));
    EXPECT_EQ(day(5), d);
    d.set_latest(day(20));
    EXPECT_EQ(day(20), d);
    d.set_latest(day(10));
    EXPECT_EQ(day(20), d);
    d.set_latest(ZBDate(ZBDate::E_Blank));
    EXPECT_EQ(day(20), d);
}

TEST(DateCompare, SortPutsBlankAndInvalidLast)
{
    std::vector<ZBDate> dates = {ZBDate(ZBDate::E_Blank), day(12), ZBDate(ZBDate::E_Invalid), day(3), day(7)};
    std::stable_sort(dates.begin(), dates.end(), compare_zbdates);
    EXPECT_EQ(day(3), dates[0]);
    EXPECT_EQ(day(7), dates[1]);
    EXPECT_EQ(day(12), dates[2]);
    EXPECT_FALSE(dates[3].is_ok());
    EXPECT_FALSE(dates[4].is_ok());
}

TEST(DateCompare, IdsSortAsDatesAndReadBack)
{
    std::vector<ZBDate> dates = {ZBDate(ZBDate::E_Zero), day(3), day(3, 1), ZBDate(ZBDate::E_Invalid),
                                 ZBDate(ZBDate::E_Blank)};
    for (size_t i = 0; i + 1 < dates.size(); ++i)
        EXPECT_LT(dates[i].to_id(), dates[i + 1].to_id());
    for (const ZBDate& date : dates) {
        ZBDate back;
        back.from_id(date.to_id(), ZBDate::C_GMT);
        EXPECT_EQ(date, back);
    }
}
