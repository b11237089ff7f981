#include "AppTervalonDiary/cli/cmdplan.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <ostream>

namespace Tervalon {

namespace {
QString qstr(const std::string& text)
{
    return QString::fromStdString(text);
}

QJsonValue json_date(const ZBDate& date)
{
    return date.is_ok() ? QJsonValue(qstr(date.to_iso())) : QJsonValue(QJsonValue::Null);
}

QJsonArray json_ids(const std::vector<int>& ids)
{
    QJsonArray array;
    for (int id : ids)
        array.append(id);
    return array;
}

std::string resource_name(const Diary& diary, int id)
{
    const Resource* resource = diary.get_resource_by_id(id);
    return resource ? resource->get_username() : Resource::reserved_name(id);
}

std::string timetype_name(const Diary& diary, int id)
{
    switch (id) {
    case TimeType::C_BlockingTimeTypeId:
        return "<Blocking>";
    case TimeType::C_FreeTimeTypeId:
        return "<Free>";
    default:
        return diary.get_timetype_by_id(id) ? diary.get_timetype_name_by_id(id) : std::string();
    }
}

QJsonArray json_sessions(const ZBDateSet& set)
{
    QJsonArray array;
    for (int i = 0; i < set.size(); ++i) {
        QJsonArray pair;
        pair.append(json_date(set[i]->m_start));
        pair.append(json_date(set[i]->m_end));
        array.append(pair);
    }
    return array;
}

// What the planner made of the entry.
void json_plan(const DiaryEntry& entry, QJsonObject& object)
{
    const EntryPlan& plan = entry.get_plan();
    const ZBDateSet& predicted = plan.get_predicted();
    object["predicted"] = json_sessions(predicted);
    object["planned"] = json_sessions(plan.get_planned());
    object["idealStart"] = json_date(plan.get_plannedstart());
    object["mustStart"] = json_date(entry.get_muststart());
    object["predictedStart"] = json_date(predicted.empty() ? ZBDate(ZBDate::E_Blank) : predicted.start());
    object["predictedEnd"] = json_date(predicted.empty() ? ZBDate(ZBDate::E_Blank) : predicted.end());
    object["preTime"] = double(plan.get_pretime().get_as_seconds());
    QJsonArray problems;
    for (const ZBDate& date : plan.get_problem_dates())
        problems.append(json_date(date));
    object["problemDates"] = problems;
    QJsonArray clashes;
    for (const std::string& title : plan.get_clash())
        clashes.append(qstr(title));
    object["clashes"] = clashes;
    object["likelyOverdue"] = plan.could_overrun();
    object["isPlanned"] = entry.is_planned();
}

// The time spent, and how the entry stands against its baseline (null without one).
void json_spent(const DiaryEntry& entry, QJsonObject& object)
{
    object["spent"] = double(entry.get_spent().get_time_spent().get_as_seconds());
    const EntryBaseline& baseline = entry.get_baseline();
    if (!baseline.is_set()) {
        object["baseline"] = QJsonValue(QJsonValue::Null);
        return;
    }
    QJsonObject grade;
    grade["duration"] = double(baseline.get_calc_duration().get_as_seconds());
    grade["start"] = json_date(baseline.get_calc_startend().m_start);
    grade["end"] = json_date(baseline.get_calc_startend().m_end);
    grade["budgetState"] = baseline.get_state();
    grade["timeState"] = baseline.get_time_state();
    grade["text"] = qstr(baseline.get_text());
    grade["timeText"] = qstr(baseline.get_time_text());
    object["baseline"] = grade;
}

QJsonObject json_entry(const Diary& diary, const DiaryEntry& entry)
{
    const EntryPriority& priority = entry.get_priority_facet();
    QJsonObject object;
    object["id"] = entry.get_id();
    object["type"] = QString(QChar(entry.get_derived_entrytype()));
    object["title"] = qstr(entry.get_summary());
    object["complete"] = entry.get_duration().orig.get_completion();
    object["resource"] = qstr(resource_name(diary, entry.get_props().get_resource_calc()));
    object["timeType"] = qstr(timetype_name(diary, entry.get_props().get_timetype_calc()));
    object["startAfter"] = json_date(entry.get_start().calc);
    object["startSource"] = entry.get_startafter_id();
    object["due"] = json_date(entry.get_due().calc);
    object["dueSource"] = entry.get_due_id();
    object["duration"] = double(entry.get_duration().calc.get_duration().get_as_seconds());
    object["remaining"] = double(entry.get_duration().calc.get_remaining().get_as_seconds());
    object["priority"] = entry.get_priority().calc;
    object["nonDuePriority"] = priority.get_non_due_priority();
    object["prioritySource"] = entry.get_priority_id();
    object["active"] = entry.is_active();
    object["dependsOn"] = json_ids(entry.get_depend().get_full_depends());
    object["dependedOnBy"] = json_ids(entry.get_depend().get_depend_on_this());
    object["alertLevel"] = entry.get_alert_state();
    QJsonArray notifications;
    for (const ZBNotifyItem& item : entry.get_props().get_notifications()) {
        if (item.get_date().is_ok())
            continue;
        QJsonObject note;
        note["text"] = qstr(item.get_text());
        note["code"] = item.get_scheme();
        note["priority"] = item.get_priority();
        notifications.append(note);
    }
    object["notifications"] = notifications;
    json_plan(entry, object);
    json_spent(entry, object);
    return object;
}

// The running session of the diary, or null.
QJsonValue json_session(const Diary& diary)
{
    const DiaryEntry* entry = diary.get_session_entry();
    if (!entry)
        return QJsonValue(QJsonValue::Null);
    const ZBDateSetEntry& running = entry->get_spent().get_current_session();
    QJsonObject session;
    session["id"] = entry->get_id();
    session["start"] = json_date(running.m_start);
    session["resource"] = qstr(resource_name(diary, running.m_type));
    return session;
}

std::string text_date(const ZBDate& date)
{
    return date.is_ok() ? date.to_string("%Y-%m-%d %H:%M") : std::string("-");
}

std::string text_entry(const Diary& diary, const DiaryEntry& entry)
{
    char line[512];
    std::snprintf(line, sizeof line, "%5d %c %-24.24s %3.0f%% %-10.10s %-10.10s %-16s %-16s %7s %7s %12.6f L%d",
                  entry.get_id(), entry.get_derived_entrytype(), entry.get_summary().c_str(),
                  entry.get_duration().orig.get_completion(),
                  resource_name(diary, entry.get_props().get_resource_calc()).c_str(),
                  timetype_name(diary, entry.get_props().get_timetype_calc()).c_str(),
                  text_date(entry.get_start().calc).c_str(), text_date(entry.get_due().calc).c_str(),
                  entry.get_duration().calc.get_duration().to_string().c_str(),
                  entry.get_duration().calc.get_remaining().to_string().c_str(), entry.get_priority().calc,
                  entry.get_alert_state());
    std::string text = line;
    if (!entry.is_active())
        text += " inactive";
    for (const ZBNotifyItem& item : entry.get_props().get_notifications())
        if (!item.get_date().is_ok())
            text += " [" + item.get_text() + "]";
    text += "\n";
    // An open task also shows where its work was booked.
    const ZBDateSet& predicted = entry.get_plan().get_predicted();
    if (entry.get_derived_entrytype() == 'T' && entry.get_nchildren() == 0 && !entry.is_complete()) {
        constexpr int shown = 12;
        std::string sessions;
        for (int i = 0; i < predicted.size() && i < shown; ++i)
            sessions += (i ? ", " : "") + text_date(predicted[i]->m_start) + " - "
                        + predicted[i]->m_end.to_string("%H:%M");
        if (predicted.size() > shown)
            sessions += ", ... (" + std::to_string(predicted.size() - shown) + " more)";
        text += "        Sessions: " + (sessions.empty() ? std::string("none") : sessions)
                + "; ends " + text_date(predicted.empty() ? ZBDate(ZBDate::E_Blank) : predicted.end()) + "\n";
    }
    return text;
}
} // namespace

int CmdPlan::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    std::string now;
    bool json = false;
    std::string error;
    if (!CliPlan::parse(args, true, now, json, error))
        return usage_error(context, *this, error);
    Diary* diary = nullptr;
    const int result = CliPlan::recalculate(db, now, diary);
    if (iszbwarn(result))
        return report_failure(context, result);
    const std::vector<DiaryEntry*> entries = diary->get_display_list();
    if (json) {
        QJsonObject root;
        root["now"] = qstr(ZBDateUtils::now().to_iso());
        const ZBDateSlot range = diary->get_settings().get_lookahead_date(false);
        QJsonObject span;
        span["start"] = json_date(range.m_start);
        span["end"] = json_date(range.m_end);
        root["range"] = span;
        QJsonArray array;
        for (const DiaryEntry* entry : entries)
            array.append(json_entry(*diary, *entry));
        root["entries"] = array;
        root["session"] = json_session(*diary);
        QJsonArray checker;
        for (int i = 0; i < diary->get_checker().get_nitems(); ++i) {
            const ZBDBCheckItem* item = diary->get_checker().get_item_by_index(i);
            std::string code = ZBError::get_code(item->get_error_code()).m_name;
            if (code.compare(0, 7, "ZBErrC_") == 0)
                code.erase(0, 7);
            QJsonObject check;
            check["id"] = item->get_id();
            check["code"] = qstr(code);
            check["text"] = qstr(item->get_message());
            checker.append(check);
        }
        root["checker"] = checker;
        context.out << QJsonDocument(root).toJson(QJsonDocument::Indented).toStdString();
    } else {
        std::string text = "Now: " + text_date(ZBDateUtils::now()) + "\n";
        if (const DiaryEntry* running = diary->get_session_entry())
            text += "Session: " + std::to_string(running->get_id()) + " " + running->get_summary() + " since "
                    + text_date(running->get_spent().get_current_session().m_start) + "\n";
        char head[512];
        std::snprintf(head, sizeof head, "%5s %c %-24s %4s %-10s %-10s %-16s %-16s %7s %7s %12s %s\n", "Id", 'T',
                      "Title", "Done", "Resource", "Time type", "Start after", "Due", "Length", "Left",
                      "Priority", "Alert");
        text += head;
        for (const DiaryEntry* entry : entries)
            text += text_entry(*diary, *entry);
        context.out << text;
    }
    ZBDateUtils::clear_fixed_now();
    context.out.flush();
    return 0;
}

} // namespace Tervalon
