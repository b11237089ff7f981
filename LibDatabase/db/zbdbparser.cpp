#include "LibDatabase/db/zbdbparser.h"

#include <cctype>

namespace Tervalon {

const char* const ZBDBParser::C_BlockStart = ">\"";
const char* const ZBDBParser::C_BlockEnd = "\"<";

namespace {
bool is_name_char(char c)
{
    return std::isalnum((unsigned char)c) || c == '_' || (unsigned char)c >= 0x80;
}
} // namespace

// A quoted string or block that never closes is pushed as its opening mark
// and the rest of the text, with no closing quote, so the parser reports the
// missing quote at the line where the value began.
void ZBDBParser::tokenise(const std::string& text)
{
    remove_all();
    int line = 1;
    const size_t n = text.size();
    size_t i = 0;
    while (i < n) {
        const char c = text[i];
        if (c == '\n') {
            ++line;
            ++i;
        } else if (std::isspace((unsigned char)c)) {
            ++i;
        } else if (c == '#') {
            size_t end = text.find('\n', i);
            if (end == std::string::npos)
                end = n;
            push_token(text.substr(i, end - i), line);
            i = end;
        } else if (c == '"') {
            const int start = line;
            // A quoted string ends on its own line; an unclosed one is cut at the line feed.
            size_t end = text.find('"', i + 1);
            const size_t feed = text.find('\n', i + 1);
            if (feed != std::string::npos && (end == std::string::npos || feed < end))
                end = std::string::npos;
            push_token('"', start);
            const size_t stop = end != std::string::npos ? end : (feed == std::string::npos ? n : feed);
            push_token(text.substr(i + 1, stop - i - 1), start);
            if (end != std::string::npos)
                push_token('"', line);
            i = end == std::string::npos ? stop : end + 1;
        } else if (text.compare(i, 2, C_BlockStart) == 0) {
            const int start = line;
            size_t pos = i + 2;
            if (pos < n && text[pos] == '\n') {
                ++pos;
                ++line;
            }
            std::string contents;
            bool closed = false;
            while (pos < n) {
                if (text[pos] == '\\' && text.compare(pos + 1, 2, C_BlockEnd) == 0) {
                    contents += C_BlockEnd;
                    pos += 3;
                    continue;
                }
                if (text.compare(pos, 2, C_BlockEnd) == 0) {
                    closed = true;
                    break;
                }
                line += text[pos] == '\n';
                contents += text[pos++];
            }
            push_token('"', start);
            push_token(contents, start);
            if (closed) {
                push_token('"', line);
                pos += 2;
            }
            i = pos;
        } else if (is_name_char(c)) {
            size_t end = i;
            while (end < n && is_name_char(text[end]))
                ++end;
            push_token(text.substr(i, end - i), line);
            i = end;
        } else {
            push_token(c, line);
            ++i;
        }
    }
}

bool ZBDBParser::is_valid_name() const
{
    return !empty() && is_valid_name(first_token());
}

bool ZBDBParser::is_valid_name(const std::string& name)
{
    if (name.empty())
        return false;
    for (char c : name)
        if (!std::isalnum((unsigned char)c) && c != '_')
            return false;
    return true;
}

std::string ZBDBParser::peek_statement() const
{
    std::string text;
    for (int i = 0; i < size(); ++i) {
        const std::string& token = get_token(i);
        if (token == ";")
            break;
        if (!text.empty() && is_valid_name(token) && is_valid_name(std::string(1, text.back())))
            text += ' ';
        text += token;
    }
    return text;
}

void ZBDBParser::skip_statement()
{
    while (!empty())
        if (pop_token() == ";")
            return;
}

} // namespace Tervalon
