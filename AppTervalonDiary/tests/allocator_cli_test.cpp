#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <functional>
#include <string>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {
ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

DiaryEntry* task(Diary& diary, const std::string& title, int hours, const std::string& due = "",
                 double priority = 0.0)
{
    DiaryEntry* entry = nullptr;
    EXPECT_EQ(diary.create_entry(nullptr, 'T', title, &entry), ZBErrC_ok);
    ZBProgress progress;
    progress.set_duration(ZBDuration(std::int64_t(hours) * 3600));
    entry->edit_duration().set_orig(progress);
    if (!due.empty())
        entry->edit_due().set_orig(at(due));
    if (priority != 0.0)
        entry->edit_priority().set_orig(priority);
    return entry;
}

// A diary on disk made by fill, planned by "tervalon plan" at Monday 2 March
// 2026 08:00 (work Monday to Friday 09:00-17:00).
struct Golden {
    explicit Golden(const std::function<void(Diary&)>& fill)
    {
        file = Test::make_temp_dir("allocator") + "/g.zbd";
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        {
            Diary diary;
            EXPECT_EQ(diary.create(file, true), ZBErrC_ok);
            fill(diary);
            EXPECT_EQ(diary.save(true, true, false), ZBErrC_ok);
            diary.unload();
        }
        ZBDateUtils::clear_fixed_now();
        CliRun run = tervalon({"plan", file, "--now", "2-Mar-2026 08:00", "--json"});
        EXPECT_EQ(run.status, 0) << run.err;
        text = run.out;
        root = QJsonDocument::fromJson(QByteArray::fromStdString(run.out)).object();
    }
    // One field of the entry with this title, as compact JSON.
    std::string field(const std::string& title, const char* name) const
    {
        for (const QJsonValue& value : root["entries"].toArray()) {
            const QJsonObject entry = value.toObject();
            if (entry["title"].toString().toStdString() != title)
                continue;
            if (!entry.contains(name))
                return "<missing>";
            QJsonArray wrap;
            wrap.append(entry[name]);
            const std::string json = QJsonDocument(wrap).toJson(QJsonDocument::Compact).toStdString();
            return json.substr(1, json.size() - 2);
        }
        return "<no entry>";
    }

    std::string file;
    std::string text;
    QJsonObject root;
};

struct Expect {
    const char* title;
    const char* field;
    const char* json;
};

void check(const Golden& golden, std::initializer_list<Expect> rows)
{
    for (const Expect& row : rows)
        EXPECT_EQ(golden.field(row.title, row.field), row.json) << row.title << "." << row.field;
}
} // namespace

TEST(AllocatorGolden, TwoTasksOfDifferentPriority)
{
    const Golden golden([](Diary& diary) {
        task(diary, "Low", 4, "", 1.0);
        task(diary, "High", 4, "", 50.0);
    });
    check(golden, {
        {"High", "predicted", R"([["2026-03-02T09:00:00Z","2026-03-02T13:00:00Z"]])"},
        {"High", "predictedStart", R"("2026-03-02T09:00:00Z")"},
        {"High", "predictedEnd", R"("2026-03-02T13:00:00Z")"},
        {"High", "idealStart", "null"},
        {"High", "mustStart", "null"},
        {"High", "preTime", "0"},
        {"High", "problemDates", "[]"},
        {"High", "clashes", "[]"},
        {"High", "likelyOverdue", "false"},
        {"Low", "predicted", R"([["2026-03-02T13:00:00Z","2026-03-02T17:00:00Z"]])"},
        {"Low", "planned", "[]"},
    });
    EXPECT_EQ(golden.root["range"].toObject()["start"].toString().toStdString(), "2025-03-02T08:00:00Z");
    EXPECT_EQ(golden.root["range"].toObject()["end"].toString().toStdString(), "2027-03-02T08:00:00Z");
}

TEST(AllocatorGolden, AChainAcrossTwoResources)
{
    const Golden golden([](Diary& diary) {
        diary.edit_settings().set_features(DiarySettings::C_FeatureTask | DiarySettings::C_FeatureMultiUser);
        Resource* sam = nullptr;
        ASSERT_EQ(diary.add_resource("Sam", &sam), ZBErrC_ok);
        DiaryEntry* design = task(diary, "Design", 6);
        DiaryEntry* build = task(diary, "Build", 4);
        DiaryEntry* test = task(diary, "Test", 2, "3-Mar-2026 17:00");
        build->edit_props().set_resource_orig(sam->get_id());
        build->edit_depend().add_depend(design->get_id());
        test->edit_depend().add_depend(build->get_id());
    });
    check(golden, {
        {"Design", "predicted", R"([["2026-03-02T09:00:00Z","2026-03-02T15:00:00Z"]])"},
        {"Build", "predicted",
         R"([["2026-03-02T15:00:00Z","2026-03-02T17:00:00Z"],["2026-03-03T09:00:00Z","2026-03-03T11:00:00Z"]])"},
        {"Build", "resource", R"("Sam")"},
        {"Test", "predicted", R"([["2026-03-03T11:00:00Z","2026-03-03T13:00:00Z"]])"},
        {"Test", "mustStart", R"("2026-03-03T15:00:00Z")"},
        {"Test", "likelyOverdue", "false"},
        // Build must be done by the time Test must start.
        {"Build", "mustStart", R"("2026-03-03T11:00:00Z")"},
    });
}

TEST(AllocatorGolden, ATaskTooLongForItsDue)
{
    const Golden golden([](Diary& diary) { task(diary, "Big", 12, "2-Mar-2026 17:00"); });
    check(golden, {
        {"Big", "predicted",
         R"([["2026-03-02T09:00:00Z","2026-03-02T17:00:00Z"],["2026-03-03T09:00:00Z","2026-03-03T13:00:00Z"]])"},
        {"Big", "predictedEnd", R"("2026-03-03T13:00:00Z")"},
        {"Big", "problemDates", R"(["2026-03-02T17:00:00Z"])"},
        {"Big", "likelyOverdue", "true"},
        {"Big", "preTime", "14400"},
        {"Big", "idealStart", R"("2026-02-27T13:00:00Z")"},
        {"Big", "mustStart", R"("2026-03-02T05:00:00Z")"},
    });
    EXPECT_NE(golden.field("Big", "notifications").find("Delayed: Big"), std::string::npos);
}

TEST(AllocatorGolden, AFixedPlanThatCoversTheTask)
{
    const Golden golden([](Diary& diary) {
        DiaryEntry* fixed = task(diary, "Fixed", 3, "6-Mar-2026 17:00");
        fixed->edit_plan().edit_planned().add(ZBDateSlot(at("3-Mar-2026 10:00"), at("3-Mar-2026 13:00")), 0);
        task(diary, "Other", 9);
    });
    check(golden, {
        {"Fixed", "predicted", "[]"},
        {"Fixed", "planned", R"([["2026-03-03T10:00:00Z","2026-03-03T13:00:00Z"]])"},
        {"Fixed", "predictedStart", "null"},
        {"Fixed", "likelyOverdue", "false"},
        {"Other", "predicted",
         R"([["2026-03-02T09:00:00Z","2026-03-02T17:00:00Z"],["2026-03-03T09:00:00Z","2026-03-03T10:00:00Z"]])"},
    });
}

TEST(AllocatorGolden, AnAppointmentMovesItsPredecessorsDue)
{
    const Golden golden([](Diary& diary) {
        DiaryEntry* meeting = nullptr;
        ASSERT_EQ(diary.create_entry(nullptr, 'A', "Meeting", &meeting), ZBErrC_ok);
        meeting->edit_time().set_orig(ZBDateSlot(at("4-Mar-2026 10:00"), at("4-Mar-2026 11:00")));
        DiaryEntry* slides = task(diary, "Slides", 4);
        meeting->edit_depend().add_depend(slides->get_id());
    });
    check(golden, {
        {"Slides", "mustStart", R"("2026-03-03T14:00:00Z")"},
        {"Slides", "due", R"("2026-03-04T10:00:00Z")"},
        {"Slides", "predicted", R"([["2026-03-02T09:00:00Z","2026-03-02T13:00:00Z"]])"},
        {"Meeting", "predicted", "[]"},
    });
}

TEST(AllocatorGolden, AnOptionalInstanceOnADayWithoutTimeVanishes)
{
    // Every four hours on work days, an hour each; the instances of the
    // evening and the night have no time and need none.
    const Golden golden([](Diary& diary) {
        DiaryEntry* check = task(diary, "Check", 1, "2-Mar-2026 12:00");
        ZBDateRepeat& rule = check->edit_repeat();
        ASSERT_EQ(rule.set_type(ZBDateRepeat::E_Seconds), ZBErrC_ok);
        ASSERT_EQ(rule.set_interval(4 * 3600), ZBErrC_ok);
        ASSERT_EQ(rule.set_workday(ZBDateRepeat::E_WorkOnly, -1), ZBErrC_ok);
        rule.set_range_end(at("3-Mar-2026 08:00"), true);
    });
    const std::string notes = golden.field("Check", "notifications");
    EXPECT_EQ(notes.find("Delayed"), std::string::npos) << notes;
    EXPECT_EQ(golden.field("Check", "likelyOverdue"), "false");
    EXPECT_NE(golden.field("Check", "predicted"), "[]");
}

TEST(AllocatorGolden, TheTextShowsSessionsAndASecondRunIsTheSame)
{
    const Golden golden([](Diary& diary) {
        task(diary, "Report", 3, "4-Mar-2026 17:00");
        task(diary, "Open", 2);
    });
    CliRun again = tervalon({"plan", golden.file, "--now", "2-Mar-2026 08:00", "--json"});
    EXPECT_EQ(again.out, golden.text);
    CliRun text = tervalon({"plan", golden.file, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(text.status, 0) << text.err;
    size_t lines = 0;
    for (size_t at = text.out.find("Sessions: 2026-03-02 "); at != std::string::npos;
         at = text.out.find("Sessions: 2026-03-02 ", at + 1))
        ++lines;
    EXPECT_EQ(lines, 2u) << text.out;
    EXPECT_NE(text.out.find("; ends 2026-03-02 14:00"), std::string::npos) << text.out;
}
