#include "AppTervalonDiary/diary/zbdsummarypage.h"
#include "AppTervalonDiary/diary/daytype.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/calendar/zbcalendarentry.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibMarkup/markup/zbmarkupimage.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "LibMarkup/markup/zbmarkuptextelement.h"

#include <algorithm>
#include <cstdio>

namespace Tervalon {

namespace {

const double C_Overdue = 400.0;
const double C_Urgent = 300.0;
const double C_Behind = 200.0;
const double C_Delayed = 100.0;
const int C_WeekDays = 7;

std::string printf_text(const char* form, double value)
{
    char text[96];
    std::snprintf(text, sizeof text, form, value);
    return text;
}

std::string count_text(const char* one, const char* many, int count)
{
    if (count == 1)
        return one;
    char text[96];
    std::snprintf(text, sizeof text, many, count);
    return text;
}

bool is_leaf(const DiaryEntry& entry, char type)
{
    return entry.get_nchildren() == 0 && entry.get_derived_entrytype() == type;
}

// The work of an entry inside slot: its fixed plans and predicted sessions.
ZBDuration time_in(const DiaryEntry& entry, const ZBDateSlot& slot)
{
    const EntryPlan& plan = entry.get_plan();
    return plan.get_planned().query_range(slot, -1) + plan.get_predicted().query_range(slot, -1);
}

bool within(const ZBDate& date, const ZBDateSlot& slot)
{
    return date.is_ok() && slot.m_start <= date && date < slot.m_end;
}

std::string colour_of(int durColour)
{
    switch (durColour) {
    case EntrySet::C_ColourAvailable:
        return DiaryDisplay::C_ColourAvailable;
    case EntrySet::C_ColourBorderline:
        return DiaryDisplay::C_ColourBorderline;
    case EntrySet::C_ColourOver:
        return DiaryDisplay::C_ColourOverdue;
    default:
        return DiaryDisplay::C_ColourNormal;
    }
}

} // namespace

void ZBDSummaryPage::Counts::count(double priority)
{
    if (priority > C_Overdue)
        ++m_overdue;
    else if (priority > C_Urgent)
        ++m_urgent;
    else if (priority > C_Behind)
        ++m_behind;
    else if (priority > C_Delayed)
        ++m_delayed;
}

bool ZBDSummaryPage::Counts::operator==(const Counts& other) const
{
    return m_overdue == other.m_overdue && m_urgent == other.m_urgent && m_behind == other.m_behind &&
           m_delayed == other.m_delayed;
}

ZBDSummaryPage::ZBDSummaryPage() : m_score(0.0) {}

ZBDate ZBDSummaryPage::day_start(const ZBDate& date, int days)
{
    ZBDateDetails details(date, zblocale().get_timezone());
    details.m_dayMonth += days;
    details.recalculate();
    return DayType::clock_time(details, 0);
}

double ZBDSummaryPage::score(const ZBDuration& need, const ZBDuration& have, const ZBDuration& left)
{
    // With no work hours left the clock is all that is left to measure by;
    // with no clock left either there is nothing to divide by.
    if (have > 0 && need <= have)
        return 1.0 - 0.5 * (need / have);
    if (left > 0 && need < left)
        return 0.5 - 0.5 * (need / left);
    return 0.0;
}

ZBDSummaryPage::Headline ZBDSummaryPage::headline(const Counts& counts, double s, const ZBDuration& need,
                                                  const ZBDuration& have)
{
    Headline result;
    const std::string toDo = DiaryDisplay::time_text(need) + " to do today.";
    if (counts.m_overdue > 0) {
        result.m_meter = s * 10.0;
        result.m_headline = count_text("You have an overdue task.", "You have %d overdue tasks.", counts.m_overdue);
    } else if (counts.m_urgent > 0) {
        result.m_meter = s * 10.0 + 10.0;
        result.m_headline = count_text("You have an urgent task.", "You have %d urgent tasks.", counts.m_urgent);
    } else if (counts.m_behind > 0) {
        result.m_meter = s * 10.0 + 20.0;
        result.m_headline = printf_text("You are %.0f tasks behind your plan.", counts.m_behind);
    } else if (counts.m_delayed > 0) {
        result.m_meter = s * 20.0 + 30.0;
        result.m_headline = "Some delayed tasks...";
    } else {
        result.m_meter = 50.0 + s * 50.0;
        if (need.is_zero())
            result.m_headline = "Well done... Everything under control for today!";
        else if (s >= 0.5)
            result.m_headline = "On track! " + toDo;
        else
            result.m_headline = toDo;
    }
    result.m_meter = std::max(0.0, std::min(100.0, result.m_meter));
    result.m_second = DiaryDisplay::time_text(need) +
                      (counts.any() ? " to get completely under control." : " to complete today.");
    if (have > 0)
        result.m_second += printf_text(" %.1f", double(have.get_as_seconds()) / 3600.0) + " work hours left today.";
    else
        result.m_second += "  No work hours left today.";
    return result;
}

ZBDSummaryPage::E_Placement ZBDSummaryPage::place(const DiaryEntry& entry, const ZBDateSlot& today,
                                                  const ZBDateSlot& tomorrow)
{
    const ZBDate& mustStart = entry.get_muststart();
    if (entry.get_priority().calc > C_Urgent || (mustStart.is_ok() && mustStart < today.m_end))
        return E_PlaceCompleteToday;
    const bool timeToday = time_in(entry, today) > 0;
    if (timeToday)
        return E_PlaceToday;
    const ZBDate& ideal = entry.get_plan().get_plannedstart();
    if (ideal.is_ok() && ideal < today.m_end)
        return E_PlaceUnderControl;
    const ZBDateSet& predicted = entry.get_plan().get_predicted();
    if ((!predicted.empty() && within(predicted.start(), tomorrow)) || within(mustStart, tomorrow))
        return E_PlaceTomorrow;
    return E_PlaceFuture;
}

void ZBDSummaryPage::sort_entries(std::vector<DiaryEntry*>& entries, int order) const
{
    int (*compare)(const DiaryEntry&, const DiaryEntry&) = &DiaryEntry::compare_due_date;
    switch (order) {
    case DiaryEntry::E_SortAlphabetical:
        compare = &DiaryEntry::compare_alphabetical;
        break;
    case DiaryEntry::E_SortStartDate:
        compare = &DiaryEntry::compare_start_date;
        break;
    case DiaryEntry::E_SortDisplayOrder:
        compare = &DiaryEntry::compare_display_order;
        break;
    case DiaryEntry::E_SortPriority:
        compare = &DiaryEntry::compare_priority;
        break;
    case DiaryEntry::E_SortChildPriority:
        compare = &DiaryEntry::compare_child_priority;
        break;
    default:
        // The application order is for the tree; a day's list reads best by due date.
        break;
    }
    if (order == DiaryEntry::E_SortNone)
        return;
    // A stable merge sort: these lists can hold the whole diary.
    std::stable_sort(entries.begin(), entries.end(),
                     [compare](const DiaryEntry* a, const DiaryEntry* b) { return compare(*b, *a) != 0; });
}

void ZBDSummaryPage::write_set(const EntrySet& set, const DiaryDisplay& display, int resource, ZBMarkupPage& page,
                               const std::string& colour) const
{
    if (set.size() == 0)
        return;
    ZBMarkupParagraph* title = page.add_paragraph(set.get_title(), 2);
    if (!set.get_duration().is_zero()) {
        ZBMarkupTextElement* total = title->add_text(" (" + DiaryDisplay::time_text(set.get_duration()) + ")");
        total->set_foreground(colour);
    }
    ZBMarkupTable* table = new ZBMarkupTable(4, set.size());
    for (int i = 0; i < set.size(); ++i) {
        const EntrySetLine& line = set.get_line(i);
        const DiaryEntry* entry = line.get_entry();
        ZBMarkupTableCell* cell = table->get_cell(0, i);
        if (cell)
            cell->get_paragraph().add_element(new ZBMarkupImage(display.get_image(*entry, resource, 0)));
        const double priority = entry->get_priority().calc;
        const std::string warn = priority > C_Overdue ? DiaryDisplay::C_ColourOverdue
                                 : priority > C_Urgent ? DiaryDisplay::C_ColourUrgent
                                                       : std::string();
        table->set_cell(entry->get_summary(), 1, i, warn, "", false, !line.is_active());
        table->set_cell(DiaryDisplay::date_text(line.get_date()), 2, i);
        table->set_cell(DiaryDisplay::time_text(line.get_duration()), 3, i);
    }
    table->set_alignment(3, ZBMarkupTable::E_AlignRight);
    page.append(table);
}

int ZBDSummaryPage::get_due_today(Diary& diary, const DiaryDisplay& display, int resource, ZBMarkupPage& page)
{
    const ZBDate now = ZBDateUtils::now();
    const ZBDate todayStart = day_start(now, 0);
    const ZBDate endToday = day_start(now, 1);
    const ZBDateSlot today(todayStart, endToday);
    const ZBDateSlot tomorrow(endToday, day_start(now, 2));
    ZBDate soon = now + ZBDuration(C_SoonSeconds);
    if (endToday < soon)
        soon = endToday;

    const bool multiUser = diary.is_multi_user();
    const Resource* owner = resource >= 0 ? diary.get_resource_by_id(resource) : nullptr;
    if (!owner && !multiUser && diary.get_nresources() > 0)
        owner = diary.get_resource_by_index(0);
    const std::string name = owner ? owner->get_username() : std::string("Everyone");

    m_set.clear();
    m_set.emplace_back("Complete these today...");
    m_set.emplace_back(multiUser ? "Today for " + name : std::string("Today"));
    m_set.emplace_back("Once you are under control...");
    m_set.emplace_back("Tasks for tomorrow...");
    m_set.emplace_back("Tasks " + name + " Future Work");
    m_timeTypes.clear();
    for (int i = 0; i < diary.get_ntimetypes(); ++i)
        if (const TimeType* type = diary.get_timetype_by_index(i))
            m_timeTypes.emplace_back(diary, type->get_id(), type->get_name());

    // Counting and placing follow the database's own order of objects.
    m_counts = Counts();
    ZBDuration preTime;
    std::vector<DiaryEntry*> placed[C_NPlacements];
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(diary.get_object_by_index(i));
        if (!entry || entry->is_deleted())
            continue;
        // In a diary of one person every entry is that person's.
        if (multiUser && resource >= 0 && entry->get_props().get_resource_calc() != resource)
            continue;
        if (!is_leaf(*entry, 'T') && !is_leaf(*entry, 'A'))
            continue;
        m_counts.count(entry->get_priority().calc);
        if (entry->get_derived_entrytype() != 'T' || entry->is_complete())
            continue;
        const E_Placement where = place(*entry, today, tomorrow);
        // Work that should have been done already joins today's need, unless
        // the whole of the task is counted there anyway.
        if (where != E_PlaceCompleteToday)
            preTime += entry->get_plan().get_pretime();
        placed[where].push_back(entry);
    }
    const int order = diary.get_settings().get_summary_sortorder();
    for (int p = 0; p < C_NPlacements; ++p) {
        sort_entries(placed[p], order == DiaryEntry::E_SortApplication ? DiaryEntry::E_SortDueDate : order);
        // What is booked today counts its time today; the rest its remaining work.
        const ZBDateSlot span = p == E_PlaceToday ? today : ZBDateSlot();
        for (DiaryEntry* entry : placed[p]) {
            m_set[size_t(p)].add(*entry, span, ZBDate(ZBDate::E_Blank), 0);
            if (p <= E_PlaceToday) {
                const int typeId = entry->get_props().get_timetype_calc();
                for (TimeTypeInfo& info : m_timeTypes)
                    if (info.get_timetype() == typeId)
                        info.add_allocated(m_set[size_t(p)].get_line(m_set[size_t(p)].size() - 1).get_duration());
            }
        }
    }

    // This week's and next week's appointments.
    m_week.clear();
    ZBCalendar calendar;
    const ZBDate weekStart = todayStart;
    const ZBDate nextWeek = weekStart + ZBDuration(std::int64_t(C_WeekDays) * ZBDate::C_DaySecs);
    const ZBDate weekAfter = nextWeek + ZBDuration(std::int64_t(C_WeekDays) * ZBDate::C_DaySecs);
    m_week.emplace_back("Appointments for this week");
    m_week.emplace_back("Appointments for next week");
    if (iszbwarn(get_week_events(diary, calendar, m_week[0], ZBDateSlot(weekStart, nextWeek))) ||
        iszbwarn(get_week_events(diary, calendar, m_week[1], ZBDateSlot(nextWeek, weekAfter))))
        return zbpass(ZBLOC);

    const ZBDateSlot rest(now, endToday);
    m_have = ZBDuration();
    for (TimeTypeInfo& info : m_timeTypes)
        m_have += info.available(rest, owner ? owner->get_id() : resource);
    m_left = now < endToday ? endToday - now : ZBDuration();
    m_need = m_set[E_PlaceCompleteToday].get_duration() + m_set[E_PlaceToday].get_duration() + preTime;
    m_score = score(m_need, m_have, m_left);
    m_headline = headline(m_counts, m_score, m_need, m_have);

    page.set_title("Summary");
    page.add_paragraph(m_headline.m_headline, 1);
    page.add_paragraph(m_headline.m_second);
    const int filled = int(m_headline.m_meter / 10.0 + 0.5);
    ZBMarkupParagraph* meter = page.add_paragraph();
    ZBMarkupTextElement* bar =
        meter->add_text("[" + std::string(size_t(filled), '#') + std::string(size_t(10 - filled), '.') + "] " +
                        printf_text("%.0f", m_headline.m_meter));
    bar->set_foreground(m_headline.m_meter < 30.0   ? DiaryDisplay::C_ColourOverdue
                        : m_headline.m_meter < 50.0 ? DiaryDisplay::C_ColourLate
                                                    : DiaryDisplay::C_ColourAvailable);
    if (m_counts.any()) {
        char text[160];
        std::snprintf(text, sizeof text, "Overdue: %d  Urgent: %d  Behind plan: %d  Delayed: %d", m_counts.m_overdue,
                      m_counts.m_urgent, m_counts.m_behind, m_counts.m_delayed);
        page.add_paragraph(text);
    }
    for (int p = 0; p < C_NPlacements; ++p) {
        const ZBDuration available = p <= E_PlaceToday ? m_have : ZBDuration(m_set[size_t(p)].get_duration());
        write_set(m_set[size_t(p)], display, resource,
                  page, p <= E_PlaceToday ? colour_of(EntrySet::colour_for(m_need, available)) : std::string());
    }
    for (const EntrySet& set : m_week)
        write_set(set, display, resource, page, std::string());
    (void)soon;
    return ZBErrC_ok;
}

int ZBDSummaryPage::get_week_events(Diary& diary, ZBCalendar& calendar, EntrySet& set, const ZBDateSlot& slot)
{
    std::vector<DiaryEntry*> events;
    for (DiaryEntry* entry : diary.get_display_list()) {
        if (!is_leaf(*entry, 'A') || entry->is_complete())
            continue;
        const ZBDateSlot& when = entry->get_etime().get_calc_date();
        if (when.m_start.is_ok() && EntryPlan::in_slot(when, slot))
            events.push_back(entry);
    }
    sort_entries(events, DiaryEntry::E_SortStartDate);
    for (DiaryEntry* entry : events) {
        set.add(*entry, ZBDateSlot(), ZBDate(ZBDate::E_Blank), EntrySet::C_AddNoTotal);
        ZBCalendarEntry* item =
            new ZBCalendarEntry(ZBId(entry->get_id()), entry->get_etime().get_calc_date(), entry->get_summary());
        item->set_group(DiaryDisplay::get_group_number(*entry, 0));
        if (iszbwarn(calendar.add_entry(item)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int ZBDSummaryPage::get_planning(Diary& diary, const DiaryDisplay& display, int resource, const ZBDate& from,
                                 int days, ZBMarkupPage& page)
{
    page.set_title("Planning");
    const ZBDate first = day_start(from, 0);
    const ZBDate last = day_start(from, days);
    const ZBDateSlot period(first, last);
    const bool multiUser = diary.is_multi_user();
    const int owner = resource >= 0 ? resource : (diary.get_nresources() ? diary.get_default_resource_id() : -1);

    std::vector<DiaryEntry*> work;
    for (DiaryEntry* entry : diary.get_display_list()) {
        if (entry->get_nchildren() != 0 || entry->is_complete())
            continue;
        const char type = entry->get_derived_entrytype();
        if (type != 'T' && type != 'A')
            continue;
        if (multiUser && resource >= 0 && entry->get_props().get_resource_calc() != resource)
            continue;
        work.push_back(entry);
    }
    sort_entries(work, DiaryEntry::E_SortDueDate);

    m_timeTypes.clear();
    for (int i = 0; i < diary.get_ntimetypes(); ++i)
        if (const TimeType* type = diary.get_timetype_by_index(i))
            m_timeTypes.emplace_back(diary, type->get_id(), type->get_name());
    // An appointment that blocks time, or keeps no type of the user's, is
    // shown with the first time type rather than lost.
    auto type_of = [this](const DiaryEntry& entry) {
        const int id = entry.get_props().get_timetype_calc();
        for (const TimeTypeInfo& info : m_timeTypes)
            if (info.get_timetype() == id)
                return id;
        return m_timeTypes.empty() ? id : m_timeTypes.front().get_timetype();
    };
    for (TimeTypeInfo& info : m_timeTypes) {
        std::vector<DiaryEntry*> mine;
        for (DiaryEntry* entry : work)
            if (type_of(*entry) == info.get_timetype())
                mine.push_back(entry);
        const ZBDuration total = info.available(period, owner);
        if (mine.empty() && total.is_zero())
            continue;
        page.add_paragraph(info.get_name() + " time (" + DiaryDisplay::time_text(total) + " available)", 1);
        std::vector<bool> shown(mine.size(), false);
        for (int d = 0; d < days; ++d) {
            const ZBDateSlot day(day_start(from, d), day_start(from, d + 1));
            const std::string dayName = day.m_start.to_string("%a %Y-%m-%d");
            TimeTypeInfo dayInfo(diary, info.get_timetype(), info.get_name());
            const ZBDuration available = dayInfo.available(day, owner);
            EntrySet planned("Planned for " + dayName);
            EntrySet due("Due for " + dayName);
            EntrySet repeating("Repeating for " + dayName);
            EntrySet scheduled("Scheduled for " + dayName);
            EntrySet suggested("Suggested for " + dayName);
            EntrySet appointments("Appointments");
            for (size_t k = 0; k < mine.size(); ++k) {
                DiaryEntry& entry = *mine[k];
                if (entry.get_derived_entrytype() == 'A') {
                    const ZBDateSlot& when = entry.get_etime().get_calc_date();
                    if (when.m_start.is_ok() && EntryPlan::in_slot(when, day)) {
                        appointments.add(entry, ZBDateSlot(), ZBDate(ZBDate::E_Blank), EntrySet::C_AddNoTotal);
                        shown[k] = true;
                    }
                    continue;
                }
                const EntryPlan& plan = entry.get_plan();
                if (plan.get_planned().query_range(day, -1) > 0) {
                    planned.add(entry, day, ZBDate(ZBDate::E_Blank), 0);
                    shown[k] = true;
                }
                if (plan.get_predicted().query_range(day, -1) > 0) {
                    // Work that a due date asks for is scheduled; the rest is only a suggestion.
                    (entry.get_due().calc.is_ok() ? scheduled : suggested)
                        .add(entry, day, ZBDate(ZBDate::E_Blank), 0);
                    shown[k] = true;
                }
                if (within(entry.get_due().calc, day)) {
                    (entry.get_repeat().is_repeating() ? repeating : due)
                        .add(entry, ZBDateSlot(), ZBDate(ZBDate::E_Blank), EntrySet::C_AddNoTotal);
                    shown[k] = true;
                }
            }
            EntrySet dayset(dayName);
            for (EntrySet* part : {&planned, &due, &repeating, &scheduled, &suggested, &appointments})
                if (part->size() > 0)
                    dayset.add_set(*part, available, true);
            if (dayset.get_nsubsets() == 0)
                continue;
            page.add_paragraph(dayName + " (" + DiaryDisplay::time_text(available) + " available)", 2);
            for (int s = 0; s < dayset.get_nsubsets(); ++s) {
                const EntrySet* part = dayset.get_subset(s);
                write_set(*part, display, resource, page, colour_of(part->get_durcolour()));
            }
        }
        EntrySet future("Future tasks");
        for (size_t k = 0; k < mine.size(); ++k)
            if (!shown[k] && mine[k]->get_derived_entrytype() == 'T')
                future.add(*mine[k], ZBDateSlot(), ZBDate(ZBDate::E_Blank), 0);
        write_set(future, display, resource, page, std::string());
    }
    if (page.get_nelements() == 0)
        page.add_paragraph("Nothing is planned.");
    return ZBErrC_ok;
}

} // namespace Tervalon
