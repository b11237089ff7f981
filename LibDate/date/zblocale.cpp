#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbdate.h"
#include "LibCore/error/zberror.h"

#include <memory>
#include <ostream>

namespace Tervalon {

namespace {

const char* const C_WeekdayShort[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const C_WeekdayLong[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
const char* const C_MonthShort[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const C_MonthLong[12] = {"January", "February", "March",     "April",   "May",      "June",
                                     "July",    "August",   "September", "October", "November", "December"};

std::unique_ptr<ZBLocale>& locale_singleton()
{
    static std::unique_ptr<ZBLocale> locale;
    return locale;
}

} // namespace

ZBLocale::ZBLocale()
    : m_dateStyle(1), m_firstDay(1), m_24hourClock(true), m_localTimeZone(ZBDate::C_LocalTime), m_workHours(8.0)
{
    m_dateFormat[0] = "%a %d/%b/%Y %H:%M";
    m_dateFormat[1] = "%d/%b %H:%M";
    m_dayFormat[0] = "%d/%b/%Y";
    m_dayFormat[1] = "%d/%b";
    m_timeFormat[0] = "%H:%M:%S";
    m_timeFormat[1] = "%H:%M";
}

ZBLocale::~ZBLocale() = default;

int ZBLocale::read_config()
{
    return ZBErrC_ok;
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

void ZBLocale::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBLocale\n"
        << pad << "    dateStyle     : " << m_dateStyle << "\n"
        << pad << "    firstDay      : " << m_firstDay << "\n"
        << pad << "    24hourClock   : " << m_24hourClock << "\n"
        << pad << "    localTimeZone : " << m_localTimeZone << "\n"
        << pad << "    workHours     : " << m_workHours << "\n";
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
