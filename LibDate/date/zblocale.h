#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace Tervalon {

// One row of the table of day formats the user can choose from.
struct ZBDateFormatOption {
    std::string m_long;
    std::string m_short;
    std::string m_label;
    int m_style; // 0 month first, 1 day first, 2 year first
};

// What differs by country or user: formats, the first day of the week, the
// chosen zone, names of days and months, numbers and currency, and the working
// week. Reached through zblocale(); read from every thread, changed only by the
// settings window on the main thread. This base class has English defaults;
// ZBLocaleQt takes its defaults and names from the platform.
class ZBLocale {
public:
    ZBLocale();
    virtual ~ZBLocale();
    // A copy of the same class, for update_zblocale().
    virtual ZBLocale* clone() const { return new ZBLocale(*this); }

    // The user's choices from the system values, and back.
    virtual int read_config();
    virtual int write_config() const;
    virtual void set_defaults();
    // English names first, then the local ones (the same in this class).
    virtual void set_locale_names();

    static const std::vector<ZBDateFormatOption>& get_options();

    int get_date_style() const { return m_dateStyle; }
    void set_date_style(int style) { m_dateStyle = style < 0 || style > 2 ? 1 : style; }
    int get_first_day() const { return m_firstDay; }
    void set_first_day(int day) { m_firstDay = ((day % 7) + 7) % 7; }
    int get_firstday() const { return m_firstDay; }
    void set_firstday(int day) { set_first_day(day); }
    bool is_24hour_clock() const { return m_24hourClock; }
    // Sets both time formats, then rebuilds the date format from them.
    void set_24hour_clock(bool on);
    bool get_defaultlocale() const { return m_defaultLocale; }
    void set_defaultlocale(bool on) { m_defaultLocale = on; }

    const std::string& date_format() const { return m_dateFormat[0]; }
    const std::string& day_format(bool shortForm) const { return m_dayFormat[shortForm ? 1 : 0]; }
    // The short time form leaves the seconds out.
    const std::string& time_format(bool shortForm) const { return m_timeFormat[shortForm ? 1 : 0]; }
    // An empty text makes "%a ", the long day format, a blank and the long time format.
    void set_date_format(const std::string& format);
    // One of the rows of the format table; an unknown number takes row 0.
    void set_day_format(int number);
    int get_format_number() const;
    static int get_nformats();
    static std::string get_format_label(int number);

    // The zone chosen by the user; C_LocalTime follows the machine.
    int get_timezone() const { return m_localTimeZone; }
    int get_default_zone() const { return m_localTimeZone; }
    void set_default_zone(int zone) { set_timezone(zone); }
    // "Keep" is no choice and is ignored; the default zone means the machine's.
    void set_timezone(int zone);
    // The machine's standard zone (no DST flag).
    int get_local_timezone() const;
    void set_local_timezone(int zone) { set_timezone(zone); }
    // The chosen zone's text as of now ("GMT+01 DST"; the machine's zone is
    // named by its offset today), and the choice from one of the texts of
    // get_timezones(); false when the text names no zone.
    std::string get_timezone_str() const;
    bool set_timezone_str(const std::string& text);
    // "Local Time", then each half hour from GMT+14 to GMT-12 and the
    // quarter-hour zones in use, each without and with DST.
    static std::vector<std::pair<int, std::string>> get_timezones();

    // The working week: hours in a day and which weekdays (0 Sunday) are worked.
    double get_workhours() const { return m_workHours; }
    void set_workhours(double hours) { m_workHours = hours > 0 && hours <= 24 ? hours : 8.0; }
    bool is_workday(int weekday) const { return (m_workDays >> (((weekday % 7) + 7) % 7)) & 1; }
    int get_workdays() const { return m_workDays; }
    // A mask, bit 0 Sunday; a mask with no day keeps Monday to Friday.
    void set_workdays(int mask) { m_workDays = (mask & 0x7f) ? (mask & 0x7f) : C_DefaultWorkDays; }

    // day 0 is Sunday, month 0 January; local names unless the English ones are
    // chosen. The short form is the abbreviation ("Mon", "Mar").
    std::string weekday_name(int day, bool shortForm) const;
    std::string month_name(int month, bool shortForm) const;
    // The English short names, which stored texts use whatever the locale.
    static std::string english_weekday(int day);
    static std::string english_month(int month);
    // Case-blind, a unique prefix is enough; -1 for no match or several.
    int weekday_number(const std::string& text) const;
    int month_number(const std::string& text) const;
    // Each local day and month name in the text, as a whole word, becomes the
    // English short name, so that the date parser knows only English.
    std::string clean_date_string(const std::string& text) const;
    // "st", "nd", "rd", "th" after the number; -1 "last" and -2 "2nd last" when asked.
    static std::string get_ordinal(int number, bool withLast);

    const std::string& get_currency() const { return m_currency; }
    void set_currency(const std::string& text) { m_currency = text; }
    const std::string& get_groupsep() const { return m_groupSep; }
    void set_groupsep(const std::string& text) { m_groupSep = text; }
    const std::string& get_decimal() const { return m_decimal; }
    void set_decimal(const std::string& text) { m_decimal = text.empty() ? "." : text; }
    int get_latlonformat() const { return m_latLonFormat; }
    void set_latlonformat(int format) { m_latLonFormat = format; }
    int get_altunits() const { return m_altUnits; }
    void set_altunits(int units) { m_altUnits = units; }

    std::string to_string(long value) const;
    std::string to_string(int value) const { return to_string(long(value)); }
    // "%.2f" with the group separator and the local decimal mark; pre and post wrap it.
    std::string to_string(double value, const std::string& pre = std::string(),
                          const std::string& post = std::string()) const;
    // The currency symbol goes before unless the caller gives its own text.
    std::string to_currency(double value, const std::string& pre = std::string(),
                            const std::string& post = std::string()) const;
    // Without group separators and currency, and with "." as the decimal mark.
    std::string clean_number(const std::string& text) const;
    double to_double(const std::string& text) const;
    long to_long(const std::string& text) const;
    int to_int(const std::string& text) const;

    virtual void dump(std::ostream& out, int indent) const;

    static constexpr int C_DefaultWorkDays = 0x3e; // Monday to Friday

protected:
    // Installs local names (seven weekdays, twelve months, short and long).
    void set_local_names(const std::vector<std::string>& weekdayShort, const std::vector<std::string>& weekdayLong,
                         const std::vector<std::string>& monthShort, const std::vector<std::string>& monthLong);

private:
    int find_name(const std::string& text, bool weekday) const;

    int m_dateStyle;
    int m_firstDay;
    bool m_24hourClock;
    std::string m_dateFormat[2];
    std::string m_dayFormat[2];
    std::string m_timeFormat[2];
    int m_localTimeZone;
    bool m_defaultLocale;
    std::vector<std::string> m_weekdayDShort;
    std::vector<std::string> m_weekdayDLong;
    std::vector<std::string> m_weekdayShort;
    std::vector<std::string> m_weekdayLong;
    std::vector<std::string> m_monthDShort;
    std::vector<std::string> m_monthDLong;
    std::vector<std::string> m_monthShort;
    std::vector<std::string> m_monthLong;
    std::string m_currency;
    std::string m_groupSep;
    std::string m_decimal;
    int m_latLonFormat;
    int m_altUnits;
    double m_workHours;
    int m_workDays;
    // Upper-cased copies of the name lists, so that matching does not case-fold
    // every name on every call: [0] English long, [1] English short, [2] local
    // long, [3] local short.
    std::vector<std::string> m_weekdayUpper[4];
    std::vector<std::string> m_monthUpper[4];
};

// The locale in use, made on first use (from any thread). A reference stays
// good for the whole run, even after the locale is replaced.
ZBLocale& zblocale();
// Installs a locale, or null for a fresh default one on the next use; takes
// ownership. A change of settings installs a changed copy instead of changing
// the locale in use, so that other threads never see half a change.
void set_zblocale(ZBLocale* locale);
// Makes a copy of the locale in use, lets change alter it and installs the
// copy: the way to change one setting while other threads read the locale.
// Changes are made one at a time.
void update_zblocale(const std::function<void(ZBLocale&)>& change);

} // namespace Tervalon
