// Task lists in the JSON export form read into a diary: every field, both
// layouts, project folders, dependencies by uuid and damaged lines.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/entrydepend.h"
#include "AppTervalonDiary/diary/taskimport.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tervalon;

namespace {

ZBDate utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return ZBDate(year, month - 1, day - 1, hour, minute, 0, 0, ZBDate::C_GMT);
}

struct ImportTasks : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(utc(2026, 11, 23, 9));
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("import_tasks") + "/d.zbd", true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    int run(const std::string& text)
    {
        const int result = importer.import(diary, text);
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        return result;
    }
    // The entry titled title under the folder path (empty: the top level).
    DiaryEntry* find(const std::vector<std::string>& path, const std::string& title) const
    {
        DiaryEntry* under = nullptr;
        for (size_t i = 0; i <= path.size(); ++i) {
            const std::string& name = i < path.size() ? path[i] : title;
            DiaryEntry* found = nullptr;
            const int n = under ? under->get_nchildren() : diary.get_nentries();
            for (int k = 0; k < n && !found; ++k) {
                DiaryEntry* child = under ? under->get_child_no(k) : diary.get_entry_index(k);
                if (child->get_summary() == name)
                    found = child;
            }
            if (!found)
                return nullptr;
            under = found;
        }
        return under;
    }
    bool waits_for(const DiaryEntry* entry, const DiaryEntry* other) const
    {
        const EntryDepend& depend = entry->get_depend();
        for (int i = 0; i < depend.get_ndepends(); ++i)
            if (depend.get_depend_no(i) == other->get_id())
                return true;
        return false;
    }
    Diary diary;
    TaskImport importer;
};

const char* const C_Export =
    R"({"uuid":"a1","description":"Paint the hall","status":"pending","project":"Home.Decorating",)"
    R"("due":"20261130T170000Z","scheduled":"20261125T080000Z","wait":"20261124T080000Z","priority":"H",)"
    R"("tags":["paint","weekend"],"annotations":[{"entry":"20261120T101500Z","description":"Buy white"}],)"
    R"("entry":"20261101T120000Z","estimate":"PT3H30M","urgency":8.2,"id":1})"
    "\n"
    R"({"uuid":"b2","description":"Call the bank","status":"completed","end":"20261121T143000Z",)"
    R"("entry":"20261110T090000Z","priority":"L"})"
    "\n"
    R"({"uuid":"c3","description":"Renew passport","status":"waiting","wait":"20261201T000000Z",)"
    R"("scheduled":"20261126T000000Z","priority":"M","depends":"a1"})"
    "\n"
    R"({"uuid":"d4","description":"Old idea","status":"deleted"})"
    "\n";

} // namespace

TEST_F(ImportTasks, EveryFieldReachesTheDiary)
{
    ASSERT_EQ(run(C_Export), ZBErrC_ok);
    EXPECT_TRUE(importer.get_problems().empty());
    EXPECT_EQ(importer.get_summary(), "Imported 3 tasks, 2 folders, 1 dependency; skipped 1 deleted");

    DiaryEntry* paint = find({"Home", "Decorating"}, "Paint the hall");
    ASSERT_NE(paint, nullptr);
    EXPECT_EQ(paint->get_entrytype(), 'T');
    EXPECT_EQ(find({}, "Home")->get_entrytype(), 'O');
    EXPECT_EQ(paint->get_due_pair().orig, utc(2026, 11, 30, 17));
    EXPECT_EQ(paint->get_start_pair().orig, utc(2026, 11, 25, 8)); // the later of scheduled and wait
    EXPECT_EQ(paint->get_priority_pair().orig, 80.0);
    EXPECT_EQ(paint->get_duration_pair().orig.get_duration().get_as_seconds(), 3 * 3600 + 1800);
    EXPECT_EQ(paint->get_text(), "Tags: paint, weekend\n20-Nov-2026 10:15: Buy white");
    EXPECT_EQ(paint->get_create_time(), utc(2026, 11, 1, 12));
    EXPECT_FALSE(paint->is_complete());

    DiaryEntry* bank = find({}, "Call the bank");
    ASSERT_NE(bank, nullptr);
    EXPECT_TRUE(bank->is_complete());
    EXPECT_EQ(bank->get_time_pair().orig.m_end, utc(2026, 11, 21, 14, 30)); // done when it ended
    EXPECT_EQ(bank->get_priority_pair().orig, 20.0);

    DiaryEntry* passport = find({}, "Renew passport");
    ASSERT_NE(passport, nullptr);
    EXPECT_EQ(passport->get_start_pair().orig, utc(2026, 12, 1)); // waiting: not before the wait ends
    EXPECT_EQ(passport->get_priority_pair().orig, 50.0);
    EXPECT_TRUE(waits_for(passport, paint));
    EXPECT_EQ(find({}, "Old idea"), nullptr);
}

TEST_F(ImportTasks, ArrayAndOneObjectPerLineGiveTheSameTasks)
{
    const std::string lines = "{\"description\":\"One\",\"project\":\"P\"}\n{\"description\":\"Two\"}\n";
    const std::string exported = "[\n{\"description\":\"One\",\"project\":\"P\"},\n{\"description\":\"Two\"}\n]\n";
    const std::string pretty = "[\n  {\n    \"description\": \"One\",\n    \"project\": \"P\"\n  },\n"
                               "  {\n    \"description\": \"Two\"\n  }\n]";
    for (const std::string& text : {lines, exported, pretty}) {
        Diary other;
        ASSERT_EQ(other.create(Tervalon::Test::make_temp_dir("import_forms") + "/d.zbd", true), ZBErrC_ok);
        TaskImport each;
        ASSERT_EQ(each.import(other, text), ZBErrC_ok) << text;
        EXPECT_EQ(each.get_summary(), "Imported 2 tasks, 1 folder, 0 dependencies") << text;
        EXPECT_TRUE(each.get_problems().empty()) << text;
        other.unload();
    }
    // In a pretty array a bad element is reported on the line it starts on.
    ASSERT_EQ(run("[\n  {\"description\": \"A\"},\n  42,\n  {\n    \"status\": \"pending\"\n  }\n]"), ZBErrC_ok);
    EXPECT_EQ(importer.get_problems(),
              (std::vector<std::string>{"line 3: not a task object", "line 4: the task has no description"}));
}

TEST_F(ImportTasks, ProjectFoldersAreMadeOnceAndReused)
{
    ASSERT_EQ(run(R"({"description":"a","project":"Home.Kitchen"}
{"description":"b","project":"Home.Kitchen"}
{"description":"c","project":"Home.Garden.Shed"}
{"description":"d","project":"Work"}
{"description":"e","project":"Home"}
)"),
              ZBErrC_ok);
    EXPECT_EQ(importer.get_nfolders(), 5);
    ASSERT_NE(find({"Home", "Kitchen"}, "b"), nullptr);
    EXPECT_EQ(find({"Home", "Kitchen"}, "a")->get_parent_id(), find({"Home", "Kitchen"}, "b")->get_parent_id());
    EXPECT_NE(find({"Home", "Garden", "Shed"}, "c"), nullptr);
    EXPECT_NE(find({"Home"}, "e"), nullptr);
    EXPECT_EQ(diary.get_nentries(), 2);

    // A second list goes into the folders already there.
    ASSERT_EQ(run(R"({"description":"f","project":"Home.Kitchen"})"), ZBErrC_ok);
    EXPECT_EQ(importer.get_nfolders(), 0);
    EXPECT_NE(find({"Home", "Kitchen"}, "f"), nullptr);
    EXPECT_EQ(diary.get_nentries(), 2);
}

TEST_F(ImportTasks, DependenciesFollowUuidsInEitherForm)
{
    ASSERT_EQ(run(R"({"uuid":"u1","description":"First","depends":["u3"]}
{"uuid":"u2","description":"Second","depends":"u1, u3"}
{"uuid":"u3","description":"Third"}
{"uuid":"u4","description":"Fourth","depends":["u1","nowhere","gone","u4"]}
{"uuid":"gone","description":"Dropped","status":"deleted"}
)"),
              ZBErrC_ok);
    DiaryEntry* first = find({}, "First");
    DiaryEntry* second = find({}, "Second");
    DiaryEntry* third = find({}, "Third");
    DiaryEntry* fourth = find({}, "Fourth");
    EXPECT_TRUE(waits_for(first, third)); // named before it was made
    EXPECT_TRUE(waits_for(second, first));
    EXPECT_TRUE(waits_for(second, third));
    EXPECT_TRUE(waits_for(fourth, first));
    EXPECT_EQ(fourth->get_depend().get_ndepends(), 1); // not itself, nor the deleted or unknown
    EXPECT_EQ(importer.get_ndepends(), 4);
    EXPECT_EQ(importer.get_problems(), std::vector<std::string>{"line 4: depends on an unknown task nowhere"});
}

TEST_F(ImportTasks, UnreadableLinesAreReportedAndTheRestGoesIn)
{
    ASSERT_EQ(run(R"({"description":"Before"}
{"description":"Broken", "status":
{"description":"Odd status","status":"someday"}
{"status":"pending"}
["not", "a", "task"]

{"description":"Bad dates","due":"next week","estimate":"soon","priority":"X"}
{"description":"After"}
)"),
              ZBErrC_ok);
    const std::vector<std::string>& problems = importer.get_problems();
    std::string all;
    for (const std::string& problem : problems)
        all += problem + "\n";
    ASSERT_EQ(problems.size(), 7u) << all;
    EXPECT_EQ(problems[0].rfind("line 2: not JSON (", 0), 0u) << problems[0];
    EXPECT_EQ(problems[1], "line 3: unknown status \"someday\"");
    EXPECT_EQ(problems[2], "line 4: the task has no description");
    EXPECT_EQ(problems[3], "line 5: not a task object");
    EXPECT_EQ(problems[4], "line 7: due \"next week\" is not a date; the task is imported without it");
    EXPECT_EQ(problems[5], "line 7: priority \"X\" is not H, M or L; the task is imported without it");
    EXPECT_EQ(problems[6], "line 7: estimate \"soon\" is not a duration; the task is imported without it");
    EXPECT_EQ(importer.get_ntasks(), 3);
    EXPECT_NE(find({}, "Before"), nullptr);
    EXPECT_NE(find({}, "After"), nullptr);
    EXPECT_FALSE(find({}, "Bad dates")->get_due_pair().orig.is_ok());
}

TEST_F(ImportTasks, TextThatIsNotJsonChangesNothing)
{
    const int before = diary.get_nentries();
    for (const char* text : {"description,status\nPaint,pending\n", "", "   \n", "{\"description\": \"cut",
                             "\x89PNG\r\n\x1a\n"}) {
        EXPECT_TRUE(iszbwarn(importer.import(diary, text))) << text;
        EXPECT_EQ(importer.get_ntasks(), 0);
        EXPECT_EQ(diary.get_nentries(), before) << text;
        get_zberror().clear_all();
    }
    // An empty list is JSON: nothing to do, and no complaint.
    EXPECT_EQ(importer.import(diary, "[]"), ZBErrC_ok);
    EXPECT_EQ(importer.get_summary(), "Imported 0 tasks, 0 folders, 0 dependencies");
}

TEST_F(ImportTasks, DatesAndEstimatesAsExported)
{
    const struct {
        const char* text;
        bool ok;
        ZBDate date;
    } dates[] = {
        {"20261123T170000Z", true, utc(2026, 11, 23, 17)},
        {"2026-11-23T17:00:00Z", true, utc(2026, 11, 23, 17)},
        {"2026-11-23T17:00:00.250Z", true, utc(2026, 11, 23, 17)},
        {"20261123", true, utc(2026, 11, 23)},
        {"20260229T000000Z", false, ZBDate()},
        {"20261123T170000", false, ZBDate()}, // no zone: a local time we cannot place
        {"20261123T170000+0100", false, ZBDate()},
        {"20261323T170000Z", false, ZBDate()},
        {"tomorrow", false, ZBDate()},
        {"", false, ZBDate()},
    };
    for (const auto& row : dates) {
        ZBDate out(ZBDate::E_Blank);
        EXPECT_EQ(TaskImport::read_date(row.text, out), row.ok) << row.text;
        if (row.ok) {
            EXPECT_EQ(out, row.date) << row.text;
        }
    }
    const struct {
        const char* text;
        bool ok;
        std::int64_t seconds;
    } estimates[] = {
        {"PT2H", true, 7200}, {"PT1H30M", true, 5400}, {"P1DT2H", true, 86400 + 7200}, {"PT90S", true, 90},
        {"P2W", true, 14 * 86400}, {"2h 30m", true, 9000}, {"P", false, 0}, {"PT2", false, 0},
        {"P2H", false, 0}, {"PT9999999999H", false, 0}, {"P999999D", false, 0}, {"forever", false, 0},
    };
    for (const auto& row : estimates) {
        ZBDuration out;
        EXPECT_EQ(TaskImport::read_duration(row.text, out), row.ok) << row.text;
        if (row.ok) {
            EXPECT_EQ(out.get_as_seconds(), row.seconds) << row.text;
        }
    }
}

// Entries brought in may be what a series depends on or stands beside, so
// the instances the diary had worked out are forgotten and made again.
TEST_F(ImportTasks, AnImportForgetsTheInstancesOfRepeatingEntries)
{
    DiaryEntry* series = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'T', "Weekly review", &series), ZBErrC_ok);
    series->edit_due().set_orig(utc(2026, 11, 27, 16));
    ASSERT_EQ(series->edit_repeat().from_string("T=3@N=1"), ZBErrC_ok);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    ASSERT_EQ(series->edit_erepeat().generate_slots(false, ZBDateSlot(utc(2026, 11, 23), utc(2027, 1, 31)), 100),
              ZBErrC_ok);
    ASSERT_TRUE(series->get_erepeat().has_slots());

    ASSERT_EQ(importer.import(diary, R"({"description":"Buy paper","status":"pending"})"), ZBErrC_ok);
    EXPECT_FALSE(series->get_erepeat().has_slots());

    // A refused import changes nothing, so it forgets nothing either.
    series->edit_erepeat().generate_slots(false, ZBDateSlot(utc(2026, 11, 23), utc(2027, 1, 31)), 100);
    EXPECT_NE(importer.import(diary, "not json"), ZBErrC_ok);
    EXPECT_TRUE(series->get_erepeat().has_slots());
}

TEST_F(ImportTasks, AKeyGivenTwiceInOneTaskRefusesTheImportNamingTheLine)
{
    // Which of the two values would the user mean? Nothing goes in.
    const int result = run("{\"description\":\"One\",\"tags\":[\"a\"]}\n"
                           "{\"description\":\"Two\",\"tags\":[\"a\"],\"note\":{\"x\":1},\"tags\":[\"b\"]}\n");
    EXPECT_TRUE(iszbwarn(result));
    ASSERT_NE(get_zberror().top(), nullptr);
    EXPECT_NE(get_zberror().top()->get_message().find("line 2: the key \"tags\" is given twice in one object"),
              std::string::npos)
        << get_zberror().top()->get_message();
    EXPECT_EQ(diary.get_nentries(), 0);
    get_zberror().clear_all();
    // The same key in different objects, or a colon inside a value, is fine.
    ASSERT_EQ(run("[{\"description\":\"a:b\",\"tags\":[\"x\"]},\n {\"description\":\"c\",\"tags\":[\"x\"]}]"), ZBErrC_ok);
    EXPECT_TRUE(importer.get_problems().empty());
    EXPECT_EQ(diary.get_nentries(), 2);
}
