#include "LibDate/calendar/zbcalendar.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbsrlobjectarray.h"

#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBCalendar", &ZBCalendar::create_zbobject);
}

ZBCalendar::ZBCalendar() : m_updateCount(0), m_sorted(true)
{
    ZBCalendar::register_zbobject();
}

ZBCalendar::ZBCalendar(const ZBCalendar& other) : ZBObject(other), m_updateCount(0), m_sorted(true)
{
    *this = other;
}

ZBCalendar& ZBCalendar::operator=(const ZBCalendar& other)
{
    if (this == &other)
        return *this;
    ZBObject::operator=(other);
    m_entry = other.m_entry;
    m_sorted = other.m_sorted;
    changed();
    return *this;
}

ZBCalendar::~ZBCalendar() = default;

void ZBCalendar::register_zbobject()
{
    register_objectname("ZBCalendar", &ZBCalendar::create_zbobject);
}

int ZBCalendar::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBCalendar>(out, from, "ZBCalendar");
}

void ZBCalendar::set_defaults(bool)
{
    remove_all();
    remove_reporters();
}

int ZBCalendar::add_entry(ZBCalendarEntry* entry)
{
    if (!entry)
        return zberror(ZBErrC_NullPointer, ZBLOC, "No calendar entry to add.");
    if (m_entry.size() > 0 && m_sorted && entry->less_than(*m_entry.last()))
        m_sorted = false;
    m_entry.push_back(entry);
    changed();
    return ZBErrC_ok;
}

int ZBCalendar::add_reporter(ZBCalendarReporter* reporter)
{
    if (!reporter)
        return zberror(ZBErrC_NullPointer, ZBLOC, "No calendar reporter to add.");
    m_reporter.push_back(reporter);
    changed();
    return ZBErrC_ok;
}

void ZBCalendar::remove_all()
{
    m_entry.clear();
    m_sorted = true;
    changed();
}

void ZBCalendar::remove_reporters()
{
    m_reporter.clear();
    changed();
}

int ZBCalendar::generate_reports(const ZBDateSlot& slot)
{
    remove_all();
    for (ZBCalendarReporter* reporter : m_reporter)
        if (iszbwarn(reporter->generate_report(slot, *this)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBCalendar::sort()
{
    if (m_sorted)
        return ZBErrC_ok;
    if (iszbwarn(m_entry.sort(&compare_calendar_entries)))
        return zbpass(ZBLOC);
    m_sorted = true;
    // Queries hold indices into the list, so a new order makes them stale.
    changed();
    return ZBErrC_ok;
}

void ZBCalendar::mark_entries(const ZBIdList& ids)
{
    bool any = false;
    for (ZBCalendarEntry* entry : m_entry) {
        const bool marked = ids.is_marked(entry->get_id());
        if (marked != entry->is_highlighted()) {
            entry->set_highlighted(marked);
            any = true;
        }
    }
    if (any)
        changed();
}

int ZBCalendar::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    ZBSrlObjectArray<ZBCalendarEntry> entries(m_entry, version);
    if (iszberr(serialise_object(in, out, prefix, "entries", entries)))
        return zbpass(ZBLOC);
    if (in) {
        m_sorted = false;
        changed();
    }
    return ZBErrC_ok;
}

void ZBCalendar::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("ZBCalendar", out, indent);
        dump.add("entries", m_entry.size());
        dump.add("reporters", m_reporter.size());
        dump.add("m_updateCount", m_updateCount);
        dump.add("m_sorted", m_sorted);
    }
    for (const ZBCalendarEntry* entry : m_entry)
        entry->dump(out, indent + 1);
}

} // namespace Tervalon
