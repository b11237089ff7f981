#pragma once

#include "LibCore/error/zberrhandler.h"

#include <string>

namespace Tervalon {

// Keeps the error log: each record after a line of "=" signs, the file cut to
// its newest lines before a record is added, so it never grows without bound.
// A log that cannot be written is reported once on stderr and otherwise
// ignored: reporting an error must never fail.
class ZBErrHandlerLogfile : public ZBErrHandler {
public:
    static const int C_MaxLines = 100;
    static const char* const C_Separator;

    ZBErrHandlerLogfile(const std::string& name, bool immediate, bool intermediate, bool delayed, bool deletionManaged);
    int handle(ZBErrDetails& details) override;
    void log(ZBErrDetails& details) override;
    void dump(std::ostream& out, int indent) const override;

    const std::string& get_name() const { return m_name; }
    // False once a write has failed (until one succeeds again).
    bool is_writable() const { return !m_failed; }

private:
    void write_record(const ZBErrDetails& details);

    std::string m_name;
    bool m_failed;
};

} // namespace Tervalon
