#pragma once

#include <string>

namespace Tervalon {

// The stand-in for the script engine in variable expressions: numbers, quoted
// strings ('...' or "..."), + - * / %, comparisons, && || ! and parentheses.
// "+" joins when either side is a string, as in JavaScript; true and false
// are words. Whole numbers print without a decimal point.
class ZBExprEvaluator {
public:
    // Brackets and signs nest at most this deep; deeper text is refused with a message.
    static constexpr int C_MaxDepth = 200;

    static bool evaluate(const std::string& text, std::string& result, std::string& message);
};

} // namespace Tervalon
