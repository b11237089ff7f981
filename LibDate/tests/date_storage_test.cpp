#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/date/zbprogress.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

template <typename T>
std::string written(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

template <typename T>
T read_back(const std::string& text)
{
    std::istringstream in(text);
    T value;
    in >> value;
    EXPECT_FALSE(in.fail()) << text;
    return value;
}

} // namespace

TEST(DateStorage, DateTextsAreFixedAndReadBack)
{
    struct {
        ZBDate date;
        const char* text;
    } rows[] = {
        {ZBDate(2026, 2, 8, 8, 5, 7, 0, 0), "070508080202026000000"},
        {ZBDate(2026, 2, 8, 8, 5, 7, 5, 0), "000005070508080202026000000"},
        {ZBDate(2026, 6, 0, 12, 0, 0, 0, 7201), "000010000602026007201"},
        {ZBDate(2026, 0, 0, 0, 0, 0, 0, -36000), "000005000002026-36000"},
        {ZBDate(ZBDate::E_Blank), "000000000009999000000"},
        {ZBDate(ZBDate::E_Invalid), "000000000009998000000"},
        {ZBDate(ZBDate::E_Zero), "000000000000000000000"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, written(row.date));
        ZBDate back = read_back<ZBDate>(row.text);
        EXPECT_EQ(row.date, back) << row.text;
    }
    // A zero microsecond leaves out six digits, and the reader tells the two apart.
    EXPECT_EQ(written(rows[1].date).size(), written(rows[0].date).size() + 6);
}

TEST(DateStorage, OldTimeTFormAndQuotedText)
{
    ZBDate old = read_back<ZBDate>("1773043507");
    EXPECT_EQ(1773043507, old.get_time_t());
    ZBDate quoted = read_back<ZBDate>("\"070508080202026000000\"");
    EXPECT_EQ(ZBDate(2026, 2, 8, 8, 5, 7, 0, 0), quoted);
    // Date text is what a person typed: digits there are never a stored date.
    EXPECT_FALSE(ZBDate("070508080202026000000").is_ok());
    EXPECT_FALSE(ZBDate("").is_ok());
}

TEST(DateStorage, FieldsThatCarryPastTheStorableYearReadAsInvalid)
{
    // Day 99 of month 99 of year 99999 lands eight years past what the year
    // field can hold, as does the day after the last of 99999; in range, the
    // carried date is written back as itself.
    for (const char* text : {"000000199999999999999", "000000311199999000000"}) {
        ZBDate date = read_back<ZBDate>(text);
        EXPECT_TRUE(date.is_invalid()) << text << " " << written(date);
    }
    for (const char* text : {"000000301199999000000", "000000321302025000000"}) {
        ZBDate carried = read_back<ZBDate>(text);
        EXPECT_TRUE(carried.is_ok()) << text;
        EXPECT_EQ(carried, read_back<ZBDate>(written(carried))) << text;
    }
}

TEST(DateStorage, DatesInAStreamStopAtTheirEnd)
{
    std::istringstream in("070508080202026000000 000005070508080202026000000|x");
    ZBDate a;
    ZBDate b;
    in >> a >> b;
    EXPECT_EQ(5, b.get_microsecond());
    EXPECT_EQ('|', in.get());
}

TEST(DateStorage, DurationTexts)
{
    struct {
        ZBDuration duration;
        const char* text;
    } rows[] = {
        {ZBDuration(1, 3600, 0), "0000000100003600@"},
        {ZBDuration(0, 5, 7), "0000000000000005000007@"},
        {ZBDuration(0, -82800, 0), "00000000-0082800@"},
        {ZBDuration(-2, -1, -5), "-0000002-0000001-00005@"},
        {ZBDuration(), "0000000000000000@"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, written(row.duration));
        EXPECT_EQ(row.duration, read_back<ZBDuration>(row.text)) << row.text;
    }
    std::istringstream in("0000000100003600@0000000000000005000007@");
    ZBDuration a;
    ZBDuration b;
    in >> a >> b;
    EXPECT_EQ(ZBDuration(1, 3600, 0), a);
    EXPECT_EQ(ZBDuration(0, 5, 7), b);
}

TEST(DateStorage, SlotTexts)
{
    ZBDate start(2026, 2, 8, 8, 0, 0, 0, 0);
    ZBDate end(2026, 2, 8, 9, 0, 0, 0, 0);
    ZBDateSlot slot(start, end);
    EXPECT_EQ("000008080202026000000=000009080202026000000", written(slot));
    EXPECT_EQ(slot, read_back<ZBDateSlot>(written(slot)));
    ZBDateSlot point(start, start);
    EXPECT_EQ("000008080202026000000&", written(point));
    EXPECT_EQ(point, read_back<ZBDateSlot>(written(point)));
    EXPECT_EQ(slot, read_back<ZBDateSlot>("000008080202026000000+3600"));
    EXPECT_EQ(ZBDateSlot(ZBDate(2026, 2, 8, 7, 0, 0, 0, 0), start),
              read_back<ZBDateSlot>("000008080202026000000+-3600"));
    ZBDateSlot blank;
    EXPECT_EQ(blank, read_back<ZBDateSlot>(written(blank)));
}

TEST(DateStorage, ProgressText)
{
    ZBProgress progress;
    progress.set_duration(ZBDuration(0, 7200, 0));
    progress.set_completion(25);
    EXPECT_EQ("0000000000007200@25.000000000000", written(progress));
    ZBProgress back = read_back<ZBProgress>(written(progress));
    EXPECT_EQ(progress, back);
    EXPECT_EQ(ZBDuration(1800), back.get_completed());
}
