#pragma once

#include "LibObject/object/zbid.h"

#include <string>

namespace Tervalon {

class ZBActionParam;

// The logic side of the user's commands, reached by name: a window never
// decides what a command means, it asks here whether it can run and runs it.
// An application's manager derives from this; the base knows every action
// and runs none.
class ZBActionMgr {
public:
    virtual ~ZBActionMgr() = default;

    virtual int run_command(const std::string& name, const ZBId& id, const ZBActionParam& param);
    // False with the reason shown to the user when the action cannot run now.
    virtual bool is_available(const std::string& name, const ZBId& id, const ZBActionParam& param,
                              std::string& reason);
};

} // namespace Tervalon
