#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/qt/zbapplicationqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "tests/support/testsupport.h"

#include <QApplication>

#include <gtest/gtest.h>

using namespace Tervalon;

TEST(DatabaseWindow, OpensMakesAndSavesOnClose)
{
    const std::string file = Tervalon::Test::make_temp_dir("window") + "/made.zbd";
    ZBDBManagerQt* window = new ZBDBManagerQt(AppDiaryInfo::make_database());
    window->setAttribute(Qt::WA_DeleteOnClose);
    ASSERT_EQ(window->start(file, 60000, 300000, 15000), ZBErrC_ok);
    EXPECT_TRUE(window->is_loaded());
    EXPECT_TRUE(Tervalon::Test::file_exists(file));
    const int before = window->get_database()->get_nobjects();
    ZBDBObject* object = new ZBDBObject();
    ASSERT_EQ(window->get_database()->add_object(object, window->get_database(), "OB", "", -1, ""), ZBErrC_ok);
    EXPECT_TRUE(window->close());
    std::unique_ptr<ZBDatabase> again(AppDiaryInfo::make_database());
    ASSERT_EQ(again->read(file), ZBErrC_ok);
    EXPECT_EQ(again->get_nobjects(), before + 1);
}

TEST(DatabaseWindow, DamagedFileIsNotOpenedAndStaysAsItWas)
{
    const std::string file = Tervalon::Test::make_temp_dir("window") + "/bad.zbd";
    Tervalon::Test::write_file(file, "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!I!0\n");
    ZBDBManagerQt window(AppDiaryInfo::make_database());
    // The load waits on the user's answer to the damaged-file question.
    EXPECT_EQ(window.start(file, 60000, 300000, 15000), ZBErrC_okNotFinished);
    EXPECT_FALSE(window.is_loaded());
    get_zberror().clear_all();
    EXPECT_EQ(Tervalon::Test::read_file(file), "ZBDatabase:7685\n!Version!0\n@O:\n{ZBDatabase\n!I!0\n");
}

TEST(DatabaseWindow, UrlSplitsIntoCommandAndQueryItems)
{
    std::string command;
    std::map<std::string, std::string> values;
    ZBApplicationQt::parse_url(QUrl("tervalondiary://add/x?title=Buy%20milk&due=fri"), command, values);
    EXPECT_EQ(command, "add");
    EXPECT_EQ(values["title"], "Buy milk");
    EXPECT_EQ(values["due"], "fri");
    ZBApplicationQt::parse_url(QUrl("tervalondiary://show"), command, values);
    EXPECT_EQ(command, "show");
    EXPECT_TRUE(values.empty());
}
