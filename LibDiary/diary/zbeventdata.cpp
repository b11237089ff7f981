#include "LibDiary/diary/zbeventdata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBEventData", &ZBEventData::create_zbobject);
}

ZBEventData::ZBEventData()
{
    ZBEventData::register_zbobject();
}

void ZBEventData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBEventData", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBEventData::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBEventData::register_zbobject()
{
    register_objectname("ZBEventData", &ZBEventData::create_zbobject);
}

int ZBEventData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBEventData>(out, from, "ZBEventData");
}

void ZBEventData::set_defaults(bool) {}

} // namespace Tervalon
