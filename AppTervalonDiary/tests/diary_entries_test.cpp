#include "AppTervalonDiary/tests/clirun.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

using namespace Tervalon;
using Tervalon::Test::tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

struct Fixture : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("diary_model") + "/m.zbd", true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
    }
    Diary diary;
};

using DiaryEntries = Fixture;
using DiaryCli = Fixture;

// The status of a run, its output kept in out.
int run_out(const std::vector<std::string>& args, std::string& out)
{
    Tervalon::Test::CliRun run = tervalon(args);
    out = run.out;
    return run.status;
}

} // namespace

TEST_F(DiaryEntries, FolderOfTasksActsAsTaskUntilAnAppointmentJoins)
{
    DiaryEntry* folder = nullptr;
    DiaryEntry* child = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'O', "Folder", &folder), ZBErrC_ok);
    EXPECT_EQ(folder->get_derived_entrytype(), 'O');
    diary.create_entry(folder, 'T', "One", &child);
    diary.create_entry(folder, 'T', "Two", &child);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    EXPECT_EQ(folder->get_derived_entrytype(), 'T');
    EXPECT_TRUE(folder->has_depend());
    diary.create_entry(folder, 'A', "Meeting", &child);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    EXPECT_EQ(folder->get_derived_entrytype(), 'O');
    EXPECT_EQ(folder->get_entrytype(), 'O');
}

TEST_F(DiaryEntries, TypeRanksAndNames)
{
    EXPECT_EQ(DiaryEntry::type_priority('P'), 1);
    EXPECT_EQ(DiaryEntry::type_priority('T'), 5);
    EXPECT_EQ(DiaryEntry::type_priority('M'), 11);
    EXPECT_EQ(DiaryEntry::type_priority('Z'), 12);
    EXPECT_EQ(DiaryEntry::entrytype_to_string('Q'), "Object");
    EXPECT_EQ(DiaryEntry::string_to_entrytype("Group"), 'D');
    EXPECT_EQ(DiaryEntry::get_type_seq(DiaryEntry::get_sequence('p', 7)), 'p');
    EXPECT_EQ(DiaryEntry::get_index_seq(DiaryEntry::get_sequence('p', 7)), 7);
    EXPECT_EQ(DiaryEntry::get_sequence('x', 7), 0);
}

TEST_F(DiaryEntries, EqualTasksSortByIdAndTypesByApplicationOrder)
{
    DiaryEntry* a = nullptr;
    DiaryEntry* b = nullptr;
    DiaryEntry* j = nullptr;
    DiaryEntry* p = nullptr;
    diary.create_entry(nullptr, 'J', "Note", &j);
    diary.create_entry(nullptr, 'T', "Second", &b);
    diary.create_entry(nullptr, 'T', "First", &a);
    diary.create_entry(nullptr, 'P', "Person", &p);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    ZBPtrArray<DiaryEntry> result(false);
    ASSERT_EQ(diary.query_entries(ZBDateSlot(), result, DiaryEntry::E_SortApplication, 0), ZBErrC_ok);
    ASSERT_EQ(result.size(), 4);
    EXPECT_EQ(result[0], b); // equal tasks: lower id first
    EXPECT_EQ(result[1], a);
    EXPECT_EQ(result[2], p);
    EXPECT_EQ(result[3], j);
    a->edit_priority().set_orig(50.0);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    result.clear();
    diary.query_entries(ZBDateSlot(), result, DiaryEntry::E_SortApplication, 0);
    EXPECT_EQ(result[0], a);
    ZBPtrArray<DiaryEntry> managed;
    EXPECT_TRUE(iszberr(diary.query_entries(ZBDateSlot(), managed, 0, 0)));
    get_zberror().clear_all();
}

// The next instance is the first one after the completion, not the next one
// after the instance's own date; plans before it go.
TEST_F(DiaryEntries, RepeatingTaskMovesOnFromTheCompletionAndStaysOpen)
{
    struct Row {
        const char* done;
        const char* nextDue;
    };
    for (const Row& row : {Row{"6-Mar-2026 09:00", "13-Mar-2026 09:00"}, Row{"10-Mar-2026 15:00", "17-Mar-2026 15:00"}}) {
        SCOPED_TRACE(row.done);
        DiaryEntry* task = nullptr;
        diary.create_entry(nullptr, 'T', "Weekly", &task);
        task->edit_due().set_orig(at("6-Mar-2026 09:00"));
        task->edit_repeat().from_string("T=3@N=1");
        task->edit_plan().edit_planned().add(ZBDateSlot(at("1-Mar-2026 09:00"), at("1-Mar-2026 10:00")), 1);
        ASSERT_EQ(task->mark_complete(at(row.done)), ZBErrC_ok);
        EXPECT_FALSE(task->is_complete());
        EXPECT_EQ(task->get_duration().orig.get_completion(), 0.0);
        EXPECT_EQ(task->get_due().orig, at(row.nextDue));
        EXPECT_TRUE(task->get_plan().get_planned().empty());
    }
    DiaryEntry* once = nullptr;
    diary.create_entry(nullptr, 'T', "Once", &once);
    once->mark_complete(at("4-Mar-2026 12:00"));
    EXPECT_TRUE(once->is_complete());
}

// 100 or more finishes the entry as marking it complete does.
TEST_F(DiaryEntries, ACompletionOfAHundredOrMoreFinishesTheEntry)
{
    for (double percent : {100.0, 120.0}) {
        DiaryEntry* task = nullptr;
        diary.create_entry(nullptr, 'T', "Task", &task);
        ASSERT_EQ(task->set_completion(percent, false), ZBErrC_ok) << percent;
        EXPECT_TRUE(task->is_complete()) << percent;
        EXPECT_EQ(task->get_duration().orig.get_completion(), 100.0) << percent;
        EXPECT_EQ(task->get_spent().get_closed(), at("2-Mar-2026 08:00")) << percent;
    }
}

TEST_F(DiaryEntries, PostponeTextsAndRefusals)
{
    DiaryEntry* task = nullptr;
    diary.create_entry(nullptr, 'T', "Task", &task);
    task->edit_due().set_orig(at("6-Mar-2026 09:00"));
    ASSERT_EQ(task->postpone("", "+2 days", 0), ZBErrC_ok);
    EXPECT_EQ(task->get_due().orig, at("8-Mar-2026 09:00"));
    EXPECT_TRUE(task->get_start().orig.is_blank());
    ASSERT_EQ(task->postpone("", "blank", 0), ZBErrC_ok);
    EXPECT_TRUE(task->get_due().orig.is_blank());
    EXPECT_TRUE(iszbwarn(task->postpone("soonish", "", 0)));
    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(task->set_completion(-5.0, false)));
    get_zberror().clear_all();
    EXPECT_FALSE(task->is_complete());
}

TEST_F(DiaryEntries, PostponeMovesOneSessionBySequence)
{
    DiaryEntry* task = nullptr;
    diary.create_entry(nullptr, 'T', "Task", &task);
    ZBDateSet& planned = task->edit_plan().edit_planned();
    planned.add(ZBDateSlot(at("3-Mar-2026 09:00"), at("3-Mar-2026 10:00")), 1);
    planned.add(ZBDateSlot(at("5-Mar-2026 09:00"), at("5-Mar-2026 10:00")), 1);
    task->edit_spent().add_session(ZBDateSlot(at("2-Mar-2026 07:00"), at("2-Mar-2026 07:30")), 1);

    // The second plan moves a day, its end with it; the first stays.
    ASSERT_EQ(task->postpone("+1 day", "+1 day", DiaryEntry::get_sequence('p', 1)), ZBErrC_ok);
    ASSERT_EQ(planned.size(), 2);
    EXPECT_EQ(planned[0]->m_start, at("3-Mar-2026 09:00"));
    EXPECT_EQ(planned[1]->m_start, at("6-Mar-2026 09:00"));
    EXPECT_EQ(planned[1]->m_end, at("6-Mar-2026 10:00"));
    EXPECT_EQ(planned[1]->m_type, 1);
    // A spent session going back, start after end put in order.
    ASSERT_EQ(task->postpone("-1 hour", "2-Mar-2026 05:00", DiaryEntry::get_sequence('s', 0)), ZBErrC_ok);
    const ZBDateSet& spent = task->get_spent().get_sessions();
    ASSERT_EQ(spent.size(), 1);
    EXPECT_EQ(spent[0]->m_start, at("2-Mar-2026 05:00"));
    EXPECT_EQ(spent[0]->m_end, at("2-Mar-2026 06:00"));
    // The task's own dates are not touched.
    EXPECT_TRUE(task->get_due().orig.is_blank());

    EXPECT_TRUE(iszbwarn(task->postpone("+1 day", "", DiaryEntry::get_sequence('p', 2))));
    EXPECT_TRUE(iszbwarn(task->postpone("+1 day", "", DiaryEntry::get_sequence('r', 0))));
    get_zberror().clear_all();
    EXPECT_EQ(planned.size(), 2);
}

TEST_F(DiaryEntries, TimeTypeAndResourceInUseAreRefused)
{
    diary.initialise(true);
    TimeType* type = nullptr;
    Resource* resource = nullptr;
    DiaryEntry* task = nullptr;
    diary.add_timetype("Home", &type);
    diary.add_resource("Sam", &resource);
    diary.create_entry(nullptr, 'T', "Task", &task);
    task->edit_props().set_timetype_orig(type->get_id());
    task->edit_props().set_resource_orig(resource->get_id());
    EXPECT_TRUE(iszbwarn(diary.delete_timetype(type->get_id())));
    EXPECT_NE(get_zberror().top()->get_details(ZBErrAsp_User).find("The Home time type is used by the entry \"Task\""),
              std::string::npos);
    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(diary.delete_resource(resource->get_id())));
    get_zberror().clear_all();
    EXPECT_NE(diary.get_timetype_by_id(type->get_id()), nullptr);
    task->edit_props().set_timetype_orig(-2);
    EXPECT_EQ(diary.delete_timetype(type->get_id()), ZBErrC_ok);
}

TEST_F(DiaryCli, CommandsEndToEndAndFailuresLeaveTheFile)
{
    const std::string dir = Tervalon::Test::make_temp_dir("diary_cli");
    const std::string file = dir + "/d.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    std::string out;
    ASSERT_EQ(run_out({"add", file, "--type", "O", "--title", "Project"}, out), 0);
    const std::string project = out.substr(0, out.find('\n'));
    ASSERT_EQ(run_out({"add", file, "--type", "T", "--title", "Write", "--parent", project, "--due", "+2 days",
                   "--priority", "50"}, out), 0);
    const std::string task = out.substr(0, out.find('\n'));
    ASSERT_EQ(run_out({"tree", file}, out), 0);
    EXPECT_NE(out.find("  " + task + " T Write  due 2026-03-04 08:00  0%"), std::string::npos) << out;

    const std::string before = Tervalon::Test::read_file(file);
    EXPECT_EQ(tervalon({"postpone", file, task, "whenever"}).status, 1);
    EXPECT_EQ(tervalon({"add", file, "--type", "T", "--title", "x", "--parent", "999"}).status, 1);
    EXPECT_EQ(tervalon({"set", file, task, "completion", "-1"}).status, 1);
    EXPECT_EQ(Tervalon::Test::read_file(file), before);

    EXPECT_EQ(tervalon({"postpone", file, task, "+1 day"}).status, 0);
    ASSERT_EQ(run_out({"tree", file}, out), 0);
    EXPECT_NE(out.find("due 2026-03-05 08:00"), std::string::npos) << out;
    EXPECT_EQ(tervalon({"done", file, task}).status, 0);
    ASSERT_EQ(run_out({"tree", file}, out), 0);
    EXPECT_NE(out.find("100%"), std::string::npos) << out;
    EXPECT_EQ(tervalon({"rm", file, project}).status, 0);
    ASSERT_EQ(run_out({"tree", file}, out), 0);
    EXPECT_EQ(out, "");
}

TEST_F(DiaryCli, DiarySurvivesSaveAndLoadByteForByte)
{
    const std::string dir = Tervalon::Test::make_temp_dir("diary_roundtrip");
    const std::string file = dir + "/d.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    ASSERT_EQ(tervalon({"add", file, "--type", "T", "--title", "Weekly", "--due", "next Fri", "--repeat", "T=3@N=1"}).status, 0);
    ASSERT_EQ(tervalon({"add", file, "--type", "A", "--title", "Dentist", "--start", "+2 days 10:00", "--duration", "45m"}).status, 0);
    const std::string first = Tervalon::Test::read_file(file);
    std::unique_ptr<Diary> diary(new Diary());
    ASSERT_EQ(diary->load(file, false), ZBErrC_ok);
    ASSERT_EQ(diary->get_nentries(), 2);
    EXPECT_TRUE(diary->get_entry_index(0)->get_repeat().is_repeating());
    ASSERT_EQ(diary->save(true, true, false), ZBErrC_ok);
    diary->unload();
    EXPECT_EQ(Tervalon::Test::read_file(file), first);
}
