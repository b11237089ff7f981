#include "LibObject/object/zbconnectiondata.h"

#include <algorithm>

namespace Tervalon {

bool ZBConnectionData::has_connection(const ZBConnection& connection) const
{
    for (const ZBConnection& mine : m_connections)
        if (mine.same_as(connection))
            return true;
    return false;
}

void ZBConnectionData::remove_receiver(const ZBObject* receiver)
{
    m_connections.erase(std::remove_if(m_connections.begin(), m_connections.end(),
                                       [receiver](const ZBConnection& c) { return c.get_receiver() == receiver; }),
                        m_connections.end());
}

void ZBConnectionData::add_sender(ZBObject* sender)
{
    if (std::find(m_senders.begin(), m_senders.end(), sender) == m_senders.end())
        m_senders.push_back(sender);
}

void ZBConnectionData::remove_sender(const ZBObject* sender)
{
    m_senders.erase(std::remove(m_senders.begin(), m_senders.end(), sender), m_senders.end());
}

std::vector<ZBObject*> ZBConnectionData::get_peers() const
{
    std::vector<ZBObject*> peers = m_senders;
    for (const ZBConnection& connection : m_connections)
        if (std::find(peers.begin(), peers.end(), connection.get_receiver()) == peers.end())
            peers.push_back(connection.get_receiver());
    return peers;
}

} // namespace Tervalon
