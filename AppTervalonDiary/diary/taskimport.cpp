#include "AppTervalonDiary/diary/taskimport.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "AppTervalonDiary/diary/entrydepend.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbprogress.h"
#include "LibCore/textstr/zbtextstr.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <set>

namespace Tervalon {

namespace {

// Priorities on the diary's scale, where users' own values run from 0 to 100.
constexpr double C_PriorityHigh = 80.0;
constexpr double C_PriorityMedium = 50.0;
constexpr double C_PriorityLow = 20.0;

// No estimate is longer than this; a bigger number is damage, not a plan.
constexpr std::int64_t C_MaxEstimateDays = 100000;

// One object of the text and the line it starts on.
struct Piece {
    int line;
    QJsonObject object;
};

// A task as read, before anything in the diary changes.
struct Task {
    int line = 0;
    std::string uuid;
    std::string title;
    std::string status;
    std::vector<std::string> project;
    ZBDate due = ZBDate(ZBDate::E_Blank);
    ZBDate startAfter = ZBDate(ZBDate::E_Blank);
    ZBDate created = ZBDate(ZBDate::E_Blank);
    ZBDate end = ZBDate(ZBDate::E_Blank);
    bool hasPriority = false;
    double priority = 0.0;
    bool hasEstimate = false;
    ZBDuration estimate;
    std::string details;
    std::vector<std::string> depends;
    DiaryEntry* entry = nullptr;
};

std::string trimmed(const std::string& text)
{
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos)
        return std::string();
    const size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

std::string text_of(const QJsonValue& value)
{
    return value.toString().toStdString();
}

std::string line_problem(int line, const std::string& text)
{
    return "line " + std::to_string(line) + ": " + text;
}

// The first key that an object of text gives twice, and its line. Such a
// task is ambiguous (which value counts?), and the JSON reader of the toolkit
// loses memory on it, so it is refused before that reader sees it.
bool repeated_key(const std::string& text, int& line, std::string& key)
{
    std::vector<std::set<std::string>> keys; // one set per open object; arrays hold none
    std::vector<bool> isObject;
    bool inString = false;
    bool expectKey = false;
    std::string current;
    line = 1;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\n')
            ++line;
        if (inString) {
            if (c == '\\' && i + 1 < text.size()) {
                current += c;
                current += text[++i];
            } else if (c == '"') {
                inString = false;
                // A string is a key when the next thing after it is a colon.
                size_t next = i + 1;
                while (next < text.size() && std::isspace(static_cast<unsigned char>(text[next])))
                    ++next;
                if (expectKey && next < text.size() && text[next] == ':' && !keys.empty() && isObject.back()) {
                    if (!keys.back().insert(current).second) {
                        key = current;
                        return true;
                    }
                }
            } else {
                current += c;
            }
            continue;
        }
        if (c == '"') {
            inString = true;
            current.clear();
        } else if (c == '{' || c == '[') {
            keys.emplace_back();
            isObject.push_back(c == '{');
            expectKey = c == '{';
        } else if (c == '}' || c == ']') {
            if (!keys.empty()) {
                keys.pop_back();
                isObject.pop_back();
            }
            expectKey = false;
        } else if (c == ',') {
            expectKey = !isObject.empty() && isObject.back();
        } else if (c == ':') {
            expectKey = false;
        }
    }
    return false;
}

// The line each element of a valid top-level array starts on, in order.
std::vector<int> element_lines(const std::string& text)
{
    std::vector<int> lines;
    int line = 1;
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    bool wantElement = false;
    for (char c : text) {
        if (c == '\n')
            ++line;
        if (inString) {
            if (escaped)
                escaped = false;
            else if (c == '\\')
                escaped = true;
            else if (c == '"')
                inString = false;
            continue;
        }
        if (c == ' ' || c == '\t' || c == '\r' || c == '\n')
            continue;
        if (depth == 1 && wantElement && c != ']') {
            lines.push_back(line);
            wantElement = false;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            if (++depth == 1)
                wantElement = true;
        } else if (c == '}' || c == ']') {
            --depth;
        } else if (c == ',' && depth == 1) {
            wantElement = true;
        }
    }
    return lines;
}

// Splits text into JSON objects: the elements of one array, one object, or
// one object per line (where the lines of an array that is damaged somewhere
// are read one by one too). Lines that are not an object are reported.
void split_objects(const std::string& text, std::vector<Piece>& pieces, std::vector<std::string>& problems)
{
    int repeatLine = 0;
    std::string repeatKey;
    if (repeated_key(text, repeatLine, repeatKey)) {
        problems.push_back(line_problem(repeatLine, "the key \"" + repeatKey + "\" is given twice in one object"));
        return;
    }
    QJsonParseError error;
    const QJsonDocument whole = QJsonDocument::fromJson(QByteArray::fromStdString(text), &error);
    if (error.error == QJsonParseError::NoError && whole.isObject()) {
        pieces.push_back({1, whole.object()});
        return;
    }
    if (error.error == QJsonParseError::NoError && whole.isArray()) {
        const QJsonArray array = whole.array();
        const std::vector<int> lines = element_lines(text);
        for (int i = 0; i < array.size(); ++i) {
            const int line = size_t(i) < lines.size() ? lines[size_t(i)] : 1;
            if (array.at(i).isObject())
                pieces.push_back({line, array.at(i).toObject()});
            else
                problems.push_back(line_problem(line, "not a task object"));
        }
        return;
    }
    int number = 0;
    size_t from = 0;
    while (from <= text.size()) {
        size_t to = text.find('\n', from);
        if (to == std::string::npos)
            to = text.size();
        ++number;
        std::string line = trimmed(text.substr(from, to - from));
        from = to + 1;
        if (!line.empty() && line.back() == ',')
            line = trimmed(line.substr(0, line.size() - 1));
        if (line.empty())
            continue;
        QJsonDocument one = QJsonDocument::fromJson(QByteArray::fromStdString(line), &error);
        if (error.error != QJsonParseError::NoError) {
            // The brackets of an array written one object a line: "[{...},", "{...}]".
            std::string inner = line;
            if (!inner.empty() && inner.front() == '[')
                inner = trimmed(inner.substr(1));
            if (!inner.empty() && inner.back() == ']')
                inner = trimmed(inner.substr(0, inner.size() - 1));
            if (!inner.empty() && inner.back() == ',')
                inner = trimmed(inner.substr(0, inner.size() - 1));
            if (inner.empty())
                continue;
            QJsonParseError second;
            const QJsonDocument stripped = QJsonDocument::fromJson(QByteArray::fromStdString(inner), &second);
            if (second.error == QJsonParseError::NoError) {
                one = stripped;
                error = second;
            }
        }
        if (error.error != QJsonParseError::NoError)
            problems.push_back(line_problem(number, "not JSON (" + error.errorString().toStdString() + " at column "
                                                        + std::to_string(error.offset + 1) + ")"));
        else if (!one.isObject())
            problems.push_back(line_problem(number, "not a task object"));
        else
            pieces.push_back({number, one.object()});
    }
}

// A list given as a JSON array of texts or as one comma-separated text.
std::vector<std::string> text_list(const QJsonValue& value)
{
    std::vector<std::string> items;
    if (value.isArray()) {
        for (const QJsonValue& item : value.toArray())
            if (item.isString() && !trimmed(text_of(item)).empty())
                items.push_back(trimmed(text_of(item)));
    } else if (value.isString()) {
        const std::string all = text_of(value);
        size_t from = 0;
        while (from <= all.size()) {
            size_t comma = all.find(',', from);
            if (comma == std::string::npos)
                comma = all.size();
            const std::string item = trimmed(all.substr(from, comma - from));
            if (!item.empty())
                items.push_back(item);
            from = comma + 1;
        }
    }
    return items;
}

std::vector<std::string> project_path(const std::string& project)
{
    std::vector<std::string> parts;
    size_t from = 0;
    while (from <= project.size()) {
        size_t dot = project.find('.', from);
        if (dot == std::string::npos || int(parts.size()) + 1 >= TaskImport::C_MaxProjectDepth)
            dot = project.size();
        const std::string part = trimmed(project.substr(from, dot - from));
        if (!part.empty())
            parts.push_back(part);
        from = dot + 1;
    }
    return parts;
}

// Reads one object into task; false (with the reason) when it cannot be a task.
bool read_task(const Piece& piece, Task& task, std::vector<std::string>& problems)
{
    const QJsonObject& object = piece.object;
    task.line = piece.line;
    auto field_problem = [&](const char* field, const std::string& value, const char* what) {
        problems.push_back(line_problem(piece.line, std::string(field) + " \"" + value + "\" is not " + what
                                                        + "; the task is imported without it"));
    };
    task.title = trimmed(text_of(object.value("description")));
    if (task.title.empty()) {
        problems.push_back(line_problem(piece.line, "the task has no description"));
        return false;
    }
    task.status = object.contains("status") ? text_of(object.value("status")) : std::string("pending");
    static const std::set<std::string> statuses = {"pending", "waiting", "completed", "deleted", "recurring"};
    if (!statuses.count(task.status)) {
        problems.push_back(line_problem(piece.line, "unknown status \"" + task.status + "\""));
        return false;
    }
    task.uuid = trimmed(text_of(object.value("uuid")));
    task.project = project_path(text_of(object.value("project")));

    auto read_date_field = [&](const char* field, ZBDate& out) {
        if (!object.contains(field))
            return;
        const std::string text = object.value(field).isString() ? text_of(object.value(field)) : std::string("?");
        if (!TaskImport::read_date(text, out))
            field_problem(field, text, "a date");
    };
    read_date_field("due", task.due);
    ZBDate scheduled(ZBDate::E_Blank);
    ZBDate wait(ZBDate::E_Blank);
    read_date_field("scheduled", scheduled);
    read_date_field("wait", wait);
    // Work can start when both have passed.
    task.startAfter = !wait.is_ok() || (scheduled.is_ok() && wait < scheduled) ? scheduled : wait;
    read_date_field("entry", task.created);
    read_date_field("end", task.end);

    if (object.contains("priority")) {
        std::string level = text_of(object.value("priority"));
        std::transform(level.begin(), level.end(), level.begin(), [](unsigned char c) { return std::toupper(c); });
        task.hasPriority = true;
        if (level == "H")
            task.priority = C_PriorityHigh;
        else if (level == "M")
            task.priority = C_PriorityMedium;
        else if (level == "L")
            task.priority = C_PriorityLow;
        else {
            task.hasPriority = false;
            if (!level.empty())
                field_problem("priority", level, "H, M or L");
        }
    }
    if (object.contains("estimate")) {
        const QJsonValue value = object.value("estimate");
        if (value.isDouble() && value.toDouble() >= 0.0 && value.toDouble() <= C_MaxEstimateDays * 24.0) {
            // A bare number is hours.
            task.estimate = ZBDuration(std::int64_t(value.toDouble() * 3600.0 + 0.5));
            task.hasEstimate = true;
        } else if (value.isString() && TaskImport::read_duration(text_of(value), task.estimate)) {
            task.hasEstimate = true;
        } else {
            field_problem("estimate", value.isString() ? text_of(value) : std::string("?"), "a duration");
        }
    }

    std::vector<std::string> lines;
    const std::vector<std::string> tags = text_list(object.value("tags"));
    if (!tags.empty()) {
        std::string line = "Tags:";
        for (size_t i = 0; i < tags.size(); ++i)
            line += (i ? ", " : " ") + tags[i];
        lines.push_back(line);
    }
    for (const QJsonValue& note : object.value("annotations").toArray()) {
        const QJsonObject annotation = note.toObject();
        const std::string words = trimmed(text_of(annotation.value("description")));
        if (words.empty())
            continue;
        ZBDate when(ZBDate::E_Blank);
        if (TaskImport::read_date(text_of(annotation.value("entry")), when))
            lines.push_back(when.to_string("%d-%b-%Y %H:%M") + ": " + words);
        else
            lines.push_back(words);
    }
    for (size_t i = 0; i < lines.size(); ++i)
        task.details += (i ? "\n" : "") + lines[i];
    task.depends = text_list(object.value("depends"));
    return true;
}

bool read_digits(const std::string& text, size_t& pos, size_t count, int& out)
{
    if (pos + count > text.size())
        return false;
    out = 0;
    for (size_t i = 0; i < count; ++i) {
        const char c = text[pos + i];
        if (c < '0' || c > '9')
            return false;
        out = out * 10 + (c - '0');
    }
    pos += count;
    return true;
}

// The folder called title under parent (null: the top level), made when the
// diary has none.
int folder_under(Diary& diary, DiaryEntry* parent, const std::string& title, DiaryEntry*& out, bool& made)
{
    made = false;
    const int n = parent ? parent->get_nchildren() : diary.get_nentries();
    for (int i = 0; i < n; ++i) {
        DiaryEntry* child = parent ? parent->get_child_no(i) : diary.get_entry_index(i);
        if (child && child->get_entrytype() == 'O' && child->get_summary() == title) {
            out = child;
            return ZBErrC_ok;
        }
    }
    if (iszbwarn(diary.create_entry(parent, 'O', title, &out)))
        return zbpass(ZBLOC);
    made = true;
    return ZBErrC_ok;
}

std::string counted(int n, const char* one, const char* many)
{
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

} // namespace

TaskImport::TaskImport() = default;

void TaskImport::clear()
{
    m_problems.clear();
    m_tasks = m_folders = m_depends = m_deleted = m_recurring = 0;
}

bool TaskImport::read_date(const std::string& text, ZBDate& out)
{
    // 20261123T170000Z, or 2026-11-23T17:00:00Z; the zone must be UTC.
    std::string compact;
    for (char c : trimmed(text))
        if (c != '-' && c != ':')
            compact += c;
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    size_t pos = 0;
    if (!read_digits(compact, pos, 4, year) || !read_digits(compact, pos, 2, month)
        || !read_digits(compact, pos, 2, day))
        return false;
    if (pos < compact.size()) {
        if (compact[pos] != 'T')
            return false;
        ++pos;
        if (!read_digits(compact, pos, 2, hour) || !read_digits(compact, pos, 2, minute)
            || !read_digits(compact, pos, 2, second))
            return false;
        if (pos < compact.size() && compact[pos] == '.') // fractions of a second are dropped
            for (++pos; pos < compact.size() && compact[pos] >= '0' && compact[pos] <= '9'; ++pos) {
            }
        if (pos + 1 != compact.size() || compact[pos] != 'Z')
            return false;
    }
    if (year < 1 || month < 1 || month > 12 || day < 1 || day > ZBDateUtils::days_in_month(month - 1, year)
        || hour > 23 || minute > 59 || second > 60)
        return false;
    out = ZBDate(year, month - 1, day - 1, hour, minute, std::min(second, 59), 0, ZBDate::C_GMT);
    return out.is_ok();
}

bool TaskImport::read_duration(const std::string& given, ZBDuration& out)
{
    const std::string text = trimmed(given);
    if (text.empty())
        return false;
    if (text[0] != 'P' && text[0] != 'p') {
        // The diary's reader passes over words it does not know; an estimate
        // must at least hold a number.
        if (text.find_first_of("0123456789") == std::string::npos)
            return false;
        ZBDuration typed;
        if (iszbwarn(typed.from_string(text))) {
            get_zberror().clear_all();
            return false;
        }
        if (typed.get_as_seconds() < 0 || typed.get_as_days() > double(C_MaxEstimateDays))
            return false;
        out = typed;
        return true;
    }
    // PnYnMnWnDTnHnMnS; years and months are taken as 365 and 30 days.
    std::int64_t days = 0;
    std::int64_t seconds = 0;
    bool inTime = false;
    bool any = false;
    size_t pos = 1;
    while (pos < text.size()) {
        if (text[pos] == 'T' || text[pos] == 't') {
            if (inTime)
                return false;
            inTime = true;
            ++pos;
            continue;
        }
        std::int64_t number = 0;
        size_t digits = 0;
        while (pos < text.size() && text[pos] >= '0' && text[pos] <= '9') {
            if (++digits > 9)
                return false;
            number = number * 10 + (text[pos] - '0');
            ++pos;
        }
        if (digits == 0 || pos >= text.size())
            return false;
        const char unit = char(std::toupper(static_cast<unsigned char>(text[pos++])));
        any = true;
        if (!inTime && unit == 'Y')
            days += 365 * number;
        else if (!inTime && unit == 'M')
            days += 30 * number;
        else if (!inTime && unit == 'W')
            days += 7 * number;
        else if (!inTime && unit == 'D')
            days += number;
        else if (inTime && unit == 'H')
            seconds += 3600 * number;
        else if (inTime && unit == 'M')
            seconds += 60 * number;
        else if (inTime && unit == 'S')
            seconds += number;
        else
            return false;
    }
    if (!any || days + seconds / ZBDate::C_DaySecs > C_MaxEstimateDays)
        return false;
    out = ZBDuration(days + seconds / ZBDate::C_DaySecs, seconds % ZBDate::C_DaySecs, 0);
    return true;
}

int TaskImport::import(Diary& diary, const std::string& given, DiaryEntry* parent)
{
    clear();
    std::string text = given;
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        text.erase(0, 3);

    std::vector<Piece> pieces;
    split_objects(text, pieces, m_problems);
    if (pieces.empty() && !m_problems.empty()) {
        const std::string first = m_problems.front();
        m_problems.clear();
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "This is not a task list in JSON: %s", first.c_str());
    }
    if (pieces.empty() && trimmed(text).empty())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There are no tasks to import: the text is empty.");

    // Everything is read before the diary changes.
    std::vector<Task> tasks;
    std::set<std::string> skipped;
    std::map<std::string, int> lineOfUuid;
    for (const Piece& piece : pieces) {
        Task task;
        if (!read_task(piece, task, m_problems))
            continue;
        if (task.status == "deleted" || task.status == "recurring") {
            ++(task.status == "deleted" ? m_deleted : m_recurring);
            if (!task.uuid.empty())
                skipped.insert(task.uuid);
            continue;
        }
        if (!task.uuid.empty()) {
            auto seen = lineOfUuid.find(task.uuid);
            if (seen != lineOfUuid.end()) {
                m_problems.push_back(line_problem(task.line, "the uuid " + task.uuid + " was already given on line "
                                                                 + std::to_string(seen->second)
                                                                 + "; dependencies on it go to the first"));
                task.uuid.clear();
            } else {
                lineOfUuid[task.uuid] = task.line;
            }
        }
        tasks.push_back(std::move(task));
    }

    std::map<std::vector<std::string>, DiaryEntry*> folders;
    std::map<std::string, int> idOfUuid;
    for (Task& task : tasks) {
        DiaryEntry* under = parent;
        std::vector<std::string> path;
        for (const std::string& part : task.project) {
            path.push_back(part);
            auto known = folders.find(path);
            if (known != folders.end()) {
                under = known->second;
                continue;
            }
            bool made = false;
            if (iszbwarn(folder_under(diary, under, part, under, made)))
                return zbpass(ZBLOC);
            m_folders += made;
            folders[path] = under;
        }
        DiaryEntry* entry = nullptr;
        if (iszbwarn(diary.create_entry(under, 'T', task.title, &entry)))
            return zbpass(ZBLOC);
        if (task.due.is_ok())
            entry->edit_due().set_orig(task.due);
        if (task.startAfter.is_ok())
            entry->edit_start().set_orig(task.startAfter);
        if (task.hasPriority)
            entry->edit_priority().set_orig(task.priority);
        if (task.hasEstimate) {
            ZBProgress progress = entry->get_duration_pair().orig;
            progress.set_duration(task.estimate);
            entry->edit_duration().set_orig(progress);
        }
        if (!task.details.empty())
            entry->set_text(task.details);
        if (task.status == "completed") {
            const ZBDate done = task.end.is_ok() ? task.end
                                                 : task.created.is_ok() ? task.created : ZBDateUtils::now();
            if (iszbwarn(entry->mark_complete(done)))
                return zbpass(ZBLOC);
        }
        entry->mark_changed(ZBLOC, true);
        if (task.created.is_ok())
            entry->set_create_time(task.created);
        task.entry = entry;
        if (!task.uuid.empty())
            idOfUuid[task.uuid] = entry->get_id();
        ++m_tasks;
    }

    // Links go in once every task exists, since a task may name one that
    // comes after it.
    for (Task& task : tasks) {
        for (const std::string& uuid : task.depends) {
            auto target = idOfUuid.find(uuid);
            if (target == idOfUuid.end()) {
                if (!skipped.count(uuid))
                    m_problems.push_back(line_problem(task.line, "depends on an unknown task " + uuid));
                continue;
            }
            if (target->second != task.entry->get_id() && task.entry->edit_depend().add_depend(target->second))
                ++m_depends;
        }
    }
    // New entries can change what a series depends on or stands beside.
    diary.reset_repeating();
    // In the order of the text, whichever pass found them.
    auto line_of = [](const std::string& problem) { return std::atoi(problem.c_str() + 5); };
    std::stable_sort(m_problems.begin(), m_problems.end(),
                     [&](const std::string& a, const std::string& b) { return line_of(a) < line_of(b); });
    return ZBErrC_ok;
}

std::string TaskImport::get_summary() const
{
    std::string text = "Imported " + counted(m_tasks, "task", "tasks") + ", " + counted(m_folders, "folder", "folders")
                       + ", " + counted(m_depends, "dependency", "dependencies");
    if (m_deleted || m_recurring) {
        text += "; skipped ";
        if (m_deleted)
            text += std::to_string(m_deleted) + " deleted";
        if (m_recurring)
            text += std::string(m_deleted ? ", " : "") + std::to_string(m_recurring) + " recurring";
    }
    return text;
}

} // namespace Tervalon
