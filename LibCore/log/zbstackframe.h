#pragma once

#include <string>

namespace Tervalon {

// One entered function on a thread's timing stack.
class ZBStackFrame {
public:
    ZBStackFrame(const std::string& name, bool internal, bool profiled, long long start)
        : m_name(name), m_internal(internal), m_profiled(profiled), m_start(start), m_childTime(0) {}

    std::string m_name;
    bool m_internal;   // a helper, kept out of tracing output
    bool m_profiled;   // merged into the profile when it leaves
    long long m_start; // microseconds of the debug clock
    long long m_childTime;
};

} // namespace Tervalon
