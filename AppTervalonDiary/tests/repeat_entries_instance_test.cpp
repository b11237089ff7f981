// Breaking instances of a series out into entries of their own, one at a
// time or as a sequence, in the model and through the command line.
#include "AppTervalonDiary/tests/clirun.h"
#include "AppTervalonDiary/tests/plan_fixture.h"

#include <memory>
#include <vector>

using namespace Tervalon;
using Tervalon::Test::tervalon;

namespace {
struct RepeatInstance : public Test::PlanFixture {
    // A task due daily at 09:00 from 3 March, its range ending on 6 March:
    // instances due on the 3rd, 4th, 5th and 6th.
    DiaryEntry* daily(const char* title = "Daily")
    {
        DiaryEntry* task = add(nullptr, title);
        task->edit_due().set_orig(at("3-Mar-2026 09:00"));
        task->edit_repeat().from_string("T=2@N=1");
        task->edit_repeat().set_range_end(at("6-Mar-2026 12:00"), false);
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        return task;
    }
    int live_entries() const { return int(diary.get_display_list().size()); }
};
} // namespace

TEST_F(RepeatInstance, AnInstanceAtTheStartMiddleOrEndOfASeriesBecomesItsOwnEntry)
{
    struct Row {
        const char* date;
        const char* copyDue;    // the new entry's due
        const char* seriesDue;  // where the series stands afterwards
        bool seriesRepeats;
        int instancesLeft;      // in the series, counted from its current one
    } rows[] = {
        // The current instance: the series moves on to the next.
        {"3-Mar-2026", "3-Mar-2026 09:00", "4-Mar-2026 09:00", true, 3},
        // A middle one: the series skips that day and goes on.
        {"5-Mar-2026", "5-Mar-2026 09:00", "3-Mar-2026 09:00", true, 3},
        // The last one: the series ends before it.
        {"6-Mar-2026 09:00", "6-Mar-2026 09:00", "3-Mar-2026 09:00", true, 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.date);
        DiaryEntry* series = daily();
        const int before = live_entries();
        int made = -1;
        ASSERT_EQ(EntryRepeat::create_instance(&diary, series, at(row.date), -1, &made), ZBErrC_ok);
        DiaryEntry* copy = diary.get_entry_id(made);
        ASSERT_NE(copy, nullptr);
        ASSERT_NE(copy, series);
        EXPECT_EQ(live_entries(), before + 1);
        EXPECT_FALSE(copy->get_repeat().is_repeating());
        EXPECT_EQ(copy->get_due().orig, at(row.copyDue));
        EXPECT_EQ(copy->get_parent(), series->get_parent());
        EXPECT_EQ(series->get_due().orig, at(row.seriesDue));
        EXPECT_EQ(series->get_repeat().is_repeating(), row.seriesRepeats);
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        series->edit_erepeat().generate_slots(false, ZBDateSlot(at("2-Mar-2026 08:00"), at("31-Mar-2026 08:00")), 100);
        EXPECT_EQ(int(series->get_erepeat().get_slots().size()), row.instancesLeft);
        for (const ZBDateSlot& slot : series->get_erepeat().get_slots())
            EXPECT_NE(slot.m_end, copy->get_due().orig);
    }
}

// Plans and sessions belong to the instance they were made for.
TEST_F(RepeatInstance, TheCurrentInstanceTakesItsPlansAndWorkAlongALaterOneNone)
{
    DiaryEntry* series = daily();
    const int resource = diary.get_default_resource_id();
    series->edit_plan().edit_planned().add(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:00")), resource);
    series->edit_plan().edit_planned().add(ZBDateSlot(at("4-Mar-2026 07:00"), at("4-Mar-2026 08:00")), resource);
    series->edit_spent().add_session(ZBDateSlot(at("2-Mar-2026 06:00"), at("2-Mar-2026 07:00")), resource);
    int later = -1;
    ASSERT_EQ(EntryRepeat::create_instance(&diary, series, at("5-Mar-2026"), -1, &later), ZBErrC_ok);
    const DiaryEntry* fresh = diary.get_entry_id(later);
    EXPECT_TRUE(fresh->get_plan().get_planned().empty());
    EXPECT_TRUE(fresh->get_spent().get_sessions().empty());
    EXPECT_EQ(series->get_plan().get_planned().size(), 2);

    int current = -1;
    ASSERT_EQ(EntryRepeat::create_instance(&diary, series, at("3-Mar-2026"), -1, &current), ZBErrC_ok);
    const DiaryEntry* done = diary.get_entry_id(current);
    EXPECT_EQ(done->get_plan().get_planned().size(), 2);
    EXPECT_EQ(done->get_spent().get_sessions().size(), 1);
    // The series keeps only what lies in its new instance.
    ASSERT_EQ(series->get_plan().get_planned().size(), 1);
    EXPECT_EQ(series->get_plan().get_planned().start(), at("4-Mar-2026 07:00"));
    EXPECT_TRUE(series->get_spent().get_sessions().empty());
}

TEST_F(RepeatInstance, ConvertingWhatIsLeftOfASeriesTurnsItOff)
{
    // Two instances left: converting the second leaves only the first.
    DiaryEntry* series = daily();
    series->edit_repeat().set_range_end(at("4-Mar-2026 12:00"), false);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    int made = -1;
    ASSERT_EQ(EntryRepeat::create_instance(&diary, series, ZBDate(ZBDate::E_Blank), 1, &made), ZBErrC_ok);
    EXPECT_EQ(diary.get_entry_id(made)->get_due().orig, at("4-Mar-2026 09:00"));
    EXPECT_FALSE(series->get_repeat().is_repeating());
    EXPECT_EQ(series->get_due().orig, at("3-Mar-2026 09:00"));

    // One instance left: the series itself becomes the entry, with no copy.
    DiaryEntry* single = daily("Single");
    single->edit_repeat().set_range_end(at("3-Mar-2026 12:00"), false);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    const int before = live_entries();
    ASSERT_EQ(EntryRepeat::create_instance(&diary, single, at("3-Mar-2026"), -1, &made), ZBErrC_ok);
    EXPECT_EQ(made, single->get_id());
    EXPECT_EQ(live_entries(), before);
    EXPECT_FALSE(single->get_repeat().is_repeating());
}

TEST_F(RepeatInstance, BadRequestsChangeNothing)
{
    DiaryEntry* series = daily();
    DiaryEntry* once = add(nullptr, "Once");
    const int before = live_entries();
    int made = -1;
    struct Row {
        DiaryEntry* entry;
        const char* date;
        int sequence;
    } rows[] = {
        {once, "3-Mar-2026", -1},       // does not repeat
        {series, "20-Mar-2026", -1},    // past the series' end
        {series, "", 9},                // no ninth instance
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.date);
        ZBDate date(ZBDate::E_Blank);
        if (*row.date)
            date = at(row.date);
        EXPECT_TRUE(iszbwarn(EntryRepeat::create_instance(&diary, row.entry, date, row.sequence, &made)));
        get_zberror().clear_all();
        EXPECT_EQ(made, -1);
        EXPECT_EQ(live_entries(), before);
        EXPECT_TRUE(series->get_repeat().is_repeating());
        EXPECT_EQ(series->get_due().orig, at("3-Mar-2026 09:00"));
    }
    std::vector<int> ids;
    for (int count : {0, -3, EntryRepeat::C_MaxInstances + 1}) {
        EXPECT_TRUE(iszbwarn(EntryRepeat::create_sequence(&diary, series, count, false, false, &ids))) << count;
        get_zberror().clear_all();
    }
    // More dated entries than the series has instances.
    EXPECT_TRUE(iszbwarn(EntryRepeat::create_sequence(&diary, series, 5, true, false, &ids)));
    get_zberror().clear_all();
    EXPECT_TRUE(iszbwarn(EntryRepeat::create_sequence(&diary, once, 2, false, false, &ids)));
    get_zberror().clear_all();
    EXPECT_EQ(live_entries(), before);
    EXPECT_TRUE(series->get_repeat().is_repeating());
}

TEST_F(RepeatInstance, AChainedSequenceDependsStrictlyOnTheEntryBefore)
{
    DiaryEntry* series = daily();
    std::vector<int> ids;
    ASSERT_EQ(diary.generate_sequence(*series, 4, true, true, false), ZBErrC_ok);
    ids.push_back(series->get_id());
    for (const DiaryEntry* entry : diary.get_display_list())
        if (entry != series)
            ids.push_back(entry->get_id());
    ASSERT_EQ(ids.size(), 4u);
    EXPECT_FALSE(series->get_repeat().is_repeating());
    const char* dues[] = {"3-Mar-2026 09:00", "4-Mar-2026 09:00", "5-Mar-2026 09:00", "6-Mar-2026 09:00"};
    for (size_t i = 0; i < ids.size(); ++i) {
        const DiaryEntry* entry = diary.get_entry_id(ids[i]);
        ASSERT_NE(entry, nullptr);
        SCOPED_TRACE(entry->get_summary() + " " + std::to_string(i));
        EXPECT_FALSE(entry->get_repeat().is_repeating());
        EXPECT_EQ(entry->get_due().orig, at(dues[i]));
        // Each depends on the one before and on nothing else.
        const std::vector<int> expected = i == 0 ? std::vector<int>() : std::vector<int>{ids[i - 1]};
        std::vector<int> depends;
        for (int d = 0; d < entry->get_depend().get_ndepends(); ++d)
            depends.push_back(entry->get_depend().get_depend_no(d));
        EXPECT_EQ(depends, expected);
    }
    ASSERT_EQ(diary.calculate_dependencies(), ZBErrC_ok);
    EXPECT_TRUE(diary.get_circular_dependencies().empty());
}

TEST_F(RepeatInstance, AnUndatedSequenceCopiesTheEntryWithoutLinks)
{
    DiaryEntry* series = daily();
    std::vector<int> ids;
    ASSERT_EQ(EntryRepeat::create_sequence(&diary, series, 3, false, false, &ids), ZBErrC_ok);
    ASSERT_EQ(ids.size(), 3u);
    for (int id : ids) {
        const DiaryEntry* entry = diary.get_entry_id(id);
        EXPECT_EQ(entry->get_due().orig, at("3-Mar-2026 09:00"));
        EXPECT_EQ(entry->get_depend().get_ndepends(), 0);
    }
}

TEST_F(RepeatInstance, TheCommandsConvertAndRefuseWithoutTouchingTheFile)
{
    const int seriesId = daily()->get_id();
    const std::string id = std::to_string(seriesId);
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    diary.unload();
    const std::string original = Tervalon::Test::read_file(file);

    struct Row {
        std::vector<std::string> args;
        const char* err; // part of the one-line message
    } bad[] = {
        {{"instance", file, id, "20-Mar-2026"}, "has no instance on"},
        {{"instance", file, "999", "4-Mar-2026"}, "There is no entry with the id 999."},
        {{"instance", file, id, "soonish"}, ""},
        {{"sequence", file, id, "0"}, "must be from 1 to 10000, not 0"},
        {{"sequence", file, id, "99999999999"}, "must be from 1 to 10000"},
        {{"sequence", file, id, "3x"}, "COUNT"},
        {{"sequence", file, id, "5", "--dates"}, "has only 4 instances"},
        {{"sequence", file, id, "2", "--later"}, "--later"},
    };
    for (const Row& row : bad) {
        SCOPED_TRACE(row.args[0] + " " + row.args[3]);
        Tervalon::Test::CliRun run = tervalon(row.args);
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_NE(run.err.find(row.err), std::string::npos) << run.err;
        // One line, or a usage error's line and the usage under it.
        if (run.err.find("Usage:") == std::string::npos)
            EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
        EXPECT_EQ(Tervalon::Test::read_file(file), original);
    }

    Tervalon::Test::CliRun one = tervalon({"instance", file, id, "5-Mar-2026"});
    ASSERT_EQ(one.status, 0) << one.err;
    Tervalon::Test::CliRun chain = tervalon({"sequence", file, id, "2", "--chain", "--dates"});
    ASSERT_EQ(chain.status, 0) << chain.err;
    EXPECT_EQ(chain.out.substr(0, id.size() + 1), id + "\n");

    Diary reread;
    ASSERT_EQ(reread.read(file), ZBErrC_ok);
    EXPECT_EQ(reread.get_display_list().size(), 3u);
    const DiaryEntry* kept = reread.get_entry_id(seriesId);
    ASSERT_NE(kept, nullptr);
    EXPECT_FALSE(kept->get_repeat().is_repeating());
    reread.unload();
}
