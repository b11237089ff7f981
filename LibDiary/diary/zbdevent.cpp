#include "LibDiary/diary/zbdevent.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDEvent", &ZBDEvent::create_zbobject);
}

ZBDEvent::ZBDEvent()
{
    ZBDEvent::register_zbobject();
}

ZBDEvent::ZBDEvent(const ZBDEvent& other) : ZBDEntry(other) {}

ZBDEvent::~ZBDEvent() = default;

ZBDEvent& ZBDEvent::operator=(const ZBDEvent& other)
{
    if (this == &other)
        return *this;
    ZBDEntry::operator=(other);
    return *this;
}

bool ZBDEvent::operator==(const ZBDEvent& other) const
{
    return ZBDEntry::operator==(other);
}

void ZBDEvent::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDEvent", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBDEntry::dump(out, indent + 1);
}

int ZBDEvent::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // The rule is the record's own and goes with the base's fields.
    return ZBDEntry::serialise(in, out, prefix, version);
}

void ZBDEvent::register_zbobject()
{
    register_objectname("ZBDEvent", &ZBDEvent::create_zbobject);
}

int ZBDEvent::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDEvent>(out, from, "ZBDEvent");
}

void ZBDEvent::set_defaults(bool all)
{
    ZBDEntry::set_defaults(all);
    m_repeat.reset();
}

ZBDateSlot ZBDEvent::get_instance(const ZBDate& when) const
{
    const ZBDateSlot& own = get_time();
    if (!is_repeating() || !own.m_start.is_ok() || when < own.m_start)
        return own;
    std::vector<ZBDateSlot> instances;
    // Instances from the event's own start up to the moment asked about.
    get_repeat().generate_slots(own, ZBDateSlot(own.m_start, when), ZBDateRepeat::C_MaxSteps, this, instances);
    ZBDateSlot current = own;
    for (const ZBDateSlot& slot : instances)
        if (slot.m_start <= when && current.m_start <= slot.m_start)
            current = slot;
    return current;
}

bool ZBDEvent::has_passed() const
{
    const ZBDate now = ZBDateUtils::now();
    if (is_repeating()) {
        const ZBDate& last = get_repeat().get_range_end();
        return last.is_ok() && last < now && get_instance(now).m_end < now;
    }
    const ZBDate& end = get_time().m_end.is_ok() ? get_time().m_end : get_time().m_start;
    return end.is_ok() && end < now;
}

bool ZBDEvent::compare_date(const ZBDEvent* a, const ZBDEvent* b)
{
    return a->get_time().m_start < b->get_time().m_start;
}

int ZBDEvent::mark_complete(const ZBDate& date)
{
    set_ack_time(date);
    return ZBErrC_ok;
}

bool ZBDEvent::is_acknowleged() const
{
    return is_acknowleged(get_instance(ZBDateUtils::now()));
}

// An acknowledgement covers the instance it was made in, and no later one.
bool ZBDEvent::is_acknowleged(const ZBDateSlot& instance) const
{
    if (!get_ack_time().is_ok())
        return false;
    if (!is_repeating() || !instance.m_start.is_ok())
        return true;
    return instance.m_start <= get_ack_time();
}

} // namespace Tervalon
