#include "LibDate/dateset/zbdateset.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <vector>

namespace Tervalon {

namespace {

const ZBObjectPreReg g_register("ZBDateSet", &ZBDateSet::create_zbobject);

// Puts the array in order of start, end and type. The sort works on a copy of
// those keys held side by side: comparing through the pointers to entries
// scattered over the heap made a large bulk add wait on memory. Entries whose
// keys are equal differ at most in the zone they are shown in, so their
// order among themselves (kept as it was) cannot change a set.
void sort_entries(ZBPtrArray<ZBDateSetEntry>& array)
{
    const int n = array.size();
    if (n < 2)
        return;
    struct Key {
        std::int64_t start;
        std::int64_t end;
        int type;
        ZBDateSetEntry* entry;
    };
    // A date that is not ok comes after every real one, as ZBDate orders them.
    auto moment = [](const ZBDate& date) { return date.is_ok() ? date.to_micros() : INT64_MAX; };
    std::vector<Key> keys;
    keys.reserve(size_t(n));
    for (ZBDateSetEntry* entry : array)
        keys.push_back({moment(entry->m_start), moment(entry->m_end), entry->m_type, entry});
    std::stable_sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
        if (a.start != b.start)
            return a.start < b.start;
        if (a.end != b.end)
            return a.end < b.end;
        return a.type < b.type;
    });
    array.set_managed(false);
    array.clear();
    array.reserve(n);
    for (const Key& key : keys)
        array.push_back(key.entry);
    array.set_managed(true);
}

ZBDate later(const ZBDate& a, const ZBDate& b)
{
    return a < b ? b : a;
}

ZBDate earlier(const ZBDate& a, const ZBDate& b)
{
    return a < b ? a : b;
}

} // namespace

ZBDateSet::ZBDateSet() : m_keepDuration(false)
{
    ZBDateSet::register_zbobject();
}

ZBDateSet::ZBDateSet(const ZBDateSet& other)
    : ZBObject(other), m_entry(other.m_entry), m_bulkSlot(other.m_bulkSlot), m_keepDuration(other.m_keepDuration)
{
}

ZBDateSet::~ZBDateSet() = default;

ZBDateSet& ZBDateSet::operator=(const ZBDateSet& other)
{
    if (this != &other) {
        ZBObject::operator=(other);
        m_entry = other.m_entry;
        m_bulkSlot = other.m_bulkSlot;
        m_keepDuration = other.m_keepDuration;
    }
    return *this;
}

bool ZBDateSet::operator==(const ZBDateSet& other) const
{
    return m_entry == other.m_entry && m_bulkSlot == other.m_bulkSlot && m_keepDuration == other.m_keepDuration;
}

void ZBDateSet::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBDateSet", out, indent);
    writer.add("m_keepDuration", m_keepDuration);
    writer.add("m_entry.size()", m_entry.size());
    writer.add("m_bulkSlot.size()", m_bulkSlot.size());
    for (int i = 0; i < m_entry.size(); ++i) {
        std::ostringstream text;
        text << *m_entry[i];
        writer.add("m_entry", text.str(), i);
    }
    writer.write();
}

int ZBDateSet::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (out && !m_bulkSlot.empty())
        finish_bulk_add();
    ZBSrlValueArray<ZBDateSetEntry> entries(m_entry);
    if (iszbwarn(serialise_value(in, out, prefix, "S", entries)))
        return zbpass(ZBLOC);
    serialise_field<bool>(in, out, prefix, "K", m_keepDuration, false);
    if (in) {
        // A hand-mended file may hold entries out of order or overlapping.
        cleanup(true);
    }
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDateSet::register_zbobject()
{
    register_objectname("ZBDateSet", &ZBDateSet::create_zbobject);
}

int ZBDateSet::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDateSet>(out, from, "ZBDateSet");
}

void ZBDateSet::set_defaults(bool all)
{
    m_entry.clear();
    m_bulkSlot.clear();
    m_keepDuration = false;
    if (all)
        clear_unhandled_data();
}

int ZBDateSet::insert_sorted(ZBDateSetEntry* entry, int from, bool binary)
{
    int n = m_entry.size();
    int pos = safe_find(entry->m_start, std::max(0, std::min(from, n)), binary);
    // A hint past the right place would misplace the entry: start again.
    if (pos > 0 && pos <= n && zbdatesetentry_less(*entry, *m_entry[pos - 1]))
        pos = safe_find(entry->m_start, 0, true);
    // Among the entries from pos on, those that sort before the new one are
    // found by halving as well, since starts ascend.
    auto it = std::upper_bound(m_entry.begin() + pos, m_entry.end(), entry,
                               [](const ZBDateSetEntry* x, const ZBDateSetEntry* y) { return zbdatesetentry_less(*x, *y); });
    pos = int(it - m_entry.begin());
    m_entry.insert(pos, entry);
    return pos;
}

int ZBDateSet::merge_around(int index)
{
    bool changed = true;
    while (changed) {
        changed = false;
        while (index + 1 < m_entry.size()) {
            ZBDateSetEntry* a = m_entry[index];
            ZBDateSetEntry* b = m_entry[index + 1];
            if (a->m_type != b->m_type || !ZBDateSlot::merge(*a, *b, m_keepDuration))
                break;
            m_entry.remove(index + 1);
            changed = true;
        }
        if (index > 0) {
            ZBDateSetEntry* a = m_entry[index - 1];
            ZBDateSetEntry* b = m_entry[index];
            if (a->m_type == b->m_type && ZBDateSlot::merge(*a, *b, m_keepDuration)) {
                m_entry.remove(index);
                --index;
                changed = true;
            }
        }
    }
    return index;
}

int ZBDateSet::add(const ZBDateSlot& slot, int type)
{
    safe_add(slot, type, 0, true);
    return ZBErrC_ok;
}

int ZBDateSet::safe_add(const ZBDateSlot& slot, int type, int hint, bool useFind)
{
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok() || slot.m_start == slot.m_end)
        return -1;
    ZBDateSetEntry* entry = new ZBDateSetEntry(ZBDateSlot(slot.m_start, slot.m_end, true), type);
    int index = insert_sorted(entry, hint, useFind);
    return merge_around(index);
}

int ZBDateSet::add(const ZBDateSet& other)
{
    if (&other == this)
        return ZBErrC_ok;
    if (m_entry.empty()) {
        m_entry = other.m_entry;
        return ZBErrC_ok;
    }
    // Both lists ascend, so each insertion starts where the last one stopped.
    int hint = 0;
    for (const ZBDateSetEntry* entry : other.m_entry) {
        int index = safe_add(*entry, entry->m_type, hint, true);
        if (index >= 0)
            hint = index;
    }
    return ZBErrC_ok;
}

int ZBDateSet::add_return(ZBDateSet& other)
{
    if (&other == this)
        return ZBErrC_ok;
    int hint = 0;
    for (const ZBDateSetEntry* entry : other.m_entry) {
        int index = safe_add(*entry, entry->m_type, hint, true);
        if (index >= 0)
            hint = index;
    }
    other.clear();
    return ZBErrC_ok;
}

void ZBDateSet::bulk_add(const ZBDateSlot& slot, int type)
{
    m_bulkSlot.push_back(new ZBDateSetEntry(slot, type));
}

int ZBDateSet::finish_bulk_add()
{
    m_entry.reserve(m_entry.size() + m_bulkSlot.size());
    for (int i = 0; i < m_bulkSlot.size(); ++i) {
        ZBDateSetEntry* entry = m_bulkSlot[i];
        if (ZBASSERT(entry != nullptr)) {
            m_bulkSlot.set_managed(false);
            m_bulkSlot.clear();
            m_bulkSlot.set_managed(true);
            return zbpass(ZBLOC);
        }
        m_entry.push_back(entry);
    }
    m_bulkSlot.set_managed(false);
    m_bulkSlot.clear();
    m_bulkSlot.set_managed(true);
    return cleanup(true);
}

int ZBDateSet::cleanup(bool sort)
{
    int n = m_entry.size();
    // Empty entries go first, so that they cannot stop two others merging.
    std::vector<ZBDateSetEntry*> kept;
    kept.reserve(size_t(n));
    for (ZBDateSetEntry* entry : m_entry) {
        if (entry->m_start == entry->m_end || !entry->m_start.is_ok())
            delete entry;
        else
            kept.push_back(entry);
    }
    m_entry.set_managed(false);
    m_entry.clear();
    for (ZBDateSetEntry* entry : kept)
        m_entry.push_back(entry);
    m_entry.set_managed(true);
    if (sort && m_entry.size() > 1)
        sort_entries(m_entry);
    // One pass that merges neighbours of one type into a new list, instead of
    // removing from the middle of the array once per merge.
    kept.clear();
    for (ZBDateSetEntry* entry : m_entry) {
        ZBDateSetEntry* last = kept.empty() ? nullptr : kept.back();
        if (last && last->m_type == entry->m_type && ZBDateSlot::merge(*last, *entry, m_keepDuration))
            delete entry;
        else
            kept.push_back(entry);
    }
    m_entry.set_managed(false);
    m_entry.clear();
    for (ZBDateSetEntry* entry : kept)
        m_entry.push_back(entry);
    m_entry.set_managed(true);
    return ZBErrC_ok;
}

int ZBDateSet::subtract(const ZBDateSlot& slot, int type)
{
    if (m_entry.empty() || slot.m_start >= end() || slot.m_end <= start())
        return ZBErrC_ok;
    int i = safe_find(slot.m_start, 0, true);
    // An entry of another type may start earlier and reach into the slot.
    while (i > 0 && m_entry[i - 1]->m_end > slot.m_start)
        --i;
    while (i < m_entry.size() && m_entry[i]->m_start < slot.m_end) {
        ZBDateSetEntry* entry = m_entry[i];
        if (!entry->matches(type) || !ZBDateSlot::intersects(*entry, slot)) {
            ++i;
            continue;
        }
        ZBDateSlot overlap;
        ZBDateSlot rest;
        ZBDateSlot::subtract(*entry, slot, overlap, rest);
        int entryType = entry->m_type;
        if (rest.m_start != rest.m_end)
            safe_add(rest, entryType, i + 1, true); // starts at slot end: always behind i
        if (entry->m_start == entry->m_end) {
            m_entry.remove(i);
            // Whatever now stands together here may be of one type.
            if (i > 0 && i < m_entry.size())
                merge_around(i);
        } else {
            ++i;
        }
    }
    return ZBErrC_ok;
}

int ZBDateSet::subtract(const ZBDateSet& other)
{
    if (&other == this) {
        clear();
        return ZBErrC_ok;
    }
    for (const ZBDateSetEntry* entry : other.m_entry)
        subtract(*entry, -1);
    return ZBErrC_ok;
}

int ZBDateSet::erase(int index)
{
    if (iszbwarn(m_entry.remove(index)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDateSet::clear()
{
    m_entry.clear();
    m_bulkSlot.clear();
}

ZBDate ZBDateSet::start() const
{
    return m_entry.empty() ? ZBDate(ZBDate::E_Blank) : m_entry.first()->m_start;
}

ZBDate ZBDateSet::end() const
{
    return m_entry.empty() ? ZBDate(ZBDate::E_Blank) : m_entry.last()->m_end;
}

ZBDuration ZBDateSet::duration() const
{
    ZBDuration total;
    for (const ZBDateSetEntry* entry : m_entry)
        total += entry->m_end - entry->m_start;
    return total;
}

bool ZBDateSet::match(const ZBDate& date) const
{
    // An entry that ends exactly at date still holds it.
    for (int i = std::max(0, safe_find(date, 0, true) - 1); i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = m_entry[i];
        if (entry->m_start > date)
            break;
        if (entry->within(date))
            return true;
    }
    return false;
}

bool ZBDateSet::has_range(const ZBDateSlot& slot, int type) const
{
    if (!slot.is_ok()) {
        for (const ZBDateSetEntry* entry : m_entry)
            if (entry->matches(type))
                return true;
        return false;
    }
    for (int i = safe_find(slot.m_start, 0, true); i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = m_entry[i];
        if (entry->m_start > slot.m_end)
            break;
        if (entry->matches(type) && entry->m_end >= slot.m_start)
            return true;
    }
    return false;
}

ZBDuration ZBDateSet::query_range(const ZBDateSlot& slot, int type) const
{
    ZBDuration total;
    if (!slot.is_ok()) {
        for (const ZBDateSetEntry* entry : m_entry)
            if (entry->matches(type))
                total += entry->m_end - entry->m_start;
        return total;
    }
    for (int i = safe_find(slot.m_start, 0, true); i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = m_entry[i];
        if (entry->m_start >= slot.m_end)
            break;
        ZBDateSlot common;
        if (entry->matches(type) && ZBDateSlot::intersection(*entry, slot, common))
            total += common.m_end - common.m_start;
    }
    return total;
}

int ZBDateSet::query_range(const ZBDateSlot& slot, ZBDateSet& outSet) const
{
    outSet.clear();
    for (int i = slot.is_ok() ? safe_find(slot.m_start, 0, true) : 0; i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = m_entry[i];
        if (!slot.is_ok()) {
            outSet.bulk_add(*entry, entry->m_type);
            continue;
        }
        if (entry->m_start >= slot.m_end)
            break;
        ZBDateSlot common;
        if (ZBDateSlot::intersection(*entry, slot, common))
            outSet.bulk_add(common, entry->m_type);
    }
    return outSet.finish_bulk_add();
}

ZBDate ZBDateSet::time_after(const ZBDuration& duration) const
{
    if (m_entry.empty())
        return ZBDate(ZBDate::E_Invalid);
    return time_after(start(), duration);
}

ZBDate ZBDateSet::time_after(const ZBDate& date, const ZBDuration& duration) const
{
    ZBDuration remaining = duration;
    for (int i = safe_find(date, 0, true); i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = m_entry[i];
        ZBDate from = later(entry->m_start, date);
        if (from >= entry->m_end)
            continue;
        ZBDuration available = entry->m_end - from;
        if (available >= remaining)
            return from + remaining;
        remaining -= available;
    }
    return date;
}

ZBDate ZBDateSet::time_before(const ZBDate& date, const ZBDuration& duration) const
{
    ZBDuration remaining = duration;
    for (int i = safe_rfind(date, -1, true); i >= 0; --i) {
        const ZBDateSetEntry* entry = m_entry[i];
        ZBDate to = earlier(entry->m_end, date);
        if (to <= entry->m_start)
            continue;
        ZBDuration available = to - entry->m_start;
        if (available >= remaining)
            return to - remaining;
        remaining -= available;
    }
    return date;
}

int ZBDateSet::safe_find(const ZBDate& date, int from, bool binary) const
{
    int n = m_entry.size();
    if (n == 0)
        return 0;
    if (from < 0)
        from = 0;
    if (from >= n)
        from = n - 1;
    if (m_entry[from]->m_end >= date)
        return from;
    if (date >= m_entry[n - 1]->m_end)
        return n;
    if (!binary) {
        int i = from;
        while (i < n && m_entry[i]->m_end < date)
            ++i;
        return i;
    }
    // Entry from ends before date, the last one after it.
    int lo = from;
    int hi = n - 1;
    while (hi - lo > 1) {
        int mid = lo + (hi - lo) / 2;
        if (m_entry[mid]->m_end >= date)
            hi = mid;
        else
            lo = mid;
    }
    return hi;
}

int ZBDateSet::safe_rfind(const ZBDate& date, int from, bool binary) const
{
    int n = m_entry.size();
    if (n == 0)
        return -1;
    if (from < 0 || from >= n)
        from = n - 1;
    if (m_entry[from]->m_start <= date)
        return from;
    if (date <= m_entry[0]->m_start)
        return -1;
    if (!binary) {
        int i = from;
        while (i >= 0 && m_entry[i]->m_start > date)
            --i;
        return i;
    }
    // Entry 0 starts before date, entry from after it.
    int lo = 0;
    int hi = from;
    while (hi - lo > 1) {
        int mid = lo + (hi - lo) / 2;
        if (m_entry[mid]->m_start <= date)
            lo = mid;
        else
            hi = mid;
    }
    return lo;
}

void ZBDateSet::carve(int index, const ZBDateSlot& taken, int& next)
{
    ZBDateSetEntry* entry = m_entry[index];
    ZBDateSetEntry after(taken.m_end, entry->m_end, entry->m_type);
    entry->m_end = taken.m_start;
    next = index + 1;
    if (after.m_start != after.m_end) {
        if (entry->m_start == entry->m_end) {
            *entry = after;
        } else {
            m_entry.insert(index + 1, new ZBDateSetEntry(after));
        }
    } else if (entry->m_start == entry->m_end) {
        m_entry.remove(index);
        next = index;
    }
}

ZBDuration ZBDateSet::allocate(ZBDateSet& returnSet, const ZBDuration& duration, const ZBDate& earliest,
                               const ZBDate& latest, bool backwards)
{
    ZBDuration sum;
    if (&returnSet == this || duration <= 0)
        return sum;
    int hint = 0;
    // Only a latest date gives a backward walk somewhere to start; without
    // one the time comes from the front, as it does going forwards.
    if (!backwards || !latest.is_ok()) {
        int i = earliest.is_ok() ? std::max(safe_find(earliest, 0, true) - 1, 0) : 0;
        while (i < m_entry.size() && sum < duration) {
            const ZBDateSetEntry* entry = m_entry[i];
            if (earliest.is_ok() && entry->m_end <= earliest) {
                ++i;
                continue;
            }
            if (latest.is_ok() && entry->m_start >= latest)
                break;
            ZBDate from = earliest.is_ok() ? later(earliest, entry->m_start) : entry->m_start;
            ZBDate to = earlier(from + (duration - sum), entry->m_end);
            if (latest.is_ok())
                to = earlier(to, latest);
            if (to <= from) {
                ++i;
                continue;
            }
            ZBDateSlot taken(from, to);
            int type = entry->m_type;
            carve(i, taken, i);
            sum += to - from;
            int index = returnSet.safe_add(taken, type, hint, true);
            if (index >= 0)
                hint = index;
        }
        return sum;
    }
    int i = latest.is_ok() ? safe_rfind(latest, -1, true) : m_entry.size() - 1;
    while (i >= 0 && i < m_entry.size() && sum < duration) {
        const ZBDateSetEntry* entry = m_entry[i];
        if (latest.is_ok() && entry->m_start >= latest) {
            --i;
            continue;
        }
        if (earliest.is_ok() && entry->m_end <= earliest)
            break;
        ZBDate to = latest.is_ok() ? earlier(latest, entry->m_end) : entry->m_end;
        ZBDate from = later(to - (duration - sum), entry->m_start);
        if (earliest.is_ok())
            from = later(from, earliest);
        if (to <= from) {
            --i;
            continue;
        }
        ZBDateSlot taken(from, to);
        int type = entry->m_type;
        int unused = 0;
        carve(i, taken, unused);
        sum += to - from;
        returnSet.safe_add(taken, type, 0, true);
        --i;
    }
    return sum;
}

} // namespace Tervalon
