#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// What differs by country or user: formats, the first day of the week, the
// chosen zone, names of days and months, and the length of a working day.
// Reached through zblocale(). Defaults are English, Monday first, a 24-hour
// clock and an 8-hour working day; the full locale comes in a later step.
class ZBLocale {
public:
    ZBLocale();
    virtual ~ZBLocale();

    // Reads the user's choices from the parameter store.
    virtual int read_config();
    virtual void set_defaults();

    int get_first_day() const { return m_firstDay; }
    void set_first_day(int day) { m_firstDay = ((day % 7) + 7) % 7; }
    int get_firstday() const { return m_firstDay; }
    void set_firstday(int day) { set_first_day(day); }
    double get_workhours() const { return m_workHours; }
    void set_workhours(double hours) { m_workHours = hours > 0 ? hours : 8.0; }
    bool is_24hour_clock() const { return m_24hourClock; }
    // Sets both time formats, then rebuilds the date format from them.
    void set_24hour_clock(bool on);

    // The zone chosen by the user; C_LocalTime follows the machine.
    int get_default_zone() const { return m_localTimeZone; }
    void set_default_zone(int zone) { set_timezone(zone); }
    int get_timezone() const { return m_localTimeZone; }
    // "Keep" is no choice and is ignored; the default zone means the machine's.
    void set_timezone(int zone);
    // The machine's standard zone (no DST flag).
    int get_local_timezone() const;
    int get_date_style() const { return m_dateStyle; }
    void set_date_style(int style) { m_dateStyle = style; }

    const std::string& date_format() const { return m_dateFormat[0]; }
    const std::string& day_format(bool shortForm) const { return m_dayFormat[shortForm ? 1 : 0]; }
    const std::string& time_format(bool withSeconds) const { return m_timeFormat[withSeconds ? 0 : 1]; }
    // An empty text makes "%a ", the long day format, a blank and the long time format.
    void set_date_format(const std::string& format);
    // One of the rows of the format table; an unknown number takes row 0.
    void set_day_format(int number);
    int get_format_number() const;
    static int get_nformats();
    static std::string get_format_label(int number);

    // day 0 is Sunday, month 0 January; names are English.
    std::string weekday_name(int day, bool longForm) const;
    std::string month_name(int month, bool longForm) const;
    // Case-blind, a unique prefix is enough; -1 for no match or several.
    int weekday_number(const std::string& text) const;
    int month_number(const std::string& text) const;

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
