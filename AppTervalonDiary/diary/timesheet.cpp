#include "AppTervalonDiary/diary/timesheet.h"

#include "AppTervalonDiary/diary/daytype.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/entryplan.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/workdaylist.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/dateset/zbdatesetgroup.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuptable.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <ostream>

namespace Tervalon {

namespace {

const ZBDuration C_Day(ZBDate::C_DaySecs);

std::string csv_field(const std::string& text)
{
    if (text.find_first_of(",\"\n\r") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

// The part of a set inside a slot.
ZBDateSet clip(const ZBDateSet& set, const ZBDateSlot& slot, int type)
{
    ZBDateSet part;
    for (int i = 0; i < set.size(); ++i) {
        const ZBDateSetEntry& entry = *set[i];
        if (!entry.matches(type) || entry.m_end <= slot.m_start || entry.m_start >= slot.m_end)
            continue;
        part.add(ZBDateSlot(std::max(entry.m_start, slot.m_start), std::min(entry.m_end, slot.m_end)), entry.m_type);
    }
    return part;
}

} // namespace

Timesheet::Timesheet(Diary& diary) : m_diary(diary), m_user(-1), m_anyResource(true), m_days(0) {}

int Timesheet::generate(const ZBDate& from, int days, int user)
{
    if (days < 1 || days > 366)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A timesheet covers from 1 to 366 days, not %d.", days);
    m_row.clear();
    m_user = user >= 0 ? user : m_diary.get_default_resource_id();
    m_anyResource = !m_diary.is_multi_user();
    m_days = days;

    // Day boundaries in the locale's zone, so that a summer time change
    // gives a day of 23 or 25 hours rather than shifting every later day.
    m_day.clear();
    ZBDateDetails day(from, zblocale().get_timezone());
    for (int d = 0; d <= days; ++d) {
        m_day.push_back(DayType::clock_time(day, 0));
        day.m_dayMonth += 1;
        day.recalculate();
    }

    m_availSet.clear();
    m_avail.assign(size_t(days), ZBDuration());
    if (const Resource* resource = m_diary.get_resource_by_id(m_user)) {
        ZBDateSetGroup group;
        WorkDayList workDays;
        if (iszbwarn(resource->get_calendar().allocate_times(m_day.front(), m_day.back(), resource->get_id(), group,
                                                              workDays, &m_diary.get_calendar(), &m_diary)))
            return zbpass(ZBLOC);
        group.get_combined(m_availSet);
        for (int d = 0; d < days; ++d)
            m_avail[size_t(d)] = m_availSet.query_range(get_day_slot(d), -1);
    }

    const ZBDateSlot span(m_day.front(), m_day.back());
    std::vector<DiaryEntry*> all;
    m_diary.get_all_entries(all);
    for (const DiaryEntry* entry : all) {
        if (!entry || entry->is_deleted())
            continue;
        const ZBDateSet& sessions = entry->get_spent().get_sessions();
        const bool spent = !sessions.empty() && sessions.start() < span.m_end && sessions.end() > span.m_start &&
                           !sessions.query_range(span, session_type()).is_zero();
        // Fixed plans put an entry on the sheet before any time is spent on it.
        bool planned = false;
        if (!spent && entry->get_nchildren() == 0 && entry->get_props().get_resource_calc() == m_user) {
            const ZBDateSet& plans = entry->get_plan().get_planned();
            planned = !plans.empty() && !plans.query_range(span, -1).is_zero();
        }
        if (!spent && !planned)
            continue;
        auto* row = new TimesheetRow(entry->get_id(), days);
        add_sessions(*row, sessions);
        m_row.push_back(row);
    }
    return ZBErrC_ok;
}

void Timesheet::add_sessions(TimesheetRow& row, const ZBDateSet& sessions)
{
    const int type = session_type();
    for (int i = 0; i < sessions.size(); ++i) {
        const ZBDateSetEntry& session = *sessions[i];
        if (session.m_start >= m_day.back())
            break;
        if (!session.matches(type) || session.m_end <= m_day.front())
            continue;
        // A session over midnight counts on each day for its own part.
        for (int d = std::max(0, day_of(session.m_start)); d < m_days && m_day[size_t(d)] < session.m_end; ++d) {
            const ZBDate start = std::max(session.m_start, m_day[size_t(d)]);
            const ZBDate end = std::min(session.m_end, m_day[size_t(d) + 1]);
            if (start < end)
                row.load_time(d, row.get_time(d) + (end - start));
        }
    }
}

int Timesheet::day_of(const ZBDate& date) const
{
    if (m_day.empty() || date < m_day.front() || date >= m_day.back())
        return -1;
    return int(std::upper_bound(m_day.begin(), m_day.end(), date) - m_day.begin()) - 1;
}

ZBDateSlot Timesheet::get_day_slot(int day) const
{
    if (day < 0 || day >= m_days)
        return ZBDateSlot();
    return ZBDateSlot(m_day[size_t(day)], m_day[size_t(day) + 1]);
}

int Timesheet::find_row(int entryId) const
{
    for (int i = 0; i < m_row.size(); ++i)
        if (m_row[i]->get_entry_id() == entryId)
            return i;
    return -1;
}

int Timesheet::add_row(int entryId)
{
    const int existing = find_row(entryId);
    if (existing >= 0)
        return existing;
    const DiaryEntry* entry = m_diary.get_entry_id(entryId);
    if (!entry || entry->is_deleted())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no entry %d.", entryId);
    m_row.push_back(new TimesheetRow(entryId, m_days));
    return m_row.size() - 1;
}

ZBDuration Timesheet::get_day_total(int day) const
{
    ZBDuration total;
    for (const TimesheetRow* row : m_row)
        total += row->get_time(day);
    return total;
}

ZBDuration Timesheet::get_total() const
{
    ZBDuration total;
    for (const TimesheetRow* row : m_row)
        total += row->get_total();
    return total;
}

int Timesheet::read_cell(const std::string& text, ZBDuration& out)
{
    if (text.find_first_not_of(" \t") == std::string::npos) {
        out = ZBDuration();
        return ZBErrC_ok;
    }
    // A length holds a number; "soon" would otherwise read as no time at all.
    ZBDuration time;
    bool ok = text.find_first_of("0123456789") != std::string::npos;
    // The parser's own report is replaced by one that says what a cell takes.
    if (ok && iszbwarn(time.from_string(text))) {
        get_zberror().clear_last_error();
        ok = false;
    }
    if (!ok || time.is_negative()) {
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "\"%s\" is not a length of time, such as 1:30 or 45m.",
                          text.c_str());
    }
    out = time;
    return ZBErrC_ok;
}

int Timesheet::set_cell(int row, int day, const std::string& text)
{
    ZBDuration time;
    if (iszbwarn(read_cell(text, time)))
        return zbpass(ZBLOC);
    return set_cell(row, day, time);
}

int Timesheet::set_cell(int row, int day, const ZBDuration& time)
{
    if (row < 0 || row >= m_row.size() || day < 0 || day >= m_days)
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Cell (%d, %d) outside a timesheet of %d rows and %d days.", row,
                       day, m_row.size(), m_days);
    if (time.is_negative())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Time spent cannot be less than nothing.");
    const ZBDuration length = m_day[size_t(day) + 1] - m_day[size_t(day)];
    if (time > length)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s does not fit in a day of %s.", hours_text(time).c_str(),
                          hours_text(length).c_str());
    m_row[row]->set_time(day, time);
    return ZBErrC_ok;
}

bool Timesheet::is_updated() const
{
    for (const TimesheetRow* row : m_row)
        if (row->is_updated())
            return true;
    return false;
}

int Timesheet::plan_cell(const TimesheetRow& row, int day, std::vector<ZBDateSet>& sessions,
                         std::vector<SessionEdit>& edits) const
{
    const ZBDateSlot slot = get_day_slot(day);
    const int type = session_type();
    const int rowIndex = find_row(row.get_entry_id());
    ZBDateSet& own = sessions[size_t(rowIndex)];
    const ZBDuration current = own.query_range(slot, type);
    const ZBDuration wanted = row.get_time(day);
    const int newType = m_user >= 0 ? m_user : -1;

    if (wanted < current) {
        // The latest work of the day goes first: what was done last is what
        // is most likely remembered wrongly.
        ZBDuration cut = current - wanted;
        const ZBDateSet part = clip(own, slot, type);
        for (int i = part.size() - 1; i >= 0 && !cut.is_zero(); --i) {
            const ZBDateSetEntry& piece = *part[i];
            const ZBDuration length = piece.get_duration();
            const ZBDateSlot gone = length <= cut ? piece.slot() : ZBDateSlot(piece.m_end - cut, piece.m_end);
            own.subtract(gone, piece.m_type);
            edits.push_back({row.get_entry_id(), gone, piece.m_type, false});
            cut -= gone.get_duration();
        }
        return ZBErrC_ok;
    }

    // What the person already spent that day on anything on the sheet is taken.
    ZBDateSet taken;
    for (const ZBDateSet& other : sessions)
        taken.add(clip(other, slot, type));
    std::vector<ZBDateSet> offers(4);
    const DiaryEntry* entry = m_diary.get_entry_id(row.get_entry_id());
    if (entry) {
        offers[0] = clip(entry->get_plan().get_planned(), slot, -1);
        offers[1] = clip(entry->get_plan().get_predicted(), slot, -1);
    }
    offers[2] = clip(m_availSet, slot, -1);
    offers[3].add(slot, 0);
    ZBDuration need = wanted - current;
    for (ZBDateSet& offer : offers) {
        if (need.is_zero())
            break;
        offer.subtract(taken);
        ZBDateSet got;
        need -= offer.allocate(got, need, slot.m_start, slot.m_end, false);
        for (int i = 0; i < got.size(); ++i) {
            const ZBDateSlot piece = got[i]->slot();
            own.add(piece, newType);
            taken.add(piece, 0);
            edits.push_back({row.get_entry_id(), piece, newType, true});
        }
    }
    if (!need.is_zero())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no room left on %s for %s more.",
                          slot.m_start.to_string("%a %d-%b-%Y").c_str(), hours_text(need).c_str());
    return ZBErrC_ok;
}

int Timesheet::write_back(int* count)
{
    if (count)
        *count = 0;
    // First on copies, so that a cell that cannot be written leaves every
    // entry as it was.
    std::vector<ZBDateSet> sessions;
    sessions.reserve(size_t(m_row.size()));
    for (const TimesheetRow* row : m_row) {
        const DiaryEntry* entry = m_diary.get_entry_id(row->get_entry_id());
        if (!entry || entry->is_deleted())
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Entry %d is no longer in the diary.", row->get_entry_id());
        sessions.push_back(entry->get_spent().get_sessions());
    }
    std::vector<SessionEdit> edits;
    int cells = 0;
    for (const TimesheetRow* row : m_row)
        for (int d = 0; d < m_days; ++d) {
            if (!row->is_updated(d))
                continue;
            if (iszbwarn(plan_cell(*row, d, sessions, edits)))
                return zbpass(ZBLOC);
            ++cells;
        }
    std::map<int, DiaryEntry*> changed;
    for (const SessionEdit& edit : edits) {
        DiaryEntry* entry = m_diary.get_entry_id(edit.entryId);
        EntrySpent& spent = entry->edit_spent();
        changed[edit.entryId] = entry;
        // The pieces were checked on the copies, so a refusal here is a fault.
        const int value = edit.add ? spent.add_session(edit.slot, edit.type)
                                   : spent.edit_sessions().subtract(edit.slot, edit.type);
        if (iszbwarn(value)) {
            for (auto& item : changed)
                item.second->mark_changed(ZBLOC, true);
            return zbpass(ZBLOC);
        }
    }
    for (auto& item : changed) {
        item.second->edit_spent().recalculate_spent(true);
        item.second->mark_changed(ZBLOC, true);
    }
    if (count)
        *count = cells;
    const ZBDate from = m_day.front();
    return generate(from, m_days, m_user);
}

std::string Timesheet::hours_text(const ZBDuration& time, bool blankZero)
{
    if (blankZero && time.is_zero())
        return std::string();
    const std::int64_t minutes = (time.get_as_seconds() + 30) / 60;
    char text[32];
    std::snprintf(text, sizeof(text), "%lld:%02lld", static_cast<long long>(minutes / 60),
                  static_cast<long long>(minutes % 60));
    return text;
}

void Timesheet::to_markup(ZBMarkupPage& page) const
{
    const Resource* resource = m_diary.get_resource_by_id(m_user);
    const std::string who = resource ? resource->get_username() : std::string("everyone");
    std::string title = "Timesheet of " + who;
    if (m_days > 0)
        title += ", " + m_day.front().to_string("%a %d-%b-%Y") + " to " +
                 (m_day.back() - ZBDuration(1)).to_string("%a %d-%b-%Y");
    page.set_title(title);
    page.add_paragraph(title, 1);

    auto* table = new ZBMarkupTable(m_days + 3, 0);
    table->set_title("Id", 0);
    table->set_title("Entry", 1);
    table->set_alignment(0, ZBMarkupTable::E_AlignRight);
    for (int d = 0; d < m_days; ++d) {
        table->set_title(m_day[size_t(d)].to_string("%a %d"), d + 2);
        table->set_alignment(d + 2, ZBMarkupTable::E_AlignRight);
    }
    table->set_title("Total", m_days + 2);
    table->set_alignment(m_days + 2, ZBMarkupTable::E_AlignRight);
    for (const TimesheetRow* row : m_row) {
        const int r = table->add_row();
        const DiaryEntry* entry = m_diary.get_entry_id(row->get_entry_id());
        table->set_cell(std::to_string(row->get_entry_id()), 0, r);
        table->set_cell(entry ? entry->get_summary() : std::string(), 1, r);
        for (int d = 0; d < m_days; ++d)
            table->set_cell(hours_text(row->get_time(d), true), d + 2, r);
        table->set_cell(hours_text(row->get_total()), m_days + 2, r, "", "", true);
    }
    int r = table->add_row();
    table->set_cell("Total", 1, r, "", "", true);
    for (int d = 0; d < m_days; ++d)
        table->set_cell(hours_text(get_day_total(d)), d + 2, r, "", "", true);
    table->set_cell(hours_text(get_total()), m_days + 2, r, "", "", true);
    r = table->add_row();
    table->set_cell("Work time", 1, r, "", "", false, true);
    ZBDuration avail;
    for (int d = 0; d < m_days; ++d) {
        table->set_cell(hours_text(m_avail[size_t(d)]), d + 2, r, "", "", false, true);
        avail += m_avail[size_t(d)];
    }
    table->set_cell(hours_text(avail), m_days + 2, r, "", "", false, true);
    page.append(table);
    if (m_row.empty())
        page.add_paragraph("No time spent in these days.");
}

void Timesheet::to_csv(std::ostream& out) const
{
    auto decimal = [](const ZBDuration& time) {
        char text[32];
        std::snprintf(text, sizeof(text), "%.2f", double(time.get_as_seconds()) / 3600.0);
        return std::string(text);
    };
    out << "Id,Entry";
    for (int d = 0; d < m_days; ++d)
        out << "," << m_day[size_t(d)].to_string("%Y-%m-%d");
    out << ",Total\n";
    for (const TimesheetRow* row : m_row) {
        const DiaryEntry* entry = m_diary.get_entry_id(row->get_entry_id());
        out << row->get_entry_id() << "," << csv_field(entry ? entry->get_summary() : std::string());
        for (int d = 0; d < m_days; ++d)
            out << "," << decimal(row->get_time(d));
        out << "," << decimal(row->get_total()) << "\n";
    }
    out << ",Total";
    for (int d = 0; d < m_days; ++d)
        out << "," << decimal(get_day_total(d));
    out << "," << decimal(get_total()) << "\n";
}

} // namespace Tervalon
