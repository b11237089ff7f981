#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuprenderer.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

class TextRendererTest : public Test::QuietErrors {};

TEST_F(TextRendererTest, TableColumnsLineUpByMeasuredWidth)
{
    ZBMarkupPage page;
    auto* table = new ZBMarkupTable(3, 3);
    table->set_title("Task", 0);
    table->set_title("Hours", 1);
    table->set_title("Note", 2);
    table->set_alignment(1, ZBMarkupTable::E_AlignRight);
    table->set_cell("Write", 0, 0);
    table->set_cell("1:30", 1, 0);
    table->set_cell("Café", 0, 1);
    table->set_cell("12:00", 1, 1);
    table->set_cell("two\nlines", 2, 1);
    table->set_cell("日本語", 0, 2);
    table->set_cell("0:05", 1, 2);
    page.append(table);
    EXPECT_EQ("Task    Hours  Note\n"
              "------  -----  -----\n"
              "Write    1:30\n"
              "Café    12:00  two\n"
              "               lines\n"
              "日本語   0:05\n",
              ZBMarkupRenderer().to_string(page));
}

TEST_F(TextRendererTest, WidthsCountCharactersNotBytes)
{
    struct Row {
        const char* text;
        int width;
    } rows[] = {{"", 0}, {"abc", 3}, {"Café", 4}, {"Cafe\xcc\x81", 4}, {"日本", 4}, {"\xff\xfe", 2}, {"€5", 2}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.width, ZBMarkupRenderer::text_width(row.text));
    }
}

TEST_F(TextRendererTest, HeadersAndIndentsButNoTitle)
{
    ZBMarkupPage page("Week");
    page.add_paragraph("Summary", 1);
    page.add_paragraph("Detail", 2, 1);
    ZBMarkupParagraph* body = page.add_paragraph("first\nsecond", 0, 2);
    body->add_text(" end");
    page.add_paragraph();
    page.add_paragraph("last");
    EXPECT_EQ("Summary\n=======\n"
              "  Detail\n  ------\n"
              "    first\n    second end\n"
              "\n"
              "last\n",
              ZBMarkupRenderer().to_string(page));
}

TEST_F(TextRendererTest, TableInAParagraphTakesItsIndentAndEndsItsLine)
{
    ZBMarkupPage page;
    ZBMarkupParagraph* paragraph = page.add_paragraph("Times:", 0, 1);
    auto* table = new ZBMarkupTable(2, 1);
    table->set_cell("a", 0, 0);
    table->set_cell("b", 1, 0);
    paragraph->add_element(table);
    page.add_paragraph("after");
    EXPECT_EQ("  Times:\n  a  b\nafter\n", ZBMarkupRenderer().to_string(page));
}

TEST_F(TextRendererTest, SizesMeasureTheWidestLine)
{
    ZBMarkupParagraph paragraph("ab\nabcd", 0, 1);
    EXPECT_EQ(6, ZBMarkupRenderer::paragraph_size(paragraph));
    ZBMarkupTable table(2, 1);
    table.set_cell("xyz", 0, 0);
    table.set_cell("q", 1, 0);
    EXPECT_EQ(6, ZBMarkupRenderer::element_size(table));
}

TEST_F(TextRendererTest, StreamAndStringGiveTheSameText)
{
    ZBMarkupPage page("T");
    page.add_paragraphs("a\nb");
    ZBMarkupRenderer renderer(&page);
    std::ostringstream out;
    EXPECT_EQ(ZBErrC_ok, renderer.render(out));
    EXPECT_EQ(out.str(), renderer.to_string(page));
    std::ostringstream none;
    EXPECT_TRUE(iszberr(ZBMarkupRenderer().render(none)));
}

TEST_F(TextRendererTest, PicturesTakeNoRoomInText)
{
    // An icon column (as the summary's lists have) would otherwise push every
    // row right by a column of names nobody can see in a terminal.
    ZBMarkupPage page;
    ZBMarkupParagraph* line = page.add_paragraph("Due");
    line->add_element(new ZBMarkupImage(":image/todo.png"));
    auto* table = new ZBMarkupTable(3, 2);
    table->get_cell(0, 0)->get_paragraph().add_element(new ZBMarkupImage(":image/todo.png"));
    table->set_cell("Measure", 1, 0);
    table->set_cell("1:00", 2, 0);
    table->get_cell(0, 1)->get_paragraph().add_element(new ZBMarkupImage(":image/todo.png"));
    table->set_cell("Plumber", 1, 1);
    table->set_cell("0:30", 2, 1);
    page.append(table);
    EXPECT_EQ("Due\n"
              "Measure  1:00\n"
              "Plumber  0:30\n",
              ZBMarkupRenderer().to_string(page));
}
