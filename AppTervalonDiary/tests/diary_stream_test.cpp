// The diary file: every facet's fields in their stream order, checked against a
// golden file byte for byte and read back. Set TERVALON_UPDATE_GOLDEN=1 to
// write the golden file again after a deliberate change of the format.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <regex>

using namespace Tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

ZBDateSlot slot(const std::string& start, const std::string& end)
{
    return ZBDateSlot(at(start), at(end));
}

const std::string C_Golden = std::string(TERVALON_TEST_DATA) + "/diary_facets.zbd";

// The one field that names the machine that wrote the file.
std::string without_host(const std::string& text)
{
    return std::regex_replace(text, std::regex("!WriteHost![^\n]*\n"), "!WriteHost!HOST\n");
}

struct Ids {
    int sam;
    int home;
    int task;
    int child;
    int meeting;
};

// A diary where every stored field of an entry is off its default.
Ids make_diary(Diary& diary)
{
    Ids ids{};
    DiarySettings& settings = diary.edit_settings();
    settings.set_lookahead("2 weeks");
    settings.set_workhours(8.0);
    settings.set_sortorder(DiaryEntry::E_SortDueDate);
    settings.set_plandate(at("4-Mar-2026 15:00"));
    settings.set_is_setup(true);
    settings.set_features(DiarySettings::C_FeatureTask | DiarySettings::C_FeaturePrayer);
    Resource* sam = nullptr;
    TimeType* home = nullptr;
    diary.add_resource("Sam", &sam);
    diary.add_timetype("Home", &home);
    ids.sam = sam->get_id();
    ids.home = home->get_id();

    DiaryEntry* task = nullptr;
    diary.create_entry(nullptr, 'T', "Facets; all of them", &task);
    ids.task = task->get_id();
    task->edit_props().set_resource_orig(ids.sam);
    task->edit_props().set_timetype_orig(ids.home);
    task->edit_props().set_report(true);
    task->edit_due_facet().set_autoprogress(EntryDue::E_MatchSpent);
    task->edit_baseline().set_duration(ZBDuration(3 * 3600));
    task->edit_baseline().set_start_end(slot("2-Mar-2026 09:00", "6-Mar-2026 17:00"));
    task->edit_baseline().set_progressive(true);
    task->edit_baseline().set_auto_baseline(2);
    task->edit_spent().add_session(slot("2-Mar-2026 09:00", "2-Mar-2026 10:30"), ids.sam);
    task->edit_spent().add_session(slot("3-Mar-2026 14:00", "3-Mar-2026 15:00"), ids.sam);
    task->edit_spent().set_closed(at("1-Mar-2026 18:00"));
    task->edit_plan().edit_planned().add(slot("4-Mar-2026 09:00", "4-Mar-2026 11:00"), ids.sam);
    task->edit_depend().set_preventothers(true);
    task->edit_depend().set_preventdepend(true);
    task->edit_command().set_expanded_command("fetch now\nbuild all");
    task->edit_command().set_exec_command("fetch");
    task->set_text("First line\nsecond line with a \\ and a ! mark");
    task->edit_start().set_orig(at("3-Mar-2026 08:00"));
    task->edit_due().set_orig(at("6-Mar-2026 17:00"));
    task->edit_priority().set_orig(75.0);
    ZBProgress progress = task->get_duration().orig;
    progress.set_duration(ZBDuration(4 * 3600));
    progress.set_completion(25.0);
    task->edit_duration().set_orig(progress);
    task->edit_repeat().from_string("T=3@N=1");
    task->set_bookmark(true);
    task->set_preserve(true);

    DiaryEntry* child = nullptr;
    diary.create_entry(task, 'J', "Note under the task", &child);
    ids.child = child->get_id();
    child->edit_time().set_orig(slot("2-Mar-2026 21:00", "2-Mar-2026 21:00"));

    DiaryEntry* meeting = nullptr;
    diary.create_entry(nullptr, 'A', "Meeting", &meeting);
    ids.meeting = meeting->get_id();
    meeting->edit_time().set_orig(slot("4-Mar-2026 10:00", "4-Mar-2026 10:45"));
    meeting->edit_depend().set_depend_ids({ids.task});
    meeting->edit_depend().set_depend_titles({"Facets; all of them", "Second title"});
    return ids;
}

// Each tag starts a line of text, after the one before it.
void expect_in_order(const std::string& text, const std::vector<std::string>& tags)
{
    size_t last = 0;
    for (const std::string& tag : tags) {
        const size_t at = text.find("\n" + tag);
        ASSERT_NE(at, std::string::npos) << tag << " in\n" << text;
        EXPECT_LT(last, at) << tag << " in\n" << text;
        last = at;
    }
}

struct DiaryStream : public ::testing::Test {
    void SetUp() override { ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00")); }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }
};

} // namespace

TEST_F(DiaryStream, FacetsAreWrittenInOrderAndReadBack)
{
    const std::string dir = Tervalon::Test::make_temp_dir("diary_stream");
    const std::string file = dir + "/facets.zbd";
    Ids ids{};
    {
        Diary diary;
        ASSERT_EQ(diary.create(file, true), ZBErrC_ok);
        ids = make_diary(diary);
        ASSERT_EQ(diary.recalculate(ZBDatabase::E_RecalcQuick), ZBErrC_ok);
        ASSERT_EQ(diary.complete_operation("Golden"), ZBErrC_ok);
        ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
        diary.unload();
    }
    {
        // A new file takes its final form (file version, features) at its
        // first load; the golden file is that form.
        Diary diary;
        ASSERT_EQ(diary.load(file, false), ZBErrC_ok);
        ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
        diary.unload();
    }
    const std::string written = without_host(Tervalon::Test::read_file(file));
    if (std::getenv("TERVALON_UPDATE_GOLDEN"))
        Tervalon::Test::write_file(C_Golden, written);
    ASSERT_TRUE(Tervalon::Test::file_exists(C_Golden)) << C_Golden;
    EXPECT_EQ(written, Tervalon::Test::read_file(C_Golden));

    // The golden file read back gives every field, and writes itself again unchanged.
    const std::string copy = dir + "/copy.zbd";
    Tervalon::Test::write_file(copy, Tervalon::Test::read_file(C_Golden));
    Diary diary;
    ASSERT_EQ(diary.load(copy, false), ZBErrC_ok);
    ASSERT_EQ(diary.get_nentries(), 2);
    const DiaryEntry* task = diary.get_entry_id(ids.task);
    ASSERT_NE(task, nullptr);
    EXPECT_EQ(task->get_entrytype(), 'T');
    EXPECT_EQ(task->get_summary(), "Facets; all of them");
    EXPECT_EQ(task->get_text(), "First line\nsecond line with a \\ and a ! mark");
    EXPECT_EQ(task->get_props().get_resource_orig(), ids.sam);
    EXPECT_EQ(task->get_props().get_timetype_orig(), ids.home);
    EXPECT_TRUE(task->get_props().get_report());
    EXPECT_EQ(task->get_due_facet().get_autoprogress(), EntryDue::E_MatchSpent);
    EXPECT_EQ(task->get_baseline().get_duration().orig, ZBDuration(3 * 3600));
    EXPECT_EQ(task->get_baseline().get_start_end().orig, slot("2-Mar-2026 09:00", "6-Mar-2026 17:00"));
    EXPECT_TRUE(task->get_baseline().get_progressive());
    EXPECT_EQ(task->get_baseline().get_auto_baseline(), 2);
    ASSERT_EQ(task->get_spent().get_sessions().size(), 2);
    EXPECT_EQ(task->get_spent().get_sessions()[1]->m_type, ids.sam);
    EXPECT_EQ(task->get_spent().get_sessions().end(), at("3-Mar-2026 15:00"));
    EXPECT_EQ(task->get_spent().get_closed(), at("1-Mar-2026 18:00"));
    ASSERT_EQ(task->get_plan().get_planned().size(), 1);
    EXPECT_EQ(task->get_plan().get_planned().start(), at("4-Mar-2026 09:00"));
    EXPECT_TRUE(task->get_depend().get_preventothers());
    EXPECT_TRUE(task->get_depend().get_preventdepend());
    EXPECT_EQ(task->get_command().get_expanded_command(), "fetch now\nbuild all");
    EXPECT_EQ(task->get_command().get_exec_command(), "fetch");
    EXPECT_EQ(task->get_start().orig, at("3-Mar-2026 08:00"));
    EXPECT_EQ(task->get_due().orig, at("6-Mar-2026 17:00"));
    EXPECT_EQ(task->get_priority().orig, 75.0);
    EXPECT_EQ(task->get_duration().orig.get_duration(), ZBDuration(4 * 3600));
    EXPECT_EQ(task->get_duration().orig.get_completion(), 25.0);
    EXPECT_EQ(task->get_repeat().to_string(), "T=3@N=1");
    EXPECT_TRUE(task->get_bookmark());
    EXPECT_TRUE(task->get_preserve());
    ASSERT_EQ(task->get_nchildren(), 1);
    EXPECT_EQ(task->get_child_no(0)->get_id(), ids.child);
    EXPECT_EQ(task->get_child_no(0)->get_time().orig.m_start, at("2-Mar-2026 21:00"));
    const DiaryEntry* meeting = diary.get_entry_id(ids.meeting);
    ASSERT_NE(meeting, nullptr);
    EXPECT_EQ(meeting->get_time().orig, slot("4-Mar-2026 10:00", "4-Mar-2026 10:45"));
    EXPECT_EQ(meeting->get_depend().get_depend_ids(), std::vector<int>{ids.task});
    EXPECT_EQ(meeting->get_depend().get_depend_titles(),
              (std::vector<std::string>{"Facets; all of them", "Second title"}));
    const DiarySettings& settings = diary.get_settings();
    EXPECT_EQ(settings.get_lookahead(), "2 weeks");
    EXPECT_EQ(settings.get_workhours(), 8.0);
    EXPECT_EQ(settings.get_sortorder(), int(DiaryEntry::E_SortDueDate));
    EXPECT_EQ(settings.get_plandate(), at("4-Mar-2026 00:00")); // always the start of its day
    EXPECT_TRUE(settings.get_is_setup());
    EXPECT_EQ(settings.get_features(), DiarySettings::C_FeatureTask | DiarySettings::C_FeaturePrayer);
    EXPECT_NE(diary.get_resource_by_name("Sam"), nullptr);
    EXPECT_NE(diary.get_timetype_by_name("Home"), nullptr);

    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    diary.unload();
    EXPECT_EQ(without_host(Tervalon::Test::read_file(copy)), Tervalon::Test::read_file(C_Golden));
}

TEST_F(DiaryStream, FacetFieldsKeepTheirPlaceInTheEntry)
{
    // The order of the tags in an entry is the order of the facets: the type,
    // properties, progress kind, baseline, sessions, plans, dependencies and
    // commands, then the fields every dated record holds, then the object's own.
    ASSERT_TRUE(Tervalon::Test::file_exists(C_Golden));
    const std::string golden = Tervalon::Test::read_file(C_Golden);
    const size_t begin = golden.find("!Sm!Facets; all of them");
    const size_t entry = golden.rfind("{DiaryEntry", begin);
    ASSERT_NE(entry, std::string::npos);
    const std::string record = golden.substr(entry, golden.find("\n}\n@O:", entry) - entry);
    const std::vector<std::string> order = {"!et!", "!re!", "!tt!", "!rz!", "!ap!", "!bd!", "!st!", "!pg!", "!ab!", "@se",
                                 "!cl!", "@pl",  "!dpo!", "!dpd!", "!cd!", "!ex!", "@Rpt", "!Sm!", "!Tx!", "!Tm!",
                                 "!SA!", "!DD!", "!Pr!", "!Dn!", "!BM!", "!PV!", "!I!"};
    expect_in_order(record, order);

    // The settings open the diary's own record, before its import and calendar.
    const size_t diary = golden.find("{Diary\n");
    ASSERT_NE(diary, std::string::npos);
    const std::string head = golden.substr(diary, golden.find("\n}\n@O:", diary) - diary);
    expect_in_order(head, {"!LA!", "!WH!", "!S!", "!PD!", "!SU!", "!FT!", "@diaryImport", "@calendar", "!AFV!"});
}

TEST_F(DiaryStream, TheJournalsCheckListIsKeptInOrderWithItsSettings)
{
    const std::string file = Tervalon::Test::make_temp_dir("journal_checks") + "/checks.zbd";
    {
        Diary diary;
        ASSERT_EQ(diary.create(file, true), ZBErrC_ok);
        JournalCheck* walk = nullptr;
        JournalCheck* weight = nullptr;
        ASSERT_EQ(diary.add_journalcheck("Walk", &walk), ZBErrC_ok);
        ASSERT_EQ(diary.add_journalcheck("Weight", &weight), ZBErrC_ok);
        weight->set_prompt("Weight this morning (kg)");
        weight->set_type(JournalCheck::E_TypeNumber);
        walk->set_enabled(false);
        ASSERT_EQ(diary.complete_operation("Checks"), ZBErrC_ok);
        ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
        diary.unload();
    }
    const std::string text = Tervalon::Test::read_file(file);
    ASSERT_NE(text.find("!p!Weight this morning (kg)"), std::string::npos) << text;
    Diary diary;
    ASSERT_EQ(diary.load(file, false), ZBErrC_ok);
    ASSERT_EQ(diary.get_njournalchecks(), 2);
    const JournalCheck* walk = diary.get_journalcheck_by_index(0);
    const JournalCheck* weight = diary.get_journalcheck_by_index(1);
    EXPECT_EQ(walk->get_name(), "Walk");
    EXPECT_FALSE(walk->is_enabled());
    EXPECT_EQ(walk->get_prompt(), "Walk") << "no prompt of its own asks by name";
    EXPECT_EQ(weight->get_prompt(), "Weight this morning (kg)");
    EXPECT_EQ(weight->get_type(), JournalCheck::E_TypeNumber);
    EXPECT_TRUE(weight->is_enabled());
    // A type this release does not know (from a newer one) reads as a tick.
    JournalCheck other;
    other.set_type(7);
    EXPECT_EQ(other.get_type(), JournalCheck::E_TypeTick);
}
