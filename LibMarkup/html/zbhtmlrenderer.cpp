#include "LibMarkup/html/zbhtmlrenderer.h"

#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "LibMarkup/markup/zbmarkuptextelement.h"

#include <ostream>

namespace Tervalon {

namespace {

// A plain paragraph in a table cell or title is written bare: the cell is
// already a block, and "<p>" would only add margins.
thread_local int t_cellDepth = 0;

bool bare_in_cell(const ZBMarkupParagraph& paragraph)
{
    return t_cellDepth > 0 && paragraph.get_header_level() <= 0 && paragraph.get_indent() <= 0;
}

struct CellScope {
    CellScope() { ++t_cellDepth; }
    ~CellScope() { --t_cellDepth; }
};

} // namespace

ZBHtmlRenderer::ZBHtmlRenderer(const ZBMarkupPage* page) : ZBMarkupRenderer(page) {}

std::string ZBHtmlRenderer::escape_characters(const std::string& text)
{
    std::string escaped;
    escaped.reserve(text.size() + text.size() / 8);
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        switch (c) {
        case '\r':
            if (i + 1 < text.size() && text[i + 1] == '\n')
                ++i;
            escaped += "<br>";
            break;
        case '\n':
            escaped += "<br>";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '&':
            escaped += "&amp;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

std::string ZBHtmlRenderer::escape_attribute(const std::string& text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

void ZBHtmlRenderer::handle_error(const ZBErrDetails& details, std::ostream& out)
{
    // Inline, so that it is allowed wherever the failing part was.
    out << "<font color=\"red\"><b>" << escape_characters("Error: " + details.get_message()) << "</b></font>";
}

int ZBHtmlRenderer::start_page(const ZBMarkupPage& page, std::ostream& out)
{
    out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
        << escape_characters(page.get_title()) << "</title>\n</head>\n<body";
    if (!page.get_background().empty())
        out << " bgcolor=\"" << escape_attribute(page.get_background()) << "\"";
    if (!page.get_foreground().empty())
        out << " text=\"" << escape_attribute(page.get_foreground()) << "\"";
    out << ">\n";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::end_page(const ZBMarkupPage&, std::ostream& out)
{
    out << "</body>\n</html>\n";
    return ZBErrC_ok;
}

bool ZBHtmlRenderer::holds_blocks(const ZBMarkupParagraph& paragraph)
{
    for (const ZBMarkupElement* element : paragraph.m_element) {
        if (dynamic_cast<const ZBMarkupTable*>(element) || dynamic_cast<const ZBMarkupParagraph*>(element))
            return true;
        const auto* text = dynamic_cast<const ZBMarkupTextElement*>(element);
        if (text && text->get_preformatted())
            return true;
    }
    return false;
}

int ZBHtmlRenderer::start_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out)
{
    // The lists go outside: a list opened inside "<p>" would end the paragraph.
    for (int i = 0; i < paragraph.get_indent(); ++i)
        out << "<UL>";
    const int level = paragraph.get_header_level();
    if (level > 0)
        out << "<h" << level << ">";
    else if (holds_blocks(paragraph))
        out << "<div>";
    else if (!bare_in_cell(paragraph))
        out << "<p>";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::end_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out)
{
    const int level = paragraph.get_header_level();
    if (level > 0)
        out << "</h" << level << ">";
    else if (holds_blocks(paragraph))
        out << "</div>";
    else if (!bare_in_cell(paragraph))
        out << "</p>";
    for (int i = 0; i < paragraph.get_indent(); ++i)
        out << "</UL>";
    if (t_cellDepth == 0)
        out << "\n";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::open_formatting(const ZBMarkupElement& element, std::ostream& out)
{
    // A picture carries its own link.
    if (!element.get_anchor().empty() && !dynamic_cast<const ZBMarkupImage*>(&element))
        out << "<a href=\"" << escape_attribute(element.get_anchor()) << "\">";
    const std::string& fg = element.get_foreground();
    const std::string& bg = element.get_background();
    if (!fg.empty() || !bg.empty()) {
        out << "<font";
        if (!fg.empty())
            out << " color=\"" << escape_attribute(fg) << "\"";
        // Browsers ignore a background given as an attribute of "font".
        if (!bg.empty())
            out << " style=\"background-color:" << escape_attribute(bg) << "\"";
        out << ">";
    }
    if (element.get_bold())
        out << "<b>";
    if (element.get_italics())
        out << "<i>";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::close_formatting(const ZBMarkupElement& element, std::ostream& out)
{
    if (element.get_italics())
        out << "</i>";
    if (element.get_bold())
        out << "</b>";
    if (!element.get_foreground().empty() || !element.get_background().empty())
        out << "</font>";
    if (!element.get_anchor().empty() && !dynamic_cast<const ZBMarkupImage*>(&element))
        out << "</a>";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::render_base_text(const ZBMarkupTextElement& text, std::ostream& out)
{
    if (text.get_preformatted())
        out << "<pre>" << escape_characters(text.get_text()) << "</pre>";
    else
        out << escape_characters(text.get_text());
    return ZBErrC_ok;
}

int ZBHtmlRenderer::render_image(const ZBMarkupImage& image, std::ostream& out)
{
    std::string source = image.get_image_name();
    // Pictures built into the program are reached through Qt's resource scheme.
    if (source.compare(0, 6, ":image") == 0)
        source = "qrc" + source;
    const bool linked = !image.get_anchor().empty();
    if (linked)
        out << "<a href=\"" << escape_attribute(image.get_anchor()) << "\">";
    out << "<img src=\"" << escape_attribute(source) << "\" alt=\"\">";
    if (linked)
        out << "</a>";
    return ZBErrC_ok;
}

int ZBHtmlRenderer::render_table(const ZBMarkupTable& table, std::ostream& out)
{
    CellScope scope;
    int value = ZBErrC_ok;
    out << "\n<table border cellpadding=5>\n";
    if (table.has_titles()) {
        out << "<tr>";
        for (int c = 0; c < table.get_ncolumns() && !iszberr(value); ++c) {
            out << "<th>";
            value = handle_paragraph(*table.get_title(c), out);
            out << "</th>";
        }
        out << "</tr>\n";
    }
    for (int r = 0; r < table.get_nrows() && !iszberr(value); ++r) {
        out << "<tr>";
        for (int c = 0; c < table.get_ncolumns() && !iszberr(value); ++c) {
            const ZBMarkupTableCell& cell = *table.get_cell(c, r);
            const std::string& fg = cell.get_foreground();
            const std::string& bg = cell.get_background();
            if (fg.empty() && bg.empty()) {
                out << "<td>";
            } else {
                out << "<td style=\"";
                if (!fg.empty())
                    out << "color:" << escape_attribute(fg) << (bg.empty() ? "" : ";");
                if (!bg.empty())
                    out << "background-color:" << escape_attribute(bg);
                out << "\">";
            }
            value = handle_paragraph(cell.get_paragraph(), out);
            out << "</td>";
        }
        out << "</tr>\n";
    }
    out << "</table>\n";
    return value;
}

} // namespace Tervalon
