#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

class ZBDBObject;

// The owner's user name, shared by object classes that have an owner. It is a
// companion, not a base of the object: the class streams it into its own text
// with serialise_data, under the tag "UN".
class ZBDBUser {
public:
    static const char* const C_UserTag;

    ZBDBUser() = default;
    virtual ~ZBDBUser() = default;
    bool operator==(const ZBDBUser& other) const { return m_userName == other.m_userName; }

    int serialise_data(ZBDBObject& object, std::istream* in, std::ostream* out, const std::string& prefix, int version);
    const std::string& get_username() const { return m_userName; }
    void set_username(const std::string& name) { m_userName = name; }

private:
    std::string m_userName;
};

} // namespace Tervalon
