#pragma once

#include <string>

namespace Tervalon {

// One finding of the data check about one object: what is wrong, in a
// sentence for the details page and in a few words for lists.
class ZBDBCheckItem {
public:
    ZBDBCheckItem() = default;
    ZBDBCheckItem(int id, int errorCode, const std::string& message, const std::string& shortMessage);

    int get_id() const { return m_id; }
    int get_error_code() const { return m_errorCode; }
    const std::string& get_message() const { return m_message; }
    const std::string& get_short_message() const { return m_shortMessage; }
    bool operator==(const ZBDBCheckItem& other) const;

private:
    int m_id = -1;
    int m_errorCode = 0;
    std::string m_message;
    std::string m_shortMessage;
};

} // namespace Tervalon
