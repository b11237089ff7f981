// Facets that an entry makes only when it first edits them: an untouched entry
// answers with a shared default, which no edit of another entry may reach, and
// copies, assignment, reading over a live entry and revert treat a facet that
// was never made exactly as a default one.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Tervalon;

namespace {

const ZBDate kNine(2026, 3, 2, 9, 0, 0, 0, ZBDate::C_GMT);
const ZBDateSlot kSession(kNine, kNine + ZBDuration(3600));

class EntryFacetSharing : public Tervalon::Test::QuietErrors {
protected:
    void SetUp() override
    {
        Tervalon::Test::QuietErrors::SetUp();
        ZBDateUtils::set_fixed_now(kNine);
        ASSERT_FALSE(iszbwarn(diary.load("", false)));
        ASSERT_FALSE(iszbwarn(diary.create_entry(nullptr, 'T', "First", &first)));
        ASSERT_FALSE(iszbwarn(diary.create_entry(nullptr, 'T', "Second", &second)));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        Tervalon::Test::QuietErrors::TearDown();
    }
    static std::string text_of(const DiaryEntry& entry)
    {
        std::string text;
        EXPECT_FALSE(iszbwarn(entry.object_to_string(text, 0)));
        return text;
    }
    // Every facet that is made on demand, off its default.
    static void fill(DiaryEntry& entry)
    {
        entry.edit_plan().edit_planned().add(kSession, 0);
        entry.edit_spent().edit_sessions().add(kSession, 0);
        entry.edit_baseline().set_duration(ZBDuration(7200));
        entry.edit_depend().set_activedepends(2);
        entry.edit_command().set_command("make report");
        entry.edit_due_facet().set_autoprogress(EntryDue::E_MatchSpent);
    }
    static void expect_defaults(const DiaryEntry& entry)
    {
        EXPECT_TRUE(entry.get_plan().get_planned().empty());
        EXPECT_TRUE(entry.get_spent().get_sessions().empty());
        EXPECT_TRUE(entry.get_baseline().get_duration().orig.is_zero());
        EXPECT_EQ(entry.get_depend().get_activedepends(), -1);
        EXPECT_EQ(entry.get_command().get_command(), "");
        EXPECT_EQ(entry.get_due_facet().get_autoprogress(), EntryDue::E_Manual);
    }

    Diary diary;
    DiaryEntry* first = nullptr;
    DiaryEntry* second = nullptr;
};

TEST_F(EntryFacetSharing, EditingOneEntryLeavesEveryOtherAtTheDefaults)
{
    const std::string untouched = text_of(*second);
    fill(*first);
    expect_defaults(*second);
    EXPECT_EQ(text_of(*second), untouched);
    // Dependencies that hold the first back do not hold the second.
    EXPECT_FALSE(first->is_active());
    EXPECT_TRUE(second->is_active());
    EXPECT_EQ(first->get_plan().get_planned().size(), 1);
    EXPECT_EQ(first->get_command().get_command(), "make report");
}

TEST_F(EntryFacetSharing, CopiesAndAssignmentCarryTheFacetsOrTheirAbsence)
{
    fill(*first);
    DiaryEntry copy(*first);
    EXPECT_EQ(text_of(copy), text_of(*first));
    // The copy's facets are its own.
    copy.edit_command().set_command("other");
    EXPECT_EQ(first->get_command().get_command(), "make report");

    DiaryEntry plain;
    copy = plain;
    expect_defaults(copy);
    EXPECT_EQ(text_of(copy), text_of(plain));

    copy = *first;
    EXPECT_EQ(text_of(copy), text_of(*first));
    copy.set_defaults(true);
    expect_defaults(copy);
}

TEST_F(EntryFacetSharing, ReadingBackGivesTheSameTextAndRevertDropsNewFacets)
{
    fill(*first);
    const std::string text = text_of(*first);
    DiaryEntry read;
    ASSERT_FALSE(iszbwarn(read.object_from_string(text, 0)));
    EXPECT_EQ(text_of(read), text);
    EXPECT_EQ(read.get_plan().get_planned().size(), 1);
    EXPECT_EQ(read.get_depend().get_activedepends(), -1) << "not a stored field";

    // An edit that adds facets and is then reverted leaves none of them behind.
    const std::string before = text_of(*second);
    ASSERT_FALSE(iszbwarn(second->edit(-1, false)));
    fill(*second);
    ASSERT_FALSE(iszbwarn(second->revert()));
    EXPECT_TRUE(second->get_plan().get_planned().empty());
    EXPECT_TRUE(second->get_spent().get_sessions().empty());
    EXPECT_EQ(second->get_command().get_command(), "");
    EXPECT_EQ(second->get_due_facet().get_autoprogress(), EntryDue::E_Manual);
    EXPECT_EQ(text_of(*second), before);
}

TEST_F(EntryFacetSharing, EntriesReadOneAfterAnotherEachGetOnlyTheirOwnFacets)
{
    fill(*first);
    second->edit_command().set_command("second only");
    const std::string texts[] = {text_of(*first), text_of(*second), text_of(DiaryEntry()), text_of(*first)};
    std::vector<std::unique_ptr<DiaryEntry>> read;
    for (const std::string& text : texts) {
        read.emplace_back(new DiaryEntry());
        ASSERT_FALSE(iszbwarn(read.back()->object_from_string(text, 0)));
    }
    for (size_t i = 0; i < read.size(); ++i)
        EXPECT_EQ(text_of(*read[i]), texts[i]) << i;
    EXPECT_TRUE(read[1]->get_plan().get_planned().empty());
    EXPECT_EQ(read[1]->get_command().get_command(), "second only");
    expect_defaults(*read[2]);
    // Each has a plan of its own.
    read[3]->edit_plan().edit_planned().clear();
    EXPECT_EQ(read[0]->get_plan().get_planned().size(), 1);
}

TEST_F(EntryFacetSharing, AnEntryIsAFractionOfItsFormerSize)
{
    // Eleven full database objects made an entry close to ten kilobytes before
    // any heap use; the parts most entries never use are now made on demand.
    EXPECT_LE(sizeof(ZBDBObject), 128u);
    EXPECT_LE(sizeof(DiaryEntry), 2600u);
}

} // namespace
