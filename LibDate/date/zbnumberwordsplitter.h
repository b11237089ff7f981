#pragma once

#include <string>
#include <vector>

namespace Tervalon {

// Splits short texts such as "1h30m", "1:30" or "2.5 days" into numbers (digits
// with at most one point), words (runs of letters) and single other
// characters; white space only separates. The duration reader uses it; the
// date text lexer will share it.
class ZBNumberWordSplitter {
public:
    static void split(const std::string& text, std::vector<std::string>& tokens);
    static bool is_number(const std::string& token);
};

} // namespace Tervalon
