#pragma once

#include <string>

namespace Tervalon {

// Times the enclosing block: enters the function on construction and leaves
// on destruction, whatever way the block is left. With enabled false it costs
// nothing, so call sites can stay in place.
class ZBDebugScope {
public:
    ZBDebugScope(const std::string& name, bool internal = false, bool profiled = true, bool enabled = true);
    ~ZBDebugScope();
    ZBDebugScope(const ZBDebugScope&) = delete;
    ZBDebugScope& operator=(const ZBDebugScope&) = delete;

private:
    bool m_enabled;
};

} // namespace Tervalon
