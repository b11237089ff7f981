// The session and baseline commands, run in-process against a file: the
// running session carried from one command to the next, the refusals that
// leave the file as it was, and what plan --json and tree show of it all.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {

struct SpentCommands : public ::testing::Test {
    void SetUp() override
    {
        file = Tervalon::Test::make_temp_dir("spent_cli") + "/d.zbd";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    std::string add(const std::string& type, const std::string& title)
    {
        std::vector<std::string> args = {"add", file, "--type", type, "--title", title};
        if (type == "T")
            args.insert(args.end(), {"--duration", "4h"});
        CliRun run = tervalon(args);
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out.substr(0, run.out.find('\n'));
    }
    // A command that must be refused with message, leaving the file untouched.
    void refused(const std::vector<std::string>& args, const std::string& message)
    {
        const std::string before = Tervalon::Test::read_file(file);
        CliRun run = tervalon(args);
        EXPECT_EQ(run.status, 1) << args[0] << ": " << run.out;
        EXPECT_NE(run.err.find(message), std::string::npos) << run.err;
        EXPECT_EQ(Tervalon::Test::read_file(file), before) << args[0];
    }
    QJsonObject plan_json(const std::string& now)
    {
        CliRun run = tervalon({"plan", file, "--json", "--now", now});
        EXPECT_EQ(run.status, 0) << run.err;
        return QJsonDocument::fromJson(QByteArray::fromStdString(run.out)).object();
    }
    static QJsonObject entry_of(const QJsonObject& plan, const std::string& id)
    {
        for (const QJsonValue& value : plan["entries"].toArray())
            if (value.toObject()["id"].toInt() == std::stoi(id))
                return value.toObject();
        return QJsonObject();
    }

    std::string file;
};

} // namespace

TEST_F(SpentCommands, TheRunningSessionIsCarriedFromOneCommandToTheNext)
{
    const std::string essay = add("T", "Essay");
    const std::string slides = add("T", "Slides");
    CliRun start = tervalon({"start", file, essay, "--now", "2-Mar-2026 09:00"});
    ASSERT_EQ(start.status, 0) << start.err;
    EXPECT_EQ(start.out, "Started a session on " + essay + " Essay for Default at 2026-03-02 09:00.\n");
    EXPECT_NE(tervalon({"tree", file}).out.find("Essay  0%  [session since 2026-03-02 09:00]"), std::string::npos);
    QJsonObject plan = plan_json("2-Mar-2026 10:00");
    EXPECT_EQ(plan["session"].toObject()["id"].toInt(), std::stoi(essay));
    EXPECT_EQ(plan["session"].toObject()["start"].toString(), "2026-03-02T09:00:00Z");
    EXPECT_EQ(entry_of(plan, essay)["spent"].toDouble(), 3600.0);

    refused({"start", file, essay, "--now", "2-Mar-2026 10:00"}, "tervalon: A session is already active.");

    CliRun other = tervalon({"start", file, slides, "--now", "2-Mar-2026 10:30"});
    ASSERT_EQ(other.status, 0) << other.err;
    EXPECT_EQ(other.out.substr(0, other.out.find('\n')), "Stopped the session on " + essay + " Essay after 01:30.");
    CliRun stop = tervalon({"stop", file, "--now", "2-Mar-2026 11:00"});
    ASSERT_EQ(stop.status, 0) << stop.err;
    EXPECT_EQ(stop.out, "Stopped the session on " + slides + " Slides after 00:30; 00:30 spent in all.\n");
    refused({"stop", file, "--now", "2-Mar-2026 11:30"}, "tervalon: There is no current active session.");

    CliRun list = tervalon({"sessions", file, essay});
    ASSERT_EQ(list.status, 0) << list.err;
    EXPECT_EQ(list.out, "2026-03-02 09:00 - 2026-03-02 10:30  01:30  Default\n"
                        "Spent: 01:30 on the entry, 01:30 with the entries below it.\n");
    EXPECT_TRUE(plan_json("2-Mar-2026 12:00")["session"].isNull());
}

TEST_F(SpentCommands, PastWorkIsRecordedAndBadSessionsAreRefused)
{
    const std::string essay = add("T", "Essay");
    const std::string note = add("J", "Thoughts");
    CliRun first = tervalon({"session", file, essay, "--from", "2-Mar-2026 09:00", "--duration", "1h30m"});
    ASSERT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(first.out, "Recorded 01:30 on " + essay + " Essay from 2026-03-02 09:00 for Default; 01:30 spent in all.\n");
    refused({"session", file, essay, "--from", "2-Mar-2026 10:00", "--duration", "1h"}, "overlaps");
    refused({"session", file, essay, "--from", "2-Mar-2026 12:00", "--duration", "-1h"}, "negative");
    refused({"session", file, note, "--from", "2-Mar-2026 12:00", "--duration", "1h"}, "Must be a task or appointment.");
    refused({"session", file, essay, "--from", "2-Mar-2026 12:00", "--duration", "1h", "--resource", "Nobody"},
            "There is no resource named 'Nobody'.");
    refused({"session", file, essay, "--from", "someday", "--duration", "1h"}, "tervalon:");
    refused({"start", file, note}, "Must be a task or appointment.");
    // Work touching the first session joins it.
    ASSERT_EQ(tervalon({"session", file, essay, "--from", "2-Mar-2026 10:30", "--duration", "30m"}).status, 0);
    EXPECT_EQ(tervalon({"sessions", file, essay}).out,
              "2026-03-02 09:00 - 2026-03-02 11:00  02:00  Default\n"
              "Spent: 02:00 on the entry, 02:00 with the entries below it.\n");
}

TEST_F(SpentCommands, ABaselineIsSavedAndGradedInThePlan)
{
    const std::string essay = add("T", "Essay");
    const std::string note = add("J", "Thoughts");
    refused({"baseline", file, note, "--hours"}, "Must be a task.");
    refused({"baseline", file, essay, "--auto", "Daily"}, "unknown kind 'Daily'");
    refused({"baseline", file, essay, "--hours", "--date"}, "give one of");
    CliRun saved = tervalon({"baseline", file, essay, "--hours", "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(saved.status, 0) << saved.err;
    EXPECT_EQ(saved.out.substr(0, saved.out.find('\n')), "Baseline of " + essay + " Essay: 04:00 from - to - (None)");
    EXPECT_NE(saved.out.find("Budget: On budget."), std::string::npos) << saved.out;

    ASSERT_EQ(tervalon({"session", file, essay, "--from", "2-Mar-2026 09:00", "--duration", "5h"}).status, 0);
    const QJsonObject entry = entry_of(plan_json("2-Mar-2026 15:00"), essay);
    EXPECT_EQ(entry["spent"].toDouble(), 5 * 3600.0);
    const QJsonObject baseline = entry["baseline"].toObject();
    EXPECT_EQ(baseline["duration"].toDouble(), 4 * 3600.0);
    EXPECT_EQ(baseline["budgetState"].toInt(), 4);
    EXPECT_EQ(baseline["text"].toString().left(5), "Poor.");
    EXPECT_EQ(baseline["timeState"].toInt(), 0);
    EXPECT_TRUE(baseline["start"].isNull());

    ASSERT_EQ(tervalon({"baseline", file, essay, "--auto", "FollowHours"}).status, 0);
    EXPECT_NE(tervalon({"baseline", file, essay}).out.find("(FollowHours)"), std::string::npos);
    EXPECT_TRUE(entry_of(plan_json("2-Mar-2026 15:00"), note)["baseline"].isNull());
}
