// A shell killed with SIGKILL at random points: after each kill the next load
// holds every change the shell acknowledged, and the file loads.
#include "tools/crashtest/crashdriver.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

TEST(ShellCrash, EveryAcknowledgedChangeSurvivesFiftyKills)
{
    const std::string program = QCoreApplication::applicationDirPath().toStdString() + "/tervalon";
    const std::string file = Tervalon::Test::make_temp_dir("crash") + "/crash.zbd";
    // A fixed seed, so that a failure repeats; the tool in tools/ runs fresh seeds.
    Tervalon::CrashTest::Driver driver(program, file, 20261123u);
    ASSERT_TRUE(driver.create()) << driver.failure();
    while (driver.kills() < 50)
        ASSERT_TRUE(driver.session()) << driver.failure();
}
