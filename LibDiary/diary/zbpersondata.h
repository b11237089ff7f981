#pragma once

#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The people module's block of a ZBDiary: the default contact URL (stored)
// and the lists of people and groups by id (worked out from the database and
// refreshed when its objects change; not stored).
class ZBPersonData : public ZBObject {
public:
    ZBPersonData();
    ZBPersonData(const ZBPersonData& other) = default;
    ZBPersonData& operator=(const ZBPersonData& other) = default;
    bool operator==(const ZBPersonData& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const std::string& get_contacturl() const { return m_contactURL; }
    void set_contacturl(const std::string& url) { m_contactURL = url; }

    // The lists, as the manager last built them.
    std::vector<int> m_people;
    std::vector<int> m_groups;
    // What the lists were built from: the database's object count and last
    // structure change; -1 when they must be rebuilt.
    long m_builtObjects = -1;
    long m_builtStructure = -1;

private:
    std::string m_contactURL;
};

} // namespace Tervalon
