#include "LibDate/dateset/zbdateset.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <ostream>
#include <queue>
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
void sort_entries(std::vector<ZBDateSetEntry*>& array)
{
    const int n = int(array.size());
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
    for (size_t i = 0; i < keys.size(); ++i)
        array[i] = keys[i].entry;
}

ZBDate later(const ZBDate& a, const ZBDate& b)
{
    return a < b ? b : a;
}

ZBDate earlier(const ZBDate& a, const ZBDate& b)
{
    return a < b ? a : b;
}

// Equal as moments, whatever zone each is shown in.
bool same_moment(const ZBDate& a, const ZBDate& b)
{
    return !(a < b) && !(b < a);
}

bool entry_less(const ZBDateSetEntry* a, const ZBDateSetEntry* b)
{
    return zbdatesetentry_less(*a, *b);
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
        text << *at(i);
        writer.add("m_entry", text.str(), i);
    }
    writer.write();
}

int ZBDateSet::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (out && !m_bulkSlot.empty())
        finish_bulk_add();
    // The stream reads and writes a plain array: lent the entries for
    // writing, handed what it read.
    ZBPtrArray<ZBDateSetEntry> flat(in != nullptr);
    if (!in)
        for (int i = 0; i < m_entry.size(); ++i)
            flat.push_back(at(i));
    ZBSrlValueArray<ZBDateSetEntry> entries(flat);
    if (iszbwarn(serialise_value(in, out, prefix, "S", entries)))
        return zbpass(ZBLOC);
    if (in) {
        std::vector<ZBDateSetEntry*> read(flat.begin(), flat.end());
        flat.set_managed(false);
        m_entry.assign(read);
    }
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

// The index: each entry's m_reach is the latest end of all entries up to it.
// A change at one place alters the reaches after it only until they agree
// with what was there, which in a set without long overlaps is at once.
void ZBDateSet::relink(int from)
{
    const int n = m_entry.size();
    for (int j = std::max(from, 0); j < n; ++j) {
        ZBDateSetEntry* entry = at(j);
        ZBDate reach = j == 0 ? entry->m_end : later(at(j - 1)->m_reach, entry->m_end);
        if (same_moment(reach, entry->m_reach))
            return;
        entry->m_reach = reach;
    }
}

void ZBDateSet::relink_all()
{
    const int n = m_entry.size();
    for (int j = 0; j < n; ++j) {
        ZBDateSetEntry* entry = at(j);
        entry->m_reach = j == 0 ? entry->m_end : later(at(j - 1)->m_reach, entry->m_end);
    }
}

int ZBDateSet::first_reaching(const ZBDate& date, bool inclusive, int from) const
{
    int lo = std::max(from, 0);
    int hi = m_entry.size();
    while (lo < hi) {
        int mid = lo + (hi - lo) / 2;
        const ZBDate& reach = at(mid)->m_reach;
        if (inclusive ? !(reach < date) : date < reach)
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

int ZBDateSet::first_starting_from(const ZBDate& date) const
{
    int lo = 0;
    int hi = m_entry.size();
    while (lo < hi) {
        int mid = lo + (hi - lo) / 2;
        if (at(mid)->m_start < date)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo;
}

int ZBDateSet::index_of(const ZBDateSetEntry& entry) const
{
    // Within one type entries never share a start, so the order's key is unique.
    int lo = 0;
    int hi = m_entry.size();
    while (lo < hi) {
        int mid = lo + (hi - lo) / 2;
        if (zbdatesetentry_less(*at(mid), entry))
            lo = mid + 1;
        else
            hi = mid;
    }
    if (lo < m_entry.size() && at(lo) == &entry)
        return lo;
    for (int i = 0; i < m_entry.size(); ++i)
        if (at(i) == &entry)
            return i;
    return -1;
}

int ZBDateSet::place(const ZBDateSetEntry& entry, int hint) const
{
    const int n = m_entry.size();
    auto fits = [&](int pos) {
        return pos >= 0 && pos <= n && (pos == 0 || !zbdatesetentry_less(entry, *at(pos - 1)))
            && (pos == n || zbdatesetentry_less(entry, *at(pos)));
    };
    // A walk in date order adds at or just behind the last place.
    if (fits(hint))
        return hint;
    if (fits(hint + 1))
        return hint + 1;
    int lo = 0;
    int hi = n;
    while (lo < hi) {
        int mid = lo + (hi - lo) / 2;
        if (zbdatesetentry_less(entry, *at(mid)))
            hi = mid;
        else
            lo = mid + 1;
    }
    return lo;
}

int ZBDateSet::put(ZBDateSetEntry* entry, int hint)
{
    int pos = place(*entry, hint);
    entry->m_reach = ZBDate(ZBDate::E_Invalid);
    m_entry.insert(pos, entry);
    relink(pos);
    return pos;
}

int ZBDateSet::partner_of(const ZBDateSetEntry& entry, int before, int after) const
{
    // Nothing at or before j can touch the entry once the latest end so far
    // falls short of its start.
    for (int j = before; j >= 0 && !(at(j)->m_reach < entry.m_start); --j) {
        const ZBDateSetEntry* other = at(j);
        if (other->m_type == entry.m_type && !(other->m_end < entry.m_start))
            return j;
    }
    for (int j = after; j < m_entry.size() && !(entry.m_end < at(j)->m_start); ++j)
        if (at(j)->m_type == entry.m_type)
            return j;
    return -1;
}

void ZBDateSet::drop(int index)
{
    m_entry.remove(index);
    relink(index);
}

int ZBDateSet::settle(int index)
{
    ZBDateSetEntry* entry = at(index);
    const int n = m_entry.size();
    if ((index == 0 || entry_less(at(index - 1), entry)) && (index + 1 == n || entry_less(entry, at(index + 1)))) {
        relink(index);
        return index;
    }
    m_entry.extract(index);
    relink(index);
    return put(entry, index);
}

int ZBDateSet::join_type(int index)
{
    for (;;) {
        ZBDateSetEntry* entry = at(index);
        int partner = partner_of(*entry, index - 1, index + 1);
        if (partner < 0)
            return index;
        ZBDateSetEntry* other = m_entry.extract(partner);
        relink(partner);
        if (partner < index)
            --index;
        ZBDateSlot::merge(*entry, *other, m_keepDuration);
        delete other;
        index = settle(index);
    }
}

void ZBDateSet::cut(int index, const ZBDate& from, const ZBDate& to)
{
    ZBDateSetEntry* entry = at(index);
    const bool before = entry->m_start < from;
    const bool after = to < entry->m_end;
    if (!before && !after) {
        drop(index);
        return;
    }
    if (before && after) {
        ZBDateSetEntry* rest = new ZBDateSetEntry(to, entry->m_end, entry->m_type);
        entry->m_end = from;
        index = settle(index);
        put(rest, index + 1);
        return;
    }
    if (before)
        entry->m_end = from;
    else
        entry->m_start = to;
    settle(index);
}

template <class Visit>
void ZBDateSet::walk_back(const ZBDate& cap, Visit&& visit) const
{
    struct Item {
        ZBDate end;
        int index;
    };
    auto below = [](const Item& a, const Item& b) {
        return a.end < b.end || (!(b.end < a.end) && a.index < b.index);
    };
    std::priority_queue<Item, std::vector<Item>, decltype(below)> heap(below);
    int next = first_starting_from(cap) - 1;
    for (;;) {
        // An entry not yet looked at can end no later than the reach at next.
        while (next >= 0 && (heap.empty() || heap.top().end < earlier(at(next)->m_reach, cap))) {
            heap.push({earlier(at(next)->m_end, cap), next});
            --next;
        }
        if (heap.empty())
            return;
        Item item = heap.top();
        heap.pop();
        if (!visit(item.index, item.end))
            return;
    }
}

int ZBDateSet::add(const ZBDateSlot& slot, int type)
{
    safe_add(slot, type, 0, true);
    return ZBErrC_ok;
}

int ZBDateSet::safe_add(const ZBDateSlot& slot, int type, int hint, bool useFind)
{
    // The place is always found by halving; a hint that fits only saves that.
    (void)useFind;
    if (!slot.m_start.is_ok() || !slot.m_end.is_ok() || same_moment(slot.m_start, slot.m_end))
        return -1;
    ZBDateSetEntry entry(ZBDateSlot(slot.m_start, slot.m_end, true), type);
    int pos = place(entry, hint);
    // Time given back mostly touches time of its type: growing that entry
    // where it stands moves nothing else.
    int partner = partner_of(entry, pos - 1, pos);
    if (partner >= 0) {
        ZBDateSlot::merge(*at(partner), entry, m_keepDuration);
        return join_type(settle(partner));
    }
    return join_type(put(new ZBDateSetEntry(entry), pos));
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
    for (int i = 0; i < other.size(); ++i) {
        const ZBDateSetEntry* entry = other.at(i);
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
    add(other);
    other.clear();
    return ZBErrC_ok;
}

void ZBDateSet::bulk_add(const ZBDateSlot& slot, int type)
{
    m_bulkSlot.push_back(new ZBDateSetEntry(slot, type));
}

void ZBDateSet::bulk_add(ZBDateSetEntry* entry)
{
    m_bulkSlot.push_back(entry);
}

int ZBDateSet::finish_bulk_add()
{
    int result = ZBErrC_ok;
    std::vector<ZBDateSetEntry*> all = m_entry.release();
    all.reserve(all.size() + size_t(m_bulkSlot.size()));
    for (ZBDateSetEntry* nentry : m_bulkSlot) {
        // One missing entry costs none of the others.
        if (nentry == nullptr) {
            if (!iszbwarn(result))
                result = zberror(ZBErrC_Assert, ZBLOC, "Assertion Failed: nentry != nullptr");
            continue;
        }
        all.push_back(nentry);
    }
    m_bulkSlot.set_managed(false);
    m_bulkSlot.clear();
    m_bulkSlot.set_managed(true);
    m_entry.assign(all);
    cleanup(true);
    return result;
}

int ZBDateSet::cleanup(bool sort)
{
    std::vector<ZBDateSetEntry*> all = m_entry.release();
    std::vector<ZBDateSetEntry*> kept;
    kept.reserve(all.size());
    for (ZBDateSetEntry* entry : all) {
        // A reversed or open-ended span can come from a bulk add or a mended
        // file. Open-ended spans have no length a set could count, so they go.
        if (entry->m_end < entry->m_start)
            std::swap(entry->m_start, entry->m_end);
        if (!entry->m_start.is_ok() || !entry->m_end.is_ok() || same_moment(entry->m_start, entry->m_end))
            delete entry;
        else
            kept.push_back(entry);
    }
    if (sort || !std::is_sorted(kept.begin(), kept.end(), entry_less))
        sort_entries(kept);
    // Each entry merges with the last kept one of its type, wherever the
    // entries of other types in between stand.
    std::map<int, ZBDateSetEntry*> lastOfType;
    bool merged = false;
    all.clear();
    for (ZBDateSetEntry* entry : kept) {
        ZBDateSetEntry*& last = lastOfType[entry->m_type];
        if (last && ZBDateSlot::merge(*last, *entry, m_keepDuration)) {
            delete entry;
            merged = true;
            continue;
        }
        last = entry;
        all.push_back(entry);
    }
    // A merged entry ends later and may now belong behind another of its start.
    if (merged && !std::is_sorted(all.begin(), all.end(), entry_less))
        sort_entries(all);
    m_entry.assign(all);
    relink_all();
    return ZBErrC_ok;
}

int ZBDateSet::subtract(const ZBDateSlot& slot, int type)
{
    ZBDateSlot span(slot.m_start, slot.m_end, true);
    if (m_entry.empty() || !span.m_start.is_ok() || !span.m_end.is_ok() || !(span.m_start < end())
        || !(start() < span.m_end))
        return ZBErrC_ok;
    std::vector<ZBDateSetEntry*> hit;
    for (int i = first_reaching(span.m_start, false, 0); i < m_entry.size() && at(i)->m_start < span.m_end; ++i)
        if (at(i)->matches(type) && ZBDateSlot::intersects(*at(i), span))
            hit.push_back(at(i));
    // Cutting one entry leaves every other where it was.
    for (ZBDateSetEntry* entry : hit)
        cut(index_of(*entry), later(entry->m_start, span.m_start), earlier(entry->m_end, span.m_end));
    return ZBErrC_ok;
}

int ZBDateSet::subtract(const ZBDateSet& other)
{
    if (&other == this) {
        clear();
        return ZBErrC_ok;
    }
    for (int i = 0; i < other.size(); ++i)
        subtract(*other.at(i), -1);
    return ZBErrC_ok;
}

int ZBDateSet::erase(int index)
{
    if (index < 0 || index >= m_entry.size())
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, m_entry.size());
    drop(index);
    return ZBErrC_ok;
}

void ZBDateSet::clear()
{
    m_entry.clear();
    m_bulkSlot.clear();
}

const ZBDateSetEntry* ZBDateSet::operator[](int index) const
{
    if (index < 0 || index >= m_entry.size()) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, m_entry.size());
        return nullptr;
    }
    return at(index);
}

ZBDate ZBDateSet::start() const
{
    return m_entry.empty() ? ZBDate(ZBDate::E_Blank) : m_entry.first()->m_start;
}

ZBDate ZBDateSet::end() const
{
    return m_entry.empty() ? ZBDate(ZBDate::E_Blank) : m_entry.last()->m_reach;
}

ZBDuration ZBDateSet::duration() const
{
    ZBDuration total;
    for (int i = 0; i < m_entry.size(); ++i)
        total += at(i)->m_end - at(i)->m_start;
    return total;
}

bool ZBDateSet::match(const ZBDate& date) const
{
    // The first entry reaching the date ends at or after it; if that one
    // starts after it, so does every later one. An entry ending exactly at
    // date still holds it.
    int i = first_reaching(date, true, 0);
    return i < m_entry.size() && !(date < at(i)->m_start);
}

bool ZBDateSet::has_range(const ZBDateSlot& slot, int type) const
{
    if (!slot.is_ok()) {
        for (int i = 0; i < m_entry.size(); ++i)
            if (at(i)->matches(type))
                return true;
        return false;
    }
    for (int i = first_reaching(slot.m_start, true, 0); i < m_entry.size() && !(slot.m_end < at(i)->m_start); ++i) {
        const ZBDateSetEntry* entry = at(i);
        if (entry->matches(type) && !(entry->m_end < slot.m_start))
            return true;
    }
    return false;
}

ZBDuration ZBDateSet::query_range(const ZBDateSlot& slot, int type) const
{
    ZBDuration total;
    if (!slot.is_ok()) {
        for (int i = 0; i < m_entry.size(); ++i)
            if (at(i)->matches(type))
                total += at(i)->m_end - at(i)->m_start;
        return total;
    }
    for (int i = first_reaching(slot.m_start, false, 0); i < m_entry.size() && at(i)->m_start < slot.m_end; ++i) {
        const ZBDateSetEntry* entry = at(i);
        ZBDateSlot common;
        if (entry->matches(type) && ZBDateSlot::intersection(*entry, slot, common))
            total += common.m_end - common.m_start;
    }
    return total;
}

int ZBDateSet::query_range(const ZBDateSlot& slot, ZBDateSet& outSet) const
{
    if (&outSet == this)
        return ZBErrC_ok;
    outSet.clear();
    if (!slot.is_ok()) {
        outSet.m_entry = m_entry;
        return ZBErrC_ok;
    }
    for (int i = first_reaching(slot.m_start, false, 0); i < m_entry.size() && at(i)->m_start < slot.m_end; ++i) {
        const ZBDateSetEntry* entry = at(i);
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
    // Entries come in order of start, so what is counted so far always ends
    // at the cursor; an overlapping entry adds only what lies past it.
    ZBDuration remaining = duration;
    ZBDate cursor = date;
    for (int i = first_reaching(date, false, 0); i < m_entry.size(); ++i) {
        const ZBDateSetEntry* entry = at(i);
        if (!(cursor < entry->m_end))
            continue;
        ZBDate from = later(entry->m_start, cursor);
        ZBDuration available = entry->m_end - from;
        if (!(available < remaining))
            return from + remaining;
        remaining -= available;
        cursor = entry->m_end;
    }
    return date;
}

ZBDate ZBDateSet::time_before(const ZBDate& date, const ZBDuration& duration) const
{
    // Entries come latest end first, so what is counted so far always starts
    // at the cursor; an overlapping entry adds only what lies before it.
    ZBDuration remaining = duration;
    ZBDate cursor = date;
    ZBDate result = date;
    walk_back(date, [&](int index, const ZBDate& end) {
        const ZBDateSetEntry* entry = at(index);
        ZBDate top = earlier(end, cursor);
        if (!(entry->m_start < top))
            return true;
        ZBDuration available = top - entry->m_start;
        if (!(available < remaining)) {
            result = top - remaining;
            return false;
        }
        remaining -= available;
        cursor = entry->m_start;
        return true;
    });
    return result;
}

int ZBDateSet::safe_find(const ZBDate& date, int from, bool binary) const
{
    const int n = m_entry.size();
    if (n == 0)
        return 0;
    from = std::min(std::max(from, 0), n - 1);
    if (!(at(from)->m_end < date))
        return from;
    if (!(date < end()))
        return n;
    // A hint behind an entry that already reaches the date: the answer lies
    // among entries wedged under a longer one, found by walking.
    if (from > 0 && !(at(from - 1)->m_reach < date)) {
        int i = from + 1;
        while (i < n && at(i)->m_end < date)
            ++i;
        return i;
    }
    // From here on the first entry whose reach gets to the date is itself
    // the first to end there.
    if (binary)
        return first_reaching(date, true, from + 1);
    int i = from + 1;
    while (i < n && at(i)->m_reach < date)
        ++i;
    return i;
}

int ZBDateSet::safe_rfind(const ZBDate& date, int from, bool binary) const
{
    int n = m_entry.size();
    if (n == 0)
        return -1;
    if (from < 0 || from >= n)
        from = n - 1;
    if (!(date < at(from)->m_start))
        return from;
    if (!(at(0)->m_start < date))
        return -1;
    if (!binary) {
        int i = from;
        while (i >= 0 && date < at(i)->m_start)
            --i;
        return i;
    }
    // Entry 0 starts before date, entry from after it.
    int lo = 0;
    int hi = from;
    while (hi - lo > 1) {
        int mid = lo + (hi - lo) / 2;
        if (!(date < at(mid)->m_start))
            lo = mid;
        else
            hi = mid;
    }
    return lo;
}

ZBDuration ZBDateSet::allocate(ZBDateSet& returnSet, const ZBDuration& duration, const ZBDate& earliest,
                               const ZBDate& latest, bool backwards)
{
    ZBDuration sum;
    if (&returnSet == this || !(ZBDuration() < duration) || m_entry.empty())
        return sum;
    // The takes are chosen first and cut afterwards, so that the walk sees a
    // set that does not move under it. Each entry gives at most one take.
    struct Take {
        ZBDateSetEntry* entry;
        ZBDate from;
        ZBDate to;
    };
    std::vector<Take> takes;
    // Only a latest date gives a backward walk somewhere to start; without
    // one the time comes from the front, as it does going forwards.
    if (!backwards || !latest.is_ok()) {
        // In order of start, an entry that reaches earliest offers time from
        // earliest itself, any later one from its start: earliest time first.
        const int n = m_entry.size();
        for (int i = earliest.is_ok() ? first_reaching(earliest, false, 0) : 0; i < n && sum < duration; ++i) {
            ZBDateSetEntry* entry = at(i);
            if (latest.is_ok() && !(entry->m_start < latest))
                break;
            ZBDate from = earliest.is_ok() ? later(earliest, entry->m_start) : entry->m_start;
            ZBDate to = earlier(from + (duration - sum), entry->m_end);
            if (latest.is_ok())
                to = earlier(to, latest);
            if (!(from < to))
                continue;
            takes.push_back({entry, from, to});
            sum += to - from;
        }
    } else {
        walk_back(latest, [&](int index, const ZBDate& end) {
            if (!(sum < duration) || (earliest.is_ok() && !(earliest < end)))
                return false;
            ZBDateSetEntry* entry = at(index);
            ZBDate from = later(end - (duration - sum), entry->m_start);
            if (earliest.is_ok())
                from = later(from, earliest);
            if (from < end) {
                takes.push_back({entry, from, end});
                sum += end - from;
            }
            return true;
        });
    }
    int hint = 0;
    for (const Take& take : takes) {
        int type = take.entry->m_type;
        cut(index_of(*take.entry), take.from, take.to);
        int index = returnSet.safe_add(ZBDateSlot(take.from, take.to), type, hint, true);
        if (index >= 0)
            hint = index;
    }
    return sum;
}

} // namespace Tervalon
