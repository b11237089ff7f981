#include "LibMarkup/markup/zbmarkuptextelement.h"

#include <ostream>

namespace Tervalon {

ZBMarkupTextElement::ZBMarkupTextElement(const std::string& text, bool preformatted)
    : m_text(text), m_preformatted(preformatted)
{
}

ZBMarkupElement* ZBMarkupTextElement::clone() const { return new ZBMarkupTextElement(*this); }

std::string ZBMarkupTextElement::get_raw_text() const { return m_text; }

bool ZBMarkupTextElement::same_content(const ZBMarkupElement& other) const
{
    const auto& o = static_cast<const ZBMarkupTextElement&>(other);
    return m_text == o.m_text && m_preformatted == o.m_preformatted;
}

void ZBMarkupTextElement::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupTextElement\n";
    ZBMarkupElement::dump(out, indent + 2);
    out << pad << "  m_text: " << m_text << "\n" << pad << "  m_preformatted: " << m_preformatted << "\n";
}

} // namespace Tervalon
