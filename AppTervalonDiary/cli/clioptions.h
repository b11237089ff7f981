#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace Tervalon {

// The arguments of a command split into positional words and "--name value"
// options, for the commands that mix the two in any order.
class CliOptions {
public:
    // Options not in known, or without a value, make parse fail with the
    // offending word in error.
    bool parse(const std::vector<std::string>& args, const std::set<std::string>& known, std::string& error);

    const std::vector<std::string>& positional() const { return m_positional; }
    bool has(const std::string& name) const { return m_option.count(name) > 0; }
    std::string get(const std::string& name, const std::string& fallback = std::string()) const;

private:
    std::vector<std::string> m_positional;
    std::map<std::string, std::string> m_option;
};

} // namespace Tervalon
