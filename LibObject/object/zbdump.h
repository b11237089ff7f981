#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace Tervalon {

// Builds the diagnostic print of an object: a heading with the class name, then
// the queued rows in an aligned column. Leaders "impl->" and "m_" are dropped
// from names; an index of zero or more shows as [n]. Four spaces per level.
class ZBDump {
public:
    ZBDump(const std::string& name, std::ostream& out, int indent);
    ~ZBDump();

    void add_entry(const std::string& name, const std::string& value, int index = -1);
    template <class T>
    void add(const std::string& name, const T& value, int index = -1);
    void write();
    void write_heading(const std::string& text, int index = -1);
    int get_indent() const { return m_indent; }

    static std::string clean_name(const std::string& name, int index);

private:
    std::ostream& m_out;
    int m_indent;
    std::vector<std::pair<std::string, std::string>> m_rows;
};

} // namespace Tervalon

#include <sstream>

namespace Tervalon {
template <class T>
void ZBDump::add(const std::string& name, const T& value, int index)
{
    std::ostringstream text;
    text << value;
    add_entry(name, text.str(), index);
}
} // namespace Tervalon
