#include "AppTervalonDiary/cli/cmdrepeat.h"
#include "AppTervalonDiary/tests/clirun.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Tervalon;

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

TEST(CliRepeat, PrintsWordsThenInstances)
{
    CliRun r = tervalon({"repeat", "T=3@N=1@D=1,3", "--from", "2026-03-02T08:00:00Z", "--count", "3"});
    EXPECT_EQ(0, r.status) << r.err;
    EXPECT_EQ("Every week on Mon, Wed\n"
              "2026-03-04T08:00:00Z\t2026-03-09T08:00:00Z\n"
              "2026-03-09T08:00:00Z\t2026-03-11T08:00:00Z\n"
              "2026-03-11T08:00:00Z\t2026-03-16T08:00:00Z\n",
              r.out);
}

TEST(CliRepeat, DefaultsToNowAndTenInstances)
{
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 1, 8, 0, 0, 0, ZBDate::C_GMT));
    CliRun r = tervalon({"repeat", "T=2@N=1@O=3610"});
    ZBDateUtils::clear_fixed_now();
    EXPECT_EQ(0, r.status) << r.err;
    std::istringstream lines(r.out);
    std::string line;
    std::vector<std::string> all;
    while (std::getline(lines, line))
        all.push_back(line);
    ASSERT_EQ(11u, all.size());
    EXPECT_EQ("2026-03-03T08:00:00Z\t2026-03-03T09:00:00Z", all[1]);
}

TEST(CliRepeat, BadInputIsAUserError)
{
    struct {
        std::vector<std::string> args;
        const char* err;
    } rows[] = {
        {{"repeat", "T=2@N=0"}, "tervalon: N=0 should be of the form \"N=N\"\n"},
        {{"repeat", "T=2@Q=1"}, "tervalon: I do not understand Q=1 in T=2@Q=1\n"},
        {{"repeat", "T=2", "--from", "2026-02-30T00:00:00Z"}, nullptr},
        {{"repeat", "T=2", "--count", "-1"}, nullptr},
        {{"repeat"}, nullptr},
    };
    for (const auto& row : rows) {
        CliRun r = tervalon(row.args);
        EXPECT_EQ(1, r.status);
        EXPECT_TRUE(r.out.empty()) << r.out;
        if (row.err)
            EXPECT_EQ(row.err, r.err);
        else
            EXPECT_FALSE(r.err.empty());
    }
}

TEST(CliRepeat, ReadsIsoMoments)
{
    struct {
        const char* text;
        const char* iso;
    } rows[] = {
        {"2026-03-02T08:00:00Z", "2026-03-02T08:00:00Z"},
        {"2026-03-02T08:00Z", "2026-03-02T08:00:00Z"},
        {"2026-03-02T08:00:00.25Z", "2026-03-02T08:00:00.250000Z"},
        {"2026-03-02T08:00:00+02:00", "2026-03-02T06:00:00Z"},
        {"2026-03-02T23:30:00-01:00", "2026-03-03T00:30:00Z"},
        {"2026-03-02", nullptr},
        {"2026-03-02T08:00:00", nullptr},
        {"2026-13-02T08:00:00Z", nullptr},
    };
    for (const auto& row : rows) {
        ZBDate date;
        bool ok = CmdRepeat::parse_iso(row.text, date);
        EXPECT_EQ(row.iso != nullptr, ok) << row.text;
        if (row.iso && ok) {
            EXPECT_EQ(row.iso, date.to_iso()) << row.text;
        }
    }
}
