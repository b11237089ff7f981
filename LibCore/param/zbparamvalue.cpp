#include "LibCore/param/zbparamvalue.h"

#include <ostream>

namespace Tervalon {

ZBParamValue::ZBParamValue(const std::string& name, const std::string& description, bool mandatory, bool multipleValues)
    : ZBParamBase(name, description, mandatory, false, multipleValues)
{
}

void ZBParamValue::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBParamValue\n";
    ZBParamBase::dump(out, indent + 1);
}

} // namespace Tervalon
