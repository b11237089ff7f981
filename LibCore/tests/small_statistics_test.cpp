#include "LibCore/maths/zbcountset.h"
#include "LibCore/maths/zbrecentset.h"
#include "LibCore/maths/zbsequenceset.h"
#include "LibCore/maths/zbstatset.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Tervalon;

namespace {

// Noon on day d of a month: whole days apart, as the ranking counts them.
ZBMoment day(int d)
{
    return ZBMoment(1767268800000000LL + (long long)d * 86400 * 1000000);
}

std::vector<double> values(const ZBStatSet& set)
{
    std::vector<double> out;
    for (int i = 0; i < set.size(); ++i)
        out.push_back(set.get_value(i));
    return out;
}

TEST(CountSet, NewKeyStartsAtTheAmountAndUnknownCountsZero)
{
    ZBCountSet set(2);
    set.add(4, 3);
    set.add(4, 5);
    set.add(7);
    EXPECT_EQ(set.count(4), 8);
    EXPECT_EQ(set.count(7), 2);
    EXPECT_EQ(set.count(1), 0);
}

TEST(StatSet, FiguresOfASmallSet)
{
    ZBStatSet set;
    for (double v : {3.0, 1.0, 4.0, 1.0, 5.0})
        set.add(v, 1);
    EXPECT_DOUBLE_EQ(set.get_minimum(), 1.0);
    EXPECT_DOUBLE_EQ(set.get_maximum(), 5.0);
    EXPECT_DOUBLE_EQ(set.get_average(), 2.8);
    EXPECT_DOUBLE_EQ(set.mode(), 1.0);
    EXPECT_EQ(set.rank_low(3.0), 2);
    EXPECT_EQ(set.rank_high(3.0), 2);
    EXPECT_EQ(set.rank_low(1.0), 0);
}

TEST(StatSet, ModeWeighsAndKeepsTheFirstOfEqualTotals)
{
    ZBStatSet set;
    set.add(2.0, 1);
    set.add(9.0, 3);
    set.add(2.0, 1);
    EXPECT_DOUBLE_EQ(set.mode(), 9.0);
    set.add(2.0, 1);
    EXPECT_DOUBLE_EQ(set.mode(), 2.0);
    ZBStatSet empty;
    EXPECT_DOUBLE_EQ(empty.mode(), 0.0);
    EXPECT_DOUBLE_EQ(empty.get_average(), 0.0);
}

TEST(StatSet, CleanOutliersTrimsBothEnds)
{
    ZBStatSet set;
    for (double v : {1.0, 5.0, 5.0, 9.0})
        set.add(v, 1);
    set.clean_outliers(1);
    EXPECT_EQ(values(set), (std::vector<double>{5.0, 5.0}));
    // All equal: smallest and largest are the same first entry; nothing goes.
    set.clean_outliers(3);
    EXPECT_EQ(values(set), (std::vector<double>{5.0, 5.0}));
    set.clean_outliers(0);
    EXPECT_EQ(set.size(), 2);

    ZBStatSet spread;
    for (double v : {9.0, 2.0, 7.0, 2.0, 9.0, 4.0})
        spread.add(v, 1);
    spread.clean_outliers(2);
    // Round one drops the first 9 and the first 2, round two the other 9 and 2.
    EXPECT_EQ(values(spread), (std::vector<double>{7.0, 4.0}));
}

TEST(RecentSet, RecentAndFrequentUsesComeFirst)
{
    ZBRecentSet<int> set;
    set.add_value_date(1, day(1));
    set.add_value_date(1, day(2));
    set.add_value_date(2, day(10));
    set.add_value_date(3, day(3));
    // weight 10 makes a use on the last day count 10, an old one little more than 1.
    EXPECT_EQ(set.calculate(10.0, 1.0), (std::vector<int>{2, 1, 3}));
    EXPECT_EQ(set.get_first_date(), day(1));
    EXPECT_EQ(set.get_last_date(), day(10));
}

TEST(RecentSet, WeightOneIsAPlainCount)
{
    ZBRecentSet<int> set;
    set.add_value_date(5, day(9));
    set.add_value_date(6, day(1));
    set.add_value_date(6, day(2));
    EXPECT_EQ(set.calculate(1.0, 2.0), (std::vector<int>{6, 5}));
}

TEST(RecentSet, EqualScoresKeepFirstSeenOrder)
{
    ZBRecentSet<double> set;
    for (double v : {4.5, 1.5, 3.5}) {
        set.add_value_date(v, day(1));
        set.add_value_date(v, day(4));
    }
    EXPECT_EQ(set.calculate(5.0, 1.0), (std::vector<double>{4.5, 1.5, 3.5}));
    ZBRecentSet<int> undated;
    for (int v : {8, 3, 5, 3})
        undated.add_value(v);
    EXPECT_EQ(undated.calculate(5.0, 1.0), (std::vector<int>{8, 3, 5}));
}

TEST(RecentSet, RestrictedSetDatesOnlyKnownValues)
{
    ZBRecentSet<int> set(true);
    set.add_value(1);
    set.add_value(2);
    set.add_value_date(3, day(1));
    set.add_value_date(2, day(2));
    EXPECT_EQ(set.size(), 2);
    EXPECT_EQ(set.calculate(3.0, 1.0), (std::vector<int>{2, 1}));

    ZBRecentSet<int> open;
    open.add_value(1);
    open.add_value_date_restricted(9, day(3));
    EXPECT_EQ(open.size(), 1);
    EXPECT_FALSE(open.get_last_date().is_ok());
}

TEST(SequenceSet, TheLongestRunInDateOrderIsExpectedNext)
{
    ZBSequenceSet<int> set;
    EXPECT_EQ(set.calculate(7.0), 7);
    set.add(3, day(5));
    EXPECT_EQ(set.calculate(7.0), 3);
    // Added out of order: by date the values run 2 4 4 4 3 2.
    set.add(4, day(3));
    set.add(2, day(6));
    set.add(4, day(2));
    set.add(2, day(1));
    set.add(4, day(4));
    EXPECT_EQ(set.calculate(0.0), 4);
}

TEST(SequenceSet, OfEquallyLongRunsTheLatestWins)
{
    ZBSequenceSet<double> set;
    set.add(1.0, day(1));
    set.add(1.0, day(2));
    set.add(2.0, day(3));
    set.add(2.0, day(4));
    EXPECT_DOUBLE_EQ(set.calculate(0.0), 2.0);
}

} // namespace
