#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibDiary/diary/zbnotifyitem.h"
#include "LibObject/container/zbcalcpair.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;

// Who does an entry and under which kind of time, as entered (orig) and as
// resolved through the parents (calc), and whether it appears in reports.
class EntryProperties : public EntryFacet {
public:
    EntryProperties();
    EntryProperties(const EntryProperties& other) = default;
    EntryProperties& operator=(const EntryProperties& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Resource and time type ids an entry takes when nothing was chosen: its parent's.
    static constexpr int C_ParentId = -2;
    static const char* const C_JournalSource; // "Jnl"

    int get_resource_orig() const { return m_resource.orig; }
    int get_resource_calc() const { return m_resource.calc; }
    // Takes effect at once, through the parent where the choice is "<Parent>";
    // with replan the entry's predictions are dropped.
    void set_resource_orig(int id, bool replan = true);
    void set_resource_calc(int id) { m_resource.set_calc(id); }
    // value is the parent's resource, or the entry's own choice at the top.
    void upgrade_resource(int value);
    int get_timetype_orig() const { return m_timeType.orig; }
    int get_timetype_calc() const { return m_timeType.calc; }
    void set_timetype_orig(int id) { m_timeType.set_orig(id); }
    void set_timetype_calc(int id) { m_timeType.set_calc(id); }
    // Appointments block time of their own; other entries cannot block and
    // so take their parent's type instead.
    void upgrade_time_type(int value);
    // Repairs orig for an entry whose type letter changed to type.
    void resolve_timetype(char type);
    bool get_report() const { return m_report; }
    void set_report(bool report) { m_report = report; }

    // The entry's alert level (0 to 4) and the notifications of this round;
    // with offline, reminders for later are added with their dates.
    void update_alerts(Diary* diary, bool offline);
    // The notifications with their texts, made when asked: an entry keeps
    // only what each one is, so that a diary with many late tasks does not
    // hold a sentence for each.
    std::vector<ZBNotifyItem> get_notifications() const;

private:
    ZBCalcPair<int> m_resource;
    ZBCalcPair<int> m_timeType;
    bool m_report;
    // What a notification says, as its text is made from the entry.
    enum E_Notice : unsigned char {
        E_Overdue,
        E_Urgent,
        E_Delayed,
        E_ReminderAt, // "Reminder: TITLE at START"
        E_ShouldStart,
        E_Clash,
        E_OverSpend,
        E_MayOverSpend,
        E_Reminder // a reminder for later, with its date
    };
    struct Notice {
        ZBDate date;
        double priority;
        int scheme;
        E_Notice kind;
    };
    void add_notice(int scheme, double priority, E_Notice kind, const ZBDate& date);
    std::vector<Notice> m_notify;
};

} // namespace Tervalon
