#pragma once

#include "LibCore/error/zberrhandler.h"

#include <iosfwd>

namespace Tervalon {

// Writes each record it is given to a stream: by default the user's text and a
// line feed. The command-line program sets it to one line of the system's
// text with the severity in front, so a failure reads as one line on stderr.
class ZBErrHandlerStream : public ZBErrHandler {
public:
    ZBErrHandlerStream(std::ostream* stream, bool immediate, bool intermediate, bool delayed, bool deletionManaged);
    int handle(ZBErrDetails& details) override;
    // Severity-0 reports are written only when asked, so that logging never
    // lands on a terminal by surprise.
    void log(ZBErrDetails& details) override;
    void dump(std::ostream& out, int indent) const override;

    void set_aspect(ZBErrAspect aspect) { m_aspect = aspect; }
    ZBErrAspect get_aspect() const { return m_aspect; }
    void set_one_line(bool on) { m_oneLine = on; }
    void set_write_logs(bool on) { m_writeLogs = on; }

    // "Error: text; more text" - line breaks folded, severity named.
    static std::string one_line(const ZBErrDetails& details, ZBErrAspect aspect);

private:
    std::ostream* m_stream;
    ZBErrAspect m_aspect;
    bool m_oneLine;
    bool m_writeLogs;
};

} // namespace Tervalon
