#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbdirectory.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/maths/zbgeopoint.h"
#include "LibCore/maths/zbunits.h"
#include "tests/support/testsupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Tervalon;

namespace {

class PathsAndUnits : public Tervalon::Test::QuietErrors {};

} // namespace

TEST_F(PathsAndUnits, CleaningKeepsNetworkPathsAndSqueezesDoubles)
{
    EXPECT_EQ(zb_clean_pathname("//server/share//dir/../file", true), "//server/share/file");
    EXPECT_EQ(zb_clean_pathname("\\\\server\\share\\\\x", true), "//server/share/x");
    EXPECT_EQ(zb_clean_pathname("/a//b/./c/", false), "/a/b/c");
    EXPECT_EQ(zb_clean_pathname("a\\b", false), "a\\b");
    EXPECT_EQ(zb_clean_pathname("", true), "");
}

TEST_F(PathsAndUnits, SplittingNamesWithDotsAndNoDirectory)
{
    std::string dir, base, ext;
    zb_split_path("/home/me/plan.2024.zbd", dir, base, ext);
    EXPECT_EQ(dir, "/home/me");
    EXPECT_EQ(base, "plan.2024");
    EXPECT_EQ(ext, ".zbd");
    EXPECT_EQ(zb_extension("/home/me/.cfg"), "");
    EXPECT_EQ(zb_basename("/home/me/.cfg"), ".cfg");
    EXPECT_EQ(zb_dirname("/file"), "/");
    EXPECT_EQ(zb_dirname("file.txt"), "");
    EXPECT_EQ(zb_filename("/a/b/"), "");
    EXPECT_EQ(zb_extension("/a.b/c"), "");
    EXPECT_EQ(zb_join_path("/a/", "/b"), "/a/b");
    EXPECT_TRUE(zb_is_absolute_path("/x"));
    EXPECT_FALSE(zb_is_absolute_path("x/y"));
}

TEST_F(PathsAndUnits, FileOperationsWithOddNames)
{
    const std::string dir = Tervalon::Test::make_temp_dir("odd names \xC3\xA9 'q' \"d\"");
    const std::string a = dir + "/my diary #1 (caf\xC3\xA9).zbd";
    const std::string b = dir + "/copy;rm -rf.zbd";
    Tervalon::Test::write_file(a, "contents\n");
    EXPECT_TRUE(zb_file_exists(a));
    EXPECT_FALSE(zb_dir_exists(a));
    EXPECT_TRUE(zb_dir_writable(dir));
    EXPECT_FALSE(zb_file_exists(dir + "/ABCDEFFFED-test.txt"));
    EXPECT_EQ(zb_copy_file(a, b, false), ZBErrC_ok);
    bool same = false;
    EXPECT_EQ(zb_file_compare(a, b, same), ZBErrC_ok);
    EXPECT_TRUE(same);
    EXPECT_TRUE(iszbwarn(zb_copy_file(a, b, false)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "The file " + b + " already exists.");
    Tervalon::Test::write_file(b, "contents!\n");
    zb_file_compare(a, b, same);
    EXPECT_FALSE(same);
    EXPECT_EQ(zb_rename_file(b, a, true), ZBErrC_ok);
    EXPECT_FALSE(zb_file_exists(b));
    EXPECT_EQ(Tervalon::Test::read_file(a), "contents!\n");
    EXPECT_EQ(zb_file_size(a), 10);
    EXPECT_TRUE(zb_file_modified(a).is_ok());
    EXPECT_FALSE(zb_file_modified(b).is_ok());
    EXPECT_EQ(zb_delete_file(a), ZBErrC_ok);
    EXPECT_EQ(zb_delete_file(a), ZBErrC_ok);
    EXPECT_TRUE(iszbwarn(zb_rename_file(a, b, false)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System), "The file " + a + " does not exist.");
    EXPECT_TRUE(iszbwarn(zb_file_compare(a, b, same)));
    EXPECT_EQ(get_zberror().top()->get_details(ZBErrAsp_System),
              "zb_file_compare: Could not open " + a + " for reading.");
}

TEST_F(PathsAndUnits, DirectoriesListMatchingFilesInPathOrder)
{
    const std::string dir = Tervalon::Test::make_temp_dir("listing");
    EXPECT_EQ(zb_create_dir(dir + "/sub/deeper"), ZBErrC_ok);
    for (const char* name : {"/b.zbd", "/a.ZBD", "/notes.txt", "/sub/c.zbd", "/sub/deeper/d.zbd"})
        Tervalon::Test::write_file(dir + name, "x");
    ZBDirectory flat;
    EXPECT_EQ(flat.load(dir, "*.zbd", false), ZBErrC_ok);
    ASSERT_EQ(flat.get_nfiles(), 2);
    EXPECT_EQ(flat.get_file_by_index(0)->get_filename(), "a.ZBD");
    EXPECT_EQ(flat.get_file_by_index(1)->get_size(), 1);
    ZBDirectory deep(dir, "*.zbd");
    EXPECT_EQ(deep.load(true), ZBErrC_ok);
    EXPECT_EQ(deep.get_nfiles(), 4);
    EXPECT_NE(deep.get_file_by_pathname(dir + "/sub/deeper/d.zbd"), nullptr);
    ZBDirectory missing;
    EXPECT_TRUE(iszbwarn(missing.load(dir + "/nowhere", "*", false)));
    EXPECT_EQ(missing.get_nfiles(), 0);
    EXPECT_TRUE(iszbwarn(zb_create_dir(dir + "/b.zbd/inside")));
}

TEST_F(PathsAndUnits, UnitConversionsRoundTripThroughTheBase)
{
    EXPECT_DOUBLE_EQ(ZBUnits::from_unit(1.0, 103), 1000.0);
    EXPECT_NEAR(ZBUnits::to_unit(1000.0, 104), 2.20462262, 1e-8);
    EXPECT_NEAR(ZBUnits::from_unit(100.0, 1), 23.9005736, 1e-6);
    EXPECT_NEAR(ZBUnits::to_unit(ZBUnits::from_unit(1.0, 312), 303), 1.609344, 1e-12);
    EXPECT_DOUBLE_EQ(ZBUnits::to_unit(7200.0, 404), 2.0);
    EXPECT_NEAR(ZBUnits::to_unit(ZBUnits::from_unit(60.0, 502), 501), 96.56064, 1e-9);
    for (int type = 0; type <= 8; ++type)
        for (int unit : ZBUnits::get_units(type)) {
            EXPECT_EQ(ZBUnits::get_base_type(unit), type);
            EXPECT_EQ(ZBUnits::unit_code(ZBUnits::get_unit_name(unit)), unit);
            EXPECT_NEAR(ZBUnits::to_unit(ZBUnits::from_unit(3.75, unit), unit), 3.75, 1e-9);
        }
    EXPECT_EQ(ZBUnits::get_units(1).front(), 100);
    EXPECT_EQ(ZBUnits::unit_code("KCAL"), 0);
    EXPECT_EQ(ZBUnits::unit_code("mmHg"), 802);
    EXPECT_EQ(ZBUnits::unit_code("furlong"), -1);
    EXPECT_EQ(ZBUnits::get_base_type(999), -1);
    EXPECT_TRUE(ZBUnits::unit_should_average(700));
    EXPECT_TRUE(ZBUnits::unit_should_average(802));
    EXPECT_FALSE(ZBUnits::unit_should_average(100));
}

TEST_F(PathsAndUnits, UnitTextReadsAndWritesWhatPeopleType)
{
    double base = 0;
    int unit = -1;
    EXPECT_TRUE(ZBUnits::from_text("2.5 kg", 100, base, &unit));
    EXPECT_DOUBLE_EQ(base, 2500.0);
    EXPECT_EQ(unit, 103);
    EXPECT_TRUE(ZBUnits::from_text("250", 101, base));
    EXPECT_DOUBLE_EQ(base, 0.25);
    EXPECT_FALSE(ZBUnits::from_text("3 km", 100, base));
    EXPECT_FALSE(ZBUnits::from_text("kg", 100, base));
    EXPECT_FALSE(ZBUnits::from_text("", 100, base));
    EXPECT_TRUE(ZBUnits::from_text("1:30:15", 400, base));
    EXPECT_DOUBLE_EQ(base, 5415.0);
    EXPECT_TRUE(ZBUnits::from_text("1:30", 404, base));
    EXPECT_DOUBLE_EQ(base, 5400.0);
    EXPECT_EQ(ZBUnits::to_text(2500.0, 103, 3, true, true), "2.5 kg");
    EXPECT_EQ(ZBUnits::to_text(2500.0, 103, 2, false, false), "2.50");
    EXPECT_EQ(ZBUnits::to_text(45.0, 700, 1, true, true), "45%");
    EXPECT_EQ(ZBUnits::to_text(5415.0, 400, 0, true, true), "1:30:15");
    EXPECT_EQ(ZBUnits::to_text_alt(ZBUnits::from_unit(71.0, 311), 311, 0), "5' 11\"");
    EXPECT_EQ(ZBUnits::to_text_alt(ZBUnits::from_unit(148.0, 105), 104, 0), "9 lb 4 oz");
    EXPECT_DOUBLE_EQ(ZBUnits::round_to_units(ZBUnits::from_unit(2017.4, 0), 0), 2017.0);
    EXPECT_NEAR(ZBUnits::to_unit(ZBUnits::round_to_units(ZBUnits::from_unit(0.1234, 101), 101), 101), 0.12, 1e-12);
}

TEST_F(PathsAndUnits, PositionsRoundTripInEveryForm)
{
    ZBGeoPoint point(-33.8568, 151.2153, 10.0);
    const std::vector<std::string> expected = {"33.8568 S, 151.2153 E",      "-33.8568, 151.2153",
                                               "33 51.408 S, 151 12.918 E",  "-33 51.408, 151 12.918",
                                               "33 51 24.48 S, 151 12 55.08 E", "-33 51 24.48, 151 12 55.08"};
    ASSERT_EQ(ZBGeoPoint::get_formats().size(), expected.size());
    for (int format = 0; format < 6; ++format) {
        EXPECT_EQ(point.to_string(format), expected[size_t(format)]);
        ZBGeoPoint back;
        EXPECT_EQ(back.from_string(point.to_string(format)), ZBErrC_ok);
        EXPECT_NEAR(back.get_latitude(), point.get_latitude(), 1e-6) << format;
        EXPECT_NEAR(back.get_longitude(), point.get_longitude(), 1e-6) << format;
    }
    ZBGeoPoint west(0.5, -0.1276);
    EXPECT_EQ(west.to_string(3), "0 30, -0 7.656");
    ZBGeoPoint back;
    EXPECT_EQ(back.from_string("51\xC2\xB0 30' 26\" N, 0\xC2\xB0 7' 39\" W"), ZBErrC_ok);
    EXPECT_NEAR(back.get_longitude(), -0.1275, 1e-4);
    EXPECT_TRUE(ZBGeoPoint().is_blank());
    EXPECT_EQ(ZBGeoPoint().to_string(0), "");
}

TEST_F(PathsAndUnits, BadPositionsAreRefusedAndChangeNothing)
{
    ZBGeoPoint point(1.0, 2.0);
    for (const char* text : {"", "91 N, 0 E", "10 E, 10 N", "10, 181", "10 61, 5", "-10 S, 5", "abc, def", "1,2,3"}) {
        EXPECT_TRUE(iszbwarn(point.from_string(text))) << text;
        EXPECT_EQ(point.get_latitude(), 1.0);
    }
}
