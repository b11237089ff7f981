#pragma once

#include <string>

namespace Tervalon {

// One point of a plain graph source: where it lies and what its tip says.
struct ZBGraphPoint {
    double m_x = 0.0;
    double m_y = 0.0;
    std::string m_toolTip;
};

} // namespace Tervalon
