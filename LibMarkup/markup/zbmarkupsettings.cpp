#include "LibMarkup/markup/zbmarkupsettings.h"

#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

const char* const ZBMarkupSettings::cSystem = "SystemDefault";

ZBMarkupSettings::ZBMarkupSettings() { set_defaults(true); }

ZBMarkupSettings::ZBMarkupSettings(const ZBMarkupSettings& other) { *this = other; }

ZBMarkupSettings& ZBMarkupSettings::operator=(const ZBMarkupSettings& other)
{
    if (this == &other)
        return *this;
    // Element by element: the arrays' own copy would not keep the names.
    m_base.clear();
    m_page.clear();
    for (int i = 0; i < other.m_base.size(); ++i)
        m_base.add(other.m_base.tag(i), new ZBMarkupElement(*other.m_base[i]));
    for (int i = 0; i < other.m_page.size(); ++i)
        m_page.add(other.m_page.tag(i), new ZBMarkupPage(*other.m_page[i]));
    _current_base = other._current_base;
    _current_page = other._current_page;
    return *this;
}

void ZBMarkupSettings::set_defaults(bool)
{
    m_base.clear();
    m_page.clear();
    m_base.add(cSystem, new ZBMarkupElement());
    m_page.add(cSystem, new ZBMarkupPage());
    _current_base = cSystem;
    _current_page = cSystem;
}

int ZBMarkupSettings::add_base(const std::string& name, const ZBMarkupElement& base)
{
    auto* copy = new ZBMarkupElement();
    copy->copy_formatting(base);
    m_base.remove_value(name);
    return m_base.add(name, copy);
}

int ZBMarkupSettings::add_page(const std::string& name, const ZBMarkupPage& page)
{
    // Only the look is a default; the body and title belong to each page.
    auto* copy = new ZBMarkupPage();
    copy->copy_formatting(page);
    m_page.remove_value(name);
    return m_page.add(name, copy);
}

int ZBMarkupSettings::use_base(const std::string& name)
{
    if (!m_base.contains(name))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "There is no markup style called \"%s\".", name.c_str());
    _current_base = name;
    return ZBErrC_ok;
}

int ZBMarkupSettings::use_page(const std::string& name)
{
    if (!m_page.contains(name))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "There is no page style called \"%s\".", name.c_str());
    _current_page = name;
    return ZBErrC_ok;
}

void ZBMarkupSettings::default_base(ZBMarkupElement& element) const
{
    if (const ZBMarkupElement* base = m_base.find(_current_base))
        element.copy_formatting(*base);
}

void ZBMarkupSettings::default_page(ZBMarkupPage& page) const
{
    if (const ZBMarkupPage* base = m_page.find(_current_page))
        page.copy_formatting(*base);
}

void ZBMarkupSettings::dump(std::ostream& out, int indent) const
{
    const std::string pad(size_t(indent), ' ');
    out << pad << "ZBMarkupSettings\n" << pad << "  _current_base: " << _current_base << "\n"
        << pad << "  _current_page: " << _current_page << "\n";
    for (int i = 0; i < m_base.size(); ++i) {
        out << pad << "  base " << m_base.tag(i) << "\n";
        m_base[i]->dump(out, indent + 4);
    }
    for (int i = 0; i < m_page.size(); ++i) {
        out << pad << "  page " << m_page.tag(i) << "\n";
        m_page[i]->dump(out, indent + 4);
    }
}

} // namespace Tervalon
