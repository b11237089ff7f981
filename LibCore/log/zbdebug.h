#pragma once

#include "LibCore/log/zbprofileentry.h"
#include "LibCore/log/zbstackframe.h"

#include <iosfwd>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Tervalon {

// The timing profile: functions enter and leave (through ZBDebugScope) and the
// profile gathers calls, own and total time, callers and callees. Each thread
// has its own chain: zbdebug() is the main thread's, and a frame entered on
// another thread goes to an instance made for that thread on demand.
// display_profile() writes "<cache dir>/<application>_performance.log".
class ZBDebug {
public:
    using ThreadFn = int (*)();
    using ClockFn = long long (*)();

    explicit ZBDebug(int threadId = 0);
    virtual ~ZBDebug();

    void enter_function(const std::string& name, bool internal, bool profiled);
    void leave_function();

    // Writes every thread's profile as tables; path empty means the performance log.
    int display_profile(const std::string& path = std::string());
    void write_profile(std::ostream& out);
    void clear_profile();

    // Tracing prints "---- name (seconds)" as each function leaves.
    void set_tracing(bool on) { m_tracing = on; }
    bool is_tracing() const { return m_tracing; }
    void set_trace_stream(std::ostream* out) { m_traceStream = out; }

    int get_depth() const { return int(m_stack.size()); }
    int get_thread_id() const { return m_threadId; }
    // This thread's entry, or null.
    const ZBProfileEntry* get_entry(const std::string& name) const;
    // The instance that serves the calling thread.
    ZBDebug& for_current_thread();

    // Which thread is calling (0 for the main thread); the thread layer installs its own.
    static void set_thread_fn(ThreadFn fn);
    static int current_thread_id();
    // A clock in microseconds; tests install a fixed one.
    static void set_clock(ClockFn fn);
    static long long now();
    // Ends the singleton at program exit.
    static void delete_instance();

private:
    void enter_here(const std::string& name, bool internal, bool profiled);
    void leave_here();

    int m_threadId;
    bool m_tracing;
    std::ostream* m_traceStream;
    std::vector<ZBStackFrame> m_stack;
    std::map<std::string, ZBProfileEntry> m_profile;
    std::mutex m_othersMutex;
    std::map<int, std::unique_ptr<ZBDebug>> m_others;
};

ZBDebug& zbdebug();

} // namespace Tervalon
