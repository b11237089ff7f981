#pragma once

#include "LibCore/error/zberrdetails.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// Something that sees error records as they are reported (immediate), while a
// caller passes them up (intermediate) or when they are finally handled (delayed).
// handle() returns the record's value, or ZBErrC_okHandled to consume it.
class ZBErrHandler {
public:
    ZBErrHandler(bool immediate, bool intermediate, bool delayed, bool deletionManaged);
    virtual ~ZBErrHandler();
    virtual int handle(ZBErrDetails& details);
    virtual void log(ZBErrDetails& details);
    virtual void dump(std::ostream& out, int indent) const;

    bool is_immediate() const { return m_immediate; }
    bool is_intermediate() const { return m_intermediate; }
    bool is_delayed() const { return m_delayed; }
    bool is_deletion_managed() const { return m_deletionManaged; }
    bool is_enabled() const { return m_enabled; }
    void set_enabled(bool on) { m_enabled = on; }

private:
    bool m_immediate;
    bool m_intermediate;
    bool m_delayed;
    bool m_deletionManaged;
    bool m_enabled;
};

} // namespace Tervalon

// The concrete handlers, for code that included this header to get them.
#include "LibCore/error/zberrhandlerlogfile.h"
#include "LibCore/error/zberrhandlerstream.h"
