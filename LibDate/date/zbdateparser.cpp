#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibDate/date/zbnumberwordsplitter.h"
#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibCore/textstr/zbtokenset.h"

#include <cstdlib>

namespace Tervalon {

namespace {

using T = ZBDateExpTerm;

// The tag of a day counted back from the month's end, which the strict
// reader tells apart from a day written as 0.
const char* const C_FromEnd = "END";

// Nine digits always fit an int; a longer number is no date anyone means.
constexpr size_t C_MaxDigits = 9;
constexpr int C_MaxWeeks = 100000000;

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

bool is_word_start(char c)
{
    unsigned char u = static_cast<unsigned char>(c);
    return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z') || u == '_' || u >= 0x80;
}

bool is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_number_token(const std::string& token)
{
    return !token.empty() && is_digit(token[0]);
}

bool is_word_token(const std::string& token)
{
    return !token.empty() && is_word_start(token[0]);
}

bool is_date_separator(const std::string& token)
{
    return token == "-" || token == "/" || token == "." || token == ",";
}

// One parse: the tokens, the expression so far and a month named before its day.
class Parse {
public:
    // With keepImpossible a day or month number no calendar has stays in the
    // expression, so that the strict reader can say which field is wrong;
    // otherwise such text is invalid.
    Parse(const std::string& text, ZBDateExp& exp, bool keepImpossible)
        : m_exp(exp), m_locale(zblocale()), m_keepImpossible(keepImpossible)
    {
        ZBDateParser::split_tokens(m_tokens, text);
    }

    void run()
    {
        while (true) {
            m_tokens.pop_whitespace();
            if (m_tokens.empty())
                break;
            const std::string token = m_tokens.first_token();
            bool going = true;
            if (is_word_token(token))
                going = word();
            else if (is_number_token(token))
                going = number();
            else
                going = symbol(token);
            if (!going) {
                // The terms so far stand; a pending month is dropped. Text left
                // unread makes the reading incomplete, which typed text must not be.
                m_tokens.pop_whitespace();
                if (!m_tokens.empty())
                    m_complete = false;
                return;
            }
        }
        if (m_pendingMonth >= 0)
            m_exp.add_term(T::SetMonth, m_pendingMonth);
    }

private:
    const std::string& peek()
    {
        m_tokens.pop_whitespace();
        return m_tokens.first_token();
    }

    void drop_date_separator()
    {
        if (is_date_separator(peek()))
            m_tokens.pop_token();
    }

    // A month named on its own takes effect before whatever comes next, so
    // that "Mar 1st Mon" and "Mar Last Day" count within March; only a day
    // number joins it as one date.
    void add(int type, int value, const std::string& tag = std::string())
    {
        if (m_pendingMonth >= 0) {
            m_exp.add_term(T::SetMonth, m_pendingMonth);
            m_pendingMonth = -1;
        }
        m_exp.add_term(type, value, tag);
    }

    void invalid()
    {
        m_exp.set_defaults();
        m_pendingMonth = -1;
        m_exp.add_term(T::Invalid, 0);
    }

    // A day of the month and a month as written (1-based). "31-Feb" may carry
    // into March, but a day 0 or 32 or a month 13 is a slip of the keyboard,
    // and carrying it would land on a date nobody wrote and that no text
    // prints back; such text is invalid.
    bool day_ok(int day)
    {
        if (m_keepImpossible || (day >= 1 && day <= 31))
            return true;
        invalid();
        return false;
    }

    bool month_ok(int month)
    {
        if (m_keepImpossible || (month >= 1 && month <= 12))
            return true;
        invalid();
        return false;
    }

    // A number token as an int; false (and the invalid expression) when it
    // has more digits than an int holds.
    bool take_number(int& value, int* digits = nullptr)
    {
        std::string token = m_tokens.pop_token();
        if (token.size() > C_MaxDigits) {
            invalid();
            return false;
        }
        value = int(std::strtol(token.c_str(), nullptr, 10));
        if (digits)
            *digits = int(token.size());
        return true;
    }

    bool handle_am_pm(int hour, int minute, int second, int micro, bool force, bool hourOnly)
    {
        bool am = m_tokens.match("AM");
        bool pm = !am && m_tokens.match("PM");
        if (!am && !pm && !force)
            return false;
        add(T::SetHour, hour);
        if (!hourOnly) {
            add(T::SetMinute, minute);
            add(T::SetSecond, second);
            add(T::SetMicro, micro);
        }
        if (am)
            add(T::AM, 1);
        if (pm)
            add(T::PM, 1);
        return am || pm;
    }

    bool word()
    {
        const std::string word = m_tokens.pop_token();
        int weekday = m_locale.weekday_number(word);
        if (weekday >= 0) {
            add(T::SetWeekday, weekday);
            drop_date_separator();
            return true;
        }
        int month = m_locale.month_number(word);
        if (month >= 0) {
            m_pendingMonth = month;
            drop_date_separator();
            return true;
        }
        if (word == "NEXT" || word == "LAST")
            return next_or_last(word == "NEXT" ? 1 : -1);
        if (word == "NOW")
            add(T::Now, 0);
        else if (word == "TOMORROW" || word == "TOM")
            add(T::Tomorrow, 0);
        else if (word == "YESTERDAY" || word == "YES")
            add(T::Yesterday, 0);
        else if (word == "TODAY" || word == "TOD")
            add(T::Today, 0);
        else if (word == "HOUR" || word == "MINUTE" || word == "SECOND" || word == "USECOND" || word == "WEEK")
            return clock_field(word);
        else if (word == "GMT" || word == "UTC")
            return zone();
        else if (word == "DST" || word == "NODST")
            add(T::SetDST, word == "DST" ? 1 : 0);
        else if (word == "DEFAULTZONE")
            add(T::SetZone, ZBDate::C_DefaultTime);
        else if (word == "LOCAL")
            add(T::SetZone, ZBDate::C_LocalTime);
        else if (word == "WORKDAY")
            add(T::WorkDay, 0);
        else if (word == "WORKDAYFOR")
            add(T::WorkDay, 0, tag());
        else if (word == "FIXED")
            add(T::Fixed, 0);
        else if (word == "FIXEDFOR")
            add(T::Fixed, 0, tag());
        else {
            invalid();
            return false;
        }
        return true;
    }

    std::string tag()
    {
        m_tokens.pop_whitespace();
        return m_tokens.pop_token();
    }

    bool next_or_last(int direction)
    {
        const std::string what = tag();
        int weekday = m_locale.weekday_number(what);
        if (weekday >= 0) {
            add(T::AddDay, 7 * direction);
            add(T::SetWeekday, weekday);
            drop_date_separator();
        } else if (what == "DAY" && direction < 0) {
            add(T::SetDay, -1, C_FromEnd); // the last day of the month
        } else if (what == "WEEK") {
            add(T::AddDay, 7 * direction);
        } else if (what == "MONTH") {
            add(T::AddMonth, direction);
        } else if (what == "YEAR") {
            add(T::AddYear, direction);
        } else if (what == "WORKDAY") {
            add(T::WorkDay, direction);
        } else if (what == "WORKDAYFOR") {
            add(T::WorkDay, direction, tag());
        } else {
            return false;
        }
        return true;
    }

    bool clock_field(const std::string& word)
    {
        if (!is_number_token(peek()))
            return false;
        int value = 0;
        if (!take_number(value))
            return false;
        if (word == "HOUR")
            handle_am_pm(value, 0, 0, 0, true, true);
        else if (word == "MINUTE")
            add(T::SetMinute, value);
        else if (word == "SECOND")
            add(T::SetSecond, value);
        else if (word == "USECOND")
            add(T::SetMicro, value);
        else
            add(T::SetWeek, value - 1);
        return true;
    }

    bool zone()
    {
        int sign = 1;
        bool offset = is_number_token(m_tokens.first_token()); // "GMT5"
        if (m_tokens.match('+'))
            sign = 1, offset = true;
        else if (m_tokens.match('-'))
            sign = -1, offset = true;
        int hours = 0;
        int minutes = 0;
        // Without a sign, a number after a blank is not an offset: "UTC 13:30"
        // is half past one in UTC, and "UTC 7-Dec" a date.
        if (offset && is_number_token(peek())) {
            if (!take_number(hours))
                return false;
            if (m_tokens.match(':')) {
                if (!is_number_token(peek()) || !take_number(minutes))
                    return false;
            }
        }
        // An offset without a code of its own is refused, never taken as GMT.
        const int seconds = hours > 14 || minutes > 59 ? ZBDate::C_OffsetMax + 1 : sign * (hours * 3600 + minutes * 60);
        if (!ZBDateUtils::offset_has_zone(seconds, false)) {
            invalid();
            return false;
        }
        add(T::SetZone, ZBDateUtils::seconds_to_zone(seconds, false, false));
        return true;
    }

    bool number()
    {
        int a = 0;
        int lengthA = 0;
        if (!take_number(a, &lengthA))
            return false;
        m_tokens.pop_whitespace();
        const std::string next = m_tokens.first_token();
        if (next == ":" || next == ";")
            return clock(a);
        // A separator counts only when a part of the date follows at once, so
        // the point in "Jan 1." and the comma in "Jan 1, 14:00" are left alone.
        if (is_date_separator(next)) {
            const std::string& after = m_tokens.get_token(1);
            if (is_number_token(after) || is_word_token(after))
                return date(a, lengthA);
        }
        if (handle_am_pm(a, 0, 0, 0, false, false))
            return true;
        const std::string suffix = m_tokens.first_token();
        if (suffix == "ST" || suffix == "ND" || suffix == "RD" || suffix == "TH") {
            m_tokens.pop_token();
            int weekday = is_word_token(peek()) ? m_locale.weekday_number(peek()) : -1;
            if (weekday >= 0) {
                m_tokens.pop_token();
                add(T::SetWeekday, T::encode_weekday_month(a - 1, weekday));
            } else if (peek() == "LAST") {
                // "2nd Last Day": counted back from the month's end.
                m_tokens.pop_token();
                if (peek() != "DAY" || a < 1)
                    return false;
                m_tokens.pop_token();
                add(T::SetDay, -a, C_FromEnd);
            } else {
                if (!day_ok(a))
                    return false;
                add(T::SetDay, a - 1);
            }
            return true;
        }
        int month = is_word_token(suffix) ? m_locale.month_number(suffix) : -1;
        // After a month named alone a year is that month's ("Sep 2026 Nov"),
        // not the year of the month that follows it.
        if (lengthA >= 3 && m_pendingMonth >= 0)
            month = -1;
        if (month >= 0) {
            m_tokens.pop_token();
            if (lengthA >= 3)
                return year_month(a, month);
            if (!day_ok(a))
                return false;
            add(T::SetDay, a - 1);
            add(T::SetMonth, month);
            m_tokens.match('.');
            return true;
        }
        m_tokens.match('.');
        // Written with three digits or more it is a year, however small:
        // years print with four ("0001"), and must read back as years.
        if (a > 100 || lengthA >= 3) {
            add(T::SetYear, a);
        } else if (m_pendingMonth >= 0) {
            if (!day_ok(a))
                return false;
            m_exp.add_term(T::SetDay, a - 1);
            m_exp.add_term(T::SetMonth, m_pendingMonth);
            m_pendingMonth = -1;
        } else {
            return false;
        }
        return true;
    }

    // "2020 Jan", "2020Jan2", "2020 Jan 2": a number of three digits or more
    // before a month name is its year, as in "2026-Mar", and a day may follow.
    bool year_month(int year, int month)
    {
        // As after a month named alone, one date separator goes with the name.
        drop_date_separator();
        m_tokens.pop_whitespace();
        const std::string& after = m_tokens.get_token(1);
        const bool dayFollows = is_number_token(m_tokens.first_token()) && m_tokens.first_token().size() <= 2
                                && after != ":" && after != ";" && after != "AM" && after != "PM";
        if (dayFollows) {
            int day = 0;
            if (!take_number(day) || !day_ok(day))
                return false;
            add(T::SetDay, day - 1);
        }
        add(T::SetMonth, month);
        add(T::SetYear, year);
        return true;
    }

    bool clock(int hour)
    {
        m_tokens.pop_token();
        int minute = 0;
        int second = 0;
        int micro = 0;
        if (!is_number_token(peek()) || !take_number(minute))
            return false;
        if (m_tokens.match(':')) {
            if (!is_number_token(peek()) || !take_number(second))
                return false;
            if (m_tokens.first_token() == "." && is_number_token(m_tokens.get_token(1))) {
                m_tokens.pop_token();
                std::string digits = m_tokens.pop_token();
                if (digits.size() == 6) {
                    micro = int(std::strtol(digits.c_str(), nullptr, 10));
                } else {
                    // A decimal fraction: ".5" is half a second.
                    micro = int(std::strtod(("0." + digits).c_str(), nullptr) * ZBDate::C_MicroSecs);
                }
            }
        }
        handle_am_pm(hour, minute, second, micro, true, false);
        return true;
    }

    bool date(int a, int lengthA)
    {
        m_tokens.pop_token(); // the separator
        int b = -1;
        int lengthB = 0;
        int monthName = -1;
        if (is_word_token(m_tokens.first_token())) {
            monthName = m_locale.month_number(m_tokens.pop_token());
            if (monthName < 0) {
                invalid();
                return false;
            }
        } else if (!take_number(b, &lengthB)) {
            return false;
        }
        int c = -1;
        int lengthC = 0;
        if (is_date_separator(m_tokens.first_token()) && is_number_token(m_tokens.get_token(1))) {
            m_tokens.pop_token();
            if (!take_number(c, &lengthC))
                return false;
        }
        // "Mar 5/2026": the month came first, so the number after the day is the year.
        if (monthName < 0 && c < 0 && m_pendingMonth >= 0) {
            monthName = m_pendingMonth;
            c = b;
            lengthC = lengthB;
            m_pendingMonth = -1;
        } else if (monthName >= 0) {
            m_pendingMonth = -1;
        }
        const int style = m_locale.get_date_style();
        int day = -1;
        int month = -1;
        int year = -1;
        if (monthName < 0) {
            month = b - 1;
            if (c >= 0) {
                if (lengthA >= 3) {
                    day = c, month = b - 1, year = a;
                } else if (lengthC >= 3) {
                    if (style == 1)
                        day = a, month = b - 1, year = c;
                    else
                        day = b, month = a - 1, year = c;
                } else if (style == 2) {
                    day = c, month = b - 1, year = ZBDateParser::adjusted_year(a, lengthA);
                } else if (style == 1) {
                    day = a, month = b - 1, year = ZBDateParser::adjusted_year(c, lengthC);
                } else {
                    day = b, month = a - 1, year = ZBDateParser::adjusted_year(c, lengthC);
                }
            } else if (lengthA >= 3) {
                year = a; // "2026-2": a month of a year, as "2026-Feb" is
            } else if (style == 1) {
                day = a, month = b - 1;
            } else {
                day = b, month = a - 1;
            }
        } else {
            month = monthName;
            if (c >= 0) {
                if (lengthA >= 3)
                    day = c, year = a;
                else if (lengthC < 3 && style == 2)
                    day = c, year = ZBDateParser::adjusted_year(a, lengthA);
                else
                    day = a, year = lengthC >= 3 ? c : ZBDateParser::adjusted_year(c, lengthC);
            } else if (lengthA > 2) {
                year = a; // "2026-Mar": a month of a year, the day kept
            } else {
                day = a;
            }
        }
        if ((day >= 0 && !day_ok(day)) || (monthName < 0 && !month_ok(month + 1)))
            return false;
        if (day >= 0)
            add(T::SetDay, day - 1);
        add(T::SetMonth, month);
        if (year >= 0)
            add(T::SetYear, year);
        return true;
    }

    bool symbol(const std::string& token)
    {
        m_tokens.pop_token();
        if (token == "+")
            return offset();
        if (token == "@") {
            add(T::Relative, 0, tag());
            return true;
        }
        if (token == "(")
            add(T::Open, 0);
        else if (token == "|")
            add(T::Or, 0);
        else if (token == ")")
            add(T::Close, 0);
        else if (token != "." && token != ",") {
            // Also a '-' that is not between parts of a date: "+-" is the only minus.
            invalid();
            return false;
        }
        return true;
    }

    bool offset()
    {
        int sign = 1;
        if (m_tokens.first_token() == "-") {
            m_tokens.pop_token();
            sign = -1;
        }
        int value = 0;
        if (!is_number_token(peek()) || !take_number(value))
            return false;
        value *= sign;
        const std::string unit = peek();
        if (unit == ":") {
            m_tokens.pop_token();
            add(T::AddHour, value);
            int minutes = 0;
            if (is_number_token(peek())) {
                if (!take_number(minutes))
                    return false;
                add(T::AddMinute, sign * minutes);
                int seconds = 0;
                if (m_tokens.first_token() == ":" && is_number_token(m_tokens.get_token(1))) {
                    m_tokens.pop_token();
                    if (!take_number(seconds))
                        return false;
                    add(T::AddSecond, sign * seconds);
                }
            }
            return true;
        }
        if (!is_word_token(unit))
            return true;
        m_tokens.pop_token();
        // The first prefix that fits decides, so "WORKDAY" takes "WORKDAYFOR"
        // too and its tag is then read as a word of its own.
        if (ZBDateParser::compare_token(unit, "US"))
            add(T::AddMicro, value);
        else if (ZBDateParser::compare_token(unit, "S"))
            add(T::AddSecond, value);
        else if (ZBDateParser::compare_token(unit, "MI"))
            add(T::AddMinute, value);
        else if (ZBDateParser::compare_token(unit, "H"))
            add(T::AddHour, value);
        else if (ZBDateParser::compare_token(unit, "D"))
            add(T::AddDay, value);
        else if (ZBDateParser::compare_token(unit, "WORKDAY"))
            add(T::WorkDay, value);
        else if (ZBDateParser::compare_token(unit, "W")) {
            // Weeks are counted in days; a count whose days overflow is no date.
            if (value > C_MaxWeeks || value < -C_MaxWeeks) {
                invalid();
                return false;
            }
            add(T::AddDay, 7 * value);
        }
        else if (ZBDateParser::compare_token(unit, "MO"))
            add(T::AddMonth, value);
        else if (ZBDateParser::compare_token(unit, "Y"))
            add(T::AddYear, value);
        else
            m_complete = false; // A unit word that names no unit adds nothing.
        return true;
    }

public:
    // False when part of the text was passed over.
    bool complete() const { return m_complete; }

private:
    bool m_complete = true;
    ZBTokenSet m_tokens;
    ZBDateExp& m_exp;
    const ZBLocale& m_locale;
    const bool m_keepImpossible;
    int m_pendingMonth = -1;
};

std::string cleaned(const std::string& text)
{
    const ZBLocale& locale = zblocale();
    std::string out = locale.get_defaultlocale() ? text : locale.clean_date_string(text);
    std::string squeezed;
    squeezed.reserve(out.size());
    bool space = false;
    for (char c : out) {
        if (is_space(c)) {
            space = !squeezed.empty();
            continue;
        }
        if (space)
            squeezed += ' ';
        space = false;
        squeezed += c;
    }
    return squeezed;
}

ZBDateExp parse(const std::string& text, bool* complete, bool keepImpossible)
{
    ZBDateExp exp;
    if (complete)
        *complete = true;
    const std::string clean = cleaned(text);
    if (clean.empty()) {
        exp.add_term(T::Blank, 0);
        return exp;
    }
    Parse parse(clean, exp, keepImpossible);
    parse.run();
    if (complete)
        *complete = parse.complete();
    // Text that gave no term at all ("1", "45m", "+soon") names no date; read
    // as nothing it would land on the start date and print as empty text,
    // which reads back as the blank date.
    if (exp.size() == 0)
        exp.add_term(T::Invalid, 0);
    return exp;
}

} // namespace

ZBDateExp ZBDateParser::parse_date(const std::string& text)
{
    return parse_date(text, nullptr);
}

ZBDateExp ZBDateParser::parse_date(const std::string& text, bool* complete)
{
    return parse(text, complete, false);
}

void ZBDateParser::split_tokens(ZBTokenSet& tokens, const std::string& text)
{
    tokens.remove_all();
    const int size = int(text.size());
    int pos = 0;
    while (pos < size) {
        char c = text[size_t(pos)];
        if (is_digit(c)) {
            int end = pos;
            while (end < size && is_digit(text[size_t(end)]))
                ++end;
            tokens.push_token(text.substr(size_t(pos), size_t(end - pos)), 1);
            pos = end;
        } else if (is_space(c)) {
            pos = tokens.push_whitespace(text, pos, 1);
        } else if (is_word_start(c)) {
            int end = tokens.push_alpha(text, pos, true, 1);
            if (end == pos) {
                tokens.push_token(c, 1);
                ++pos;
            } else {
                pos = end;
            }
        } else {
            tokens.push_token(c, 1);
            ++pos;
        }
    }
}

void ZBDateParser::split_tokens(std::vector<std::string>& tokens, const std::string& text)
{
    ZBNumberWordSplitter::split(text, tokens);
}

bool ZBDateParser::compare_token(const std::string& token, const std::string& prefix, char from, char to)
{
    if (token.size() < prefix.size() || token.compare(0, prefix.size(), prefix) != 0)
        return false;
    if (from == 0 && to == 0)
        return true;
    return !token.empty() && token[0] >= from && token[0] <= to;
}

int ZBDateParser::adjusted_year(int year, int digits)
{
    if (digits > 2)
        return year;
    int thisYear = ZBDateDetails(ZBDateUtils::now(), ZBDate::C_DefaultTime).m_year;
    int result = thisYear / 100 * 100 + year;
    if (result > thisYear + 10)
        result -= 100;
    return result;
}

std::string ZBDateParser::impossible_field(const ZBDateExp& exp, const ZBDate& start)
{
    const int n = exp.size();
    for (int i = 0; i < n; ++i) {
        const ZBDateExpTerm& term = exp.get_term(i);
        int next = i + 1 < n ? exp.get_term(i + 1).m_type : -1;
        bool twelveHour = next == T::AM || next == T::PM;
        for (int j = i + 1; j < n && j <= i + 4 && !twelveHour; ++j)
            twelveHour = exp.get_term(j).m_type == T::AM || exp.get_term(j).m_type == T::PM;
        switch (term.m_type) {
        case T::SetHour:
            if (term.m_value > 23 || (twelveHour && (term.m_value < 1 || term.m_value > 12)))
                return zb_sprintf("There is no hour %d.", term.m_value);
            break;
        case T::SetMinute:
            if (term.m_value > 59)
                return zb_sprintf("There is no minute %d.", term.m_value);
            break;
        case T::SetSecond:
            if (term.m_value > 59)
                return zb_sprintf("There is no second %d.", term.m_value);
            break;
        case T::SetMonth:
            if (term.m_value < 0 || term.m_value > 11)
                return zb_sprintf("There is no month %d.", term.m_value + 1);
            break;
        case T::SetDay: {
            // A day counted from the month's end ("Last Day") is marked so; any
            // other day below 1 was written as 0 ("0/3", "0th").
            if (term.m_value < 0 && term.m_tag != C_FromEnd)
                return "There is no day 0.";
            if (term.m_value < 0) {
                if (term.m_value < -31)
                    return zb_sprintf("No month has a %d%s last day.", -term.m_value,
                                      ZBLocale::get_ordinal(-term.m_value, false).c_str());
                break;
            }
            if (next != T::SetMonth) {
                if (term.m_value > 30)
                    return zb_sprintf("No month has a day %d.", term.m_value + 1);
                break;
            }
            int month = exp.get_term(i + 1).m_value;
            if (month < 0 || month > 11)
                break; // the month's own check says why
            int year = ZBDateDetails(start.is_ok() ? start : ZBDateUtils::now(), ZBDate::C_DefaultTime).m_year;
            if (i + 2 < n && exp.get_term(i + 2).m_type == T::SetYear)
                year = exp.get_term(i + 2).m_value;
            int length = ZBDateUtils::days_in_month(month, year);
            if (term.m_value >= length)
                return zb_sprintf("%s %d has %d days.", ZBLocale::english_month(month).c_str(), year, length);
            break;
        }
        case T::SetWeekday:
            if (term.m_value > 9) {
                int weekNo = 0;
                int weekday = 0;
                T::decode_weekday_month(term.m_value, weekNo, weekday);
                if (weekNo < 0 || weekNo > 5)
                    return zb_sprintf("There is no %d%s weekday in a month.", weekNo + 1,
                                      ZBLocale::get_ordinal(weekNo + 1, false).c_str());
            }
            break;
        default: break;
        }
    }
    return std::string();
}

bool ZBDateParser::read_typed(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config,
                              ZBDate& result, std::string& why)
{
    result = ZBDate(ZBDate::E_Blank);
    why.clear();
    bool complete = true;
    ZBDateExp exp = parse(text, &complete, true);
    const ZBDate start = relative ? *relative : ZBDate(ZBDate::E_Blank);
    if (exp.is_invalid() || !complete)
        return false;
    why = impossible_field(exp, start);
    if (!why.empty())
        return false;
    result = exp.apply(start, config);
    return !result.is_invalid();
}

int ZBDateParser::read_checked(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config,
                               ZBDate& result)
{
    std::string why;
    if (read_typed(text, relative, config, result, why))
        return ZBErrC_ok;
    if (!why.empty())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid date value: %s. %s", text.c_str(), why.c_str());
    return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid date value: %s", text.c_str());
}

} // namespace Tervalon
