#include "LibMarkup/html/zbhtmlrenderer.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuptable.h"

#include <gtest/gtest.h>

using namespace Tervalon;

TEST(HtmlRenderer, Smoke)
{
    ZBMarkupPage page("T");
    page.add_paragraphs("a<b\nc");
    ZBHtmlRenderer html;
    EXPECT_NE(std::string::npos, html.to_string(page).find("<p>a&lt;b</p>"));
}
