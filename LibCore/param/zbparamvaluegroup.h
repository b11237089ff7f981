#pragma once

#include "LibCore/param/zbparamvalue.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// The un-flagged values of a command line, in order. Owns them.
class ZBParamValueGroup {
public:
    ZBParamValueGroup() = default;
    virtual ~ZBParamValueGroup() = default;

    ZBParamValue* add_value(const std::string& name, const std::string& description, bool mandatory = false,
                            bool multipleValues = false);
    int get_nvalues() const { return int(m_value.size()); }
    ZBParamValue* get_value(int n) const { return m_value[size_t(n)].get(); }

    virtual void dump(std::ostream& out, int indent) const;

private:
    std::vector<std::unique_ptr<ZBParamValue>> m_value;
};

} // namespace Tervalon
