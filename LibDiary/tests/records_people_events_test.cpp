#include "records_fixture.h"

#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdgroup.h"
#include "LibDiary/diary/zbdjournal.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDiary/diary/zbpersonmgr.h"

using namespace Tervalon;
using Tervalon::RecordsTest::kNow;
using Tervalon::RecordsTest::RecordsFixture;

namespace {

using RecordsPeople = RecordsFixture;
using RecordsEvents = RecordsFixture;

TEST(RecordsPersonName, FirstNameSurnameOrBoth)
{
    const struct {
        const char* first;
        const char* last;
        const char* name;
    } rows[] = {{"Ann", "Lee", "Ann Lee"}, {"", "Lee", "Lee"}, {"Ann", "", "Ann"}, {"", "", ""}};
    for (const auto& row : rows) {
        ZBDPerson person;
        person.set_firstname(row.first);
        person.set_surname(row.last);
        EXPECT_EQ(person.get_name(), row.name) << row.first << "|" << row.last;
        EXPECT_EQ(person.get_summary(), row.name);
    }
}

TEST_F(RecordsPeople, ContactUrlFillsEverySubstitute)
{
    ZBDPerson* ann = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(ann, "Ann", "Lee")));
    ann->set_email("ann@example.org");
    diary.person().set_contacturl("x:$<FirstName>|$<LastName>|$<FullName>|$<Email>|$<Details>");
    std::string url;
    ASSERT_FALSE(iszbwarn(diary.person().fill_contact_url(*ann, "", url)));
    EXPECT_EQ(url, "x:Ann|Lee|Ann Lee|ann@example.org|");
    ann->set_contacturl("mailto:$<Email>?subject=$<Details>");
    ASSERT_FALSE(iszbwarn(diary.person().fill_contact_url(*ann, "Birthday", url)));
    EXPECT_EQ(url, "mailto:ann@example.org?subject=Birthday");
    EXPECT_EQ(ZBDPerson::url_guide().substr(0, 40), "A URL that can be opened to contact a pe");
}

TEST_F(RecordsPeople, PeopleInUseAreNotDeleted)
{
    ZBDPerson* ann = nullptr;
    ZBDPerson* bob = nullptr;
    ZBDGroup* choir = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(ann, "Ann", "Lee")));
    ASSERT_FALSE(iszbwarn(diary.person().add_person(bob, "Bob", "")));
    ASSERT_FALSE(iszbwarn(diary.person().add_group(choir, "Choir")));
    choir->set_email({ann->get_id()});
    bob->add_group(choir->get_id());
    ZBDEntry* task = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(task, &diary, "Object", "", -1, "")));
    task->set_person(ann->get_id());

    EXPECT_EQ(diary.person().get_npeople(), 2);
    EXPECT_EQ(diary.person().person_use_count(ann->get_id()), 2);
    EXPECT_EQ(diary.person().get_person_name(true), (std::vector<std::string>{"Ann Lee (2)", "Bob (0)"}));
    EXPECT_EQ(diary.person().person_name_for_id(bob->get_id()), "Bob");
    EXPECT_EQ(diary.person().person_name_for_id(task->get_id()), "");

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(diary.person().delete_person(*ann)));
    EXPECT_NE(last_error().find("Person is in use."), std::string::npos) << last_error();
    EXPECT_FALSE(ann->is_deleted());
    EXPECT_EQ(diary.person().get_npeople(), 2);

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(diary.person().delete_group(*choir)));
    EXPECT_NE(last_error().find("Group is in use."), std::string::npos) << last_error();
    EXPECT_FALSE(choir->is_deleted());

    ASSERT_FALSE(iszbwarn(diary.person().delete_person(*bob)));
    EXPECT_EQ(diary.person().get_npeople(), 1);
    EXPECT_EQ(diary.person().get_person_no(0), ann);
    ASSERT_FALSE(iszbwarn(diary.person().delete_group(*choir)));
    EXPECT_EQ(diary.person().get_ngroups(), 0);
}

TEST_F(RecordsEvents, TodayNowPassedAndAcknowledged)
{
    ZBDEvent* later = nullptr;
    ZBDEvent* started = nullptr;
    ZBDEvent* seen = nullptr;
    ZBDEvent* old = nullptr;
    for (ZBDEvent** event : {&later, &started, &seen, &old})
        ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, *event)));
    later->set_summary("Concert");
    later->set_time(ZBDateSlot(kNow + ZBDuration(3600 * 6), kNow + ZBDuration(3600 * 8)));
    started->set_summary("Meeting");
    started->set_time(ZBDateSlot(kNow - ZBDuration(600), kNow + ZBDuration(600)));
    seen->set_summary("Seen");
    seen->set_time(ZBDateSlot(kNow - ZBDuration(3600), kNow - ZBDuration(1800)));
    seen->acknowledge();
    old->set_summary("Old");
    old->set_time(ZBDateSlot(kNow - ZBDuration(20 * 86400), kNow - ZBDuration(20 * 86400 - 60)));

    EXPECT_FALSE(later->has_passed());
    EXPECT_TRUE(seen->has_passed());
    EXPECT_TRUE(seen->is_acknowleged());

    std::vector<ZBNotifyItem> items;
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(items[0].get_text(), "Event Now: Meeting");
    EXPECT_EQ(items[0].get_scheme(), ZBDiary::C_NotifyEventNow);
    EXPECT_EQ(items[0].get_priority(), 200);
    EXPECT_EQ(items[1].get_text(), "Event Today: Concert");
    EXPECT_EQ(items[1].get_scheme(), ZBDiary::C_NotifyEventToday);
    EXPECT_EQ(items[1].get_priority(), 50);
}

TEST_F(RecordsEvents, ARepeatingEventIsAcknowledgedPerInstance)
{
    ZBDEvent* daily = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, daily)));
    daily->set_summary("Walk");
    const ZBDate first = kNow - ZBDuration(3 * 86400) - ZBDuration(3600);
    daily->set_time(ZBDateSlot(first, first + ZBDuration(1800)));
    daily->edit_repeat().set_type(ZBDateRepeat::E_Days);
    daily->edit_repeat().set_interval(1);

    EXPECT_EQ(daily->get_instance(kNow).m_start, kNow - ZBDuration(3600));
    EXPECT_FALSE(daily->is_acknowleged());
    std::vector<ZBNotifyItem> items;
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].get_text(), "Event Now: Walk");
    EXPECT_EQ(items[0].get_date(), kNow - ZBDuration(3600));

    daily->mark_complete(kNow);
    EXPECT_TRUE(daily->is_acknowleged());
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    EXPECT_TRUE(items.empty());

    // Tomorrow's instance is a new one.
    ZBDateUtils::set_fixed_now(kNow + ZBDuration(86400));
    EXPECT_FALSE(daily->is_acknowleged());
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].get_date(), kNow + ZBDuration(86400 - 3600));
}

TEST_F(RecordsEvents, SequenceMakesPlainEventsOfTheNextInstances)
{
    ZBDEvent* weekly = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, weekly)));
    weekly->set_summary("Class");
    weekly->set_time(ZBDateSlot(kNow, kNow + ZBDuration(3600)));
    weekly->edit_repeat().set_type(ZBDateRepeat::E_Weeks);
    ASSERT_FALSE(iszbwarn(diary.generate_sequence(*weekly, 3, true, false, false)));
    std::vector<ZBDEvent*> events = diary.eventE().get_events(ZBDateSlot(kNow + ZBDuration(60), kNow + ZBDuration(30 * 86400)));
    // The weekly original meets the range through its instances; the copies are plain.
    int plain = 0;
    for (const ZBDEvent* event : events)
        if (!event->is_repeating()) {
            ++plain;
            EXPECT_EQ(event->get_summary(), "Class");
            EXPECT_EQ((event->get_time().m_start - kNow).get_days() % 7, 0);
        }
    EXPECT_EQ(plain, 3);
    ZBDJournal journal;
    EXPECT_EQ(diary.generate_sequence(journal, 3, true, false, false), ZBErrC_okNotHandled);
}

TEST_F(RecordsEvents, AnEventBecomesAJournalNote)
{
    ZBDPerson* ann = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(ann, "Ann", "Lee")));
    ZBDEvent* event = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(ann, event)));
    event->set_summary("Lunch");
    event->set_text("At the cafe");
    event->set_time(ZBDateSlot(kNow - ZBDuration(7200), kNow - ZBDuration(3600)));
    const int id = event->get_id();
    ZBDEntry* tagger = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(tagger, &diary, "Object", "", -1, "")));
    ASSERT_FALSE(iszbwarn(tagger->add_tag(diary, id)));

    ASSERT_FALSE(iszbwarn(diary.journal().event_to_journal(id)));
    EXPECT_EQ(diary.eventE().get_event_id(id)->is_deleted(), true);
    ASSERT_EQ(tagger->get_tags().size(), 1u);
    const ZBDJournal* note = diary.journal().get_journal_id(tagger->get_tags()[0]);
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->get_summary(), "Lunch");
    EXPECT_EQ(note->get_text(), "At the cafe");
    EXPECT_EQ(note->get_date(), kNow - ZBDuration(7200));
    EXPECT_EQ(note->get_parent_id(), ann->get_id());
    EXPECT_EQ(note->get_obj_container_tag(), ZBDiary::C_JournalTag);

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(diary.journal().event_to_journal(ann->get_id())));
    EXPECT_NE(last_error().find("Assertion Failed: "), std::string::npos) << last_error();
    EXPECT_NE(last_error().find("event != nullptr"), std::string::npos) << last_error();
}

TEST(RecordsJournal, CombinedTextJoinsDateAndDetails)
{
    ZBDJournal note;
    EXPECT_EQ(note.get_combined(), "");
    note.set_text("Quiet day.");
    EXPECT_EQ(note.get_combined(), "Quiet day.");
    note.set_date(kNow);
    EXPECT_EQ(note.get_combined(), kNow.to_string() + " Quiet day.");
    note.set_text("");
    EXPECT_EQ(note.get_combined(), kNow.to_string());
    EXPECT_EQ(note.get_entrytype(), 'J');
}

} // namespace
