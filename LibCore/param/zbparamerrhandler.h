#pragma once

#include "LibCore/error/zberrhandler.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// Shows a command-line mistake as "Error: ", the message and the usage text,
// while the command line is parsed; other errors pass by untouched.
class ZBParamErrHandler : public ZBErrHandler {
public:
    ZBParamErrHandler(std::ostream* stream, const std::string& usage);
    int handle(ZBErrDetails& details) override;
    bool has_reported() const { return m_reported; }

    std::string m_usage;

private:
    std::ostream* m_stream;
    bool m_reported;
};

} // namespace Tervalon
