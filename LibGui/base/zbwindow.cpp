#include "LibGui/base/zbwindow.h"

#include <ostream>

namespace Tervalon {

const char* const ZBWindow::C_Unavail = " - Unavailable: ";

ZBWindow::ZBWindow() = default;
ZBWindow::~ZBWindow() = default;

void ZBWindow::set_manual(const std::string& file, const std::string& summary)
{
    m_manual = file;
    m_summary = summary;
}

void ZBWindow::dump(std::ostream& out, int indent) const
{
    out << std::string(indent, ' ') << "m_manual " << m_manual << " summary " << m_summary << "\n";
}

} // namespace Tervalon
