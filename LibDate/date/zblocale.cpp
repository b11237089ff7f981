#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"

#include <cctype>
#include <memory>
#include <ostream>

namespace Tervalon {

namespace {

const char* const C_WeekdayShort[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const C_WeekdayLong[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char* const C_MonthShort[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const C_MonthLong[12] = {"January", "February", "March",     "April",   "May",      "June",
                                     "July",    "August",   "September", "October", "November", "December"};

struct DayFormat {
    const char* longForm;
    const char* shortForm;
    const char* label;
    int style;
};

// The short forms of the two "yyyy/..." rows use "-" like the rows above them;
// files and settings written with them depend on that.
const DayFormat C_Option[] = {
    {"%d/%m/%y", "%d/%m", "dd/mm/yy", 1},     {"%d/%b/%Y", "%d/%b", "dd/mmm/yyyy", 1},
    {"%d-%m-%y", "%d-%m", "dd-mm-yy", 1},     {"%d-%b-%Y", "%d-%b", "dd-mmm-yyyy", 1},
    {"%m/%d/%y", "%m/%d", "mm/dd/yy", 0},     {"%m-%d-%y", "%m-%d", "mm-dd-yy", 0},
    {"%b %d, %Y", "%b %d", "mmm dd, yyyy", 0}, {"%Y-%m-%d", "%m-%d", "yyyy-mm-dd", 2},
    {"%Y-%b-%d", "%b-%d", "yyyy-mmm-dd", 2},  {"%Y/%m/%d", "%m-%d", "yyyy/mm/dd", 2},
    {"%Y/%b/%d", "%b-%d", "yyyy/mmm/dd", 2},
};
const int C_NOptions = int(sizeof C_Option / sizeof C_Option[0]);

std::unique_ptr<ZBLocale>& locale_singleton()
{
    static std::unique_ptr<ZBLocale> locale;
    return locale;
}

// A case-blind unique-prefix search over two name lists of the same length.
int find_name(const std::string& text, const char* const* shortNames, const char* const* longNames, int n)
{
    if (text.empty())
        return -1;
    std::string lower;
    for (char c : text)
        lower += char(std::tolower(static_cast<unsigned char>(c)));
    int found = -1;
    for (int i = 0; i < n; ++i) {
        for (const char* name : {longNames[i], shortNames[i]}) {
            std::string candidate;
            for (const char* p = name; *p; ++p)
                candidate += char(std::tolower(static_cast<unsigned char>(*p)));
            if (candidate == lower)
                return i;
            if (candidate.compare(0, lower.size(), lower) == 0) {
                if (found >= 0 && found != i)
                    return -1;
                found = i;
            }
        }
    }
    return found;
}

} // namespace

ZBLocale::ZBLocale()
    : m_dateStyle(1), m_firstDay(1), m_24hourClock(true), m_localTimeZone(ZBDate::C_LocalTime), m_workHours(8.0)
{
    set_defaults();
}

ZBLocale::~ZBLocale() = default;

void ZBLocale::set_defaults()
{
    m_firstDay = 1;
    m_localTimeZone = ZBDate::C_LocalTime;
    m_workHours = 8.0;
    m_24hourClock = true;
    m_timeFormat[0] = "%H:%M:%S %z";
    m_timeFormat[1] = "%H:%M %z";
    set_day_format(1);
}

int ZBLocale::read_config()
{
    if (!has_zbparam())
        return ZBErrC_ok;
    ZBParam& param = zbparam();
    set_first_day(param.get_system_value("DateFirstDay", m_firstDay));
    std::string dayFormat = param.get_system_value("DateDayFormat", m_dayFormat[0]);
    for (int i = 0; i < C_NOptions; ++i)
        if (dayFormat == C_Option[i].longForm)
            set_day_format(i);
    set_24hour_clock(param.get_system_value("DateIs24Hours", m_24hourClock ? 1 : 0) != 0);
    set_timezone(param.get_system_value("DateTimezone", m_localTimeZone));
    return ZBErrC_ok;
}

void ZBLocale::set_24hour_clock(bool on)
{
    m_24hourClock = on;
    m_timeFormat[0] = on ? "%H:%M:%S %z" : "%I:%M:%S %p %z";
    m_timeFormat[1] = on ? "%H:%M %z" : "%I:%M %p %z";
    set_date_format("");
}

void ZBLocale::set_timezone(int zone)
{
    if (zone == ZBDate::C_OriginalTime)
        return;
    if (zone == ZBDate::C_DefaultTime)
        zone = ZBDate::C_LocalTime;
    if (zone != ZBDate::C_LocalTime && (zone < ZBDate::C_ZoneMin || zone > ZBDate::C_ZoneMax))
        return;
    m_localTimeZone = zone;
}

int ZBLocale::get_local_timezone() const
{
    return ZBDateUtils::local_standard_zone();
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
    if (number < 0 || number >= C_NOptions)
        number = 0;
    m_dateStyle = C_Option[number].style;
    m_dayFormat[0] = C_Option[number].longForm;
    m_dayFormat[1] = C_Option[number].shortForm;
    set_date_format("");
}

int ZBLocale::get_format_number() const
{
    for (int i = 0; i < C_NOptions; ++i)
        if (m_dayFormat[0] == C_Option[i].longForm)
            return i;
    return 0;
}

int ZBLocale::get_nformats()
{
    return C_NOptions;
}

std::string ZBLocale::get_format_label(int number)
{
    return number >= 0 && number < C_NOptions ? C_Option[number].label : std::string();
}

std::string ZBLocale::weekday_name(int day, bool longForm) const
{
    day = ((day % 7) + 7) % 7;
    return longForm ? C_WeekdayLong[day] : C_WeekdayShort[day];
}

std::string ZBLocale::month_name(int month, bool longForm) const
{
    month = ((month % 12) + 12) % 12;
    return longForm ? C_MonthLong[month] : C_MonthShort[month];
}

int ZBLocale::weekday_number(const std::string& text) const
{
    return find_name(text, C_WeekdayShort, C_WeekdayLong, 7);
}

int ZBLocale::month_number(const std::string& text) const
{
    return find_name(text, C_MonthShort, C_MonthLong, 12);
}

void ZBLocale::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBLocale\n"
        << pad << "    m_dateStyle     : " << m_dateStyle << "\n"
        << pad << "    m_firstDay      : " << m_firstDay << "\n"
        << pad << "    m_24hourClock   : " << m_24hourClock << "\n"
        << pad << "    m_dateFormat    : " << m_dateFormat[0] << " | " << m_dateFormat[1] << "\n"
        << pad << "    m_dayFormat     : " << m_dayFormat[0] << " | " << m_dayFormat[1] << "\n"
        << pad << "    m_timeFormat    : " << m_timeFormat[0] << " | " << m_timeFormat[1] << "\n"
        << pad << "    m_localTimeZone : " << m_localTimeZone << "\n"
        << pad << "    m_workHours     : " << m_workHours << "\n";
}

ZBLocale& zblocale()
{
    std::unique_ptr<ZBLocale>& locale = locale_singleton();
    if (!locale)
        locale.reset(new ZBLocale());
    return *locale;
}

void set_zblocale(ZBLocale* locale)
{
    locale_singleton().reset(locale);
}

} // namespace Tervalon
