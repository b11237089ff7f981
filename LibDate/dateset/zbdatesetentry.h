#pragma once

#include "LibDate/date/zbdateslot.h"

#include <iosfwd>

namespace Tervalon {

// One span of a ZBDateSet with the integer type of time it holds (a time
// type id, or -1 in a call to mean any type). A plain value: the set owns it.
class ZBDateSetEntry : public ZBDateSlot {
public:
    ZBDateSetEntry() : m_type(0) {}
    ZBDateSetEntry(const ZBDateSlot& slot, int type) : ZBDateSlot(slot), m_type(type) {}
    ZBDateSetEntry(const ZBDate& start, const ZBDate& end, int type) : ZBDateSlot(start, end), m_type(type) {}

    const ZBDateSlot& slot() const { return *this; }
    bool is_empty() const { return m_start == m_end; }
    // True when a call's type (-1 for any) selects this entry.
    bool matches(int type) const { return type == -1 || type == m_type; }

    bool operator==(const ZBDateSetEntry& other) const
    {
        return ZBDateSlot::operator==(other) && m_type == other.m_type;
    }
    bool operator!=(const ZBDateSetEntry& other) const { return !(*this == other); }

    void dump(std::ostream& out, int indent) const;

    int m_type;

private:
    friend class ZBDateSet;
    // The latest end among this entry and all that sort before it in its set:
    // the set's index for spans of different types that overlap. Invalid until
    // the set places the entry; never compared or stored.
    ZBDate m_reach{ZBDate::E_Invalid};
};

// Start, then end, then type, ascending; non-zero when a belongs behind b, the
// form ZBPtrArray::sort takes.
int compare_zbdatesetentry(const ZBDateSetEntry& a, const ZBDateSetEntry& b);
// Strict "a sorts before b" in the same order.
bool zbdatesetentry_less(const ZBDateSetEntry& a, const ZBDateSetEntry& b);

// Stored text: the slot's text, ";" and the type.
std::ostream& operator<<(std::ostream& out, const ZBDateSetEntry& entry);
std::istream& operator>>(std::istream& in, ZBDateSetEntry& entry);

} // namespace Tervalon
