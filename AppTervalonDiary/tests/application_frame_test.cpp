#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibCore/application/zbappstatussetter.h"
#include "LibCore/param/zbparam.h"
#include "LibDate/date/zbdateutils.h"
#include "tests/support/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Tervalon;

namespace {

// An application with the diary's identity and a parameter store of its own.
class ApplicationFrame : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_app = AppDiaryInfo::make_application(0, nullptr);
        set_zbparam(new ZBParam());
        m_config = Tervalon::Test::make_temp_dir("frame") + "/user.cfg";
        zbparam().add_config_file(m_config);
        ZBDateUtils::set_fixed_now(ZBDate(2026, 5, 1, 9, 0, 0, 0, ZBDate::C_GMT));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        set_zbparam(nullptr);
        m_app.reset();
    }
    std::unique_ptr<ZBApplication> m_app;
    std::string m_config;
};

} // namespace

TEST_F(ApplicationFrame, RecentFilesKeepTenNewestFirstAndReload)
{
    for (int i = 0; i < 11; ++i)
        m_app->add_recent("/d/file" + std::to_string(i) + ".zbd");
    m_app->add_recent("/d/file5.zbd");
    ASSERT_EQ(m_app->get_recent_files().size(), 10u);
    EXPECT_EQ(m_app->get_first_file(), "/d/file5.zbd");
    EXPECT_EQ(m_app->get_recent_files()[1], "/d/file10.zbd");
    for (const std::string& file : m_app->get_recent_files())
        EXPECT_NE(file, "/d/file0.zbd");
    // What was stored comes back through the user's file.
    set_zbparam(new ZBParam());
    zbparam().add_config_file(m_config);
    m_app->load_recent();
    EXPECT_EQ(m_app->get_recent_files().size(), 10u);
    EXPECT_EQ(m_app->get_first_file(), "/d/file5.zbd");
}

TEST_F(ApplicationFrame, HostNameIsStableOnceStored)
{
    zbparam().set_system_value("Hostname", std::string("localhost"));
    std::string name = m_app->get_hostname();
    EXPECT_FALSE(name.empty());
    EXPECT_NE(name, "localhost");
    EXPECT_EQ(zbparam().get_system_value("Hostname", std::string()), name);
    EXPECT_EQ(m_app->get_hostname(), name);
}

TEST_F(ApplicationFrame, ReleaseTagsAndNumbers)
{
    EXPECT_EQ(ZBApplication::release_to_int("4.5.00"), 4005);
    EXPECT_EQ(ZBApplication::release_to_int("7"), 7000);
    EXPECT_EQ(ZBApplication::release_to_int(""), 0);
    EXPECT_EQ(m_app->get_release_tag(), "TervalonDiary-4-5-00");
    EXPECT_EQ(m_app->get_major_tag(), "TervalonDiary-4");
}

TEST_F(ApplicationFrame, UrlNamesAreNotFiles)
{
    std::string name = "TERVALONDIARY://add?title=x";
    EXPECT_TRUE(m_app->check_file_url(name));
    EXPECT_TRUE(name.empty());
    EXPECT_EQ(m_app->get_pending_url(), "TERVALONDIARY://add?title=x");
    std::string file = "/home/me/tervalondiary.zbd";
    EXPECT_FALSE(m_app->check_file_url(file));
    EXPECT_EQ(file, "/home/me/tervalondiary.zbd");
}

TEST_F(ApplicationFrame, DelayedStatusShowsOnlyWhenDue)
{
    m_app->push_status("Saving", 10.0, false, 1000000);
    EXPECT_EQ(m_app->foreground_status(), "");
    ZBDateUtils::set_fixed_now(ZBDate(2026, 5, 1, 9, 0, 2, 0, ZBDate::C_GMT));
    EXPECT_EQ(m_app->foreground_status(), "Saving");
    EXPECT_EQ(m_app->status_percentage("Saving", false), 10.0);
    m_app->pop_status("Saving", false);
    EXPECT_EQ(m_app->foreground_status(), "");
    EXPECT_EQ(m_app->status_percentage("Saving", false), 100.0);
    {
        ZBAppStatusSetter quick("Quick", false, 1000000);
    }
    ZBDateUtils::set_fixed_now(ZBDate(2026, 5, 1, 9, 0, 5, 0, ZBDate::C_GMT));
    EXPECT_EQ(m_app->foreground_status(), "");
}

TEST_F(ApplicationFrame, LogsLiveInTheCacheDirectory)
{
    EXPECT_EQ(m_app->get_error_log(), m_app->get_cache_dir() + "/TervalonDiary_error.log");
    EXPECT_EQ(m_app->get_performance_log(), m_app->get_cache_dir() + "/TervalonDiary_performance.log");
    EXPECT_EQ(m_app->get_scratch_dir(), m_app->get_data_dir() + "/scratch");
    EXPECT_NE(m_app->get_cache_dir().find(Tervalon::Test::scratch_dir()), std::string::npos);
}
