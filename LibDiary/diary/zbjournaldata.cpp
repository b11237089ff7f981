#include "LibDiary/diary/zbjournaldata.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBJournalData", &ZBJournalData::create_zbobject);
}

ZBJournalData::ZBJournalData()
{
    ZBJournalData::register_zbobject();
}

void ZBJournalData::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBJournalData", out, indent);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBJournalData::serialise(std::istream*, std::ostream*, const std::string&, int)
{
    return ZBErrC_ok;
}

void ZBJournalData::register_zbobject()
{
    register_objectname("ZBJournalData", &ZBJournalData::create_zbobject);
}

int ZBJournalData::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBJournalData>(out, from, "ZBJournalData");
}

void ZBJournalData::set_defaults(bool) {}

} // namespace Tervalon
