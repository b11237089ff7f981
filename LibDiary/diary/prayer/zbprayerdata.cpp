#include "LibDiary/diary/prayer/zbprayerdata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBPrayerData", &ZBPrayerData::create_zbobject);
}

ZBPrayerData::ZBPrayerData()
{
    ZBPrayerData::register_zbobject();
}

void ZBPrayerData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBPrayerData", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBPrayerData::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBPrayerData::register_zbobject()
{
    register_objectname("ZBPrayerData", &ZBPrayerData::create_zbobject);
}

int ZBPrayerData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBPrayerData>(out, from, "ZBPrayerData");
}

void ZBPrayerData::set_defaults(bool) {}

} // namespace Tervalon
