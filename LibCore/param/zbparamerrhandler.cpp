#include "LibCore/param/zbparamerrhandler.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparambase.h"

#include <ostream>

namespace Tervalon {

ZBParamErrHandler::ZBParamErrHandler(std::ostream* stream, const std::string& usage)
    : ZBErrHandler(true, false, false, false), m_usage(usage), m_stream(stream), m_reported(false)
{
}

int ZBParamErrHandler::handle(ZBErrDetails& details)
{
    int code = details.get_code();
    bool ours = code == ZBErrC_ParamInvalid || code == ZBErrC_ParamMissing || code == ZBErrC_ParamAmbiguous;
    if (ours && m_stream && !m_reported) {
        *m_stream << "Error: " << details.get_message() << "\n" << m_usage;
        m_stream->flush();
        m_reported = true;
    }
    return details.get_value();
}

} // namespace Tervalon
