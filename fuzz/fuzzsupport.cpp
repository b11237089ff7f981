#include "fuzz/fuzzsupport.h"

#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace Tervalon {
namespace Fuzz {

namespace {
QTemporaryDir* g_scratch = nullptr;
std::string g_scratchPath;
}

void initialise()
{
    static int argc = 1;
    static char name[] = "tervalon-fuzz";
    static char* argv[] = {name, nullptr};
    setenv("TZ", "UTC", 1);
    tzset();
    // Made before Qt so that the settings paths below point into it.
    g_scratch = new QTemporaryDir();
    g_scratchPath = g_scratch->path().toStdString();
    setenv("HOME", g_scratchPath.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (g_scratchPath + "/config").c_str(), 1);
    setenv("XDG_CACHE_HOME", (g_scratchPath + "/cache").c_str(), 1);
    setenv("XDG_DATA_HOME", (g_scratchPath + "/data").c_str(), 1);
    new QCoreApplication(argc, argv);
    QCoreApplication::setOrganizationName("Tervalon");
    QCoreApplication::setApplicationName("TervalonFuzz");
    set_zberror(new ZBError());
    get_zberror().set_stream(nullptr, ZBErrSev_All);
    // 9 March 2026 (months and days count from 0).
    ZBDateUtils::set_fixed_now(ZBDate(2026, 2, 8, 8, 30, 0, 0, ZBDate::C_GMT));
    // The scratch folder goes with the process; QTemporaryDir removes it.
    std::atexit([] { delete g_scratch; });
}

void clear_errors()
{
    get_zberror().clear_all();
}

void fail(const char* what, const std::string& first, const std::string& second)
{
    std::fprintf(stderr, "\n==== %s\n---- first:\n%s\n---- second:\n%s\n====\n", what, first.c_str(), second.c_str());
    std::fflush(stderr);
    std::abort();
}

const std::string& scratch_dir()
{
    return g_scratchPath;
}

} // namespace Fuzz
} // namespace Tervalon
