#pragma once

#include "LibObject/object/zbconnection.h"

#include <QObject>

namespace Tervalon {

// Lets a Qt signal reach a model object's slot, for a window that listens to
// something of Qt's (a timer, a button) on behalf of a model object that is
// not a QObject. Connect the Qt signal to forward() (or forward_int() for a
// signal that carries an int). It is a child of the window that makes it, and
// the receiver must outlive it. The slot's failure ends there, as at the top
// of any user action.
class ZBSlotQt : public QObject {
    Q_OBJECT
public:
    ZBSlotQt(ZBObject* receiver, ZBConnection::VoidSlot slot, QObject* parent = nullptr);
    ZBSlotQt(ZBObject* receiver, ZBConnection::IntSlot slot, QObject* parent = nullptr);

    // The result of the last call, for the window that wants to look.
    int get_last_result() const { return m_lastResult; }

public slots:
    void forward();
    void forward_int(int value);

private:
    void finish(int result);

    ZBObject* m_receiver;
    ZBConnection::VoidSlot m_voidSlot = nullptr;
    ZBConnection::IntSlot m_intSlot = nullptr;
    int m_lastResult;
};

} // namespace Tervalon
