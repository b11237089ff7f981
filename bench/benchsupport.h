#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateutils.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <string>

namespace Tervalon {

// One scratch folder for a benchmark run, removed when it ends.
inline QTemporaryDir& bench_scratch()
{
    static QTemporaryDir dir;
    return dir;
}

// The data file a benchmark works on, made once by Make in the scratch folder.
template <std::string (*Make)(const QTemporaryDir&)>
const std::string& bench_file()
{
    static const std::string file = Make(bench_scratch());
    return file;
}

// The main of a benchmark program: the application's names for its scratch
// folders and, when given, the clock fixed at now, then every benchmark asked for.
inline int bench_main(int argc, char** argv, const ZBDate* now)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName("Tervalon");
    QCoreApplication::setApplicationName("TervalonBench");
    if (now)
        ZBDateUtils::set_fixed_now(*now);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace Tervalon
