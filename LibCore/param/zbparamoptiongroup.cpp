#include "LibCore/param/zbparamoptiongroup.h"

#include <ostream>

namespace Tervalon {

ZBParamOptionGroup::ZBParamOptionGroup(const std::string& title, bool hidden) : m_title(title), m_hidden(hidden) {}

ZBParamOption* ZBParamOptionGroup::add_option(const std::string& name, const std::string& description, bool takesValue,
                                              bool mandatory, bool hidden, bool multipleValues)
{
    m_option.emplace_back(new ZBParamOption(name, description, takesValue, mandatory, hidden, multipleValues));
    return m_option.back().get();
}

ZBParamOption* ZBParamOptionGroup::find_option(const std::string& name) const
{
    for (const auto& option : m_option)
        if (option->answers_to(name))
            return option.get();
    return nullptr;
}

void ZBParamOptionGroup::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBParamOptionGroup " << m_title << "\n";
    for (const auto& option : m_option)
        option->dump(out, indent + 1);
}

} // namespace Tervalon
