#include "LibMarkup/html/zbhtmlrenderer.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

using namespace Tervalon;

namespace {

const std::string C_Head = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title></title>\n"
                           "</head>\n<body>\n";
const std::string C_Tail = "</body>\n</html>\n";

std::string body_of(const std::function<void(ZBMarkupPage&)>& fill)
{
    ZBMarkupPage page;
    fill(page);
    const std::string html = ZBHtmlRenderer().to_string(page);
    EXPECT_EQ(0u, html.find(C_Head));
    EXPECT_EQ(html.size() - C_Tail.size(), html.rfind(C_Tail));
    return html.substr(C_Head.size(), html.size() - C_Head.size() - C_Tail.size());
}

ZBMarkupParagraph* text_with(const std::function<void(ZBMarkupElement&)>& look, const std::string& text = "w")
{
    auto* paragraph = new ZBMarkupParagraph();
    look(*paragraph->add_text(text));
    return paragraph;
}

struct Case {
    const char* name;
    std::function<void(ZBMarkupPage&)> fill;
    const char* body;
};

} // namespace

class HtmlRendererTest : public Test::QuietErrors {};

TEST_F(HtmlRendererTest, WritesEachElementExactly)
{
    const Case cases[] = {
        {"body text", [](ZBMarkupPage& p) { p.add_paragraph("Hello"); }, "<p>Hello</p>\n"},
        {"empty text adds nothing", [](ZBMarkupPage& p) { p.add_paragraphs(""); }, ""},
        {"header", [](ZBMarkupPage& p) { p.add_paragraph("Plan", 2); }, "<h2>Plan</h2>\n"},
        {"indent", [](ZBMarkupPage& p) { p.add_paragraph("x", 0, 2); }, "<UL><UL><p>x</p></UL></UL>\n"},
        {"indented header", [](ZBMarkupPage& p) { p.add_paragraph("y", 3, 1); }, "<UL><h3>y</h3></UL>\n"},
        {"foreground", [](ZBMarkupPage& p) { p.append(text_with([](ZBMarkupElement& e) { e.set_foreground("red"); })); },
         "<p><font color=\"red\">w</font></p>\n"},
        {"background",
         [](ZBMarkupPage& p) { p.append(text_with([](ZBMarkupElement& e) { e.set_background("#ff0"); })); },
         "<p><font style=\"background-color:#ff0\">w</font></p>\n"},
        {"bold and italics, no font",
         [](ZBMarkupPage& p) {
             p.append(text_with([](ZBMarkupElement& e) {
                 e.set_bold(true);
                 e.set_italics(true);
             }));
         },
         "<p><b><i>w</i></b></p>\n"},
        {"everything, opened and closed in order",
         [](ZBMarkupPage& p) {
             p.append(text_with([](ZBMarkupElement& e) {
                 e.set_anchor("tervalondiary://entry/4");
                 e.set_foreground("red");
                 e.set_background("blue");
                 e.set_bold(true);
                 e.set_italics(true);
             }));
         },
         "<p><a href=\"tervalondiary://entry/4\"><font color=\"red\" style=\"background-color:blue\"><b><i>w</i></b>"
         "</font></a></p>\n"},
        {"anchor escaped as an attribute",
         [](ZBMarkupPage& p) {
             p.append(text_with([](ZBMarkupElement& e) { e.set_anchor("https://x.org/?a=1&b=\"2\""); }, "go"));
         },
         "<p><a href=\"https://x.org/?a=1&amp;b=&quot;2&quot;\">go</a></p>\n"},
        {"escaping in one pass",
         [](ZBMarkupPage& p) { p.add_paragraph("a<b & c>d\ne\r\nf <br> &amp;"); },
         "<p>a&lt;b &amp; c&gt;d<br>e<br>f &lt;br&gt; &amp;amp;</p>\n"},
        {"preformatted in a block",
         [](ZBMarkupPage& p) { p.add_paragraph()->add_text("x <\n  y", true); },
         "<div><pre>x &lt;<br>  y</pre></div>\n"},
        {"built-in image", [](ZBMarkupPage& p) { p.add_paragraph()->add_element(new ZBMarkupImage(":image/t.png")); },
         "<p><img src=\"qrc:image/t.png\" alt=\"\"></p>\n"},
        {"linked image, one link",
         [](ZBMarkupPage& p) {
             auto* image = new ZBMarkupImage("pics/a b.png");
             image->set_anchor("u");
             p.add_paragraph()->add_element(image);
         },
         "<p><a href=\"u\"><img src=\"pics/a b.png\" alt=\"\"></a></p>\n"},
        {"table without titles",
         [](ZBMarkupPage& p) {
             auto* table = new ZBMarkupTable(2, 1);
             table->set_cell("a", 0, 0);
             table->set_cell("b&", 1, 0);
             p.append(table);
         },
         "\n<table border cellpadding=5>\n<tr><td>a</td><td>b&amp;</td></tr>\n</table>\n"},
        {"table with titles and coloured cells",
         [](ZBMarkupPage& p) {
             auto* table = new ZBMarkupTable(3, 1);
             table->set_title("A", 0);
             table->set_title("B", 2);
             table->set_cell("r", 0, 0, "red", "yellow");
             table->set_cell("g", 1, 0, "", "#0f0");
             table->set_cell("k", 2, 0, "black", "", true);
             p.append(table);
         },
         "\n<table border cellpadding=5>\n<tr><th>A</th><th></th><th>B</th></tr>\n"
         "<tr><td style=\"color:red;background-color:yellow\">r</td><td style=\"background-color:#0f0\">g</td>"
         "<td style=\"color:black\"><b>k</b></td></tr>\n</table>\n"},
        {"table inside a paragraph",
         [](ZBMarkupPage& p) {
             ZBMarkupParagraph* paragraph = p.add_paragraph("Before");
             auto* table = new ZBMarkupTable(1, 1);
             table->set_cell("c", 0, 0);
             paragraph->add_element(table);
         },
         "<div>Before\n<table border cellpadding=5>\n<tr><td>c</td></tr>\n</table>\n</div>\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.body, body_of(c.fill));
    }
}

TEST_F(HtmlRendererTest, PageTitleAndColoursGoInTheHead)
{
    ZBMarkupPage page("Mine & <yours>");
    page.set_background("white");
    page.set_foreground("#333");
    EXPECT_EQ("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
              "<title>Mine &amp; &lt;yours&gt;</title>\n</head>\n<body bgcolor=\"white\" text=\"#333\">\n"
              "</body>\n</html>\n",
              ZBHtmlRenderer().to_string(page));
}

TEST_F(HtmlRendererTest, StreamAndStringGiveTheSameText)
{
    ZBMarkupPage page("Same");
    page.add_paragraphs("one\ntwo <3");
    auto* table = new ZBMarkupTable(2, 2);
    table->set_title("T", 0);
    table->set_cell("x", 1, 1, "red");
    page.append(table);
    ZBHtmlRenderer html(&page);
    std::ostringstream out;
    EXPECT_EQ(ZBErrC_ok, html.render(out));
    EXPECT_EQ(out.str(), html.to_string(page));
}

namespace {
// A kind of element the renderers do not know.
class OddElement : public ZBMarkupElement {
public:
    ZBMarkupElement* clone() const override { return new OddElement(*this); }
};
} // namespace

TEST_F(HtmlRendererTest, AFailedPartShowsItsErrorAndThePageStillEnds)
{
    ZBMarkupPage page;
    ZBMarkupParagraph* first = page.add_paragraph("Before ");
    first->add_element(new OddElement());
    first->add_text(" skipped");
    page.add_paragraph("Never shown");
    std::ostringstream out;
    const int value = ZBHtmlRenderer().render(page, out);
    EXPECT_TRUE(iszberr(value));
    const std::string html = out.str();
    EXPECT_NE(std::string::npos, html.find("<p>Before <font color=\"red\"><b>Error: "));
    EXPECT_NE(std::string::npos, html.find("</b></font></p>\n</body>\n</html>\n"));
    EXPECT_EQ(std::string::npos, html.find("skipped"));
    EXPECT_EQ(std::string::npos, html.find("Never shown"));
}
