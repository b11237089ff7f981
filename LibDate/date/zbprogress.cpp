#include "LibDate/date/zbprogress.h"

#include <cstdio>
#include <istream>
#include <ostream>
#include <string>

namespace Tervalon {

ZBProgress::ZBProgress() : m_completion(0.0), m_addCount(0) {}

void ZBProgress::settle_completed()
{
    m_completed = m_total * (m_completion / 100.0);
    if (m_total > 0)
        m_completion = m_completed / m_total * 100.0;
}

void ZBProgress::set_completion(double percent)
{
    m_completion = percent;
    settle_completed();
    m_addCount = 0;
}

void ZBProgress::set_duration(const ZBDuration& total)
{
    m_total = total;
    settle_completed();
}

void ZBProgress::add_component(const ZBProgress& other)
{
    int ownWeight = m_addCount;
    int otherWeight = other.m_addCount > 0 ? other.m_addCount : 1;
    double mean = (m_completion * ownWeight + other.m_completion * otherWeight) / double(ownWeight + otherWeight);
    m_total += other.m_total;
    m_completed += other.m_completed;
    m_addCount = ownWeight + otherWeight;
    if (m_total > 0) {
        m_completion = m_completed / m_total * 100.0;
        if (!(get_remaining() > 0))
            m_completion = 100.0;
    } else {
        m_completion = mean;
    }
}

void ZBProgress::clear()
{
    m_total = ZBDuration();
    m_completed = ZBDuration();
    m_completion = 0.0;
    m_addCount = 0;
}

bool ZBProgress::operator==(const ZBProgress& other) const
{
    return m_total == other.m_total && m_completed == other.m_completed && m_completion == other.m_completion;
}

void ZBProgress::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBProgress " << m_total.to_string(true) << " done " << m_completed.to_string(true) << " ("
        << m_completion << "%, " << m_addCount << " parts)\n";
}

std::ostream& operator<<(std::ostream& out, const ZBProgress& progress)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.12f", progress.get_completion());
    return out << progress.get_duration() << buffer;
}

std::istream& operator>>(std::istream& in, ZBProgress& progress)
{
    ZBDuration total;
    if (!(in >> total))
        return in;
    double percent = 0.0;
    in >> percent;
    if (in.fail() && !in.bad())
        in.clear(in.eof() ? std::ios::eofbit : std::ios::goodbit);
    progress.clear();
    progress.set_duration(total);
    progress.set_completion(percent);
    return in;
}

} // namespace Tervalon
