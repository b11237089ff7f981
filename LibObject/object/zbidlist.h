#pragma once

#include "LibObject/object/zbid.h"

#include <vector>

namespace Tervalon {

// An ordered list of key triples, as held by a selection.
class ZBIdList {
public:
    void add(const ZBId& id) { m_id.push_back(id); }
    void clear() { m_id.clear(); }
    int size() const { return int(m_id.size()); }
    bool empty() const { return m_id.empty(); }
    const ZBId& operator[](int index) const { return m_id[size_t(index)]; }

    // True when an entry matches under the wildcard comparison.
    bool is_marked(const ZBId& id) const;
    int index_of(const ZBId& id) const;
    ZBId first() const;
    int first_id() const;
    int first_sequence() const;
    int sequence(int index) const;
    void replace(int index, const ZBId& id);
    bool operator==(const ZBIdList& other) const { return m_id == other.m_id; }

private:
    std::vector<ZBId> m_id;
};

} // namespace Tervalon
