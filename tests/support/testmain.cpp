#include "tests/support/testsupport.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>

namespace {
std::unique_ptr<QTemporaryDir> g_scratch;
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
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName("Tervalon");
    QCoreApplication::setApplicationName("TervalonDiaryTest");
    ::testing::InitGoogleTest(&argc, argv);
    int result = RUN_ALL_TESTS();
    g_scratch.reset();
    return result;
}
