#pragma once

namespace Tervalon {

// Hands the URLs of entry commands to the desktop's handlers. The diary model
// knows no desktop; the program installs this once at start.
class DesktopUrlOpener {
public:
    static void install();
};

} // namespace Tervalon
