#pragma once

#include <string>

namespace Tervalon {

// The stand-in for the script engine in variable expressions: numbers, quoted
// strings ('...' or "..."), + - * / %, comparisons, && || ! and parentheses.
// "+" joins when either side is a string, as in JavaScript; true and false
// are words. Whole numbers print without a decimal point.
class ZBExprEvaluator {
public:
    static bool evaluate(const std::string& text, std::string& result, std::string& message);
};

} // namespace Tervalon
