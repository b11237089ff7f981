#include "AppTervalonDiary/diary/spentreport.h"

#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/resource.h"
#include "AppTervalonDiary/diary/timesheet.h"
#include "LibCore/error/zberror.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkuptable.h"

#include <map>

namespace Tervalon {

SpentReport::SpentReport(const Diary& diary) : m_diary(diary), m_resource(-1) {}

std::string SpentReport::entry_path(const DiaryEntry& entry)
{
    std::string path = entry.get_summary();
    // The depth limit guards against a damaged file whose parents loop.
    int depth = 0;
    for (const DiaryEntry* parent = entry.get_parent_entry(); parent && depth < 100;
         parent = parent->get_parent_entry(), ++depth)
        path = parent->get_summary() + " / " + path;
    return path;
}

int SpentReport::generate_report(const ZBDateSlot& slot, int resource)
{
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok() || slot.m_end < slot.m_start)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A report needs a start and an end after it.");
    m_slot = slot;
    m_resource = resource;
    m_line.clear();
    const int type = resource >= 0 && m_diary.is_multi_user() ? resource : -1;
    std::vector<DiaryEntry*> all;
    m_diary.get_all_entries(all);
    for (const DiaryEntry* entry : all) {
        if (!entry || entry->is_deleted())
            continue;
        const ZBDateSet& sessions = entry->get_spent().get_sessions();
        if (sessions.empty() || sessions.start() >= slot.m_end || sessions.end() <= slot.m_start)
            continue;
        Line line;
        line.spent = sessions.query_range(slot, type);
        if (line.spent.is_zero())
            continue;
        for (int k = 0; k < sessions.size(); ++k) {
            const ZBDateSetEntry& session = *sessions[k];
            if (session.matches(type) && session.m_start < slot.m_end && session.m_end > slot.m_start)
                ++line.sessions;
        }
        line.entryId = entry->get_id();
        line.path = entry_path(*entry);
        const DiaryEntry* top = entry;
        for (int depth = 0; top->get_parent_entry() && depth < 100; ++depth)
            top = top->get_parent_entry();
        line.topId = top->get_id();
        m_line.push_back(line);
    }
    return ZBErrC_ok;
}

ZBDuration SpentReport::get_total() const
{
    ZBDuration total;
    for (const Line& line : m_line)
        total += line.spent;
    return total;
}

void SpentReport::to_markup(ZBMarkupPage& page) const
{
    const Resource* resource = m_resource >= 0 ? m_diary.get_resource_by_id(m_resource) : nullptr;
    const std::string title = "Time spent" + (resource ? " by " + resource->get_username() : std::string()) + ", " +
                              m_slot.m_start.to_string("%a %d-%b-%Y") + " to " +
                              (m_slot.m_end - ZBDuration(1)).to_string("%a %d-%b-%Y");
    page.set_title(title);
    page.add_paragraph(title, 1);
    if (m_line.empty()) {
        page.add_paragraph("No time spent in this span.");
        return;
    }
    auto* table = new ZBMarkupTable(4, 0);
    table->set_title("Id", 0);
    table->set_title("Entry", 1);
    table->set_title("Sessions", 2);
    table->set_title("Spent", 3);
    table->set_alignment(0, ZBMarkupTable::E_AlignRight);
    table->set_alignment(2, ZBMarkupTable::E_AlignRight);
    table->set_alignment(3, ZBMarkupTable::E_AlignRight);
    std::map<int, ZBDuration> byTop;
    std::vector<int> tops;
    for (const Line& line : m_line) {
        const int r = table->add_row();
        table->set_cell(std::to_string(line.entryId), 0, r);
        table->set_cell(line.path, 1, r);
        table->set_cell(std::to_string(line.sessions), 2, r);
        table->set_cell(Timesheet::hours_text(line.spent), 3, r);
        if (!byTop.count(line.topId))
            tops.push_back(line.topId);
        byTop[line.topId] += line.spent;
    }
    const int r = table->add_row();
    table->set_cell("Total", 1, r, "", "", true);
    table->set_cell(Timesheet::hours_text(get_total()), 3, r, "", "", true);
    page.append(table);

    page.add_paragraph("By top-level entry", 2);
    auto* summary = new ZBMarkupTable(2, 0);
    summary->set_title("Entry", 0);
    summary->set_title("Spent", 1);
    summary->set_alignment(1, ZBMarkupTable::E_AlignRight);
    for (int top : tops) {
        const int row = summary->add_row();
        const DiaryEntry* entry = m_diary.get_entry_id(top);
        summary->set_cell(entry ? entry->get_summary() : std::to_string(top), 0, row);
        summary->set_cell(Timesheet::hours_text(byTop[top]), 1, row);
    }
    page.append(summary);
}

} // namespace Tervalon
