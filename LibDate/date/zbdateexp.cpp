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

std::string ZBDateExp::to_string() const
{
    std::string text;
    for (int i = 0; i < size(); ++i) {
        int previous = i > 0 ? m_term[size_t(i - 1)].m_type : -1;
        int next = i + 1 < size() ? m_term[size_t(i + 1)].m_type : -1;
        std::string part = m_term[size_t(i)].to_string(previous, next);
        // Inside brackets the first term needs no blank before it.
        if ((previous == ZBDateExpTerm::Open || previous == ZBDateExpTerm::Or) && !part.empty() && part[0] == ' ')
            part.erase(0, 1);
        text += part;
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
