#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// What differs by country or user: formats, the first day of the week, the
// chosen zone, names of days and months, and the length of a working day.
// Reached through zblocale(). Defaults are English, Monday first, 8 hours a day.
class ZBLocale {
public:
    ZBLocale();
    virtual ~ZBLocale();

    // Reads the user's choices from the parameter store.
    virtual int read_config();

    int get_first_day() const { return m_firstDay; }
    void set_first_day(int day) { m_firstDay = day; }
    double get_workhours() const { return m_workHours; }
    void set_workhours(double hours) { m_workHours = hours; }
    // The zone chosen by the user; C_LocalTime follows the machine.
    int get_default_zone() const { return m_localTimeZone; }
    void set_default_zone(int zone) { m_localTimeZone = zone; }
    int get_date_style() const { return m_dateStyle; }
    void set_date_style(int style) { m_dateStyle = style; }

    const std::string& date_format() const { return m_dateFormat[0]; }
    const std::string& day_format(bool shortForm) const { return m_dayFormat[shortForm ? 1 : 0]; }
    const std::string& time_format(bool withSeconds) const { return m_timeFormat[withSeconds ? 0 : 1]; }
    std::string weekday_name(int day, bool longForm) const;
    std::string month_name(int month, bool longForm) const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    int m_dateStyle;
    int m_firstDay;
    bool m_24hourClock;
    std::string m_dateFormat[2];
    std::string m_dayFormat[2];
    std::string m_timeFormat[2];
    int m_localTimeZone;
    double m_workHours;
};

ZBLocale& zblocale();
// Replaces the singleton; takes ownership.
void set_zblocale(ZBLocale* locale);

} // namespace Tervalon
