#include "AppTervalonDiary/cli/cmdcalendar.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <ostream>

namespace Tervalon {

namespace {
const char* const C_Edits[] = {"daytype", "weekday", "except", "unexcept"};
const char* const C_DayNames[] = {"monday", "tuesday", "wednesday", "thursday", "friday", "saturday", "sunday"};

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(std::tolower(c)); });
    return text;
}

// "Mon", "monday", "TUE": 0 for Monday; -1 for anything else.
int read_weekday(const std::string& text)
{
    const std::string word = lower(text);
    if (word.size() < 2)
        return -1;
    for (int day = 0; day < 7; ++day)
        if (std::string(C_DayNames[day]).compare(0, word.size(), word) == 0)
            return day;
    return -1;
}

// "9", "9:30", "17:45:10", "24:00" as seconds from midnight; -1 when not a time of day.
int read_clock(const std::string& text)
{
    int parts[3] = {0, 0, 0};
    int count = 0;
    size_t at = 0;
    while (at <= text.size() && count < 3) {
        size_t end = text.find(':', at);
        const std::string part = text.substr(at, end == std::string::npos ? std::string::npos : end - at);
        if (part.empty() || part.size() > 2 || part.find_first_not_of("0123456789") != std::string::npos)
            return -1;
        parts[count++] = std::atoi(part.c_str());
        if (end == std::string::npos)
            break;
        at = end + 1;
        if (count == 3)
            return -1;
    }
    if (parts[1] > 59 || parts[2] > 59)
        return -1;
    const int seconds = parts[0] * 3600 + parts[1] * 60 + parts[2];
    return seconds > ZBDate::C_DaySecs ? -1 : seconds;
}

std::string hours_text(const ZBDuration& duration)
{
    const std::int64_t seconds = duration.get_as_seconds();
    char text[32];
    std::snprintf(text, sizeof(text), "%lld:%02lld", static_cast<long long>(seconds / 3600),
                  static_cast<long long>(seconds / 60 % 60));
    return text;
}

bool is_edit(const std::string& word)
{
    for (const char* edit : C_Edits)
        if (word == edit)
            return true;
    return false;
}

} // namespace

int CmdCalendar::run(CliContext& context)
{
    // The file is the first word; an edit names itself second.
    m_editing = context.args.size() > 1 && is_edit(context.args[1]);
    return CliFileCommand::run(context);
}

int CmdCalendar::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)))
        return report_failure(context, zberrorvalue());
    if (!m_editing)
        return show(context, *diary, args);

    CliOptions options;
    std::string error;
    if (!options.parse(args, {"resource", "days", "comment"}, error))
        return usage_error(context, *this, error);
    // In a diary of one person that person's calendar is the calendar; in a
    // diary of several the default calendar is what they share.
    ResourceCalendar* calendar = &diary->edit_calendar();
    ZBDBObject* owner = diary;
    if (!options.has("resource") && !diary->is_multi_user() && diary->get_nresources() > 0) {
        calendar = &diary->get_resource_by_index(0)->edit_calendar();
        owner = diary->get_resource_by_index(0);
    } else if (options.has("resource")) {
        Resource* resource = diary->get_resource_by_name(options.get("resource"));
        if (!resource) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.", options.get("resource").c_str());
            return report_failure(context, zberrorvalue());
        }
        calendar = &resource->edit_calendar();
        owner = resource;
    }
    std::vector<std::string> words(options.positional().begin() + 1, options.positional().end());
    const std::string& edit = options.positional().front();
    int status = 0;
    if (edit == "daytype")
        status = edit_daytype(context, *diary, *calendar, words);
    else if (edit == "weekday")
        status = edit_weekday(context, *diary, *calendar, words);
    else if (edit == "except")
        status = edit_except(context, *diary, *calendar, words, options.get("days"), options.get("comment"));
    else
        status = edit_unexcept(context, *diary, *calendar, words);
    if (status != 0)
        return status;
    std::string fault;
    if (!diary->validate_calendars(fault)) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s", fault.c_str());
        return report_failure(context, zberrorvalue());
    }
    owner->mark_changed(ZBLOC, true);
    diary->force_recalculate(true, false, false, true);
    if (iszbwarn(diary->complete_operation("Edit Calendar")))
        return report_failure(context, zberrorvalue());
    return 0;
}

int CmdCalendar::show(CliContext& context, Diary& diary, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"resource", "from", "days"}, error))
        return usage_error(context, *this, error);
    if (!options.positional().empty())
        return usage_error(context, *this, "unexpected " + options.positional().front());
    Resource* resource = diary.get_nresources() ? diary.get_resource_by_index(0) : nullptr;
    if (options.has("resource"))
        resource = diary.get_resource_by_name(options.get("resource"));
    if (!resource) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no resource called %s.", options.get("resource").c_str());
        return report_failure(context, zberrorvalue());
    }
    ZBDate from = ZBDateUtils::now();
    if (options.has("from") && iszbwarn(CliDiary::read_date(options.get("from"), from)))
        return report_failure(context, zberrorvalue());
    double days = 7;
    if (options.has("days") && (iszbwarn(CliDiary::read_number(options.get("days"), days)) || days < 1 || days > 3660)) {
        if (!iszbwarn(zberrorvalue()))
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The number of days must be from 1 to 3660.");
        return report_failure(context, zberrorvalue());
    }
    const ZBDate start = CliDiary::day_start(from);
    ZBDateDetails last(start, zblocale().get_timezone());
    last.m_dayMonth += int(days) - 1;
    last.recalculate();
    const ZBDate end = CliDiary::day_end(last.get_date(last.get_timezone()));
    if (iszbwarn(diary.recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary.allocate_times(*resource, start, end)))
        return report_failure(context, zberrorvalue());

    std::string text = "Calendar of " + resource->get_username() + " from " + start.to_string("%a %Y-%m-%d") +
                       " to " + end.to_string("%a %Y-%m-%d") + "\n";
    const ZBDateSetGroup& group = resource->get_avail_time();
    for (int i = 0; i < group.get_ndatesets(); ++i) {
        const ZBDateSet* set = group.get_dateset_by_index(i);
        text += group.get_dateset_name_by_index(i) + ": " + hours_text(set->duration()) + "\n";
        for (int k = 0; k < set->size(); ++k) {
            const ZBDateSlot& slot = *(*set)[k];
            text += "  " + slot.m_start.to_string("%a %Y-%m-%d %H:%M") + " - " +
                    slot.m_end.to_string(slot.m_end.to_string("%Y-%m-%d") == slot.m_start.to_string("%Y-%m-%d")
                                             ? "%H:%M"
                                             : "%a %Y-%m-%d %H:%M") +
                    "  " + hours_text(slot.get_duration()) + "\n";
        }
    }
    if (group.get_ndatesets() == 0)
        text += "No available time.\n";
    std::string working;
    std::string off;
    ZBDateDetails day(start, zblocale().get_timezone());
    for (int n = 0; n < int(days); ++n) {
        const std::string name = day.get_date(day.get_timezone()).to_string("%a %Y-%m-%d");
        std::string& list = resource->get_workday_list().is_workday(day, -1) ? working : off;
        list += (list.empty() ? "" : ", ") + name;
        day.m_dayMonth += 1;
        day.recalculate();
    }
    text += "Working days: " + (working.empty() ? std::string("none") : working) + "\n";
    text += "Days off: " + (off.empty() ? std::string("none") : off) + "\n";
    context.out << text;
    context.out.flush();
    return 0;
}

int CmdCalendar::edit_daytype(CliContext& context, Diary& diary, ResourceCalendar& calendar,
                              const std::vector<std::string>& words)
{
    if (words.empty())
        return usage_error(context, *this, "daytype needs a name");
    DayType fresh(words[0]);
    for (size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        const size_t dash = word.find('-');
        const size_t equals = word.find('=');
        if (dash == std::string::npos || equals == std::string::npos || equals < dash) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A time slot is written HH:MM-HH:MM=TIMETYPE, not %s.", word.c_str());
            return report_failure(context, zberrorvalue());
        }
        const int start = read_clock(word.substr(0, dash));
        const int end = read_clock(word.substr(dash + 1, equals - dash - 1));
        if (start < 0 || end < 0 || end <= start) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid time slot: %s", word.c_str());
            return report_failure(context, zberrorvalue());
        }
        const std::string typeName = word.substr(equals + 1);
        const TimeType* type = diary.get_timetype_by_name(typeName);
        if (!type) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no time type called %s.", typeName.c_str());
            return report_failure(context, zberrorvalue());
        }
        fresh.add_entry(new DayTypeEntry(start, end, type->get_id()));
    }
    std::string fault;
    if (!fresh.validate(fault)) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s", fault.c_str());
        return report_failure(context, zberrorvalue());
    }
    if (DayType* existing = calendar.edit_daytype_by_name(words[0])) {
        existing->clear_entries();
        existing->import(fresh);
        context.out << "Day type " << words[0] << " replaced." << std::endl;
    } else {
        calendar.add_daytype(new DayType(fresh));
        context.out << "Day type " << words[0] << " added." << std::endl;
    }
    return 0;
}

int CmdCalendar::edit_weekday(CliContext& context, Diary&, ResourceCalendar& calendar,
                              const std::vector<std::string>& words)
{
    if (words.size() != 2)
        return usage_error(context, *this, "weekday needs a day and a day type");
    const int weekday = read_weekday(words[0]);
    if (weekday < 0) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not a day of the week: %s", words[0].c_str());
        return report_failure(context, zberrorvalue());
    }
    // "default" hands the day back to the diary's default calendar.
    int id = ResourceCalendar::C_DefaultStdDay;
    if (lower(words[1]) != "default") {
        const DayType* type = calendar.get_daytype_by_name(words[1]);
        if (!type) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no day type called %s.", words[1].c_str());
            return report_failure(context, zberrorvalue());
        }
        id = type->get_id();
    }
    calendar.set_standard_day(weekday, id);
    return 0;
}

int CmdCalendar::edit_except(CliContext& context, Diary&, ResourceCalendar& calendar,
                             const std::vector<std::string>& words, const std::string& days, const std::string& comment)
{
    if (words.size() != 3)
        return usage_error(context, *this, "except needs FROM, TO and a day type");
    ZBDate from;
    ZBDate to;
    if (iszbwarn(CliDiary::read_date(words[0], from)) || iszbwarn(CliDiary::read_date(words[1], to)))
        return report_failure(context, zberrorvalue());
    if (to < from) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The exception ends before it starts.");
        return report_failure(context, zberrorvalue());
    }
    const DayType* type = calendar.get_daytype_by_name(words[2]);
    if (!type) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no day type called %s.", words[2].c_str());
        return report_failure(context, zberrorvalue());
    }
    ResourceCalEntry* entry = new ResourceCalEntry();
    // Whole days: from the start of the first to the last second of the last.
    entry->set_date(ZBDateSlot(CliDiary::day_start(from), CliDiary::day_end(to)));
    entry->set_daytype(type->get_id());
    entry->set_comment(comment);
    if (!days.empty()) {
        for (int day = 0; day < 7; ++day)
            entry->set_day_applic(day, false);
        size_t at = 0;
        while (at <= days.size()) {
            const size_t end = days.find(',', at);
            const std::string word = days.substr(at, end == std::string::npos ? std::string::npos : end - at);
            const int day = read_weekday(word);
            if (day < 0) {
                delete entry;
                zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not a day of the week: %s", word.c_str());
                return report_failure(context, zberrorvalue());
            }
            entry->set_day_applic(day, true);
            if (end == std::string::npos)
                break;
            at = end + 1;
        }
    }
    calendar.add_entry(entry);
    return 0;
}

int CmdCalendar::edit_unexcept(CliContext& context, Diary&, ResourceCalendar& calendar,
                               const std::vector<std::string>& words)
{
    if (words.size() != 2)
        return usage_error(context, *this, "unexcept needs FROM and TO");
    ZBDate from;
    ZBDate to;
    if (iszbwarn(CliDiary::read_date(words[0], from)) || iszbwarn(CliDiary::read_date(words[1], to)))
        return report_failure(context, zberrorvalue());
    const ZBDateSlot range(CliDiary::day_start(from), CliDiary::day_end(to));
    int removed = 0;
    for (int i = calendar.get_nentries() - 1; i >= 0; --i)
        if (ZBDateSlot::intersects(calendar.get_entry_by_index(i)->get_date(), range)) {
            calendar.delete_entry(i);
            ++removed;
        }
    if (removed == 0) {
        zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no exception between %s and %s.", words[0].c_str(),
                   words[1].c_str());
        return report_failure(context, zberrorvalue());
    }
    context.out << removed << (removed == 1 ? " exception" : " exceptions") << " removed." << std::endl;
    return 0;
}

} // namespace Tervalon
