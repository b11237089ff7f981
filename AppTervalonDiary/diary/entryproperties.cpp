#include "AppTervalonDiary/diary/entryproperties.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryProperties", &EntryProperties::create_zbobject);
}

EntryProperties::EntryProperties()
{
    EntryProperties::register_zbobject();
    EntryProperties::set_defaults(true);
}

void EntryProperties::register_zbobject()
{
    register_objectname("EntryProperties", &EntryProperties::create_zbobject);
}

int EntryProperties::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryProperties>(out, from, "EntryProperties");
}

void EntryProperties::set_defaults(bool)
{
    m_resource = ZBCalcPair<int>(C_ParentId);
    m_timeType = ZBCalcPair<int>(C_ParentId);
    m_report = false;
    m_notify.clear();
}

void EntryProperties::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryProperties", out, indent);
    dump.add("m_resource", m_resource.orig);
    dump.add("m_timeType", m_timeType.orig);
    dump.add("m_report", m_report);
}

int EntryProperties::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // Only the user's choice is stored: whom "<Parent>" resolves to is worked
    // out again by recalculation, so a new entry writes nothing here.
    int resource = m_resource.orig;
    int timeType = m_timeType.orig;
    owner.serialise_field<int>(in, out, prefix, "re", resource, C_ParentId);
    owner.serialise_field<int>(in, out, prefix, "tt", timeType, C_ParentId);
    if (in) {
        m_resource.set_orig(resource);
        m_timeType.set_orig(timeType);
    }
    (void)version;
    owner.serialise_field<bool>(in, out, prefix, "rz", m_report, false);
    return ZBErrC_ok;
}

const char* const EntryProperties::C_JournalSource = "Jnl";

void EntryProperties::set_resource_orig(int id, bool replan)
{
    m_resource.set_orig(id);
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    const DiaryEntry* parent = entry->get_parent_entry();
    upgrade_resource(parent ? parent->get_props().get_resource_calc() : id);
    if (replan)
        entry->clear_predicted(true);
}

void EntryProperties::upgrade_resource(int value)
{
    m_resource.set_calc(m_resource.orig == Resource::C_ParentResourceId ? value : m_resource.orig);
}

void EntryProperties::upgrade_time_type(int value)
{
    DiaryEntry* entry = get_entry();
    const char type = entry ? entry->get_derived_entrytype() : 'T';
    resolve_timetype(type);
    if (type != 'A' && m_timeType.orig == TimeType::C_ParentTimeTypeId)
        m_timeType.set_calc(value);
    else
        m_timeType.set_calc(m_timeType.orig);
}

void EntryProperties::resolve_timetype(char type)
{
    const int orig = m_timeType.orig;
    int repaired = orig;
    if (type == 'A') {
        if (orig == TimeType::C_UnassignedTimeTypeId || orig == TimeType::C_ParentTimeTypeId
            || orig == TimeType::C_UnknownTimeTypeId)
            repaired = TimeType::C_BlockingTimeTypeId;
    } else if (orig == TimeType::C_BlockingTimeTypeId || orig == TimeType::C_FreeTimeTypeId) {
        repaired = TimeType::C_ParentTimeTypeId;
    }
    if (repaired == orig)
        return;
    m_timeType.set_orig(repaired);
    if (DiaryEntry* entry = get_entry())
        entry->mark_changed(ZBLOC, true);
}

// ---------------------------------------------------------------- alerts

void EntryProperties::add_notice(int scheme, double priority, E_Notice kind, const ZBDate& date)
{
    m_notify.push_back(Notice{date, priority, scheme, kind});
}

std::vector<ZBNotifyItem> EntryProperties::get_notifications() const
{
    std::vector<ZBNotifyItem> items;
    const DiaryEntry* entry = get_entry();
    if (!entry || m_notify.empty())
        return items;
    const std::string& title = entry->get_summary();
    items.reserve(m_notify.size());
    for (const Notice& notice : m_notify) {
        std::string text;
        switch (notice.kind) {
        case E_Overdue: text = "OVERDUE: " + title; break;
        case E_Urgent: text = "Urgent: " + title; break;
        case E_Delayed: text = "Delayed: " + title; break;
        case E_ReminderAt: text = "Reminder: " + title + " at " + entry->get_start().calc.to_string(); break;
        case E_ShouldStart: text = "Should start: " + title; break;
        case E_Clash: {
            const auto& clash = entry->get_plan().get_clash();
            text = "Time Clash with: " + (clash.empty() ? std::string() : clash.front());
            break;
        }
        case E_OverSpend: text = "Over Spent: " + title; break;
        case E_MayOverSpend: text = "May Over Spend: " + title; break;
        case E_Reminder: text = "Reminder: " + title; break;
        }
        items.emplace_back(notice.scheme, notice.priority, text, entry->get_id(), notice.date);
    }
    return items;
}

void EntryProperties::update_alerts(Diary* diary, bool offline)
{
    m_notify.clear();
    DiaryEntry* entry = get_entry();
    if (iszbwarn(ZBASSERT(entry != nullptr)))
        return;
    const ZBDate now = ZBDateUtils::now();
    const EntrySpent& spent = entry->get_spent();
    const EntryPlan& plan = entry->get_plan();
    const bool running = spent.has_running_session();
    const ZBProgress& progress = entry->get_duration().calc;
    const double priority = entry->get_priority().calc;
    const bool appointment = entry->get_derived_entrytype() == 'A';
    const bool leaf = entry->get_nchildren() == 0;

    bool over = false;
    bool mayOver = false;
    if (running) {
        ZBDate from = ZBDate::C_Blank;
        if (entry->get_repeat().is_repeating() && entry->get_start().calc.is_ok())
            from = entry->get_start().calc;
        const ZBDuration used = EntryDue::total_spent(*entry, from);
        over = used > progress.get_duration();
        const ZBDuration session = now - spent.get_current_session().m_start;
        mayOver = !over && (used - session) + progress.get_remaining() > progress.get_duration() + ZBDuration(10);
    }

    int level = 0;
    if (priority >= EntryPriority::C_PriorityDue || (diary && diary->get_checker().has_error(entry->get_id())))
        level = 4;
    else if (priority >= EntryPriority::C_PriorityUrgent || over)
        level = 3;
    else if (plan.could_overrun() || mayOver)
        level = 2;
    else if (!plan.get_problem_dates().empty() && diary && diary->get_settings().get_future_warnings())
        level = 1;

    const ZBDate blank = ZBDate::C_Blank;
    const int reminderMinutes = diary ? diary->get_settings().get_reminder_time() : 15;
    const ZBDuration reminderTime(std::int64_t(reminderMinutes) * 60);
    const ZBDate& start = entry->get_start().calc;
    if (!entry->is_complete()) {
        const ZBDate& due = entry->get_due().orig;
        const ZBDate& mustStart = entry->get_muststart();
        if (due.is_ok() && due <= now)
            add_notice(Diary::C_NotifyOverdue, priority, E_Overdue, blank);
        if (appointment && start.is_ok() && start < now && !running)
            add_notice(Diary::C_NotifyOverdue, priority, E_Overdue, blank);
        if (mustStart.is_ok() && mustStart <= now && !entry->is_planned() && leaf)
            add_notice(Diary::C_NotifyUrgent, priority, E_Urgent, blank);
        if (plan.could_overrun() && leaf && !plan.should_start())
            add_notice(Diary::C_NotifyDelayed, priority, E_Delayed, blank);
        if (appointment && start.is_ok() && now < start && start <= now + reminderTime)
            add_notice(Diary::C_NotifyReminder, priority, E_ReminderAt, blank);
        if (plan.should_start())
            add_notice(Diary::C_NotifyShouldStart, priority, E_ShouldStart, blank);
    }
    if (!plan.get_clash().empty())
        add_notice(Diary::C_NotifyClash, EntryPriority::C_PriorityUrgent, E_Clash, blank);
    if (over)
        add_notice(Diary::C_NotifyOverSpend, 100.0, E_OverSpend, blank);
    if (mayOver)
        add_notice(Diary::C_NotifyMayOverSpend, 50.0, E_MayOverSpend, blank);

    // Reminders for later, for a list that shows them when their time comes.
    if (offline && !entry->is_complete()) {
        if (appointment && start.is_ok()) {
            const ZBDate early = start - reminderTime;
            if (now < early)
                add_notice(Diary::C_NotifyReminder, 400.0, E_Reminder, early);
            else if (now < start)
                add_notice(Diary::C_NotifyReminder, 400.0, E_Reminder, start);
        } else if (!appointment) {
            const ZBDate& mustStart = entry->get_muststart();
            if (mustStart.is_ok() && now < mustStart)
                add_notice(Diary::C_NotifyReminder, 300.0, E_Reminder, mustStart);
            const ZBDate& due = entry->get_due().calc;
            if (due.is_ok() && now < due)
                add_notice(Diary::C_NotifyReminder, 300.0, E_Reminder, due);
        }
    }

    for (const DiaryEntry* child : entry->get_children())
        level = std::max(level, child->get_alert_state());
    entry->set_alert_state(level);
}

} // namespace Tervalon
