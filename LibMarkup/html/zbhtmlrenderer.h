#pragma once

#include "LibMarkup/markup/zbmarkuprenderer.h"

#include <string>

namespace Tervalon {

// Writes a markup page as an HTML5 document, for the text browser and for
// export files. All text passes through escape_characters once; attribute
// values through escape_attribute.
class ZBHtmlRenderer : public ZBMarkupRenderer {
public:
    explicit ZBHtmlRenderer(const ZBMarkupPage* page = nullptr);

    void handle_error(const ZBErrDetails& details, std::ostream& out) override;

    // One pass over the text: a line feed (or CR LF) becomes "<br>", and
    // ">", "<", "&" their entities, so nothing written here is escaped twice.
    static std::string escape_characters(const std::string& text);
    // For a value between double quotes: "&", "<", ">" and '"' as entities.
    static std::string escape_attribute(const std::string& text);

protected:
    int start_page(const ZBMarkupPage& page, std::ostream& out) override;
    int end_page(const ZBMarkupPage& page, std::ostream& out) override;
    int start_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out) override;
    int end_paragraph(const ZBMarkupParagraph& paragraph, std::ostream& out) override;
    int render_base_text(const ZBMarkupTextElement& text, std::ostream& out) override;
    int render_image(const ZBMarkupImage& image, std::ostream& out) override;
    int render_table(const ZBMarkupTable& table, std::ostream& out) override;
    int open_formatting(const ZBMarkupElement& element, std::ostream& out) override;
    int close_formatting(const ZBMarkupElement& element, std::ostream& out) override;

    // A paragraph that holds a table, preformatted text or another paragraph
    // cannot sit in "<p>" (the browser would close it early), so it is a "<div>".
    static bool holds_blocks(const ZBMarkupParagraph& paragraph);
};

} // namespace Tervalon
