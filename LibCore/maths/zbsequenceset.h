#pragma once

#include "LibCore/maths/zbsequencesetentry.h"
#include "LibCore/ptrarray/zbptrarray.h"

namespace Tervalon {

// Dated values, read in date order, from which the value expected at the next
// step is guessed: what a user keeps entering (a usual quantity, say).
template <class T>
class ZBSequenceSet {
public:
    void add(const T& value, const ZBMoment& date) { m_entry.push_back(new ZBSequenceSetEntry<T>(value, date)); }
    int size() const { return m_entry.size(); }
    void clear() { m_entry.clear(); }
    const ZBSequenceSetEntry<T>* get_entry(int index) const { return m_entry.at(index); }

    // With no entries the default, with one its value. Otherwise the entries are
    // put in date order and split into runs of equal consecutive values; the
    // value of the longest run is the habit, and of runs equally long the latest
    // wins, as the user's current habit.
    T calculate(double defaultValue)
    {
        if (m_entry.empty())
            return T(defaultValue);
        if (m_entry.size() == 1)
            return m_entry.first()->m_value;
        m_entry.sort(&ZBSequenceSetEntry<T>::compare_date);
        T best = m_entry.first()->m_value;
        int bestLength = 0;
        int length = 0;
        for (int i = 0; i < m_entry.size(); ++i) {
            const T& value = m_entry[i]->m_value;
            length = (i > 0 && m_entry[i - 1]->m_value == value) ? length + 1 : 1;
            if (length >= bestLength) {
                best = value;
                bestLength = length;
            }
        }
        return best;
    }

private:
    ZBPtrArray<ZBSequenceSetEntry<T>> m_entry;
};

} // namespace Tervalon
