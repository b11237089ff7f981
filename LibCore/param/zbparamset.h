#pragma once

#include "LibCore/param/zbparambase.h"

#include <string>
#include <vector>

namespace Tervalon {

// A flat, non-owning list of every declared parameter, which files and the
// command line fill by name.
class ZBParamSet {
public:
    struct Assignment {
        std::string name;
        std::string tag;
        std::string value;
    };

    ZBParamSet() = default;
    virtual ~ZBParamSet() = default;

    void add_param(ZBParamBase* param) { m_param.push_back(param); }
    void clear() { m_param.clear(); }
    int get_nparameters() const { return int(m_param.size()); }
    ZBParamBase* get_param_by_index(int n) const;
    ZBParamBase* get_param_by_name(const std::string& name) const;
    // False if no parameter has the name.
    bool set_value(const std::string& name, const std::string& tag, const std::string& value, const std::string& source,
                   int* result = nullptr);
    // Gives each gathered value to its parameter; the first failure is returned.
    int assign_values(const std::vector<Assignment>& values, const std::string& source);

    virtual void dump(std::ostream& out, int indent) const;

private:
    std::vector<ZBParamBase*> m_param;
};

} // namespace Tervalon
