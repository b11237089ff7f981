#include "LibObject/object/zbid.h"

#include <cstdlib>
#include <istream>
#include <ostream>
#include <string>

namespace Tervalon {

bool ZBId::compare(const ZBId& other) const
{
    if (m_id != other.m_id)
        return false;
    if (m_seq >= 0 && other.m_seq >= 0 && m_seq != other.m_seq)
        return false;
    if (m_group >= 0 && other.m_group >= 0 && m_group != other.m_group)
        return false;
    return true;
}

bool ZBId::operator<(const ZBId& other) const
{
    if (m_id != other.m_id)
        return m_id < other.m_id;
    if (m_seq != other.m_seq)
        return m_seq < other.m_seq;
    return m_group < other.m_group;
}

void ZBId::dump(std::ostream& out, int indent) const
{
    out << std::string(size_t(indent) * 4, ' ') << "ZBId " << *this << "\n";
}

std::ostream& operator<<(std::ostream& out, const ZBId& id)
{
    return out << id.m_id << '/' << id.m_seq << '/' << id.m_group << '/';
}

std::istream& operator>>(std::istream& in, ZBId& id)
{
    // Three numbers each closed by '/'; an empty part keeps its default.
    int* parts[3] = {&id.m_id, &id.m_seq, &id.m_group};
    ZBId defaults;
    int* defaultParts[3] = {&defaults.m_id, &defaults.m_seq, &defaults.m_group};
    for (int i = 0; i < 3; ++i) {
        std::string text;
        char c;
        while (in.get(c) && c != '/')
            text += c;
        *parts[i] = text.empty() ? *defaultParts[i] : int(std::strtol(text.c_str(), nullptr, 10));
    }
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
