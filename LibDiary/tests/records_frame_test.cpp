#include "records_fixture.h"

#include "LibDiary/diary/zbdentry.h"
#include "LibDiary/diary/zbdiarymgr.h"
#include "LibDiary/diary/zbdperson.h"

#include <vector>

using namespace Tervalon;
using Tervalon::RecordsTest::RecordsFixture;

namespace {

const std::vector<std::string> kOrder = {"person", "journal", "event", "prayer", "finance", "calorie"};

using RecordsFrame = RecordsFixture;

TEST_F(RecordsFrame, EveryStepReachesTheManagersInModuleOrder)
{
    std::vector<std::string> seen;
    std::vector<std::string> steps;
    diary.set_fanout_observer([&](const std::string& step, const ZBDiaryMgr& manager) {
        seen.push_back(manager.get_name());
        if (steps.empty() || steps.back() != step)
            steps.push_back(step);
    });
    ZBDiary other;
    std::vector<ZBNotifyItem> items;
    ASSERT_FALSE(iszbwarn(diary.recalculate(ZBDatabase::E_RecalcFull)));
    ASSERT_FALSE(iszbwarn(diary.remap_id(40, 41)));
    ASSERT_FALSE(iszbwarn(diary.pull_db_data(other)));
    diary.has_user_data();
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    EXPECT_EQ(steps, (std::vector<std::string>{"recalculate", "remap_id", "pull_db_data", "has_user_data", "generate_notify"}));
    ASSERT_EQ(seen.size(), 5 * kOrder.size());
    for (size_t i = 0; i < seen.size(); ++i)
        EXPECT_EQ(seen[i], kOrder[i % kOrder.size()]) << "call " << i;
    std::vector<std::string> managers;
    for (const ZBDiaryMgr* manager : diary.get_managers())
        managers.push_back(manager->get_name());
    EXPECT_EQ(managers, kOrder);
}

TEST(RecordsEntryType, CodesAndTexts)
{
    const struct {
        int code;
        const char* text;
    } rows[] = {{65, "Event"}, {68, "Address"}, {74, "Journal"}, {76, "Place"}, {80, "Person"}, {84, "Task"},
                {79, "Object"}, {0, "Object"}, {'Z', "Object"}};
    for (const auto& row : rows)
        EXPECT_EQ(ZBDEntry::entrytype_to_string(row.code), row.text) << row.code;
    EXPECT_EQ(ZBDEntry::string_to_entrytype("person"), 'P');
    EXPECT_EQ(ZBDEntry::string_to_entrytype("Nothing"), 'O');
}

TEST(RecordsSysValues, TableInOrderWithCodes)
{
    const auto& table = ZBDEntry::get_sysquants();
    ASSERT_EQ(table.size(), 41u);
    EXPECT_STREQ(table.front().name, "Id");
    EXPECT_STREQ(table[6].name, "Start_Time");
    EXPECT_EQ(table[6].code, 100);
    EXPECT_STREQ(table[10].name, "Repeating");
    EXPECT_EQ(table[10].code, 98);
    EXPECT_EQ(table[16].code, 117);
    EXPECT_STREQ(table[25].name, "Priority");
    EXPECT_EQ(table[25].code, 102);
    EXPECT_STREQ(table.back().name, "ExecCommand");
}

TEST_F(RecordsFrame, SystemValuesReadAndWriteAndRefuseBadDates)
{
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Title", "Call the bank")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Priority", "3")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Due_Date", "9-Mar-2026 14:00")));
    EXPECT_EQ(entry->get_summary(), "Call the bank");
    EXPECT_EQ(entry->get_sysvalue("Priority"), "3");
    entry->set_priority(2.5);
    EXPECT_EQ(entry->get_sysvalue("Priority"), "2.5");
    EXPECT_EQ(entry->get_sysvalue("Complete"), "0%");
    EXPECT_EQ(entry->get_sysvalue("EntryType"), "Object");
    const ZBDate due = entry->get_due();
    EXPECT_TRUE(due.is_ok());

    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(entry->set_sysvalue("Due_Date", "the day after never")));
    EXPECT_EQ(entry->get_due(), due);
    EXPECT_NE(last_error().find("Due_Date: Invalid date value: the day after never"), std::string::npos) << last_error();
}

TEST_F(RecordsFrame, TagsAreMirroredAndStaleOnesDropped)
{
    ZBDEntry* a = new ZBDEntry();
    ZBDEntry* b = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(a, &diary, "Object", "", -1, "")));
    ASSERT_FALSE(iszbwarn(diary.add_object(b, &diary, "Object", "", -1, "")));
    ASSERT_FALSE(iszbwarn(a->add_tag(diary, b->get_id())));
    ASSERT_FALSE(iszbwarn(a->add_tag(diary, b->get_id())));
    EXPECT_EQ(a->get_tags(), std::vector<int>{b->get_id()});
    EXPECT_EQ(b->get_rtags(), std::vector<int>{a->get_id()});
    ASSERT_FALSE(iszbwarn(a->remove_tag(diary, b->get_id())));
    EXPECT_TRUE(a->get_tags().empty());
    EXPECT_TRUE(b->get_rtags().empty());

    ASSERT_FALSE(iszbwarn(a->add_tag(diary, b->get_id())));
    ASSERT_FALSE(iszbwarn(diary.delete_object(b->get_id(), "Delete")));
    // The id stays until the tags are brought up to date.
    EXPECT_EQ(a->get_tags().size(), 1u);
    EXPECT_TRUE(a->update_tags(diary));
    EXPECT_TRUE(a->get_tags().empty());
    EXPECT_FALSE(a->update_tags(diary));
}

TEST_F(RecordsFrame, DefaultSpecsHoldTheirChildLinesAndUpgradeAddsMissingOnes)
{
    EXPECT_EQ(diary.get_spec_source("DefaultJournal"), "$<EntryType> = eval(\"Journal\");\n");
    EXPECT_EQ(diary.get_spec_source("DefaultPerson"),
              "$<EntryType> = eval(\"Person\");\n$[JN] = ${DefaultJournal}[];\n$[EV] = ${DefaultEvent}[];\n");
    EXPECT_NE(diary.get_spec_source("TopLevel").find("$[Object] = ${Default}[];\n"), std::string::npos);

    const std::string mine = "$<EntryType> = eval(\"Person\");\n$<Nickname> = eval(\"\");\n$[JN] = ${DefaultJournal}[];";
    diary.set_spec_source("DefaultPerson", mine);
    ASSERT_FALSE(iszbwarn(diary.update_specs()));
    EXPECT_EQ(diary.get_spec_source("DefaultPerson"), mine + "\n$[EV] = ${DefaultEvent}[];\n");
}

TEST_F(RecordsFrame, PeopleAboveAnEntryAreItsPeople)
{
    ZBDPerson* person = new ZBDPerson();
    ASSERT_FALSE(iszbwarn(diary.add_object(person, &diary, ZBDiary::C_PersonTag, "", -1, "")));
    ZBDPerson* other = new ZBDPerson();
    ASSERT_FALSE(iszbwarn(diary.add_object(other, &diary, ZBDiary::C_PersonTag, "", -1, "")));
    ZBDEntry* note = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(note, person, "Object", "", -1, "")));
    note->set_person(other->get_id());
    EXPECT_EQ(diary.get_people(*note), (std::vector<int>{other->get_id(), person->get_id()}));
    EXPECT_EQ(diary.get_dentry_id(note->get_id()), note);
    EXPECT_EQ(diary.get_dentry_id(diary.get_id()), nullptr);
}

} // namespace
