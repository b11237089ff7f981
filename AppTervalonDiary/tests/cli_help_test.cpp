// The help text of the command-line program fits a terminal.
#include "AppTervalonDiary/tests/clirun.h"

#include <gtest/gtest.h>

#include <sstream>

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

TEST(CliHelp, EachUsageStandsOnItsLineWithTheSummaryWrappedUnderIt)
{
    CliRun help = tervalon({"--help"});
    ASSERT_EQ(0, help.status);
    std::istringstream lines(help.out);
    std::string line;
    std::string previous;
    int usages = 0;
    while (std::getline(lines, line)) {
        const bool usage = line.size() > 2 && line.compare(0, 2, "  ") == 0 && line[2] != ' ';
        if (usage)
            ++usages;
        else
            EXPECT_LE(line.size(), 80u) << line;
        // A usage line is followed by its summary, indented under it, not by
        // the next usage: the summary never shares the usage's line.
        const bool previousUsage =
            previous.size() > 2 && previous.compare(0, 2, "  ") == 0 && previous[2] != ' ';
        if (previousUsage)
            EXPECT_EQ(0u, line.find("      ")) << previous << "\n" << line;
        previous = line;
    }
    EXPECT_GE(usages, 10);
    EXPECT_NE(std::string::npos, help.out.find("\n  check FILE"));
}

TEST(CliHelp, ACommandsOwnHelpIsWrappedToo)
{
    for (const char* command : {"check", "add", "tree", "repeat", "rm"}) {
        CliRun help = tervalon({command, "--help"});
        ASSERT_EQ(0, help.status) << command;
        std::istringstream lines(help.out);
        std::string line;
        std::getline(lines, line); // the usage line
        while (std::getline(lines, line))
            EXPECT_LE(line.size(), 80u) << command << ": " << line;
    }
}
