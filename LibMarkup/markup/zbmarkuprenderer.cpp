#include "LibMarkup/markup/zbmarkuprenderer.h"

#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "LibMarkup/markup/zbmarkuptextelement.h"

#include <algorithm>
#include <ostream>
#include <sstream>

namespace Tervalon {

namespace {

// The next code point of UTF-8 text; a byte that starts no valid sequence
// stands for itself, so damaged text still measures.
unsigned next_code_point(const std::string& text, size_t& i)
{
    const unsigned char c = static_cast<unsigned char>(text[i]);
    int extra = 0;
    unsigned cp = c;
    if (c >= 0xF0 && c < 0xF8) {
        extra = 3;
        cp = c & 0x07;
    } else if (c >= 0xE0) {
        extra = 2;
        cp = c & 0x0F;
    } else if (c >= 0xC0) {
        extra = 1;
        cp = c & 0x1F;
    }
    if (c < 0xC0 || c >= 0xF8 || i + size_t(extra) >= text.size()) {
        ++i;
        return c;
    }
    for (int k = 1; k <= extra; ++k) {
        const unsigned char d = static_cast<unsigned char>(text[i + size_t(k)]);
        if ((d & 0xC0) != 0x80) {
            ++i;
            return c;
        }
        cp = (cp << 6) | (d & 0x3F);
    }
    i += size_t(extra) + 1;
    return cp;
}

int code_point_width(unsigned cp)
{
    if ((cp >= 0x0300 && cp <= 0x036F) || (cp >= 0x1AB0 && cp <= 0x1AFF) || (cp >= 0x20D0 && cp <= 0x20FF) ||
        (cp >= 0xFE20 && cp <= 0xFE2F) || cp == 0x200B)
        return 0;
    if ((cp >= 0x1100 && cp <= 0x115F) || (cp >= 0x2E80 && cp <= 0xA4CF) || (cp >= 0xAC00 && cp <= 0xD7A3) ||
        (cp >= 0xF900 && cp <= 0xFAFF) || (cp >= 0xFE30 && cp <= 0xFE4F) || (cp >= 0xFF00 && cp <= 0xFF60) ||
        (cp >= 0xFFE0 && cp <= 0xFFE6) || (cp >= 0x1F300 && cp <= 0x1F64F) || (cp >= 0x1F900 && cp <= 0x1F9FF) ||
        (cp >= 0x20000 && cp <= 0x3FFFD))
        return 2;
    return 1;
}

std::vector<std::string> split_lines(const std::string& text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            if (start < text.size())
                lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

void trim_right(std::string& line)
{
    while (!line.empty() && line.back() == ' ')
        line.pop_back();
}


} // namespace

void ZBMarkupRenderer::write_text(std::ostream& out, const std::string& text)
{
    TextState& state = m_text;
    size_t start = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        const std::string piece = text.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (!piece.empty()) {
            if (state.atLineStart) {
                out << std::string(size_t(state.indent), ' ');
                state.lineWidth = state.indent;
                state.atLineStart = false;
            }
            out << piece;
            state.lineWidth += ZBMarkupRenderer::text_width(piece);
            state.maxWidth = std::max(state.maxWidth, state.lineWidth);
            state.blockEnded = false;
        }
        if (end == std::string::npos)
            break;
        out << '\n';
        state.atLineStart = true;
        state.lineWidth = 0;
        state.blockEnded = false;
        start = end + 1;
    }
}

ZBMarkupRenderer::ZBMarkupRenderer(const ZBMarkupPage* page) : m_page(page) {}

ZBMarkupRenderer::~ZBMarkupRenderer() = default;

template <class Fn>
int ZBMarkupRenderer::guarded(std::ostream& out, Fn fn)
{
    try {
        const int value = fn();
        if (iszberr(value)) {
            const ZBErrDetails* top = get_zberror().top();
            handle_error(top ? *top : ZBErrDetails(ZBErrDetails::compute_code(value), ZBErrSev_Error), out);
        }
        return value;
    } catch (const ZBErrDetails& details) {
        handle_error(details, out);
        return details.get_value();
    }
}

int ZBMarkupRenderer::render(std::ostream& out)
{
    if (!m_page)
        return zberror(ZBErrC_NullPointer, ZBLOC, "There is no page to show.");
    return render(*m_page, out);
}

int ZBMarkupRenderer::render(const ZBMarkupPage& page, std::ostream& out)
{
    m_text = TextState();
    int value = start_page(page, out);
    if (!iszberr(value)) {
        for (const ZBMarkupElement* element : page.m_body) {
            const auto* paragraph = dynamic_cast<const ZBMarkupParagraph*>(element);
            value = paragraph ? handle_paragraph(*paragraph, out) : handle_element(*element, out);
            if (iszberr(value))
                break;
        }
    }
    const int endValue = end_page(page, out);
    return iszberr(value) ? value : endValue;
}

std::string ZBMarkupRenderer::to_string(const ZBMarkupPage& page)
{
    std::ostringstream out;
    render(page, out);
    return out.str();
}

void ZBMarkupRenderer::handle_error(const ZBErrDetails& details, std::ostream& out)
{
    write_text(out, "[Error: " + details.get_message() + "]");
}

int ZBMarkupRenderer::text_width(const std::string& text)
{
    int width = 0;
    for (size_t i = 0; i < text.size();)
        width += code_point_width(next_code_point(text, i));
    return width;
}

std::vector<std::string> ZBMarkupRenderer::paragraph_lines(const ZBMarkupParagraph& paragraph)
{
    ZBMarkupRenderer renderer;
    std::ostringstream out;
    renderer.handle_paragraph(paragraph, out);
    std::vector<std::string> lines = split_lines(out.str());
    for (std::string& line : lines)
        trim_right(line);
    return lines;
}

int ZBMarkupRenderer::paragraph_size(const ZBMarkupParagraph& paragraph)
{
    int width = 0;
    for (const std::string& line : paragraph_lines(paragraph))
        width = std::max(width, text_width(line));
    return width;
}

int ZBMarkupRenderer::element_size(const ZBMarkupElement& element)
{
    if (const auto* paragraph = dynamic_cast<const ZBMarkupParagraph*>(&element))
        return paragraph_size(*paragraph);
    ZBMarkupParagraph holder;
    holder.add_element(element.clone());
    return paragraph_size(holder);
}

// The title is for a window or a browser tab; a page that wants it seen
// starts with a header of its own.
int ZBMarkupRenderer::start_page(const ZBMarkupPage&, std::ostream&) { return ZBErrC_ok; }

int ZBMarkupRenderer::end_page(const ZBMarkupPage&, std::ostream& out)
{
    TextState& state = m_text;
    if (!state.atLineStart) {
        out << '\n';
        state.atLineStart = true;
    }
    return ZBErrC_ok;
}

int ZBMarkupRenderer::start_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out)
{
    TextState& state = m_text;
    if (!state.atLineStart) {
        out << '\n';
        state.atLineStart = true;
    }
    state.indent = C_IndentWidth * std::max(0, paragraph.get_indent());
    state.maxWidth = 0;
    state.lineWidth = 0;
    state.blockEnded = false;
    return ZBErrC_ok;
}

int ZBMarkupRenderer::end_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out)
{
    TextState& state = m_text;
    // A paragraph that ended with a table has its line feed already.
    if (!state.blockEnded)
        out << '\n';
    state.atLineStart = true;
    const int level = paragraph.get_header_level();
    const int width = state.maxWidth - state.indent;
    if (level > 0 && width > 0)
        out << std::string(size_t(state.indent), ' ') << std::string(size_t(width), level == 1 ? '=' : '-') << '\n';
    state.blockEnded = false;
    return ZBErrC_ok;
}

int ZBMarkupRenderer::render_base_text(const ZBMarkupTextElement& text, std::ostream& out)
{
    write_text(out, text.get_text());
    return ZBErrC_ok;
}

int ZBMarkupRenderer::render_image(const ZBMarkupImage& image, std::ostream& out)
{
    write_text(out, image.get_raw_text());
    return ZBErrC_ok;
}

int ZBMarkupRenderer::render_table(const ZBMarkupTable& table, std::ostream& out)
{
    TextState& state = m_text;
    if (!state.atLineStart) {
        out << '\n';
        state.atLineStart = true;
    }
    const int columns = table.get_ncolumns();
    if (columns == 0)
        return ZBErrC_ok;
    const bool titles = table.has_titles();
    // Every cell as its lines, the titles as row -1.
    std::vector<std::vector<std::vector<std::string>>> grid;
    std::vector<int> width(static_cast<size_t>(columns), 0);
    auto add_row = [&](auto paragraphOf) {
        std::vector<std::vector<std::string>> row{size_t(columns)};
        for (int c = 0; c < columns; ++c) {
            row[size_t(c)] = paragraph_lines(paragraphOf(c));
            for (const std::string& line : row[size_t(c)])
                width[size_t(c)] = std::max(width[size_t(c)], text_width(line));
        }
        grid.push_back(std::move(row));
    };
    if (titles)
        add_row([&](int c) -> const ZBMarkupParagraph& { return *table.get_title(c); });
    for (int r = 0; r < table.get_nrows(); ++r)
        add_row([&](int c) -> const ZBMarkupParagraph& { return table.get_cell(c, r)->get_paragraph(); });

    const std::string indent(size_t(state.indent), ' ');
    const std::string gap(size_t(C_ColumnGap), ' ');
    for (size_t r = 0; r < grid.size(); ++r) {
        size_t height = 1;
        for (const auto& cell : grid[r])
            height = std::max(height, cell.size());
        for (size_t k = 0; k < height; ++k) {
            std::string line = indent;
            bool first = true;
            for (int c = 0; c < columns; ++c) {
                // A column with no words at all (pictures only) takes no room in text.
                if (width[size_t(c)] == 0)
                    continue;
                const auto& cell = grid[r][size_t(c)];
                const std::string text = k < cell.size() ? cell[k] : std::string();
                const std::string pad(size_t(width[size_t(c)] - text_width(text)), ' ');
                if (!first)
                    line += gap;
                first = false;
                if (table.get_alignment(c) == ZBMarkupTable::E_AlignRight)
                    line += pad + text;
                else
                    line += text + pad;
            }
            trim_right(line);
            out << line << '\n';
            state.maxWidth = std::max(state.maxWidth, text_width(line));
        }
        if (titles && r == 0) {
            std::string rule = indent;
            bool first = true;
            for (int c = 0; c < columns; ++c) {
                if (width[size_t(c)] == 0)
                    continue;
                rule += (first ? std::string() : gap) + std::string(size_t(width[size_t(c)]), '-');
                first = false;
            }
            trim_right(rule);
            out << rule << '\n';
        }
    }
    state.atLineStart = true;
    state.blockEnded = true;
    return ZBErrC_ok;
}

int ZBMarkupRenderer::open_formatting(const ZBMarkupElement&, std::ostream&) { return ZBErrC_ok; }

int ZBMarkupRenderer::close_formatting(const ZBMarkupElement&, std::ostream&) { return ZBErrC_ok; }

int ZBMarkupRenderer::handle_element(const ZBMarkupElement& element, std::ostream& out)
{
    if (const auto* paragraph = dynamic_cast<const ZBMarkupParagraph*>(&element))
        return handle_paragraph(*paragraph, out);
    return guarded(out, [&]() {
        int value = open_formatting(element, out);
        if (iszberr(value))
            return value;
        if (const auto* text = dynamic_cast<const ZBMarkupTextElement*>(&element))
            value = render_base_text(*text, out);
        else if (const auto* image = dynamic_cast<const ZBMarkupImage*>(&element))
            value = render_image(*image, out);
        else if (const auto* table = dynamic_cast<const ZBMarkupTable*>(&element))
            value = render_table(*table, out);
        else
            value = zberror(ZBErrC_CaseMissing, ZBLOC, "A part of this page is of a kind that cannot be shown.");
        const int closed = close_formatting(element, out);
        return iszberr(value) ? value : closed;
    });
}

int ZBMarkupRenderer::handle_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out)
{
    // A paragraph within a paragraph has its own indent; the outer one's
    // comes back after it.
    const TextState outer = m_text;
    int value = start_paragraph(paragraph, out);
    if (iszberr(value))
        return value;
    const bool formatted = paragraph.has_formatting();
    if (formatted)
        value = open_formatting(paragraph, out);
    // A part that fails is already replaced by its error; the paragraph still
    // closes so that the output stays well formed.
    for (int i = 0; i < paragraph.get_nelements() && !iszberr(value); ++i)
        value = handle_element(*paragraph.m_element[i], out);
    if (formatted) {
        const int closed = close_formatting(paragraph, out);
        value = iszberr(value) ? value : closed;
    }
    const int ended = end_paragraph(paragraph, out);
    m_text.indent = outer.indent;
    m_text.maxWidth = std::max(outer.maxWidth, m_text.maxWidth);
    return iszberr(value) ? value : ended;
}

} // namespace Tervalon
