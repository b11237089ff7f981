#pragma once

#include <utility>
#include <vector>

namespace Tervalon {

// A small list of readings, each a value with a weight, and the few statistics
// the modules take of them. Empty sets give 0 for every figure.
class ZBStatSet {
public:
    void add(double value, int weight = 1);
    void clear() { m_entry.clear(); }
    int size() const { return int(m_entry.size()); }
    double get_value(int index) const;

    double get_minimum() const;
    double get_maximum() const;
    // The plain mean of the values; weights do not enter it.
    double get_average() const;
    // The value with the greatest total weight; of equal totals, the one seen first.
    double mode() const;
    // How many entries lie strictly below, and strictly above, v.
    int rank_low(double v) const;
    int rank_high(double v) const;
    // n times: drop the largest and the smallest reading (the first of equals),
    // unless they are the same entry. A trimmed set for noisy readings.
    void clean_outliers(int n);

private:
    std::vector<std::pair<double, int>> m_entry;
};

} // namespace Tervalon
