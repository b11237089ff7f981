#pragma once

#include "LibCore/maths/zbrecentsetentry.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <cmath>
#include <vector>

namespace Tervalon {

// The values seen, each with the dates of its uses, ranked so that what was
// used often and lately comes first: the source of suggestion lists. A use
// counts at least 1 and at most `weight`, decaying by a power law with its age
// before the last date of the whole set.
template <class T>
class ZBRecentSet {
public:
    // A restricted set takes dates only for values already in it: add_value
    // defines the candidates, and add_value_date only scores them.
    explicit ZBRecentSet(bool restricted = false)
        : m_restricted(restricted), m_first(), m_last() {}

    // Enters a value with no date, keeping first-seen order.
    void add_value(const T& value) { find_or_add(value); }
    void add_value_date(const T& value, const ZBMoment& date)
    {
        if (m_restricted) {
            add_value_date_restricted(value, date);
            return;
        }
        record(find_or_add(value), date);
    }
    void add_value_date_restricted(const T& value, const ZBMoment& date)
    {
        if (ZBRecentSetEntry<T>* entry = find(value))
            record(*entry, date);
    }

    int size() const { return m_entry.size(); }
    const ZBMoment& get_first_date() const { return m_first; }
    const ZBMoment& get_last_date() const { return m_last; }

    // The values, best first. Equal scores keep first-seen order, so a set
    // without dates gives its values as they were entered.
    std::vector<T> calculate(double weight, double power)
    {
        const bool dated = m_first.is_ok() && m_last.is_ok();
        const double span = dated ? m_first.days_until(m_last) : 0.0;
        const double floor = 1.0 / std::pow(span + 1.0, power);
        ZBPtrArray<ZBRecentSetEntry<T>> ranked(false);
        for (ZBRecentSetEntry<T>* entry : m_entry) {
            entry->m_score = 0.0;
            if (dated)
                for (const ZBMoment& date : entry->m_date) {
                    const double age = date.days_until(m_last);
                    entry->m_score += (1.0 / std::pow(age + 1.0, power) - floor) * (weight - 1.0) + 1.0;
                }
            ranked.push_back(entry);
        }
        ranked.sort(&ZBRecentSet::compare_score);
        std::vector<T> values;
        values.reserve(size_t(ranked.size()));
        for (const ZBRecentSetEntry<T>* entry : ranked)
            values.push_back(entry->m_value);
        return values;
    }

    const ZBRecentSetEntry<T>* get_entry(int index) const { return m_entry.at(index); }

private:
    // Lower score goes behind; of equal scores the later-seen one goes behind,
    // which the sort would otherwise turn round.
    static int compare_score(const ZBRecentSetEntry<T>& a, const ZBRecentSetEntry<T>& b)
    {
        if (a.m_score != b.m_score)
            return a.m_score < b.m_score;
        return a.m_order > b.m_order;
    }

    ZBRecentSetEntry<T>* find(const T& value) const
    {
        for (ZBRecentSetEntry<T>* entry : m_entry)
            if (entry->m_value == value)
                return entry;
        return nullptr;
    }
    ZBRecentSetEntry<T>& find_or_add(const T& value)
    {
        if (ZBRecentSetEntry<T>* entry = find(value))
            return *entry;
        ZBRecentSetEntry<T>* entry = new ZBRecentSetEntry<T>(value);
        entry->m_order = m_entry.size();
        m_entry.push_back(entry);
        return *entry;
    }
    void record(ZBRecentSetEntry<T>& entry, const ZBMoment& date)
    {
        entry.m_date.push_back(date);
        if (!m_first.is_ok() || date < m_first)
            m_first = date;
        if (!m_last.is_ok() || date > m_last)
            m_last = date;
    }

    bool m_restricted;
    ZBMoment m_first;
    ZBMoment m_last;
    ZBPtrArray<ZBRecentSetEntry<T>> m_entry;
};

} // namespace Tervalon
