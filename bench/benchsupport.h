#pragma once

#include <QTemporaryDir>

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

} // namespace Tervalon
