#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBErrDetails;
class ZBMarkupElement;
class ZBMarkupImage;
class ZBMarkupPage;
class ZBMarkupParagraph;
class ZBMarkupTable;
class ZBMarkupTextElement;

// Writes a markup page out; this base writes plain text for a fixed-width
// terminal: a line per paragraph, headers underlined, indents as blanks, and
// tables in columns lined up by the measured width of their cells.
// Subclasses write other formats by overriding the steps. A part that
// cannot be written is replaced by the error's text, so a display always
// comes up; render then stops after that part and still ends the page.
class ZBMarkupRenderer {
public:
    explicit ZBMarkupRenderer(const ZBMarkupPage* page = nullptr);
    virtual ~ZBMarkupRenderer();

    // Writes the page given at construction.
    int render(std::ostream& out);
    int render(const ZBMarkupPage& page, std::ostream& out);
    // The same text as render, as a string.
    std::string to_string(const ZBMarkupPage& page);
    // Writes the error in place of the part that failed.
    virtual void handle_error(const ZBErrDetails& details, std::ostream& out);

    // Columns a text takes in a fixed-width face: characters, not bytes; wide
    // East Asian characters count two, combining marks none.
    static int text_width(const std::string& text);
    // The widest line of an element, and of a paragraph with its indent.
    static int element_size(const ZBMarkupElement& element);
    static int paragraph_size(const ZBMarkupParagraph& paragraph);

    // Blanks per indent step in text.
    static const int C_IndentWidth = 2;
    // Blanks between table columns in text.
    static const int C_ColumnGap = 2;

protected:
    virtual int start_page(const ZBMarkupPage& page, std::ostream& out);
    virtual int end_page(const ZBMarkupPage& page, std::ostream& out);
    virtual int start_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out);
    virtual int end_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out);
    virtual int render_base_text(const ZBMarkupTextElement& text, std::ostream& out);
    virtual int render_image(const ZBMarkupImage& image, std::ostream& out);
    virtual int render_table(const ZBMarkupTable& table, std::ostream& out);
    virtual int open_formatting(const ZBMarkupElement& element, std::ostream& out);
    virtual int close_formatting(const ZBMarkupElement& element, std::ostream& out);
    // Text, image, table or a nested paragraph, within the element's formatting.
    virtual int handle_element(const ZBMarkupElement& element, std::ostream& out);
    virtual int handle_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out);

    // The lines of a paragraph as plain text, without its indent.
    static std::vector<std::string> paragraph_lines(const ZBMarkupParagraph& paragraph);

    // Runs one step; an error reported or thrown inside it is written in place
    // and its value returned.
    template <class Fn>
    int guarded(std::ostream& out, Fn fn);

    // Text output: writes the text with the indent at the start of each line.
    void write_text(std::ostream& out, const std::string& text);

    // Where text output stands: the indent of the paragraph being written,
    // whether the current line is still empty, whether a table has just
    // ended its own line, and line widths for header underlines.
    struct TextState {
        int indent = 0;
        bool atLineStart = true;
        bool blockEnded = false;
        int lineWidth = 0;
        int maxWidth = 0;
    };

    const ZBMarkupPage* m_page;
    TextState m_text;
};

} // namespace Tervalon
