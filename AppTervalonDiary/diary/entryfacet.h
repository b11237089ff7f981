#pragma once

#include "LibObject/object/zbobject.h"
#include "LibDate/dateset/zbdateset.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

class DiaryEntry;

// The common shape of the parts an entry is made of. A facet's fields are
// written inline in its entry's field list (the entry is the object on file),
// so a facet streams through its owner rather than as an object of its own.
// The entry owns its facets and tells each who it belongs to after every copy.
// A facet is a plain stream object, not a database object: it has no id,
// place, lock or variables of its own (the entry has them), and an entry holds
// a dozen facets.
class EntryFacet : public ZBObject {
public:
    EntryFacet() = default;
    EntryFacet(const EntryFacet& other) : ZBObject(other), m_entry(nullptr) {}
    EntryFacet& operator=(const EntryFacet& other)
    {
        ZBObject::operator=(other);
        return *this;
    }

    // The facet's stored fields, read from or written to owner's field list.
    virtual int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                                int version) = 0;
    // Standing alone (clone, compare) a facet is its fields and nothing else.
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;

    // A date set under tag; an empty set is left out of the file.
    static int serialise_set(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                             const std::string& tag, ZBDateSet& set, int version);

    DiaryEntry* get_entry() const { return m_entry; }
    void attach(DiaryEntry* entry) { m_entry = entry; }

private:
    DiaryEntry* m_entry = nullptr;
};

} // namespace Tervalon
