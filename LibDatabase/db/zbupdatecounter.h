#pragma once

namespace Tervalon {

// Each object's last update on one process-wide count. The count and the time
// of the last update are shared by every open database in the process and by a
// background copy of one, so "changed since" compares across all of them and a
// value taken from one database is meaningful for another. The count only ever
// goes up; it is atomic because the recalculation thread marks its copy too.
class ZBUpdateCounter {
public:
    ZBUpdateCounter() = default;

    // With increment, moves the count on, records the time and returns the new
    // value; without, returns it as it is and changes nothing.
    static long get_counter(bool increment);
    // Whole seconds since the last increment anywhere in the process.
    static long time_since_update();

    void mark_update() { m_lastUpdate = get_counter(true); }
    bool has_changed_since(long t) const { return m_lastUpdate > t; }
    // Puts back a remembered value, as undo and background copies need, without
    // moving the shared count.
    void restore_update(long value) { m_lastUpdate = value; }
    long get_last_update() const { return m_lastUpdate; }

protected:
    // A base part of a record, never deleted through this class: a virtual
    // destructor would cost every record, and every part of one, a pointer.
    ~ZBUpdateCounter() = default;

private:
    long m_lastUpdate = -1;
};

} // namespace Tervalon
