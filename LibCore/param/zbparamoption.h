#pragma once

#include "LibCore/param/zbparambase.h"

namespace Tervalon {

// A flag on the command line ("--name" or "-name"). One that takes no argument
// gets m_setOptionValue when given; one that does reads the next word or "=value".
class ZBParamOption : public ZBParamBase {
public:
    ZBParamOption(const std::string& name, const std::string& description, bool takesValue = false,
                  bool mandatory = false, bool hidden = false, bool multipleValues = false);

    bool is_option() const override { return true; }
    bool answers_to(const std::string& name) const override;
    bool takes_value() const { return m_takesValue; }
    void set_option_value(const std::string& value) { m_setOptionValue = value; }
    const std::string& get_option_value() const { return m_setOptionValue; }
    void set_equivalent(const std::string& name) { m_equivalent = name; }
    const std::string& get_equivalent() const { return m_equivalent; }

    void dump(std::ostream& out, int indent) const override;

    std::string m_setOptionValue;
    std::string m_equivalent;

private:
    bool m_takesValue;
};

} // namespace Tervalon
