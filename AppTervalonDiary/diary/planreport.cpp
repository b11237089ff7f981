#include "AppTervalonDiary/diary/planreport.h"

#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/entryplan.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/spentreport.h"
#include "AppTervalonDiary/diary/timesheet.h"
#include "LibCore/error/zberror.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuptable.h"

#include <algorithm>
#include <vector>

namespace Tervalon {

namespace {

const char* const C_DateFormat = "%a %d-%b-%Y %H:%M";

std::string date_text(const ZBDate& date) { return date.is_ok() ? date.to_string(C_DateFormat) : std::string(); }

// The part of a set inside a slot, for one resource (-1: any).
ZBDuration in_slot(const ZBDateSet& set, const ZBDateSlot& slot)
{
    if (set.empty() || set.start() >= slot.m_end || set.end() <= slot.m_start)
        return ZBDuration();
    return set.query_range(slot, -1);
}

} // namespace

PlanReport::PlanReport(const Diary& diary) : m_diary(diary), m_resource(-1), m_lines(0) {}

bool PlanReport::entry_line(const DiaryEntry& entry, ZBMarkupTable& table) const
{
    const EntryPlan& plan = entry.get_plan();
    const ZBDuration planned = in_slot(plan.get_planned(), m_slot);
    const ZBDuration predicted = in_slot(plan.get_predicted(), m_slot);
    const ZBDate& due = entry.get_due().calc;
    const bool dueHere = due.is_ok() && m_slot.m_start <= due && due < m_slot.m_end;
    if (planned.is_zero() && predicted.is_zero() && !dueHere)
        return false;
    const ZBDateSlot& when = entry.get_time().calc;
    const int r = table.add_row();
    // Late work shows in red: predicted to end after it is due.
    const bool late = due.is_ok() && when.m_end.is_ok() && when.m_end > due;
    table.set_cell(std::to_string(entry.get_id()), 0, r);
    table.set_cell(SpentReport::entry_path(entry), 1, r);
    table.set_cell(date_text(due), 2, r);
    table.set_cell(date_text(when.m_start), 3, r);
    table.set_cell(date_text(when.m_end), 4, r, late ? "red" : "");
    table.set_cell(Timesheet::hours_text(planned, true), 5, r);
    table.set_cell(Timesheet::hours_text(predicted, true), 6, r);
    table.set_cell(Timesheet::hours_text(entry.get_duration().calc.get_remaining(), true), 7, r);
    return true;
}

int PlanReport::generate_report(const ZBDateSlot& slot, int resource, ZBMarkupPage& page)
{
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok() || slot.m_end < slot.m_start)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A report needs a start and an end after it.");
    m_slot = slot;
    m_resource = resource;
    m_lines = 0;

    std::vector<const DiaryEntry*> entries;
    std::vector<DiaryEntry*> all;
    m_diary.get_all_entries(all);
    for (const DiaryEntry* entry : all) {
        if (!entry || entry->is_deleted() || entry->get_nchildren() > 0)
            continue;
        const int type = entry->get_entrytype();
        if (type != 'T' && type != 'A')
            continue;
        if (resource >= 0 && entry->get_props().get_resource_calc() != resource)
            continue;
        entries.push_back(entry);
    }
    // Blank dates sort after every real one, so unplanned work comes last.
    std::stable_sort(entries.begin(), entries.end(), [](const DiaryEntry* a, const DiaryEntry* b) {
        return a->get_time().calc.m_start < b->get_time().calc.m_start;
    });

    const Resource* who = resource >= 0 ? m_diary.get_resource_by_id(resource) : nullptr;
    const std::string title = "Plan" + (who ? " of " + who->get_username() : std::string()) + ", " +
                              slot.m_start.to_string("%a %d-%b-%Y") + " to " + (slot.m_end - ZBDuration(1)).to_string("%a %d-%b-%Y");
    page.set_title(title);
    page.add_paragraph(title, 1);
    auto* table = new ZBMarkupTable(8, 0);
    const char* titles[] = {"Id", "Entry", "Due", "Predicted start", "Predicted end", "Planned", "Predicted",
                            "Remaining"};
    for (int c = 0; c < 8; ++c)
        table->set_title(titles[c], c);
    for (int c : {0, 5, 6, 7})
        table->set_alignment(c, ZBMarkupTable::E_AlignRight);
    for (const DiaryEntry* entry : entries)
        if (entry_line(*entry, *table))
            ++m_lines;
    if (m_lines == 0) {
        delete table;
        page.add_paragraph("Nothing is planned, predicted or due in this span.");
        return ZBErrC_ok;
    }
    page.append(table);
    return ZBErrC_ok;
}

} // namespace Tervalon
