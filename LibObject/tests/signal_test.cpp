#include "LibCore/error/zberror.h"
#include "LibObject/object/zbconnectiondata.h"
#include "LibObject/object/zbobject.h"
#include "LibObject/object/zbsignal.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace Tervalon;

namespace {

class Signals : public Tervalon::Test::QuietErrors {};

const ZBSignalVoid S_Changed("changed");
const ZBSignalVoid S_Other("other");
const ZBSignalInt S_Count("count");
const ZBSignalObject S_Object("object");

std::vector<std::string> g_log;

// Records each call in a shared log under its name.
class Listener : public ZBObject {
public:
    explicit Listener(const std::string& name, int result = ZBErrC_ok) : m_name(name), m_result(result) {}
    int on_changed()
    {
        g_log.push_back(m_name);
        return m_result;
    }
    int on_count(int value)
    {
        g_log.push_back(m_name + ":" + std::to_string(value));
        return m_result;
    }
    int on_object(ZBObject* object)
    {
        m_object = object;
        g_log.push_back(m_name + ":object");
        return m_result;
    }
    // Deletes another listener while the emit goes on.
    int delete_victim()
    {
        g_log.push_back(m_name + ":delete");
        m_victim.reset();
        return ZBErrC_ok;
    }
    std::string m_name;
    int m_result;
    ZBObject* m_object = nullptr;
    std::unique_ptr<Listener> m_victim;
};

class SignalsLog : public Signals {
protected:
    void SetUp() override
    {
        Signals::SetUp();
        g_log.clear();
    }
};

} // namespace

TEST_F(SignalsLog, SlotsRunInTheOrderOfConnectionAndOnlyForTheirSignal)
{
    ZBObject sender;
    Listener a("a"), b("b"), c("c");
    b.connect_signal(&sender, S_Changed, &Listener::on_changed);
    a.connect_signal(&sender, S_Changed, &Listener::on_changed);
    c.connect_signal(&sender, S_Other, &Listener::on_changed);
    a.connect_signal(&sender, S_Count, &Listener::on_count);
    c.connect_signal(&sender, S_Changed, &Listener::on_changed);
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Changed));
    EXPECT_EQ((std::vector<std::string>{"b", "a", "c"}), g_log);
    g_log.clear();
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Count, 4));
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Object, &a));
    EXPECT_EQ((std::vector<std::string>{"a:4"}), g_log);
}

TEST_F(SignalsLog, TheObjectSignalHandsItsObjectOver)
{
    ZBObject sender;
    ZBObject payload;
    Listener a("a");
    a.connect_signal(&sender, S_Object, &Listener::on_object);
    sender.emit_signal(S_Object, &payload);
    EXPECT_EQ(&payload, a.m_object);
}

TEST_F(SignalsLog, AWarningStopsTheRestAndIsReturned)
{
    ZBObject sender;
    const int veto = ZBErrDetails::compute_combination(ZBErrC_InvalidValue, ZBErrSev_Warning);
    const int news = ZBErrDetails::compute_combination(ZBErrC_InvalidValue, ZBErrSev_Log);
    Listener a("a", news), b("b", veto), c("c");
    a.connect_signal(&sender, S_Changed, &Listener::on_changed);
    b.connect_signal(&sender, S_Changed, &Listener::on_changed);
    c.connect_signal(&sender, S_Changed, &Listener::on_changed);
    EXPECT_EQ(veto, sender.emit_signal(S_Changed));
    // News is not a veto: b still ran after a, and c never did.
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), g_log);
}

TEST_F(SignalsLog, ABlockedObjectEmitsNothingAndUnblockingDoesNotReplay)
{
    ZBObject sender;
    Listener a("a");
    a.connect_signal(&sender, S_Changed, &Listener::on_changed);
    sender.block_signals(true);
    EXPECT_TRUE(sender.signals_blocked());
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Changed));
    sender.block_signals(false);
    EXPECT_TRUE(g_log.empty());
    sender.emit_signal(S_Changed);
    EXPECT_EQ((std::vector<std::string>{"a"}), g_log);
}

TEST_F(SignalsLog, DeletingAReceiverBeforeItsSenderLeavesTheSenderEmittingSafely)
{
    ZBObject sender;
    Listener kept("kept");
    {
        Listener gone("gone");
        gone.connect_signal(&sender, S_Changed, &Listener::on_changed);
        kept.connect_signal(&sender, S_Changed, &Listener::on_changed);
    }
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Changed));
    EXPECT_EQ((std::vector<std::string>{"kept"}), g_log);
    ASSERT_NE(nullptr, sender.get_connection_data());
    EXPECT_EQ(1u, sender.get_connection_data()->get_connections().size());
}

TEST_F(SignalsLog, DeletingASenderLeavesNoPointerInItsReceivers)
{
    Listener receiver("r");
    {
        ZBObject sender;
        receiver.connect_signal(&sender, S_Changed, &Listener::on_changed);
        ASSERT_EQ(1u, receiver.get_connection_data()->get_senders().size());
    }
    EXPECT_TRUE(receiver.get_connection_data()->get_senders().empty());
}

TEST_F(SignalsLog, AReceiverDeletedByAnEarlierSlotIsNotCalled)
{
    ZBObject sender;
    Listener killer("killer");
    killer.m_victim.reset(new Listener("victim"));
    killer.connect_signal(&sender, S_Changed, &Listener::delete_victim);
    killer.m_victim->connect_signal(&sender, S_Changed, &Listener::on_changed);
    EXPECT_EQ(ZBErrC_ok, sender.emit_signal(S_Changed));
    EXPECT_EQ((std::vector<std::string>{"killer:delete"}), g_log);
}

TEST_F(SignalsLog, RemoveConnectionsForgetsThePeerBothWays)
{
    ZBObject sender;
    Listener a("a"), b("b");
    a.connect_signal(&sender, S_Changed, &Listener::on_changed);
    a.connect_signal(&sender, S_Count, &Listener::on_count);
    b.connect_signal(&sender, S_Changed, &Listener::on_changed);
    sender.remove_connections(&a);
    a.remove_connections(&sender);
    sender.emit_signal(S_Changed);
    sender.emit_signal(S_Count, 1);
    EXPECT_EQ((std::vector<std::string>{"b"}), g_log);
    EXPECT_TRUE(a.get_connection_data()->get_senders().empty());
}

TEST_F(SignalsLog, AConnectionMadeTwiceRunsOnceAndANullSenderConnectsNothing)
{
    ZBObject sender;
    Listener a("a");
    EXPECT_EQ(ZBErrC_ok, a.connect_signal(&sender, S_Changed, &Listener::on_changed));
    EXPECT_EQ(ZBErrC_ok, a.connect_signal(&sender, S_Changed, &Listener::on_changed));
    EXPECT_EQ(ZBErrC_ok, a.connect_signal(nullptr, S_Changed, &Listener::on_changed));
    sender.emit_signal(S_Changed);
    EXPECT_EQ((std::vector<std::string>{"a"}), g_log);
}

TEST_F(SignalsLog, CopiesAndAssignmentsKeepTheirOwnConnections)
{
    ZBObject sender;
    Listener a("a"), b("b");
    a.connect_signal(&sender, S_Changed, &Listener::on_changed);
    {
        ZBObject copy(sender);
        EXPECT_EQ(nullptr, copy.get_connection_data());
        EXPECT_EQ(ZBErrC_ok, copy.emit_signal(S_Changed));
        ZBObject other;
        b.connect_signal(&other, S_Changed, &Listener::on_changed);
        other = sender;
        other.emit_signal(S_Changed);
        EXPECT_EQ((std::vector<std::string>{"b"}), g_log);
    }
    // The copies are gone; the original still reaches a, and b has no dangling sender.
    g_log.clear();
    sender.emit_signal(S_Changed);
    EXPECT_EQ((std::vector<std::string>{"a"}), g_log);
    EXPECT_TRUE(b.get_connection_data()->get_senders().empty());
}

TEST_F(SignalsLog, AnObjectMayListenToItself)
{
    Listener self("self");
    self.connect_signal(&self, S_Changed, &Listener::on_changed);
    self.emit_signal(S_Changed);
    EXPECT_EQ((std::vector<std::string>{"self"}), g_log);
}
