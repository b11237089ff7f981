#include "LibGui/base/zbnotifylist.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "LibDatabase/db/zbdbchecker.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    EXPECT_TRUE(date.from_string(text)) << text;
    return date;
}

ZBNotifyItem item(int scheme, const std::string& text, int id, double priority = 100.0,
                  const ZBDate& date = ZBDate(ZBDate::E_Blank))
{
    return ZBNotifyItem(scheme, priority, text, id, date);
}

// Each test gets its own parameter store, and a clock it sets.
class NotifyList : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_config = Tervalon::Test::make_temp_dir("notify_list") + "/test.cfg";
        ZBParam* param = new ZBParam();
        set_zbparam(param);
        param->add_config_file(m_config);
        get_zberror().clear_all();
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    // One round with the items given; returns the new ones' texts.
    std::vector<std::string> round(ZBNotifyList& list, const std::vector<ZBNotifyItem>& items)
    {
        list.reset();
        for (const ZBNotifyItem& i : items)
            list.add(i);
        std::vector<std::string> texts;
        for (const ZBNotifyItem& i : list.pop_new())
            texts.push_back(i.get_text());
        return texts;
    }
    static std::vector<std::string> texts(const std::vector<ZBNotifyItem>& items)
    {
        std::vector<std::string> out;
        for (const ZBNotifyItem& i : items)
            out.push_back(i.get_text());
        return out;
    }
    std::string m_config;
};

} // namespace

TEST_F(NotifyList, OnlyTheFirstHundredCheckFindingsBecomeSystemItems)
{
    ZBDBChecker checker;
    for (int id = 1; id <= 150; ++id)
        checker.record_error(id, 7, "This entry has the following unfilled variables: Cost.", "Unfilled variables");
    ZBNotifyList list;
    list.initialise();
    list.reset();
    list.add_check_items(checker);
    ASSERT_EQ(list.get_items().size(), 100u);
    for (const ZBNotifyItem& i : list.get_items()) {
        EXPECT_EQ(i.get_scheme(), ZBNotifyList::C_NotifySystem);
        EXPECT_EQ(i.get_priority(), 300.0);
        EXPECT_EQ(i.get_text(), "Unfilled variables");
    }
    EXPECT_EQ(list.get_items().front().get_object_id(), 1);
    EXPECT_EQ(list.get_items().back().get_object_id(), 100);
}

TEST_F(NotifyList, AnItemIsNewInItsFirstRoundAndRemovedInTheRoundItGoes)
{
    ZBNotifyList list;
    const ZBNotifyItem a = item(900, "OVERDUE: Tax return", 1);
    const ZBNotifyItem b = item(600, "Urgent: Call the bank", 2);
    EXPECT_EQ(round(list, {a, b}), (std::vector<std::string>{"OVERDUE: Tax return", "Urgent: Call the bank"}));
    EXPECT_TRUE(list.pop_removed().empty());
    // Same message, other object: a different finding.
    const ZBNotifyItem a2 = item(900, "OVERDUE: Tax return", 3);
    EXPECT_EQ(round(list, {a, a2}), (std::vector<std::string>{"OVERDUE: Tax return"}));
    EXPECT_EQ(texts(list.pop_removed()), (std::vector<std::string>{"Urgent: Call the bank"}));
    EXPECT_TRUE(round(list, {a, a2}).empty());
    EXPECT_TRUE(list.pop_removed().empty());
    // Gone for a round, then back: new again.
    EXPECT_TRUE(round(list, {a2}).empty());
    EXPECT_EQ(list.pop_removed().size(), 1u);
    EXPECT_EQ(round(list, {a, a2}).size(), 1u);
}

TEST_F(NotifyList, DismissLastsUntilMidnight)
{
    ZBDateUtils::set_fixed_now(at("23-Nov-2026 23:59"));
    ZBNotifyList list;
    const ZBNotifyItem a = item(900, "OVERDUE: Tax return", 1);
    round(list, {a});
    list.dismiss_today(a);
    EXPECT_TRUE(list.get_items().empty());
    EXPECT_EQ(list.pop_removed().size(), 1u);
    ZBDateUtils::set_fixed_now(at("23-Nov-2026 23:59:59"));
    round(list, {a});
    EXPECT_TRUE(list.get_items().empty());
    ZBDateUtils::set_fixed_now(at("24-Nov-2026 00:00"));
    EXPECT_EQ(round(list, {a}).size(), 1u);
    EXPECT_EQ(list.get_items().size(), 1u);
}

TEST_F(NotifyList, SnoozeLastsAnHourAndOnlyHidesThatItem)
{
    const ZBDate start = at("23-Nov-2026 10:00");
    ZBDateUtils::set_fixed_now(start);
    ZBNotifyList list;
    const ZBNotifyItem a = item(900, "OVERDUE: Tax return", 1);
    const ZBNotifyItem b = item(900, "OVERDUE: Tax return", 2);
    round(list, {a, b});
    list.snooze_hour(a);
    ASSERT_EQ(list.get_items().size(), 1u);
    EXPECT_EQ(list.get_items()[0].get_object_id(), 2);
    ZBDateUtils::set_fixed_now(start + ZBDuration(3599));
    round(list, {a, b});
    EXPECT_EQ(list.get_items().size(), 1u);
    ZBDateUtils::set_fixed_now(start + ZBDuration(3600));
    round(list, {a, b});
    EXPECT_EQ(list.get_items().size(), 2u);
}

TEST_F(NotifyList, TheLadderStepsDownToWhatTheSchemeCanDo)
{
    struct Row {
        bool prompt, popup, badge, list;
        int asked, expected;
    };
    const Row rows[] = {
        {true, true, true, true, 100, 100},   {false, true, true, true, 100, 80},
        {false, false, true, true, 100, 60},  {false, false, false, true, 100, 40},
        {false, false, false, false, 100, 20}, {true, false, true, true, 80, 60},
        {true, true, false, true, 60, 40},    {true, true, true, false, 40, 20},
        {true, true, false, false, 60, 20},   {true, true, true, true, 90, 80},
        {true, true, true, true, 55, 40},     {true, true, true, true, 5, 20},
        {true, true, true, true, 500, 100},
    };
    for (const Row& r : rows) {
        ZBNotifyScheme scheme(300, "Late tasks", 20, std::string(), r.list);
        scheme.set_capabilities(r.prompt, r.popup, r.badge);
        scheme.set_response(r.asked);
        EXPECT_EQ(scheme.get_response(), r.expected)
            << r.prompt << r.popup << r.badge << r.list << " asked " << r.asked;
        // What is offered is what can be chosen.
        bool offered = false;
        for (const auto& choice : scheme.get_responses())
            offered = offered || choice.first == r.expected;
        EXPECT_TRUE(offered);
    }
}

TEST_F(NotifyList, ResponsesOfferedInLadderOrderWithTheirTexts)
{
    ZBNotifyScheme scheme(300, "Late tasks", 40);
    scheme.set_capabilities(true, false, true);
    const std::vector<std::pair<int, std::string>> expected = {{100, "Show an alert dialog"},
                                                               {60, "Set the badge icon number"},
                                                               {40, "Show in the notification list"},
                                                               {20, "Don't show a warning"}};
    EXPECT_EQ(scheme.get_responses(), expected);
    ZBNotifyScheme alert(300, "Late tasks", 100);
    EXPECT_TRUE(alert.get_prompt());
    EXPECT_FALSE(alert.get_popup());
    EXPECT_TRUE(alert.get_badge());
    EXPECT_TRUE(alert.get_list());
}

TEST_F(NotifyList, ChoicesAreSavedAndAStoredAlertBecomesWhatTheSchemeCanDo)
{
    EXPECT_EQ(ZBNotifyScheme(300, "Late tasks, overdue", 40).scheme_name(), "NotifyLateTasksOverdue");
    zbparam().set_system_value("NotifyLateTasks", 100);
    ZBNotifyList list;
    list.set_capabilities(false, true, true);
    list.add_scheme(new ZBNotifyScheme(300, "Late tasks", 40));
    EXPECT_EQ(list.get_scheme_id(300)->get_response(), 80);
    list.set_usetray(false);
    ASSERT_FALSE(iszbwarn(list.write_settings()));
    EXPECT_EQ(zbparam().get_system_value("NotifyLateTasks", 0), 80);
    EXPECT_NE(Tervalon::Test::read_file(m_config).find("UseSystemTray=0"), std::string::npos);

    // A new window reads them back.
    ZBNotifyList again;
    again.add_scheme(new ZBNotifyScheme(300, "Late tasks", 40));
    again.read_settings();
    EXPECT_EQ(again.get_scheme_id(300)->get_response(), 80);
    EXPECT_FALSE(again.get_usetray());
}

TEST_F(NotifyList, ASchemeSetToNothingIsNeitherListedNorCounted)
{
    ZBNotifyList list;
    list.add_scheme(new ZBNotifyScheme(300, "Late tasks", 20));
    list.add_scheme(new ZBNotifyScheme(600, "Urgent", 60));
    list.add_scheme(new ZBNotifyScheme(200, "Over spend", 40));
    round(list, {item(300, "Late: A", 1), item(600, "Urgent: B", 2, 50.0), item(200, "Over: C", 3),
                 item(600, "Urgent: D", 4, 90.0)});
    EXPECT_EQ(list.get_items().size(), 4u);
    // Highest scheme first, then the higher priority.
    EXPECT_EQ(texts(list.get_list_items()), (std::vector<std::string>{"Urgent: D", "Urgent: B", "Over: C"}));
    EXPECT_EQ(list.get_badge_count(), 2);
}

TEST_F(NotifyList, OnlyASchemeThatInterruptsOrCountsKeepsAReminderForLater)
{
    ZBDateUtils::set_fixed_now(at("23-Nov-2026 10:00"));
    ZBNotifyList list;
    list.add_scheme(new ZBNotifyScheme(300, "Starts soon", 80));
    list.add_scheme(new ZBNotifyScheme(200, "Quiet", 40));
    list.reset();
    list.add(item(200, "Quiet: earliest", 1, 10.0, at("23-Nov-2026 11:00")));
    list.add(item(300, "Soon: later", 2, 10.0, at("23-Nov-2026 14:00")));
    list.add(item(300, "Soon: sooner", 3, 10.0, at("23-Nov-2026 12:00")));
    list.add(item(300, "Soon: latest", 4, 10.0, at("23-Nov-2026 16:00")));
    ASSERT_NE(list.get_scheduled(), nullptr);
    EXPECT_EQ(list.get_scheduled()->get_text(), "Soon: sooner");
    // Items for later are not current ones.
    EXPECT_TRUE(list.get_items().empty());
    EXPECT_TRUE(list.pop_new().empty());
    list.reset();
    EXPECT_EQ(list.get_scheduled(), nullptr);
}

TEST_F(NotifyList, TheStateNamesTheHighestSchemeAndCountsTheRest)
{
    ZBNotifyList list;
    std::string text = "stale";
    EXPECT_EQ(list.get_notify_state(text), -1);
    EXPECT_EQ(text, "");
    round(list, {item(200, "Over: C", 3)});
    EXPECT_EQ(list.get_notify_state(text), 200);
    EXPECT_EQ(text, "Over: C");
    round(list, {item(200, "Over: C", 3), item(900, "OVERDUE: A", 1), item(600, "Urgent: B", 2)});
    EXPECT_EQ(list.get_notify_state(text), 900);
    EXPECT_EQ(text, "Over: C\nAnd 2 more warnings.");
}
