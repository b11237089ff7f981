#pragma once

#include "LibObject/object/zbsignal.h"

namespace Tervalon {

class ZBObject;

// One link from a sender's signal to a slot of a receiver. The sender keeps
// its outgoing connections; the receiver is not owned. Exactly one of the
// three slots is set, the one that matches the signal's shape.
class ZBConnection {
public:
    typedef int (ZBObject::*VoidSlot)();
    typedef int (ZBObject::*IntSlot)(int);
    typedef int (ZBObject::*ObjectSlot)(ZBObject*);

    ZBConnection(ZBObject* receiver, const ZBSignalVoid& signal, VoidSlot slot);
    ZBConnection(ZBObject* receiver, const ZBSignalInt& signal, IntSlot slot);
    ZBConnection(ZBObject* receiver, const ZBSignalObject& signal, ObjectSlot slot);

    ZBObject* get_receiver() const { return m_receiver; }
    const ZBSignal* get_signal() const { return m_signal; }
    VoidSlot get_void_slot() const { return m_voidSlot; }
    IntSlot get_int_slot() const { return m_intSlot; }
    ObjectSlot get_object_slot() const { return m_objectSlot; }

    // Same receiver, signal and slot.
    bool same_as(const ZBConnection& other) const;

private:
    ZBObject* m_receiver;
    const ZBSignal* m_signal;
    VoidSlot m_voidSlot = nullptr;
    IntSlot m_intSlot = nullptr;
    ObjectSlot m_objectSlot = nullptr;
};

} // namespace Tervalon
