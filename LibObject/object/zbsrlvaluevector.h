#pragma once

#include "LibObject/object/zbsrlvalue.h"

#include <vector>

namespace Tervalon {

// Binds a std::vector of plain values: one line per element, all with one tag.
template <class T>
class ZBSrlValueVector : public ZBSrl {
public:
    explicit ZBSrlValueVector(std::vector<T>& value) : m_value(value) {}
    bool handle_multiple() const override { return true; }
    int get_nentries() const override { return int(m_value.size()); }
    void start_read() override { m_value.clear(); }
    int read(std::istream& in) override
    {
        T element{};
        in >> element;
        m_value.push_back(element);
        return ZBErrC_ok;
    }
    int write(std::ostream& out, int index) const override
    {
        if (index < 0 || index >= int(m_value.size()))
            return zberror(ZBErrC_ArrayBounds, ZBLOC, "Index %d out of range %d", index, int(m_value.size()));
        out << m_value[size_t(index)];
        return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    }

private:
    std::vector<T>& m_value;
};

} // namespace Tervalon
