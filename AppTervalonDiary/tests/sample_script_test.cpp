// The sample diary script, run with the program built beside this test.
#include "AppTervalonDiary/tests/clirun.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>

#include <sstream>

using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

TEST(SampleScript, BuildsADiaryThatChecksAndPrints)
{
    const QString program = QCoreApplication::applicationDirPath() + "/tervalon";
    const QString script = QString(TERVALON_TEST_DATA) + "/../../../examples/make-sample.sh";
    const std::string file = Tervalon::Test::make_temp_dir("sample_script") + "/sample.zbd";
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("TERVALON", program);
    process.setProcessEnvironment(env);
    process.start("sh", {script, QString::fromStdString(file)});
    ASSERT_TRUE(process.waitForFinished(120000));
    ASSERT_EQ(process.exitStatus(), QProcess::NormalExit);
    ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    // Nothing but the entries' ids is left for the script's own use.
    EXPECT_EQ(process.readAllStandardOutput().toStdString(), "");

    CliRun check = tervalon({"check", file});
    ASSERT_EQ(check.status, 0) << check.err;
    // 39 entries, the default resource, the "Work" time type and the eight default specs.
    EXPECT_EQ(check.out, "Application type: TervalonDiary\nObjects: 49\n");

    CliRun tree = tervalon({"tree", file});
    ASSERT_EQ(tree.status, 0) << tree.err;
    std::istringstream lines(tree.out);
    std::string line;
    std::vector<std::string> all;
    while (std::getline(lines, line))
        all.push_back(line);
    ASSERT_EQ(all.size(), 39u) << tree.out;
    // Each line: indent, id, type letter, title, an optional due, completion.
    auto find = [&](const std::string& title) -> std::string {
        for (const std::string& l : all)
            if (l.find(" " + title + "  ") != std::string::npos)
                return l;
        return std::string();
    };
    auto indent = [](const std::string& l) { return l.find_first_not_of(' '); };
    EXPECT_EQ(indent(find("Home renovation")), 0u);
    EXPECT_EQ(indent(find("Kitchen")), 2u);
    EXPECT_EQ(indent(find("Measure the kitchen")), 4u);
    EXPECT_EQ(indent(find("Paint the hall")), 2u);
    EXPECT_EQ(indent(find("Register the domain")), 4u);
    EXPECT_EQ(indent(find("Sam Carter")), 2u);
    EXPECT_NE(find("Home renovation").find(" O Home renovation"), std::string::npos);
    EXPECT_NE(find("Weekly review").find(" T Weekly review  due "), std::string::npos);
    EXPECT_NE(find("Dentist").find(" A Dentist  "), std::string::npos);
    EXPECT_NE(find("Started planning the kitchen").find(" J "), std::string::npos);
    EXPECT_NE(find("Friends").find(" D Friends"), std::string::npos);
    EXPECT_NE(find("Riverside Sports Club").find(" L Riverside"), std::string::npos);
    // A task without a due shows none, and nothing is finished yet.
    EXPECT_EQ(find("Buy bulbs").find("due"), std::string::npos);
    // Notes without commands count as done.
    for (const std::string& l : all)
        EXPECT_EQ(l.substr(l.size() - 4), l.find(" J ") != std::string::npos ? "100%" : "  0%") << l;
}
