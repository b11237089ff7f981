#include "LibCore/param/zbparamvaluegroup.h"

#include <ostream>

namespace Tervalon {

ZBParamValue* ZBParamValueGroup::add_value(const std::string& name, const std::string& description, bool mandatory,
                                           bool multipleValues)
{
    m_value.emplace_back(new ZBParamValue(name, description, mandatory, multipleValues));
    return m_value.back().get();
}

void ZBParamValueGroup::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBParamValueGroup\n";
    for (const auto& value : m_value)
        value->dump(out, indent + 1);
}

} // namespace Tervalon
