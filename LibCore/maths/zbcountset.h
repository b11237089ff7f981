#pragma once

#include <map>

namespace Tervalon {

// Counts by integer key, for tallies such as how often each value was chosen.
class ZBCountSet {
public:
    // defaultValue is the amount add(key) counts when no amount is given.
    explicit ZBCountSet(int defaultValue = 1) : m_default(defaultValue) {}

    // Adds n to the count of key; a new key starts at n.
    void add(int key, int n);
    void add(int key) { add(key, m_default); }
    // The count of key, or 0.
    int count(int key) const;
    int size() const { return int(m_count.size()); }
    void clear() { m_count.clear(); }
    const std::map<int, int>& get_counts() const { return m_count; }

private:
    std::map<int, int> m_count;
    int m_default;
};

} // namespace Tervalon
