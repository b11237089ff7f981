#pragma once

#include "AppTervalonDiary/cli/tervaloncli.h"
#include "LibCore/error/zberror.h"

#include <sstream>
#include <string>
#include <vector>

namespace Tervalon {
namespace Test {

// What one run of the command-line program gave.
struct CliRun {
    int status;
    std::string out;
    std::string err;
};

// Runs one command line in-process, as the program would with these
// arguments, and leaves the error stack empty for the next run.
inline CliRun tervalon(std::vector<std::string> args)
{
    args.insert(args.begin(), "tervalon");
    std::ostringstream out;
    std::ostringstream err;
    TervalonCli cli;
    const int status = cli.run(args, out, err);
    get_zberror().clear_all();
    return {status, out.str(), err.str()};
}

} // namespace Test
} // namespace Tervalon
