#pragma once

#include <iosfwd>

namespace Tervalon {

// A key triple that selects rows and controls. In the diary a sequence number is
// letter * 100000 + index. Stored as "id/seq/group/".
class ZBId {
public:
    ZBId() = default;
    ZBId(int id, int seq = -1, int group = -1) : m_id(id), m_seq(seq), m_group(group) {}
    virtual ~ZBId() = default;

    // Wildcard match: ids equal; sequence and group compared only when both are set.
    bool compare(const ZBId& other) const;
    bool operator==(const ZBId& other) const { return m_id == other.m_id && m_seq == other.m_seq && m_group == other.m_group; }
    bool operator!=(const ZBId& other) const { return !(*this == other); }
    bool operator<(const ZBId& other) const;
    virtual void dump(std::ostream& out, int indent) const;

    int m_id = -1;
    int m_seq = -1;
    int m_group = -1;
};

std::ostream& operator<<(std::ostream& out, const ZBId& id);
std::istream& operator>>(std::istream& in, ZBId& id);

} // namespace Tervalon
