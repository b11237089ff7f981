#pragma once

#include <iosfwd>
#include <map>
#include <string>

namespace Tervalon {

// A map of text tags to text values, with typed readers: the query items of a
// URL, the options of a command, small key files.
class ZBTagValue {
public:
    ZBTagValue();
    virtual ~ZBTagValue();

    void set(const std::string& tag, const std::string& value);
    bool has(const std::string& tag) const;
    void remove(const std::string& tag);
    void clear() { m_value.clear(); }
    int size() const { return int(m_value.size()); }

    // The value, or the default when the tag is absent or not a number.
    std::string get_string(const std::string& tag, const std::string& defaultValue = std::string()) const;
    int get_int(const std::string& tag, int defaultValue = 0) const;
    double get_double(const std::string& tag, double defaultValue = 0.0) const;
    bool get_bool(const std::string& tag, bool defaultValue = false) const;

    const std::map<std::string, std::string>& get_map() const { return m_value; }
    // Reads "tag=value" pairs split by separator ("a=1&b=2" with '&').
    void from_string(const std::string& text, char separator, char assign = '=');

    bool operator==(const ZBTagValue& other) const { return m_value == other.m_value; }
    virtual void dump(std::ostream& out, int indent) const;

private:
    std::map<std::string, std::string> m_value;
};

} // namespace Tervalon
