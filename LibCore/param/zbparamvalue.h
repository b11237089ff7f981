#pragma once

#include "LibCore/param/zbparambase.h"

namespace Tervalon {

// An un-flagged value on the command line, such as the file to open; values
// are given to these in the order they are declared.
class ZBParamValue : public ZBParamBase {
public:
    ZBParamValue(const std::string& name, const std::string& description, bool mandatory = false,
                 bool multipleValues = false);
    void dump(std::ostream& out, int indent) const override;
};

} // namespace Tervalon
