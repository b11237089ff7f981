#include "LibObject/object/zbconnection.h"

namespace Tervalon {

ZBConnection::ZBConnection(ZBObject* receiver, const ZBSignalVoid& signal, VoidSlot slot)
    : m_receiver(receiver), m_signal(&signal), m_voidSlot(slot)
{
}

ZBConnection::ZBConnection(ZBObject* receiver, const ZBSignalInt& signal, IntSlot slot)
    : m_receiver(receiver), m_signal(&signal), m_intSlot(slot)
{
}

ZBConnection::ZBConnection(ZBObject* receiver, const ZBSignalObject& signal, ObjectSlot slot)
    : m_receiver(receiver), m_signal(&signal), m_objectSlot(slot)
{
}

bool ZBConnection::same_as(const ZBConnection& other) const
{
    return m_receiver == other.m_receiver && m_signal == other.m_signal && m_voidSlot == other.m_voidSlot
        && m_intSlot == other.m_intSlot && m_objectSlot == other.m_objectSlot;
}

} // namespace Tervalon
