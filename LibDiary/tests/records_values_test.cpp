#include "records_fixture.h"

#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdgroup.h"
#include "LibDiary/diary/zbdjournal.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDiary/diary/zbpersonmgr.h"
#include "LibDatabase/db/zbobjectspec.h"

using namespace Tervalon;
using Tervalon::RecordsTest::kNow;
using Tervalon::RecordsTest::RecordsFixture;

namespace {

using RecordsValues = RecordsFixture;

// A date written through its system value reads back as the same moment, and
// writing back what was read changes nothing.
TEST_F(RecordsValues, DateValuesRoundTrip)
{
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    for (const char* tag : {"Start_Time", "End_Time", "Start_After", "Due_Date"}) {
        ASSERT_FALSE(iszbwarn(entry->set_sysvalue(tag, "9-Mar-2026 14:00"))) << tag;
        const std::string text = entry->get_sysvalue(tag);
        EXPECT_FALSE(text.empty()) << tag;
        ZBDate read;
        ASSERT_TRUE(read.from_string(text)) << tag << ": " << text;
        ZBDate expected;
        ASSERT_TRUE(expected.from_string("9-Mar-2026 14:00"));
        EXPECT_EQ(read, expected) << tag << ": " << text;
        ASSERT_FALSE(iszbwarn(entry->set_sysvalue(tag, text))) << tag;
        EXPECT_EQ(entry->get_sysvalue(tag), text) << tag;
    }
    EXPECT_EQ(entry->get_due(), entry->get_start());
}

// Bad text is refused with the field's name, and the entry keeps every value.
TEST_F(RecordsValues, BadTextIsRefusedAndNothingChanges)
{
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Start_Time", "9-Mar-2026 09:00")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("End_Time", "9-Mar-2026 10:00")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Start_After", "8-Mar-2026")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Due_Date", "10-Mar-2026")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Priority", "4")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Complete", "40%")));

    struct Row {
        const char* tag;
        const char* text;
        const char* message;
    };
    const Row rows[] = {
        {"Start_Time", "yesterweek", "Start_Time: Invalid date value: yesterweek"},
        {"End_Time", "9-Smarch-2026", "End_Time: Invalid date value: 9-Smarch-2026"},
        {"Start_After", "soon", "Start_After: Invalid date value: soon"},
        {"Due_Date", "the day after never", "Due_Date: Invalid date value: the day after never"},
        {"Priority", "high", "Priority"},
        {"Priority", "3 or so", "Priority"},
        {"Priority", "", "Priority"},
        {"Complete", "most of it", "Complete"},
        {"Complete", "50 %x", "Complete"},
    };
    std::vector<std::string> before;
    for (const char* tag : {"Start_Time", "End_Time", "Start_After", "Due_Date", "Priority", "Complete", "Duration"})
        before.push_back(entry->get_sysvalue(tag));
    for (const Row& row : rows) {
        get_zberror().clear_all();
        EXPECT_TRUE(iszbwarn(entry->set_sysvalue(row.tag, row.text))) << row.tag << " " << row.text;
        EXPECT_NE(last_error().find(row.message), std::string::npos) << last_error();
        std::vector<std::string> after;
        for (const char* tag : {"Start_Time", "End_Time", "Start_After", "Due_Date", "Priority", "Complete", "Duration"})
            after.push_back(entry->get_sysvalue(tag));
        EXPECT_EQ(after, before) << row.tag << " " << row.text;
    }
    get_zberror().clear_all();
    EXPECT_EQ(entry->get_sysvalue("Priority"), "4");
    EXPECT_EQ(entry->get_sysvalue("Complete"), "40%");
}

TEST_F(RecordsValues, NumbersAndFlagsAcceptTheirForms)
{
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    struct Row {
        const char* tag;
        const char* text;
        const char* read;
    };
    const Row rows[] = {
        {"Priority", "3", "3"},     {"Priority", " 2.5 ", "2.5"}, {"Priority", "-1", "-1"},
        {"Complete", "50%", "50%"}, {"Complete", "100", "100%"},  {"IsComplete", "", "1"},
        {"Bookmark", "yes", "1"},   {"Bookmark", "0", "0"},       {"Preserve", "TRUE", "1"},
    };
    for (const Row& row : rows) {
        if (*row.text)
            ASSERT_FALSE(iszbwarn(entry->set_sysvalue(row.tag, row.text))) << row.tag << " " << row.text;
        EXPECT_EQ(entry->get_sysvalue(row.tag), row.read) << row.tag << " " << row.text;
    }
}

TEST_F(RecordsValues, PeopleAndGroupsInUseStay)
{
    ZBDPerson* ann = nullptr;
    ZBDPerson* bob = nullptr;
    ZBDGroup* choir = nullptr;
    ZBDGroup* band = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(ann, "Ann", "Lee")));
    ASSERT_FALSE(iszbwarn(diary.person().add_person(bob, "", "Brown")));
    ASSERT_FALSE(iszbwarn(diary.person().add_group(choir, "Choir")));
    ASSERT_FALSE(iszbwarn(diary.person().add_group(band, "Band")));
    ann->add_group(choir->get_id());
    ann->add_group(choir->get_id());
    EXPECT_TRUE(ann->in_group(choir->get_id()));
    EXPECT_FALSE(ann->in_group(band->get_id()));
    EXPECT_EQ(ann->get_groups().size(), 1u);
    band->set_email({bob->get_id()});
    EXPECT_TRUE(band->has_member(bob->get_id()));

    // A person used only by a deleted entry is free.
    ZBDEntry* old = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(old, &diary, "Object", "", -1, "")));
    old->set_person(ann->get_id());
    EXPECT_EQ(diary.person().person_use_count(ann->get_id()), 1);
    ASSERT_FALSE(iszbwarn(diary.delete_object(old->get_id(), "Delete")));
    EXPECT_EQ(diary.person().person_use_count(ann->get_id()), 0);

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(diary.person().delete_group(*choir)));
    EXPECT_NE(last_error().find("Group is in use."), std::string::npos) << last_error();
    EXPECT_TRUE(iszbwarn(diary.person().delete_person(*bob)));
    EXPECT_NE(last_error().find("Person is in use."), std::string::npos) << last_error();
    EXPECT_EQ(diary.person().get_npeople(), 2);
    EXPECT_EQ(diary.person().get_ngroups(), 2);
    EXPECT_EQ(diary.person().get_person_name(true), (std::vector<std::string>{"Ann Lee (0)", "Brown (1)"}));

    get_zberror().clear_all();
    ann->set_groups({});
    ASSERT_FALSE(iszbwarn(diary.person().delete_group(*choir)));
    EXPECT_EQ(diary.person().get_ngroups(), 1);
    EXPECT_EQ(diary.person().get_group_no(0), band);
    ASSERT_FALSE(iszbwarn(diary.person().delete_person(*ann)));
    EXPECT_EQ(diary.person().get_npeople(), 1);
}

TEST_F(RecordsValues, RepeatingAcknowledgementCoversOneInstanceOnly)
{
    ZBDEvent* weekly = nullptr;
    ZBDEvent* once = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, weekly)));
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, once)));
    const ZBDate first = kNow - ZBDuration(14 * 86400);
    weekly->set_time(ZBDateSlot(first, first + ZBDuration(3600)));
    weekly->edit_repeat().set_type(ZBDateRepeat::E_Weeks);
    weekly->edit_repeat().set_interval(1);
    once->set_time(ZBDateSlot(first, first + ZBDuration(3600)));

    // Acknowledged in last week's instance: this week's is new.
    weekly->mark_complete(kNow - ZBDuration(7 * 86400 - 60));
    once->mark_complete(kNow - ZBDuration(7 * 86400 - 60));
    EXPECT_FALSE(weekly->is_acknowleged());
    EXPECT_TRUE(once->is_acknowleged());
    EXPECT_TRUE(weekly->is_acknowleged(weekly->get_instance(kNow - ZBDuration(7 * 86400))));
    EXPECT_FALSE(weekly->has_passed());
    EXPECT_TRUE(once->has_passed());

    weekly->mark_complete(kNow);
    EXPECT_TRUE(weekly->is_acknowleged());
    EXPECT_FALSE(weekly->is_acknowleged(weekly->get_instance(kNow + ZBDuration(7 * 86400))));
}

TEST_F(RecordsValues, EventToJournalTakesTheJournalSpecAndTheChildren)
{
    ZBDEvent* event = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, event)));
    event->set_summary("Trip");
    event->set_text("By train");
    event->set_priority(3);
    event->set_time(ZBDateSlot(kNow - ZBDuration(86400), kNow - ZBDuration(80000)));
    ZBDPerson* guide = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(guide, "Tom", "Guide", event)));
    const int id = event->get_id();
    const int guideId = guide->get_id();

    ASSERT_FALSE(iszbwarn(diary.journal().event_to_journal(id))) << last_error();
    const ZBDJournal* note = nullptr;
    for (int i = 0; i < diary.get_nobjects(); ++i)
        if (const ZBDJournal* journal = dynamic_cast<const ZBDJournal*>(diary.get_object_by_index(i)))
            note = journal;
    ASSERT_NE(note, nullptr);
    const ZBObjectSpec* spec = diary.get_objectspec_by_name(ZBDiary::C_JournalSpec);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(note->get_specid(), spec->get_id());
    EXPECT_EQ(note->get_summary(), "Trip");
    EXPECT_EQ(note->get_text(), "By train");
    EXPECT_EQ(note->get_priority(), 3);
    EXPECT_EQ(note->get_date(), kNow - ZBDuration(86400));

    const ZBDBObject* moved = diary.get_object_by_id(guideId);
    ASSERT_NE(moved, nullptr);
    EXPECT_FALSE(moved->is_deleted());
    EXPECT_EQ(moved->get_parent_id(), note->get_id());
    EXPECT_EQ(diary.person().get_npeople(), 1);
}

// The whole tree under an event comes back under the note, not only its
// first level: deeper records left deleted would age out of the file.
TEST_F(RecordsValues, EventToJournalBringsBackTheWholeSubtree)
{
    ZBDEvent* event = nullptr;
    ASSERT_FALSE(iszbwarn(diary.eventE().add_event(nullptr, event)));
    event->set_time(ZBDateSlot(kNow - ZBDuration(3600), kNow));
    ZBDPerson* guide = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(guide, "Tom", "Guide", event)));
    ZBDJournal* remark = nullptr;
    ASSERT_FALSE(iszbwarn(diary.journal().add_journal(guide, remark)));
    ZBDPerson* friendOf = nullptr;
    ASSERT_FALSE(iszbwarn(diary.person().add_person(friendOf, "Ann", "Friend", remark)));
    const int guideId = guide->get_id();
    const int remarkId = remark->get_id();
    const int friendId = friendOf->get_id();

    ASSERT_FALSE(iszbwarn(diary.journal().event_to_journal(event->get_id()))) << last_error();

    for (int id : {guideId, remarkId, friendId}) {
        const ZBDBObject* object = diary.get_object_by_id(id);
        ASSERT_NE(object, nullptr) << id;
        EXPECT_FALSE(object->is_deleted()) << id;
    }
    EXPECT_EQ(diary.get_object_by_id(remarkId)->get_parent_id(), guideId);
    EXPECT_EQ(diary.get_object_by_id(friendId)->get_parent_id(), remarkId);
    EXPECT_EQ(diary.get_object_by_id(remarkId)->get_parent(), diary.get_object_by_id(guideId));
    EXPECT_EQ(diary.person().get_npeople(), 2);
}

// A system value a spec works out (eval) is written to the record's field;
// one that is only declared shows the field and never overwrites it.
TEST_F(RecordsValues, ComputedSystemValuesAreWrittenToTheRecord)
{
    int specId = -1;
    ASSERT_FALSE(iszbwarn(diary.add_objectspec("Review",
                                               "$<Who> = \"Ann\";\n$<Title> = eval(\"Review with $<Who>\");\n"
                                               "$<Details> = \"not written\";\n",
                                               &specId)));
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    entry->set_text("kept");
    ASSERT_FALSE(iszbwarn(diary.apply_objectspec_to_db(*entry, specId, true))) << last_error();
    EXPECT_EQ(entry->get_summary(), "Review with Ann");
    EXPECT_EQ(entry->get_text(), "kept");

    // Worked out again on each update, from the values it depends on.
    ASSERT_FALSE(iszbwarn(entry->set_var_value("Who", "Tom")));
    entry->update_vars();
    EXPECT_EQ(entry->get_summary(), "Review with Tom");
}

} // namespace
