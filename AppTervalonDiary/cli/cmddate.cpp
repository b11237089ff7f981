#include "AppTervalonDiary/cli/cmddate.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zblocale.h"
#include "LibCore/error/zberror.h"

#include <cstdio>
#include <ostream>

namespace Tervalon {

namespace {

// Puts back the clock and the day format a run changed, so that a run inside
// a longer-lived process (the tests) leaves nothing behind.
class RunState {
public:
    RunState() : m_format(zblocale().get_format_number()), m_style(zblocale().get_date_style()) {}
    ~RunState()
    {
        ZBDateUtils::clear_fixed_now();
        zblocale().set_day_format(m_format);
        zblocale().set_date_style(m_style);
    }

private:
    int m_format;
    int m_style;
};

} // namespace

bool CmdDate::read_iso(const std::string& text, ZBDate& date)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0, used = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d%n", &year, &month, &day, &hour, &minute, &second, &used) != 6)
        return false;
    std::string rest = text.substr(size_t(used));
    int micro = 0;
    if (!rest.empty() && rest[0] == '.') {
        size_t digits = rest.find_first_not_of("0123456789", 1);
        std::string fraction = rest.substr(1, digits == std::string::npos ? std::string::npos : digits - 1);
        if (fraction.empty() || fraction.size() > 6)
            return false;
        fraction.resize(6, '0');
        micro = std::atoi(fraction.c_str());
        rest = digits == std::string::npos ? std::string() : rest.substr(digits);
    }
    int offset = 0;
    if (rest == "Z") {
        offset = 0;
    } else if (rest.size() == 6 && (rest[0] == '+' || rest[0] == '-') && rest[3] == ':') {
        int oh = std::atoi(rest.substr(1, 2).c_str());
        int om = std::atoi(rest.substr(4, 2).c_str());
        offset = (rest[0] == '-' ? -1 : 1) * (oh * 3600 + om * 60);
    } else {
        return false;
    }
    if (month < 1 || month > 12 || day < 1 || day > ZBDateUtils::days_in_month(month - 1, year) || hour > 23
        || minute > 59 || second > 59)
        return false;
    date = ZBDate(year, month - 1, day - 1, hour, minute, second, micro, ZBDate::C_GMT);
    date -= ZBDuration(offset);
    return true;
}

int CmdDate::run(CliContext& context)
{
    RunState restore;
    std::vector<std::string> texts;
    ZBDate now = ZBDateUtils::now();
    const std::vector<std::string>& args = context.args;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--now" || arg == "--style") {
            if (i + 1 >= args.size())
                return usage_error(context, *this, arg + " needs a value");
            const std::string& value = args[++i];
            if (arg == "--now") {
                if (!read_iso(value, now))
                    return usage_error(context, *this, "--now takes an ISO 8601 moment such as 2026-03-02T08:00:00Z, not '" + value + "'");
            } else if (value == "day") {
                zblocale().set_day_format(1);
            } else if (value == "month") {
                zblocale().set_day_format(6);
            } else if (value == "year") {
                zblocale().set_day_format(8);
            } else {
                return usage_error(context, *this, "--style is day, month or year, not '" + value + "'");
            }
        } else if (arg == "--") {
            texts.insert(texts.end(), args.begin() + long(i) + 1, args.end());
            break;
        } else {
            texts.push_back(arg);
        }
    }
    if (texts.empty())
        return usage_error(context, *this, "no date text given");
    // Every text sees the same now, however long the run takes.
    ZBDateUtils::set_fixed_now(now);
    for (const std::string& text : texts) {
        ZBDate date;
        int result = ZBDateParser::read_checked(text, nullptr, nullptr, date);
        if (iszbwarn(result))
            return report_failure(context, result);
        if (date.is_blank())
            context.out << "blank\n";
        else
            context.out << date.to_iso() << "\t" << date.to_string() << "\n";
    }
    context.out.flush();
    return 0;
}

} // namespace Tervalon
