#include "LibComms/thread/zbslotqt.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

ZBSlotQt::ZBSlotQt(ZBObject* receiver, ZBConnection::VoidSlot slot, QObject* parent)
    : QObject(parent), m_receiver(receiver), m_voidSlot(slot), m_lastResult(ZBErrC_ok)
{
}

ZBSlotQt::ZBSlotQt(ZBObject* receiver, ZBConnection::IntSlot slot, QObject* parent)
    : QObject(parent), m_receiver(receiver), m_intSlot(slot), m_lastResult(ZBErrC_ok)
{
}

// A Qt signal without an int reaches an int slot with 0.
void ZBSlotQt::forward()
{
    if (!m_receiver)
        return;
    finish(m_voidSlot ? (m_receiver->*m_voidSlot)() : (m_receiver->*m_intSlot)(0));
}

// A void slot ignores the value.
void ZBSlotQt::forward_int(int value)
{
    if (!m_receiver)
        return;
    finish(m_intSlot ? (m_receiver->*m_intSlot)(value) : (m_receiver->*m_voidSlot)());
}

void ZBSlotQt::finish(int result)
{
    m_lastResult = result;
    if (iszbwarn(result))
        zbhandle_error(result, 2);
}

} // namespace Tervalon
