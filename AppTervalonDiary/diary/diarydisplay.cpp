#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/calendar/zbcalendarentry.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "LibMarkup/markup/zbmarkuptextelement.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <unordered_set>

namespace Tervalon {

const char* const DiaryDisplay::C_ObjectImage = ":image/object.png";
const char* const DiaryDisplay::C_JournalImage = ":image/journal.png";
const char* const DiaryDisplay::C_PersonImage = ":image/person.png";
const char* const DiaryDisplay::C_AddressImage = ":image/address.png";
const char* const DiaryDisplay::C_PlaceImage = ":image/place.png";
const char* const DiaryDisplay::C_TodoImage = ":image/todo.png";
const char* const DiaryDisplay::C_TodoImageDone = ":image/tododone.png";
const char* const DiaryDisplay::C_TodoImagePend = ":image/todopend.png";
const char* const DiaryDisplay::C_TodoImageOther = ":image/todoother.png";
const char* const DiaryDisplay::C_TodoImageOtherDone = ":image/todootherdone.png";
const char* const DiaryDisplay::C_TodoImageOtherPend = ":image/todootherpend.png";
const char* const DiaryDisplay::C_AppointmentImage = ":image/appointment.png";
const char* const DiaryDisplay::C_AppointmentImageDone = ":image/appointmentdone.png";
const char* const DiaryDisplay::C_AppointmentImageOther = ":image/appointmentother.png";
const char* const DiaryDisplay::C_AppointmentImageOtherDone = ":image/appointmentotherdone.png";
const char* const DiaryDisplay::C_TimeSpentImage = ":image/timespent.png";
const char* const DiaryDisplay::C_TimeAvailImage = ":image/timeavail.png";
const char* const DiaryDisplay::C_TimePlannedImage = ":image/timeplanned.png";
const char* const DiaryDisplay::C_TimePredictedImage = ":image/timepredicted.png";
const char* const DiaryDisplay::C_BaselineNoneImage = ":image/baselinenone.png";
const char* const DiaryDisplay::C_BaselineGoodImage = ":image/baselinegood.png";
const char* const DiaryDisplay::C_BaselineMargImage = ":image/baselinemarg.png";
const char* const DiaryDisplay::C_BaselinePoorImage = ":image/baselinepoor.png";
const char* const DiaryDisplay::C_BaselineProgImage = ":image/baselineprog.png";
const char* const DiaryDisplay::C_ColourCut = "#808080";
const char* const DiaryDisplay::C_ColourHistory = "#606060";
const char* const DiaryDisplay::C_ColourRange = "#e0e0ff";
const char* const DiaryDisplay::C_ColourLate = "#c08000";
const char* const DiaryDisplay::C_ColourUrgent = "#e06000";
const char* const DiaryDisplay::C_ColourOverdue = "#d00000";
const char* const DiaryDisplay::C_ColourAvailable = "#008000";
const char* const DiaryDisplay::C_ColourBorderline = "#c0a000";
const char* const DiaryDisplay::C_ColourNormal = "";
const char* const DiaryDisplay::C_ShowDetails = "Show Details";
const char* const DiaryDisplay::C_HideDetails = "Hide Details";
const char* const DiaryDisplay::C_ShowRelated = "Show Related";
const char* const DiaryDisplay::C_HideRelated = "Hide Related";
const char* const DiaryDisplay::C_ShowAllLinks = "Show All Links";
const char* const DiaryDisplay::C_ShowFewerLinks = "Show Fewer Links";
const char* const DiaryDisplay::C_MapSearch = "https://www.google.com/maps/search/?api=1&query=";

namespace {

bool is_leaf_work(const DiaryEntry& entry)
{
    const char type = entry.get_derived_entrytype();
    return entry.get_nchildren() == 0 && (type == 'T' || type == 'A');
}

std::string format(const char* form, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

std::string url_encode(const std::string& text)
{
    static const char* const hex = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : text) {
        if (std::isalnum(c) || c == '-' || c == '_' || c == '.' || c == '~')
            out += char(c);
        else if (c == ' ')
            out += '+';
        else {
            out += '%';
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    return out;
}

// A label and value row; nothing for an empty value, so that a page shows
// only what the entry has.
void add_row(ZBMarkupTable& table, const std::string& label, const std::string& value,
             const std::string& colour = std::string())
{
    if (value.empty())
        return;
    const int row = table.add_row();
    table.set_cell(label, 0, row);
    table.set_cell(value, 1, row, colour);
}

} // namespace

DiaryDisplay::DiaryDisplay(const Diary& diary) : m_diary(diary) {}

std::string DiaryDisplay::time_text(const ZBDuration& duration)
{
    const std::int64_t seconds = duration.get_as_seconds();
    const std::int64_t magnitude = seconds < 0 ? -seconds : seconds;
    char text[48];
    std::snprintf(text, sizeof text, "%s%lld:%02lld", seconds < 0 ? "-" : "", static_cast<long long>(magnitude / 3600),
                  static_cast<long long>(magnitude / 60 % 60));
    return text;
}

std::string DiaryDisplay::date_text(const ZBDate& date)
{
    return date.is_ok() ? date.to_string("%a %Y-%m-%d %H:%M") : std::string();
}

std::string DiaryDisplay::resource_name(int id) const
{
    const Resource* resource = id >= 0 ? m_diary.get_resource_by_id(id) : nullptr;
    return resource ? resource->get_username() : std::string();
}

// ---- Icons, groups and list columns.

std::string DiaryDisplay::get_image(const DiaryEntry& entry, int resource, int sequence) const
{
    const char type = entry.get_derived_entrytype();
    // Work that belongs to someone else looks different in every list.
    const bool other = resource >= 0 && entry.get_props().get_resource_calc() >= 0 &&
                       entry.get_props().get_resource_calc() != resource;
    const bool later = sequence > 0;
    switch (type) {
    case 'T':
        if (entry.is_complete())
            return other ? C_TodoImageOtherDone : C_TodoImageDone;
        if (!entry.is_active() || later)
            return other ? C_TodoImageOtherPend : C_TodoImagePend;
        return other ? C_TodoImageOther : C_TodoImage;
    case 'A':
        if (entry.is_complete())
            return other ? C_AppointmentImageOtherDone : C_AppointmentImageDone;
        return other ? C_AppointmentImageOther : C_AppointmentImage;
    case 'J':
        return C_JournalImage;
    case 'P':
        return C_PersonImage;
    case 'D':
        return C_AddressImage;
    case 'L':
        return C_PlaceImage;
    default:
        return C_ObjectImage;
    }
}

int DiaryDisplay::get_group_number(const DiaryEntry& entry, char type)
{
    switch (type) {
    case 'p':
        return E_GroupPlanned;
    case 'r':
        return E_GroupPredicted;
    case 's':
        return E_GroupSpent;
    default:
        break;
    }
    switch (entry.get_derived_entrytype()) {
    case 'A':
        return entry.is_complete() ? E_GroupAppointmentDone : E_GroupAppointment;
    case 'T':
        if (entry.is_complete())
            return E_GroupTaskDone;
        return entry.is_active() ? E_GroupTaskActive : E_GroupTaskWaiting;
    case 'J':
        return E_GroupJournal;
    case 'D':
        return E_GroupAddress;
    case 'P':
        return E_GroupPerson;
    case 'L':
        return E_GroupPlace;
    default:
        return E_GroupOther;
    }
}

std::string DiaryDisplay::get_display_group(int group)
{
    switch (group) {
    case E_GroupAppointment:
        return "Appointments";
    case E_GroupAppointmentDone:
        return "Completed Appointments";
    case E_GroupAddress:
        return "Address";
    case E_GroupJournal:
        return "Journal";
    case E_GroupPlace:
        return "Place";
    case E_GroupPerson:
        return "Person";
    case E_GroupTaskDone:
        return "Completed Tasks";
    case E_GroupTaskWaiting:
        return "Pending Tasks";
    case E_GroupTaskActive:
        return "Tasks";
    default:
        return "";
    }
}

std::string DiaryDisplay::get_display_priority(const DiaryEntry& entry)
{
    return format("%.1f", entry.get_priority().calc);
}

// ---- Calendar.

int DiaryDisplay::populate_calendar(ZBCalendar& calendar, const std::vector<int>& ids, const ZBDateSlot& slot,
                                    int resource) const
{
    std::vector<const DiaryEntry*> entries;
    if (ids.empty()) {
        for (DiaryEntry* entry : m_diary.get_display_list())
            entries.push_back(entry);
    } else {
        for (int id : ids)
            if (const DiaryEntry* entry = m_diary.get_entry_id(id))
                entries.push_back(entry);
    }
    for (const DiaryEntry* entry : entries) {
        const int owner = entry->get_props().get_resource_calc();
        const bool mine = resource < 0 || owner < 0 || owner == resource;
        const char type = entry->get_derived_entrytype();
        // The entry itself: an appointment or journal at its time, a task at its due.
        ZBDateSlot when = entry->get_etime().get_calc_date();
        if (type == 'T') {
            const ZBDate& due = entry->get_due().calc;
            when = due.is_ok() ? ZBDateSlot(due, due) : ZBDateSlot();
        }
        if (mine && entry->get_nchildren() == 0 && when.m_start.is_ok() && EntryPlan::in_slot(when, slot)) {
            ZBCalendarEntry* item = new ZBCalendarEntry(ZBId(entry->get_id()), when, entry->get_summary());
            item->set_grouping(get_group_number(*entry, 0));
            item->set_group(get_group_number(*entry, 0));
            item->set_image(get_image(*entry, resource, 0));
            item->set_priority(entry->get_priority().calc);
            item->set_details(entry->get_text());
            if (iszbwarn(calendar.add_entry(item)))
                return zbpass(ZBLOC);
        }
        const int before = calendar.get_nentries();
        if (iszbwarn(entry->get_plan().detailed_query(slot, calendar, resource)))
            return zbpass(ZBLOC);
        for (int i = before; i < calendar.get_nentries(); ++i) {
            ZBCalendarEntry* item = calendar.get_entry_no(i);
            const bool planned = item->get_datatype() == EntryPlan::C_CalendarPlanned;
            item->set_grouping(get_group_number(*entry, planned ? 'p' : 'r'));
            item->set_group(item->get_grouping());
            item->set_image(planned ? C_TimePlannedImage : C_TimePredictedImage);
            item->set_priority(entry->get_priority().calc);
        }
        const ZBDateSet& spent = entry->get_spent().get_sessions();
        for (int i = 0; i < spent.size(); ++i) {
            const ZBDateSetEntry& session = *spent[i];
            if ((resource >= 0 && session.m_type != resource) || !EntryPlan::in_slot(session.slot(), slot))
                continue;
            ZBCalendarEntry* item = new ZBCalendarEntry(ZBId(entry->get_id(), DiaryEntry::get_sequence('s', i)),
                                                        session.slot(), entry->get_summary());
            item->set_grouping(get_group_number(*entry, 's'));
            item->set_group(E_GroupSpent);
            item->set_image(C_TimeSpentImage);
            if (iszbwarn(calendar.add_entry(item)))
                return zbpass(ZBLOC);
        }
    }
    return ZBErrC_ok;
}

// ---- Details page.

std::string DiaryDisplay::get_source_description(const DiaryEntry& entry, int sourceId) const
{
    if (sourceId == entry.get_id())
        return "This entry.";
    const DiaryEntry* source = m_diary.get_entry_id(sourceId);
    if (!source)
        return std::string();
    for (const DiaryEntry* up = entry.get_parent_entry(); up; up = up->get_parent_entry())
        if (up == source)
            return "Parent: " + source->get_summary();
    return source->get_summary();
}

std::string DiaryDisplay::command_help_text(const DiaryEntry& entry) const
{
    const std::string& command = entry.get_command().get_command();
    if (command.empty())
        return std::string();
    return "Runs: " + command;
}

std::string DiaryDisplay::display_dateset(const DiaryEntry&, const ZBDateSet& set, const ZBDateSlot& slot) const
{
    std::string text;
    for (int i = 0; i < set.size(); ++i) {
        const ZBDateSetEntry& session = *set[i];
        if (!EntryPlan::in_slot(session.slot(), slot))
            continue;
        if (!text.empty())
            text += "\n";
        text += date_text(session.m_start) + " - " + session.m_end.to_string("%H:%M") + " (" +
                time_text(session.m_end - session.m_start) + " time)";
    }
    return text;
}

std::vector<DiaryDisplay::BreakdownRow> DiaryDisplay::get_time_breakdown(int id) const
{
    std::vector<BreakdownRow> rows;
    const DiaryEntry* top = m_diary.get_entry_id(id);
    if (!top)
        return rows;
    std::map<std::string, BreakdownRow> byName;
    std::vector<const DiaryEntry*> stack{top};
    while (!stack.empty()) {
        const DiaryEntry* entry = stack.back();
        stack.pop_back();
        for (int i = 0; i < entry->get_nchildren(); ++i)
            stack.push_back(entry->get_child_no(i));
        if (!is_leaf_work(*entry))
            continue;
        const bool task = entry->get_derived_entrytype() == 'T';
        const std::string owner = resource_name(entry->get_props().get_resource_calc());
        BreakdownRow& own = byName[owner.empty() ? LateReport::C_Unassigned : owner];
        own.m_name = owner.empty() ? LateReport::C_Unassigned : owner;
        // Spent time goes to whoever spent it.
        const ZBDateSet& sessions = entry->get_spent().get_sessions();
        for (int i = 0; i < sessions.size(); ++i) {
            const std::string who = resource_name(sessions[i]->m_type);
            BreakdownRow& row = byName[who.empty() ? LateReport::C_Unassigned : who];
            row.m_name = who.empty() ? LateReport::C_Unassigned : who;
            const ZBDuration length = sessions[i]->m_end - sessions[i]->m_start;
            if (!task)
                row.m_completedAppointments += length;
            else if (entry->is_complete())
                row.m_completedTasks += length;
            else
                row.m_pendingTasks += length;
        }
        if (!task && entry->is_complete() && sessions.empty())
            own.m_completedAppointments += entry->get_etime().get_calc_date().get_duration();
        if (task && !entry->is_complete())
            own.m_remain += entry->get_duration().calc.get_remaining();
        own.m_planned += entry->get_plan().get_planned().duration() + entry->get_plan().get_predicted().duration();
    }
    BreakdownRow overall;
    overall.m_name = "Overall";
    for (const auto& item : byName) {
        rows.push_back(item.second);
        overall.m_completedTasks += item.second.m_completedTasks;
        overall.m_pendingTasks += item.second.m_pendingTasks;
        overall.m_remain += item.second.m_remain;
        overall.m_completedAppointments += item.second.m_completedAppointments;
        overall.m_planned += item.second.m_planned;
    }
    rows.push_back(overall);
    return rows;
}

std::vector<std::pair<int, std::string>> DiaryDisplay::get_related(int id) const
{
    std::vector<std::pair<int, std::string>> related;
    const DiaryEntry* entry = m_diary.get_entry_id(id);
    if (!entry)
        return related;
    std::unordered_set<int> seen{id};
    related.emplace_back(id, " (This Entry)");
    for (int i = 0; i < entry->get_nchildren(); ++i)
        if (seen.insert(entry->get_child_no(i)->get_id()).second)
            related.emplace_back(entry->get_child_no(i)->get_id(), " (Child This)");
    for (int other : entry->get_depend().get_depend_on_this())
        if (m_diary.get_entry_id(other) && seen.insert(other).second)
            related.emplace_back(other, " (Dependant)");
    // Open work of the same resource that is more urgent and predicted to
    // start first: it is what holds this entry back.
    const ZBDate start = entry->get_etime().get_calc_date().m_start;
    if (entry->get_derived_entrytype() == 'T' && !entry->is_complete() && start.is_ok()) {
        const int resource = entry->get_props().get_resource_calc();
        std::vector<const DiaryEntry*> urgent;
        for (const DiaryEntry* other : m_diary.get_display_list()) {
            if (seen.count(other->get_id()) || !is_leaf_work(*other) || other->get_derived_entrytype() != 'T' ||
                other->is_complete() || other->get_props().get_resource_calc() != resource ||
                other->get_priority().calc <= entry->get_priority().calc)
                continue;
            const ZBDate otherStart = other->get_etime().get_calc_date().m_start;
            if (otherStart.is_ok() && otherStart < start)
                urgent.push_back(other);
        }
        std::stable_sort(urgent.begin(), urgent.end(), [](const DiaryEntry* a, const DiaryEntry* b) {
            return a->get_priority().calc > b->get_priority().calc;
        });
        const size_t C_MaxUrgent = 10;
        for (size_t i = 0; i < urgent.size() && i < C_MaxUrgent; ++i)
            related.emplace_back(urgent[i]->get_id(), " (More Urgent)");
    }
    return related;
}

int DiaryDisplay::dump_markup(const DiaryEntry& entry, ZBMarkupPage& page, int flags) const
{
    page.set_title(entry.get_summary());
    page.add_paragraph(entry.get_summary(), 1);
    if (entry.get_derived_entrytype() == 'L' && !entry.get_text().empty()) {
        ZBMarkupParagraph* link = page.add_paragraph();
        ZBMarkupTextElement* text = link->add_text(entry.get_text());
        text->set_anchor(C_MapSearch + url_encode(entry.get_text()));
    } else {
        page.add_paragraphs(entry.get_text());
    }

    ZBMarkupTable* fields = new ZBMarkupTable(2, 0);
    const bool task = entry.get_derived_entrytype() == 'T';
    const EntryPlan& plan = entry.get_plan();
    add_row(*fields, "Must Start By", date_text(entry.get_muststart()));
    add_row(*fields, "Ideal Start", date_text(plan.get_plannedstart()));
    const ZBDate& due = entry.get_due().calc;
    add_row(*fields, "Due By", date_text(due), entry.get_priority().calc > 400.0 ? C_ColourOverdue : "");
    if (due.is_ok() && entry.get_due_id() >= 0 && entry.get_due_id() != entry.get_id())
        add_row(*fields, "Due Date came from: ", get_source_description(entry, entry.get_due_id()));
    const ZBDateSlot& slot = entry.get_etime().get_calc_date();
    if (task || entry.get_derived_entrytype() == 'A') {
        add_row(*fields, "Predicted Start", date_text(slot.m_start));
        add_row(*fields, "Predicted End", date_text(slot.m_end),
                due.is_ok() && slot.m_end.is_ok() && due < slot.m_end ? C_ColourLate : "");
    }
    std::string problems;
    for (const ZBDate& date : plan.get_problem_dates())
        problems += (problems.empty() ? "" : ", ") + date_text(date);
    add_row(*fields, "Problem Date", problems, C_ColourLate);
    const int endId = entry.get_etime().get_end_id();
    if (endId >= 0 && endId != entry.get_id())
        add_row(*fields, "End Time came from: ", get_source_description(entry, endId));

    const ZBDateRepeat& repeat = entry.get_repeat();
    if (repeat.is_repeating()) {
        // A rule made from an expression shows it as typed; one built in the
        // editor reads best in words.
        const std::string rule = repeat.get_exp().empty() ? repeat.to_natural(nullptr) : repeat.get_exp();
        const std::string offset = repeat.get_offset_exp().empty() ? repeat.offset_to_natural() : repeat.get_offset_exp();
        if (task) {
            add_row(*fields, "Repeat Start After", offset);
            add_row(*fields, "Repeat Due", rule);
        } else {
            add_row(*fields, "Repeat Start", rule);
            add_row(*fields, "Repeat End", offset);
        }
        add_row(*fields, "Begin Repeating", date_text(repeat.get_range_start()));
        add_row(*fields, "End Repeating", date_text(repeat.get_range_end()));
        add_row(*fields, "Exclude Repeatng", repeat.get_exclude_string());
        add_row(*fields, "Last Completed", date_text(entry.get_spent().get_closed()));
    }

    if (task) {
        const ZBProgress& total = entry.get_total_duration();
        const ZBProgress& own = entry.get_duration().calc;
        if (!total.get_duration().is_zero())
            add_row(*fields, "Total Duration",
                    time_text(total.get_duration()) + " (" + format("%.1f%%", total.get_completion()) + " done, " +
                        time_text(total.get_remaining()) + " remaining)");
        else if (!own.get_duration().is_zero())
            add_row(*fields, "Total Duration",
                    time_text(own.get_duration()) + " (" + format("%.1f%%", own.get_completion()) + " done, " +
                        time_text(own.get_remaining()) + " remaining)");
        ZBDuration waiting;
        int count = 0;
        for (int other : entry.get_depend().get_full_depends())
            if (const DiaryEntry* before = m_diary.get_entry_id(other))
                if (!before->is_complete() && before->get_nchildren() == 0) {
                    waiting += before->get_duration().calc.get_remaining();
                    ++count;
                }
        if (count > 0)
            add_row(*fields, "Depend Remaining", time_text(waiting) + " (" + format("%.0f", count) + " total)");
    }

    const EntryBaseline& baseline = entry.get_baseline();
    const ZBDuration& baseTime = baseline.get_duration().calc;
    const ZBDateSlot& baseSlot = baseline.get_start_end().calc;
    if (!baseTime.is_zero() || baseSlot.m_start.is_ok()) {
        if (!baseTime.is_zero()) {
            const ZBDuration done = entry.get_duration().calc.get_completed();
            const double share = 100.0 * (done / baseTime);
            add_row(*fields, "Baseline Time",
                    time_text(baseTime) + " (" + format("%.1f %%", share) + ", " +
                        time_text(done + entry.get_duration().calc.get_remaining()) + " projected)");
        }
        add_row(*fields, "Baseline Start", date_text(baseSlot.m_start));
        add_row(*fields, "Baseline End", date_text(baseSlot.m_end));
        if (baseline.get_auto_baseline() != 0)
            add_row(*fields, "Baseline Goal", EntryBaseline::btype_to_string(baseline.get_auto_baseline()));
    }

    std::string depends;
    for (const auto& item : entry.get_depend().get_depends(m_diary, true, 0))
        depends += (depends.empty() ? "" : "; ") + item.first;
    add_row(*fields, "Depends On", depends);
    // What this entry holds up: the entries it was set to block and those
    // that wait for it of their own accord.
    std::string blocks;
    std::unordered_set<int> blocked;
    for (const auto& item : entry.get_depend().get_blocks(m_diary, true, 0))
        if (blocked.insert(item.second).second)
            blocks += (blocks.empty() ? "" : "; ") + item.first;
    for (int other : entry.get_depend().get_depend_on_this())
        if (const DiaryEntry* waiting = m_diary.get_entry_id(other))
            if (blocked.insert(other).second)
                blocks += (blocks.empty() ? "" : "; ") + waiting->get_summary();
    add_row(*fields, "Blocks", blocks);
    if (!plan.get_planned().empty())
        add_row(*fields, "Planned Times",
                display_dateset(entry, plan.get_planned(), ZBDateSlot()) + "\n" +
                    time_text(plan.get_planned().duration()) + " (" + time_text(plan.get_total_plan()) + " total)");
    if (!plan.get_predicted().empty())
        add_row(*fields, "Predicted Times",
                display_dateset(entry, plan.get_predicted(), ZBDateSlot()) + "\n" +
                    "(" + time_text(plan.get_predicted().duration()) + " predicted)");
    const ZBDuration& spent = entry.get_spent().get_time_spent();
    const ZBDuration sessions = entry.get_spent().get_sessions().duration();
    if (!spent.is_zero() || !sessions.is_zero())
        add_row(*fields, "Spent Time", time_text(spent.is_zero() ? sessions : spent));
    if (fields->get_nrows() > 0)
        page.append(fields);
    else
        delete fields;

    // Priority of work.
    if (entry.get_derived_entrytype() == 'T' || entry.get_derived_entrytype() == 'A') {
        page.add_paragraph(format("Own priority: %.1f", entry.get_priority().orig));
        const int source = entry.get_priority_id();
        if (source >= 0 && source != entry.get_id()) {
            const std::string from = get_source_description(entry, source);
            page.add_paragraph("Priority came from: " + (from.empty() ? std::string("Inherited.") : from));
        } else if (entry.get_priority().calc != entry.get_priority().orig && source < 0) {
            page.add_paragraph("Priority came from: Inherited.");
        }
        if (flags & C_DumpDebug) {
            page.add_paragraph("Active [" + format("%.9f", entry.get_priority().calc) + "] - " +
                               (entry.is_active() ? "active" : "waiting"));
            page.add_paragraph(
                format("Without adjusting for due date: %.9f", entry.get_priority_facet().get_non_due_priority()));
        }
    }

    const std::string help = command_help_text(entry);
    if (!help.empty())
        page.add_paragraphs(help);

    if (flags & C_DumpRelated) {
        const auto related = get_related(entry.get_id());
        if (related.size() > 1) {
            page.add_paragraph("Related Tasks", 2);
            ZBMarkupTable* table = new ZBMarkupTable(2, 0);
            table->set_title("Related Tasks", 0);
            table->set_title("Due/Predicted", 1);
            for (const auto& item : related) {
                const DiaryEntry* other = m_diary.get_entry_id(item.first);
                const int row = table->add_row();
                table->set_cell(other->get_summary() + item.second, 0, row);
                const ZBDate& otherDue = other->get_due().calc;
                const ZBDate& otherEnd = other->get_etime().get_calc_date().m_end;
                table->set_cell(date_text(otherDue) + "/" + date_text(otherEnd), 1, row,
                                otherDue.is_ok() && otherEnd.is_ok() && otherDue < otherEnd ? C_ColourLate : "");
            }
            page.append(table);
        }
        if (const DiaryEntry* parent = entry.get_parent_entry())
            page.add_paragraph("Parent: " + parent->get_summary());
    }

    if ((flags & C_DumpBreakdown) && entry.get_nchildren() > 0) {
        const auto rows = get_time_breakdown(entry.get_id());
        page.add_paragraph("Time Planned", 2);
        ZBMarkupTable* table = new ZBMarkupTable(6, 0);
        const char* const titles[] = {"", "Completed Tasks", "Pending Tasks", "Remain", "Completed Appointments",
                                      "Planned Time"};
        for (int c = 0; c < 6; ++c)
            table->set_title(titles[c], c);
        for (const BreakdownRow& item : rows) {
            const int row = table->add_row();
            table->set_cell(item.m_name, 0, row, "", "", item.m_name == "Overall");
            table->set_cell(time_text(item.m_completedTasks), 1, row);
            table->set_cell(time_text(item.m_pendingTasks), 2, row);
            table->set_cell(time_text(item.m_remain), 3, row);
            table->set_cell(time_text(item.m_completedAppointments), 4, row);
            table->set_cell(time_text(item.m_planned), 5, row);
        }
        for (int c = 1; c < 6; ++c)
            table->set_alignment(c, ZBMarkupTable::E_AlignRight);
        page.append(table);
    }
    return ZBErrC_ok;
}

// ---- Project view.

void DiaryDisplay::update_sorted_tasks()
{
    m_sorted.clear();
    std::vector<DiaryEntry*> top;
    for (int i = 0; i < m_diary.get_nentries(); ++i)
        if (DiaryEntry* entry = m_diary.get_entry_index(i))
            if (!entry->is_deleted())
                top.push_back(entry);
    std::stable_sort(top.begin(), top.end(), [](const DiaryEntry* a, const DiaryEntry* b) {
        return DiaryEntry::compare_application(*b, *a) != 0;
    });
    m_sorted.assign(top.begin(), top.end());
}

LateReport& DiaryDisplay::late_row(std::vector<LateReport>& rows, int resource) const
{
    const std::string name = resource_name(resource);
    const std::string key = name.empty() ? LateReport::C_Unassigned : name;
    for (LateReport& row : rows)
        if (row.get_name() == key)
            return row;
    rows.emplace_back(key);
    return rows.back();
}

void DiaryDisplay::add_late(const DiaryEntry& entry, std::vector<LateReport>& rows, const ZBDate& bound) const
{
    if (entry.get_nchildren() == 0) {
        const ZBDateSet& sessions = entry.get_spent().get_sessions();
        for (int i = 0; i < sessions.size(); ++i)
            late_row(rows, sessions[i]->m_type).add_spent(sessions[i]->m_end - sessions[i]->m_start);
        if (entry.get_derived_entrytype() == 'T') {
            LateReport& row = late_row(rows, entry.get_props().get_resource_calc());
            const ZBProgress& progress = entry.get_duration().calc;
            row.add_work(progress.get_duration(), entry.is_complete() ? ZBDuration() : progress.get_remaining());
            if (!entry.is_complete())
                row.raise_end(entry.get_etime().get_calc_date().m_end, bound);
        }
    }
    for (int i = 0; i < entry.get_nchildren(); ++i)
        if (const DiaryEntry* child = entry.get_child_no(i))
            if (!child->is_deleted())
                add_late(*child, rows, bound);
}

void DiaryDisplay::get_latereport(const DiaryEntry& entry, std::vector<LateReport>& rows, const ZBDate& bound) const
{
    add_late(entry, rows, bound);
    std::stable_sort(rows.begin(), rows.end(), [](const LateReport& a, const LateReport& b) {
        return LateReport::compareLateReport(b, a) != 0;
    });
}

int DiaryDisplay::project_view(ZBMarkupPage& page)
{
    update_sorted_tasks();
    page.set_title("Projects");
    // Per entry, then regrouped per resource, so each table reads down one person's work.
    std::map<std::string, std::vector<std::pair<const DiaryEntry*, LateReport>>> byResource;
    for (const DiaryEntry* entry : extract_sorted_tasks()) {
        std::vector<LateReport> rows;
        get_latereport(*entry, rows, ZBDate(ZBDate::E_Blank));
        for (const LateReport& row : rows)
            byResource[row.get_name()].emplace_back(entry, row);
    }
    if (byResource.empty()) {
        page.add_paragraph("There is no work to report.");
        return ZBErrC_ok;
    }
    for (const auto& group : byResource) {
        page.add_paragraph(group.first, 2);
        ZBMarkupTable* table = new ZBMarkupTable(5, 0);
        const char* const titles[] = {"Project", "Predicted End", "Duration", "Remaining", "Spent"};
        for (int c = 0; c < 5; ++c)
            table->set_title(titles[c], c);
        for (const auto& item : group.second) {
            const LateReport& late = item.second;
            const ZBDate& due = item.first->get_due().calc;
            const bool late_end = due.is_ok() && late.get_latest_end().is_ok() && due < late.get_latest_end();
            const int row = table->add_row();
            table->set_cell(item.first->get_summary(), 0, row);
            table->set_cell(date_text(late.get_latest_end()), 1, row, late_end ? C_ColourLate : "");
            table->set_cell(time_text(late.get_duration()), 2, row);
            table->set_cell(time_text(late.get_remaining()), 3, row);
            table->set_cell(time_text(late.get_spent()), 4, row);
        }
        for (int c = 2; c < 5; ++c)
            table->set_alignment(c, ZBMarkupTable::E_AlignRight);
        page.append(table);
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
