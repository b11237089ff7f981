#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbdateutils.h"

#include <cstdio>
#include <istream>
#include <ostream>
#include <utility>

namespace Tervalon {

const ZBDateSlot ZBDateSlot::C_Blank{ZBDate(ZBDate::E_Blank), ZBDate(ZBDate::E_Blank)};

ZBDateSlot::ZBDateSlot() : m_start(ZBDate::E_Blank), m_end(ZBDate::E_Blank) {}

ZBDateSlot::ZBDateSlot(const ZBDate& start, const ZBDate& end, bool sort) : m_start(start), m_end(end)
{
    if (sort && m_start > m_end)
        std::swap(m_start, m_end);
}

void ZBDateSlot::set_defaults()
{
    m_start.set_blank();
    m_end.set_blank();
}

bool ZBDateSlot::is_ok() const
{
    return (m_start.is_ok() && m_end.is_ok()) || (m_start.is_zero() && m_end.is_ok());
}

bool ZBDateSlot::correct()
{
    bool startOk = m_start.is_ok();
    bool endOk = m_end.is_ok();
    if (startOk && !endOk)
        m_end = m_start;
    else if (endOk && !startOk)
        m_start = m_end;
    return startOk || endOk;
}

bool ZBDateSlot::within(const ZBDate& date) const
{
    return (!m_start.is_ok() || m_start <= date) && (!m_end.is_ok() || date <= m_end);
}

void ZBDateSlot::extend(const ZBDate& date)
{
    if (!date.is_ok())
        return;
    if (!m_start.is_ok() || date < m_start)
        m_start = date;
    if (!m_end.is_ok() || date > m_end)
        m_end = date;
}

void ZBDateSlot::set_timezone(int zone)
{
    if (m_start.is_ok())
        m_start.set_timezone(zone);
    if (m_end.is_ok())
        m_end.set_timezone(zone);
}

void ZBDateSlot::ignore_zone()
{
    m_start = ZBDateUtils::ignore_zone(m_start);
    m_end = ZBDateUtils::ignore_zone(m_end);
}

bool ZBDateSlot::intersects(const ZBDateSlot& a, const ZBDateSlot& b)
{
    return a.m_start < b.m_end && a.m_end > b.m_start;
}

bool ZBDateSlot::intersection(const ZBDateSlot& a, const ZBDateSlot& b, ZBDateSlot& out)
{
    if (!intersects(a, b))
        return false;
    out.m_start = a.m_start > b.m_start ? a.m_start : b.m_start;
    out.m_end = a.m_end < b.m_end ? a.m_end : b.m_end;
    return true;
}

bool ZBDateSlot::merge(ZBDateSlot& a, ZBDateSlot& b, bool keepDuration)
{
    if (!(a.m_start <= b.m_end && a.m_end >= b.m_start))
        return false;
    ZBDate start = a.m_start < b.m_start ? a.m_start : b.m_start;
    ZBDate end;
    if (keepDuration)
        end = start + (a.get_duration() + b.get_duration());
    else
        end = a.m_end > b.m_end ? a.m_end : b.m_end;
    a.m_start = start;
    a.m_end = end;
    b.m_start = end;
    b.m_end = end;
    return true;
}

ZBDateSlot ZBDateSlot::expand(const ZBDateSlot& a, const ZBDateSlot& b)
{
    ZBDateSlot result(a);
    if (b.m_start.is_ok() && (!result.m_start.is_ok() || result.m_start > b.m_start)) {
        if (result.m_end.is_ok() && b.m_start > result.m_end)
            result.m_end = b.m_start;
        result.m_start = b.m_start;
    }
    if (b.m_end.is_ok() && (!result.m_end.is_ok() || result.m_end < b.m_end)) {
        if (result.m_start.is_ok() && b.m_end < result.m_start)
            result.m_start = b.m_end;
        result.m_end = b.m_end;
    }
    return result;
}

bool ZBDateSlot::subtract(ZBDateSlot& a, const ZBDateSlot& b, ZBDateSlot& overlap, ZBDateSlot& rest)
{
    const ZBDate oldEnd = a.m_end;
    rest = ZBDateSlot(oldEnd, oldEnd);
    if (!intersects(a, b)) {
        overlap = ZBDateSlot(b.m_start, b.m_start);
        return false;
    }
    intersection(a, b, overlap);
    if (b.m_start > a.m_start) {
        if (b.m_end < oldEnd)
            rest = ZBDateSlot(b.m_end, oldEnd);
        a.m_end = b.m_start;
    } else if (b.m_end < oldEnd) {
        a.m_start = b.m_end;
    } else {
        a.m_end = a.m_start;
    }
    return true;
}

double ZBDateSlot::withinRange(const ZBDate& date, const ZBDateSlot& slot)
{
    double length = slot.get_duration().get_as_days();
    if (length == 0.0)
        return 0.0;
    return (date - slot.m_start).get_as_days() / length;
}

std::vector<ZBDateSlot> ZBDateSlot::slot_series(const ZBDate& from, const ZBDate& to, int kind)
{
    std::vector<ZBDateSlot> series;
    if (!from.is_ok() || !to.is_ok())
        return series;
    ZBDate start = kind == E_Months ? ZBDateUtils::start_month(from)
        : kind == E_Weeks           ? ZBDateUtils::start_week(from)
                                    : ZBDateUtils::start_day(from);
    const ZBDuration second(1);
    while (start <= to) {
        ZBDate next = kind == E_Months ? ZBDateUtils::start_month(ZBDateUtils::end_month(start) + second)
            : kind == E_Weeks          ? ZBDateUtils::start_week(ZBDateUtils::end_week(start) + second)
                                       : ZBDateUtils::start_day(ZBDateUtils::end_day(start) + second);
        series.emplace_back(start, next - second);
        start = next;
    }
    return series;
}

std::string ZBDateSlot::to_string(const std::string& format) const
{
    if (!m_start.is_ok() && !m_end.is_ok())
        return std::string();
    if (m_start == m_end)
        return m_start.to_string(format);
    return m_start.to_string(format) + " - " + m_end.to_string(format);
}

std::string ZBDateSlot::to_compact_string() const
{
    if (!m_end.is_ok() && !m_start.is_ok())
        return std::string();
    if (!m_start.is_ok())
        return m_end.to_string("%N%Y%m%d");
    std::string text = m_start.to_string("%N%Y%m%d");
    if (m_end.is_ok()) {
        std::string end = m_end.to_string("%N%Y%m%d");
        if (end != text)
            text += end;
    }
    return text;
}

bool ZBDateSlot::from_compact_string(const std::string& text)
{
    // Only what to_compact_string writes: one or two whole calendar days.
    // Anything else would be read as some other day and written back so.
    if (text.size() != 8 && text.size() != 16)
        return false;
    auto day_at = [&text](size_t pos, ZBDate& out) {
        for (size_t i = pos; i < pos + 8; ++i)
            if (text[i] < '0' || text[i] > '9')
                return false;
        int year = std::stoi(text.substr(pos, 4));
        int month = std::stoi(text.substr(pos + 4, 2));
        int day = std::stoi(text.substr(pos + 6, 2));
        if (month < 1 || month > 12 || day < 1 || day > ZBDateUtils::days_in_month(month - 1, year))
            return false;
        out = ZBDate(year, month - 1, day - 1, 0, 0, 0, 0, ZBDate::C_DefaultTime);
        return true;
    };
    ZBDate first;
    ZBDate second;
    if (!day_at(0, first))
        return false;
    second = first;
    if (text.size() >= 16 && !day_at(8, second))
        return false;
    m_start = ZBDateUtils::start_day(first);
    m_end = ZBDateUtils::end_day(second);
    return true;
}

bool ZBDateSlot::operator<(const ZBDateSlot& other) const
{
    if (m_start == other.m_start)
        return m_end < other.m_end;
    return m_start < other.m_start;
}

void ZBDateSlot::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBDateSlot\n";
    m_start.dump(out, indent + 1);
    m_end.dump(out, indent + 1);
}

bool compare_zbdateslots(const ZBDateSlot& a, const ZBDateSlot& b)
{
    if (a.m_start < b.m_start)
        return true;
    if (b.m_start < a.m_start)
        return false;
    return a.m_end < b.m_end;
}

std::ostream& operator<<(std::ostream& out, const ZBDateSlot& slot)
{
    out << slot.m_start;
    if (slot.m_start == slot.m_end)
        return out << "&";
    return out << "=" << slot.m_end;
}

std::istream& operator>>(std::istream& in, ZBDateSlot& slot)
{
    ZBDate start;
    if (!(in >> start))
        return in;
    slot.m_start = start;
    int c = in.peek();
    if (c == '&') {
        in.get();
        slot.m_end = start;
    } else if (c == '=') {
        in.get();
        ZBDate end;
        in >> end;
        slot.m_end = end;
    } else if (c == '+') {
        in.get();
        long long seconds = 0;
        in >> seconds;
        // A length that carries the end past any year a file can store is
        // damage; refused before the sum can overflow.
        constexpr long long maxSeconds = 100000LL * 366 * 86400;
        if (seconds > maxSeconds || seconds < -maxSeconds) {
            in.setstate(std::ios::failbit);
            return in;
        }
        const ZBDate end = start + ZBDuration(seconds);
        if (end.get_year() > 99999 || end.get_year() < -9999) {
            in.setstate(std::ios::failbit);
            return in;
        }
        slot.m_end = end;
        if (seconds < 0)
            std::swap(slot.m_start, slot.m_end);
    } else {
        slot.m_end = start;
    }
    if (in.eof())
        in.clear(std::ios::eofbit);
    return in;
}

} // namespace Tervalon
