#pragma once

#include "LibCore/param/zbparamoption.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// A titled list of options, printed together on the help page. Owns its options.
class ZBParamOptionGroup {
public:
    explicit ZBParamOptionGroup(const std::string& title, bool hidden = false);
    virtual ~ZBParamOptionGroup() = default;

    ZBParamOption* add_option(const std::string& name, const std::string& description, bool takesValue = false,
                              bool mandatory = false, bool hidden = false, bool multipleValues = false);
    const std::string& get_title() const { return m_title; }
    bool is_hidden() const { return m_hidden; }
    int get_noptions() const { return int(m_option.size()); }
    ZBParamOption* get_option(int n) const { return m_option[size_t(n)].get(); }
    ZBParamOption* find_option(const std::string& name) const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    std::string m_title;
    bool m_hidden;
    std::vector<std::unique_ptr<ZBParamOption>> m_option;
};

} // namespace Tervalon
