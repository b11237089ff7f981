#include "LibCore/log/zbdebug.h"
#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibCore/time/zbmoment.h"

#include <QSaveFile>

#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <sstream>
#include <thread>

namespace Tervalon {

namespace {

const std::thread::id g_mainThread = std::this_thread::get_id();

int default_thread_id()
{
    std::thread::id id = std::this_thread::get_id();
    if (id == g_mainThread)
        return 0;
    // Any stable non-zero number per thread will do.
    int value = int(std::hash<std::thread::id>()(id) & 0x3FFFFFFF);
    return value == 0 ? 1 : value;
}

long long steady_micros()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

ZBDebug::ThreadFn g_threadFn = default_thread_id;
ZBDebug::ClockFn g_clockFn = steady_micros;

std::unique_ptr<ZBDebug>& singleton()
{
    static std::unique_ptr<ZBDebug> debug;
    return debug;
}

std::mutex& singleton_mutex()
{
    static std::mutex mutex;
    return mutex;
}

} // namespace

ZBDebug::ZBDebug(int threadId) : m_threadId(threadId), m_tracing(false), m_traceStream(&std::cerr) {}

ZBDebug::~ZBDebug() = default;

void ZBDebug::set_thread_fn(ThreadFn fn)
{
    g_threadFn = fn ? fn : default_thread_id;
}

int ZBDebug::current_thread_id()
{
    return g_threadFn();
}

void ZBDebug::set_clock(ClockFn fn)
{
    g_clockFn = fn ? fn : steady_micros;
}

long long ZBDebug::now()
{
    return g_clockFn();
}

void ZBDebug::delete_instance()
{
    std::lock_guard<std::mutex> lock(singleton_mutex());
    singleton().reset();
}

ZBDebug& ZBDebug::for_current_thread()
{
    int id = current_thread_id();
    if (id == m_threadId)
        return *this;
    std::lock_guard<std::mutex> lock(m_othersMutex);
    std::unique_ptr<ZBDebug>& other = m_others[id];
    if (!other) {
        other.reset(new ZBDebug(id));
        other->m_tracing = m_tracing;
        other->m_traceStream = m_traceStream;
    }
    return *other;
}

void ZBDebug::enter_function(const std::string& name, bool internal, bool profiled)
{
    for_current_thread().enter_here(name, internal, profiled);
}

void ZBDebug::leave_function()
{
    for_current_thread().leave_here();
}

void ZBDebug::enter_here(const std::string& name, bool internal, bool profiled)
{
    m_stack.emplace_back(name, internal, profiled, now());
}

void ZBDebug::leave_here()
{
    if (m_stack.empty())
        return;
    ZBStackFrame frame = m_stack.back();
    m_stack.pop_back();
    const long long elapsed = std::max(0LL, now() - frame.m_start);
    if (!m_stack.empty())
        m_stack.back().m_childTime += elapsed;
    if (m_tracing && !frame.m_internal && m_traceStream) {
        char line[512];
        std::snprintf(line, sizeof line, "---- %s (%ld)", frame.m_name.c_str(), long(elapsed / 1000000));
        *m_traceStream << line << std::endl;
    }
    if (!frame.m_profiled)
        return;
    ZBProfileEntry& entry = m_profile[frame.m_name];
    entry.m_name = frame.m_name;
    entry.m_calls += 1;
    entry.m_own += std::max(0LL, elapsed - frame.m_childTime);
    bool outermost = std::none_of(m_stack.begin(), m_stack.end(),
                                  [&frame](const ZBStackFrame& f) { return f.m_name == frame.m_name; });
    if (outermost)
        entry.m_total += elapsed;
    if (!m_stack.empty()) {
        const std::string& caller = m_stack.back().m_name;
        entry.m_callers[caller] += 1;
        ZBProfileEntry& callerEntry = m_profile[caller];
        callerEntry.m_name = caller;
        callerEntry.m_callees[frame.m_name] += 1;
    }
}

const ZBProfileEntry* ZBDebug::get_entry(const std::string& name) const
{
    auto it = m_profile.find(name);
    return it == m_profile.end() || it->second.m_calls == 0 ? nullptr : &it->second;
}

void ZBDebug::clear_profile()
{
    m_profile.clear();
    std::lock_guard<std::mutex> lock(m_othersMutex);
    for (auto& other : m_others)
        other.second->clear_profile();
}

void ZBDebug::write_profile(std::ostream& out)
{
    std::vector<const ZBProfileEntry*> rows;
    for (const auto& item : m_profile)
        if (item.second.m_calls > 0)
            rows.push_back(&item.second);
    // Heaviest first: that is where a reader starts.
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ZBProfileEntry* a, const ZBProfileEntry* b) { return a->m_total > b->m_total; });
    const std::string rule(79, '=');
    out << "Thread " << m_threadId << "\n" << rule << "\n"
        << zb_sprintf("| %-49s | %3s | %7s | %7s |\n", "Function", "N", "Own", "Total") << rule << "\n";
    for (const ZBProfileEntry* row : rows)
        out << zb_sprintf("| %-49s | %3d | %7.5f | %7.5f |\n", row->m_name.substr(0, 49).c_str(), row->m_calls,
                          double(row->m_own) / 1e6, double(row->m_total) / 1e6);
    out << rule << "\n";
    for (const ZBProfileEntry* row : rows) {
        if (row->m_callers.empty() && row->m_callees.empty())
            continue;
        out << row->m_name << "\n";
        for (const auto& caller : row->m_callers)
            out << "    called by " << caller.first << " (" << caller.second << ")\n";
        for (const auto& callee : row->m_callees)
            out << "    calls " << callee.first << " (" << callee.second << ")\n";
    }
    std::lock_guard<std::mutex> lock(m_othersMutex);
    for (auto& other : m_others) {
        out << "\n";
        other.second->write_profile(out);
    }
}

int ZBDebug::display_profile(const std::string& path)
{
    const std::string target = path.empty() ? zb_cache_file("_performance.log") : path;
    std::ostringstream text;
    text << "Profile at " << ZBErrDetails::format_time(ZBMoment::now().to_micros(), false) << "\n";
    write_profile(text);
    return zb_write_text_file(target, text.str());
}

ZBDebug& zbdebug()
{
    std::lock_guard<std::mutex> lock(singleton_mutex());
    std::unique_ptr<ZBDebug>& debug = singleton();
    if (!debug)
        debug.reset(new ZBDebug(0));
    return *debug;
}

} // namespace Tervalon
