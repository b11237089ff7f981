#include "tests/support/testsupport.h"

#include <QCoreApplication>
#ifdef TERVALON_TEST_GUI
#include <QApplication>
#endif
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>

namespace {
std::unique_ptr<QTemporaryDir> g_scratch;
}

// The window system keeps a few objects for the life of the process; they are
// not ours to free. Everything else that leaks fails the test run.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libQt5Gui.so\nleak:libQt5Widgets.so\nleak:libqoffscreen.so\nleak:libfontconfig.so\n";
}

namespace Tervalon {
namespace Test {
std::string scratch_dir()
{
    return g_scratch->path().toStdString();
}
} // namespace Test
} // namespace Tervalon

int main(int argc, char** argv)
{
    g_scratch.reset(new QTemporaryDir());
    const QByteArray root = g_scratch->path().toUtf8();
    setenv("HOME", root.constData(), 1);
    setenv("XDG_CONFIG_HOME", (root + "/config").constData(), 1);
    setenv("XDG_CACHE_HOME", (root + "/cache").constData(), 1);
    setenv("XDG_DATA_HOME", (root + "/data").constData(), 1);
    setenv("XDG_DOCUMENTS_DIR", (root + "/documents").constData(), 1);
    if (!getenv("TZ"))
        setenv("TZ", "UTC", 1);
    tzset();
#ifdef TERVALON_TEST_GUI
    if (!getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    QCoreApplication::setOrganizationName("Tervalon");
    QCoreApplication::setApplicationName("TervalonDiaryTest");
    ::testing::InitGoogleTest(&argc, argv);
    int result = RUN_ALL_TESTS();
    g_scratch.reset();
    return result;
}
