#include "LibDatabase/db/zbupdatecounter.h"
#include "LibDate/date/zbdateutils.h"

#include <atomic>
#include <cstdint>

namespace Tervalon {

namespace {
std::atomic<long> g_counter{0};
// Microseconds since 1970 of the last increment; through ZBDateUtils so that
// tests can fix the clock.
std::atomic<std::int64_t> g_lastTime{0};
}

long ZBUpdateCounter::get_counter(bool increment)
{
    if (!increment)
        return g_counter.load();
    g_lastTime = ZBDateUtils::now().to_micros();
    return ++g_counter;
}

long ZBUpdateCounter::time_since_update()
{
    return long((ZBDateUtils::now().to_micros() - g_lastTime.load()) / 1000000);
}

} // namespace Tervalon
