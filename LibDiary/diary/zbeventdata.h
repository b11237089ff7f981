#pragma once

#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// The event module's stored settings; events themselves are records of the database.
// It is one of the persistent blocks of a ZBDiary, which owns it; fields
// it does not know yet are kept and written back.
class ZBEventData : public ZBObject {
public:
    ZBEventData();
    ZBEventData(const ZBEventData& other) = default;
    ZBEventData& operator=(const ZBEventData& other) = default;
    bool operator==(const ZBEventData& other) const { return ZBObject::operator==(other); }

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
};

} // namespace Tervalon
