#pragma once

#include "LibCore/error/zberror.h"

#include <gtest/gtest.h>

#include <string>

namespace Tervalon {
namespace Test {

// A folder of its own for the whole test run, removed at exit; HOME and the XDG
// folders point into it.
std::string scratch_dir();
// A new empty folder inside the scratch folder.
std::string make_temp_dir(const std::string& name);
std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& text);
bool file_exists(const std::string& path);

// A fixture whose tests each start with a fresh error state that prints nothing.
class QuietErrors : public ::testing::Test {
protected:
    void SetUp() override
    {
        set_zberror(new ZBError());
        get_zberror().set_stream(nullptr, ZBErrSev_All);
    }
    void TearDown() override { set_zberror(new ZBError()); }
};

} // namespace Test
} // namespace Tervalon
