#include "AppTervalonDiary/tests/clirun.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <fstream>
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

// Monday 2 March 2026 to Sunday 8 March, in the test zone (UTC).
const char* const C_Monday = "2-Mar-2026 00:00";
const char* const C_Sunday = "8-Mar-2026 23:59:59";

struct WorkCalendar : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        folder = Tervalon::Test::make_temp_dir("work_calendar");
        ASSERT_EQ(diary.create(folder + "/w.zbd", true), ZBErrC_ok);
        resource = diary.get_resource_by_index(0);
        work = diary.get_timetype_by_name("Work")->get_id();
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
    }
    ResourceCalendar& calendar() { return resource->edit_calendar(); }
    int daytype(const char* name) { return calendar().get_daytype_by_name(name)->get_id(); }
    // Hours of work the resource has on each day of the week, Monday first.
    std::vector<double> week()
    {
        diary.recalculate(ZBDatabase::E_RecalcQuick);
        diary.allocate_times(*resource, at(C_Monday), at(C_Sunday));
        ZBDateSet all;
        resource->get_avail_time().get_combined(all);
        std::vector<double> hours;
        for (int day = 0; day < 7; ++day) {
            const ZBDate start = at(C_Monday) + ZBDuration(day, 0, 0);
            hours.push_back(all.query_range(ZBDateSlot(start, start + ZBDuration(1, 0, 0)), -1).get_as_seconds() / 3600.0);
        }
        return hours;
    }
    void add_exception(const char* from, const char* to, int type, const std::vector<int>& days = {})
    {
        ResourceCalEntry* entry = new ResourceCalEntry();
        entry->set_date(ZBDateSlot(at(from), at(to)));
        entry->set_daytype(type);
        if (!days.empty()) {
            for (int day = 0; day < 7; ++day)
                entry->set_day_applic(day, false);
            for (int day : days)
                entry->set_day_applic(day, true);
        }
        calendar().add_entry(entry);
    }
    std::string folder;
    Diary diary;
    Resource* resource = nullptr;
    int work = -1;
};

} // namespace

TEST_F(WorkCalendar, ANewDiaryWorksNineToFiveOnWeekdays)
{
    EXPECT_EQ(week(), (std::vector<double>{8, 8, 8, 8, 8, 0, 0}));
    const WorkDayList& days = resource->get_workday_list();
    EXPECT_EQ(days.size(), 7);
    EXPECT_EQ(days.get_nonworking_days(-1).size(), 2u);
    EXPECT_EQ(days.get_nonworking_days(work).size(), 2u);
    // Every day type a new calendar starts with.
    for (const char* name : {"Standard Work Day", "Weekend", "Public Holiday", "On Leave"})
        EXPECT_NE(calendar().get_daytype_by_name(name), nullptr) << name;
}

TEST_F(WorkCalendar, AResourceCalendarInAMultiUserDiaryTakesAllButLeaveFromTheDefault)
{
    ResourceCalendar shared;
    shared.setup_defaults(false, true, work);
    EXPECT_EQ(shared.get_ndaytypes(), 1);
    EXPECT_NE(shared.get_daytype_by_name("On Leave"), nullptr);
    for (int day = 0; day < 7; ++day)
        EXPECT_EQ(shared.get_standard_day(day), ResourceCalendar::C_DefaultStdDay);
    calendar() = shared;
    EXPECT_EQ(week(), (std::vector<double>{8, 8, 8, 8, 8, 0, 0}));
}

TEST_F(WorkCalendar, ExceptionsApplyOnTheirWeekdaysAndTheLatestStartWins)
{
    DayType* half = new DayType("Half");
    half->add_entry(new DayTypeEntry(9 * 3600, 13 * 3600, work));
    calendar().add_daytype(half);
    const int leave = daytype("On Leave");
    // A fortnight of leave that counts only on Tuesdays and Thursdays.
    add_exception("1-Mar-2026 00:00", "14-Mar-2026 23:59:59", leave, {1, 3});
    // Two exceptions on Friday: the later start decides.
    add_exception("6-Mar-2026 00:00", "6-Mar-2026 23:59:59", leave);
    add_exception("6-Mar-2026 08:00", "6-Mar-2026 23:59:59", half->get_id());
    EXPECT_EQ(week(), (std::vector<double>{8, 0, 8, 0, 4, 0, 0}));
}

TEST_F(WorkCalendar, AnExceptionFromLateEveningChangesOneDayOnly)
{
    // Starting at 23:00 Monday it misses Monday's test, which ends at 22:59:59.
    add_exception("2-Mar-2026 23:00", "3-Mar-2026 23:59:59", daytype("On Leave"));
    EXPECT_EQ(week(), (std::vector<double>{8, 0, 8, 8, 8, 0, 0}));
    // Ending exactly at midnight it does not bring in the next day.
    calendar().delete_entry(0);
    add_exception("4-Mar-2026 00:00", "5-Mar-2026 00:00", daytype("On Leave"));
    EXPECT_EQ(week(), (std::vector<double>{8, 8, 0, 8, 8, 0, 0}));
}

TEST_F(WorkCalendar, LinksFollowUpToFiveHopsAndDanglingOnesGiveNoTime)
{
    const int standard = daytype("Standard Work Day");
    // A link that means the standard day on weekdays and nothing on Wednesday.
    DayType* link = new DayType("Link");
    calendar().add_daytype(link);
    link->enable_references(true, calendar());
    link->set_reference(2, -1);
    calendar().set_standard_day(0, link->get_id());
    calendar().set_standard_day(2, link->get_id());
    EXPECT_EQ(week(), (std::vector<double>{8, 8, 0, 8, 8, 0, 0}));
    EXPECT_TRUE(calendar().daytype_is_used(*calendar().get_daytype_by_id(standard)));

    // A chain of links: five hops reach the standard day, six do not.
    struct Row {
        int hops;
        double monday;
    } rows[] = {{1, 8}, {4, 8}, {5, 8}, {6, 0}};
    for (const Row& row : rows) {
        int target = standard;
        for (int hop = 0; hop < row.hops; ++hop) {
            DayType* next = new DayType("Hop " + std::to_string(row.hops) + "." + std::to_string(hop));
            calendar().add_daytype(next);
            next->set_reference(0, target);
            target = next->get_id();
        }
        calendar().set_standard_day(0, target);
        EXPECT_EQ(week()[0], row.monday) << row.hops << " hops";
    }
}

TEST_F(WorkCalendar, AResourceWorksOnlyBetweenItsDates)
{
    resource->set_startdate(at("3-Mar-2026 00:00"));
    resource->set_enddate(at("5-Mar-2026 12:00"));
    EXPECT_EQ(week(), (std::vector<double>{0, 8, 8, 3, 0, 0, 0}));
    // Still listed for four weeks after the end, as people finish off.
    EXPECT_TRUE(resource->still_working(at("1-Apr-2026 00:00"), ZBDuration(28, 0, 0)));
    EXPECT_FALSE(resource->still_working(at("10-Apr-2026 00:00"), ZBDuration(28, 0, 0)));
    EXPECT_FALSE(resource->has_started(at("1-Mar-2026 00:00"), ZBDuration()));
    EXPECT_TRUE(resource->has_started(at("1-Mar-2026 00:00"), ZBDuration(2, 0, 0)));
}

TEST_F(WorkCalendar, AppointmentsTakeTimeOutOrMoveItToTheirOwnType)
{
    TimeType* home = nullptr;
    diary.add_timetype("Home", &home);
    DiaryEntry* dentist = nullptr;
    diary.create_entry(nullptr, 'A', "Dentist", &dentist);
    dentist->edit_time().set_orig(ZBDateSlot(at("2-Mar-2026 10:00"), at("2-Mar-2026 11:00")));
    DiaryEntry* garden = nullptr;
    diary.create_entry(nullptr, 'A', "Garden on Saturday", &garden);
    garden->edit_time().set_orig(ZBDateSlot(at("7-Mar-2026 10:00"), at("7-Mar-2026 12:00")));
    garden->edit_props().set_timetype_orig(home->get_id());
    DiaryEntry* party = nullptr;
    diary.create_entry(nullptr, 'A', "Party", &party);
    party->edit_time().set_orig(ZBDateSlot(at("3-Mar-2026 12:00"), at("3-Mar-2026 13:00")));
    party->edit_props().set_timetype_orig(TimeType::C_FreeTimeTypeId);

    // Monday loses the dentist's hour, Tuesday keeps its free appointment's,
    // and an appointment with a real time type books time even on a weekend.
    EXPECT_EQ(week(), (std::vector<double>{7, 8, 8, 8, 8, 2, 0}));
    ZBDateSet* homeTime = ResourceCalendar::get_group_set(resource->edit_avail_time(), "Home", false);
    ASSERT_NE(homeTime, nullptr);
    EXPECT_EQ(homeTime->duration().get_as_seconds(), 7200);

    // A fixed plan of a task is taken out as well.
    DiaryEntry* task = nullptr;
    diary.create_entry(nullptr, 'T', "Task", &task);
    task->edit_plan().edit_planned().add(ZBDateSlot(at("4-Mar-2026 09:00"), at("4-Mar-2026 12:00")), 0);
    EXPECT_EQ(week(), (std::vector<double>{7, 8, 5, 8, 8, 2, 0}));
    EXPECT_EQ(diary.get_free_time(ZBDateSlot(at(C_Monday), at(C_Sunday)), resource->get_id()).get_as_seconds(),
              (7 + 8 + 5 + 8 + 8 + 2) * 3600);
    EXPECT_EQ(diary.get_avail_time(ZBDateSlot(at(C_Monday), at(C_Sunday)), resource->get_id()).get_as_seconds(),
              40 * 3600);
}

TEST_F(WorkCalendar, LeaveDaysAreWorkingDaysTakenOff)
{
    add_exception("3-Mar-2026 00:00", "4-Mar-2026 23:59:59", daytype("On Leave"));
    add_exception("7-Mar-2026 00:00", "7-Mar-2026 23:59:59", daytype("On Leave"));
    EXPECT_EQ(diary.get_leave_days(ZBDateSlot(at(C_Monday), at(C_Sunday)), resource->get_id()).get_days(), 2);
}

TEST_F(WorkCalendar, OverlappingSlotsAreRefusedWithTheirNumbers)
{
    DayType type("Split");
    type.add_entry(new DayTypeEntry(9 * 3600, 12 * 3600, work));
    type.add_entry(new DayTypeEntry(12 * 3600, 14 * 3600, work)); // touching is fine
    std::string text;
    EXPECT_TRUE(type.validate(text));
    type.add_entry(new DayTypeEntry(13 * 3600, 15 * 3600, work));
    EXPECT_FALSE(type.validate(text));
    EXPECT_EQ(text, "Time slot 3 overlaps time slot 2");
    EXPECT_EQ(DayTypeEntry(17 * 3600, 9 * 3600, work).get_duration(), 0);
    EXPECT_EQ(DayTypeEntry::string_to_offset("9:30"), 9 * 3600 + 1800);
    EXPECT_EQ(DayTypeEntry::offset_to_string(17 * 3600 + 1800), "17:30");
}

TEST_F(WorkCalendar, CalendarsSurviveTheFile)
{
    DayType* half = new DayType("Half");
    half->add_entry(new DayTypeEntry(9 * 3600, 13 * 3600, work, "mornings"));
    calendar().add_daytype(half);
    calendar().set_standard_day(4, half->get_id());
    add_exception("3-Mar-2026 00:00", "3-Mar-2026 23:59:59", daytype("On Leave"), {1});
    const ResourceCalendar before = calendar();
    ASSERT_EQ(diary.save(false, true, false), ZBErrC_ok);
    diary.unload();
    Diary again;
    ASSERT_EQ(again.load(folder + "/w.zbd", false), ZBErrC_ok);
    EXPECT_TRUE(again.get_resource_by_index(0)->get_calendar() == before);
    again.unload();
}

TEST(WorkCalendarCli, EditsAreCheckedAndBadOnesLeaveTheFileAlone)
{
    const std::string file = Tervalon::Test::make_temp_dir("calendar_cli") + "/c.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    ASSERT_EQ(tervalon({"timetype", file, "add", "Home"}).status, 0);
    ASSERT_EQ(tervalon({"calendar", file, "daytype", "Short", "10:00-12:00=Work", "13:00-14:00=Home"}).status, 0);
    ASSERT_EQ(tervalon({"calendar", file, "weekday", "fri", "Short"}).status, 0);
    ASSERT_EQ(tervalon({"calendar", file, "except", "2026-03-03", "2026-03-03", "On Leave"}).status, 0);
    const Tervalon::Test::CliRun shown =
        tervalon({"calendar", file, "--from", "2026-03-02", "--days", "7"});
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_NE(shown.out.find("Work: 26:00"), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find("Home: 1:00"), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find("Days off: Tue 2026-03-03, Sat 2026-03-07, Sun 2026-03-08"), std::string::npos)
        << shown.out;

    const std::string before = Tervalon::Test::read_file(file);
    const std::vector<std::vector<std::string>> bad = {
        {"calendar", file, "daytype", "Bad", "9:00-12:00=Work", "11:00-13:00=Work"},
        {"calendar", file, "daytype", "Bad", "9:00-12:00=Nothing"},
        {"calendar", file, "daytype", "Bad", "12:00-9:00=Work"},
        {"calendar", file, "daytype", "Bad", "9-25=Work"},
        {"calendar", file, "weekday", "Funday", "Short"},
        {"calendar", file, "weekday", "Mon", "No such type"},
        {"calendar", file, "except", "2026-03-05", "2026-03-04", "On Leave"},
        {"calendar", file, "except", "soon", "later", "On Leave"},
        {"calendar", file, "except", "2026-03-05", "2026-03-06", "On Leave", "--days", "Mon,Blursday"},
        {"calendar", file, "unexcept", "2027-01-01", "2027-01-02"},
        {"calendar", file, "daytype", "X", "--resource", "Nobody"},
        {"resource", file, "add", "Default"},
        {"resource", file, "rm", "Nobody"},
        {"resource", file, "add", "Late", "--start", "2026-04-01", "--end", "2026-03-01"},
        {"timetype", file, "add", "Home"},
        {"timetype", file, "add", "<Free>"},
        {"timetype", file, "rm", "Work"}, // the calendar books it
        {"timetype", file, "rm", "Nothing"},
    };
    for (const auto& args : bad) {
        const Tervalon::Test::CliRun run = tervalon(args);
        EXPECT_EQ(run.status, 1) << args[2] << " " << (args.size() > 3 ? args[3] : "");
        EXPECT_FALSE(run.err.empty());
        EXPECT_EQ(Tervalon::Test::read_file(file), before) << args[2] << " " << (args.size() > 3 ? args[3] : "");
    }
    const Tervalon::Test::CliRun overlap = tervalon(bad[0]);
    EXPECT_NE(overlap.err.find("Time slot 2 overlaps time slot 1"), std::string::npos) << overlap.err;
}

TEST(WorkCalendarCli, DependCommandsRefuseWhatNamesNothingOrMakesALoop)
{
    const std::string file = Tervalon::Test::make_temp_dir("depend_cli") + "/d.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    const std::string a = tervalon({"add", file, "--type", "T", "--title", "Write report"}).out;
    const std::string b = tervalon({"add", file, "--type", "T", "--title", "Review report"}).out;
    const std::string idA = a.substr(0, a.find('\n'));
    const std::string idB = b.substr(0, b.find('\n'));
    ASSERT_EQ(tervalon({"depend", file, idB, "Write report"}).status, 0);
    const std::string before = Tervalon::Test::read_file(file);
    for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
             {"depend", file, idA, "[PARTIAL]Review"}, // a loop
             {"depend", file, idA, "No such title"},
             {"depend", file, idA, "999"},
             {"depend", file, idA, idA},
             {"depend", file, idB, "Write report"}, // already there
             {"undepend", file, idA, "Write report"}}) {
        const Tervalon::Test::CliRun run = tervalon(args);
        EXPECT_EQ(run.status, 1) << args[3];
        EXPECT_EQ(Tervalon::Test::read_file(file), before) << args[3];
    }
    const Tervalon::Test::CliRun loop = tervalon({"depend", file, idA, "[PARTIAL]Review"});
    EXPECT_NE(loop.err.find("which depends back on this."), std::string::npos) << loop.err;
    EXPECT_EQ(tervalon({"undepend", file, idB, "Write report"}).status, 0);
    EXPECT_EQ(tervalon({"depend", file, idA, "[PARTIAL]Review"}).status, 0);
}
