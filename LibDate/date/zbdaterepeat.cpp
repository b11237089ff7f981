#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <ostream>
#include <sstream>

namespace Tervalon {

const ZBDuration ZBDateRepeat::C_DefaultAt(9 * ZBDate::C_HourSecs);
ZBDateSlot ZBDateRepeat::g_range;
int ZBDateRepeat::g_limit = 1000;

namespace {

const ZBObjectPreReg g_register("ZBDateRepeat", &ZBDateRepeat::create_zbobject);

// Periods a step may look ahead for a candidate before the rule counts as stuck.
const int C_MaxPeriods = 60;
// Tries of an "only on work days" rule before the series ends.
const int C_MaxWorkTries = 1000;
const int C_MaxWorkDays = 10000;
const int C_ExcludeKeepDays = 30;

ZBDateDetails details_of(const ZBDate& date)
{
    return ZBDateDetails(date, ZBDate::C_OriginalTime);
}

ZBDate date_of(ZBDateDetails details)
{
    return details.get_date(ZBDate::C_OriginalTime);
}

void set_clock(ZBDateDetails& details, const ZBDuration& at)
{
    std::int64_t seconds = at.get_as_seconds();
    details.m_hour = int(seconds / 3600);
    details.m_minute = int(seconds / 60 % 60);
    details.m_second = int(seconds % 60);
    details.m_micro = at.get_micro();
}

std::string ordinal(int n)
{
    if (n == -1)
        return "last";
    if (n == -2)
        return "2nd last";
    if (n < 0)
        return ordinal(-n) + " last";
    const char* suffix = "th";
    if (n % 100 < 11 || n % 100 > 13) {
        if (n % 10 == 1)
            suffix = "st";
        else if (n % 10 == 2)
            suffix = "nd";
        else if (n % 10 == 3)
            suffix = "rd";
    }
    return std::to_string(n) + suffix;
}

std::string join(const std::vector<std::string>& parts, const std::string& separator)
{
    std::string text;
    for (size_t i = 0; i < parts.size(); ++i)
        text += (i ? separator : std::string()) + parts[i];
    return text;
}

std::string date_text(const ZBDate& date)
{
    std::ostringstream out;
    out << date;
    return out.str();
}

// Splits at the separator, but not inside double quotes.
std::vector<std::string> split_quoted(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::string part;
    bool quoted = false;
    for (char c : text) {
        if (c == '"')
            quoted = !quoted;
        if (c == separator && !quoted) {
            parts.push_back(part);
            part.clear();
        } else {
            part += c;
        }
    }
    parts.push_back(part);
    return parts;
}

bool read_int_list(const std::string& value, std::vector<long long>& out)
{
    out.clear();
    if (value.empty())
        return false;
    for (const std::string& item : split_quoted(value, ',')) {
        bool ok = false;
        long long n = zb_string_to_long(zb_trim(item), 0, &ok);
        if (!ok)
            return false;
        out.push_back(n);
    }
    return true;
}

bool read_int(const std::string& value, long long& out)
{
    bool ok = false;
    out = zb_string_to_long(zb_trim(value), 0, &ok);
    return ok;
}

bool read_date(const std::string& value, ZBDate& out)
{
    std::istringstream in(zb_trim(value));
    ZBDate date;
    if (!(in >> date) || !date.is_ok())
        return false;
    out = date;
    return true;
}

bool unquote(const std::string& value, std::string& out)
{
    std::string text = zb_trim(value);
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        return false;
    out = text.substr(1, text.size() - 2);
    return true;
}

} // namespace

ZBDateRepeat::ZBDateRepeat()
    : m_type(E_None), m_interval(1), m_work(C_DefaultWork), m_offset(C_OffsetLast), m_begin(ZBDate::E_Blank),
      m_end(ZBDate::E_Blank), m_capabilities(0), m_fixed(0), m_state(0)
{
    ZBDateRepeat::register_zbobject();
}

ZBDateRepeat::ZBDateRepeat(const ZBDateRepeat& other) : ZBObject(other)
{
    *this = other;
}

ZBDateRepeat::~ZBDateRepeat() = default;

ZBDateRepeat& ZBDateRepeat::operator=(const ZBDateRepeat& other)
{
    if (this == &other)
        return *this;
    ZBObject::operator=(other);
    m_type = other.m_type;
    m_interval = other.m_interval;
    m_days = other.m_days;
    m_at = other.m_at;
    m_set = other.m_set;
    m_work = other.m_work;
    m_offset = other.m_offset;
    m_begin = other.m_begin;
    m_end = other.m_end;
    m_exclude = other.m_exclude;
    m_exp = other.m_exp;
    m_offsetExp = other.m_offsetExp;
    m_capabilities = other.m_capabilities;
    m_fixed = other.m_fixed;
    // A copy is a new rule: it generates its own instances.
    m_slots.clear();
    m_backSlots.clear();
    m_state = 0;
    return *this;
}

void ZBDateRepeat::load_slots(const ZBDateRepeat& other)
{
    *this = other;
    m_slots = other.m_slots;
    m_backSlots = other.m_backSlots;
    m_state = other.m_state;
}

bool ZBDateRepeat::operator==(const ZBDateRepeat& other) const
{
    return m_type == other.m_type && m_interval == other.m_interval && m_days == other.m_days && m_at == other.m_at
           && m_set == other.m_set && m_work == other.m_work && m_offset == other.m_offset && m_begin == other.m_begin
           && m_end == other.m_end && m_exclude == other.m_exclude && m_exp == other.m_exp
           && m_offsetExp == other.m_offsetExp && m_fixed == other.m_fixed;
}

void ZBDateRepeat::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBDateRepeat", out, indent);
    writer.add("m_type", m_type);
    writer.add("m_interval", m_interval);
    for (size_t i = 0; i < m_days.size(); ++i)
        writer.add("m_days", m_days[i], int(i));
    for (size_t i = 0; i < m_at.size(); ++i)
        writer.add("m_at", m_at[i].to_string(true), int(i));
    for (size_t i = 0; i < m_set.size(); ++i)
        writer.add("m_set", m_set[i].to_iso(), int(i));
    writer.add("m_work", m_work);
    writer.add("m_offset", m_offset);
    writer.add("m_begin", m_begin.to_iso());
    writer.add("m_end", m_end.to_iso());
    writer.add("m_exclude", get_exclude_string());
    writer.add("m_exp", m_exp);
    writer.add("m_offsetExp", m_offsetExp);
    writer.add("m_slots.size()", int(m_slots.size()));
    writer.add("m_backSlots.size()", int(m_backSlots.size()));
    writer.add("m_capabilities", m_capabilities);
    writer.add("m_fixed", m_fixed);
    writer.add("m_state", m_state);
    writer.write();
}

int ZBDateRepeat::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // The rule lives in the stream as its own text form, the same text the
    // owner's forms and the command line use.
    std::string text = out ? to_string() : std::string();
    serialise_string(in, out, prefix, "R", text, true);
    if (in) {
        int result = from_string(text);
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDateRepeat::register_zbobject()
{
    register_objectname("ZBDateRepeat", &ZBDateRepeat::create_zbobject);
}

int ZBDateRepeat::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDateRepeat>(out, from, "ZBDateRepeat");
}

void ZBDateRepeat::set_defaults(bool all)
{
    int fixed = m_fixed;
    ZBDateRepeat fresh;
    *this = fresh;
    if (!all)
        m_fixed = fixed;
    else
        clear_unhandled_data();
}

void ZBDateRepeat::clear_repeat()
{
    set_defaults(false);
}

void ZBDateRepeat::invalidate()
{
    m_slots.clear();
    m_backSlots.clear();
    m_state = 0;
}

int ZBDateRepeat::set_type(E_RepeatType type)
{
    return set_type_int(int(type));
}

int ZBDateRepeat::set_type_int(int type)
{
    if (type == C_V1RepeatManual)
        type = E_Choice;
    if (type < 0 || type >= E_NTypes)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "There is no repeat type %d.", type);
    m_type = type;
    if (m_type == E_Expression)
        m_offset = C_OffsetExpression;
    invalidate();
    return ZBErrC_ok;
}

int ZBDateRepeat::set_interval(int interval)
{
    if (interval < 1)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "A repeat interval must be at least 1, not %d.", interval);
    m_interval = interval;
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::adjust_interval(int n)
{
    if (m_type < E_Days || m_type > E_Years)
        return;
    m_interval = std::max(1, m_interval + n);
    invalidate();
}

bool ZBDateRepeat::valid_day(int type, int day)
{
    switch (type) {
    case E_Weeks:
        return day >= 0 && day <= 6;
    case E_Months:
        if (day >= -31 && day <= 30)
            return true;
        return day >= 40 && day % 10 <= 6 && day / 10 - 4 <= 5;
    case E_Years: {
        int a = 0;
        int b = 0;
        if (from_yearday(day, a, b))
            return a >= 0 && a <= 6 && b >= 0 && b <= 52;
        return day >= 100 && a >= 0 && a <= 30 && b >= 0 && b <= 11;
    }
    default:
        return true;
    }
}

int ZBDateRepeat::set_days(const std::vector<int>& days)
{
    for (int day : days)
        if (!valid_day(m_type, day))
            return zbwarning(ZBErrC_InvalidValue, ZBLOC, "Day %d cannot be stored in a rule of type %d.", day, m_type);
    m_days = days;
    std::sort(m_days.begin(), m_days.end());
    m_days.erase(std::unique(m_days.begin(), m_days.end()), m_days.end());
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::set_at_times(const std::vector<ZBDuration>& at)
{
    m_at = at;
    std::sort(m_at.begin(), m_at.end());
    m_at.erase(std::unique(m_at.begin(), m_at.end()), m_at.end());
    invalidate();
}

void ZBDateRepeat::set_dateset(const std::vector<ZBDate>& dates)
{
    m_set.clear();
    for (const ZBDate& date : dates)
        if (date.is_ok())
            m_set.push_back(date);
    std::sort(m_set.begin(), m_set.end(), compare_zbdates);
    invalidate();
}

void ZBDateRepeat::set_offset_last()
{
    m_offset = C_OffsetLast;
    invalidate();
}

void ZBDateRepeat::set_offset_blank()
{
    m_offset = C_OffsetBlank;
    invalidate();
}

void ZBDateRepeat::set_offset_duration(const ZBDuration& duration)
{
    m_offset = C_OffsetDuration + std::max<std::int64_t>(0, duration.get_as_seconds());
    invalidate();
}

void ZBDateRepeat::set_offset_time(const ZBDuration& time, int days)
{
    std::int64_t seconds = std::max<std::int64_t>(0, time.get_as_seconds()) % ZBDate::C_DaySecs;
    m_offset = -(std::int64_t(std::max(0, days)) * 100000 + seconds + 10);
    invalidate();
}

void ZBDateRepeat::set_offset_as_expression()
{
    m_offset = C_OffsetExpression;
    invalidate();
}

int ZBDateRepeat::get_offset_details(ZBDuration& duration, int& days) const
{
    duration = ZBDuration();
    days = 0;
    if (m_type == E_Expression || m_offset == C_OffsetExpression)
        return E_OffExpression;
    if (m_offset == C_OffsetLast)
        return E_OffLast;
    if (m_offset == C_OffsetBlank)
        return E_OffBlank;
    if (m_offset >= C_OffsetDuration) {
        duration = ZBDuration(m_offset - C_OffsetDuration);
        return E_OffDuration;
    }
    if (m_offset < 0) {
        std::int64_t v = -m_offset;
        days = int(v / 100000);
        duration = ZBDuration(v % 100000 - 10);
        return E_OffTime;
    }
    return E_OffLast;
}

int ZBDateRepeat::set_workday(E_WorkdayType type, int id)
{
    int value = int(type);
    if (id != -1) {
        if (type == E_WorkNext)
            value = id + 10;
        else if (type == E_WorkOnly)
            value = -id;
        else if (type == E_WorkAvailable)
            value = id + 1000000000;
    }
    // Some pairs share a stored value with another rule (only on days of
    // time type 0 would be stored as "no rule"); such a pair is refused
    // rather than read back as something else.
    ZBDateRepeat probe;
    probe.m_work = value;
    E_WorkdayType backType = E_WorkNone;
    int backId = -1;
    probe.get_workday(backType, backId);
    if (backType != type || (type != E_WorkNone && backId != id))
        return zbwarning(ZBErrC_InvalidValue, ZBLOC,
                         "The work-day rule %d cannot name time type %d: it would be stored as another rule.",
                         int(type), id);
    m_work = value;
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::get_workday(E_WorkdayType& type, int& id) const
{
    id = -1;
    if (m_work >= 0 && m_work <= 3) {
        type = E_WorkdayType(m_work);
    } else if (m_work >= 1000000000 - 1000) {
        type = E_WorkAvailable;
        id = m_work - 1000000000;
    } else if (m_work < 0) {
        type = E_WorkOnly;
        id = -m_work;
    } else {
        type = E_WorkNext;
        id = m_work - 10;
    }
}

int ZBDateRepeat::set_range_start(const ZBDate& date, bool fixed)
{
    if (date.is_ok() && m_end.is_ok() && m_end < date)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "The end of a repeat cannot come before its start.");
    m_begin = date.is_ok() ? date : ZBDate(ZBDate::E_Blank);
    set_fixed(E_FixedBegin, fixed);
    invalidate();
    return ZBErrC_ok;
}

int ZBDateRepeat::set_range_end(const ZBDate& date, bool fixed)
{
    if (date.is_ok() && m_begin.is_ok() && date < m_begin)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "The end of a repeat cannot come before its start.");
    m_end = date.is_ok() ? date : ZBDate(ZBDate::E_Blank);
    set_fixed(E_FixedEnd, fixed);
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::set_exp(const std::string& text)
{
    m_exp = text;
    invalidate();
}

void ZBDateRepeat::set_offset_exp(const std::string& text)
{
    m_offsetExp = text;
    invalidate();
}

void ZBDateRepeat::set_fixed(E_Fixed field, bool fixed)
{
    if (fixed)
        m_fixed |= 1 << int(field);
    else
        m_fixed &= ~(1 << int(field));
}

bool ZBDateRepeat::get_fixed(E_Fixed field) const
{
    return (m_fixed & (1 << int(field))) != 0;
}

void ZBDateRepeat::set_exclude(const ZBDateSet& set)
{
    m_exclude = set;
    clean_exclude();
    invalidate();
}

int ZBDateRepeat::set_exclude(const std::string& text)
{
    ZBDateSet set;
    if (!zb_trim(text).empty()) {
        for (const std::string& item : split_quoted(text, ',')) {
            ZBDateSlot slot;
            if (!slot.from_compact_string(zb_trim(item)))
                return zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s is not a day or a range of days.", item.c_str());
            set.add(slot, 0);
        }
    }
    m_exclude = set;
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::exclude_day(const ZBDate& date)
{
    if (!date.is_ok())
        return;
    m_exclude.add(ZBDateUtils::day_slot(date), 0);
    clean_exclude();
    invalidate();
}

void ZBDateRepeat::exclude_range(const ZBDateSlot& slot)
{
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok())
        return;
    m_exclude.add(ZBDateSlot(ZBDateUtils::start_day(slot.m_start), ZBDateUtils::end_day(slot.m_end), true), 0);
    clean_exclude();
    invalidate();
}

bool ZBDateRepeat::is_excluded(const ZBDate& date) const
{
    return !m_exclude.empty() && m_exclude.match(date);
}

std::string ZBDateRepeat::get_exclude_string() const
{
    std::vector<std::string> parts;
    for (int i = 0; i < m_exclude.size(); ++i)
        parts.push_back(m_exclude[i]->to_compact_string());
    return join(parts, ",");
}

void ZBDateRepeat::clean_exclude()
{
    // Old exclusions can no longer matter and would only grow the file.
    ZBDate limit = ZBDateUtils::now() - ZBDuration(std::int64_t(C_ExcludeKeepDays) * ZBDate::C_DaySecs);
    while (!m_exclude.empty() && m_exclude[0]->m_end < limit)
        m_exclude.erase(0);
}

int ZBDateRepeat::initialise(const ZBRepeatConfig* config)
{
    if (config)
        m_capabilities = config->get_capability();
    int result = sanity_check(config);
    invalidate();
    return result;
}

int ZBDateRepeat::sanity_check(const ZBRepeatConfig*)
{
    clean_exclude();
    if (m_type < E_Days)
        m_offset = C_OffsetLast;
    else if (m_type == E_Days && m_offset == C_OffsetLast)
        m_offset = C_OffsetDuration + ZBDate::C_HourSecs;
    if (ZBRepeatConfig::capability_level(m_capabilities) == 1)
        m_at.clear();
    if (m_type == E_Expression)
        m_offset = C_OffsetExpression;
    if (m_interval < 1)
        m_interval = 1;
    if (m_begin.is_ok() && m_end.is_ok() && m_end < m_begin)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "The end of a repeat cannot come before its start.");
    return ZBErrC_ok;
}

std::string ZBDateRepeat::work_tag() const
{
    E_WorkdayType type = E_WorkNone;
    int id = -1;
    get_workday(type, id);
    return id == -1 ? std::string() : std::to_string(id);
}

bool ZBDateRepeat::is_workday(const ZBDate& date, const ZBRepeatConfig* config) const
{
    ZBDateDetails details = details_of(date);
    return config ? config->is_workday(details, work_tag()) : ZBDateDetails::is_workday(details);
}

ZBDate ZBDateRepeat::step_period(const ZBDate& date) const
{
    ZBDateDetails p = details_of(date);
    int keepDay = p.m_dayMonth;
    switch (m_type) {
    case E_Days:
        p.m_dayMonth += m_interval;
        break;
    case E_Weeks:
        p.m_dayMonth += 7 * m_interval;
        break;
    case E_Months:
    case E_Years:
        // Into the first day of the new month first, so the old day of month
        // cannot carry the step into the month after.
        p.m_dayMonth = 0;
        if (m_type == E_Months)
            p.m_month += m_interval;
        else
            p.m_year += m_interval;
        p.recalculate();
        p.m_dayMonth = std::min(keepDay, ZBDateUtils::days_in_month(p.m_month, p.m_year) - 1);
        break;
    default:
        break;
    }
    p.recalculate();
    return date_of(p);
}

ZBDate ZBDateRepeat::step_once(const ZBDate& date, const ZBRepeatConfig* config) const
{
    switch (m_type) {
    case E_Seconds:
        return date + ZBDuration(std::max(1, m_interval));
    case E_Expression: {
        ZBDate result;
        if (m_exp.empty() || !result.from_string(m_exp, &date, config) || !(result > date))
            return date;
        return result;
    }
    case E_SetDates:
        for (const ZBDate& candidate : m_set)
            if (candidate > date)
                return candidate;
        return date;
    case E_Days:
    case E_Weeks:
    case E_Months:
    case E_Years:
        break;
    default:
        return date;
    }
    // The earliest candidate after date in date's own period; else in the
    // period the interval leads to, and on from there.
    ZBDate period = date;
    for (int tries = 0; tries < C_MaxPeriods; ++tries) {
        const ZBDateDetails base = details_of(period);
        ZBDate best(ZBDate::E_Blank);
        std::vector<int> codes = m_days;
        if (codes.empty() || m_type == E_Days)
            codes.assign(1, INT32_MIN);
        for (int code : codes) {
            ZBDateDetails d = base;
            if (code != INT32_MIN) {
                if (m_type == E_Weeks) {
                    d.set_weekday(code, d.m_dayMonth, d.m_month, d.m_year);
                } else if (m_type == E_Months) {
                    if (code >= 40) {
                        int week = 0;
                        int weekday = 0;
                        from_weekday_of_month(code, week, weekday);
                        d.set_weekday_no(weekday, week, d.m_month, d.m_year);
                    } else if (code < 0) {
                        d.m_dayMonth = ZBDateUtils::days_in_month(d.m_month, d.m_year) + code;
                    } else {
                        d.m_dayMonth = code;
                    }
                } else {
                    int a = 0;
                    int b = 0;
                    if (from_yearday(code, a, b)) {
                        d.m_month = 0;
                        d.m_dayMonth = 7 * b;
                        d.recalculate();
                        d.set_weekday(a, d.m_dayMonth, d.m_month, d.m_year);
                    } else {
                        d.m_month = b;
                        d.m_dayMonth = a;
                    }
                }
            }
            if (m_at.empty()) {
                ZBDate candidate = date_of(d);
                if (candidate > date && candidate < best)
                    best = candidate;
            } else {
                for (const ZBDuration& at : m_at) {
                    ZBDateDetails timed = d;
                    set_clock(timed, at);
                    ZBDate candidate = date_of(timed);
                    if (candidate > date && candidate < best)
                        best = candidate;
                }
            }
        }
        if (best.is_ok())
            return best;
        ZBDate nextPeriod = step_period(period);
        if (!(nextPeriod > period))
            break;
        period = nextPeriod;
    }
    return date;
}

ZBDate ZBDateRepeat::step(const ZBDate& date, const ZBRepeatConfig* config) const
{
    ZBDate result = step_once(date, config);
    if (!result.is_ok() || !(result > date))
        return date;
    E_WorkdayType work = E_WorkNone;
    int id = -1;
    get_workday(work, id);
    if (work == E_WorkNext) {
        ZBDateDetails d = details_of(result);
        for (int i = 0; i < C_MaxWorkDays && !is_workday(date_of(d), config); ++i) {
            d.m_dayMonth += 1;
            d.recalculate();
        }
        result = date_of(d);
    } else if (work == E_WorkOnly) {
        int tries = 0;
        while (!is_workday(result, config)) {
            ZBDate further = step_once(result, config);
            if (++tries > C_MaxWorkTries || !(further > result))
                return date;
            result = further;
        }
    }
    return result;
}

ZBDate ZBDateRepeat::next_date(const ZBDate& date, const ZBRepeatConfig* config) const
{
    if (m_type == E_None || m_type == E_Choice)
        return ZBDate(ZBDate::E_Blank);
    ZBDate result = step(date, config);
    for (int i = 0; i < C_MaxSteps && result > date && is_excluded(result); ++i) {
        ZBDate further = step(result, config);
        if (!(further > result))
            return date;
        result = further;
    }
    if (is_excluded(result))
        return date;
    return result;
}

ZBDateSlot ZBDateRepeat::generate_slot(const ZBDate& last, const ZBDate& date, const ZBDate& next,
                                       const ZBRepeatConfig* config) const
{
    ZBDuration duration;
    int days = 0;
    ZBDate end = date;
    switch (get_offset_details(duration, days)) {
    case E_OffBlank:
        break;
    case E_OffExpression: {
        ZBDate result;
        if (!m_offsetExp.empty() && result.from_string(m_offsetExp, &date, config))
            end = result;
        break;
    }
    case E_OffLast:
        if (next.is_ok() && next > date)
            end = next;
        else if (last.is_ok())
            end = last;
        break;
    case E_OffDuration:
        end = date + duration;
        break;
    case E_OffTime: {
        ZBDateDetails d = details_of(date);
        d.m_dayMonth += days;
        set_clock(d, duration);
        end = date_of(d);
        break;
    }
    }
    E_WorkdayType work = E_WorkNone;
    int id = -1;
    get_workday(work, id);
    if (work == E_WorkAvailable && end.is_ok()) {
        ZBDateDetails d = details_of(end);
        for (int i = 0; i < C_MaxWorkDays && !is_workday(date_of(d), config); ++i) {
            d.m_dayMonth += 1;
            d.recalculate();
        }
        end = date_of(d);
    }
    if (!end.is_ok() || end < date)
        end = date;
    return ZBDateSlot(date, end);
}

int ZBDateRepeat::generate_slots(const ZBDateSlot& seed, const ZBDateSlot& range, int limit,
                                 const ZBRepeatConfig* config, std::vector<ZBDateSlot>& out) const
{
    out.clear();
    if (limit <= 0 || m_type == E_None || m_type == E_Choice)
        return ZBErrC_ok;
    ZBDate walk = range.m_start.is_ok() ? range.m_start : ZBDateUtils::now();
    if (seed.m_start.is_ok()) {
        out.push_back(seed);
        ZBDuration duration;
        int days = 0;
        const ZBDate& from = get_offset_details(duration, days) == E_OffBlank ? seed.m_end : seed.m_start;
        if (from.is_ok() && from > walk)
            walk = from;
    } else if (m_begin.is_ok() && walk <= m_begin && m_type != E_SetDates && m_type != E_Expression) {
        // A series begins with its first date.
        walk = m_begin;
        if (!is_excluded(walk) && (!range.m_end.is_ok() || walk <= range.m_end)) {
            ZBDate following = next_date(walk, config);
            out.push_back(generate_slot(ZBDate(), walk, following, config));
        }
    }
    ZBDate next = next_date(walk, config);
    for (int steps = 0; steps < C_MaxSteps && int(out.size()) < limit; ++steps) {
        if (!next.is_ok() || !(next > walk))
            break;
        if (range.m_end.is_ok() && next > range.m_end)
            break;
        if (m_end.is_ok() && next > m_end)
            break;
        ZBDate following = next_date(next, config);
        if (!m_begin.is_ok() || !(next < m_begin))
            out.push_back(generate_slot(walk, next, following, config));
        walk = next;
        next = following;
    }
    return ZBErrC_ok;
}

int ZBDateRepeat::generate_back_slots(const ZBDateSlot& seed, const ZBDateSlot& range, int limit,
                                      const ZBRepeatConfig* config, std::vector<ZBDateSlot>& out) const
{
    out.clear();
    if (limit <= 0 || m_type == E_None || m_type == E_Choice || !range.m_start.is_ok())
        return ZBErrC_ok;
    ZBDate stop = seed.m_start.is_ok() ? seed.m_start : range.m_end;
    if (!stop.is_ok())
        stop = ZBDateUtils::now();
    // Rules only step forwards, so walk from the range's start and keep the
    // last few before the stop.
    std::deque<ZBDateSlot> kept;
    std::vector<ZBDateSlot> forward;
    ZBDate walk = range.m_start;
    ZBDate next = next_date(walk, config);
    for (int steps = 0; steps < C_MaxSteps; ++steps) {
        if (!next.is_ok() || !(next > walk) || !(next < stop))
            break;
        ZBDate following = next_date(next, config);
        if ((!m_begin.is_ok() || !(next < m_begin)) && (!m_end.is_ok() || !(next > m_end))) {
            kept.push_back(generate_slot(walk, next, following, config));
            if (int(kept.size()) > limit)
                kept.pop_front();
        }
        walk = next;
        next = following;
    }
    out.assign(kept.rbegin(), kept.rend());
    return ZBErrC_ok;
}

int ZBDateRepeat::generate(bool force, const ZBDateSlot& seed, const ZBRepeatConfig* config)
{
    if (m_state == 2 && !force)
        return ZBErrC_ok;
    m_slots.clear();
    m_backSlots.clear();
    ZBDateSlot range = g_range;
    if (!range.m_start.is_ok()) {
        ZBDate now = ZBDateUtils::now();
        range = ZBDateSlot(now - ZBDuration(std::int64_t(365) * ZBDate::C_DaySecs),
                           now + ZBDuration(std::int64_t(2 * 365) * ZBDate::C_DaySecs));
    }
    if (m_begin.is_ok())
        range.m_start = m_begin;
    if (m_end.is_ok())
        range.m_end = m_end;
    int result = generate_slots(seed, range, g_limit, config, m_slots);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    m_state = 2;
    return ZBErrC_ok;
}

void ZBDateRepeat::apply_seed_slot(const ZBDateSlot& slot, bool replace)
{
    if (!slot.m_start.is_ok())
        return;
    if (replace && !m_slots.empty())
        m_slots.front() = slot;
    else if (m_slots.empty() || m_slots.front() != slot)
        m_slots.insert(m_slots.begin(), slot);
}

int ZBDateRepeat::days_between() const
{
    int n = std::max<int>(1, int(m_days.size()));
    switch (m_type) {
    case E_Seconds:
        return m_interval / ZBDate::C_DaySecs;
    case E_Days:
        return m_interval;
    case E_Weeks:
        return m_interval * 7 / n;
    case E_Months:
        return m_interval * 30 / n;
    case E_Years:
        return m_interval * 365 / n;
    case E_Expression:
        return 365;
    default:
        return 3650;
    }
}

void ZBDateRepeat::from_weekday_of_month(int value, int& week, int& weekday)
{
    weekday = value % 10;
    week = value / 10 - 4;
}

bool ZBDateRepeat::from_yearday(int value, int& dayOrWeekday, int& monthOrWeek)
{
    if (value >= 5000) {
        dayOrWeekday = (value - 5000) % 10;
        monthOrWeek = (value - 5000) / 10;
        return true;
    }
    dayOrWeekday = (value - 100) % 200;
    monthOrWeek = (value - 100) / 200;
    return false;
}

void ZBDateRepeat::set_global_range(const ZBDateSlot& slot, int limit)
{
    g_range = slot;
    g_limit = limit;
}

std::vector<std::string> ZBDateRepeat::get_types()
{
    return {"Not repeating", "H/M/S", "Days", "Weeks", "Months", "Years", "Expression", "Set Dates", "Choice"};
}

std::vector<std::string> ZBDateRepeat::get_days_options(int type, bool longForm)
{
    std::vector<std::string> options;
    if (type == E_Weeks) {
        for (int d = 0; d < 7; ++d)
            options.push_back(zblocale().weekday_name(d, !longForm));
    } else if (type == E_Months) {
        for (int d = 0; d < 31; ++d)
            options.push_back(ordinal(d + 1));
        options.push_back(ordinal(-1));
        options.push_back(ordinal(-2));
    } else if (type == E_Years) {
        for (int m = 0; m < 12; ++m)
            options.push_back(zblocale().month_name(m, !longForm));
    }
    return options;
}

std::string ZBDateRepeat::get_interval_unit() const
{
    switch (m_type) {
    case E_Seconds:
        return "second";
    case E_Days:
        return "day";
    case E_Weeks:
        return "week";
    case E_Months:
        return "month";
    case E_Years:
        return "year";
    default:
        return std::string();
    }
}

std::string ZBDateRepeat::monthday_to_string(int day)
{
    if (day >= 40) {
        int week = 0;
        int weekday = 0;
        from_weekday_of_month(day, week, weekday);
        return (week == 5 ? std::string("last") : ordinal(week + 1)) + " " + zblocale().weekday_name(weekday, false);
    }
    return day < 0 ? ordinal(day) : ordinal(day + 1);
}

std::string ZBDateRepeat::yearday_to_string(int day)
{
    int a = 0;
    int b = 0;
    if (from_yearday(day, a, b))
        return zblocale().weekday_name(a, false) + " week " + std::to_string(b + 1);
    return std::to_string(a + 1) + " " + zblocale().month_name(b, true);
}

std::string ZBDateRepeat::get_days_str() const
{
    std::vector<std::string> parts;
    for (int day : m_days) {
        if (m_type == E_Weeks)
            parts.push_back(zblocale().weekday_name(day, true));
        else if (m_type == E_Months)
            parts.push_back(monthday_to_string(day));
        else if (m_type == E_Years)
            parts.push_back(yearday_to_string(day));
    }
    return join(parts, ", ");
}

std::string ZBDateRepeat::workday_to_natural(bool start, const ZBRepeatConfig* config) const
{
    E_WorkdayType type = E_WorkNone;
    int id = -1;
    get_workday(type, id);
    std::string name = "work";
    if (config && id != -1) {
        std::vector<int> ids;
        std::vector<std::string> names;
        config->get_timetypes(ids, names);
        for (size_t i = 0; i < ids.size() && i < names.size(); ++i)
            if (ids[i] == id)
                name = names[i];
    }
    switch (type) {
    case E_WorkNext:
        return start ? "Next " + name + " day." : " on next " + name + " day";
    case E_WorkOnly:
        return start ? "Only on " + name + " days." : " only on " + name + " days";
    case E_WorkAvailable: {
        ZBDuration duration;
        int days = 0;
        get_offset_details(duration, days);
        std::string n = std::to_string(std::max<std::int64_t>(1, duration.get_days() + days));
        return start ? "If " + n + " days available." : " if " + n + " days available";
    }
    default:
        return std::string();
    }
}

std::string ZBDateRepeat::offset_to_natural() const
{
    ZBDuration duration;
    int days = 0;
    switch (get_offset_details(duration, days)) {
    case E_OffLast:
        return "End of last repeat.";
    case E_OffDuration:
        return duration.to_string(false) + " after start.";
    case E_OffTime: {
        std::string time = ZBDuration(duration).to_string(false);
        if (days == 0)
            return "At " + time + ".";
        return (days == 1 ? std::string("1 day ") : std::to_string(days) + " days ") + "after at " + time + ".";
    }
    case E_OffExpression:
        return m_offsetExp;
    default:
        return std::string();
    }
}

std::string ZBDateRepeat::range_to_string(bool start) const
{
    std::string text;
    if (m_begin.is_ok() && m_end.is_ok())
        text = "From " + m_begin.to_string("%C") + " to " + m_end.to_string("%C");
    else if (m_begin.is_ok())
        text = "From " + m_begin.to_string("%C");
    else if (m_end.is_ok())
        text = "To " + m_end.to_string("%C");
    if (!m_exclude.empty()) {
        std::vector<std::string> parts;
        for (int i = 0; i < m_exclude.size(); ++i) {
            const ZBDateSetEntry* entry = m_exclude[i];
            parts.push_back(entry->m_start.to_string("%D") + "-" + entry->m_end.to_string("%D"));
        }
        text += (text.empty() && start ? "Excluding " : " excluding ") + join(parts, ",");
    }
    return text;
}

std::string ZBDateRepeat::to_natural(const ZBRepeatConfig* config) const
{
    std::string text;
    switch (m_type) {
    case E_Seconds:
        text = "Every " + ZBDuration(m_interval).to_string(true);
        break;
    case E_Days:
    case E_Weeks:
    case E_Months:
    case E_Years: {
        text = "Every ";
        if (m_interval > 1)
            text += std::to_string(m_interval) + " " + get_interval_unit() + "s";
        else
            text += get_interval_unit();
        if (!m_days.empty())
            text += " on " + get_days_str();
        if (!m_at.empty()) {
            std::vector<std::string> times;
            for (const ZBDuration& at : m_at)
                times.push_back(at.to_string(at.get_seconds() % 60 != 0));
            text += " at " + join(times, ", ");
        }
        break;
    }
    case E_Expression:
        text = m_exp;
        break;
    case E_SetDates: {
        std::vector<std::string> dates;
        for (const ZBDate& date : m_set)
            dates.push_back(date.to_string("%C"));
        text = "On " + join(dates, ", ");
        break;
    }
    case E_Choice:
        return "When I Choose.";
    default:
        return "Not repeating";
    }
    return text + workday_to_natural(false, config);
}

std::string ZBDateRepeat::to_string() const
{
    if (m_type == E_None)
        return std::string();
    std::vector<std::string> parts;
    parts.push_back("T=" + std::to_string(m_type));
    if (uses_interval())
        parts.push_back("N=" + std::to_string(m_interval));
    if (uses_days() && !m_days.empty()) {
        std::vector<std::string> days;
        for (int day : m_days)
            days.push_back(std::to_string(day));
        parts.push_back("D=" + join(days, ","));
    }
    if (uses_at() && !m_at.empty()) {
        std::vector<std::string> at;
        for (const ZBDuration& time : m_at)
            at.push_back(std::to_string(time.get_as_seconds()));
        parts.push_back("A=" + join(at, ","));
    }
    if (m_type == E_SetDates && !m_set.empty()) {
        std::vector<std::string> dates;
        for (const ZBDate& date : m_set)
            dates.push_back(date_text(date));
        parts.push_back("S=" + join(dates, ","));
    }
    if (uses_offset() && m_offset != C_OffsetLast)
        parts.push_back("O=" + std::to_string(m_offset));
    if (uses_range() && m_begin.is_ok() && !get_fixed(E_FixedBegin))
        parts.push_back("B=" + date_text(m_begin));
    if (uses_offset() && m_work != C_DefaultWork)
        parts.push_back("W=" + std::to_string(m_work));
    if (uses_range() && m_end.is_ok() && !get_fixed(E_FixedEnd))
        parts.push_back("E=" + date_text(m_end));
    if (m_type == E_Expression && !get_fixed(E_FixedDue))
        parts.push_back("Y=\"" + m_exp + "\"");
    if ((m_type == E_Expression || m_offset == C_OffsetExpression) && !m_offsetExp.empty() && !get_fixed(E_FixedOffset))
        parts.push_back("Z=\"" + m_offsetExp + "\"");
    if (!m_exclude.empty() && !get_fixed(E_FixedExclude))
        parts.push_back("X=" + get_exclude_string());
    return join(parts, "@");
}

int ZBDateRepeat::from_string(const std::string& text)
{
    // Fields the owner supplies are not in the text and keep their values.
    ZBDate begin = m_begin;
    ZBDate end = m_end;
    std::string exp = m_exp;
    std::string offsetExp = m_offsetExp;
    ZBDateSet exclude = m_exclude;
    int fixed = m_fixed;
    int capabilities = m_capabilities;
    set_defaults(false);
    m_fixed = fixed;
    m_capabilities = capabilities;
    if (get_fixed(E_FixedBegin))
        m_begin = begin;
    if (get_fixed(E_FixedEnd))
        m_end = end;
    if (get_fixed(E_FixedDue))
        m_exp = exp;
    if (get_fixed(E_FixedOffset))
        m_offsetExp = offsetExp;
    if (get_fixed(E_FixedExclude))
        m_exclude = exclude;
    std::string whole = zb_trim(text);
    if (whole.empty())
        return ZBErrC_ok;
    for (const std::string& raw : split_quoted(whole, '@')) {
        std::string part = zb_trim(raw);
        if (part.empty())
            continue;
        int result = part.compare(0, 7, "REPEAT_") == 0 ? parse_old_form(part) : parse_part(part, whole);
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    if (m_begin.is_ok() && m_end.is_ok() && m_end < m_begin)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "The end of a repeat cannot come before its start.");
    invalidate();
    return ZBErrC_ok;
}

int ZBDateRepeat::parse_part(const std::string& part, const std::string& whole)
{
    size_t eq = part.find('=');
    std::string key = zb_trim(part.substr(0, eq));
    std::string value = eq == std::string::npos ? std::string() : part.substr(eq + 1);
    const char* k = key.c_str();
    auto bad = [&](const char* form) {
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s should be of the form \"%s%s%s\"", part.c_str(), k, "=", form);
    };
    long long n = 0;
    std::vector<long long> list;
    if (key == "T") {
        if (eq == std::string::npos || !read_int(value, n) || ((n < 0 || n >= E_NTypes) && n != C_V1RepeatManual))
            return bad("[0-6]");
        m_type = n == C_V1RepeatManual ? int(E_Choice) : int(n);
        if (m_type == E_Expression)
            m_offset = C_OffsetExpression;
    } else if (key == "N") {
        // A rule that does not move would end its series at once.
        if (!read_int(value, n) || n < 1 || n > 1000000000)
            return bad("N");
        m_interval = int(n);
    } else if (key == "D") {
        if (!read_int_list(value, list))
            return bad("D[,D]");
        std::vector<int> days;
        for (long long day : list) {
            if (day < -1000000 || day > 1000000 || !valid_day(m_type, int(day)))
                return bad("D[,D]");
            days.push_back(int(day));
        }
        std::sort(days.begin(), days.end());
        days.erase(std::unique(days.begin(), days.end()), days.end());
        m_days = days;
    } else if (key == "A") {
        if (!read_int_list(value, list))
            return bad("D[,D]");
        m_at.clear();
        for (long long seconds : list) {
            if (seconds < 0 || seconds >= ZBDate::C_DaySecs)
                return bad("D[,D]");
            m_at.push_back(ZBDuration(seconds));
        }
        std::sort(m_at.begin(), m_at.end());
    } else if (key == "S") {
        m_set.clear();
        for (const std::string& item : split_quoted(value, ',')) {
            ZBDate date;
            if (!read_date(item, date))
                return bad("D[,D]");
            m_set.push_back(date);
        }
        std::sort(m_set.begin(), m_set.end(), compare_zbdates);
    } else if (key == "O") {
        if (!read_int(value, n))
            return bad("D");
        m_offset = n;
    } else if (key == "W") {
        if (!read_int(value, n) || n < -2000000000 || n > 2000000000)
            return bad("D");
        m_work = int(n);
    } else if (key == "B" || key == "E") {
        ZBDate date;
        if (!read_date(value, date))
            return bad("\"DATE\"");
        (key == "B" ? m_begin : m_end) = date;
    } else if (key == "Y" || key == "Z") {
        std::string expression;
        if (!unquote(value, expression))
            return bad("\"EXPRESSION\"");
        (key == "Y" ? m_exp : m_offsetExp) = expression;
    } else if (key == "X") {
        ZBDateSet set;
        for (const std::string& item : split_quoted(value, ',')) {
            ZBDateSlot slot;
            if (!slot.from_compact_string(zb_trim(item)))
                return bad("E[,E]");
            set.add(slot, 0);
        }
        m_exclude = set;
    } else if (key == "C") {
        if (!read_int(value, n))
            return zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s should be of the form \"C=\"", part.c_str());
        m_capabilities = int(n);
    } else {
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "I do not understand %s in %s", part.c_str(), whole.c_str());
    }
    return ZBErrC_ok;
}

int ZBDateRepeat::parse_old_form(const std::string& part)
{
    size_t open = part.find('(');
    size_t close = part.rfind(')');
    std::string key = part.substr(0, open);
    std::string inner = open != std::string::npos && close != std::string::npos && close > open
                            ? zb_trim(part.substr(open + 1, close - open - 1))
                            : std::string();
    auto bad = [&](const char* form) {
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s should be of the form \"%s%s\"", part.c_str(), key.c_str(), form);
    };
    std::vector<std::string> words = zb_tokenise(inner, " ,", true);
    if (key == "REPEAT_DAYS") {
        long long n = 0;
        if (!read_int(inner, n) || n < 1)
            return bad("(D)");
        m_type = E_Days;
        m_interval = int(n);
    } else if (key == "REPEAT_WEEKDAY") {
        std::vector<int> days;
        for (const std::string& word : words) {
            int day = zblocale().weekday_number(word);
            if (day < 0)
                return bad("(mon tue wed)");
            days.push_back(day);
        }
        if (days.empty())
            return bad("(mon tue wed)");
        m_type = E_Weeks;
        set_days(days);
    } else if (key == "REPEAT_MONTHDAY") {
        std::vector<int> days;
        for (const std::string& word : words) {
            long long n = 0;
            if (!read_int(word, n) || n < 1 || n > 31)
                return bad("(1 2 4 12)");
            days.push_back(int(n) - 1);
        }
        if (days.empty())
            return bad("(1 2 4 12)");
        m_type = E_Months;
        set_days(days);
    } else if (key == "REPEAT_YEARDAY") {
        std::vector<int> days;
        if (words.empty() || words.size() % 2 != 0)
            return bad("(3 Jun 12 Sep)");
        for (size_t i = 0; i + 1 < words.size(); i += 2) {
            long long n = 0;
            int month = zblocale().month_number(words[i + 1]);
            if (!read_int(words[i], n) || n < 1 || n > 31 || month < 0)
                return bad("(3 Jun 12 Sep)");
            days.push_back(to_yearday(int(n) - 1, month));
        }
        m_type = E_Years;
        set_days(days);
    } else {
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "I do not understand %s in %s", part.c_str(), part.c_str());
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
