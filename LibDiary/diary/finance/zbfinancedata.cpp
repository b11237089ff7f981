#include "LibDiary/diary/finance/zbfinancedata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBFinanceData", &ZBFinanceData::create_zbobject);
}

ZBFinanceData::ZBFinanceData()
{
    ZBFinanceData::register_zbobject();
}

void ZBFinanceData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBFinanceData", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBFinanceData::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBFinanceData::register_zbobject()
{
    register_objectname("ZBFinanceData", &ZBFinanceData::create_zbobject);
}

int ZBFinanceData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBFinanceData>(out, from, "ZBFinanceData");
}

void ZBFinanceData::set_defaults(bool) {}

} // namespace Tervalon
