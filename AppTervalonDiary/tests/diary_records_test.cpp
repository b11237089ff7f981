// The planner's diary as a records database: its entries are records, its
// fan-out reaches the module managers, and new files carry the default specs.
#include "AppTervalonDiary/diary/diary.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbvariable.h"
#include "LibDatabase/db/zbvarspec.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDiary/diary/zbdiarymgr.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

using namespace Tervalon;

namespace {

ZBDate at(const std::string& text)
{
    ZBDate date;
    date.from_string(text);
    return date;
}

std::string read_file(const std::string& name)
{
    std::ifstream in(name);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The field tags of the top-level object that holds "!I!<id>": its own
// "!TAG!" lines and the tags of its nested objects ("@TAG").
std::set<std::string> block_tags(const std::string& file, int id)
{
    std::istringstream in(file);
    std::string line;
    std::set<std::string> tags;
    bool found = false;
    int depth = 0;
    while (std::getline(in, line)) {
        if (!line.empty() && line[0] == '{') {
            if (++depth == 1) {
                tags.clear();
                found = false;
            }
            continue;
        }
        if (line == "}") {
            if (--depth == 0 && found)
                return tags;
            continue;
        }
        if (depth != 1)
            continue;
        std::smatch match;
        if (std::regex_search(line, match, std::regex("^!([^!]+)!")))
            tags.insert(match[1]);
        else if (line.size() > 1 && line[0] == '@')
            tags.insert(line.substr(1));
        found = found || line == "!I!" + std::to_string(id);
    }
    return std::set<std::string>();
}

struct DiaryRecords : public ::testing::Test {
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(at("2-Mar-2026 08:00"));
        file = Tervalon::Test::make_temp_dir("diary_records") + "/r.zbd";
        ASSERT_EQ(diary.create(file, true), ZBErrC_ok);
    }
    void TearDown() override
    {
        diary.unload();
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    std::string file;
    Diary diary;
};

} // namespace

TEST_F(DiaryRecords, RecordFieldsSurviveSaveAndLoadUnderTheRecordsTags)
{
    DiaryEntry* task = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'T', "Write the report", &task), ZBErrC_ok);
    task->set_text("Two pages.");
    task->edit_start().set_orig(at("5-Mar-2026 09:00"));
    task->edit_due().set_orig(at("9-Mar-2026 17:00"));
    task->edit_priority().set_orig(250.0);
    ZBProgress progress;
    progress.set_duration(ZBDuration(7200));
    progress.set_completion(40.0);
    task->edit_duration().set_orig(progress);
    task->edit_repeat().from_string("T=3@N=1");
    task->set_bookmark(true);
    task->set_preserve(true);
    const int id = task->get_id();
    const ZBDateRepeat rule = task->get_repeat();
    ASSERT_TRUE(rule.is_repeating());
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);

    const std::set<std::string> tags = block_tags(read_file(file), id);
    for (const char* tag : {"et", "Sm", "Tx", "SA", "DD", "Pr", "Dn", "Rpt", "BM", "PV"})
        EXPECT_EQ(tags.count(tag), 1u) << tag;
    for (const char* tag : {"sm", "tx", "tm", "sa", "sai", "du", "dui", "pr", "pri", "dr", "rpt", "bm", "ps"})
        EXPECT_EQ(tags.count(tag), 0u) << tag;

    diary.unload();
    Diary again;
    ASSERT_EQ(again.load(file, false), ZBErrC_ok);
    DiaryEntry* back = again.get_entry_id(id);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->get_summary(), "Write the report");
    EXPECT_EQ(back->get_text(), "Two pages.");
    EXPECT_EQ(back->get_entrytype(), 'T');
    EXPECT_EQ(back->get_start().orig, at("5-Mar-2026 09:00"));
    EXPECT_EQ(back->get_due().orig, at("9-Mar-2026 17:00"));
    EXPECT_EQ(back->get_priority().orig, 250.0);
    EXPECT_EQ(back->get_duration().orig, progress);
    EXPECT_TRUE(back->get_repeat() == rule);
    EXPECT_TRUE(back->get_bookmark());
    EXPECT_TRUE(back->get_preserve());
    // The same values through the record's interface.
    ZBDEntry* record = again.get_dentry_id(id);
    ASSERT_EQ(record, back);
    EXPECT_EQ(record->get_due(), at("9-Mar-2026 17:00"));
    EXPECT_EQ(record->get_sysvalue(ZBDEntry::C_SysEntryType), "Task");
    EXPECT_EQ(record->get_sysvalue(ZBDEntry::C_SysRepeating), "1");
    again.unload();
}

TEST_F(DiaryRecords, AnEntryAtItsDefaultsWritesOnlyItsIdentity)
{
    DiaryEntry* entry = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'O', std::string(), &entry), ZBErrC_ok);
    const int id = entry->get_id();
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    const std::set<std::string> tags = block_tags(read_file(file), id);
    ASSERT_FALSE(tags.empty());
    // The database object's own fields only: id, parent, container, times.
    const std::set<std::string> identity = {"I", "S", "P", "C", "M", "CT", "CI", "MT"};
    for (const std::string& tag : tags)
        EXPECT_EQ(identity.count(tag), 1u) << "unexpected field " << tag;
}

TEST_F(DiaryRecords, FanOutFromTheDiaryReachesEveryManagerInOrder)
{
    std::vector<std::string> seen;
    diary.set_fanout_observer([&seen](const std::string& step, const ZBDiaryMgr& manager) {
        seen.push_back(step + ":" + manager.get_name());
    });
    ASSERT_FALSE(iszbwarn(diary.recalculate(ZBDatabase::E_RecalcFull)));
    std::vector<ZBNotifyItem> items;
    ASSERT_FALSE(iszbwarn(diary.generate_notify(items)));
    diary.set_fanout_observer(nullptr);
    std::vector<std::string> expected;
    for (const char* step : {"recalculate", "generate_notify"})
        for (const ZBDiaryMgr* manager : diary.get_managers())
            expected.push_back(std::string(step) + ":" + manager->get_name());
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(diary.get_managers().size(), 6u);
}

TEST_F(DiaryRecords, ANewDiaryHoldsTheDefaultSpecsParsedAndNoEntries)
{
    for (const char* name : {"Default", "TopLevel", "DefaultPerson", "DefaultGroup", "DefaultEvent",
                             "DefaultJournal", "DefaultPrayer", "PrayerUpdate"}) {
        const ZBObjectSpec* spec = diary.get_objectspec_by_name(name);
        ASSERT_NE(spec, nullptr) << name;
        EXPECT_TRUE(spec->is_parsed()) << name;
    }
    EXPECT_NE(diary.get_objectspec_by_name("TopLevel")->get_child_by_name("PS"), nullptr);
    EXPECT_EQ(diary.get_nentries(), 0);
    EXPECT_EQ(diary.get_nresources(), 1);
    EXPECT_EQ(diary.get_ntimetypes(), 1);
    EXPECT_EQ(diary.get_nobjects(), 2 + 8);
}

TEST_F(DiaryRecords, ASpecNamingASystemValueReadsAndWritesTheRecordsField)
{
    int specId = -1;
    ASSERT_FALSE(iszbwarn(diary.add_objectspec("Chore", "$<Title> = prompt(\"\");\n$<Due_Date> = \"\";\n"
                                                        "$<Note> = \"none\";\n",
                                               &specId)));
    const ZBObjectSpec* spec = diary.get_objectspec_by_id(specId);
    ASSERT_NE(spec, nullptr);
    EXPECT_TRUE(spec->get_varspec_by_name("Title")->is_sysvalue());
    EXPECT_TRUE(spec->get_varspec_by_name("Due_Date")->is_sysvalue());
    EXPECT_EQ(spec->get_varspec_by_name("Due_Date")->get_constraint(), ZBVarSpec::E_Date);
    EXPECT_FALSE(spec->get_varspec_by_name("Note")->is_sysvalue());
    // Only what the spec names: no other system value is added.
    EXPECT_EQ(spec->get_nvarspecs(), 3);

    DiaryEntry* entry = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'T', "Sweep", &entry), ZBErrC_ok);
    ASSERT_FALSE(iszbwarn(diary.apply_objectspec_to_db(*entry, specId, true)));
    EXPECT_EQ(entry->get_var_by_tag("Title")->get_value(), "Sweep");
    ASSERT_FALSE(iszbwarn(entry->set_var_value("Title", "Sweep the yard")));
    EXPECT_EQ(entry->get_summary(), "Sweep the yard");

    const int id = entry->get_id();
    ASSERT_EQ(diary.save(true, true, false), ZBErrC_ok);
    const std::string text = read_file(file);
    // The title is stored once, as the record's field, not again as a variable.
    EXPECT_EQ(block_tags(text, id).count("Sm"), 1u);
    EXPECT_EQ(text.find("Title="), std::string::npos);
}

TEST_F(DiaryRecords, SystemValuesOfAnEntryComeFromThePlannerWhereItKeepsThem)
{
    DiaryEntry* folder = nullptr;
    DiaryEntry* task = nullptr;
    ASSERT_EQ(diary.create_entry(nullptr, 'O', "Folder", &folder), ZBErrC_ok);
    ASSERT_EQ(diary.create_entry(folder, 'T', "Task", &task), ZBErrC_ok);
    ASSERT_FALSE(iszbwarn(diary.recalculate(ZBDatabase::E_RecalcFull)));
    EXPECT_EQ(folder->get_sysvalue(ZBDEntry::C_SysChildren), "1");
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysChildren), "0");
    // "<Parent>" at the top resolves to the default resource, by name.
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysResource), "Default");
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysIsActive), "1");
    EXPECT_EQ(task->get_sysvalue(ZBDEntry::C_SysTitle), "Task");

    // A bad date through the record's setter leaves the entry as it was.
    task->edit_due().set_orig(at("9-Mar-2026 17:00"));
    EXPECT_TRUE(iszbwarn(task->set_sysvalue(ZBDEntry::C_SysDueDate, "not a date")));
    get_zberror().clear_all();
    EXPECT_EQ(task->get_due().orig, at("9-Mar-2026 17:00"));
    ASSERT_FALSE(iszbwarn(task->set_sysvalue(ZBDEntry::C_SysDueDate, "12-Mar-2026 10:00")));
    EXPECT_EQ(task->get_due().orig, at("12-Mar-2026 10:00"));
}
