#include "AppTervalonDiary/diary/diarydisplay.h"
#include "AppTervalonDiary/diary/latereport.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "AppTervalonDiary/tests/plan_fixture.h"
#include "LibDate/calendar/zbcalendar.h"
#include "LibDate/calendar/zbcalendarentry.h"
#include "LibMarkup/markup/zbmarkuppage.h"

using namespace Tervalon;

namespace {

class Display : public Test::PlanFixture {
protected:
    // Each line of the page's plain text, for finding one row.
    std::string page_text(const DiaryEntry& entry, int flags = DiaryDisplay::C_DumpAll)
    {
        DiaryDisplay display(diary);
        ZBMarkupPage page;
        EXPECT_EQ(display.dump_markup(entry, page, flags), ZBErrC_ok);
        return page.get_raw_text();
    }
    static bool has(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }
    int add_resource(const std::string& name)
    {
        Resource* resource = nullptr;
        EXPECT_EQ(diary.add_resource(name, &resource), ZBErrC_ok);
        return resource ? resource->get_id() : -1;
    }
};

} // namespace

TEST_F(Display, DetailsShowTheRowsAnEntryHasAndWhereItsDatesCameFrom)
{
    DiaryEntry* project = add(nullptr, "Project", 'O');
    project->edit_due().set_orig(at("6-Mar-2026 17:00"));
    DiaryEntry* task = add(project, "Write report");
    set_length(task, 4);
    DiaryEntry* other = add(nullptr, "Gather data");
    set_length(other, 2);
    task->edit_depend().add_depend(other->get_id());
    plan();

    const std::string text = page_text(*task);
    EXPECT_TRUE(has(text, "Due By"));
    EXPECT_TRUE(has(text, "Due Date came from: \tParent: Project")) << text;
    EXPECT_TRUE(has(text, "Total Duration\t4:00 (0.0% done, 4:00 remaining)")) << text;
    EXPECT_TRUE(has(text, "Depends On\tGather data")) << text;
    EXPECT_TRUE(has(text, "Depend Remaining\t2:00 (1 total)")) << text;
    EXPECT_TRUE(has(text, "Own priority: ")) << text;
    EXPECT_TRUE(has(text, "Write report (This Entry)")) << text;
    EXPECT_TRUE(has(text, "Parent: Project")) << text;
    // Rows the entry has nothing for are left out.
    EXPECT_FALSE(has(text, "Repeat Due"));
    EXPECT_FALSE(has(text, "Baseline"));
    EXPECT_FALSE(has(text, "Active ["));
    EXPECT_TRUE(has(page_text(*task, DiaryDisplay::C_DumpDebug), "Without adjusting for due date: "));

    // The entry that blocks shows who waits for it.
    const std::string blocking = page_text(*other);
    EXPECT_TRUE(has(blocking, "Blocks\tWrite report")) << blocking;
    EXPECT_TRUE(has(blocking, "Write report (Dependant)")) << blocking;
}

TEST_F(Display, RepeatRowsKeepTheirLabelsAsWritten)
{
    DiaryEntry* task = add(nullptr, "Water plants");
    task->edit_due().set_orig(at("3-Mar-2026 12:00"));
    task->edit_repeat().from_string("T=2@N=1");
    const bool excluded = task->edit_repeat().set_exclude("9-Mar-2026") == ZBErrC_ok;
    plan();
    const std::string text = page_text(*task);
    EXPECT_TRUE(has(text, "Repeat Due\t")) << text;
    EXPECT_FALSE(has(text, "Repeat Start\t"));
    if (excluded) {
        EXPECT_TRUE(has(text, "Exclude Repeatng\t")) << text;
    }
}

TEST_F(Display, GroupsAndIconsFollowTypeStateAndResource)
{
    const int me = diary.get_default_resource_id();
    const int them = add_resource("Someone else");
    DiaryEntry* mine = add(nullptr, "Mine");
    DiaryEntry* theirs = add(nullptr, "Theirs");
    theirs->edit_props().set_resource_orig(them);
    DiaryEntry* waiting = add(nullptr, "Waiting");
    waiting->edit_due().set_orig(at("9-Mar-2026 12:00"));
    waiting->edit_start().set_orig(at("5-Mar-2026 09:00"));
    DiaryEntry* done = add(nullptr, "Done");
    ASSERT_EQ(done->set_completion(100.0, true), ZBErrC_ok);
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    DiaryEntry* journal = add(nullptr, "Note", 'J');
    DiaryEntry* person = add(nullptr, "Ann", 'P');
    DiaryEntry* place = add(nullptr, "Office", 'L');
    DiaryEntry* address = add(nullptr, "Home", 'D');
    DiaryEntry* object = add(nullptr, "Box", 'O');
    plan();

    struct Case {
        const DiaryEntry* entry;
        char session;
        int group;
        const char* name;
    };
    const Case cases[] = {
        {mine, 0, 5, "Tasks"},
        {waiting, 0, 10, "Pending Tasks"},
        {done, 0, 30, "Completed Tasks"},
        {meeting, 0, 1, "Appointments"},
        {journal, 0, 15, "Journal"},
        {address, 0, 100, "Address"},
        {person, 0, 101, "Person"},
        {place, 0, 102, "Place"},
        {object, 0, 200, ""},
        {mine, 'p', 7, ""},
        {mine, 'r', 8, ""},
        {mine, 's', 35, ""},
    };
    for (const Case& c : cases) {
        const int group = DiaryDisplay::get_group_number(*c.entry, c.session);
        EXPECT_EQ(group, c.group) << c.entry->get_summary() << " " << c.session;
        EXPECT_EQ(DiaryDisplay::get_display_group(group), c.name);
    }
    EXPECT_EQ(DiaryDisplay::get_display_group(20), "Completed Appointments");

    DiaryDisplay display(diary);
    EXPECT_EQ(display.get_image(*mine, me, 0), DiaryDisplay::C_TodoImage);
    EXPECT_EQ(display.get_image(*mine, me, 3), DiaryDisplay::C_TodoImagePend);
    EXPECT_EQ(display.get_image(*waiting, me, 0), DiaryDisplay::C_TodoImagePend);
    EXPECT_EQ(display.get_image(*done, me, 0), DiaryDisplay::C_TodoImageDone);
    EXPECT_EQ(display.get_image(*theirs, me, 0), DiaryDisplay::C_TodoImageOther);
    EXPECT_EQ(display.get_image(*theirs, -1, 0), DiaryDisplay::C_TodoImage);
    EXPECT_EQ(display.get_image(*meeting, me, 0), DiaryDisplay::C_AppointmentImage);
    EXPECT_EQ(display.get_image(*person, me, 0), DiaryDisplay::C_PersonImage);
}

TEST_F(Display, LateReportHasARowPerResourceSortedWithUnassignedWork)
{
    const int ann = add_resource("Ann");
    const int bob = add_resource("Bob");
    DiaryEntry* project = add(nullptr, "Project", 'O');
    DiaryEntry* first = add(project, "First");
    set_length(first, 4);
    first->edit_props().set_resource_orig(bob);
    DiaryEntry* second = add(project, "Second");
    set_length(second, 2);
    second->edit_props().set_resource_orig(ann);
    plan();
    // Ann spent an hour on Bob's task.
    first->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 09:00"), at("1-Mar-2026 10:00")), ann);
    first->edit_etime().set_calc_date(ZBDateSlot(at("4-Mar-2026 09:00"), at("5-Mar-2026 12:00")));
    second->edit_etime().set_calc_date(ZBDateSlot(at("2-Mar-2026 09:00"), at("2-Mar-2026 11:00")));

    DiaryDisplay display(diary);
    std::vector<LateReport> rows;
    display.get_latereport(*project, rows, at("3-Mar-2026 00:00"));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].get_name(), "Ann");
    EXPECT_EQ(rows[1].get_name(), "Bob");
    EXPECT_EQ(rows[0].get_spent(), ZBDuration(3600));
    EXPECT_EQ(rows[0].get_duration(), ZBDuration(2 * 3600));
    EXPECT_FALSE(rows[0].get_latest_end().is_ok()); // ends before the bound
    EXPECT_EQ(rows[1].get_latest_end(), at("5-Mar-2026 12:00"));
    EXPECT_EQ(rows[1].get_remaining(), ZBDuration(4 * 3600));

    // A session by no known resource goes to the unassigned row, which sorts first.
    second->edit_spent().add_session(ZBDateSlot(at("1-Mar-2026 11:00"), at("1-Mar-2026 11:30")), 999);
    rows.clear();
    display.get_latereport(*project, rows, ZBDate(ZBDate::E_Blank));
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].get_name(), LateReport::C_Unassigned);
    EXPECT_EQ(rows[0].get_spent(), ZBDuration(1800));
}

TEST_F(Display, CalendarHoldsEntriesAndTheirSessionsInTheirGroups)
{
    DiaryEntry* meeting = add(nullptr, "Meeting", 'A');
    meeting->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:00")));
    DiaryEntry* task = add(nullptr, "Task");
    plan();
    task->edit_plan().edit_predicted().add(ZBDateSlot(at("2-Mar-2026 13:00"), at("2-Mar-2026 14:00")), 0);
    task->edit_spent().add_session(ZBDateSlot(at("2-Mar-2026 08:00"), at("2-Mar-2026 09:00")),
                                   diary.get_default_resource_id());
    DiaryDisplay display(diary);
    ZBCalendar calendar;
    ASSERT_EQ(display.populate_calendar(calendar, {}, ZBDateSlot(at("2-Mar-2026 00:00"), at("3-Mar-2026 00:00")), -1),
              ZBErrC_ok);
    std::map<int, int> groups;
    for (int i = 0; i < calendar.get_nentries(); ++i)
        ++groups[calendar.get_entry_no(i)->get_group()];
    EXPECT_EQ(groups[DiaryDisplay::E_GroupAppointment], 1);
    EXPECT_EQ(groups[DiaryDisplay::E_GroupPredicted], 1);
    EXPECT_EQ(groups[DiaryDisplay::E_GroupSpent], 1);
}

TEST(DisplayCli, PagesComeOutAsTextOrHtmlAndBadInputIsRefused)
{
    using Tervalon::Test::tervalon;
    const std::string file = Tervalon::Test::make_temp_dir("clishow") + "/s.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    auto run = tervalon({"add", file, "--type", "T", "--title", "Late one", "--due", "1-Mar-2026 12:00", "--duration",
                         "2h"});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string id = run.out.substr(0, run.out.find_first_of(" \n"));
    const std::string before = Tervalon::Test::read_file(file);

    run = tervalon({"show", file, id, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Late one"), std::string::npos);
    EXPECT_NE(run.out.find("Due By"), std::string::npos);
    run = tervalon({"show", file, id, "--now", "2-Mar-2026 08:00", "--html"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("<html lang=\"en\">"), std::string::npos);

    run = tervalon({"summary", file, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(run.status, 0) << run.err;
    // Past its due it is overdue, or urgent while its own priority is nil.
    EXPECT_NE(run.out.find("You have an "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("Complete these today..."), std::string::npos) << run.out;

    EXPECT_EQ(tervalon({"planning", file, "--now", "2-Mar-2026 08:00", "--days", "3"}).status, 0);
    run = tervalon({"project", file, "--now", "2-Mar-2026 08:00", "--html"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Late one"), std::string::npos);

    EXPECT_NE(tervalon({"show", file, "99999"}).status, 0);
    EXPECT_NE(tervalon({"summary", file, "--resource", "Nobody"}).status, 0);
    EXPECT_NE(tervalon({"planning", file, "--days", "0"}).status, 0);
    EXPECT_NE(tervalon({"show", file, id, "--html", "--text"}).status, 0);
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
}
