#include "LibMarkup/markup/zbmarkuptablecell.h"

#include <ostream>

namespace Tervalon {

ZBMarkupTableCell::ZBMarkupTableCell() = default;

ZBMarkupTableCell::ZBMarkupTableCell(const std::string& text) : m_paragraph(text) {}

ZBMarkupElement* ZBMarkupTableCell::clone() const { return new ZBMarkupTableCell(*this); }

std::string ZBMarkupTableCell::get_raw_text() const { return m_paragraph.get_raw_text(); }

void ZBMarkupTableCell::set_text(const std::string& text) { m_paragraph = ZBMarkupParagraph(text); }

bool ZBMarkupTableCell::same_content(const ZBMarkupElement& other) const
{
    return m_paragraph == static_cast<const ZBMarkupTableCell&>(other).m_paragraph;
}

void ZBMarkupTableCell::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupTableCell\n";
    ZBMarkupElement::dump(out, indent + 2);
    m_paragraph.dump(out, indent + 2);
}

} // namespace Tervalon
