#pragma once

#include "LibMarkup/markup/zbmarkupelement.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"

namespace Tervalon {

// One cell of a table: its own look (colours of the whole cell) and one
// paragraph of content.
class ZBMarkupTableCell : public ZBMarkupElement {
public:
    ZBMarkupTableCell();
    explicit ZBMarkupTableCell(const std::string& text);

    ZBMarkupElement* clone() const override;
    std::string get_raw_text() const override;
    void dump(std::ostream& out, int indent) const override;

    ZBMarkupParagraph& get_paragraph() { return m_paragraph; }
    const ZBMarkupParagraph& get_paragraph() const { return m_paragraph; }
    void set_text(const std::string& text);

    ZBMarkupParagraph m_paragraph;

protected:
    bool same_content(const ZBMarkupElement& other) const override;
};

} // namespace Tervalon
