#pragma once

#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// The calorie module's stored data.
// It is one of the persistent blocks of a ZBDiary, which owns it; fields
// it does not know yet are kept and written back.
class ZBCalData : public ZBObject {
public:
    ZBCalData();
    ZBCalData(const ZBCalData& other) = default;
    ZBCalData& operator=(const ZBCalData& other) = default;
    bool operator==(const ZBCalData& other) const { return ZBObject::operator==(other); }

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
};

} // namespace Tervalon
