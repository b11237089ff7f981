#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupsettings.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;

class MarkupModelTest : public Test::QuietErrors {};

TEST_F(MarkupModelTest, EachLineBecomesAParagraph)
{
    ZBMarkupPage page;
    page.add_paragraphs("");
    EXPECT_EQ(0, page.get_nelements());
    page.add_paragraphs("one\n\nthree\r\n");
    ASSERT_EQ(3, page.get_nelements());
    EXPECT_EQ("one", page.get_element_by_index(0)->get_raw_text());
    EXPECT_EQ("", page.get_element_by_index(1)->get_raw_text());
    EXPECT_EQ("three", page.get_element_by_index(2)->get_raw_text());
    EXPECT_EQ(nullptr, page.get_element_by_index(3));
    EXPECT_TRUE(iszberr(page.append(nullptr)));
}

TEST_F(MarkupModelTest, ACopiedPageKeepsEveryKindAndIsItsOwn)
{
    ZBMarkupPage page("P");
    page.add_paragraph("text")->add_element(new ZBMarkupImage("i.png"));
    auto* table = new ZBMarkupTable(1, 1);
    table->set_cell("c", 0, 0, "red");
    page.append(table);
    ZBMarkupPage copy(page);
    EXPECT_EQ(page, copy);
    ASSERT_NE(nullptr, dynamic_cast<ZBMarkupTable*>(copy.get_element_by_index(1)));
    dynamic_cast<ZBMarkupTable*>(copy.get_element_by_index(1))->set_cell("d", 0, 0);
    EXPECT_NE(page, copy);
    EXPECT_EQ("c", table->get_cell(0, 0)->get_raw_text());
    ZBMarkupPage assigned;
    assigned = page;
    EXPECT_EQ(page, assigned);
}

TEST_F(MarkupModelTest, TableKeepsCellsWhenItGrowsAndSortsNumbersByValue)
{
    ZBMarkupTable table(1, 3);
    table.set_cell("10", 0, 0);
    table.set_cell("apple", 0, 1);
    table.set_cell("9", 0, 2);
    EXPECT_EQ(ZBErrC_ok, table.set_columns(2));
    table.set_cell("ten", 1, 0);
    table.set_cell("nine", 1, 2);
    EXPECT_TRUE(iszberr(table.set_cell("x", 2, 0)));
    EXPECT_EQ(nullptr, table.get_cell(0, 3));
    EXPECT_FALSE(table.has_titles());
    table.set_title("N", 0);
    EXPECT_TRUE(table.has_titles());

    EXPECT_EQ(ZBErrC_ok, table.sort(0));
    EXPECT_EQ("9", table.get_cell(0, 0)->get_raw_text());
    EXPECT_EQ("nine", table.get_cell(1, 0)->get_raw_text());
    EXPECT_EQ("10", table.get_cell(0, 1)->get_raw_text());
    EXPECT_EQ("apple", table.get_cell(0, 2)->get_raw_text());
    table.sort(0, true);
    EXPECT_EQ("apple", table.get_cell(0, 0)->get_raw_text());
    EXPECT_TRUE(iszberr(table.sort(5)));
}

TEST_F(MarkupModelTest, SettingsGiveTheCurrentLook)
{
    ZBMarkupSettings settings;
    EXPECT_EQ(ZBMarkupSettings::cSystem, settings.current_base());
    ZBMarkupElement warn;
    warn.set_foreground("red");
    warn.set_bold(true);
    settings.add_base("Warning", warn);
    ZBMarkupPage dark;
    dark.set_background("black");
    dark.add_paragraph("not a default");
    settings.add_page("Dark", dark);

    EXPECT_TRUE(iszberr(settings.use_base("Missing")));
    EXPECT_EQ(ZBMarkupSettings::cSystem, settings.current_base());
    EXPECT_EQ(ZBErrC_ok, settings.use_base("Warning"));
    ZBMarkupTextElement text("x");
    settings.default_base(text);
    EXPECT_EQ("red", text.get_foreground());
    EXPECT_TRUE(text.get_bold());
    EXPECT_EQ("x", text.get_text());

    ZBMarkupSettings copy(settings);
    EXPECT_EQ(ZBErrC_ok, copy.use_page("Dark"));
    ZBMarkupPage page("Mine");
    copy.default_page(page);
    EXPECT_EQ("black", page.get_background());
    EXPECT_EQ(0, page.get_nelements());
    EXPECT_EQ("Mine", page.get_title());
}
