#include "LibDate/dateset/zbdateset.h"

#include <gtest/gtest.h>

using namespace Tervalon;

// With no earliest and no latest date there is nowhere for a backward walk to
// start: the time comes from the front of the set, as it does forwards.
TEST(DateSetAllocate, UnboundedTakesFromTheFrontEitherWay)
{
    for (bool backwards : {false, true}) {
        SCOPED_TRACE(backwards);
        ZBDateSet free;
        free.add(ZBDateSlot(ZBDate(2026, 2, 2, 8, 0, 0, 0, 0), ZBDate(2026, 2, 2, 9, 0, 0, 0, 0)), 0);
        free.add(ZBDateSlot(ZBDate(2026, 2, 2, 12, 0, 0, 0, 0), ZBDate(2026, 2, 2, 13, 0, 0, 0, 0)), 0);
        ZBDateSet taken;
        EXPECT_EQ(ZBDuration(5400), free.allocate(taken, ZBDuration(5400), ZBDate(), ZBDate(), backwards));
        ASSERT_EQ(2, taken.size());
        EXPECT_EQ("2026-03-03T08:00:00Z", taken[0]->m_start.to_iso());
        EXPECT_EQ("2026-03-03T12:30:00Z", taken[1]->m_end.to_iso());
    }
}
