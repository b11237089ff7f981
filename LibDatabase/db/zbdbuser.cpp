#include "LibDatabase/db/zbdbuser.h"
#include "LibDatabase/db/zbdbobject.h"

namespace Tervalon {

const char* const ZBDBUser::C_UserTag = "UN";

int ZBDBUser::serialise_data(ZBDBObject& object, std::istream* in, std::ostream* out, const std::string& prefix, int)
{
    return object.serialise_string(in, out, prefix, C_UserTag, m_userName, true);
}

} // namespace Tervalon
