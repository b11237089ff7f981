#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <cstdlib>
#include <cstring>

namespace Tervalon {

int CliDiary::get_diary(ZBDatabase& db, Diary*& out)
{
    out = dynamic_cast<Diary*>(&db);
    return out ? ZBErrC_ok : zberror(ZBErrC_DynamicCast, ZBLOC, "Dynamic cast to Diary failed.");
}

int CliDiary::get_entry(Diary& diary, const std::string& idText, DiaryEntry*& out)
{
    char* end = nullptr;
    long id = std::strtol(idText.c_str(), &end, 10);
    out = end && *end == 0 && !idText.empty() ? diary.get_entry_id(int(id)) : nullptr;
    if (!out)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no entry with the id %s.", idText.c_str());
    return ZBErrC_ok;
}

int CliDiary::read_date(const std::string& text, ZBDate& out)
{
    const ZBDate now = ZBDateUtils::now();
    if (iszbwarn(ZBDateParser::read_checked(text, &now, nullptr, out)))
        return zbpass(ZBLOC);
    if (out.is_invalid())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid date value: %s", text.c_str());
    return ZBErrC_ok;
}

int CliDiary::read_duration(const std::string& text, ZBDuration& out)
{
    // A length a person types holds at least one number; "a while" would
    // otherwise read silently as no time at all.
    if (text.find_first_of("0123456789") == std::string::npos)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid duration: %s", text.c_str());
    if (iszbwarn(out.from_string(text)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

ZBDate CliDiary::day_start(const ZBDate& date)
{
    return DayType::clock_time(ZBDateDetails(date, zblocale().get_timezone()), 0);
}

ZBDate CliDiary::day_end(const ZBDate& date)
{
    return DayType::clock_time(ZBDateDetails(date, zblocale().get_timezone()), ZBDate::C_DaySecs - 1);
}

int CliDiary::read_number(const std::string& text, double& out)
{
    char* end = nullptr;
    out = std::strtod(text.c_str(), &end);
    if (text.empty() || !end || *end)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not a number: %s", text.c_str());
    return ZBErrC_ok;
}

int CliDiary::set_field(Diary& diary, DiaryEntry& entry, const std::string& field, const std::string& value)
{
    (void)diary;
    if (field == "title") {
        entry.set_summary(value);
    } else if (field == "details") {
        entry.set_text(value);
    } else if (field == "type") {
        if (value.size() != 1 || !std::strchr("TAJPDLO", value[0]))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Unknown entry type: %s", value.c_str());
        entry.set_entrytype(value[0]);
    } else if (field == "due" || field == "start") {
        ZBDate date;
        if (iszbwarn(read_date(value, date)))
            return zbpass(ZBLOC);
        // Appointments and notes live in their date slot; every other entry
        // (a folder of tasks above all) has a due and a start-after.
        const bool slotted = entry.get_entrytype() == 'A' || entry.get_entrytype() == 'J';
        if (field == "due" && !slotted)
            entry.edit_due().set_orig(date);
        else if (field == "start" && !slotted)
            entry.edit_start().set_orig(date);
        else if (field == "start") {
            ZBDateSlot slot = entry.get_time().orig;
            ZBDuration length = slot.m_start.is_ok() && slot.m_end.is_ok() ? slot.get_duration() : ZBDuration();
            entry.edit_time().set_orig(ZBDateSlot(date, date + length));
        } else {
            ZBDateSlot slot = entry.get_time().orig;
            entry.edit_time().set_orig(ZBDateSlot(slot.m_start.is_ok() ? slot.m_start : date, date, true));
        }
    } else if (field == "duration") {
        ZBDuration duration;
        if (iszbwarn(read_duration(value, duration)))
            return zbpass(ZBLOC);
        if (entry.get_entrytype() == 'T') {
            ZBProgress progress = entry.get_duration().orig;
            progress.set_duration(duration);
            entry.edit_duration().set_orig(progress);
        } else {
            ZBDateSlot slot = entry.get_time().orig;
            if (!slot.m_start.is_ok())
                return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Give the start before the duration of %s.",
                                  entry.get_summary().c_str());
            entry.edit_time().set_orig(ZBDateSlot(slot.m_start, slot.m_start + duration));
        }
    } else if (field == "priority") {
        double priority = 0.0;
        if (iszbwarn(read_number(value, priority)))
            return zbpass(ZBLOC);
        entry.edit_priority().set_orig(priority);
    } else if (field == "completion") {
        double percent = 0.0;
        if (iszbwarn(read_number(value, percent)) || iszbwarn(entry.set_completion(percent, false)))
            return zbpass(ZBLOC);
    } else if (field == "repeat") {
        ZBDateRepeat rule;
        if (iszbwarn(rule.from_string(value)))
            return zbpass(ZBLOC);
        entry.edit_repeat() = rule;
    } else if (field == "commands") {
        // One command a line, or lines joined by ';'; checked before it is kept.
        if (iszbwarn(EntryCommand::validate(value)))
            return zbpass(ZBLOC);
        entry.edit_command().set_expanded_command(value);
    } else {
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Unknown field: %s", field.c_str());
    }
    entry.mark_changed(ZBLOC, true);
    entry.clear_predicted(true);
    return ZBErrC_ok;
}

} // namespace Tervalon
