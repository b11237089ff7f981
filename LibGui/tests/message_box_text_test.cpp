#include "LibGui/base/zbmessagebox.h"

#include <gtest/gtest.h>

using namespace Tervalon;

TEST(MessageBoxText, ButtonDescriptionsComeApart)
{
    struct Case { const char* text; bool present; const char* caption; bool def, esc; const char* shortcut, *tip; };
    const Case cases[] = {
        {"No#Escape#Shortcut:n", true, "No", false, true, "n", ""},
        {"Yes#Default#Shortcut:y", true, "Yes", true, false, "y", ""},
        {"Keep#Tooltip:Keeps the file#Shortcut:Ctrl+K", true, "Keep", false, false, "Ctrl+K", "Keeps the file"},
        {"Details", true, "Details", false, false, "", ""},
        {"#Default", true, "", true, false, "", ""},
        {"", false, "", false, false, "", ""},
        {"Odd#Unknown#Default", true, "Odd", true, false, "", ""},
    };
    for (const Case& c : cases) {
        ZBMessageBox::Button b = ZBMessageBox::parse_button(c.text);
        EXPECT_EQ(b.m_present, c.present) << c.text;
        EXPECT_EQ(b.m_caption, c.caption) << c.text;
        EXPECT_EQ(b.m_default, c.def) << c.text;
        EXPECT_EQ(b.m_escape, c.esc) << c.text;
        EXPECT_EQ(b.m_shortcut, c.shortcut) << c.text;
        EXPECT_EQ(b.m_toolTip, c.tip) << c.text;
        EXPECT_EQ(ZBMessageBox::key_of(c.text), c.caption) << c.text;
    }
}

TEST(MessageBoxText, ConstructKeyWritesDefaultForEscapeToo)
{
    struct Case { const char* caption; bool def, esc; const char* tip, *shortcut, *key; };
    const Case cases[] = {
        {"Ok", true, false, "", "", "Ok#Default"},
        {"Stop", false, true, "", "", "Stop#Default"},
        {"Both", true, true, "", "", "Both#Default#Default"},
        {"Save", true, false, "Writes it", "s", "Save#Default#Tooltip:Writes it#Shortcut:s"},
        {"Plain", false, false, "", "", "Plain"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ZBMessageBox::construct_key(c.caption, c.def, c.esc, c.tip, c.shortcut), c.key) << c.caption;
}
