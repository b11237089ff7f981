#include "LibCore/time/zbmoment.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace Tervalon {

namespace {

std::atomic<bool> g_fixedSet(false);
std::atomic<std::int64_t> g_fixed(0);
std::atomic<ZBMoment::FormatFn> g_formatter(nullptr);

void replace_all(std::string& text, const std::string& from, const std::string& to)
{
    for (size_t pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size()))
        text.replace(pos, from.size(), to);
}

std::string two(int value)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%02d", value);
    return buffer;
}

} // namespace

ZBMoment ZBMoment::now()
{
    if (g_fixedSet.load(std::memory_order_acquire))
        return ZBMoment(g_fixed.load(std::memory_order_acquire));
    using namespace std::chrono;
    return ZBMoment(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
}

void ZBMoment::set_fixed_now(const ZBMoment& moment)
{
    g_fixed.store(moment.m_micros, std::memory_order_release);
    g_fixedSet.store(true, std::memory_order_release);
}

void ZBMoment::clear_fixed_now()
{
    g_fixedSet.store(false, std::memory_order_release);
}

ZBMoment ZBMoment::plus_micros(std::int64_t micros) const
{
    return is_ok() ? ZBMoment(m_micros + micros) : *this;
}

double ZBMoment::days_until(const ZBMoment& later) const
{
    return double(later.m_micros - m_micros) / (86400.0 * 1000000.0);
}

std::string ZBMoment::to_string(const std::string& format) const
{
    if (!is_ok())
        return std::string();
    FormatFn fn = g_formatter.load(std::memory_order_acquire);
    return fn ? fn(*this, format) : plain_format(*this, format);
}

void ZBMoment::set_formatter(FormatFn fn)
{
    g_formatter.store(fn, std::memory_order_release);
}

std::string ZBMoment::plain_format(const ZBMoment& moment, const std::string& format)
{
    if (!moment.is_ok())
        return std::string();
    std::int64_t seconds = moment.m_micros / 1000000;
    int micro = int(moment.m_micros % 1000000);
    if (micro < 0) {
        micro += 1000000;
        --seconds;
    }
    const std::time_t t = std::time_t(seconds);
    std::tm tm{};
    localtime_r(&t, &tm);
    std::string text = format;
    replace_all(text, "%D", "%d/%b/%Y");
    replace_all(text, "%T", "%H:%M:%S");
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%02d.%06d", tm.tm_sec, micro);
    replace_all(text, "%U", buffer);
    std::snprintf(buffer, sizeof buffer, "%04d", tm.tm_year + 1900);
    replace_all(text, "%Y", buffer);
    static const char* const months[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    replace_all(text, "%b", months[tm.tm_mon]);
    replace_all(text, "%m", two(tm.tm_mon + 1));
    replace_all(text, "%d", two(tm.tm_mday));
    replace_all(text, "%H", two(tm.tm_hour));
    replace_all(text, "%M", two(tm.tm_min));
    replace_all(text, "%S", two(tm.tm_sec));
    return text;
}

} // namespace Tervalon
