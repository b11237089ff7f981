#pragma once

#include "LibCore/param/zbparamoptiongroup.h"
#include "LibCore/param/zbparamset.h"
#include "LibCore/param/zbparamvaluegroup.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// The declared command line: option groups, the un-flagged values, and the
// standard options (man page, help, version, tag, release) in the group
// "System", with the hidden multi-valued "System" option that holds the
// system values. Options are written "--name" or "-name"; "--name=value" works too.
class ZBParamCmdLine {
public:
    static const char* const C_SystemGroup;
    static const char* const C_SystemValuesGroup;

    ZBParamCmdLine();
    virtual ~ZBParamCmdLine();

    ZBParamOptionGroup* add_option_group(const std::string& title, bool hidden = false);
    ZBParamOptionGroup* get_option_group(const std::string& title) const;
    int get_ngroups() const { return int(m_optionGroup.size()); }
    ZBParamOptionGroup* get_group(int n) const { return m_optionGroup[size_t(n)].get(); }
    ZBParamValueGroup& get_value_group() { return m_valueGroup; }
    const ZBParamValueGroup& get_value_group() const { return m_valueGroup; }
    ZBParamValue* add_value(const std::string& name, const std::string& description, bool mandatory = false,
                            bool multipleValues = false);

    // Puts every parameter in the set, the standard ones included.
    void get_all_options(ZBParamSet& set) const;
    // Reads the arguments (without the program name) into the set.
    int parse_cmdline(const std::vector<std::string>& args, ZBParamSet& set);
    int set_tag_value(const std::string& name, const std::string& tag, const std::string& value);
    ZBParamBase* get_param_by_name(const std::string& name) const;
    int validate() const;

    bool show_man_page() const { return m_showManPage; }
    bool show_help_page() const { return m_showHelpPage; }
    bool show_version() const { return m_showVersion; }
    bool show_tag() const { return m_showTag; }
    bool show_release() const { return m_showRelease; }

    virtual void dump(std::ostream& out, int indent) const;

    bool m_showHelpPage;
    bool m_showManPage;
    bool m_showVersion;
    bool m_showTag;
    bool m_showRelease;

private:
    ZBParamValueGroup m_valueGroup;
    std::vector<std::unique_ptr<ZBParamOptionGroup>> m_optionGroup;
};

} // namespace Tervalon
