#include "AppTervalonDiary/tests/clirun.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {
std::string add_task(const std::string& file, const std::string& title)
{
    CliRun run = tervalon({"add", file, "--type", "T", "--title", title});
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out.substr(0, run.out.find_first_of(" \n"));
}
} // namespace

TEST(CliTimesheet, SetWritesSessionsAndBadInputLeavesTheFileAsItWas)
{
    const std::string file = Tervalon::Test::make_temp_dir("clitimesheet") + "/t.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    const std::string report = add_task(file, "Report");
    const std::string call = add_task(file, "Call <boss> & co");

    CliRun set = tervalon({"timesheet", file, "set", report, "3-Mar-2026", "2:30"});
    ASSERT_EQ(set.status, 0) << set.err;
    EXPECT_EQ("Report on Tue 03-Mar-2026: 2:30\n", set.out);
    ASSERT_EQ(tervalon({"timesheet", file, "set", call, "4-Mar-2026", "45m"}).status, 0);

    const std::string before = Tervalon::Test::read_file(file);
    for (const std::vector<std::string>& bad :
         {std::vector<std::string>{"set", report, "3-Mar-2026", "lots"}, {"set", report, "someday", "1h"},
          {"set", "999", "3-Mar-2026", "1h"}, {"set", report, "3-Mar-2026", "30h"}}) {
        std::vector<std::string> args = {"timesheet", file};
        args.insert(args.end(), bad.begin(), bad.end());
        CliRun run = tervalon(args);
        EXPECT_EQ(1, run.status) << bad[3];
        EXPECT_FALSE(run.err.empty());
        EXPECT_EQ(run.err.size() - 1, run.err.find('\n')) << "one line: " << run.err;
    }
    EXPECT_EQ(before, Tervalon::Test::read_file(file));

    CliRun text = tervalon({"timesheet", file, "--from", "2-Mar-2026", "--days", "3"});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_NE(std::string::npos, text.out.find("Mon 02  Tue 03  Wed 04  Total\n")) << text.out;
    EXPECT_NE(std::string::npos, text.out.find("Report                      2:30           2:30\n")) << text.out;
    EXPECT_NE(std::string::npos, text.out.find("Total               0:00    2:30    0:45   3:15\n")) << text.out;

    CliRun csv = tervalon({"timesheet", file, "--from", "2-Mar-2026", "--days", "3", "--csv"});
    ASSERT_EQ(csv.status, 0) << csv.err;
    EXPECT_NE(std::string::npos, csv.out.find(",Call <boss> & co,0.00,0.00,0.75,0.75\n")) << csv.out;

    CliRun html = tervalon({"timesheet", file, "--from", "2-Mar-2026", "--days", "3", "--html"});
    ASSERT_EQ(html.status, 0) << html.err;
    EXPECT_NE(std::string::npos, html.out.find("<td>Call &lt;boss&gt; &amp; co</td>")) << html.out;
    EXPECT_NE(std::string::npos, html.out.find("<th>Wed 04</th>")) << html.out;

    CliRun spent = tervalon({"report", file, "spent", "--from", "2-Mar-2026", "--to", "3-Mar-2026"});
    ASSERT_EQ(spent.status, 0) << spent.err;
    EXPECT_EQ(0u, spent.out.find("Time spent, Mon 02-Mar-2026 to Tue 03-Mar-2026\n")) << spent.out;
    EXPECT_NE(std::string::npos, spent.out.find("Report         1   2:30\n")) << spent.out;
    EXPECT_EQ(std::string::npos, spent.out.find("Call")) << "the call was on the 4th";

    EXPECT_EQ(1, tervalon({"timesheet", file, "--days", "0"}).status);
    EXPECT_EQ(1, tervalon({"timesheet", file, "--html", "--csv"}).status);
    EXPECT_EQ(1, tervalon({"report", file, "later"}).status);
    EXPECT_EQ(1, tervalon({"report", file, "spent", "--from", "5-Mar-2026", "--to", "3-Mar-2026"}).status);
    EXPECT_EQ(0, tervalon({"timesheet", "--help"}).status);
}
