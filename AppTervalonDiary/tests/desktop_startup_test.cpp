// How the desktop program reads its command line and ends a failed start.
#include "AppTervalonDiary/main/appdiary.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Tervalon;

TEST(DesktopStartup, TheDiaryIsTheFirstWordThatIsNoOptionOrValue)
{
    struct Row {
        std::vector<std::string> args;
        const char* file;
    };
    const Row rows[] = {
        {{"d1.zbd"}, "d1.zbd"},
        {{"--editor", "emacs", "d1.zbd"}, "d1.zbd"},
        {{"-editor", "emacs", "d1.zbd"}, "d1.zbd"},
        {{"--editor=emacs", "d1.zbd"}, "d1.zbd"},
        {{"d1.zbd", "--editor", "emacs"}, "d1.zbd"},
        {{"--editor", "emacs"}, ""},
        {{"-extra-args", "d2.zbd"}, ""},
        {{"d1.zbd", "-extra-args", "d2.zbd"}, "d1.zbd"},
    };
    for (const Row& row : rows) {
        std::vector<std::string> words = row.args;
        words.insert(words.begin(), "tervalon-diary");
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(&word[0]);
        argv.push_back(nullptr);
        EXPECT_EQ(-1, AppDiary::early_options(int(words.size()), argv.data())) << row.args.size();
        EXPECT_EQ(row.file, AppDiary::diary_argument()) << (row.args.empty() ? "" : row.args.front());
        set_zbparam(nullptr);
        set_zberror(new ZBError());
    }
}

TEST(DesktopStartup, AFailedStartSaysSoOnceAndEndsWithAFailureStatus)
{
    // A folder cannot be a diary: the load fails before any window exists.
    const std::string folder = Tervalon::Test::make_temp_dir("desktop-start") + "/not-a-diary.zbd";
    QDir().mkpath(QString::fromStdString(folder));
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("QT_QPA_PLATFORM", "offscreen");
    // The window system's own allocations at exit are not this test's subject.
    env.insert("ASAN_OPTIONS", "detect_leaks=0");
    process.setProcessEnvironment(env);
    process.start(QCoreApplication::applicationDirPath() + "/tervalon-diary", {QString::fromStdString(folder)});
    const bool finished = process.waitForFinished(60000);
    if (!finished) {
        process.kill();
        process.waitForFinished();
    }
    ASSERT_TRUE(finished) << "the failed start waited for a dialog nobody can close";
    EXPECT_EQ(QProcess::NormalExit, process.exitStatus());
    EXPECT_NE(0, process.exitCode());
    const std::string err = process.readAllStandardError().toStdString();
    const size_t first = err.find(folder);
    ASSERT_NE(std::string::npos, first) << err;
    EXPECT_EQ(std::string::npos, err.find(folder, first + 1)) << err;
}
