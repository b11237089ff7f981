#include "AppTervalonDiary/cli/cmdrepeat.h"
#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdateutils.h"
#include "LibCore/textstr/zbtextstr.h"

#include <cstdio>
#include <ostream>
#include <vector>

namespace Tervalon {

bool CmdRepeat::parse_iso(const std::string& text, ZBDate& out)
{
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int used = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d%n", &year, &month, &day, &hour, &minute, &used) != 5)
        return false;
    size_t pos = size_t(used);
    int micro = 0;
    if (pos < text.size() && text[pos] == ':') {
        int n = 0;
        if (std::sscanf(text.c_str() + pos, ":%2d%n", &second, &n) != 1)
            return false;
        pos += size_t(n);
        if (pos < text.size() && text[pos] == '.') {
            std::string digits;
            for (++pos; pos < text.size() && text[pos] >= '0' && text[pos] <= '9'; ++pos)
                digits += text[pos];
            if (digits.empty())
                return false;
            digits = (digits + "000000").substr(0, 6);
            micro = zb_string_to_int(digits);
        }
    }
    int offset = 0;
    std::string zone = text.substr(pos);
    if (zone == "Z") {
        offset = 0;
    } else if (zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':') {
        int zh = 0, zm = 0;
        if (std::sscanf(zone.c_str() + 1, "%2d:%2d", &zh, &zm) != 2 || zh > 14 || zm > 59)
            return false;
        offset = (zh * 3600 + zm * 60) * (zone[0] == '-' ? -1 : 1);
    } else {
        return false;
    }
    if (month < 1 || month > 12 || day < 1 || day > ZBDateUtils::days_in_month(month - 1, year) || hour > 23
        || minute > 59 || second > 60)
        return false;
    out = ZBDate(year, month - 1, day - 1, hour, minute, second, micro, ZBDate::C_GMT);
    out -= ZBDuration(offset);
    return true;
}

int CmdRepeat::run(CliContext& context)
{
    std::string rule;
    std::string from;
    int count = 10;
    bool haveRule = false;
    const std::vector<std::string>& args = context.args;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg == "--help" || arg == "-h") {
            context.out << "Usage: tervalon " << usage() << "\n" << summary() << "\n";
            return 0;
        }
        if (arg == "--from" || arg == "--count") {
            if (i + 1 >= args.size())
                return usage_error(context, *this, arg + " needs a value");
            const std::string& value = args[++i];
            if (arg == "--from") {
                from = value;
            } else {
                bool ok = false;
                count = zb_string_to_int(value, 0, &ok);
                if (!ok || count < 0)
                    return usage_error(context, *this, "--count needs a number of 0 or more");
            }
        } else if (!haveRule) {
            rule = arg;
            haveRule = true;
        } else {
            return usage_error(context, *this, "unexpected argument " + arg);
        }
    }
    if (!haveRule)
        return usage_error(context, *this, "a rule is needed");
    ZBDate start = ZBDateUtils::now();
    if (!from.empty() && !parse_iso(from, start))
        return usage_error(context, *this, "--from needs an ISO 8601 moment such as 2026-03-02T08:00:00Z");
    start.set_timezone(ZBDate::C_GMT);

    ZBDateRepeat repeat;
    int result = repeat.from_string(rule);
    if (iszbwarn(result))
        return report_failure(context, result);
    context.out << repeat.to_natural(nullptr) << "\n";
    std::vector<ZBDateSlot> slots;
    result = repeat.generate_slots(ZBDateSlot(), ZBDateSlot(start, ZBDate(ZBDate::E_Blank)), count, nullptr, slots);
    if (iszbwarn(result))
        return report_failure(context, result);
    for (const ZBDateSlot& slot : slots)
        context.out << slot.m_start.to_iso() << "\t" << slot.m_end.to_iso() << "\n";
    context.out.flush();
    return 0;
}

} // namespace Tervalon
