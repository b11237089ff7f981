#pragma once

#include "LibComms/thread/zbmutex.h"
#include "LibDatabase/db/zbupdatechecker.h"
#include "LibDate/date/zbdate.h"

#include <atomic>
#include <memory>
#include <string>

namespace Tervalon {

class Diary;

// Decides when a diary's plan must be worked out again, and whether on the
// owner's thread or on a private copy in the diary's background thread. The
// diary owns it; the views read its pass count as a version number.
//
// The owner's thread and the background thread meet only in three slots, each
// under its own mutex and never two held at once: the pending copy (the
// diary as text, waiting for the thread), the finished copy (a recalculated
// diary, waiting to be loaded) and the busy flag. Everything else here is the
// owner's thread's alone; the background copy has a manager of its own.
class RecalculateMgr {
public:
    // The values get_state reports.
    enum E_State { E_Idle = 0, E_Due = 1, E_Busy = 2 };

    RecalculateMgr();
    ~RecalculateMgr();
    RecalculateMgr(const RecalculateMgr&) = delete;
    RecalculateMgr& operator=(const RecalculateMgr&) = delete;

    // Ties the checkers to the diary and forgets every copy in flight, so
    // that nothing of a file unloaded before reaches the one loaded now.
    void initialise(Diary& diary);
    // Clears the checkers and flags.
    void set_defaults();
    // While set, no full pass is scheduled; turning it on also asks for one.
    void set_diary_initialising(bool on);
    bool is_initialising() const { return m_initialising; }

    // Rebuilds the free time of the lookahead when it is due.
    int recalculate_available(Diary& diary, const ZBDate& start, const ZBDate& end);
    // True once after each full pass (or force) that the views must follow.
    bool needs_calendar();
    // Marks the chosen checkers; foreground puts the next full pass on the
    // owner's thread, immediate skips the timers at the next chance.
    void force(bool avail, bool idle, bool calendar, bool foreground, bool immediate);
    int get_recalc_count() const { return m_recalcCount; }
    // E_Busy while the thread works, else E_Due or E_Idle by the idle checker.
    int get_state() const;

    // Starts a full pass when one is due: on the background thread when it
    // runs (the diary goes to it as text), otherwise here and now.
    int schedule_recalculate(Diary& diary);
    // On the owner's thread: brings the results of a finished background pass
    // into the live entries that have not changed since the copy was taken.
    int load_background(Diary& diary);
    // The background thread's body for one wake-up: works through the pending
    // copies until none is left or the diary's thread is stopping.
    void background_recalculate(Diary& diary);

    // The result of the last background pass: ZBErrC_ok, or why it gave up
    // (its error went no further; the live diary stayed as it was).
    int get_background_result() const { return m_backgroundResult.load(); }
    // For tests and the window: whether a copy waits in either slot.
    bool has_pending() const;
    bool has_finished() const;

private:
    struct Pending;
    struct Finished;

    void set_busy(bool busy);
    bool is_busy() const;
    // Puts text in the pending slot, replacing an older copy nobody took.
    void put_pending(std::unique_ptr<Pending> pending);
    std::unique_ptr<Pending> take_pending();
    void put_finished(std::unique_ptr<Finished> finished);
    std::unique_ptr<Finished> take_finished();
    // The full pass on the owner's thread (or on a background copy's own).
    int run_full_pass(Diary& diary);
    int run_trigger(Diary& diary);
    // Works one pending copy through; null when the pass failed or stopped.
    std::unique_ptr<Finished> recalculate_copy(Diary& diary, Pending& pending);

    ZBUpdateChecker m_needsAvail;
    ZBUpdateChecker m_needsTimeslots;
    ZBUpdateChecker m_needsIdle;
    ZBUpdateChecker m_needsCalendar;

    // Slot A.
    mutable ZBMutex m_pendingMutex;
    std::unique_ptr<Pending> m_pending;
    // Slot B.
    mutable ZBMutex m_finishedMutex;
    std::unique_ptr<Finished> m_finished;
    // Slot C.
    mutable ZBMutex m_busyMutex;
    bool m_isRecalculate;
    std::atomic<int> m_backgroundResult;

    bool m_foreground;
    bool m_immediate;
    bool m_initialising;
    // A full pass is running on this manager's diary: a recalculate inside it
    // must not start another.
    bool m_inFullPass;
    int m_recalcCount;
    // The update count when the last copy was taken.
    long m_stamp;
    // Goes up with every initialise; a copy made under an older value belongs
    // to a file that has gone and is dropped. Read by the thread only through
    // the copies, which carry it.
    long m_generation;
};

} // namespace Tervalon
