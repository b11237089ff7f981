#include "LibDate/date/zbduration.h"
#include "LibDate/date/zbprogress.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

// A duration keeps its seconds within a day, however many it is given: spans
// of seconds far past 32 bits, sums that pass a day and negative totals all
// come out whole.
TEST(DurationStorage, SecondsPastAnyDayAreCarriedIntoDays)
{
    struct {
        std::int64_t seconds;
        std::int64_t days, rest;
    } rows[] = {
        {3000000000LL, 34722, 19200},
        {-3000000000LL, -34722, -19200},
        {86399LL * 40000, 39999, 46400},
    };
    for (const auto& row : rows) {
        const ZBDuration d(row.seconds);
        EXPECT_EQ(d.get_days(), row.days) << row.seconds;
        EXPECT_EQ(d.get_seconds(), row.rest) << row.seconds;
        EXPECT_EQ(d.get_as_seconds(), row.seconds);
    }
    const ZBDuration nearlyDay(86399);
    EXPECT_EQ(nearlyDay + nearlyDay, ZBDuration(1, 86398, 0));
    EXPECT_EQ(-(nearlyDay + nearlyDay), ZBDuration(-1, -86398, 0));
    std::ostringstream out;
    out << ZBDuration(3000000000LL);
    EXPECT_EQ(out.str(), "0003472200019200@");
}

TEST(DurationStorage, ProgressOfLongWorkKeepsItsParts)
{
    ZBProgress progress;
    progress.set_duration(ZBDuration(3000000000LL));
    progress.set_completion(50.0);
    EXPECT_EQ(progress.get_completed(), ZBDuration(1500000000LL));
    EXPECT_EQ(progress.get_remaining(), ZBDuration(1500000000LL));
}
