#include "AppTervalonDiary/cli/tervaloncli.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

namespace {

struct CliRun {
    int status;
    std::string out;
    std::string err;
};

CliRun tervalon(std::vector<std::string> args)
{
    args.insert(args.begin(), "tervalon");
    std::ostringstream out;
    std::ostringstream err;
    TervalonCli cli;
    int status = cli.run(args, out, err);
    get_zberror().clear_all();
    return {status, out.str(), err.str()};
}

} // namespace

TEST(CliSpec, CheckReportsEachFaultWithItsLine)
{
    const std::string dir = Tervalon::Test::make_temp_dir("clispec");
    const std::string good = dir + "/Person.txt";
    Tervalon::Test::write_file(good, "# a person\n$<Name> = prompt(\"\");\n$<Label> = eval(\"$<Name>\");\n");
    CliRun ok = tervalon({"spec", "check", good});
    EXPECT_EQ(ok.status, 0) << ok.err;
    EXPECT_EQ(ok.out, good + ": 1 spec, no errors\n");

    const std::string bad = dir + "/Bad.txt";
    Tervalon::Test::write_file(bad, "$<A> = \"1\";\n\n$<B> = \"unclosed;\n");
    CliRun failed = tervalon({"spec", "check", bad});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(failed.err, bad + ":3: error invalid assignment - Missing \"\"\"\n");
    EXPECT_EQ(failed.out, "");

    // A ".zbo" set: each spec's fault with the line in the file; inheritance across the set.
    const std::string sep(72, '#');
    const std::string set = dir + "/set.zbo";
    Tervalon::Test::write_file(set, sep + "{Base}\n$<A> = \"1\";\n" + sep + "{Kid}\ninherits Base;\nfoo;\n" + sep
                                        + "{Lost}\n$<A> = \"1\";\ninherits Ghost;\n");
    CliRun many = tervalon({"spec", "check", set});
    EXPECT_EQ(many.status, 1);
    EXPECT_EQ(many.err, set + ":5: error Unknown symbol \"foo\".\n"
                         "Spec Inheritance Error: " + set + ":8: Could not find inherited spec name Ghost.\n");

    CliRun missing = tervalon({"spec", "check", dir + "/none.txt"});
    EXPECT_EQ(missing.status, 1);
    CliRun usage = tervalon({"spec", "check"});
    EXPECT_EQ(usage.status, 1);
}

TEST(CliSpec, ListsTheSpecsOfADataFile)
{
    const std::string file = Tervalon::Test::make_temp_dir("clispeclist") + "/specs.zbd";
    {
        ZBDatabase db;
        ASSERT_FALSE(iszbwarn(db.load(file, true)));
        ASSERT_FALSE(iszbwarn(db.create_default_spec()));
        ASSERT_FALSE(iszbwarn(db.add_objectspec("Task", "inherits Default;\n$<Due> = prompt(\"\");\n"
                                                        "constrain $<Due> date;\n$<Ref> = auto(\"0001\");\n")));
        ASSERT_FALSE(iszbwarn(db.save(true, true, false)));
        db.unload();
    }
    CliRun listed = tervalon({"spec", file});
    EXPECT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.out, "Default\n  $[Object] ${Default}[]\n"
                          "TopLevel\n  $[Object] ${Default}[]\n"
                          "Task inherits Default\n  $<Due> prompt \"\" date\n  $<Ref> auto \"0001\"\n  $[Object] ${Default}[]\n");
}
