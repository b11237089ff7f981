#pragma once

#include "LibObject/object/zbsrlvalue.h"
#include "LibCore/ptrarray/zbptrarray.h"

namespace Tervalon {

// Binds a ZBPtrArray of plain values: one line per element.
template <class T>
class ZBSrlValueArray : public ZBSrl {
public:
    explicit ZBSrlValueArray(ZBPtrArray<T>& value) : m_value(value) {}
    bool handle_multiple() const override { return true; }
    int get_nentries() const override { return m_value.size(); }
    void start_read() override { m_value.clear(); }
    int read(std::istream& in) override
    {
        T* element = new T();
        in >> *element;
        m_value.push_back(element);
        return ZBErrC_ok;
    }
    int write(std::ostream& out, int index) const override
    {
        T* element = m_value.at(index);
        if (!element)
            return zbpass(ZBLOC);
        out << *element;
        return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    }

private:
    ZBPtrArray<T>& m_value;
};

} // namespace Tervalon
