#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"
#include "tests/support/testsupport.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using namespace Tervalon;

namespace {

class ParamFile : public ::testing::Test {
protected:
    void SetUp() override { m_dir = Tervalon::Test::make_temp_dir("param-file"); }
    void TearDown() override { get_zberror().clear_all(); }
    std::string path(const char* name) const { return m_dir + "/" + name; }
    std::string m_dir;
};

} // namespace

TEST_F(ParamFile, RewriteKeepsCommentsOrderAndUnknownLines)
{
    const std::string file = path("user.cfg");
    Tervalon::Test::write_file(file, "# my settings\n"
                           "System=PlanDays=14\n"
                           "\n"
                           "Future=kept as it is\n"
                           "System=AutoSave=1\n");
    ZBParam param;
    param.add_config_file(file);
    EXPECT_EQ(14, param.get_system_value("PlanDays", 7));
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("PlanDays", 21));
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("LastFile", "/tmp/a.zbd;/tmp/b.zbd"));
    EXPECT_EQ("# my settings\n"
              "System=PlanDays=21\n"
              "\n"
              "Future=kept as it is\n"
              "System=AutoSave=1\n"
              "System=LastFile=/tmp/a.zbd;/tmp/b.zbd\n",
              Tervalon::Test::read_file(file));
    EXPECT_FALSE(Tervalon::Test::file_exists(file + ".tmp"));

    ZBParam again;
    again.add_config_file(file);
    EXPECT_EQ("/tmp/a.zbd;/tmp/b.zbd", again.get_system_value("LastFile"));
    EXPECT_TRUE(again.is_system_value_set("AutoSave"));
    EXPECT_FALSE(again.is_system_value_set("Backups"));
    EXPECT_EQ("none", again.get_system_value("Backups", std::string("none")));
}

TEST_F(ParamFile, DamagedLineIsReportedSkippedAndTheFileLeftAlone)
{
    const std::string file = path("damaged.cfg");
    const std::string text = "System=PlanDays=14\nSystem=garbage without a tag\nAutoSave\n\x01\x02 binary\n";
    Tervalon::Test::write_file(file, text);
    ZBParam param;
    int result = param.add_config_file(file);
    EXPECT_TRUE(iszbwarn(result));
    ASSERT_NE(nullptr, get_zberror().top());
    EXPECT_NE(std::string::npos, get_zberror().top()->get_message().find(file + ":"));
    std::string messages;
    while (get_zberror().top()) {
        messages += get_zberror().top()->get_message() + "\n";
        get_zberror().clear_last_error();
    }
    EXPECT_NE(std::string::npos, messages.find("Invalid line AutoSave in " + file + ":3"));
    EXPECT_NE(std::string::npos, messages.find(file + ":2"));
    EXPECT_EQ(14, param.get_system_value("PlanDays", 7));
    EXPECT_EQ(8, param.get_system_value("WorkHours", 8));
    // Reading and writing an unchanged setting leave the damaged file as it was.
    EXPECT_EQ(ZBErrC_ok, param.write_user_config());
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("PlanDays", 14));
    EXPECT_EQ(text, Tervalon::Test::read_file(file));
    // A real change writes, and keeps the lines it could not read.
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("PlanDays", 15));
    std::string written = Tervalon::Test::read_file(file);
    EXPECT_EQ(0u, written.find("System=PlanDays=15\n"));
    EXPECT_NE(std::string::npos, written.find("AutoSave\n"));
}

TEST_F(ParamFile, MissingFileIsNotAnErrorAndIsCreatedOnFirstChange)
{
    const std::string file = path("sub/new.cfg");
    ZBParam param;
    EXPECT_EQ(ZBErrC_ok, param.add_config_file(file));
    EXPECT_FALSE(Tervalon::Test::file_exists(file));
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("Hostname", "desk"));
    EXPECT_EQ("System=Hostname=desk\n", Tervalon::Test::read_file(file));
}

TEST_F(ParamFile, UnwritableFolderGivesAWarningNamingTheFile)
{
    QFile::setPermissions(QString::fromStdString(m_dir), QFile::ReadOwner | QFile::ExeOwner);
    ZBParam param;
    param.add_config_file(path("locked.cfg"));
    int result = param.set_system_value("Hostname", "desk");
    QFile::setPermissions(QString::fromStdString(m_dir), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (getuid() == 0)
        GTEST_SKIP() << "root writes anywhere";
    EXPECT_TRUE(iszbwarn(result));
    EXPECT_NE(std::string::npos, get_zberror().top()->get_message().find("Could not create the file"));
    // The value still holds for this run.
    EXPECT_EQ("desk", param.get_system_value("Hostname"));
}

TEST_F(ParamFile, UserFileLivesInTheConfigurationFolder)
{
    ZBParam param(0, nullptr, "TervalonDiary", "", "", "", "", "", "", "");
    std::string file = param.default_user_config();
    EXPECT_EQ(0u, file.find(Tervalon::Test::scratch_dir() + "/config/"));
    EXPECT_NE(std::string::npos, file.find("/TervalonDiary.cfg"));
}

TEST_F(ParamFile, WithoutAUserFileValuesLiveForTheRun)
{
    ZBParam param;
    EXPECT_EQ(ZBErrC_ok, param.set_system_value("RecalcIdle", 5));
    EXPECT_EQ(5, param.get_system_value("RecalcIdle", 0));
    EXPECT_EQ("", param.get_user_config());
}

TEST_F(ParamFile, AwkwardValuesAndTagsAreEscapedAndReadBackAsTheyWere)
{
    struct Row {
        const char* tag;
        const char* value;
    };
    const Row rows[] = {
        {"Note", "first line\nsecond line"},
        {"Windows", "line\r\n"},
        {"Path", "C:\\temp\\new"},
        {"Sum", "a=b=c"},
        {"Key=WithSeparator", "kept apart"},
        {"Back\\slash", "\\n is not a line feed here"},
        {"Trailing", "ends in a backslash\\"},
    };
    const std::string file = path("escaped.cfg");
    {
        ZBParam param;
        param.add_config_file(file);
        for (const Row& row : rows)
            ASSERT_EQ(ZBErrC_ok, param.set_system_value(row.tag, row.value)) << row.tag;
    }
    std::string text = Tervalon::Test::read_file(file);
    EXPECT_EQ(size_t(sizeof rows / sizeof rows[0]), size_t(std::count(text.begin(), text.end(), '\n'))) << text;
    EXPECT_NE(std::string::npos, text.find("System=Key\\=WithSeparator=kept apart\n")) << text;
    ZBParam again;
    EXPECT_EQ(ZBErrC_ok, again.add_config_file(file));
    for (const Row& row : rows)
        EXPECT_EQ(row.value, again.get_system_value(row.tag, std::string("missing"))) << row.tag;
    EXPECT_FALSE(again.is_system_value_set("Key"));
}

TEST_F(ParamFile, AHandWrittenBackslashReadsAsItStands)
{
    const std::string file = path("by-hand.cfg");
    Tervalon::Test::write_file(file, "System=Folder=C:\\temp\\data\n");
    ZBParam param;
    param.add_config_file(file);
    EXPECT_EQ("C:\\temp\\data", param.get_system_value("Folder"));
}

TEST_F(ParamFile, ARepeatedTagTakesItsLastLineAndARewriteKeepsIt)
{
    for (const char* tag : {"", "PlanDays"}) {
        const std::string file = path("repeat.cfg");
        const std::string key = std::string("System=") + tag + "=";
        Tervalon::Test::write_file(file, key + "first\n" + key + "second\n");
        ZBParam param;
        param.add_config_file(file);
        EXPECT_EQ("second", param.get_system_value(tag)) << tag;
        EXPECT_EQ(ZBErrC_ok, param.set_system_value("AutoSave", "1"));
        ZBParam again;
        again.add_config_file(file);
        EXPECT_EQ("second", again.get_system_value(tag)) << tag << "\n" << Tervalon::Test::read_file(file);
    }
}

TEST_F(ParamFile, LinesFromAnotherDeviceKeepTheirValuesThroughARewrite)
{
    // Line ends of another system: one carriage return is the line's end, a
    // second one (written by hand, or at the file's end) belongs to the value.
    const std::string file = path("crlf.cfg");
    Tervalon::Test::write_file(file, "System=Plain=one\r\nSystem=Odd=two\r\r\nSystem=Last=three\r\r");
    ZBParam param;
    param.add_config_file(file);
    EXPECT_EQ("one", param.get_system_value("Plain"));
    EXPECT_EQ("two\r", param.get_system_value("Odd"));
    EXPECT_EQ("three\r", param.get_system_value("Last"));
    ASSERT_EQ(ZBErrC_ok, param.set_system_value("New", "1"));
    ZBParam again;
    again.add_config_file(file);
    for (const char* tag : {"Plain", "Odd", "Last"})
        EXPECT_EQ(param.get_system_value(tag), again.get_system_value(tag)) << tag;
    EXPECT_EQ("1", again.get_system_value("New"));
}
