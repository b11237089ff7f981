#include "LibCore/application/zbappstatussetter.h"
#include "LibCore/application/zbapplication.h"

namespace Tervalon {

ZBAppStatusSetter::ZBAppStatusSetter(const std::string& status, bool background, int delay)
    : m_status(status), m_background(background)
{
    if (has_zbapplication())
        zbapplication().push_status(status, 0.0, background, delay);
}

ZBAppStatusSetter::~ZBAppStatusSetter()
{
    if (has_zbapplication())
        zbapplication().pop_status(m_status, m_background);
}

} // namespace Tervalon
