#pragma once

#include "AppTervalonDiary/diary/entryset.h"
#include "AppTervalonDiary/diary/timetypeinfo.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryDisplay;
class DiaryEntry;
class ZBCalendar;
class ZBMarkupPage;

// The day summary: how far behind the plan the user is, what to do today,
// what comes next; the planning page by time type and day; the week's
// appointments. Reads the calculated state of the entries and changes none.
class ZBDSummaryPage {
public:
    // Which part of the summary an open task belongs in.
    enum E_Placement {
        E_PlaceCompleteToday = 0, // overdue or urgent, or must start by the end of today
        E_PlaceToday = 1,         // fixed plans or predicted sessions today
        E_PlaceUnderControl = 2,  // would ideally start today but has no time today
        E_PlaceTomorrow = 3,      // first predicted session or must start tomorrow
        E_PlaceFuture = 4
    };
    static constexpr int C_NPlacements = 5;
    // Lookahead of the near slot: four hours, not past the end of today.
    static constexpr int C_SoonSeconds = 14400;

    // How many leaf tasks and appointments sit in each band of calculated
    // priority; each entry counts once, in the highest band it reaches.
    struct Counts {
        int m_overdue = 0;
        int m_urgent = 0;
        int m_behind = 0;
        int m_delayed = 0;
        void count(double priority);
        bool any() const { return m_overdue + m_urgent + m_behind + m_delayed > 0; }
        bool operator==(const Counts& other) const;
    };

    // The headline of the summary, its second sentence and the meter (0 to 100).
    struct Headline {
        double m_meter = 0.0;
        std::string m_headline;
        std::string m_second;
    };

    ZBDSummaryPage();

    // How well today's work fits: 1.0 with nothing to do, 0.5 when it just
    // fits the work hours left, 0.0 when it no longer fits the clock.
    static double score(const ZBDuration& need, const ZBDuration& have, const ZBDuration& left);
    static Headline headline(const Counts& counts, double score, const ZBDuration& need, const ZBDuration& have);
    // Where an open leaf task goes; today runs from the start of the day to
    // the start of tomorrow, tomorrow to the day after.
    static E_Placement place(const DiaryEntry& entry, const ZBDateSlot& today, const ZBDateSlot& tomorrow);

    // Fills page with the day summary for resource (negative: every one).
    int get_due_today(Diary& diary, const DiaryDisplay& display, int resource, ZBMarkupPage& page);
    // Fills page with days of planning from the day of from, per time type.
    int get_planning(Diary& diary, const DiaryDisplay& display, int resource, const ZBDate& from, int days,
                     ZBMarkupPage& page);
    // The appointments of slot, into calendar and set, by start.
    int get_week_events(Diary& diary, ZBCalendar& calendar, EntrySet& set, const ZBDateSlot& slot);

    // What the last get_due_today found.
    const Counts& get_counts() const { return m_counts; }
    const Headline& get_headline() const { return m_headline; }
    double get_score() const { return m_score; }
    const ZBDuration& get_need() const { return m_need; }
    const ZBDuration& get_have() const { return m_have; }
    const ZBDuration& get_left() const { return m_left; }
    const EntrySet& get_set(int placement) const { return m_set.at(size_t(placement)); }
    const std::vector<EntrySet>& get_week_sets() const { return m_week; }
    const std::vector<TimeTypeInfo>& get_timetypes() const { return m_timeTypes; }

    // The start of the day date falls on, moved on by days.
    static ZBDate day_start(const ZBDate& date, int days);

private:
    void sort_entries(std::vector<DiaryEntry*>& entries, int order) const;
    void write_set(const EntrySet& set, const DiaryDisplay& display, int resource, ZBMarkupPage& page,
                   const std::string& colour) const;

    Counts m_counts;
    Headline m_headline;
    double m_score;
    ZBDuration m_need;
    ZBDuration m_have;
    ZBDuration m_left;
    std::vector<EntrySet> m_set;
    std::vector<EntrySet> m_week;
    std::vector<TimeTypeInfo> m_timeTypes;
};

} // namespace Tervalon
