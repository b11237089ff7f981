// The entry commands add, set, done, postpone and rm, run in-process against a
// file and checked by reading the file back.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QDir>

#include <functional>
#include <memory>

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

ZBDuration minutes(int count)
{
    return ZBDuration(std::int64_t(count) * 60);
}

// A diary read from disk, unloaded when it goes.
struct OnDisk {
    explicit OnDisk(const std::string& file) { ok = !iszbwarn(diary.read(file)); }
    ~OnDisk() { diary.unload(); }
    DiaryEntry* entry(const std::string& id) const { return diary.get_entry_id(std::stoi(id)); }
    Diary diary;
    bool ok = false;
};

struct EntryCommands : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00")); // a Monday
        dir = Tervalon::Test::make_temp_dir("entry_commands");
        file = dir + "/d.zbd";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }

    // Adds an entry and gives its id.
    std::string add(std::vector<std::string> options)
    {
        options.insert(options.begin(), {"add", file});
        CliRun run = tervalon(options);
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out.substr(0, run.out.find('\n'));
    }
    std::unique_ptr<OnDisk> load()
    {
        std::unique_ptr<OnDisk> disk(new OnDisk(file));
        EXPECT_TRUE(disk->ok);
        return disk;
    }
    std::string tree()
    {
        CliRun run = tervalon({"tree", file});
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out;
    }

    std::string dir;
    std::string file;
};

} // namespace

TEST_F(EntryCommands, AddTakesEveryTypeLetter)
{
    struct {
        const char* letter;
        char derived;
        bool repeatable;
    } rows[] = {
        {"T", 'T', true}, {"A", 'A', true}, {"J", 'J', false}, {"P", 'P', false},
        {"D", 'D', false}, {"L", 'L', false}, {"O", 'O', false},
    };
    std::vector<std::string> ids;
    for (const auto& row : rows)
        ids.push_back(add({"--type", row.letter, "--title", std::string("Kind ") + row.letter}));
    std::unique_ptr<OnDisk> disk = load();
    ASSERT_EQ(disk->diary.get_nentries(), 7);
    for (size_t i = 0; i < ids.size(); ++i) {
        const DiaryEntry* entry = disk->entry(ids[i]);
        ASSERT_NE(entry, nullptr) << rows[i].letter;
        EXPECT_EQ(entry->get_entrytype(), rows[i].letter[0]);
        EXPECT_EQ(entry->get_derived_entrytype(), rows[i].derived);
        EXPECT_EQ(entry->get_summary(), std::string("Kind ") + rows[i].letter);
        EXPECT_EQ(entry->get_capability() != 0, rows[i].repeatable) << rows[i].letter;
    }
    const std::string text = tree();
    for (size_t i = 0; i < ids.size(); ++i)
        // A note is as done as its commands, so one without any is finished.
        EXPECT_NE(text.find(ids[i] + " " + rows[i].letter + " Kind " + rows[i].letter +
                            (rows[i].letter[0] == 'J' ? "  100%\n" : "  0%\n")),
                  std::string::npos)
            << text;
}

TEST_F(EntryCommands, AddReadsParentsDatesDurationsPrioritiesAndRules)
{
    const std::string project = add({"--type", "O", "--title", "Project"});
    const std::string stage = add({"--type", "O", "--title", "Stage", "--parent", project});
    const std::string task = add({"--type", "T", "--title", "Write", "--parent", stage, "--start", "+1 day", "--due",
                                  "+2 days", "--duration", "1h30m", "--priority", "70", "--repeat", "T=3@N=1"});
    const std::string meeting = add({"--type", "A", "--title", "Meeting", "--start", "+2 days 10:00", "--duration", "45m"});
    const std::string deadline = add({"--type", "A", "--title", "Deadline", "--due", "fri 17:00"});
    const std::string note = add({"--type", "J", "--title", "Note", "--start", "yesterday 21:00"});

    std::unique_ptr<OnDisk> disk = load();
    const DiaryEntry* t = disk->entry(task);
    ASSERT_NE(t, nullptr);
    ASSERT_NE(t->get_parent_entry(), nullptr);
    EXPECT_EQ(t->get_parent_entry()->get_id(), std::stoi(stage));
    EXPECT_EQ(t->get_parent_entry()->get_parent_entry()->get_id(), std::stoi(project));
    EXPECT_EQ(t->get_start().orig, at("3-Mar-2026 08:00"));
    EXPECT_EQ(t->get_due().orig, at("4-Mar-2026 08:00"));
    EXPECT_EQ(t->get_duration().orig.get_duration(), minutes(90));
    EXPECT_EQ(t->get_priority().orig, 70.0);
    EXPECT_TRUE(t->get_repeat().is_repeating());
    EXPECT_EQ(t->get_repeat().to_string(), "T=3@N=1");
    // A folder whose only children are tasks plans as a task, all the way up.
    EXPECT_EQ(disk->entry(project)->get_derived_entrytype(), 'T');

    EXPECT_EQ(disk->entry(meeting)->get_time().orig, ZBDateSlot(at("4-Mar-2026 10:00"), at("4-Mar-2026 10:45")));
    EXPECT_EQ(disk->entry(deadline)->get_time().orig, ZBDateSlot(at("6-Mar-2026 17:00"), at("6-Mar-2026 17:00")));
    EXPECT_EQ(disk->entry(note)->get_time().orig.m_start, at("1-Mar-2026 21:00"));

    const std::string text = tree();
    // The folders take their due from the task below them.
    EXPECT_NE(text.find(project + " O Project  due 2026-03-04 08:00  0%\n  " + stage +
                        " O Stage  due 2026-03-04 08:00  0%\n    " + task + " T Write  due 2026-03-04 08:00  0%\n"),
              std::string::npos)
        << text;
}

TEST_F(EntryCommands, SetChangesEachField)
{
    using Check = std::function<void(const DiaryEntry&)>;
    struct Row {
        const char* type;
        std::vector<std::vector<std::string>> sets; // field, value
        Check check;
    };
    const Row rows[] = {
        {"T", {{"title", "New title"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_summary(), "New title"); }},
        {"T", {{"details", "line one\nline two"}},
         [](const DiaryEntry& e) { EXPECT_EQ(e.get_text(), "line one\nline two"); }},
        {"T", {{"type", "J"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_entrytype(), 'J'); }},
        {"T", {{"due", "+3 days"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_due().orig, at("5-Mar-2026 08:00")); }},
        {"T", {{"start", "+1 day"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_start().orig, at("3-Mar-2026 08:00")); }},
        {"T", {{"duration", "2h"}},
         [](const DiaryEntry& e) { EXPECT_EQ(e.get_duration().orig.get_duration(), minutes(120)); }},
        {"T", {{"priority", "55.5"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_priority().orig, 55.5); }},
        {"T", {{"completion", "40"}},
         [](const DiaryEntry& e) { EXPECT_EQ(e.get_duration().orig.get_completion(), 40.0); }},
        {"T", {{"completion", "100"}}, [](const DiaryEntry& e) { EXPECT_TRUE(e.is_complete()); }},
        // Reopening a finished task clears the moment it was finished.
        {"T", {{"completion", "100"}, {"completion", "0"}},
         [](const DiaryEntry& e) {
             EXPECT_FALSE(e.is_complete());
             EXPECT_EQ(e.get_time().orig, ZBDateSlot());
         }},
        {"T", {{"repeat", "T=3@N=2"}}, [](const DiaryEntry& e) { EXPECT_EQ(e.get_repeat().to_string(), "T=3@N=2"); }},
        // An appointment's start moves it whole; its due is its end.
        {"A", {{"start", "+1 day 09:00"}, {"duration", "30m"}, {"start", "+2 days 14:00"}},
         [](const DiaryEntry& e) {
             EXPECT_EQ(e.get_time().orig, ZBDateSlot(at("4-Mar-2026 14:00"), at("4-Mar-2026 14:30")));
         }},
        {"A", {{"start", "+1 day 09:00"}, {"due", "+1 day 11:00"}},
         [](const DiaryEntry& e) {
             EXPECT_EQ(e.get_time().orig, ZBDateSlot(at("3-Mar-2026 09:00"), at("3-Mar-2026 11:00")));
         }},
        {"J", {{"start", "yesterday 20:00"}},
         [](const DiaryEntry& e) { EXPECT_EQ(e.get_time().orig.m_start, at("1-Mar-2026 20:00")); }},
    };
    for (const Row& row : rows) {
        const std::string id = add({"--type", row.type, "--title", "Entry"});
        for (const auto& set : row.sets) {
            CliRun run = tervalon({"set", file, id, set[0], set[1]});
            EXPECT_EQ(run.status, 0) << set[0] << " " << set[1] << ": " << run.err;
        }
        std::unique_ptr<OnDisk> disk = load();
        SCOPED_TRACE(row.sets[0][0] + " " + row.sets[0][1]);
        ASSERT_NE(disk->entry(id), nullptr);
        row.check(*disk->entry(id));
    }
}

TEST_F(EntryCommands, DoneOnADateAndOnRepeatingEntries)
{
    const std::string once = add({"--type", "T", "--title", "Once", "--due", "+2 days"});
    ASSERT_EQ(tervalon({"done", file, once, "4-Mar-2026 17:00"}).status, 0);
    // Weekly on Fridays at 09:00, starting a day before: completing on the
    // day moves both dates on to the next Friday and reopens it.
    const std::string weekly = add({"--type", "T", "--title", "Weekly", "--start", "5-Mar-2026 09:00", "--due",
                                    "6-Mar-2026 09:00", "--repeat", "T=3@N=1@D=5@A=32400"});
    ASSERT_EQ(tervalon({"done", file, weekly, "6-Mar-2026 10:00"}).status, 0);
    // Finished late, past the next instance too: the first Friday after the
    // completion.
    const std::string late = add({"--type", "T", "--title", "Late", "--due", "6-Mar-2026 09:00", "--repeat",
                                  "T=3@N=1@D=5@A=32400"});
    ASSERT_EQ(tervalon({"done", file, late, "14-Mar-2026 12:00"}).status, 0);
    const std::string visit = add({"--type", "A", "--title", "Visit", "--start", "3-Mar-2026 10:00", "--duration",
                                   "1h", "--repeat", "T=3@N=1@D=2@A=36000"});
    ASSERT_EQ(tervalon({"done", file, visit, "3-Mar-2026 11:00"}).status, 0);

    std::unique_ptr<OnDisk> disk = load();
    const DiaryEntry* o = disk->entry(once);
    EXPECT_TRUE(o->is_complete());
    EXPECT_EQ(o->get_time().orig, ZBDateSlot(at("4-Mar-2026 17:00"), at("4-Mar-2026 17:00")));
    EXPECT_EQ(o->get_spent().get_closed(), at("4-Mar-2026 17:00"));

    const DiaryEntry* w = disk->entry(weekly);
    EXPECT_FALSE(w->is_complete());
    EXPECT_EQ(w->get_duration().orig.get_completion(), 0.0);
    EXPECT_EQ(w->get_due().orig, at("13-Mar-2026 09:00"));
    EXPECT_EQ(w->get_start().orig, at("12-Mar-2026 09:00"));

    EXPECT_EQ(disk->entry(late)->get_due().orig, at("20-Mar-2026 09:00"));
    EXPECT_FALSE(disk->entry(late)->is_complete());

    const DiaryEntry* v = disk->entry(visit);
    EXPECT_FALSE(v->is_complete());
    EXPECT_EQ(v->get_time().orig, ZBDateSlot(at("10-Mar-2026 10:00"), at("10-Mar-2026 11:00")));

    const std::string text = tree();
    EXPECT_NE(text.find(once + " T Once  due 2026-03-04 08:00  100%\n"), std::string::npos) << text;
    EXPECT_NE(text.find(weekly + " T Weekly  due 2026-03-13 09:00  0%\n"), std::string::npos) << text;
}

TEST_F(EntryCommands, PostponeMovesByRelativeAndAbsoluteTextsAndBlanks)
{
    struct {
        const char* type;
        const char* text;
        ZBDate start; // start-after of a task, start of the slot otherwise
        ZBDate end;   // due of a task, end of the slot otherwise
    } rows[] = {
        {"T", "+1 day", at("4-Mar-2026 08:00"), at("5-Mar-2026 17:00")},
        {"T", "-2 hours", at("3-Mar-2026 06:00"), at("4-Mar-2026 15:00")},
        {"T", "6-Mar-2026 12:00", at("6-Mar-2026 12:00"), at("6-Mar-2026 12:00")},
        {"T", "blank", ZBDate::C_Blank, ZBDate::C_Blank},
        {"T", "BLANK", ZBDate::C_Blank, ZBDate::C_Blank},
        // An appointment keeps its length.
        {"A", "+1 day", at("4-Mar-2026 10:00"), at("4-Mar-2026 10:45")},
        {"A", "+1 week", at("10-Mar-2026 10:00"), at("10-Mar-2026 10:45")},
        {"A", "6-Mar-2026 14:00", at("6-Mar-2026 14:00"), at("6-Mar-2026 14:45")},
        {"J", "-1 day", at("2-Mar-2026 10:00"), at("2-Mar-2026 10:45")},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.type) + " " + row.text);
        std::string id;
        if (row.type[0] == 'T')
            id = add({"--type", "T", "--title", "Task", "--start", "3-Mar-2026 08:00", "--due", "4-Mar-2026 17:00"});
        else
            id = add({"--type", row.type, "--title", "Slot", "--start", "3-Mar-2026 10:00", "--duration", "45m"});
        CliRun run = tervalon({"postpone", file, id, row.text});
        ASSERT_EQ(run.status, 0) << run.err;
        std::unique_ptr<OnDisk> disk = load();
        const DiaryEntry* entry = disk->entry(id);
        if (row.type[0] == 'T') {
            EXPECT_EQ(entry->get_start().orig, row.start);
            EXPECT_EQ(entry->get_due().orig, row.end);
        } else {
            EXPECT_EQ(entry->get_time().orig, ZBDateSlot(row.start, row.end));
        }
    }
}

TEST_F(EntryCommands, RmTakesTheWholeBranchAndNothingElse)
{
    const std::string project = add({"--type", "O", "--title", "Project"});
    const std::string stage = add({"--type", "O", "--title", "Stage", "--parent", project});
    const std::string deep = add({"--type", "T", "--title", "Deep", "--parent", stage});
    const std::string other = add({"--type", "T", "--title", "Other", "--parent", project});
    const std::string keep = add({"--type", "T", "--title", "Keep"});

    ASSERT_EQ(tervalon({"rm", file, stage}).status, 0);
    {
        std::unique_ptr<OnDisk> disk = load();
        EXPECT_EQ(disk->entry(stage), nullptr);
        EXPECT_EQ(disk->entry(deep), nullptr);
        ASSERT_NE(disk->entry(project), nullptr);
        ASSERT_EQ(disk->entry(project)->get_nchildren(), 1);
        EXPECT_EQ(disk->entry(project)->get_child_no(0)->get_id(), std::stoi(other));
    }
    ASSERT_EQ(tervalon({"rm", file, project}).status, 0);
    EXPECT_EQ(tree(), keep + " T Keep  0%\n");
    // Only the default resource, the "Work" time type, the eight default specs
    // and the one entry are left in the file, with the four removed entries
    // kept as deleted.
    CliRun check = tervalon({"check", file});
    EXPECT_EQ(check.status, 0) << check.err;
    EXPECT_EQ(check.out, "Application type: TervalonDiary\nObjects: 11\nDeleted objects kept: 4\n");
    EXPECT_EQ(tervalon({"rm", file, deep}).status, 1);
}

// Every refused command line: exit 1, the reason on stderr, nothing on stdout,
// and the file exactly as it was.
TEST_F(EntryCommands, FailingCommandsLeaveTheFileUnchanged)
{
    const std::string task = add({"--type", "T", "--title", "Task", "--due", "+2 days"});
    const std::string meeting = add({"--type", "A", "--title", "Meeting"});
    const std::string folder = add({"--type", "O", "--title", "Folder"});
    const std::vector<std::vector<std::string>> rows = {
        {"add", "--type", "X", "--title", "Bad type"},
        {"add", "--type", "TT", "--title", "Two letters"},
        {"add", "--type", "t", "--title", "Lower case"},
        {"add", "--type", "T"},
        {"add", "--title", "No type"},
        {"add", "--type", "T", "--title", "x", "--parent", "999"},
        {"add", "--type", "T", "--title", "x", "--parent", "abc"},
        {"add", "--type", "T", "--title", "x", "--due", "soonish"},
        {"add", "--type", "T", "--title", "x", "--duration", "3 fortnights"},
        {"add", "--type", "T", "--title", "x", "--priority", "high"},
        {"add", "--type", "T", "--title", "x", "--repeat", "T=2@Q=1"},
        {"add", "--type", "A", "--title", "x", "--duration", "1h"},
        {"add", "--type", "T", "--title", "x", "--colour", "red"},
        {"add", "--type", "T", "--title"},
        {"set", task, "colour", "red"},
        {"set", task, "type", "X"},
        {"set", task, "type", ""},
        {"set", task, "due", "31-Feb-2026"},
        {"set", task, "start", "whenever"},
        {"set", task, "duration", "2 fortnights"},
        {"set", meeting, "duration", "1h"},
        {"set", task, "priority", "high"},
        {"set", task, "priority", ""},
        {"set", task, "completion", "-1"},
        {"set", task, "completion", "half"},
        {"set", task, "repeat", "T=2@N=0"},
        {"set", "999", "title", "x"},
        {"set", task, "title"},
        {"done", "999"},
        {"done", task, "soonish"},
        {"done", "-1"},
        {"postpone", task, "whenever"},
        {"postpone", meeting, "31-Feb-2026 10:00"},
        {"postpone", "999", "+1 day"},
        {"rm", "999"},
        {"rm", ""},
        {"rm", folder + "x"},
    };
    const std::string before = Tervalon::Test::read_file(file);
    const QStringList filesBefore = QDir(QString::fromStdString(dir)).entryList(QDir::Files);
    for (std::vector<std::string> row : rows) {
        std::string line;
        for (const std::string& word : row)
            line += word + " ";
        row.insert(row.begin() + 1, file);
        CliRun run = tervalon(row);
        EXPECT_EQ(run.status, 1) << line;
        EXPECT_EQ(run.out, "") << line;
        // The reason, then for a malformed line the usage.
        EXPECT_EQ(run.err.rfind("tervalon", 0), 0u) << line << ": " << run.err;
        EXPECT_EQ(Tervalon::Test::read_file(file), before) << line;
        EXPECT_EQ(QDir(QString::fromStdString(dir)).entryList(QDir::Files), filesBefore) << line;
    }
}

TEST_F(EntryCommands, TreeShowsDuesPushedDownFromParents)
{
    const std::string project = add({"--type", "O", "--title", "Project", "--due", "5-Mar-2026 12:00"});
    const std::string early = add({"--type", "T", "--title", "Early", "--parent", project, "--due", "4-Mar-2026 09:00"});
    const std::string late = add({"--type", "T", "--title", "Late", "--parent", project, "--due", "9-Mar-2026 09:00"});
    const std::string open = add({"--type", "T", "--title", "Open", "--parent", project});
    const std::string text = tree();
    // A child keeps its own due when earlier, else takes its parent's.
    EXPECT_NE(text.find(early + " T Early  due 2026-03-04 09:00"), std::string::npos) << text;
    EXPECT_NE(text.find(late + " T Late  due 2026-03-05 12:00"), std::string::npos) << text;
    EXPECT_NE(text.find(open + " T Open  due 2026-03-05 12:00"), std::string::npos) << text;
    // Only what was entered is stored as the child's own.
    std::unique_ptr<OnDisk> disk = load();
    EXPECT_EQ(disk->entry(late)->get_due().orig, at("9-Mar-2026 09:00"));
    EXPECT_TRUE(disk->entry(open)->get_due().orig.is_blank());
}

TEST_F(EntryCommands, TreeShowsWhenAppointmentsAndNotesStand)
{
    const std::string meeting = add({"--type", "A", "--title", "Meeting", "--start", "4-Mar-2026 14:30", "--duration", "1:00"});
    const std::string note = add({"--type", "J", "--title", "Note", "--start", "+1 day 9:00"});
    const std::string task = add({"--type", "T", "--title", "Task"});
    const std::string text = tree();
    // An appointment is due at its end.
    EXPECT_NE(text.find(meeting + " A Meeting  at 2026-03-04 14:30  due 2026-03-04 15:30  0%\n"), std::string::npos)
        << text;
    EXPECT_NE(text.find(note + " J Note  at 2026-03-03 09:00  100%\n"), std::string::npos) << text;
    EXPECT_NE(text.find(task + " T Task  0%\n"), std::string::npos) << text;
}
