#include "LibGui/base/zbtableentry.h"

#include <algorithm>
#include <cctype>
#include <ostream>
#include <sstream>

namespace Tervalon {

ZBTableEntry::ZBTableEntry(double value)
{
    set_value(value);
}

void ZBTableEntry::set_value(double value)
{
    m_value = value;
    m_hasValue = true;
    std::ostringstream text;
    text << value;
    m_text = text.str();
}

void ZBTableEntry::process(ZBTableEntry&) const {}

int ZBTableEntry::compare(const ZBTableEntry& a, const ZBTableEntry& b)
{
    if (a.m_hasValue != b.m_hasValue)
        return a.m_hasValue ? -1 : 1;
    if (a.m_hasValue)
        return a.m_value < b.m_value ? -1 : (b.m_value < a.m_value ? 1 : 0);
    const std::string& x = a.m_text;
    const std::string& y = b.m_text;
    const size_t n = std::min(x.size(), y.size());
    for (size_t i = 0; i < n; ++i) {
        int cx = std::tolower(static_cast<unsigned char>(x[i]));
        int cy = std::tolower(static_cast<unsigned char>(y[i]));
        if (cx != cy)
            return cx < cy ? -1 : 1;
    }
    return x.size() < y.size() ? -1 : (x.size() > y.size() ? 1 : 0);
}

bool ZBTableEntry::operator==(const ZBTableEntry& other) const
{
    return m_text == other.m_text && m_hasValue == other.m_hasValue && (!m_hasValue || m_value == other.m_value);
}

void ZBTableEntry::dump(std::ostream& out, int indent) const
{
    out << std::string(indent, ' ') << "m_text " << m_text;
    if (m_hasValue)
        out << " m_value " << m_value;
    out << "\n";
}

} // namespace Tervalon
