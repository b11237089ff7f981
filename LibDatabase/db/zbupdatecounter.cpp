#include "LibDatabase/db/zbupdatecounter.h"

#include <atomic>

namespace Tervalon {

namespace {
std::atomic<long> g_counter{0};
std::atomic<long> g_lastTime{0};
}

long ZBUpdateCounter::get_counter(bool increment)
{
    if (!increment)
        return g_counter.load();
    g_lastTime = long(std::time(nullptr));
    return ++g_counter;
}

long ZBUpdateCounter::time_since_update()
{
    return long(std::time(nullptr)) - g_lastTime.load();
}

} // namespace Tervalon
