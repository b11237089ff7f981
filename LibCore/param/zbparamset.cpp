#include "LibCore/param/zbparamset.h"
#include "LibCore/error/zberror.h"

#include <ostream>

namespace Tervalon {

ZBParamBase* ZBParamSet::get_param_by_index(int n) const
{
    return n >= 0 && n < int(m_param.size()) ? m_param[size_t(n)] : nullptr;
}

ZBParamBase* ZBParamSet::get_param_by_name(const std::string& name) const
{
    for (ZBParamBase* param : m_param)
        if (param->answers_to(name))
            return param;
    return nullptr;
}

bool ZBParamSet::set_value(const std::string& name, const std::string& tag, const std::string& value,
                           const std::string& source, int* result)
{
    ZBParamBase* param = get_param_by_name(name);
    if (!param)
        return false;
    int value_result = param->set_tag_value(tag, value, source);
    if (result)
        *result = value_result;
    return true;
}

int ZBParamSet::assign_values(const std::vector<Assignment>& values, const std::string& source)
{
    int result = ZBErrC_ok;
    for (const Assignment& a : values) {
        int one = ZBErrC_ok;
        if (!set_value(a.name, a.tag, a.value, source, &one))
            one = zberror(ZBErrC_ParamInvalid, ZBLOC, "Invalid option %s", a.name.c_str());
        if (iszbwarn(one) && !iszbwarn(result))
            result = one;
    }
    return result;
}

void ZBParamSet::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBParamSet\n";
    for (size_t i = 0; i < m_param.size(); ++i)
        out << std::string(indent * 4 + 4, ' ') << "impl->m_param[" << i << "] " << m_param[i]->get_name() << "\n";
}

} // namespace Tervalon
