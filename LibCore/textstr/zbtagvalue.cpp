#include "LibCore/textstr/zbtagvalue.h"
#include "LibCore/textstr/zbtextstr.h"

#include <ostream>

namespace Tervalon {

ZBTagValue::ZBTagValue() = default;

ZBTagValue::~ZBTagValue() = default;

void ZBTagValue::set(const std::string& tag, const std::string& value)
{
    m_value[tag] = value;
}

bool ZBTagValue::has(const std::string& tag) const
{
    return m_value.count(tag) != 0;
}

void ZBTagValue::remove(const std::string& tag)
{
    m_value.erase(tag);
}

std::string ZBTagValue::get_string(const std::string& tag, const std::string& defaultValue) const
{
    auto it = m_value.find(tag);
    return it == m_value.end() ? defaultValue : it->second;
}

int ZBTagValue::get_int(const std::string& tag, int defaultValue) const
{
    auto it = m_value.find(tag);
    return it == m_value.end() ? defaultValue : zb_string_to_int(it->second, defaultValue);
}

double ZBTagValue::get_double(const std::string& tag, double defaultValue) const
{
    auto it = m_value.find(tag);
    return it == m_value.end() ? defaultValue : zb_string_to_double(it->second, defaultValue);
}

bool ZBTagValue::get_bool(const std::string& tag, bool defaultValue) const
{
    auto it = m_value.find(tag);
    return it == m_value.end() ? defaultValue : zb_string_to_bool(it->second, defaultValue);
}

void ZBTagValue::from_string(const std::string& text, char separator, char assign)
{
    for (const std::string& pair : zb_tokenise(text, std::string(1, separator), true)) {
        std::string tag;
        std::string value;
        zb_tag_value(pair, tag, value, assign);
        if (!tag.empty())
            set(tag, value);
    }
}

void ZBTagValue::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBTagValue\n";
    for (const auto& entry : m_value)
        out << pad << "    m_value[" << entry.first << "] = " << entry.second << "\n";
}

} // namespace Tervalon
