#include "AppTervalonDiary/diary/entryfacet.h"

namespace Tervalon {

int EntryFacet::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszbwarn(serialise_facet(*this, in, out, prefix, version)))
        return zbpass(ZBLOC);
    return ZBObject::serialise(in, out, prefix, version);
}

int EntryFacet::serialise_set(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                              const std::string& tag, ZBDateSet& set, int version)
{
    if (out && set.empty())
        return ZBErrC_ok;
    // An empty set is left out of the file, so a text without the tag means an
    // empty set: read over a live entry (a revert, a replayed change), the
    // sessions it held must go.
    if (in)
        set.clear();
    ZBSrlObject<ZBDateSet> binder(set, version);
    if (iszberr(owner.serialise_object(in, out, prefix, tag, binder)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

} // namespace Tervalon
