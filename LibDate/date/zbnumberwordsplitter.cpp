#include "LibDate/date/zbnumberwordsplitter.h"

#include <cctype>

namespace Tervalon {

namespace {
bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}
bool is_letter(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}
} // namespace

void ZBNumberWordSplitter::split(const std::string& text, std::vector<std::string>& tokens)
{
    tokens.clear();
    size_t i = 0;
    const size_t n = text.size();
    while (i < n) {
        char c = text[i];
        if (std::isspace(static_cast<unsigned char>(c))) {
            ++i;
            continue;
        }
        size_t start = i;
        if (is_digit(c) || (c == '.' && i + 1 < n && is_digit(text[i + 1]))) {
            bool point = false;
            while (i < n && (is_digit(text[i]) || (text[i] == '.' && !point))) {
                if (text[i] == '.')
                    point = true;
                ++i;
            }
        } else if (is_letter(c)) {
            while (i < n && is_letter(text[i]))
                ++i;
        } else {
            ++i;
        }
        tokens.push_back(text.substr(start, i - start));
    }
}

bool ZBNumberWordSplitter::is_number(const std::string& token)
{
    return !token.empty() && (is_digit(token[0]) || (token[0] == '.' && token.size() > 1));
}

} // namespace Tervalon
