#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

// What every window knows without a toolkit: the platform it runs on (which
// decides between separate windows and stacked panes) and its help page.
class ZBWindow {
public:
    static const char* const C_Unavail; // " - Unavailable: "

    ZBWindow();
    virtual ~ZBWindow();

    static bool is_linux() { return true; }
    static bool is_mobile() { return false; }
    static bool is_ios() { return false; }
    static bool is_android() { return false; }
    static bool is_osx() { return false; }
    static bool is_windows() { return false; }
    static std::string platform_name() { return "linux"; }
    static bool has_gdrive() { return true; }
    static bool has_cloudshare() { return true; }

    // The help file of the window ("diary_treeview.html") and one line on what it is for.
    void set_manual(const std::string& file, const std::string& summary);
    const std::string& get_manual() const { return m_manual; }
    const std::string& get_summary() const { return m_summary; }

    virtual void dump(std::ostream& out, int indent) const;

private:
    std::string m_manual;
    std::string m_summary;
};

} // namespace Tervalon
