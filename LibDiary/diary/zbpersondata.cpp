#include "LibDiary/diary/zbpersondata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBPersonData", &ZBPersonData::create_zbobject);
}

ZBPersonData::ZBPersonData()
{
    ZBPersonData::register_zbobject();
}

bool ZBPersonData::operator==(const ZBPersonData& other) const
{
    return m_contactURL == other.m_contactURL && ZBObject::operator==(other);
}

void ZBPersonData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBPersonData", out, indent);
    dump.add_entry("m_contactURL", m_contactURL);
    dump.add("m_people", m_people.size());
    dump.add("m_groups", m_groups.size());
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBPersonData::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int)
{
    serialise_string(in, out, prefix, "cURL", m_contactURL, true);
    if (in)
        m_builtObjects = -1;
    return ZBErrC_ok;
}

void ZBPersonData::register_zbobject()
{
    register_objectname("ZBPersonData", &ZBPersonData::create_zbobject);
}

int ZBPersonData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBPersonData>(out, from, "ZBPersonData");
}

void ZBPersonData::set_defaults(bool)
{
    m_contactURL.clear();
    m_people.clear();
    m_groups.clear();
    m_builtObjects = -1;
}

} // namespace Tervalon
