#include "LibDatabase/db/zbdbobjectlink.h"

#include <istream>
#include <iterator>
#include <ostream>

namespace Tervalon {

std::ostream& operator<<(std::ostream& out, const ZBDBObjectLink& link)
{
    return out << link.m_id << link.m_type;
}

std::istream& operator>>(std::istream& in, ZBDBObjectLink& link)
{
    in >> link.m_id;
    link.m_type.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
