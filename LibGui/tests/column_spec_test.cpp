#include "LibGui/base/zbcolumnspec.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

std::string joined(const std::vector<int>& v)
{
    std::string out;
    for (size_t i = 0; i < v.size(); ++i)
        out += (i ? "," : "") + std::to_string(v[i]);
    return out;
}

} // namespace

TEST(ColumnSpec, PlansWidthsForTheRoomThereIs)
{
    struct Case { const char* what; int width; ZBColumnSpec::E_FillMode mode; int fillColumn; const char* widths; };
    // Three columns: a fixed 100 that may not shrink, contents of 200 (min 50),
    // contents of 100 (min 20, max 150, marked to fill).
    const Case cases[] = {
        {"exact fit", 400, ZBColumnSpec::E_FillLast, -1, "100,200,100"},
        {"spare to last, within its max", 500, ZBColumnSpec::E_FillLast, -1, "100,200,150"},
        {"spare to a named column", 500, ZBColumnSpec::E_FillColumn, 1, "100,300,100"},
        {"spare to marked columns", 500, ZBColumnSpec::E_FillMarked, -1, "100,200,150"},
        {"spare left alone", 500, ZBColumnSpec::E_FillNone, -1, "100,200,100"},
        // 50 too many: column 1 has 150 above its minimum, column 2 has 80; 50*150/230=32, 50*80/230=17, +1 rounding.
        {"shrink in proportion", 350, ZBColumnSpec::E_FillLast, -1, "100,168,82"},
        {"never below the minimums", 100, ZBColumnSpec::E_FillLast, -1, "100,50,20"},
    };
    for (const Case& c : cases) {
        ZBColumnSpec spec;
        spec.add(false, 100);
        spec.add(true, 0, 50);
        spec.add(true, 0, 20, 150, true);
        spec.set_fill_mode(c.mode, c.fillColumn);
        std::vector<int> actual(3);
        int total = spec.calculate(c.width, actual, {10, 200, 100});
        EXPECT_EQ(joined(actual), c.widths) << c.what;
        int sum = 0;
        for (int w : actual)
            sum += w;
        EXPECT_EQ(total, sum) << c.what;
    }
}

TEST(ColumnSpec, ColumnsNotPlannedFollowTheirContents)
{
    ZBColumnSpec spec;
    spec.set_fill_mode(ZBColumnSpec::E_FillNone);
    std::vector<int> actual(2);
    spec.calculate(1000, actual, {70, 30});
    EXPECT_EQ(joined(actual), "70,30");
    get_zberror().clear_all();
    EXPECT_EQ(spec.edit_column(0), nullptr);
    get_zberror().clear_all();
}

TEST(ColumnSpec, HeightAndWidthStayInTheirBounds)
{
    ZBColumnSpec spec;
    spec.set_widget_height(true, -1, 60, 200);
    EXPECT_EQ(spec.adjust_height(0, 20, 25), 60);
    EXPECT_EQ(spec.adjust_height(5, 20, 25), 125);
    EXPECT_EQ(spec.adjust_height(50, 20, 25), 200);
    spec.set_widget_height(false, 90);
    EXPECT_EQ(spec.adjust_height(50, 20, 25), 90);
    spec.set_widget(true, -1, 100, 300);
    EXPECT_EQ(spec.adjust_width(20), 100);
    EXPECT_EQ(spec.adjust_width(900), 300);
}
