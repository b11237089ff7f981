#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibCore/textstr/zbtextstr.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <ostream>

namespace Tervalon {

namespace {

const char* const C_WeekdayShort[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const C_WeekdayLong[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char* const C_MonthShort[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const C_MonthLong[12] = {"January", "February", "March",     "April",   "May",      "June",
                                     "July",    "August",   "September", "October", "November", "December"};

// The recalculation thread reads the locale while the main thread may install
// a new one, so a replaced locale is never deleted: every locale installed
// stays in the kept list (reachable, so not a leak) until the process ends,
// and a reference taken from zblocale() stays good.
std::atomic<ZBLocale*> g_locale{nullptr};

std::mutex& locale_mutex()
{
    static std::mutex mutex;
    return mutex;
}

std::vector<std::unique_ptr<ZBLocale>>& kept_locales()
{
    static auto* kept = new std::vector<std::unique_ptr<ZBLocale>>();
    return *kept;
}

std::vector<std::string> names(const char* const* list, int n)
{
    return std::vector<std::string>(list, list + n);
}

// Local short names often end in a point ("janv."); the word is what people type.
std::vector<std::string> upper_words(const std::vector<std::string>& list)
{
    std::vector<std::string> out;
    out.reserve(list.size());
    for (const std::string& name : list) {
        std::string word = zb_toupper(name);
        while (!word.empty() && word.back() == '.')
            word.pop_back();
        out.push_back(word);
    }
    return out;
}

// A unique prefix of one entry, an exact hit winning over longer entries.
int find_prefix(const std::string& key, const std::vector<std::string>& list)
{
    int found = -1;
    int count = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string& entry = list[i];
        if (entry.size() < key.size() || entry.compare(0, key.size(), key) != 0)
            continue;
        if (entry.size() == key.size())
            return int(i);
        found = int(i);
        ++count;
    }
    return count == 1 ? found : -1;
}

bool is_word_byte(char c)
{
    unsigned char u = static_cast<unsigned char>(c);
    return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || u >= 0x80;
}

std::string group_digits(const std::string& digits, const std::string& separator)
{
    if (separator.empty() || digits.size() <= 3)
        return digits;
    std::string out;
    size_t lead = digits.size() % 3;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i && (i - lead) % 3 == 0 && i >= lead)
            out += separator;
        out += digits[i];
    }
    return out;
}

} // namespace

ZBLocale::ZBLocale()
    : m_dateStyle(1), m_firstDay(1), m_24hourClock(true), m_localTimeZone(ZBDate::C_LocalTime), m_defaultLocale(true),
      m_latLonFormat(0), m_altUnits(0), m_workHours(8.0), m_workDays(C_DefaultWorkDays)
{
    ZBLocale::set_locale_names();
    ZBLocale::set_defaults();
}

ZBLocale::~ZBLocale() = default;

const std::vector<ZBDateFormatOption>& ZBLocale::get_options()
{
    // The short forms of the two "yyyy/..." rows use "-" like the rows above
    // them; files and settings written with them depend on that.
    static const std::vector<ZBDateFormatOption> C_Option = {
        {"%d/%m/%y", "%d/%m", "dd/mm/yy", 1},      {"%d/%b/%Y", "%d/%b", "dd/mmm/yyyy", 1},
        {"%d-%m-%y", "%d-%m", "dd-mm-yy", 1},      {"%d-%b-%Y", "%d-%b", "dd-mmm-yyyy", 1},
        {"%m/%d/%y", "%m/%d", "mm/dd/yy", 0},      {"%m-%d-%y", "%m-%d", "mm-dd-yy", 0},
        {"%b %d, %Y", "%b %d", "mmm dd, yyyy", 0}, {"%Y-%m-%d", "%m-%d", "yyyy-mm-dd", 2},
        {"%Y-%b-%d", "%b-%d", "yyyy-mmm-dd", 2},   {"%Y/%m/%d", "%m-%d", "yyyy/mm/dd", 2},
        {"%Y/%b/%d", "%b-%d", "yyyy/mmm/dd", 2},
    };
    return C_Option;
}

void ZBLocale::set_defaults()
{
    m_firstDay = 1;
    m_localTimeZone = ZBDate::C_LocalTime;
    m_workHours = 8.0;
    m_workDays = C_DefaultWorkDays;
    m_currency = "$";
    m_groupSep = ",";
    m_decimal = ".";
    m_latLonFormat = 0;
    m_altUnits = 0;
    m_24hourClock = true;
    m_timeFormat[0] = "%H:%M:%S %z";
    m_timeFormat[1] = "%H:%M %z";
    set_day_format(1);
}

void ZBLocale::set_locale_names()
{
    m_weekdayDShort = names(C_WeekdayShort, 7);
    m_weekdayDLong = names(C_WeekdayLong, 7);
    m_monthDShort = names(C_MonthShort, 12);
    m_monthDLong = names(C_MonthLong, 12);
    set_local_names(m_weekdayDShort, m_weekdayDLong, m_monthDShort, m_monthDLong);
}

void ZBLocale::set_local_names(const std::vector<std::string>& weekdayShort, const std::vector<std::string>& weekdayLong,
                               const std::vector<std::string>& monthShort, const std::vector<std::string>& monthLong)
{
    if (weekdayShort.size() != 7 || weekdayLong.size() != 7 || monthShort.size() != 12 || monthLong.size() != 12)
        return;
    m_weekdayShort = weekdayShort;
    m_weekdayLong = weekdayLong;
    m_monthShort = monthShort;
    m_monthLong = monthLong;
    m_weekdayUpper[0] = upper_words(m_weekdayDLong);
    m_weekdayUpper[1] = upper_words(m_weekdayDShort);
    m_weekdayUpper[2] = upper_words(m_weekdayLong);
    m_weekdayUpper[3] = upper_words(m_weekdayShort);
    m_monthUpper[0] = upper_words(m_monthDLong);
    m_monthUpper[1] = upper_words(m_monthDShort);
    m_monthUpper[2] = upper_words(m_monthLong);
    m_monthUpper[3] = upper_words(m_monthShort);
}

int ZBLocale::read_config()
{
    if (!has_zbparam())
        return ZBErrC_ok;
    ZBParam& param = zbparam();
    set_first_day(param.get_system_value("DateFirstDay", m_firstDay));
    std::string dayFormat = param.get_system_value("DateDayFormat", m_dayFormat[0]);
    const std::vector<ZBDateFormatOption>& options = get_options();
    for (size_t i = 0; i < options.size(); ++i)
        if (dayFormat == options[i].m_long)
            set_day_format(int(i));
    set_24hour_clock(zb_string_to_bool(param.get_system_value("DateIs24Hours", zb_bool_to_string(m_24hourClock)),
                                       m_24hourClock));
    m_defaultLocale = zb_string_to_bool(
        param.get_system_value("DateDefaultLocale", zb_bool_to_string(m_defaultLocale)), m_defaultLocale);
    set_timezone(param.get_system_value("DateTimezone", m_localTimeZone));
    m_currency = param.get_system_value("LocaleCurrency", m_currency);
    m_groupSep = param.get_system_value("LocaleGroupSep", m_groupSep);
    set_decimal(param.get_system_value("LocaleDecimal", m_decimal));
    m_latLonFormat = param.get_system_value("LatLonFormat", m_latLonFormat);
    m_altUnits = param.get_system_value("AltUnits", m_altUnits);
    // The working week has no settings page of its own yet; a value put in the
    // parameter file by hand is honoured.
    if (param.is_system_value_set("DateWorkHours"))
        set_workhours(zb_string_to_double(param.get_system_value("DateWorkHours"), m_workHours));
    set_workdays(param.get_system_value("DateWorkDays", m_workDays));
    return ZBErrC_ok;
}

int ZBLocale::write_config() const
{
    if (!has_zbparam())
        return ZBErrC_ok;
    ZBParam& param = zbparam();
    const std::pair<const char*, std::string> values[] = {
        {"DateFirstDay", std::to_string(m_firstDay)},
        {"DateDayFormat", m_dayFormat[0]},
        {"DateIs24Hours", zb_bool_to_string(m_24hourClock)},
        {"DateDefaultLocale", zb_bool_to_string(m_defaultLocale)},
        {"DateTimezone", std::to_string(m_localTimeZone)},
        {"LocaleCurrency", m_currency},
        {"LocaleGroupSep", m_groupSep},
        {"LocaleDecimal", m_decimal},
        {"LatLonFormat", std::to_string(m_latLonFormat)},
        {"AltUnits", std::to_string(m_altUnits)},
    };
    for (const auto& value : values)
        if (iszbwarn(param.set_system_value(value.first, value.second)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBLocale::set_24hour_clock(bool on)
{
    m_24hourClock = on;
    m_timeFormat[0] = on ? "%H:%M:%S %z" : "%I:%M:%S %p %z";
    m_timeFormat[1] = on ? "%H:%M %z" : "%I:%M %p %z";
    set_date_format("");
}

void ZBLocale::set_date_format(const std::string& format)
{
    if (format.empty())
        m_dateFormat[0] = "%a " + m_dayFormat[0] + " " + m_timeFormat[0];
    else
        m_dateFormat[0] = format;
    m_dateFormat[1] = m_dayFormat[1] + " " + m_timeFormat[1];
}

void ZBLocale::set_day_format(int number)
{
    const std::vector<ZBDateFormatOption>& options = get_options();
    if (number < 0 || number >= int(options.size()))
        number = 0;
    m_dateStyle = options[size_t(number)].m_style;
    m_dayFormat[0] = options[size_t(number)].m_long;
    m_dayFormat[1] = options[size_t(number)].m_short;
    set_date_format("");
}

int ZBLocale::get_format_number() const
{
    const std::vector<ZBDateFormatOption>& options = get_options();
    for (size_t i = 0; i < options.size(); ++i)
        if (m_dayFormat[0] == options[i].m_long)
            return int(i);
    return 0;
}

int ZBLocale::get_nformats()
{
    return int(get_options().size());
}

std::string ZBLocale::get_format_label(int number)
{
    return number >= 0 && number < get_nformats() ? get_options()[size_t(number)].m_label : std::string();
}

void ZBLocale::set_timezone(int zone)
{
    if (zone == ZBDate::C_OriginalTime)
        return;
    if (zone == ZBDate::C_DefaultTime)
        zone = ZBDate::C_LocalTime;
    if (zone != ZBDate::C_LocalTime && !ZBDateUtils::is_fixed_zone(zone))
        return;
    m_localTimeZone = zone;
}

int ZBLocale::get_local_timezone() const
{
    return ZBDateUtils::local_standard_zone();
}

std::string ZBLocale::get_timezone_str() const
{
    // The machine's zone is named by its offset today, with its DST flag.
    return ZBDateUtils::zone_to_string(ZBDateUtils::expand_timezone(m_localTimeZone, ZBDateUtils::now()));
}

bool ZBLocale::set_timezone_str(const std::string& text)
{
    for (const auto& zone : get_timezones())
        if (zb_compare_nocase(zone.second, text) == 0) {
            set_timezone(zone.first);
            return m_localTimeZone == zone.first;
        }
    return false;
}

std::vector<std::pair<int, std::string>> ZBLocale::get_timezones()
{
    // Every half hour from 14 hours east to 12 west, and the quarter-hour
    // zones in use (Nepal, Eucla, Chatham); an offset without a code is left out.
    std::vector<int> offsets = {5 * 3600 + 2700, 8 * 3600 + 2700, 12 * 3600 + 2700};
    for (int seconds = ZBDate::C_OffsetMax; seconds >= ZBDate::C_OffsetMin; seconds -= 1800)
        offsets.push_back(seconds);
    std::sort(offsets.begin(), offsets.end(), [](int a, int b) { return a > b; });
    std::vector<std::pair<int, std::string>> zones;
    zones.emplace_back(ZBDate::C_LocalTime, ZBDateUtils::zone_to_string(ZBDate::C_LocalTime));
    for (int seconds : offsets)
        for (bool dst : {false, true})
            if (ZBDateUtils::offset_has_zone(seconds, dst)) {
                int zone = ZBDateUtils::seconds_to_zone(seconds, dst, false);
                zones.emplace_back(zone, ZBDateUtils::zone_to_string(zone));
            }
    return zones;
}

std::string ZBLocale::weekday_name(int day, bool shortForm) const
{
    day = ((day % 7) + 7) % 7;
    if (m_defaultLocale)
        return shortForm ? m_weekdayDShort[size_t(day)] : m_weekdayDLong[size_t(day)];
    return shortForm ? m_weekdayShort[size_t(day)] : m_weekdayLong[size_t(day)];
}

std::string ZBLocale::month_name(int month, bool shortForm) const
{
    month = ((month % 12) + 12) % 12;
    if (m_defaultLocale)
        return shortForm ? m_monthDShort[size_t(month)] : m_monthDLong[size_t(month)];
    return shortForm ? m_monthShort[size_t(month)] : m_monthLong[size_t(month)];
}

std::string ZBLocale::english_weekday(int day)
{
    return C_WeekdayShort[((day % 7) + 7) % 7];
}

std::string ZBLocale::english_month(int month)
{
    return C_MonthShort[((month % 12) + 12) % 12];
}

int ZBLocale::find_name(const std::string& text, bool weekday) const
{
    if (text.empty())
        return -1;
    const std::vector<std::string>* lists = weekday ? m_weekdayUpper : m_monthUpper;
    const std::string key = zb_toupper(text);
    static const int C_DefaultOrder[] = {0, 1};
    static const int C_LocalOrder[] = {2, 3, 0, 1};
    const int* order = m_defaultLocale ? C_DefaultOrder : C_LocalOrder;
    const int n = m_defaultLocale ? 2 : 4;
    for (int i = 0; i < n; ++i) {
        int found = find_prefix(key, lists[order[i]]);
        if (found >= 0)
            return found;
    }
    return -1;
}

int ZBLocale::weekday_number(const std::string& text) const
{
    return find_name(text, true);
}

int ZBLocale::month_number(const std::string& text) const
{
    return find_name(text, false);
}

std::string ZBLocale::clean_date_string(const std::string& text) const
{
    std::string out;
    out.reserve(text.size());
    size_t i = 0;
    while (i < text.size()) {
        if (!is_word_byte(text[i])) {
            out += text[i++];
            continue;
        }
        size_t end = i;
        while (end < text.size() && is_word_byte(text[end]))
            ++end;
        std::string word = zb_toupper(text.substr(i, end - i));
        std::string english;
        for (int list : {2, 3}) {
            for (size_t d = 0; d < 7 && english.empty(); ++d)
                if (m_weekdayUpper[list][d] == word)
                    english = C_WeekdayShort[d];
            for (size_t m = 0; m < 12 && english.empty(); ++m)
                if (m_monthUpper[list][m] == word)
                    english = C_MonthShort[m];
        }
        out += english.empty() ? text.substr(i, end - i) : english;
        // The point of an abbreviation such as "janv." goes with the name.
        if (!english.empty() && end < text.size() && text[end] == '.')
            ++end;
        i = end;
    }
    return out;
}

std::string ZBLocale::get_ordinal(int number, bool withLast)
{
    if (withLast && number < 0) {
        if (number == -1)
            return "last";
        return std::to_string(-number) + get_ordinal(-number, false) + " last";
    }
    int last = std::abs(number) % 10;
    int lastTwo = std::abs(number) % 100;
    if (lastTwo >= 10 && lastTwo <= 19)
        return "th";
    switch (last) {
    case 1: return "st";
    case 2: return "nd";
    case 3: return "rd";
    default: return "th";
    }
}

std::string ZBLocale::to_string(long value) const
{
    std::string digits = std::to_string(value < 0 ? -static_cast<unsigned long>(value) : static_cast<unsigned long>(value));
    return (value < 0 ? "-" : "") + group_digits(digits, m_groupSep);
}

std::string ZBLocale::to_string(double value, const std::string& pre, const std::string& post) const
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.2f", std::fabs(value));
    std::string text(buffer);
    size_t point = text.find('.');
    std::string whole = text.substr(0, point);
    std::string fraction = point == std::string::npos ? std::string() : text.substr(point + 1);
    std::string out = group_digits(whole, m_groupSep);
    if (!fraction.empty())
        out += m_decimal + fraction;
    bool negative = value < 0 && text != "0.00";
    return (negative ? "-" : "") + pre + out + post;
}

std::string ZBLocale::to_currency(double value, const std::string& pre, const std::string& post) const
{
    // A rounding residue must print as the zero amount, never as "-0.00".
    if (std::fabs(value) < 0.005)
        value = 0.0;
    return to_string(value, pre.empty() ? m_currency : pre, post);
}

std::string ZBLocale::clean_number(const std::string& text) const
{
    std::string out = text;
    if (!m_currency.empty())
        zb_replace_substr(out, m_currency, "", true);
    if (!m_groupSep.empty() && m_groupSep != m_decimal)
        zb_replace_substr(out, m_groupSep, "", true);
    if (m_decimal != ".")
        zb_replace_substr(out, m_decimal, ".", true);
    return zb_elim_whitespace(out, true, true, true, true);
}

double ZBLocale::to_double(const std::string& text) const
{
    return zb_string_to_double(clean_number(text), 0.0);
}

long ZBLocale::to_long(const std::string& text) const
{
    return long(zb_string_to_long(clean_number(text), 0));
}

int ZBLocale::to_int(const std::string& text) const
{
    return zb_string_to_int(clean_number(text), 0);
}

void ZBLocale::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBLocale\n"
        << pad << "    m_dateStyle     : " << m_dateStyle << "\n"
        << pad << "    m_firstDay      : " << m_firstDay << "\n"
        << pad << "    m_24hourClock   : " << m_24hourClock << "\n"
        << pad << "    m_dateFormat    : " << m_dateFormat[0] << " | " << m_dateFormat[1] << "\n"
        << pad << "    m_dayFormat     : " << m_dayFormat[0] << " | " << m_dayFormat[1] << "\n"
        << pad << "    m_timeFormat    : " << m_timeFormat[0] << " | " << m_timeFormat[1] << "\n"
        << pad << "    m_localTimeZone : " << m_localTimeZone << "\n"
        << pad << "    m_defaultLocale : " << m_defaultLocale << "\n"
        << pad << "    m_weekdayLong   : " << m_weekdayLong[1] << " ...\n"
        << pad << "    m_monthLong     : " << m_monthLong[0] << " ...\n"
        << pad << "    m_currency      : " << m_currency << "\n"
        << pad << "    m_groupSep      : " << m_groupSep << "\n"
        << pad << "    m_decimal       : " << m_decimal << "\n"
        << pad << "    m_latLonFormat  : " << m_latLonFormat << "\n"
        << pad << "    m_altUnits      : " << m_altUnits << "\n"
        << pad << "    m_workHours     : " << m_workHours << "\n"
        << pad << "    m_workDays      : " << m_workDays << "\n";
}

ZBLocale& zblocale()
{
    ZBLocale* locale = g_locale.load(std::memory_order_acquire);
    if (locale)
        return *locale;
    std::lock_guard<std::mutex> lock(locale_mutex());
    locale = g_locale.load(std::memory_order_relaxed);
    if (!locale) {
        locale = new ZBLocale();
        kept_locales().emplace_back(locale);
        g_locale.store(locale, std::memory_order_release);
    }
    return *locale;
}

namespace {

void install_locale(ZBLocale* locale)
{
    std::vector<std::unique_ptr<ZBLocale>>& kept = kept_locales();
    const bool known = std::any_of(kept.begin(), kept.end(),
                                   [locale](const std::unique_ptr<ZBLocale>& one) { return one.get() == locale; });
    if (locale && !known)
        kept.emplace_back(locale);
    g_locale.store(locale, std::memory_order_release);
}

std::mutex& update_mutex()
{
    static std::mutex mutex;
    return mutex;
}

} // namespace

void set_zblocale(ZBLocale* locale)
{
    std::lock_guard<std::mutex> lock(locale_mutex());
    install_locale(locale);
}

void update_zblocale(const std::function<void(ZBLocale&)>& change)
{
    // One change at a time, so that two do not each copy the same old locale.
    std::lock_guard<std::mutex> changing(update_mutex());
    std::unique_ptr<ZBLocale> copy(zblocale().clone());
    change(*copy);
    std::lock_guard<std::mutex> lock(locale_mutex());
    install_locale(copy.release());
}

} // namespace Tervalon
