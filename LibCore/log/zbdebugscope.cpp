#include "LibCore/log/zbdebugscope.h"
#include "LibCore/log/zbdebug.h"

namespace Tervalon {

ZBDebugScope::ZBDebugScope(const std::string& name, bool internal, bool profiled, bool enabled) : m_enabled(enabled)
{
    if (m_enabled)
        zbdebug().enter_function(name, internal, profiled);
}

ZBDebugScope::~ZBDebugScope()
{
    if (m_enabled)
        zbdebug().leave_function();
}

} // namespace Tervalon
