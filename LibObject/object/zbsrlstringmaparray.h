#pragma once

#include "LibObject/object/zbsrl.h"
#include "LibCore/ptrarray/zbptrarrayindex.h"

#include <string>

namespace Tervalon {

// Binds a map of names to texts: one line "key=value" per element, split at the
// first '=' on reading; a later line for the same key replaces the earlier.
class ZBSrlStringMapArray : public ZBSrl {
public:
    explicit ZBSrlStringMapArray(ZBPtrArrayIndex<std::string, std::string>& value) : m_value(value) {}
    bool handle_multiple() const override { return true; }
    int get_nentries() const override { return m_value.size(); }
    void start_read() override { m_value.clear(); }
    int read(std::istream& in) override;
    int write(std::ostream& out, int index) const override;
    int read_text(const std::string& text) override;

private:
    ZBPtrArrayIndex<std::string, std::string>& m_value;
};

} // namespace Tervalon
