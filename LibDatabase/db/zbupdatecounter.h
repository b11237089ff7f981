#pragma once

#include <ctime>

namespace Tervalon {

// Each object's last update on one process-wide count. The count is shared by
// every open database and by a background copy, so "changed since" compares
// across all of them; it only ever goes up.
class ZBUpdateCounter {
public:
    ZBUpdateCounter() = default;
    virtual ~ZBUpdateCounter() = default;

    // With increment, moves the count on, records the time and returns the new value.
    static long get_counter(bool increment);
    static long time_since_update();

    void mark_update() { m_lastUpdate = get_counter(true); }
    bool has_changed_since(long t) const { return m_lastUpdate > t; }
    void restore_update(long value) { m_lastUpdate = value; }
    long get_last_update() const { return m_lastUpdate; }

private:
    long m_lastUpdate = -1;
};

} // namespace Tervalon
