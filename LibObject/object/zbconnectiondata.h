#pragma once

#include "LibObject/object/zbconnection.h"

#include <vector>

namespace Tervalon {

// The signal state of one object, made the first time the object sends,
// receives or blocks: most objects never do, and pay one null pointer for it.
// Its owner keeps it for life and it goes with the owner; a copy of an object
// never shares or copies it.
class ZBConnectionData {
public:
    explicit ZBConnectionData(ZBObject* owner) : m_owner(owner) {}
    ZBConnectionData(const ZBConnectionData&) = delete;
    ZBConnectionData& operator=(const ZBConnectionData&) = delete;

    ZBObject* get_owner() const { return m_owner; }

    // Outgoing connections, in the order they were made.
    const std::vector<ZBConnection>& get_connections() const { return m_connections; }
    void add_connection(const ZBConnection& connection) { m_connections.push_back(connection); }
    bool has_connection(const ZBConnection& connection) const;
    // Removes every outgoing connection to receiver.
    void remove_receiver(const ZBObject* receiver);

    // The objects that have connections to the owner.
    const std::vector<ZBObject*>& get_senders() const { return m_senders; }
    // A sender is listed once however many of its signals reach the owner.
    void add_sender(ZBObject* sender);
    void remove_sender(const ZBObject* sender);

    bool get_block_signals() const { return m_blockSignals; }
    void set_block_signals(bool block) { m_blockSignals = block; }

    // Every other object that holds a pointer to the owner: its senders and
    // the receivers of its connections, each once.
    std::vector<ZBObject*> get_peers() const;

private:
    ZBObject* m_owner;
    std::vector<ZBConnection> m_connections;
    std::vector<ZBObject*> m_senders;
    bool m_blockSignals = false;
};

} // namespace Tervalon
