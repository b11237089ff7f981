#include "LibDiary/diary/zbdgroup.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDGroup", &ZBDGroup::create_zbobject);
}

ZBDGroup::ZBDGroup() : m_prayerGroup(false), m_prayerType(-1), m_useSchedule(false)
{
    ZBDGroup::register_zbobject();
}

ZBDGroup::ZBDGroup(const ZBDGroup& other)
    : ZBDEntry(other), m_name(other.m_name), m_prayerGroup(other.m_prayerGroup), m_prayerType(other.m_prayerType),
      m_useSchedule(other.m_useSchedule), m_email(other.m_email), m_schedule(other.m_schedule)
{
}

ZBDGroup::~ZBDGroup() = default;

ZBDGroup& ZBDGroup::operator=(const ZBDGroup& other)
{
    if (this == &other)
        return *this;
    ZBDEntry::operator=(other);
    m_name = other.m_name;
    m_prayerGroup = other.m_prayerGroup;
    m_prayerType = other.m_prayerType;
    m_useSchedule = other.m_useSchedule;
    m_email = other.m_email;
    m_schedule = other.m_schedule;
    return *this;
}

bool ZBDGroup::operator==(const ZBDGroup& other) const
{
    return m_name == other.m_name && m_prayerGroup == other.m_prayerGroup && m_prayerType == other.m_prayerType
        && m_useSchedule == other.m_useSchedule && m_email == other.m_email && m_schedule == other.m_schedule
        && ZBDEntry::operator==(other);
}

void ZBDGroup::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDGroup", out, indent);
    dump.add_entry("m_name", m_name);
    dump.add("m_prayerGroup", m_prayerGroup);
    dump.add("m_prayerType", m_prayerType);
    dump.add("m_useSchedule", m_useSchedule);
    for (size_t i = 0; i < m_email.size(); ++i)
        dump.add("m_email", m_email[i], int(i));
    dump.add_entry("m_schedule", m_schedule.to_string());
    dump.write_heading("Base Class");
    dump.write();
    ZBDEntry::dump(out, indent + 1);
}

// The entry's own fields go under "pg", as they always have for groups.
int ZBDGroup::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszberr(ZBDEntry::serialise(in, out, make_ctag(prefix, "pg"), version)))
        return zbpass(ZBLOC);
    serialise_string(in, out, prefix, "Name", m_name, true);
    serialise_field<bool>(in, out, prefix, "PG", m_prayerGroup, false);
    serialise_field<int>(in, out, prefix, "prayerType", m_prayerType, -1);
    serialise_field<bool>(in, out, prefix, "useSchedule", m_useSchedule, false);
    ZBSrlValueVector<int> email(m_email);
    serialise_value(in, out, prefix, "email", email);
    if (out == nullptr || m_schedule.is_repeating()) {
        ZBSrlObject<ZBDateRepeat> schedule(m_schedule, version);
        if (iszberr(serialise_object(in, out, prefix, "schedule", schedule)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

void ZBDGroup::register_zbobject()
{
    register_objectname("ZBDGroup", &ZBDGroup::create_zbobject);
}

int ZBDGroup::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDGroup>(out, from, "ZBDGroup");
}

void ZBDGroup::set_defaults(bool all)
{
    ZBDEntry::set_defaults(all);
    m_name.clear();
    m_prayerGroup = false;
    m_prayerType = -1;
    m_useSchedule = false;
    m_email.clear();
    m_schedule.clear_repeat();
}

int ZBDGroup::remap_id(int from, int to)
{
    std::replace(m_email.begin(), m_email.end(), from, to);
    if (m_prayerType == from)
        m_prayerType = to;
    return ZBDEntry::remap_id(from, to);
}

void ZBDGroup::set_name(const std::string& name)
{
    m_name = name;
    set_summary(name);
}

bool ZBDGroup::has_member(int personId) const
{
    return std::find(m_email.begin(), m_email.end(), personId) != m_email.end();
}

} // namespace Tervalon
