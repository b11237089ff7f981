#include "records_fixture.h"

#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdgroup.h"
#include "LibDiary/diary/zbdjournal.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDiary/diary/zbpersonmgr.h"
#include "tests/support/testsupport.h"

using namespace Tervalon;
using Tervalon::RecordsTest::kNow;

namespace {

class RecordsFile : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(kNow);
        dir = Tervalon::Test::make_temp_dir("records");
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    static std::string last_error()
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }

    // A diary with one record of each kind and every entry field set.
    void fill(ZBDiary& diary)
    {
        ZBDPerson* ann = nullptr;
        ASSERT_FALSE(iszbwarn(diary.person().add_person(ann, "Ann", "Lee")));
        ann->set_email("ann@example.org");
        ann->set_contacturl("mailto:$<Email>?subject=$<Details>");
        ann->set_contact(true);
        ann->edit_encouragement().set_type(ZBDateRepeat::E_Weeks);
        ann->set_last_contact(kNow - ZBDuration(86400));
        ZBDGroup* group = nullptr;
        ASSERT_FALSE(iszbwarn(diary.person().add_group(group, "Choir")));
        group->set_prayer_group(true);
        group->set_email({ann->get_id()});
        ann->add_group(group->get_id());

        ZBDEvent* event = nullptr;
        ASSERT_FALSE(iszbwarn(diary.eventE().add_event(ann, event)));
        event->set_summary("Birthday");
        event->set_time(ZBDateSlot(kNow + ZBDuration(3600), kNow + ZBDuration(7200)));
        event->edit_repeat().set_type(ZBDateRepeat::E_Years);
        event->set_ack_time(kNow - ZBDuration(60));

        ZBDJournal* note = nullptr;
        ASSERT_FALSE(iszbwarn(diary.journal().add_journal(&diary, note)));
        note->set_text("Met Ann,\nall well.");
        note->set_date(kNow);
        note->set_bookmark(true);

        ZBDEntry* entry = new ZBDEntry();
        ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, "Object", "", -1, "")));
        entry->set_summary("Everything");
        entry->set_text("text");
        entry->set_time(ZBDateSlot(kNow, kNow + ZBDuration(600)));
        entry->set_time(ZBDateSlot(kNow, kNow + ZBDuration(900)), true);
        entry->set_start(kNow);
        entry->set_due(kNow + ZBDuration(86400));
        entry->set_due(kNow + ZBDuration(2 * 86400), true);
        entry->set_priority(2.5);
        entry->set_priority(1.0 / 3.0, true);
        ZBProgress progress;
        progress.set_duration(ZBDuration(5400));
        progress.set_completion(40);
        entry->set_duration(progress);
        entry->set_person(ann->get_id());
        entry->set_timetype(-4, true);
        ASSERT_FALSE(iszbwarn(entry->add_tag(diary, note->get_id())));
        entry->set_ack_time(kNow);
        entry->set_preserve(true);
        diary.person().set_contacturl("https://example.org/$<FullName>");
    }

    // A diary file holding one record of every kind.
    void write_filled(const std::string& path)
    {
        ZBDiary diary;
        ASSERT_FALSE(iszbwarn(diary.load(path, true)));
        fill(diary);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_FALSE(iszbwarn(diary.save(true, true, false)));
    }

    std::string dir;
};

TEST_F(RecordsFile, RecordsSurviveSaveAndLoadByteForByte)
{
    const std::string first = dir + "/first.zbd";
    const std::string second = dir + "/second.zbd";
    {
        ZBDiary diary;
        ASSERT_FALSE(iszbwarn(diary.load(first, true)));
        fill(diary);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_FALSE(iszbwarn(diary.save(true, true, false)));
    }
    const std::string written = Tervalon::Test::read_file(first);
    for (const char* key : {"( *m_personData )", "cURL", "{ZBDPerson", "{ZBDGroup", "pg+Sm", "{ZBDEvent", "Rpt",
                            "{ZBDJournal", "details", "date", "rp+BM", "Tg", "RT", "Pr"})
        EXPECT_NE(written.find(key), std::string::npos) << key;

    ZBDiary again;
    ASSERT_FALSE(iszbwarn(again.load(first, false))) << last_error();
    ASSERT_FALSE(iszbwarn(again.save_as(second, true)));
    EXPECT_EQ(Tervalon::Test::read_file(second), written);

    ASSERT_EQ(again.person().get_npeople(), 1);
    const ZBDPerson* ann = again.person().get_person_no(0);
    EXPECT_EQ(ann->get_name(), "Ann Lee");
    EXPECT_TRUE(ann->get_contact());
    EXPECT_EQ(ann->get_encouragement().get_type(), ZBDateRepeat::E_Weeks);
    ASSERT_EQ(again.person().get_ngroups(), 1);
    EXPECT_EQ(again.person().get_group_no(0)->get_name(), "Choir");
    EXPECT_TRUE(ann->in_group(again.person().get_group_no(0)->get_id()));
    EXPECT_EQ(again.person().get_contacturl(), "https://example.org/$<FullName>");
    std::vector<ZBDEvent*> events = again.eventE().get_events(ZBDateSlot(kNow, kNow + ZBDuration(86400)));
    ASSERT_EQ(events.size(), 1u);
    EXPECT_TRUE(events[0]->is_repeating());
    EXPECT_EQ(events[0]->get_parent_id(), ann->get_id());

    for (int i = 0; i < again.get_nobjects(); ++i) {
        const ZBDEntry* entry = dynamic_cast<const ZBDEntry*>(again.get_object_by_index(i));
        if (!entry || entry->get_summary() != "Everything")
            continue;
        EXPECT_DOUBLE_EQ(entry->get_priority_pair().orig, 2.5);
        EXPECT_DOUBLE_EQ(entry->get_priority(), 1.0 / 3.0);
        EXPECT_EQ(entry->get_due(), kNow + ZBDuration(2 * 86400));
        EXPECT_EQ(entry->get_due_pair().orig, kNow + ZBDuration(86400));
        EXPECT_EQ(entry->get_time().m_end, kNow + ZBDuration(900));
        EXPECT_DOUBLE_EQ(entry->get_duration().get_completion(), 40);
        EXPECT_EQ(entry->get_timetype(), -4);
        EXPECT_EQ(entry->get_person(), ann->get_id());
        EXPECT_TRUE(entry->is_acknowleged());
        EXPECT_TRUE(entry->get_preserve());
        EXPECT_EQ(entry->get_tags().size(), 1u);
        return;
    }
    ADD_FAILURE() << "entry not read back";
}

TEST_F(RecordsFile, FieldsOfANewerVersionAreKeptAndWrittenBack)
{
    const std::string path = dir + "/newer.zbd";
    write_filled(path);
    ASSERT_FALSE(HasFatalFailure());
    std::string text = Tervalon::Test::read_file(path);
    const size_t at = text.find("{ZBDPerson\n");
    ASSERT_NE(at, std::string::npos);
    text.insert(at + 11, "!Nickname!Annie\n");
    const size_t block = text.find("{ZBPersonData\n");
    ASSERT_NE(block, std::string::npos);
    text.insert(block + 14, "!futureSetting!7\n");
    Tervalon::Test::write_file(path, text);

    ZBDiary diary;
    ASSERT_FALSE(iszbwarn(diary.load(path, false))) << last_error();
    ASSERT_FALSE(iszbwarn(diary.save_as(dir + "/newer2.zbd", true)));
    const std::string back = Tervalon::Test::read_file(dir + "/newer2.zbd");
    EXPECT_NE(back.find("!Nickname!Annie"), std::string::npos);
    EXPECT_NE(back.find("!futureSetting!7"), std::string::npos);
}

TEST_F(RecordsFile, AnUnknownRecordTypeIsRefusedAndTheFileLeftAlone)
{
    const std::string path = dir + "/unknown.zbd";
    write_filled(path);
    ASSERT_FALSE(HasFatalFailure());
    std::string text = Tervalon::Test::read_file(path);
    const size_t at = text.find("{ZBDJournal\n");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 11, "{ZBDSomethingNew");
    Tervalon::Test::write_file(path, text);

    ZBDiary diary;
    EXPECT_TRUE(iszbwarn(diary.load(path, false)));
    EXPECT_NE(last_error().find("Could not identify object ZBDSomethingNew"), std::string::npos) << last_error();
    EXPECT_FALSE(diary.is_loaded());
    EXPECT_EQ(Tervalon::Test::read_file(path), text);
}

TEST_F(RecordsFile, ADamagedFieldReadsAsItsDefaultAndTheRestSurvives)
{
    const std::string path = dir + "/damaged.zbd";
    write_filled(path);
    ASSERT_FALSE(HasFatalFailure());
    std::string text = Tervalon::Test::read_file(path);
    const size_t at = text.find("!Pr!");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, text.find('\n', at) - at, "!Pr!garbage here");
    Tervalon::Test::write_file(path, text);

    ZBDiary diary;
    ASSERT_FALSE(iszbwarn(diary.load(path, false))) << last_error();
    EXPECT_EQ(diary.person().get_npeople(), 1);
    bool found = false;
    for (int i = 0; i < diary.get_nobjects(); ++i)
        if (const ZBDEntry* entry = dynamic_cast<const ZBDEntry*>(diary.get_object_by_index(i)))
            if (entry->get_summary() == "Everything") {
                found = true;
                EXPECT_EQ(entry->get_text(), "text");
                EXPECT_EQ(entry->get_due(), kNow + ZBDuration(2 * 86400));
            }
    EXPECT_TRUE(found);
}

TEST_F(RecordsFile, AnEntryWhoseParentIsMissingStaysInTheFile)
{
    const std::string path = dir + "/orphan.zbd";
    write_filled(path);
    ASSERT_FALSE(HasFatalFailure());
    std::string text = Tervalon::Test::read_file(path);
    // The event hangs on Ann; Ann's record is cut out of the file.
    const size_t start = text.find("{ZBDPerson\n");
    ASSERT_NE(start, std::string::npos);
    const size_t tag = text.rfind("@O:", start);
    const size_t end = text.find("\n}\n", start);
    text.erase(tag, end + 3 - tag);
    Tervalon::Test::write_file(path, text);

    // Months later, so that the event's own times are far older than a week.
    ZBDateUtils::set_fixed_now(kNow + ZBDuration(120 * 86400));
    ZBDiary diary;
    ASSERT_FALSE(iszbwarn(diary.load(path, false))) << last_error();
    EXPECT_EQ(diary.person().get_npeople(), 0);
    EXPECT_TRUE(diary.eventE().get_events(ZBDateSlot(kNow, kNow + ZBDuration(86400))).empty());
    ASSERT_FALSE(iszbwarn(diary.save(true, true, false)));
    EXPECT_NE(Tervalon::Test::read_file(path).find("Birthday"), std::string::npos);
}

} // namespace
