#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

ZBDump::ZBDump(const std::string& name, std::ostream& out, int indent) : m_out(out), m_indent(indent)
{
    m_out << std::string(size_t(indent) * 4, ' ') << name << "\n";
}

ZBDump::~ZBDump()
{
    write();
}

std::string ZBDump::clean_name(const std::string& name, int index)
{
    std::string clean = name;
    if (clean.compare(0, 6, "impl->") == 0)
        clean.erase(0, 6);
    if (clean.compare(0, 2, "m_") == 0)
        clean.erase(0, 2);
    if (index >= 0)
        clean += "[" + std::to_string(index) + "]";
    return clean;
}

void ZBDump::add_entry(const std::string& name, const std::string& value, int index)
{
    m_rows.emplace_back(clean_name(name, index), value);
}

void ZBDump::write()
{
    size_t width = 0;
    for (const auto& row : m_rows)
        width = std::max(width, row.first.size());
    const std::string pad(size_t(m_indent + 1) * 4, ' ');
    for (const auto& row : m_rows) {
        m_out << pad << row.first << std::string(width - row.first.size(), ' ') << ": ";
        const std::string& value = row.second;
        size_t start = 0;
        bool firstLine = true;
        for (;;) {
            size_t end = value.find('\n', start);
            std::string part = value.substr(start, end == std::string::npos ? std::string::npos : end - start);
            if (!firstLine)
                m_out << pad << std::string(width + 2, ' ');
            m_out << part << "\n";
            firstLine = false;
            if (end == std::string::npos || end + 1 == value.size())
                break;
            start = end + 1;
        }
    }
    m_rows.clear();
}

void ZBDump::write_heading(const std::string& text, int index)
{
    write();
    m_out << std::string(size_t(m_indent + 1) * 4, ' ') << clean_name(text, index) << "\n";
}

} // namespace Tervalon
