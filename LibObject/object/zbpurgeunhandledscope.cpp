#include "LibObject/object/zbpurgeunhandledscope.h"
#include "LibObject/object/zbobject.h"

namespace Tervalon {

ZBPurgeUnhandledScope::ZBPurgeUnhandledScope(bool purge) : m_previous(G_PurgeUnhandled)
{
    G_PurgeUnhandled = purge;
}

ZBPurgeUnhandledScope::~ZBPurgeUnhandledScope()
{
    G_PurgeUnhandled = m_previous;
}

} // namespace Tervalon
