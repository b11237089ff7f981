#include "LibDate/dateset/zbdatesetentry.h"

#include <istream>
#include <ostream>
#include <string>

namespace Tervalon {

bool zbdatesetentry_less(const ZBDateSetEntry& a, const ZBDateSetEntry& b)
{
    if (a.m_start < b.m_start)
        return true;
    if (b.m_start < a.m_start)
        return false;
    if (a.m_end < b.m_end)
        return true;
    if (b.m_end < a.m_end)
        return false;
    return a.m_type < b.m_type;
}

int compare_zbdatesetentry(const ZBDateSetEntry& a, const ZBDateSetEntry& b)
{
    return zbdatesetentry_less(b, a) ? 1 : 0;
}

void ZBDateSetEntry::dump(std::ostream& out, int indent) const
{
    out << std::string(size_t(indent) * 4, ' ') << "m_type: " << m_type << "\n";
    ZBDateSlot::dump(out, indent);
}

std::ostream& operator<<(std::ostream& out, const ZBDateSetEntry& entry)
{
    return out << entry.slot() << ';' << entry.m_type;
}

std::istream& operator>>(std::istream& in, ZBDateSetEntry& entry)
{
    ZBDateSlot slot;
    if (!(in >> slot))
        return in;
    entry.m_start = slot.m_start;
    entry.m_end = slot.m_end;
    entry.m_type = 0;
    if (in.peek() == ';') {
        in.get();
        in >> entry.m_type;
    }
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
