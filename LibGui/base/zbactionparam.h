#pragma once

namespace Tervalon {

// The parameter of an action as the logic side sees it; each application
// derives its own carrying what its actions need.
class ZBActionParam {
public:
    virtual ~ZBActionParam() = default;
};

} // namespace Tervalon
