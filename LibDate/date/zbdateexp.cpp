#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdatedetails.h"
#include "LibDate/date/zbdateutils.h"
#include "LibCore/error/zberror.h"

#include <ostream>
#include <utility>

namespace Tervalon {

namespace {

// Passes of an expression that Fixed sends round again; a rule that never
// lands on a work day stops here.
constexpr int C_MaxPasses = 1000;
// Brackets nested deeper than anyone writes are taken as damage, not recursed.
constexpr int C_MaxDepth = 64;

ZBDate outcome_date(int outcome)
{
    return outcome == ZBDateExpTerm::E_Blank ? ZBDate(ZBDate::E_Blank) : ZBDate(ZBDate::E_Invalid);
}

} // namespace

ZBDateExp::ZBDateExp() = default;
ZBDateExp::~ZBDateExp() = default;

void ZBDateExp::set_defaults()
{
    m_term.clear();
    m_relative.clear();
}

void ZBDateExp::add_term(int type, int value, const std::string& tag)
{
    m_term.emplace_back(type, value, tag);
    if (type == ZBDateExpTerm::Relative)
        m_relative = tag;
}

void ZBDateExp::add_exp(const ZBDateExp& other)
{
    for (const ZBDateExpTerm& term : other.m_term)
        add_term(term.m_type, term.m_value, term.m_tag);
}

bool ZBDateExp::is_invalid() const
{
    for (const ZBDateExpTerm& term : m_term)
        if (term.m_type == ZBDateExpTerm::Invalid)
            return true;
    return false;
}

ZBDate ZBDateExp::apply(const ZBDate& date, const ZBRepeatConfig* config) const
{
    ZBDateDetails details;
    if (date.is_ok())
        details.set_date(date, ZBDate::C_OriginalTime);
    else
        details.set_date(ZBDateUtils::now(), ZBDate::C_DefaultTime);
    ZBDate result = evaluate(details, config, 0, size() - 1);
    // Terms may set any year the calendar can count; the two years that mark
    // blank and invalid, and anything past them, are not dates.
    if (result.is_ok() && (result.get_year() < 1 || result.get_year() >= ZBDate::C_InvalidDateYear))
        return ZBDate(ZBDate::E_Invalid);
    return result;
}

ZBDate ZBDateExp::evaluate(const ZBDateDetails& details, const ZBRepeatConfig* config, int firstTerm,
                           int lastTerm) const
{
    return evaluate_depth(details, config, firstTerm, lastTerm, 0);
}

int ZBDateExp::find_close(int open, int last) const
{
    int depth = 0;
    for (int i = open; i <= last; ++i) {
        int type = m_term[size_t(i)].m_type;
        if (type == ZBDateExpTerm::Open)
            ++depth;
        else if (type == ZBDateExpTerm::Close && --depth == 0)
            return i;
    }
    return last + 1;
}

ZBDate ZBDateExp::evaluate_depth(const ZBDateDetails& start, const ZBRepeatConfig* config, int first, int last,
                                 int depth) const
{
    if (first < 0)
        first = 0;
    if (last >= size())
        last = size() - 1;
    ZBDateDetails details(start);
    const ZBDate begin = details.get_date(ZBDate::C_OriginalTime);
    for (int pass = 0; pass < C_MaxPasses; ++pass) {
        bool finished = true;
        for (int i = first; i <= last; ++i) {
            const ZBDateExpTerm& term = m_term[size_t(i)];
            if (term.m_type != ZBDateExpTerm::Open) {
                int outcome = ZBDateExpTerm::E_Date;
                int result = term.apply(details, config, outcome);
                if (outcome != ZBDateExpTerm::E_Date)
                    return outcome_date(outcome);
                if (iszbwarn(result))
                    return ZBDate(ZBDate::E_Blank);
                if (result == ZBErrC_okNotFinished) {
                    finished = false;
                    break;
                }
                continue;
            }
            if (depth >= C_MaxDepth)
                return ZBDate(ZBDate::E_Invalid);
            // Alternatives: the first that lands strictly after the date here wins.
            int close = find_close(i, last);
            std::vector<std::pair<int, int>> choices;
            int from = i + 1;
            int nested = 0;
            for (int j = i + 1; j < close; ++j) {
                int type = m_term[size_t(j)].m_type;
                if (type == ZBDateExpTerm::Open)
                    ++nested;
                else if (type == ZBDateExpTerm::Close)
                    --nested;
                else if (type == ZBDateExpTerm::Or && nested == 0) {
                    choices.emplace_back(from, j - 1);
                    from = j + 1;
                }
            }
            choices.emplace_back(from, close - 1);
            const ZBDate reference = details.get_date(ZBDate::C_OriginalTime);
            for (const auto& choice : choices) {
                ZBDate tried = evaluate_depth(details, config, choice.first, choice.second, depth + 1);
                if (!tried.is_ok())
                    return tried;
                if (tried > reference) {
                    details.set_date(tried, tried.get_timezone());
                    break;
                }
            }
            i = close;
        }
        ZBDate current = details.get_date(ZBDate::C_OriginalTime);
        if (finished || !(current > begin))
            return current;
    }
    return details.get_date(ZBDate::C_OriginalTime);
}

namespace {

using T = ZBDateExpTerm;

int type_at(const std::vector<ZBDateExpTerm>& terms, size_t i)
{
    return i < terms.size() ? terms[i].m_type : -1;
}

int value_at(const std::vector<ZBDateExpTerm>& terms, size_t i)
{
    return i < terms.size() ? terms[i].m_value : -1;
}

// How many terms from i print as one piece of text. A clock is only written
// as "9:30:05.000007" when all four fields are there, since the reader of
// that form sets all four; a date joins a day of the month, a month and a
// year that a reader can take back as one date.
size_t fused_length(const std::vector<ZBDateExpTerm>& terms, size_t i)
{
    const int type = type_at(terms, i);
    if (type == T::SetHour && type_at(terms, i + 1) == T::SetMinute && type_at(terms, i + 2) == T::SetSecond
        && type_at(terms, i + 3) == T::SetMicro && value_at(terms, i) >= 0 && value_at(terms, i + 1) >= 0
        && value_at(terms, i + 2) >= 0 && value_at(terms, i + 3) >= 0 && value_at(terms, i + 3) < ZBDate::C_MicroSecs)
        return 4;
    auto is_month = [&](size_t j) {
        return type_at(terms, j) == T::SetMonth && value_at(terms, j) >= 0 && value_at(terms, j) < 12;
    };
    auto is_year = [&](size_t j) { return type_at(terms, j) == T::SetYear && value_at(terms, j) > 0; };
    if (type == T::SetDay && value_at(terms, i) >= 0 && is_month(i + 1))
        return is_year(i + 2) ? 3 : 2;
    // A year before a month joins it too: "2027 Mar" would read as a day.
    if ((is_month(i) && is_year(i + 1)) || (is_year(i) && is_month(i + 1)))
        return 2;
    return 1;
}

} // namespace

std::string ZBDateExp::to_string() const
{
    std::string text;
    size_t i = 0;
    while (i < m_term.size()) {
        const size_t length = fused_length(m_term, i);
        const int before = i > 0 ? m_term[i - 1].m_type : -1;
        for (size_t j = i; j < i + length; ++j) {
            // Neighbours outside the piece are not passed on, so nothing fuses across it.
            int previous = j > i ? m_term[j - 1].m_type : -1;
            int next = j + 1 < i + length ? m_term[j + 1].m_type : -1;
            std::string part = m_term[j].to_string(previous, next);
            // Inside brackets the first term needs no blank before it.
            if (j == i && (before == T::Open || before == T::Or) && !part.empty() && part[0] == ' ')
                part.erase(0, 1);
            text += part;
        }
        // An ordinal day before a weekday would be read as "the 2nd Monday".
        if (length == 1 && m_term[i].m_type == T::SetDay && m_term[i].m_value >= 0
            && type_at(m_term, i + 1) == T::SetWeekday)
            text += ",";
        i += length;
    }
    size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? std::string() : text.substr(start);
}

void ZBDateExp::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBDateExp\n" << pad << "    m_relative : " << m_relative << "\n";
    for (const ZBDateExpTerm& term : m_term)
        term.dump(out, indent + 1);
}

} // namespace Tervalon
