#include "AppTervalonDiary/tests/clirun.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zblocale.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

TEST(CliDate, PrintsEachMomentInUtcAndInFull)
{
    CliRun r = tervalon({"date", "--now", "2026-03-02T08:00:00Z", "+1 Week", "now +-1 Week", "fri 5PM", ""});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "2026-03-09T08:00:00Z\tMon 09/Mar/2026 08:00:00\n"
                     "2026-02-23T08:00:00Z\tMon 23/Feb/2026 08:00:00\n"
                     "2026-03-06T17:00:00Z\tFri 06/Mar/2026 17:00:00\n"
                     "blank\n");
}

TEST(CliDate, StyleSelectsTheOrderForThatRunOnly)
{
    CliRun month = tervalon({"date", "--now", "2026-03-02T08:00:00+02:00", "--style", "month", "1/2/03"});
    EXPECT_EQ(month.status, 0) << month.err;
    EXPECT_EQ(month.out, "2003-01-02T06:00:00Z\tThu Jan 02, 2003 06:00:00\n");
    CliRun day = tervalon({"date", "--now", "2026-03-02T08:00:00Z", "1/2/03"});
    EXPECT_EQ(day.out, "2003-02-01T08:00:00Z\tSat 01/Feb/2003 08:00:00\n");
    CliRun year = tervalon({"date", "--now", "2026-03-02T08:00:00Z", "--style", "year", "1/2/03"});
    EXPECT_EQ(year.out, "2001-02-03T08:00:00Z\tSat 2001-Feb-03 08:00:00\n");
}

TEST(CliDate, UnreadableTextIsAUserError)
{
    CliRun r = tervalon({"date", "--now", "2026-03-02T08:00:00Z", "tomorrow", "31-Feb-2026"});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "2026-03-03T08:00:00Z\tTue 03/Mar/2026 08:00:00\n");
    EXPECT_EQ(r.err, "tervalon: Invalid date value: 31-Feb-2026. Feb 2026 has 28 days.\n");
    EXPECT_EQ(tervalon({"date", "soonish"}).err, "tervalon: Invalid date value: soonish\n");
}

TEST(CliDate, BadOptionsGiveUsage)
{
    EXPECT_EQ(tervalon({"date"}).status, 1);
    EXPECT_EQ(tervalon({"date", "--now", "yesterday", "x"}).status, 1);
    EXPECT_EQ(tervalon({"date", "--now", "2026-02-30T08:00:00Z", "x"}).status, 1);
    EXPECT_EQ(tervalon({"date", "--style", "sideways", "x"}).status, 1);
    CliRun help = tervalon({"date", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("Usage: tervalon date [--now ISO]"), std::string::npos);
}

TEST(CliDuration, PrintsTheTextForm)
{
    // A day is a working day of the locale, which a diary opened earlier in
    // this process sets to its own hours.
    zblocale().set_workhours(8.0);
    CliRun r = tervalon({"duration", "1:30", "1.5h", "2d", "45m"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "01:30\n01:30\n16:00\n00:45\n");
    CliRun bad = tervalon({"duration", "3 fortnights"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_NE(bad.err.find("Invalid duration unit"), std::string::npos);
    // Text with no number in it is no length of time.
    CliRun vague = tervalon({"duration", "a while"});
    EXPECT_EQ(vague.status, 1);
    EXPECT_EQ(vague.err, "tervalon: Invalid duration: a while\n");
    EXPECT_EQ(vague.out, "");
}
