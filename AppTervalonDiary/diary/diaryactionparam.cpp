#include "AppTervalonDiary/diary/diaryactionparam.h"
#include "AppTervalonDiary/diary/daytype.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"

#include <cctype>
#include <cstdlib>

namespace Tervalon {

namespace {
int read_int(const std::string& text, int& out)
{
    char* end = nullptr;
    const long value = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || !end || *end)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not a whole number: %s", text.c_str());
    out = int(value);
    return ZBErrC_ok;
}

int read_bool(const std::string& text, bool& out)
{
    if (text == "1" || text == "true" || text == "yes")
        out = true;
    else if (text == "0" || text == "false" || text == "no")
        out = false;
    else
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not yes or no: %s", text.c_str());
    return ZBErrC_ok;
}

// The text arguments an action reads, in the order they come.
struct ParamOrder {
    const char* action;
    std::vector<std::string> fields;
};

const std::vector<ParamOrder>& param_orders()
{
    static const std::vector<ParamOrder> orders = {
        {"Postpone", {"postponeStart", "postponeEnd"}},
        {"Query", {"queryParam"}},
        {"ExportQuery", {"queryParam", "search"}},
        {"ExportTree", {"search"}},
        {"ImportTasks", {"search"}},
        {"Find", {"search"}},
        {"Note", {"search"}},
        {"AddSession", {"dayRange", "userName"}},
        {"Plan", {"dayRange", "userName"}},
        {"StartSession", {"userName"}},
        {"CalGoDate", {"date"}},
        {"LockDay", {"dayRange"}},
        {"UnlockDay", {"dayRange"}},
        {"LockTaskDay", {"dayRange"}},
        {"UnlockTaskDay", {"dayRange"}},
        {"RepeatInstance", {"date"}},
        {"AdjComplete", {"percent"}},
        {"CommandRun", {"selectedCmd"}},
        {"CommandSkip", {"selectedCmd"}},
        {"CommandClear", {"selectedCmd"}},
        {"AddEntry", {"title", "type"}},
        {"AddTask", {"title", "bookmark"}},
        {"AddAppointment", {"title", "bookmark"}},
        {"AddJournal", {"title", "bookmark"}},
        {"AddPerson", {"title", "bookmark"}},
        {"AddAddress", {"title", "bookmark"}},
        {"AddPlace", {"title", "bookmark"}},
        {"CreateChild", {"title"}},
        {"CreateSibling", {"title"}},
        {"EditEntry", {"title"}},
        {"Collapse", {"depth"}},
        {"Expand", {"depth"}},
    };
    return orders;
}

// "90 min", "2 hours", "1.5h", "3 days": a number and a unit that is not a
// month, which would make it a date ("2 March").
bool looks_like_length(const std::string& text)
{
    size_t i = 0;
    while (i < text.size() && (std::isdigit(static_cast<unsigned char>(text[i])) || text[i] == '.'))
        ++i;
    if (i == 0)
        return false;
    while (i < text.size() && text[i] == ' ')
        ++i;
    std::string word;
    for (; i < text.size(); ++i) {
        if (!std::isalpha(static_cast<unsigned char>(text[i])))
            return false;
        word += char(std::tolower(static_cast<unsigned char>(text[i])));
    }
    if (word.empty())
        return false;
    static const char* const months[] = {"jan", "feb", "mar", "apr", "may", "jun",
                                         "jul", "aug", "sep", "oct", "nov", "dec"};
    for (const char* month : months)
        if (word.compare(0, 3, month) == 0)
            return false;
    return std::string("smhdw").find(word[0]) != std::string::npos;
}

bool is_id_action(const std::string& name)
{
    return name == "GoID" || name == "CutID" || name == "CopyID" || name == "EditID";
}
} // namespace

DiaryActionParam::DiaryActionParam()
    : m_userId(-1), m_depth(0), m_date(ZBDate::E_Blank), m_instance(0), m_clear(false), m_bookmark(false),
      m_percent(-1.0), m_type('T')
{
}

const std::vector<std::string>& DiaryActionParam::field_names()
{
    static const std::vector<std::string> names = {"selectedCmd", "userId",   "userName", "dayRange", "postponeStart",
                                                   "postponeEnd", "depth",    "queryParam", "search", "date",
                                                   "instance",    "clear",    "title",    "bookmark", "percent",
                                                   "type"};
    return names;
}

int DiaryActionParam::set_params(const std::string& name, const std::vector<std::string>& args)
{
    if (is_id_action(name)) {
        ZBIdList ids;
        for (const std::string& text : args) {
            ZBId id;
            if (!parse_id(text, id))
                return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not an entry id: %s", text.c_str());
            ids.add(id);
        }
        m_selectedId = ids;
        return ZBErrC_ok;
    }
    const std::vector<std::string>* fields = nullptr;
    for (const ParamOrder& order : param_orders())
        if (name == order.action)
            fields = &order.fields;
    const size_t wanted = fields ? fields->size() : 0;
    if (args.size() > wanted)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The action %s takes at most %d parameters.", name.c_str(),
                          int(wanted));
    // Every text is read before any field changes, so a bad one leaves all as they were.
    DiaryActionParam copy(*this);
    for (size_t i = 0; i < args.size(); ++i) {
        // A bookmark is asked for by the word, not by a yes or no.
        if ((*fields)[i] == "bookmark") {
            if (args[i] != "bookmark")
                return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Expected the word bookmark, not: %s", args[i].c_str());
            copy.m_bookmark = true;
        } else if (iszbwarn(copy.set_param((*fields)[i], args[i])))
            return zbpass(ZBLOC);
    }
    *this = copy;
    return ZBErrC_ok;
}

int DiaryActionParam::set_param(const std::string& field, const std::string& value)
{
    int result = ZBErrC_ok;
    if (field == "selectedCmd")
        m_selectedCmd = value;
    else if (field == "userId")
        result = read_int(value, m_userId);
    else if (field == "userName")
        m_userName = value;
    else if (field == "dayRange")
        result = read_range(value, m_dayRange);
    else if (field == "postponeStart")
        m_postponeStart = value;
    else if (field == "postponeEnd")
        m_postponeEnd = value;
    else if (field == "depth")
        result = read_int(value, m_depth);
    else if (field == "queryParam")
        m_queryParam = value;
    else if (field == "search")
        m_search = value;
    else if (field == "date")
        result = read_date(value, m_date);
    else if (field == "instance")
        result = read_int(value, m_instance);
    else if (field == "clear")
        result = read_bool(value, m_clear);
    else if (field == "title")
        m_title = value;
    else if (field == "bookmark")
        result = read_bool(value, m_bookmark);
    else if (field == "percent") {
        char* end = nullptr;
        const double percent = std::strtod(value.c_str(), &end);
        if (value.empty() || !end || *end || percent < 0.0 || percent > 100.0)
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not a percentage from 0 to 100: %s", value.c_str());
        m_percent = percent;
    } else if (field == "type") {
        if (value.size() != 1 || std::string("TAJPDLO").find(value[0]) == std::string::npos)
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Not an entry type letter (T A J P D L O): %s",
                              value.c_str());
        m_type = value[0];
    } else
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Unknown action parameter: %s", field.c_str());
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

bool DiaryActionParam::parse_id(const std::string& text, ZBId& out)
{
    const size_t colon = text.find(':');
    const std::string idText = text.substr(0, colon);
    if (idText.empty() || idText.find_first_not_of("0123456789") != std::string::npos || idText.size() > 9)
        return false;
    ZBId id(std::atoi(idText.c_str()));
    if (colon != std::string::npos) {
        const std::string seq = text.substr(colon + 1);
        // Sequence letters: plans, spent sessions, predicted sessions, commands.
        if (seq.size() < 2 || std::string("psrc").find(seq[0]) == std::string::npos
            || seq.find_first_not_of("0123456789", 1) != std::string::npos || seq.size() > 6)
            return false;
        id.m_seq = DiaryEntry::get_sequence(seq[0], std::atoi(seq.c_str() + 1));
    }
    out = id;
    return true;
}

std::string DiaryActionParam::id_text(const ZBId& id)
{
    std::string text = std::to_string(id.m_id);
    if (id.m_seq >= DiaryEntry::C_SeqFactor)
        text += ":" + std::string(1, char(DiaryEntry::get_type_seq(id.m_seq)))
            + std::to_string(DiaryEntry::get_index_seq(id.m_seq));
    return text;
}

int DiaryActionParam::read_date(const std::string& text, ZBDate& out)
{
    const ZBDate now = ZBDateUtils::now();
    ZBDate date;
    if (iszbwarn(ZBDateParser::read_checked(text, &now, nullptr, date)))
        return zbpass(ZBLOC);
    if (!date.is_ok())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid date value: %s", text.c_str());
    out = date;
    return ZBErrC_ok;
}

int DiaryActionParam::read_duration(const std::string& text, ZBDuration& out)
{
    // A length a person types holds at least one number.
    if (text.find_first_of("0123456789") == std::string::npos)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid duration: %s", text.c_str());
    ZBDuration duration;
    if (iszbwarn(duration.from_string(text)))
        return zbpass(ZBLOC);
    out = duration;
    return ZBErrC_ok;
}

ZBDateSlot DiaryActionParam::whole_day(const ZBDate& date)
{
    const ZBDateDetails day(date, zblocale().get_timezone());
    return ZBDateSlot(DayType::clock_time(day, 0), DayType::clock_time(day, ZBDate::C_DaySecs - 1) + ZBDuration(1));
}

int DiaryActionParam::read_range(const std::string& text, ZBDateSlot& out)
{
    const size_t dots = text.find("..");
    ZBDate start;
    if (dots == std::string::npos) {
        if (iszbwarn(read_date(text, start)))
            return zbpass(ZBLOC);
        out = whole_day(start);
        return ZBErrC_ok;
    }
    const std::string endText = text.substr(dots + 2);
    if (iszbwarn(read_date(text.substr(0, dots), start)))
        return zbpass(ZBLOC);
    ZBDate end;
    ZBDuration length;
    // The end may be a date or a length from the start: a date first, as
    // "2 hours" is not a date but "+2 hours" would read as one from now.
    if (looks_like_length(endText)) {
        if (iszbwarn(read_duration(endText, length)))
            return zbpass(ZBLOC);
        end = start + length;
    } else if (iszbwarn(read_date(endText, end)))
        return zbpass(ZBLOC);
    if (end < start)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The range ends before it starts: %s", text.c_str());
    out = ZBDateSlot(start, end);
    return ZBErrC_ok;
}

} // namespace Tervalon
