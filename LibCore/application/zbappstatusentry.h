#pragma once

#include "LibCore/time/zbmoment.h"

#include <string>

namespace Tervalon {

// One line of the status stack: its text, how far the work has gone, and the
// moment from which it may be shown (its creation plus the delay asked for).
class ZBAppStatusEntry {
public:
    ZBAppStatusEntry(const std::string& status, double percentage, const ZBMoment& showFrom)
        : m_status(status), m_percentage(percentage), m_showFrom(showFrom) {}
    bool operator==(const ZBAppStatusEntry& other) const
    {
        return m_status == other.m_status && m_percentage == other.m_percentage && m_showFrom == other.m_showFrom;
    }

    std::string m_status;
    double m_percentage;
    ZBMoment m_showFrom;
};

} // namespace Tervalon
