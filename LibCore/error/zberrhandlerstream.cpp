#include "LibCore/error/zberrhandlerstream.h"
#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

ZBErrHandlerStream::ZBErrHandlerStream(std::ostream* stream, bool immediate, bool intermediate, bool delayed, bool deletionManaged)
    : ZBErrHandler(immediate, intermediate, delayed, deletionManaged), m_stream(stream), m_aspect(ZBErrAsp_User),
      m_oneLine(false), m_writeLogs(false)
{
}

std::string ZBErrHandlerStream::one_line(const ZBErrDetails& details, ZBErrAspect aspect)
{
    static const char* const C_Prefix[] = {"Log: ", "Warning: ", "Warning: ", "Error: ", "Fatal error: "};
    int severity = details.get_severity();
    std::string text = details.get_details(aspect);
    if (text.empty())
        text = details.get_message();
    std::string line = C_Prefix[severity >= 0 && severity < 5 ? severity : 3];
    bool gap = false;
    for (char c : text) {
        if (c == '\n' || c == '\r') {
            gap = true;
            continue;
        }
        if (gap && line.size() > 0 && line.back() != ' ')
            line += "; ";
        gap = false;
        line += c;
    }
    return line;
}

int ZBErrHandlerStream::handle(ZBErrDetails& details)
{
    if (!m_stream)
        return details.get_value();
    if (m_oneLine)
        *m_stream << one_line(details, m_aspect) << std::endl;
    else if (m_aspect == ZBErrAsp_User)
        *m_stream << details.get_message() << std::endl; // the user's text, or the system's when there is none
    else
        *m_stream << details.get_details(m_aspect) << std::endl;
    return details.get_value();
}

void ZBErrHandlerStream::log(ZBErrDetails& details)
{
    if (m_stream && m_writeLogs)
        *m_stream << details << std::endl;
}

void ZBErrHandlerStream::dump(std::ostream& out, int indent) const
{
    ZBErrHandler::dump(out, indent);
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "    aspect=" << m_aspect << " oneLine=" << m_oneLine << " writeLogs=" << m_writeLogs << "\n";
}

} // namespace Tervalon
