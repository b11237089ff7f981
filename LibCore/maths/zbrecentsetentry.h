#pragma once

#include "LibCore/time/zbmoment.h"

#include <vector>

namespace Tervalon {

// One value of a ZBRecentSet with the dates on which it was seen, and the score
// that calculate() gives it.
template <class T>
class ZBRecentSetEntry {
public:
    ZBRecentSetEntry() = default;
    explicit ZBRecentSetEntry(const T& value) : m_value(value) {}

    T m_value{};
    std::vector<ZBMoment> m_date;
    double m_score = 0.0;
    // Position of first sight; breaks ties of score.
    int m_order = 0;
};

} // namespace Tervalon
