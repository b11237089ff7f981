#pragma once

#include "LibObject/object/zbsrl.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <istream>
#include <ostream>

namespace Tervalon {

class ZBObject;

// Binds one nested object, read into the object that is there.
template <class T>
class ZBSrlObject : public ZBSrl {
public:
    ZBSrlObject(T& value, int version = 0) : m_value(value), m_version(version) {}
    int read(std::istream& in) override { return m_value.read_class(in, m_version); }
    int write(std::ostream& out, int) const override { return m_value.write_class(out, m_version); }

private:
    T& m_value;
    int m_version;
};

// Binds an array of nested objects, each made by its class name on reading.
template <class T>
class ZBSrlObjectArray : public ZBSrl {
public:
    ZBSrlObjectArray(ZBPtrArray<T>& value, int version = 0) : m_value(value), m_version(version) {}
    bool handle_multiple() const override { return true; }
    int get_nentries() const override { return m_value.size(); }
    void start_read() override { m_value.clear(); }
    int read(std::istream& in) override;
    int write(std::ostream& out, int index) const override;

private:
    ZBPtrArray<T>& m_value;
    int m_version;
};

} // namespace Tervalon
