#include "AppTervalonDiary/tests/clirun.h"
#include "tests/support/testsupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Tervalon;
using Tervalon::Test::CliRun;
using Tervalon::Test::tervalon;

namespace {
std::string add(const std::string& file, std::vector<std::string> args)
{
    args.insert(args.begin(), {"add", file});
    CliRun run = tervalon(args);
    EXPECT_EQ(run.status, 0) << run.err;
    return run.out.substr(0, run.out.find_first_of(" \n"));
}
} // namespace

TEST(CliPlan, JsonHoldsEveryEntryInDisplayOrderAndTheFileStaysAsItWas)
{
    const std::string file = Tervalon::Test::make_temp_dir("cliplan") + "/p.zbd";
    ASSERT_EQ(tervalon({"create", file}).status, 0);
    const std::string project = add(file, {"--type", "O", "--title", "Project", "--due", "10-Mar-2026 17:00"});
    const std::string first = add(file, {"--type", "T", "--title", "First", "--parent", project, "--duration", "4h",
                                         "--start", "3-Mar-2026 09:00"});
    const std::string second = add(file, {"--type", "T", "--title", "Second", "--parent", project, "--duration", "2h"});
    const std::string late = add(file, {"--type", "T", "--title", "Late", "--due", "1-Mar-2026 12:00"});
    ASSERT_EQ(tervalon({"depend", file, second, first}).status, 0);
    ASSERT_EQ(tervalon({"depend", file, first, second}).status, 1); // a loop is refused
    const std::string before = Tervalon::Test::read_file(file);

    CliRun run = tervalon({"plan", file, "--now", "2-Mar-2026 08:00", "--json"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
    const QJsonObject root = QJsonDocument::fromJson(QByteArray::fromStdString(run.out)).object();
    EXPECT_EQ(root["now"].toString(), "2026-03-02T08:00:00Z");
    const QJsonArray entries = root["entries"].toArray();
    ASSERT_EQ(entries.size(), 4);
    EXPECT_TRUE(root["checker"].isArray());
    auto entry = [&](const std::string& id) {
        for (int i = 0; i < entries.size(); ++i)
            if (entries[i].toObject()["id"].toInt() == std::stoi(id))
                return entries[i].toObject();
        return QJsonObject();
    };
    // Display order: the tree's, each parent before its children.
    std::vector<int> order;
    for (int i = 0; i < entries.size(); ++i)
        order.push_back(entries[i].toObject()["id"].toInt());
    EXPECT_LT(std::find(order.begin(), order.end(), std::stoi(project)) - order.begin(),
              std::find(order.begin(), order.end(), std::stoi(first)) - order.begin());
    const QJsonObject s = entry(second);
    EXPECT_EQ(s["startAfter"].toString(), "2026-03-03T13:00:00Z");
    EXPECT_EQ(s["startSource"].toInt(), std::stoi(first));
    EXPECT_EQ(s["due"].toString(), "2026-03-10T17:00:00Z");
    EXPECT_EQ(s["dueSource"].toInt(), std::stoi(project));
    EXPECT_EQ(s["duration"].toDouble(), 7200.0);
    EXPECT_EQ(s["remaining"].toDouble(), 7200.0);
    EXPECT_EQ(s["dependsOn"].toArray().at(0).toInt(), std::stoi(first));
    EXPECT_EQ(entry(first)["dependedOnBy"].toArray().at(0).toInt(), std::stoi(second));
    EXPECT_FALSE(s["active"].toBool());
    EXPECT_EQ(s["resource"].toString(), "Default");
    const QJsonObject l = entry(late);
    EXPECT_TRUE(l["startAfter"].isNull());
    EXPECT_EQ(l["alertLevel"].toInt(), 4);
    ASSERT_EQ(l["notifications"].toArray().size(), 1);
    const QJsonObject note = l["notifications"].toArray().at(0).toObject();
    EXPECT_EQ(note["text"].toString(), "OVERDUE: Late");
    EXPECT_EQ(note["code"].toInt(), 900);
    EXPECT_DOUBLE_EQ(note["priority"].toDouble(), l["priority"].toDouble());
    EXPECT_GE(l["priority"].toDouble(), 400.0);
    EXPECT_LT(l["nonDuePriority"].toDouble(), 1.0);

    // The same facts for a person, and the alerts most urgent first.
    CliRun text = tervalon({"plan", file, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(text.status, 0);
    EXPECT_NE(text.out.find("OVERDUE: Late"), std::string::npos);
    CliRun alerts = tervalon({"alerts", file, "--now", "2-Mar-2026 08:00"});
    ASSERT_EQ(alerts.status, 0) << alerts.err;
    EXPECT_EQ(alerts.out.find("900"), 0u) << alerts.out;
    // Nothing is saved, and a bad clock or option is a user error.
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
    EXPECT_EQ(tervalon({"plan", file, "--now", "whenever"}).status, 1);
    EXPECT_EQ(tervalon({"plan", file, "--frobnicate"}).status, 1);
    EXPECT_EQ(tervalon({"alerts", file, "--json"}).status, 1);
    EXPECT_EQ(Tervalon::Test::read_file(file), before);
}
