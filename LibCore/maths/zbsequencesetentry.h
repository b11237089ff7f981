#pragma once

#include "LibCore/time/zbmoment.h"

namespace Tervalon {

// One dated value of a ZBSequenceSet.
template <class T>
class ZBSequenceSetEntry {
public:
    ZBSequenceSetEntry() = default;
    ZBSequenceSetEntry(const T& value, const ZBMoment& date) : m_value(value), m_date(date) {}

    // Earlier dates first; the order of equal dates is the sort's.
    static int compare_date(const ZBSequenceSetEntry& a, const ZBSequenceSetEntry& b) { return a.m_date > b.m_date; }

    T m_value{};
    ZBMoment m_date;
};

} // namespace Tervalon
