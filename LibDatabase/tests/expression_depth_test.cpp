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
        {nested(100000, "!", "1", ""), false, ""},
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
