#include "LibDatabase/db/zbexprevaluator.h"

#include <gtest/gtest.h>

#include <string>

using namespace Tervalon;

namespace {

std::string nested(int depth, const std::string& open, const std::string& inner, const std::string& close)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += open;
    text += inner;
    for (int i = 0; i < depth; ++i)
        text += close;
    return text;
}

} // namespace

TEST(ExpressionDepth, DeepTextIsRefusedWithAMessageNotACrash)
{
    struct Row {
        std::string text;
        bool ok;
        const char* result;
    };
    const int limit = ZBExprEvaluator::C_MaxDepth;
    const Row rows[] = {
        {nested(limit - 1, "(", "1+2", ")"), true, "3"},
        {nested(limit - 1, "-", "4", ""), true, "-4"},
        {nested(limit + 1, "(", "1", ")"), false, ""},
        {nested(100000, "(", "1", ")"), false, ""},
        // Signs are read in a loop: a long run of them is no nesting, and the
        // same text in brackets gives the same value.
        {nested(100000, "!", "1", ""), true, "true"},
        {"(" + nested(limit, "-", "4", "") + ")", true, "4"},
        {nested(100000, "-(", "1", ")"), false, ""},
        {"1 + " + nested(100000, "(", "", ""), false, ""},
    };
    for (const Row& row : rows) {
        std::string result;
        std::string message;
        EXPECT_EQ(row.ok, ZBExprEvaluator::evaluate(row.text, result, message)) << row.text.substr(0, 40);
        if (row.ok)
            EXPECT_EQ(row.result, result);
        else
            EXPECT_NE(std::string::npos, message.find("nested more than")) << message;
    }
}

TEST(ExpressionNumbers, APrintedNumberReadsBackToItselfWithoutLosingDigits)
{
    struct Row {
        const char* text;
        const char* result;
    };
    const Row rows[] = {
        {"12345678.123 + 0", "12345678.123"},
        {"0.1 + 0.2", "0.3"},
        {"2 / 3", "0.666666666666667"},
        {"9007199254740991 + 0", "9007199254740991"},
        {"1e20 + 0", "1e+20"},
        {"'77777777777777777777'", "77777777777777777777"},
    };
    for (const Row& row : rows) {
        std::string result;
        std::string message;
        ASSERT_TRUE(ZBExprEvaluator::evaluate(row.text, result, message)) << row.text << ": " << message;
        EXPECT_EQ(row.result, result) << row.text;
        if (std::string(row.text).front() != '\'') {
            std::string again;
            ASSERT_TRUE(ZBExprEvaluator::evaluate(result, again, message));
            EXPECT_EQ(result, again) << row.text;
        }
    }
}
