#include "LibCore/maths/zbstatset.h"
#include "LibCore/error/zberror.h"

#include <algorithm>

namespace Tervalon {

void ZBStatSet::add(double value, int weight)
{
    m_entry.emplace_back(value, weight);
}

double ZBStatSet::get_value(int index) const
{
    if (index < 0 || index >= size()) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, size());
        return 0.0;
    }
    return m_entry[size_t(index)].first;
}

double ZBStatSet::get_minimum() const
{
    if (m_entry.empty())
        return 0.0;
    double low = m_entry.front().first;
    for (const auto& entry : m_entry)
        if (entry.first < low)
            low = entry.first;
    return low;
}

double ZBStatSet::get_maximum() const
{
    if (m_entry.empty())
        return 0.0;
    double high = m_entry.front().first;
    for (const auto& entry : m_entry)
        if (entry.first > high)
            high = entry.first;
    return high;
}

double ZBStatSet::get_average() const
{
    if (m_entry.empty())
        return 0.0;
    double total = 0.0;
    for (const auto& entry : m_entry)
        total += entry.first;
    return total / double(m_entry.size());
}

double ZBStatSet::mode() const
{
    // Totals in first-seen order, so that a tie goes to the earlier value.
    std::vector<std::pair<double, long>> totals;
    for (const auto& entry : m_entry) {
        bool found = false;
        for (auto& total : totals)
            if (total.first == entry.first) {
                total.second += entry.second;
                found = true;
                break;
            }
        if (!found)
            totals.emplace_back(entry.first, entry.second);
    }
    if (totals.empty())
        return 0.0;
    size_t best = 0;
    for (size_t i = 1; i < totals.size(); ++i)
        if (totals[i].second > totals[best].second)
            best = i;
    return totals[best].first;
}

int ZBStatSet::rank_low(double v) const
{
    int n = 0;
    for (const auto& entry : m_entry)
        n += entry.first < v;
    return n;
}

int ZBStatSet::rank_high(double v) const
{
    int n = 0;
    for (const auto& entry : m_entry)
        n += entry.first > v;
    return n;
}

void ZBStatSet::clean_outliers(int n)
{
    for (int round = 0; round < n; ++round) {
        if (m_entry.empty())
            return;
        size_t low = 0;
        size_t high = 0;
        for (size_t i = 1; i < m_entry.size(); ++i) {
            if (m_entry[i].first < m_entry[low].first)
                low = i;
            if (m_entry[i].first > m_entry[high].first)
                high = i;
        }
        if (low == high)
            continue;
        // The later position first, so that the earlier one stays valid.
        m_entry.erase(m_entry.begin() + long(std::max(low, high)));
        m_entry.erase(m_entry.begin() + long(std::min(low, high)));
    }
}

} // namespace Tervalon
