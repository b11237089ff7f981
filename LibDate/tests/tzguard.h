#pragma once

#include "LibDate/date/zbdateutils.h"

#include <cstdlib>
#include <ctime>
#include <string>

namespace Tervalon {
namespace Test {

// Sets TZ for one test and puts the old value back, so tests in other zones
// do not leak into the rest of the run.
class TzGuard {
public:
    explicit TzGuard(const char* zone)
    {
        const char* old = std::getenv("TZ");
        m_had = old != nullptr;
        if (old)
            m_old = old;
        ZBDateUtils::set_machine_zone(zone);
    }
    ~TzGuard()
    {
        ZBDateUtils::set_machine_zone(m_had ? m_old : std::string());
    }

private:
    bool m_had = false;
    std::string m_old;
};

} // namespace Test
} // namespace Tervalon
