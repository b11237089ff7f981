#include "LibCore/param/zbparamoption.h"

#include <ostream>

namespace Tervalon {

ZBParamOption::ZBParamOption(const std::string& name, const std::string& description, bool takesValue, bool mandatory,
                             bool hidden, bool multipleValues)
    : ZBParamBase(name, description, mandatory, hidden, multipleValues), m_setOptionValue("1"), m_takesValue(takesValue)
{
}

bool ZBParamOption::answers_to(const std::string& name) const
{
    return name == get_name() || (!m_equivalent.empty() && name == m_equivalent);
}

void ZBParamOption::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBParamOption\n";
    ZBParamBase::dump(out, indent + 1);
    out << pad << "    m_setOptionValue : " << m_setOptionValue << "\n"
        << pad << "    m_equivalent     : " << m_equivalent << "\n";
}

} // namespace Tervalon
