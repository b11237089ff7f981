#pragma once

#include "LibDate/dateset/zbdateset.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// Several named date sets, such as one resource's free time per time type.
// The group owns its sets.
class ZBDateSetGroup {
public:
    ZBDateSetGroup() = default;
    virtual ~ZBDateSetGroup() = default;

    // Adds an empty set under the name and gives it to fill.
    ZBDateSet* add_dateset(const std::string& name);
    int get_ndatesets() const { return m_set.size(); }
    // Out of bounds is reported and gives null.
    ZBDateSet* get_dateset_by_index(int index) const { return m_set.at(index); }
    std::string get_dateset_name_by_index(int index) const;
    int get_combined(ZBDateSet& outSet) const;
    // Stops at the first set that warns.
    int finish_bulk_add();
    int subtract(const ZBDateSlot& slot);
    int subtract(const ZBDateSet& other);
    ZBDate get_start() const;
    ZBDate get_end() const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    ZBPtrArray<ZBDateSet> m_set;
    ZBPtrArray<std::string> m_name;
};

} // namespace Tervalon
