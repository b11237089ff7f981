#include "LibGui/base/zbgraph.h"
#include "LibGui/base/zbtimegraphsource.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

ZBDate day(int d)
{
    return ZBDate(2026, 2, d, 12, 0, 0, 0, ZBDate::C_GMT);
}

} // namespace

TEST(TimeGraphSource, CompleteSortsAndDropsIgnoredPoints)
{
    ZBTimeGraphSource source;
    source.add(day(5), 70.0, "fifth", "5");
    source.add(day(1), 72.5, "first", "1");
    source.add(day(9), 500.0, "bad scale reading", "9", true);
    source.add(day(3), 71.0);
    source.complete();
    ASSERT_EQ(source.get_npoints(), 3);
    EXPECT_EQ(source.get_data()[0].m_toolTip, "first");
    EXPECT_EQ(source.get_data()[2].m_xLabel, "5");
    // The ignored point widened nothing.
    EXPECT_EQ(source.get_max_date(), day(5));
    EXPECT_DOUBLE_EQ(source.get_extents().m_maxY, 72.5);
    EXPECT_DOUBLE_EQ(source.get_extents().m_minY, 70.0);
    source.complete(true);
    EXPECT_DOUBLE_EQ(source.get_extents().m_minY, 0.0);
}

TEST(TimeGraphSource, DatesMapAcrossTheRange)
{
    ZBTimeGraphSource source;
    source.add(day(1), 1.0);
    source.add(day(11), 2.0);
    source.complete();
    EXPECT_DOUBLE_EQ(source.date_to_x(day(1)), 0.0);
    EXPECT_DOUBLE_EQ(source.date_to_x(day(6)), 0.5);
    EXPECT_DOUBLE_EQ(source.date_to_x(day(11)), 1.0);

    ZBGraph graph;
    graph.set_dimensions(40, 10, 200, 100);
    EXPECT_DOUBLE_EQ(graph.getDateX(source, day(6)), 140.0);

    ZBTimeGraphSource single;
    single.add(day(4), 3.0);
    single.complete();
    EXPECT_DOUBLE_EQ(single.date_to_x(day(4)), 0.5);
    ZBTimeGraphSource empty;
    EXPECT_DOUBLE_EQ(empty.date_to_x(day(4)), 0.5);
}

TEST(Graph, MapsValuesIntoTheDrawingAreaWithYUpwards)
{
    ZBGraph graph;
    graph.set_extents(0, 10, 50, 100);
    graph.set_dimensions(20, 5, 100, 200);
    EXPECT_DOUBLE_EQ(graph.toX(0), 20);
    EXPECT_DOUBLE_EQ(graph.toX(10), 120);
    EXPECT_DOUBLE_EQ(graph.toY(50), 205);
    EXPECT_DOUBLE_EQ(graph.toY(100), 5);
    // A flat range draws along the middle instead of dividing by zero.
    graph.set_extents(3, 3, 7, 7);
    EXPECT_DOUBLE_EQ(graph.toX(3), 70);
    EXPECT_DOUBLE_EQ(graph.toY(7), 105);
}

TEST(Graph, AxisTicksAreRoundAndCoverTheValues)
{
    struct Case { double low, high; int maxTicks; ZBGraphSource::E_ValueType type; const char* labels; };
    const Case cases[] = {
        {0, 10, 6, ZBGraphSource::E_Number, "0 2 4 6 8 10"},
        {3, 97, 6, ZBGraphSource::E_Integer, "0 20 40 60 80 100"},
        {68.2, 72.9, 6, ZBGraphSource::E_Number, "68 69 70 71 72 73"},
        {-5, 5, 5, ZBGraphSource::E_Percent, "-5% 0% 5%"},
        {0, 2.5, 4, ZBGraphSource::E_Hours, "0:00 1:00 2:00 3:00"},
        {4, 4, 5, ZBGraphSource::E_Number, "3 3.5 4 4.5 5"},
    };
    for (const Case& c : cases) {
        ZBGraphSource source;
        source.set_value_type(c.type);
        ZBGraph graph;
        graph.set_extents(0, 1, c.low, c.high);
        std::vector<double> ticks;
        std::vector<std::string> labels;
        int n = graph.get_y_axis(c.maxTicks, source, ticks, labels);
        std::string text;
        for (const auto& label : labels)
            text += (text.empty() ? "" : " ") + label;
        EXPECT_EQ(text, c.labels) << c.low << ".." << c.high;
        EXPECT_LE(n, c.maxTicks);
        EXPECT_LE(graph.get_min_y(), c.low);
        EXPECT_GE(graph.get_max_y(), c.high);
    }
}

TEST(GraphSource, ValuesReadAsTheirType)
{
    struct Case { double value; ZBGraphSource::E_ValueType type; const char* text; };
    const Case cases[] = {
        {12.5, ZBGraphSource::E_Number, "12.5"},   {12.4, ZBGraphSource::E_Integer, "12"},
        {-0.2, ZBGraphSource::E_Integer, "0"},     {45.0, ZBGraphSource::E_Percent, "45%"},
        {2.5, ZBGraphSource::E_Hours, "2:30"},     {-1.25, ZBGraphSource::E_Hours, "-1:15"},
        {1.999, ZBGraphSource::E_Hours, "2:00"},   {3.0, ZBGraphSource::E_Money, "3.00"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ZBGraphSource::value_to_string(c.value, c.type), c.text) << c.value;
}
