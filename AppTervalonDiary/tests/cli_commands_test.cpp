#include "AppTervalonDiary/tests/clirun.h"
#include "LibCore/error/zberror.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

TEST(CliCommands, CreateCheckRewriteRoundTrip)
{
    const std::string file = Tervalon::Test::make_temp_dir("cli") + "/new.zbd";
    CliRun created = tervalon({"create", file});
    ASSERT_EQ(created.status, 0) << created.err;
    CliRun checked = tervalon({"check", file});
    EXPECT_EQ(checked.status, 0) << checked.err;
    // A new diary holds its default resource and time type and the eight default specs.
    EXPECT_EQ(checked.out, "Application type: TervalonDiary\nObjects: 10\n");
    const std::string before = Tervalon::Test::read_file(file);
    CliRun rewritten = tervalon({"rewrite", file});
    EXPECT_EQ(rewritten.status, 0) << rewritten.err;
    EXPECT_EQ(Tervalon::Test::read_file(file).substr(0, 27), "ZBDatabase:7685\n!Version!0\n");
    CliRun dumped = tervalon({"dump", file});
    EXPECT_EQ(dumped.status, 0);
    EXPECT_NE(dumped.out.find("appType"), std::string::npos) << dumped.out;
    // Creating over an existing file is refused and the file stays.
    const std::string now = Tervalon::Test::read_file(file);
    CliRun again = tervalon({"create", file});
    EXPECT_EQ(again.status, 1);
    EXPECT_NE(again.err.find("already exists"), std::string::npos) << again.err;
    EXPECT_EQ(Tervalon::Test::read_file(file), now);
    (void)before;
}

TEST(CliCommands, BadFilesGiveOneLineExitOneAndStayUnchanged)
{
    const std::string dir = Tervalon::Test::make_temp_dir("clibad");
    const std::string junk = dir + "/junk.zbd";
    Tervalon::Test::write_file(junk, "not a database\n");
    for (const char* command : {"check", "rewrite", "dump"}) {
        CliRun run = tervalon({command, junk});
        EXPECT_EQ(run.status, 1) << command;
        EXPECT_EQ(run.err, "tervalon: " + junk + " contains invalid data. The file you are opening is not a database file.\n")
            << command;
        EXPECT_EQ(Tervalon::Test::read_file(junk), "not a database\n");
    }
    CliRun missing = tervalon({"check", dir + "/none.zbd"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(std::count(missing.err.begin(), missing.err.end(), '\n'), 1) << missing.err;
    EXPECT_FALSE(Tervalon::Test::file_exists(dir + "/none.zbd"));
}

TEST(CliCommands, UsageHelpAndUnknownCommands)
{
    CliRun help = tervalon({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("check FILE"), std::string::npos);
    CliRun commandHelp = tervalon({"check", "--help"});
    EXPECT_EQ(commandHelp.status, 0);
    EXPECT_EQ(commandHelp.out.find("Usage: tervalon check FILE"), 0u) << commandHelp.out;
    CliRun unknown = tervalon({"frobnicate"});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_NE(unknown.err.find("unknown command 'frobnicate'"), std::string::npos);
    CliRun none = tervalon({});
    EXPECT_EQ(none.status, 1);
    CliRun noFile = tervalon({"check"});
    EXPECT_EQ(noFile.status, 1);
    EXPECT_NE(noFile.err.find("Usage: tervalon check FILE"), std::string::npos);
    CliRun extra = tervalon({"check", "a.zbd", "b"});
    EXPECT_EQ(extra.status, 1);
}
