#include "LibCore/error/zberrhandler.h"
#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

ZBErrHandler::ZBErrHandler(bool immediate, bool intermediate, bool delayed, bool deletionManaged)
    : m_immediate(immediate), m_intermediate(intermediate), m_delayed(delayed), m_deletionManaged(deletionManaged), m_enabled(true)
{
}

ZBErrHandler::~ZBErrHandler() = default;

int ZBErrHandler::handle(ZBErrDetails& details)
{
    return details.get_value();
}

void ZBErrHandler::log(ZBErrDetails&) {}

void ZBErrHandler::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBErrHandler immediate=" << m_immediate << " intermediate=" << m_intermediate
        << " delayed=" << m_delayed << " managed=" << m_deletionManaged << " enabled=" << m_enabled << "\n";
}

} // namespace Tervalon
