#pragma once

#include "AppTervalonDiary/diary/timesheetrow.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/dateset/zbdateset.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBMarkupPage;

// The hours one person spent on each entry, day by day, over a span of days:
// read from the entries' sessions, edited cell by cell, and written back as
// sessions. Time added to a day goes first into the entry's fixed plans of
// that day, then its predicted times, then the person's work time, then the
// rest of the day, never over time already booked as spent on that day;
// time taken away comes off the day's latest sessions first. Works on the
// diary it is given, which must outlive it.
class Timesheet {
public:
    explicit Timesheet(Diary& diary);

    // Reads the sheet for days days from the start of from's day. A negative
    // user means the diary's first resource. In a diary of one person every
    // session is that person's, whatever resource it names.
    int generate(const ZBDate& from, int days, int user = -1);

    int get_user() const { return m_user; }
    int get_ndays() const { return m_days; }
    ZBDateSlot get_day_slot(int day) const;
    const ZBDuration& get_avail(int day) const { return m_avail[size_t(day)]; }

    int get_nrows() const { return m_row.size(); }
    TimesheetRow* get_row(int index) const { return m_row[index]; }
    // The row of an entry, -1 when the entry has none.
    int find_row(int entryId) const;
    // A row for an entry not yet on the sheet, so that time can be entered
    // for it; gives the row's index.
    int add_row(int entryId);

    ZBDuration get_day_total(int day) const;
    ZBDuration get_total() const;

    // A cell as the user types it ("1:30", "2h", "45m", empty for none).
    // Text that is not a length leaves the cell as it was.
    int set_cell(int row, int day, const std::string& text);
    int set_cell(int row, int day, const ZBDuration& time);
    bool is_updated() const;

    // Writes every changed cell into the entries' sessions, all or nothing,
    // then reads the sheet again. count gives how many cells were written.
    int write_back(int* count = nullptr);

    // The sheet as a table: a row per entry, a column per day, totals and the
    // work time on offer each day.
    void to_markup(ZBMarkupPage& page) const;
    // The same figures for a spreadsheet, hours in decimals.
    void to_csv(std::ostream& out) const;

    // "7:30"; blank for none when blankZero.
    static std::string hours_text(const ZBDuration& time, bool blankZero = false);
    static int read_cell(const std::string& text, ZBDuration& out);

private:
    // The sessions of the sheet's person only (-1: any).
    int session_type() const { return m_anyResource ? -1 : m_user; }
    // Day index of a moment, -1 outside the sheet.
    int day_of(const ZBDate& date) const;
    void add_sessions(TimesheetRow& row, const ZBDateSet& sessions);

    struct SessionEdit {
        int entryId;
        ZBDateSlot slot;
        int type;
        bool add;
    };
    int plan_cell(const TimesheetRow& row, int day, std::vector<ZBDateSet>& sessions,
                  std::vector<SessionEdit>& edits) const;

    Diary& m_diary;
    int m_user;
    bool m_anyResource;
    int m_days;
    // m_days + 1 boundaries: day d runs from m_day[d] to m_day[d + 1].
    std::vector<ZBDate> m_day;
    std::vector<ZBDuration> m_avail;
    // The person's work time over the whole sheet.
    ZBDateSet m_availSet;
    ZBPtrArray<TimesheetRow> m_row;
};

} // namespace Tervalon
