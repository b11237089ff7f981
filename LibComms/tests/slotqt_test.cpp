#include "LibComms/thread/zbslotqt.h"
#include "LibCore/error/zberror.h"
#include "LibObject/object/zbobject.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QObject>
#include <QTimer>

#include <vector>

using namespace Tervalon;

namespace {

class SlotBridge : public Tervalon::Test::QuietErrors {};

class Listener : public ZBObject {
public:
    int on_tick()
    {
        m_seen.push_back(-1);
        return m_result;
    }
    int on_value(int value)
    {
        m_seen.push_back(value);
        return m_result;
    }
    std::vector<int> m_seen;
    int m_result = ZBErrC_ok;
};

// Emits Qt signals of both shapes on demand.
class Source : public QObject {
    Q_OBJECT
public:
    void fire(int value)
    {
        emit ticked();
        emit valued(value);
    }
signals:
    void ticked();
    void valued(int value);
};

} // namespace

TEST_F(SlotBridge, QtSignalsReachTheModelSlot)
{
    Listener listener;
    Source source;
    ZBSlotQt voidSlot(&listener, static_cast<ZBConnection::VoidSlot>(&Listener::on_tick), &source);
    ZBSlotQt intSlot(&listener, static_cast<ZBConnection::IntSlot>(&Listener::on_value));
    QObject::connect(&source, &Source::ticked, &voidSlot, &ZBSlotQt::forward);
    QObject::connect(&source, &Source::valued, &intSlot, &ZBSlotQt::forward_int);
    // A signal without a value reaches an int slot with 0.
    QObject::connect(&source, &Source::ticked, &intSlot, &ZBSlotQt::forward);
    source.fire(7);
    EXPECT_EQ((std::vector<int>{-1, 0, 7}), listener.m_seen);
}

TEST_F(SlotBridge, AFailingSlotIsHandledAndItsResultKept)
{
    Listener listener;
    Source source;
    ZBSlotQt slot(&listener, static_cast<ZBConnection::IntSlot>(&Listener::on_value));
    QObject::connect(&source, &Source::valued, &slot, &ZBSlotQt::forward_int);
    listener.m_result = zbwarning(ZBErrC_InvalidValue, ZBLOC, "Refused.");
    source.fire(3);
    EXPECT_TRUE(iszbwarn(slot.get_last_result()));
    // Handled where the Qt call ends: nothing is left for the next action.
    EXPECT_EQ(nullptr, get_zberror().top());
}

#include "slotqt_test.moc"
