#pragma once

#include "LibDiary/diary/zbdiary.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zbdateutils.h"

#include <gtest/gtest.h>

#include <string>

namespace Tervalon {
namespace RecordsTest {

inline const ZBDate kNow(2026, 2, 9, 12, 0, 0, 0, ZBDate::C_GMT);

// A diary in memory at a fixed moment, with an empty error stack.
class RecordsFixture : public ::testing::Test {
protected:
    void SetUp() override
    {
        get_zberror().clear_all();
        ZBDateUtils::set_fixed_now(kNow);
        ASSERT_FALSE(iszbwarn(diary.load(std::string(), true)));
    }
    void TearDown() override
    {
        ZBDateUtils::clear_fixed_now();
        get_zberror().clear_all();
    }
    static std::string last_error()
    {
        const ZBErrDetails* top = get_zberror().top();
        return top ? top->get_details(ZBErrAsp_System) : std::string();
    }

    ZBDiary diary;
};

} // namespace RecordsTest
} // namespace Tervalon
