#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdlib>
#include <deque>
#include <ostream>
#include <sstream>

namespace Tervalon {

const ZBDuration ZBDateRepeat::C_DefaultAt(9 * ZBDate::C_HourSecs);
thread_local ZBDateSlot ZBDateRepeat::g_range;
thread_local int ZBDateRepeat::g_limit = 1000;

namespace {

const ZBObjectPreReg g_register("ZBDateRepeat", &ZBDateRepeat::create_zbobject);

// Counts compilations anywhere: a rule compiled (or given a compiled form)
// since a thread worked out a period may be a new rule at the same address.
std::atomic<std::uint64_t> g_compileSerial(1);

// The dates every alternative of a calendar rule gives from one period (a
// week of a weekly rule, a month of a monthly one), sorted. A series steps
// through one period several times in a row, so the thread keeps the last
// period it worked out: a rule on five weekdays then costs about one
// alternative per instance instead of ten.
struct PeriodCandidates {
    const void* m_rule = nullptr;
    std::uint64_t m_serial = 0;
    const ZBRepeatConfig* m_config = nullptr;
    // What the first alternative gave: the same date names the same period.
    ZBDate m_key;
    std::vector<ZBDate> m_dates;
};
thread_local PeriodCandidates t_period;

// Rounds of an "only on work days" step before the series ends, as many as
// a date expression allows itself.
const int C_MaxWorkTries = 1000;
const int C_ExcludeKeepDays = 30;
// The longest step a rule may take: from year 1 it must still land before
// year 9998, the first year that is not a date.
const int C_MaxYears = 9996;

ZBDateDetails details_of(const ZBDate& date)
{
    return ZBDateDetails(date, ZBDate::C_OriginalTime);
}

ZBDate date_of(ZBDateDetails details)
{
    return details.get_date(ZBDate::C_OriginalTime);
}

bool same_moment(const ZBDate& a, const ZBDate& b)
{
    return !(a < b) && !(b < a);
}

// The terms that set the clock to a time of day.
void add_clock(std::vector<ZBDateExpTerm>& terms, const ZBDuration& at)
{
    std::int64_t seconds = at.get_as_seconds() % ZBDate::C_DaySecs;
    terms.emplace_back(ZBDateExpTerm::SetHour, int(seconds / 3600));
    terms.emplace_back(ZBDateExpTerm::SetMinute, int(seconds / 60 % 60));
    terms.emplace_back(ZBDateExpTerm::SetSecond, int(seconds % 60));
    terms.emplace_back(ZBDateExpTerm::SetMicro, int(at.get_micro()));
}

// A time of day in the locale's own clock form ("17:00", "05:00 PM").
std::string time_text(const ZBDuration& at)
{
    std::int64_t seconds = std::max<std::int64_t>(0, at.get_as_seconds()) % ZBDate::C_DaySecs;
    ZBDate moment(2000, 0, 0, int(seconds / 3600), int(seconds / 60 % 60), int(seconds % 60), int(at.get_micro()),
                  ZBDate::C_GMT);
    return moment.to_string("%t%N");
}

// The locale's short or long name of a weekday or month: of its two names
// the shorter is the short one.
std::string weekday_word(int day, bool longForm)
{
    std::string a = zblocale().weekday_name(day, false);
    std::string b = zblocale().weekday_name(day, true);
    return (a.size() < b.size()) == longForm ? b : a;
}

std::string month_word(int month, bool longForm)
{
    std::string a = zblocale().month_name(month, false);
    std::string b = zblocale().month_name(month, true);
    return (a.size() < b.size()) == longForm ? b : a;
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
      m_end(ZBDate::E_Blank), m_capabilities(0), m_fixed(0), m_state(0), m_tail(0), m_usesWork(false),
      m_offsetWork(-1)
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
    // A copy is a new rule: it compiles and generates its own instances.
    invalidate();
    return *this;
}

void ZBDateRepeat::load_slots(const ZBDateRepeat& other)
{
    *this = other;
    m_slots = other.m_slots;
    m_backSlots = other.m_backSlots;
    if (other.m_state > 0) {
        m_expr = other.m_expr;
        m_offsetExpr = other.m_offsetExpr;
        m_choices = other.m_choices;
        m_tail = other.m_tail;
        m_usesWork = other.m_usesWork;
        m_exprWorkTag = other.m_exprWorkTag;
        m_offsetWork = other.m_offsetWork;
        ++g_compileSerial;
    }
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
    writer.add("m_exclude", exclude_storage_string());
    writer.add("m_exp", m_exp);
    writer.add("m_offsetExp", m_offsetExp);
    if (m_state > 0) {
        writer.add("m_expr", m_expr.to_string());
        writer.add("m_offsetExpr", m_offsetExpr.to_string());
    }
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
    m_expr.set_defaults();
    m_offsetExpr.set_defaults();
    m_choices.clear();
    m_tail = 0;
    m_usesWork = false;
    m_exprWorkTag.clear();
    m_offsetWork = -1;
}

int ZBDateRepeat::max_interval(int type)
{
    switch (type) {
    case E_Seconds:
        return INT_MAX;
    case E_Days:
        return C_MaxYears * 365;
    case E_Weeks:
        return C_MaxYears * 52;
    case E_Months:
        return C_MaxYears * 12;
    case E_Years:
        return C_MaxYears;
    default:
        return 0;
    }
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
    // A form that switches a long daily rule to years keeps the longest
    // interval the new unit allows.
    if (uses_interval())
        m_interval = std::min(m_interval, max_interval(m_type));
    invalidate();
    return ZBErrC_ok;
}

int ZBDateRepeat::set_interval(int interval)
{
    if (interval < 1)
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "A repeat interval must be at least 1, not %d.", interval);
    if (uses_interval() && interval > max_interval(m_type))
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "Every %d %ss cannot give a date before the year 9998.", interval,
                         get_interval_unit().c_str());
    m_interval = interval;
    invalidate();
    return ZBErrC_ok;
}

void ZBDateRepeat::adjust_interval(int n)
{
    if (m_type < E_Days || m_type > E_Years)
        return;
    std::int64_t interval = std::int64_t(m_interval) + n;
    m_interval = int(std::max<std::int64_t>(1, std::min<std::int64_t>(interval, max_interval(m_type))));
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
        // Past the month's length the day counts on into the months after:
        // day 60 in January is 1 March, or 29 February in a leap year.
        return day >= 100 && a >= 0 && a <= 199 && b >= 0 && b <= 11;
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
    for (int i = 0; i < m_exclude.size(); ++i) {
        const ZBDateSetEntry* entry = m_exclude[i];
        parts.push_back(entry->m_start.to_string("%D") + "-" + entry->m_end.to_string("%D"));
    }
    return join(parts, ",");
}

std::string ZBDateRepeat::exclude_storage_string() const
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
    if (uses_interval())
        m_interval = std::min(m_interval, max_interval(m_type));
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

bool ZBDateRepeat::workday_ahead(const ZBDate& date, const ZBRepeatConfig* config, const std::string& tag) const
{
    ZBDateDetails d = details_of(date);
    for (int i = 0; i < C_WorkPeriodDays; ++i) {
        if (config ? config->is_workday(d, tag) : ZBDateDetails::is_workday(d))
            return true;
        d.m_dayMonth += 1;
        d.recalculate();
    }
    return false;
}

namespace {

// The terms that put a date on one listed day of its week, month or year.
std::vector<ZBDateExpTerm> day_terms(int type, int code)
{
    std::vector<ZBDateExpTerm> terms;
    if (type == ZBDateRepeat::E_Weeks) {
        terms.emplace_back(ZBDateExpTerm::SetWeekday, code);
    } else if (type == ZBDateRepeat::E_Months) {
        if (code >= 40) {
            int week = 0;
            int weekday = 0;
            ZBDateRepeat::from_weekday_of_month(code, week, weekday);
            terms.emplace_back(ZBDateExpTerm::SetWeekday, ZBDateExpTerm::encode_weekday_month(week, weekday));
        } else {
            // A negative day counts from the month's end.
            terms.emplace_back(ZBDateExpTerm::SetDay, code);
        }
    } else if (type == ZBDateRepeat::E_Years) {
        int a = 0;
        int b = 0;
        if (ZBDateRepeat::from_yearday(code, a, b)) {
            terms.emplace_back(ZBDateExpTerm::SetMonth, 0);
            terms.emplace_back(ZBDateExpTerm::SetDay, 0);
            terms.emplace_back(ZBDateExpTerm::SetWeek, b);
            terms.emplace_back(ZBDateExpTerm::SetWeekday, a);
        } else {
            terms.emplace_back(ZBDateExpTerm::SetMonth, b);
            terms.emplace_back(ZBDateExpTerm::SetDay, a);
        }
    }
    return terms;
}

// A date no calendar field can reach past: year 9998 and on are not dates.
bool is_real(const ZBDate& date)
{
    return date.is_ok() && date.get_year() < ZBDate::C_InvalidDateYear;
}

} // namespace

void ZBDateRepeat::add_choice(const std::vector<ZBDateExpTerm>& terms, bool samePeriod) const
{
    m_expr.add_term(m_choices.empty() ? ZBDateExpTerm::Open : ZBDateExpTerm::Or, 0);
    Choice choice;
    choice.m_first = m_expr.size();
    for (const ZBDateExpTerm& term : terms)
        m_expr.add_term(term.m_type, term.m_value, term.m_tag);
    choice.m_last = m_expr.size() - 1;
    choice.m_samePeriod = samePeriod;
    m_choices.push_back(choice);
}

void ZBDateRepeat::populate_expressions(const ZBRepeatConfig*) const
{
    m_expr.set_defaults();
    m_offsetExpr.set_defaults();
    m_choices.clear();
    m_tail = 0;
    m_usesWork = false;
    m_exprWorkTag.clear();
    m_offsetWork = -1;
    compile();
    ++g_compileSerial;
    if (m_state == 0)
        m_state = 1;
}

const ZBDateExp& ZBDateRepeat::get_expression() const
{
    if (m_state == 0)
        populate_expressions(nullptr);
    return m_expr;
}

const ZBDateExp& ZBDateRepeat::get_offset_expression() const
{
    if (m_state == 0)
        populate_expressions(nullptr);
    return m_offsetExpr;
}

void ZBDateRepeat::compile() const
{
    const int n = std::max(1, std::min(m_interval, max_interval(m_type)));
    switch (m_type) {
    case E_Seconds:
        m_expr.add_term(ZBDateExpTerm::AddSecond, n);
        break;
    case E_Days:
    case E_Weeks:
    case E_Months:
    case E_Years: {
        // Each listed day, in this period and in the one the interval leads
        // to, at each time of day; the step takes the earliest that is later.
        std::vector<std::vector<ZBDateExpTerm>> days;
        if (m_type != E_Days)
            for (int code : m_days)
                days.push_back(day_terms(m_type, code));
        const bool keepDay = days.empty();
        if (keepDay)
            days.emplace_back();
        std::vector<ZBDateExpTerm> step;
        if (m_type == E_Days) {
            step.emplace_back(ZBDateExpTerm::AddDay, n);
        } else if (m_type == E_Weeks) {
            step.emplace_back(ZBDateExpTerm::AddDay, 7 * n);
        } else if (keepDay) {
            // The day is kept, or clipped to a shorter month's end.
            step.emplace_back(ZBDateExpTerm::AddMonth, m_type == E_Months ? n : 12 * n);
        } else {
            // From the period's first day, so that a long day of month cannot
            // carry the step into the month after.
            step.emplace_back(ZBDateExpTerm::SetDay, 0);
            if (m_type == E_Months) {
                step.emplace_back(ZBDateExpTerm::AddMonth, n);
            } else {
                step.emplace_back(ZBDateExpTerm::SetMonth, 0);
                step.emplace_back(ZBDateExpTerm::AddYear, n);
            }
        }
        for (int same = 1; same >= 0; --same) {
            for (const std::vector<ZBDateExpTerm>& day : days) {
                std::vector<ZBDateExpTerm> terms = same ? std::vector<ZBDateExpTerm>() : step;
                terms.insert(terms.end(), day.begin(), day.end());
                if (m_at.empty()) {
                    add_choice(terms, same != 0);
                    continue;
                }
                for (const ZBDuration& at : m_at) {
                    std::vector<ZBDateExpTerm> timed = terms;
                    add_clock(timed, at);
                    add_choice(timed, same != 0);
                }
            }
        }
        m_expr.add_term(ZBDateExpTerm::Close, 0);
        break;
    }
    case E_Expression:
        m_expr = ZBDateParser::parse_date(m_exp);
        break;
    default:
        // Set dates are looked up in m_set; the other types do not step.
        break;
    }
    m_tail = m_expr.size();

    E_WorkdayType work = E_WorkNone;
    int id = -1;
    get_workday(work, id);
    const std::string tag = work_tag();
    if (uses_offset()) {
        if (work == E_WorkNext)
            m_expr.add_term(ZBDateExpTerm::WorkDay, 0, tag);
        else if (work == E_WorkOnly)
            m_expr.add_term(ZBDateExpTerm::Fixed, 0, tag);
    }
    for (int i = 0; i < m_expr.size(); ++i) {
        const ZBDateExpTerm& term = m_expr.get_term(i);
        if (term.m_type == ZBDateExpTerm::WorkDay || term.m_type == ZBDateExpTerm::Fixed) {
            m_usesWork = true;
            m_exprWorkTag = term.m_tag;
            break;
        }
    }

    ZBDuration duration;
    int days = 0;
    const int kind = get_offset_details(duration, days);
    if (kind == E_OffExpression) {
        if (!m_offsetExp.empty())
            m_offsetExpr = ZBDateParser::parse_date(m_offsetExp);
    } else if (kind == E_OffDuration) {
        std::int64_t seconds = duration.get_as_seconds();
        if (seconds > INT_MAX) {
            m_offsetExpr.add_term(ZBDateExpTerm::AddDay,
                                  int(std::min<std::int64_t>(seconds / ZBDate::C_DaySecs, INT_MAX)));
            seconds %= ZBDate::C_DaySecs;
        }
        m_offsetExpr.add_term(ZBDateExpTerm::AddSecond, int(seconds));
    } else if (kind == E_OffTime) {
        std::vector<ZBDateExpTerm> terms;
        if (days != 0)
            terms.emplace_back(ZBDateExpTerm::AddDay, days);
        add_clock(terms, duration);
        for (const ZBDateExpTerm& term : terms)
            m_offsetExpr.add_term(term.m_type, term.m_value);
    }
    if (work == E_WorkAvailable && (kind == E_OffExpression || kind == E_OffDuration || kind == E_OffTime)) {
        m_offsetWork = m_offsetExpr.size();
        m_offsetExpr.add_term(ZBDateExpTerm::WorkDay, 0, tag);
    }
}

ZBDate ZBDateRepeat::earliest_choice(const ZBDate& date, const ZBRepeatConfig* config) const
{
    // Blank sorts after every date, so it stands for "none yet".
    const ZBDate blank(ZBDate::E_Blank);
    if (m_choices.empty())
        return blank;
    // Each alternative puts the date on a day of its period (and a time of
    // day, or the date's own), so one that lands where it did last time means
    // the same period, where every other alternative lands as before too.
    const ZBDateDetails details = details_of(date);
    const Choice& first = m_choices.front();
    const ZBDate key = m_expr.evaluate(details, config, first.m_first, first.m_last);
    PeriodCandidates& period = t_period;
    const std::uint64_t serial = g_compileSerial.load(std::memory_order_relaxed);
    const bool known = is_real(key) && period.m_rule == this && period.m_serial == serial
                       && period.m_config == config && same_moment(period.m_key, key);
    if (!known) {
        period.m_rule = nullptr;
        period.m_dates.clear();
        if (is_real(key))
            period.m_dates.push_back(key);
        for (size_t i = 1; i < m_choices.size(); ++i) {
            ZBDate candidate = m_expr.evaluate(details, config, m_choices[i].m_first, m_choices[i].m_last);
            if (is_real(candidate))
                period.m_dates.push_back(candidate);
        }
        std::sort(period.m_dates.begin(), period.m_dates.end(),
                  [](const ZBDate& a, const ZBDate& b) { return a < b; });
        if (is_real(key)) {
            period.m_rule = this;
            period.m_serial = serial;
            period.m_config = config;
            period.m_key = key;
        }
    }
    auto found = std::upper_bound(period.m_dates.begin(), period.m_dates.end(), date,
                                  [](const ZBDate& a, const ZBDate& b) { return a < b; });
    return found == period.m_dates.end() ? blank : *found;
}

bool ZBDateRepeat::on_rule(const ZBDate& date, const ZBRepeatConfig* config) const
{
    if (m_state == 0)
        populate_expressions(config);
    bool matches = m_type == E_Seconds;
    if (m_type == E_SetDates)
        matches = std::any_of(m_set.begin(), m_set.end(), [&](const ZBDate& set) { return same_moment(set, date); });
    if (m_type >= E_Days && m_type <= E_Years) {
        const ZBDateDetails details = details_of(date);
        for (const Choice& choice : m_choices) {
            if (choice.m_samePeriod
                && same_moment(m_expr.evaluate(details, config, choice.m_first, choice.m_last), date)) {
                matches = true;
                break;
            }
        }
    }
    E_WorkdayType work = E_WorkNone;
    int id = -1;
    get_workday(work, id);
    if (matches && (work == E_WorkNext || work == E_WorkOnly))
        matches = is_workday(date, config);
    return matches;
}

ZBDate ZBDateRepeat::apply_expression(const ZBDate& date, const ZBRepeatConfig* config) const
{
    if (m_state == 0)
        populate_expressions(config);
    // A calendar with no work day in a whole period would send a work-day
    // step round its limits (thousands of days, a thousand times over).
    if (m_usesWork && !workday_ahead(date, config, m_exprWorkTag))
        return date;
    if (m_type == E_Seconds || m_type == E_Expression) {
        ZBDate result = m_expr.apply(date, config);
        return is_real(result) ? result : date;
    }
    if (m_type < E_Days || m_type > E_SetDates)
        return date;
    ZBDate current = date;
    for (int round = 0; round < C_MaxWorkTries; ++round) {
        ZBDate next;
        if (m_type == E_SetDates) {
            auto found = std::upper_bound(m_set.begin(), m_set.end(), current,
                                          [](const ZBDate& a, const ZBDate& b) { return a < b; });
            next = found == m_set.end() ? ZBDate(ZBDate::E_Blank) : *found;
        } else {
            next = earliest_choice(current, config);
        }
        if (!is_real(next) || !(current < next))
            return date;
        // The work-day terms; Fixed on a day off sends the step round again
        // from the instance it refused.
        ZBDateDetails details = details_of(next);
        bool again = false;
        for (int i = m_tail; i < m_expr.size() && !again; ++i) {
            int outcome = ZBDateExpTerm::E_Date;
            int result = m_expr.get_term(i).apply(details, config, outcome);
            if (outcome != ZBDateExpTerm::E_Date || iszbwarn(result))
                return date;
            again = result == ZBErrC_okNotFinished;
        }
        current = date_of(details);
        if (!again)
            return is_real(current) ? current : date;
    }
    return date;
}

ZBDate ZBDateRepeat::next_date(const ZBDate& date, const ZBRepeatConfig* config) const
{
    if (m_type == E_None)
        return ZBDate(ZBDate::E_Blank);
    if (m_state == 0)
        populate_expressions(config);
    ZBDate result = apply_expression(date, config);
    ZBDate previous = date;
    for (int i = 0; i < C_MaxSteps && is_real(result) && date < result && is_excluded(result); ++i) {
        // An exclusion longer than the steps left could cross (a daily rule
        // with centuries excluded) is given up at once rather than walked
        // step by step to the same answer.
        const int at = m_exclude.safe_find(result);
        if (at < m_exclude.size() && !(result < m_exclude[at]->m_start) && previous < result) {
            const double stepsToLeave = (m_exclude[at]->m_end - result) / (result - previous);
            if (stepsToLeave > double(C_MaxSteps - i))
                return date;
        }
        ZBDate further = apply_expression(result, config);
        if (!is_real(further) || !(result < further))
            return date;
        previous = result;
        result = further;
    }
    if (!is_real(result) || !(date < result) || is_excluded(result))
        return date;
    return result;
}

ZBDateSlot ZBDateRepeat::generate_slot(const ZBDate& last, const ZBDate& date, const ZBDate& next,
                                       const ZBRepeatConfig* config) const
{
    if (m_state == 0)
        populate_expressions(config);
    ZBDuration duration;
    int days = 0;
    ZBDate end = date;
    ZBDate from = date;
    bool useExpression = false;
    switch (get_offset_details(duration, days)) {
    case E_OffBlank:
        break;
    case E_OffLast:
        if (is_real(next) && date < next)
            end = next;
        break;
    case E_OffExpression:
        // Relative to "@TIME" the end is found from the instance itself;
        // otherwise from the instance before it, as the series runs on.
        useExpression = true;
        if (m_offsetExpr.get_relative() != "TIME" && last.is_ok())
            from = last;
        break;
    case E_OffDuration:
    case E_OffTime:
        useExpression = true;
        break;
    }
    if (useExpression && m_offsetExpr.size() > 0) {
        int lastTerm = m_offsetExpr.size() - 1;
        if (m_offsetWork >= 0 && !workday_ahead(from, config, work_tag()))
            lastTerm = m_offsetWork - 1;
        ZBDate result = m_offsetExpr.evaluate(details_of(from), config, 0, lastTerm);
        if (is_real(result))
            end = result;
    }
    if (!is_real(end) || end < date)
        end = date;
    return ZBDateSlot(date, end);
}

int ZBDateRepeat::generate_slots(const ZBDateSlot& seed, const ZBDateSlot& range, int limit,
                                 const ZBRepeatConfig* config, std::vector<ZBDateSlot>& out) const
{
    out.clear();
    if (limit <= 0 || m_type == E_None || m_type == E_Choice)
        return ZBErrC_ok;
    if (m_state == 0)
        populate_expressions(config);
    ZBDate walk = range.m_start.is_ok() ? range.m_start : ZBDateUtils::now();
    if (seed.m_start.is_ok()) {
        out.push_back(seed);
        ZBDuration duration;
        int days = 0;
        const ZBDate& from = get_offset_details(duration, days) == E_OffBlank ? seed.m_end : seed.m_start;
        if (from.is_ok() && from > walk)
            walk = from;
    } else if (m_begin.is_ok() && !(m_begin < walk)) {
        // The series runs from its begin, which is an instance only when the
        // rule itself lands there.
        walk = m_begin;
        if (on_rule(m_begin, config) && !is_excluded(m_begin) && (!range.m_end.is_ok() || !(range.m_end < m_begin))
            && (!m_end.is_ok() || !(m_end < m_begin)))
            out.push_back(generate_slot(ZBDate(), m_begin, next_date(m_begin, config), config));
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
            options.push_back(weekday_word(d, longForm));
    } else if (type == E_Months) {
        for (int d = 0; d < 31; ++d)
            options.push_back(ordinal(d + 1));
        options.push_back(ordinal(-1));
        options.push_back(ordinal(-2));
    } else if (type == E_Years) {
        for (int m = 0; m < 12; ++m)
            options.push_back(month_word(m, longForm));
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
        return (week == 5 ? std::string("last") : ordinal(week + 1)) + " " + weekday_word(weekday, true);
    }
    return day < 0 ? ordinal(day) : ordinal(day + 1);
}

std::string ZBDateRepeat::yearday_to_string(int day)
{
    int a = 0;
    int b = 0;
    if (from_yearday(day, a, b))
        return weekday_word(a, true) + " week " + std::to_string(b + 1);
    // A day past any month's length counts on from the month's start.
    if (a > 30)
        return ordinal(a + 1) + " day in " + month_word(b, false);
    return std::to_string(a + 1) + " " + month_word(b, false);
}

std::string ZBDateRepeat::get_days_str() const
{
    std::vector<std::string> parts;
    for (int day : m_days) {
        if (m_type == E_Weeks)
            parts.push_back(weekday_word(day, false));
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
    // A task's series is held by its due date, so its offset reads back from
    // the end; other owners read it on from the start.
    const bool fromEnd = ZBRepeatConfig::capability_range(m_capabilities) == C_RangeDue;
    switch (get_offset_details(duration, days)) {
    case E_OffLast:
        return "End of last repeat.";
    case E_OffDuration:
        return duration.to_string(false) + (fromEnd ? " before end." : " after start.");
    case E_OffTime: {
        std::string time = time_text(duration);
        if (days == 0)
            return (fromEnd ? "Due date at " : "At ") + time + ".";
        return (days == 1 ? std::string("1 day ") : std::to_string(days) + " days ")
               + (fromEnd ? "before at " : "after at ") + time + ".";
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
    if (!m_exclude.empty())
        text += (text.empty() && start ? "Excluding " : " excluding ") + get_exclude_string();
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
                times.push_back(time_text(at));
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
        parts.push_back("X=" + exclude_storage_string());
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
    // Checked once the type is known, whatever order the fields came in.
    if (uses_interval() && m_interval > max_interval(m_type)) {
        std::string part = "N=" + std::to_string(m_interval);
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "%s should be of the form \"%s%s%s\"", part.c_str(), "N", "=",
                         "N");
    }
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
