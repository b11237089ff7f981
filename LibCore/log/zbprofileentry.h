#pragma once

#include <map>
#include <string>

namespace Tervalon {

// What the profile knows of one function: how often it ran, the time spent in
// it alone and with its callees, and who called it and whom it called.
class ZBProfileEntry {
public:
    explicit ZBProfileEntry(const std::string& name = std::string()) : m_name(name), m_calls(0), m_own(0), m_total(0) {}

    std::string m_name;
    int m_calls;
    long long m_own;   // microseconds
    long long m_total; // microseconds, outermost activations only, so recursion is not counted twice
    std::map<std::string, int> m_callers;
    std::map<std::string, int> m_callees;
};

} // namespace Tervalon
