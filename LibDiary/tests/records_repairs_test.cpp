#include "records_fixture.h"

#include "LibDatabase/db/zbobjectspec.h"
#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdjournal.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDiary/diary/zbpersonmgr.h"

using namespace Tervalon;
using Tervalon::RecordsTest::kNow;
using Tervalon::RecordsTest::RecordsFixture;

namespace {

using RecordsRepairs = RecordsFixture;

// The whole tree under an event comes back under the note, not only its
// first level: deeper records left deleted would age out of the file.
TEST_F(RecordsRepairs, EventToJournalBringsBackTheWholeSubtree)
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
TEST_F(RecordsRepairs, ComputedSystemValuesAreWrittenToTheRecord)
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
