#pragma once

#include "LibObject/object/zbobject.h"

#include <string>

namespace Tervalon {

// A child container that a spec declares: the member tag of the children,
// the spec they must have (and the one new children get), and whether the
// parent holds one or many, must hold at least one, or makes one on creation.
class ZBObjectSpecChild : public ZBObject {
public:
    ZBObjectSpecChild();
    ZBObjectSpecChild(const ZBObjectSpecChild& other) = default;
    ZBObjectSpecChild& operator=(const ZBObjectSpecChild& other) = default;
    bool operator==(const ZBObjectSpecChild& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    std::string m_memberTag;
    std::string m_specName;
    int m_specId;
    int m_defaultSpecId;
    std::string m_defaultSpecName;
    bool m_array;
    bool m_addCreate;
    bool m_mandatory;
    int m_lineNo;
};

} // namespace Tervalon
