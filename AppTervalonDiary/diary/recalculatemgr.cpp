#include "AppTervalonDiary/diary/recalculatemgr.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibDatabase/db/zbupdatecounter.h"

#include <sstream>

namespace Tervalon {

// The diary as text, with the update count at which it was taken and the
// load it came from.
struct RecalculateMgr::Pending {
    std::string m_text;
    long m_stamp;
    long m_generation;
};

// A recalculated copy and the same two marks of the text it was read from.
struct RecalculateMgr::Finished {
    std::unique_ptr<Diary> m_copy;
    long m_stamp;
    long m_generation;
};

RecalculateMgr::RecalculateMgr()
    : m_needsAvail(nullptr, ZBUpdateChecker::E_Manual, 600),
      m_needsTimeslots(nullptr, ZBUpdateChecker::E_StructureChange, 300),
      m_needsIdle(nullptr, ZBUpdateChecker::E_Manual, 1800), m_needsCalendar(nullptr, ZBUpdateChecker::E_Manual, -1),
      m_isRecalculate(false), m_backgroundResult(0), m_foreground(false), m_immediate(false), m_initialising(false), m_inFullPass(false),
      m_recalcCount(0), m_stamp(-1), m_generation(0)
{
}

RecalculateMgr::~RecalculateMgr() = default;

void RecalculateMgr::set_defaults()
{
    m_needsAvail = ZBUpdateChecker(nullptr, ZBUpdateChecker::E_Manual, 600);
    m_needsTimeslots = ZBUpdateChecker(nullptr, ZBUpdateChecker::E_StructureChange, 300);
    m_needsIdle = ZBUpdateChecker(nullptr, ZBUpdateChecker::E_Manual, 1800);
    m_needsCalendar = ZBUpdateChecker(nullptr, ZBUpdateChecker::E_Manual, -1);
    m_foreground = false;
    m_immediate = false;
    m_initialising = false;
    m_stamp = -1;
}

void RecalculateMgr::initialise(Diary& diary)
{
    for (ZBUpdateChecker* checker : {&m_needsAvail, &m_needsTimeslots, &m_needsIdle, &m_needsCalendar})
        checker->set_database(&diary);
    ++m_generation;
    take_pending();
    take_finished();
    m_stamp = -1;
}

void RecalculateMgr::set_diary_initialising(bool on)
{
    m_initialising = on;
    if (on)
        m_needsTimeslots.mark_action();
}

int RecalculateMgr::recalculate_available(Diary& diary, const ZBDate& start, const ZBDate& end)
{
    if (!m_needsAvail.do_action())
        return ZBErrC_ok;
    if (iszbwarn(diary.allocate_times(start, end)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

bool RecalculateMgr::needs_calendar()
{
    return m_needsCalendar.do_action();
}

void RecalculateMgr::force(bool avail, bool idle, bool calendar, bool foreground, bool immediate)
{
    if (avail)
        m_needsAvail.mark_action();
    if (idle)
        m_needsIdle.mark_action();
    if (calendar)
        m_needsCalendar.mark_action();
    if (foreground)
        m_foreground = true;
    if (immediate)
        m_immediate = true;
}

int RecalculateMgr::get_state() const
{
    if (is_busy())
        return E_Busy;
    return m_needsIdle.action_required() ? E_Due : E_Idle;
}

// ---------------------------------------------------------------- the three slots

void RecalculateMgr::set_busy(bool busy)
{
    ZBMutexLocker guard(m_busyMutex);
    m_isRecalculate = busy;
}

bool RecalculateMgr::is_busy() const
{
    ZBMutexLocker guard(m_busyMutex);
    return m_isRecalculate;
}

void RecalculateMgr::put_pending(std::unique_ptr<Pending> pending)
{
    std::unique_ptr<Pending> old;
    ZBMutexLocker guard(m_pendingMutex);
    // The old copy is freed after the lock is let go, not under it.
    old = std::move(m_pending);
    m_pending = std::move(pending);
}

std::unique_ptr<RecalculateMgr::Pending> RecalculateMgr::take_pending()
{
    ZBMutexLocker guard(m_pendingMutex);
    return std::move(m_pending);
}

bool RecalculateMgr::has_pending() const
{
    ZBMutexLocker guard(m_pendingMutex);
    return m_pending != nullptr;
}

void RecalculateMgr::put_finished(std::unique_ptr<Finished> finished)
{
    std::unique_ptr<Finished> old;
    ZBMutexLocker guard(m_finishedMutex);
    old = std::move(m_finished);
    m_finished = std::move(finished);
}

std::unique_ptr<RecalculateMgr::Finished> RecalculateMgr::take_finished()
{
    ZBMutexLocker guard(m_finishedMutex);
    return std::move(m_finished);
}

bool RecalculateMgr::has_finished() const
{
    ZBMutexLocker guard(m_finishedMutex);
    return m_finished != nullptr;
}

// ---------------------------------------------------------------- scheduling

int RecalculateMgr::run_trigger(Diary& diary)
{
    // Scripts belong to the owner's thread: a background copy runs none.
    if (diary.get_recalculate_parent())
        return ZBErrC_ok;
    int result = diary.run_trigger_script(ZBDBObject::C_RecalculateTrigger);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int RecalculateMgr::schedule_recalculate(Diary& diary)
{
    if (m_inFullPass)
        return ZBErrC_ok;
    m_needsTimeslots.set_timeout(diary.get_settings().get_recalc_activity());
    m_needsIdle.set_timeout(diary.get_settings().get_recalc_idle());
    // Both the activity and the idle condition must hold, unless told to hurry.
    if (!m_immediate && !(m_needsTimeslots.do_action() && m_needsIdle.action_required()))
        return ZBErrC_ok;
    if (diary.get_settings().get_lookahead().empty() || m_initialising)
        return ZBErrC_ok;
    m_needsIdle.do_action();
    const ZBDateSlot lookahead = diary.get_settings().get_lookahead_date(false);

    // A read-only file cannot be written out for the thread; it is planned here.
    if (diary.is_running() && !m_foreground && !diary.is_read_only()) {
        if (m_immediate && iszbwarn(run_trigger(diary)))
            return zbpass(ZBLOC);
        if (is_busy() && !m_immediate) {
            // The thread will be done with a copy that is already old; the
            // marks keep this pass due, so it starts once the thread is free.
            m_needsTimeslots.mark_action();
            m_needsIdle.mark_action();
            return ZBErrC_ok;
        }
        std::unique_ptr<Pending> pending(new Pending);
        pending->m_stamp = ZBUpdateCounter::get_counter(false);
        pending->m_generation = m_generation;
        std::ostringstream out;
        if (iszbwarn(diary.write(out, 0, true, std::string(), -1)))
            return zbpass(ZBLOC);
        pending->m_text = out.str();
        m_stamp = pending->m_stamp;
        put_pending(std::move(pending));
        diary.signal_recalc_thread();
        if (iszbwarn(diary.allocate_times(lookahead.m_start, lookahead.m_end)))
            return zbpass(ZBLOC);
        m_immediate = false;
        return ZBErrC_ok;
    }

    m_stamp = ZBUpdateCounter::get_counter(false);
    if (iszbwarn(run_trigger(diary)) || iszbwarn(run_full_pass(diary)))
        return zbpass(ZBLOC);
    ++m_recalcCount;
    m_foreground = false;
    // Whatever the thread finished before this pass is older than it.
    take_finished();
    // A background copy's free time dies with it.
    if (!diary.get_recalculate_parent() && iszbwarn(diary.allocate_times(lookahead.m_start, lookahead.m_end)))
        return zbpass(ZBLOC);
    m_immediate = false;
    return ZBErrC_ok;
}

int RecalculateMgr::run_full_pass(Diary& diary)
{
    m_inFullPass = true;
    int result = diary.full_recalculate();
    m_inFullPass = false;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- the background thread

void RecalculateMgr::background_recalculate(Diary& diary)
{
    set_busy(true);
    while (!diary.is_stopping()) {
        std::unique_ptr<Pending> pending = take_pending();
        if (!pending)
            break;
        std::unique_ptr<Finished> finished = recalculate_copy(diary, *pending);
        pending.reset();
        if (!finished)
            continue;
        // A newer copy makes these results stale before anyone sees them;
        // the loop takes the newer one at once.
        if (has_pending())
            continue;
        put_finished(std::move(finished));
        diary.signal_recalc_complete();
    }
    set_busy(false);
}

std::unique_ptr<RecalculateMgr::Finished> RecalculateMgr::recalculate_copy(Diary& diary, Pending& pending)
{
    std::unique_ptr<Finished> finished(new Finished);
    finished->m_stamp = pending.m_stamp;
    finished->m_generation = pending.m_generation;
    finished->m_copy.reset(new Diary());
    Diary& copy = *finished->m_copy;
    copy.set_recalculate_parent(&diary);
    int result = ZBErrC_ok;
    {
        std::istringstream in(std::move(pending.m_text));
        result = copy.read(in, false, false);
    }
    if (!iszbwarn(result) && !diary.is_stopping())
        result = copy.initialise(false);
    if (!iszbwarn(result) && !diary.is_stopping()) {
        copy.force_recalculate(true, true, true, true);
        result = copy.recalculate(ZBDatabase::E_RecalcNone);
    }
    m_backgroundResult = diary.is_stopping() && !iszbwarn(result) ? ZBErrC_okShutdown : result;
    if (iszbwarn(result) || diary.is_stopping())
        return nullptr;
    // The copy's own tie to the live diary ends here: it is only read from
    // now on, and freed, on the live diary's thread.
    copy.set_recalculate_parent(nullptr);
    copy.moveToThread(diary.thread());
    return finished;
}

int RecalculateMgr::load_background(Diary& diary)
{
    std::unique_ptr<Finished> finished = take_finished();
    if (!finished)
        return ZBErrC_ok;
    if (finished->m_generation != m_generation)
        return ZBErrC_ok;
    // Entries added, moved or deleted since the copy was taken change what
    // everything else gets; the results wait for the next pass, which is
    // due at once.
    if (diary.get_last_structure_change() > finished->m_stamp) {
        m_needsTimeslots.mark_action();
        m_needsIdle.mark_action();
        return ZBErrC_ok;
    }
    const Diary& copy = *finished->m_copy;
    for (int i = 0; i < diary.get_nentries(); ++i)
        diary.get_entry_index(i)->load_predicted(copy, finished->m_stamp);
    diary.get_checker().upload(copy.get_checker());
    finished.reset();
    ++m_recalcCount;
    m_needsCalendar.mark_action();
    const ZBDateSlot lookahead = diary.get_settings().get_lookahead_date(false);
    if (!diary.get_settings().get_lookahead().empty()
        && iszbwarn(diary.allocate_times(lookahead.m_start, lookahead.m_end)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

} // namespace Tervalon
