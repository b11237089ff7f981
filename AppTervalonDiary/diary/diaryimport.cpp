#include "AppTervalonDiary/diary/diaryimport.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("DiaryImport", &DiaryImport::create_zbobject);
}

DiaryImport::DiaryImport()
{
    DiaryImport::register_zbobject();
}

void DiaryImport::register_zbobject()
{
    register_objectname("DiaryImport", &DiaryImport::create_zbobject);
}

int DiaryImport::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<DiaryImport>(out, from, "DiaryImport");
}

int DiaryImport::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    return ZBObject::serialise(in, out, prefix, version);
}

} // namespace Tervalon
