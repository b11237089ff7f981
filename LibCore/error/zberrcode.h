#pragma once

#include <string>

namespace Tervalon {

// One row of the code table: its number is its position, given out at start-up.
class ZBErrCode {
public:
    ZBErrCode(int code, const std::string& name, const std::string& description)
        : m_code(code), m_name(name), m_description(description) {}
    int m_code;
    std::string m_name;
    std::string m_description;
};

} // namespace Tervalon
