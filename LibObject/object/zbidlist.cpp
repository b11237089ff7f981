#include "LibObject/object/zbidlist.h"

namespace Tervalon {

bool ZBIdList::is_marked(const ZBId& id) const
{
    return index_of(id) >= 0;
}

int ZBIdList::index_of(const ZBId& id) const
{
    for (size_t i = 0; i < m_id.size(); ++i)
        if (m_id[i].compare(id))
            return int(i);
    return -1;
}

ZBId ZBIdList::first() const
{
    return m_id.empty() ? ZBId() : m_id.front();
}

int ZBIdList::first_id() const
{
    return first().m_id;
}

int ZBIdList::first_sequence() const
{
    return first().m_seq;
}

int ZBIdList::sequence(int index) const
{
    return index >= 0 && index < size() ? m_id[size_t(index)].m_seq : -1;
}

void ZBIdList::replace(int index, const ZBId& id)
{
    if (index >= 0 && index < size())
        m_id[size_t(index)] = id;
}

} // namespace Tervalon
