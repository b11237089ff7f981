// tervalon import FILE TASKS.json: one change saved once, problems on stderr,
// and a file left byte for byte alone when the list is refused.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {

struct ImportCommand : public ::testing::Test {
    void SetUp() override
    {
        ZBDateUtils::set_fixed_now(ZBDate(2026, 10, 22, 9, 0, 0, 0, ZBDate::C_GMT));
        dir = Tervalon::Test::make_temp_dir("import_command");
        file = dir + "/d.zbd";
        tasks = dir + "/tasks.json";
        ASSERT_EQ(tervalon({"create", file}).status, 0);
        ASSERT_EQ(tervalon({"add", file, "--type", "T", "--title", "Already here"}).status, 0);
    }
    void TearDown() override { ZBDateUtils::clear_fixed_now(); }
    std::string dir;
    std::string file;
    std::string tasks;
};

} // namespace

TEST_F(ImportCommand, ImportsSavesOnceAndReportsBadLines)
{
    Tervalon::Test::write_file(tasks, "[\n"
                                      "{\"uuid\":\"a\",\"description\":\"Plan\",\"project\":\"Work.Q4\"},\n"
                                      "{\"uuid\":\"b\",\"description\":\"Do\",\"depends\":[\"a\",\"x\"],"
                                      "\"project\":\"Work.Q4\"},\n"
                                      "{\"description\":\"Broken\",\n"
                                      "{\"uuid\":\"c\",\"description\":\"Gone\",\"status\":\"deleted\"}\n"
                                      "]\n");
    CliRun run = tervalon({"import", file, tasks});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Imported 2 tasks, 2 folders, 1 dependency; skipped 1 deleted\n");
    EXPECT_NE(run.err.find("line 4: not JSON ("), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("line 3: depends on an unknown task x\n"), std::string::npos) << run.err;

    CliRun tree = tervalon({"tree", file});
    EXPECT_EQ(tree.status, 0);
    for (const char* title : {"Already here", "Work", "Q4", "Plan", "Do"})
        EXPECT_NE(tree.out.find(title), std::string::npos) << title << "\n" << tree.out;
    EXPECT_EQ(tree.out.find("Broken"), std::string::npos);
}

TEST_F(ImportCommand, TextThatIsNotJsonLeavesTheFileAlone)
{
    const std::string before = Tervalon::Test::read_file(file);
    ASSERT_FALSE(before.empty());
    for (const std::string& text : {std::string("title,status\nPaint,pending\n"), std::string(),
                                    std::string("{\"description\": \"cut off")}) {
        Tervalon::Test::write_file(tasks, text);
        CliRun run = tervalon({"import", file, tasks});
        EXPECT_EQ(run.status, 1) << text;
        EXPECT_TRUE(run.out.empty());
        EXPECT_NE(run.err.find("tervalon: "), std::string::npos) << run.err;
        EXPECT_EQ(Tervalon::Test::read_file(file), before) << text;
    }
    CliRun missing = tervalon({"import", file, dir + "/no-such.json"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.err.find("Could not open the file"), std::string::npos) << missing.err;
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
}
