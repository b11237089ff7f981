#include "LibDiary/diary/cal/zbcaldata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBCalData", &ZBCalData::create_zbobject);
}

ZBCalData::ZBCalData()
{
    ZBCalData::register_zbobject();
}

void ZBCalData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBCalData", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBCalData::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBCalData::register_zbobject()
{
    register_objectname("ZBCalData", &ZBCalData::create_zbobject);
}

int ZBCalData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBCalData>(out, from, "ZBCalData");
}

void ZBCalData::set_defaults(bool) {}

} // namespace Tervalon
