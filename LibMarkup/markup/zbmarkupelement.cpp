#include "LibMarkup/markup/zbmarkupelement.h"

#include <ostream>
#include <typeinfo>

namespace Tervalon {

ZBMarkupElement::ZBMarkupElement() { set_defaults(true); }

ZBMarkupElement::~ZBMarkupElement() = default;

ZBMarkupElement* ZBMarkupElement::clone() const { return new ZBMarkupElement(*this); }

std::string ZBMarkupElement::get_raw_text() const { return std::string(); }

void ZBMarkupElement::set_defaults(bool)
{
    m_foregroundColour.clear();
    m_backgroundColour.clear();
    m_bold = false;
    m_italics = false;
    m_anchor.clear();
}

void ZBMarkupElement::copy_formatting(const ZBMarkupElement& other)
{
    m_foregroundColour = other.m_foregroundColour;
    m_backgroundColour = other.m_backgroundColour;
    m_bold = other.m_bold;
    m_italics = other.m_italics;
    m_anchor = other.m_anchor;
}

bool ZBMarkupElement::same_formatting(const ZBMarkupElement& other) const
{
    return m_foregroundColour == other.m_foregroundColour && m_backgroundColour == other.m_backgroundColour &&
           m_bold == other.m_bold && m_italics == other.m_italics && m_anchor == other.m_anchor;
}

bool ZBMarkupElement::has_formatting() const
{
    return !m_foregroundColour.empty() || !m_backgroundColour.empty() || m_bold || m_italics || !m_anchor.empty();
}

bool ZBMarkupElement::operator==(const ZBMarkupElement& other) const
{
    return typeid(*this) == typeid(other) && same_formatting(other) && same_content(other);
}

bool ZBMarkupElement::same_content(const ZBMarkupElement&) const { return true; }

void ZBMarkupElement::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "m_foregroundColour: " << m_foregroundColour << "\n"
        << pad << "m_backgroundColour: " << m_backgroundColour << "\n"
        << pad << "m_bold: " << m_bold << "\n"
        << pad << "m_italics: " << m_italics << "\n"
        << pad << "m_anchor: " << m_anchor << "\n";
}

} // namespace Tervalon
