#pragma once

#include "LibObject/object/zbid.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// A link from one object to another: the other's key triple and a type.
// Stored as the triple followed by the type.
class ZBDBObjectLink {
public:
    ZBDBObjectLink() = default;
    ZBDBObjectLink(const ZBId& id, const std::string& type) : m_id(id), m_type(type) {}
    bool operator==(const ZBDBObjectLink& other) const { return m_id == other.m_id && m_type == other.m_type; }
    bool operator!=(const ZBDBObjectLink& other) const { return !(*this == other); }

    ZBId m_id;
    std::string m_type;
};

std::ostream& operator<<(std::ostream& out, const ZBDBObjectLink& link);
std::istream& operator>>(std::istream& in, ZBDBObjectLink& link);

} // namespace Tervalon
