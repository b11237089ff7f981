#pragma once

#include "LibObject/object/zbobject.h"

#include <string>

namespace Tervalon {

// A linked copy of the database elsewhere (another device, a cloud folder).
// Merging with it comes later; its record is kept and written back meanwhile.
class ZBExternalDB : public ZBObject {
public:
    ZBExternalDB();
    ZBExternalDB(const ZBExternalDB& other) = default;
    ZBExternalDB& operator=(const ZBExternalDB& other) = default;
    bool operator==(const ZBExternalDB& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);

    std::string m_name;
};

} // namespace Tervalon
