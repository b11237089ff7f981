#pragma once

#include <string>

namespace Tervalon {

// Shows a status line for the life of a scope. Saving uses a delay of one
// second (in microseconds) so that short operations never show one.
class ZBAppStatusSetter {
public:
    ZBAppStatusSetter(const std::string& status, bool background, int delay);
    ~ZBAppStatusSetter();
    ZBAppStatusSetter(const ZBAppStatusSetter&) = delete;
    ZBAppStatusSetter& operator=(const ZBAppStatusSetter&) = delete;

private:
    std::string m_status;
    bool m_background;
};

} // namespace Tervalon
