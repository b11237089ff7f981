#include "LibGui/base/zbtable.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>


using namespace Tervalon;

namespace {

// Marks every cell of its column as money: two decimals and a sortable value.
class MoneyHandler : public ZBTableEntry {
public:
    void process(ZBTableEntry& cell) const override
    {
        if (!cell.get_text().empty() && !cell.has_value())
            cell.set_value(std::stod(cell.get_text()));
        char text[32];
        std::snprintf(text, sizeof text, "%.2f", cell.get_value());
        cell.set_text(text);
    }
};

ZBTable make_people()
{
    ZBTable table;
    table.set_size(3, 2);
    table.set_column_header(0, "Name");
    table.set_column_header(1, "Age");
    const char* rows[3][2] = {{"carol", "31"}, {"Bob", "9"}, {"alice", "100"}};
    for (int r = 0; r < 3; ++r) {
        table.set_entry(r, 0, rows[r][0]);
        table.set_entry(r, 1, ZBTableEntry(std::stod(rows[r][1])));
        table.set_row_header(r, "r" + std::to_string(r));
    }
    return table;
}

std::string column(const ZBTable& table, int c)
{
    std::string out;
    for (int r = 0; r < table.get_rows(); ++r)
        out += table.get_entry(r, c).get_text() + (r + 1 < table.get_rows() ? "," : "");
    return out;
}

} // namespace

TEST(Table, SortsTextWithoutCaseAndNumbersByValue)
{
    struct Case { int column; bool ascending; const char* names; };
    const Case cases[] = {
        {0, true, "alice,Bob,carol"},
        {0, false, "carol,Bob,alice"},
        {1, true, "Bob,carol,alice"}, // 9 < 31 < 100, not as text
        {1, false, "alice,carol,Bob"},
    };
    for (const Case& c : cases) {
        ZBTable table = make_people();
        EXPECT_FALSE(iszbwarn(table.sort(c.column, c.ascending)));
        EXPECT_EQ(column(table, 0), c.names) << "column " << c.column << " ascending " << c.ascending;
    }
}

TEST(Table, RowHeadersTravelWithTheirRows)
{
    ZBTable table = make_people();
    table.sort(0);
    EXPECT_EQ(table.get_row_header(0).get_text(), "r2");
    table.swap_rows(0, 2);
    EXPECT_EQ(table.get_entry(0, 0).get_text(), "carol");
    EXPECT_EQ(table.get_row_header(0).get_text(), "r0");
}

TEST(Table, SortOfAnEmptyTableReturnsAtOnce)
{
    ZBTable table;
    EXPECT_FALSE(iszbwarn(table.sort(5)));
    table.set_size(0, 2);
    EXPECT_FALSE(iszbwarn(table.sort(1)));
}

TEST(Table, CellsOutsideTheGridAreReportedNotThrown)
{
    ZBTable table = make_people();
    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(table.set_entry(3, 0, "x")));
    EXPECT_EQ(table.edit_entry(0, 2), nullptr);
    EXPECT_EQ(table.get_entry(-1, 0).get_text(), "");
    EXPECT_TRUE(iszbwarn(table.swap_rows(0, 7)));
    EXPECT_TRUE(iszbwarn(table.remove_column(2)));
    EXPECT_TRUE(iszbwarn(table.sort(9)));
    get_zberror().clear_all();
}

TEST(Table, RemoveColumnKeepsTheOthersInPlace)
{
    ZBTable table = make_people();
    ASSERT_FALSE(iszbwarn(table.remove_column(0)));
    EXPECT_EQ(table.get_columns(), 1);
    EXPECT_EQ(table.get_column_header(0).get_text(), "Age");
    EXPECT_EQ(column(table, 0), "31,9,100");
}

TEST(Table, ResizeKeepsTheCellsThatFit)
{
    ZBTable table = make_people();
    table.set_size(2, 3);
    EXPECT_EQ(table.get_entry(1, 0).get_text(), "Bob");
    EXPECT_EQ(table.get_entry(1, 2).get_text(), "");
    EXPECT_EQ(table.get_column_header(1).get_text(), "Age");
}

TEST(Table, HandlersFormatTheirColumnNowLaterAndOnReprocess)
{
    ZBTable table;
    table.set_size(2, 2);
    table.set_entry(0, 1, "3");
    table.set_column_data_handler(1, std::make_shared<MoneyHandler>());
    EXPECT_EQ(table.get_entry(0, 1).get_text(), "3.00");
    table.set_entry(1, 1, "12.5");
    EXPECT_EQ(table.get_entry(1, 1).get_text(), "12.50");
    table.edit_entry(0, 1)->set_value(7);
    table.reprocess();
    EXPECT_EQ(table.get_entry(0, 1).get_text(), "7.00");
    EXPECT_EQ(table.get_entry(0, 0).get_text(), "");
}

TEST(Table, CsvQuotesWhatNeedsItAndKeepsHeaders)
{
    ZBTable table;
    table.set_size(2, 2);
    table.set_column_header(0, "Title");
    table.set_column_header(1, "Note");
    table.set_entry(0, 0, "Buy milk, bread");
    table.set_entry(0, 1, "say \"hi\"");
    table.set_entry(1, 0, "two\nlines");
    table.set_entry(1, 1, "plain");
    EXPECT_EQ(table.to_csv(), "Title,Note\n\"Buy milk, bread\",\"say \"\"hi\"\"\"\n\"two\nlines\",plain\n");
    table.set_usecolumnheaders(false);
    table.set_userowheaders(true);
    table.set_row_header(0, "a");
    EXPECT_EQ(table.to_csv(';'), "a;Buy milk, bread;\"say \"\"hi\"\"\"\n;\"two\nlines\";plain\n");
}

TEST(Table, HtmlEscapesTextAndAlignsNumbers)
{
    ZBTable table;
    table.set_size(1, 2);
    table.set_column_header(0, "A<B");
    table.set_column_header(1, "N");
    table.set_entry(0, 0, "x & y");
    table.set_entry(0, 1, ZBTableEntry(4.5));
    EXPECT_EQ(table.to_html(), "<table>\n<tr><th>A&lt;B</th><th>N</th></tr>\n"
                               "<tr><td>x &amp; y</td><td align=\"right\">4.5</td></tr>\n</table>\n");
}

TEST(Table, ExportIntoAFolderThatCannotBeWrittenSaysSo)
{
    ZBTable table = make_people();
    const std::string dir = Tervalon::Test::make_temp_dir("export");
    const std::string file = dir + "/people.csv";
    ASSERT_FALSE(iszbwarn(table.export_table(file)));
    EXPECT_EQ(Tervalon::Test::read_file(file), "Name,Age\ncarol,31\nBob,9\nalice,100\n");

    // A "folder" that is a plain file cannot take a new file, whoever runs the test.
    Tervalon::Test::write_file(dir + "/notes", "mine");
    get_zberror().clear_all();
    ASSERT_TRUE(iszbwarn(table.export_table(dir + "/notes/people.csv")));
    ASSERT_NE(get_zberror().top(), nullptr);
    EXPECT_NE(get_zberror().top()->get_message().find("Could not create the file"), std::string::npos);
    EXPECT_EQ(Tervalon::Test::read_file(dir + "/notes"), "mine");
    get_zberror().clear_all();
}
