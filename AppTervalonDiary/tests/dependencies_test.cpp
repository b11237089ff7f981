#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tervalon;

namespace {

struct Dependencies : public ::testing::Test {
    void SetUp() override
    {
        ZBDate now;
        now.from_string("2-Mar-2026 08:00");
        ZBDateUtils::set_fixed_now(now);
        ASSERT_EQ(diary.create(Tervalon::Test::make_temp_dir("dependencies") + "/d.zbd", true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
    }
    DiaryEntry* add(DiaryEntry* parent, const std::string& title, char type = 'T')
    {
        DiaryEntry* entry = nullptr;
        EXPECT_EQ(diary.create_entry(parent, type, title, &entry), ZBErrC_ok);
        return entry;
    }
    void resolve()
    {
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        diary.calculate_dependencies();
    }
    static bool holds(const std::vector<int>& ids, const DiaryEntry* entry)
    {
        return std::find(ids.begin(), ids.end(), entry->get_id()) != ids.end();
    }
    int loops_on(const DiaryEntry* entry) const
    {
        int count = 0;
        for (const ZBDBCheckItem* item : diary.get_circular_dependencies())
            count += item->get_id() == entry->get_id();
        return count;
    }
    Diary diary;
};

} // namespace

// The title search: nearest first, keywords narrow or widen it.
TEST_F(Dependencies, TitleSearchFindsTheNearestMatchAndObeysItsKeywords)
{
    DiaryEntry* projectA = add(nullptr, "Project A", 'O');
    DiaryEntry* projectB = add(nullptr, "Project B", 'O');
    DiaryEntry* farReport = add(projectB, "Write report");
    DiaryEntry* nearReport = add(projectA, "Write report");
    DiaryEntry* asker = add(projectA, "Send it");
    add(add(projectB, "Drafts", 'O'), "Draft");
    DiaryEntry* under12 = add(farReport, "Draft");

    struct Row {
        const char* title;
        const DiaryEntry* expected; // null: nothing found
    } rows[] = {
        {"Write report", nearReport},              // a sibling before a same title elsewhere
        {"  Write report  ", nearReport},          // surrounding space does not count
        {"report", nullptr},                       // exact by default
        {"[PARTIAL]report", nearReport},           // a part of the title with the keyword
        {"[LEVEL]Draft", nullptr},                 // only the entry's own level
        {"Draft", under12},                        // in depth, after every level above, depth first
        {"[BLOCK]Write report", nullptr},          // a block is not a dependency
        {"Project B", projectB},                   // the top level
    };
    for (const Row& row : rows) {
        const int found = EntryDepend::find_title(row.title, diary, *asker, false);
        EXPECT_EQ(found, row.expected ? row.expected->get_id() : -1) << row.title;
    }
    const std::string underId = "[ID=" + std::to_string(farReport->get_id()) + "]Draft";
    EXPECT_EQ(EntryDepend::find_title(underId, diary, *asker, false), under12->get_id());
    EXPECT_EQ(EntryDepend::find_title("[BLOCK]Write report", diary, *asker, true), nearReport->get_id());
    // The entry never finds itself or its ancestors.
    EXPECT_EQ(EntryDepend::find_title("Project A", diary, *asker, false), -1);
    EXPECT_EQ(EntryDepend::find_title("Send it", diary, *asker, false), -1);
}

TEST_F(Dependencies, ParentsPassDependenciesToTheirLeavesAndOfferTheirLeaves)
{
    DiaryEntry* first = add(nullptr, "First");
    DiaryEntry* folder = add(nullptr, "Folder", 'O');
    DiaryEntry* leafA = add(folder, "Leaf A");
    DiaryEntry* leafB = add(folder, "Leaf B");
    DiaryEntry* loner = add(folder, "Loner");
    DiaryEntry* after = add(nullptr, "After");
    folder->edit_depend().add_depend(first->get_id());
    loner->edit_depend().set_preventdepend(true);
    after->edit_depend().add_depend(folder->get_id());
    resolve();

    EXPECT_TRUE(holds(leafA->get_depend().get_full_depends(), first));
    EXPECT_TRUE(holds(leafB->get_depend().get_full_depends(), first));
    EXPECT_FALSE(holds(loner->get_depend().get_full_depends(), first));
    // A dependency on a folder is one on its leaves, and through them on what they wait for.
    EXPECT_TRUE(holds(after->get_depend().get_full_depends(), leafA));
    EXPECT_TRUE(holds(after->get_depend().get_full_depends(), loner));
    EXPECT_TRUE(holds(after->get_depend().get_full_depends(), first));
    EXPECT_TRUE(holds(first->get_depend().get_depends_this(), leafA));
    EXPECT_TRUE(holds(first->get_depend().get_depends_this(), after));

    // An entry that offers no leaves cannot be waited for through.
    folder->edit_depend().set_preventothers(true);
    resolve();
    EXPECT_TRUE(after->get_depend().get_full_depends().empty());
}

TEST_F(Dependencies, ACompletedTaskIsFollowedButNotListed)
{
    DiaryEntry* a = add(nullptr, "A");
    DiaryEntry* b = add(nullptr, "B");
    DiaryEntry* c = add(nullptr, "C");
    b->edit_depend().add_depend(a->get_id());
    c->edit_depend().add_depend(b->get_id());
    b->set_completion(100, true);
    resolve();
    const std::vector<int>& full = c->get_depend().get_full_depends();
    EXPECT_FALSE(holds(full, b));
    EXPECT_TRUE(holds(full, a));
}

TEST_F(Dependencies, LoopsOfAnyLengthAreReportedAndBroken)
{
    DiaryEntry* a = add(nullptr, "A");
    DiaryEntry* b = add(nullptr, "B");
    a->edit_depend().add_depend(b->get_id());
    b->edit_depend().add_depend(a->get_id());
    resolve();
    EXPECT_EQ(loops_on(a), 1);
    EXPECT_EQ(loops_on(b), 1);
    bool found = false;
    for (const ZBDBCheckItem* item : diary.get_circular_dependencies())
        found = found || item->get_message() == "This depends on B (ID " + std::to_string(b->get_id()) +
                                                     "), which depends back on this.";
    EXPECT_TRUE(found);

    // A ring of fifty: reported, and no list holds its own entry.
    std::vector<DiaryEntry*> ring;
    for (int i = 0; i < 50; ++i)
        ring.push_back(add(nullptr, "R" + std::to_string(i)));
    for (int i = 0; i < 50; ++i)
        ring[size_t(i)]->edit_depend().add_depend(ring[size_t((i + 1) % 50)]->get_id());
    resolve();
    int reported = 0;
    for (DiaryEntry* entry : ring) {
        reported += loops_on(entry);
        EXPECT_FALSE(holds(entry->get_depend().get_full_depends(), entry));
    }
    EXPECT_GE(reported, 1);
    // Resolving again gives the same findings, not more.
    const size_t before = diary.get_circular_dependencies().size();
    resolve();
    EXPECT_EQ(diary.get_circular_dependencies().size(), before);
}

TEST_F(Dependencies, ActiveDependenciesBlockATask)
{
    DiaryEntry* a = add(nullptr, "A");
    DiaryEntry* b = add(nullptr, "B");
    DiaryEntry* c = add(nullptr, "C");
    b->edit_depend().add_depend(a->get_id());
    c->edit_depend().add_depend(b->get_id());
    resolve();
    for (DiaryEntry* entry : {a, b, c})
        entry->edit_depend().set_activedepends(-1);
    c->upgrade_active_depend(diary);
    EXPECT_EQ(c->get_depend().get_activedepends(), 1);
    // What c waits for was worked out on the way.
    EXPECT_EQ(a->get_depend().get_activedepends(), 0);
    EXPECT_TRUE(a->is_active());
    EXPECT_FALSE(c->is_active());
}

TEST_F(Dependencies, PickersLeaveOutWhatWouldMakeALoop)
{
    DiaryEntry* folder = add(nullptr, "Folder", 'O');
    DiaryEntry* child = add(folder, "Child");
    DiaryEntry* waiter = add(nullptr, "Waiter");
    waiter->edit_depend().add_depend(child->get_id());
    resolve();
    std::vector<int> excluded;
    child->get_depend().get_exclude_depend(diary, excluded, false);
    EXPECT_TRUE(holds(excluded, child));
    EXPECT_TRUE(holds(excluded, folder));
    EXPECT_TRUE(holds(excluded, waiter));
    excluded.clear();
    folder->get_depend().get_exclude_depend(diary, excluded, true);
    EXPECT_TRUE(holds(excluded, child));
    EXPECT_FALSE(holds(excluded, waiter));
}
