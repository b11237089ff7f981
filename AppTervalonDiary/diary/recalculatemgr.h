#pragma once

namespace Tervalon {

// Decides when a diary's plan must be worked out again. The diary owns it.
// The background pass comes with the planner; for now it counts the requests
// so that views and tests can see that a change asked for one.
class RecalculateMgr {
public:
    void initialise();
    void force_recalculate(bool structure, bool immediate);
    bool is_pending() const { return m_pending; }
    void done() { m_pending = false; ++m_recalcCount; }
    int get_recalc_count() const { return m_recalcCount; }
    bool is_initialising() const { return m_initialising; }
    void set_initialising(bool on) { m_initialising = on; }

private:
    bool m_pending = false;
    bool m_immediate = false;
    bool m_initialising = false;
    int m_recalcCount = 0;
};

} // namespace Tervalon
