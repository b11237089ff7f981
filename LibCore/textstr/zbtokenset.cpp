#include "LibCore/textstr/zbtokenset.h"
#include "LibCore/textstr/zbtextstr.h"

#include <cctype>
#include <ostream>

namespace Tervalon {

namespace {

const std::string C_Empty;

inline bool is_letter(unsigned char c)
{
    return std::isalpha(c) || c == '_' || c >= 0x80;
}

inline bool is_digit(unsigned char c)
{
    return c >= '0' && c <= '9';
}

inline unsigned char at(const std::string& text, int pos)
{
    return static_cast<unsigned char>(text[size_t(pos)]);
}

} // namespace

ZBTokenSet::ZBTokenSet() : m_head(0), m_lastLine(0) {}

ZBTokenSet::~ZBTokenSet() = default;

const std::string& ZBTokenSet::first_token() const
{
    return empty() ? C_Empty : m_token[m_head];
}

const std::string& ZBTokenSet::last_token() const
{
    return empty() ? C_Empty : m_token.back();
}

const std::string& ZBTokenSet::get_token(int index) const
{
    return index < 0 || index >= size() ? C_Empty : m_token[m_head + size_t(index)];
}

int ZBTokenSet::get_line_no() const
{
    return empty() ? m_lastLine : m_lineNo[m_head];
}

int ZBTokenSet::get_line_no(int index) const
{
    return index < 0 || index >= size() ? m_lastLine : m_lineNo[m_head + size_t(index)];
}

bool ZBTokenSet::is_whitespace_token(const std::string& token)
{
    return !token.empty() && zb_is_space(token[0]);
}

bool ZBTokenSet::is_alphabetic() const
{
    for (size_t i = m_head; i < m_token.size(); ++i) {
        if (is_whitespace_token(m_token[i]))
            continue;
        return !m_token[i].empty() && is_letter(static_cast<unsigned char>(m_token[i][0]));
    }
    return false;
}

bool ZBTokenSet::is_numeric() const
{
    for (size_t i = m_head; i < m_token.size(); ++i) {
        const std::string& token = m_token[i];
        if (is_whitespace_token(token))
            continue;
        if (token.empty())
            return false;
        const unsigned char c = static_cast<unsigned char>(token[0]);
        return is_digit(c) || (c == '-' && token.size() > 1 && is_digit(static_cast<unsigned char>(token[1])));
    }
    return false;
}

void ZBTokenSet::push_token(char token, int line)
{
    push_token(std::string(1, token), line);
}

void ZBTokenSet::push_token(const std::string& token, int line)
{
    m_token.push_back(token);
    m_lineNo.push_back(line);
}

int ZBTokenSet::push_alpha(const std::string& text, int pos, bool upper, int line)
{
    const int size = int(text.size());
    if (pos < 0 || pos >= size)
        return pos;
    int end = pos;
    while (end < size && is_letter(at(text, end)))
        ++end;
    if (end == pos)
        return pos;
    std::string word = text.substr(size_t(pos), size_t(end - pos));
    push_token(upper ? zb_toupper(word) : word, line);
    return end;
}

int ZBTokenSet::push_alphanum(const std::string& text, int pos, bool upper, int line)
{
    const int size = int(text.size());
    if (pos < 0 || pos >= size)
        return pos;
    int end = pos;
    while (end < size && (is_letter(at(text, end)) || is_digit(at(text, end))))
        ++end;
    if (end == pos)
        return pos;
    std::string word = text.substr(size_t(pos), size_t(end - pos));
    push_token(upper ? zb_toupper(word) : word, line);
    return end;
}

int ZBTokenSet::push_numeric(const std::string& text, int pos, int line)
{
    const int size = int(text.size());
    if (pos < 0 || pos >= size)
        return pos;
    int end = pos;
    if (at(text, end) == '-')
        ++end;
    while (end < size && is_digit(at(text, end)))
        ++end;
    if (end == pos)
        return pos;
    push_token(text.substr(size_t(pos), size_t(end - pos)), line);
    return end;
}

int ZBTokenSet::push_whitespace(const std::string& text, int pos, int line)
{
    const int size = int(text.size());
    if (pos < 0 || pos >= size)
        return pos;
    int end = pos;
    while (end < size && zb_is_space(text[size_t(end)]))
        ++end;
    if (end > pos)
        push_token(text.substr(size_t(pos), size_t(end - pos)), line);
    return end;
}

void ZBTokenSet::compact()
{
    // Taking from the front only moves the head; the vector is shifted once
    // the dead part outweighs the live one, so reading n tokens stays O(n).
    if (m_head == m_token.size()) {
        m_token.clear();
        m_lineNo.clear();
        m_head = 0;
    } else if (m_head > 64 && m_head * 2 > m_token.size()) {
        m_token.erase(m_token.begin(), m_token.begin() + long(m_head));
        m_lineNo.erase(m_lineNo.begin(), m_lineNo.begin() + long(m_head));
        m_head = 0;
    }
}

std::string ZBTokenSet::pop_token()
{
    if (empty())
        return std::string();
    std::string token = std::move(m_token[m_head]);
    m_lastLine = m_lineNo[m_head];
    ++m_head;
    compact();
    return token;
}

std::string ZBTokenSet::pop_last_token()
{
    if (empty())
        return std::string();
    std::string token = std::move(m_token.back());
    m_lastLine = m_lineNo.back();
    m_token.pop_back();
    m_lineNo.pop_back();
    compact();
    return token;
}

int ZBTokenSet::pop_whitespace()
{
    int n = 0;
    while (!empty() && is_whitespace_token(m_token[m_head])) {
        pop_token();
        ++n;
    }
    return n;
}

int ZBTokenSet::pop_last_whitespace()
{
    int n = 0;
    while (!empty() && is_whitespace_token(m_token.back())) {
        pop_last_token();
        ++n;
    }
    return n;
}

bool ZBTokenSet::match(const std::string& text, bool noCase)
{
    pop_whitespace();
    size_t done = 0;
    size_t count = 0;
    for (size_t i = m_head; i < m_token.size() && done < text.size(); ++i) {
        const std::string& token = m_token[i];
        if (token.empty() || token.size() > text.size() - done)
            return false;
        bool same = noCase ? zb_compare_nocase(token, text.substr(done, token.size())) == 0
                           : text.compare(done, token.size(), token) == 0;
        if (!same)
            return false;
        done += token.size();
        ++count;
    }
    if (done != text.size())
        return false;
    for (size_t i = 0; i < count; ++i)
        pop_token();
    return true;
}

bool ZBTokenSet::match(char c)
{
    return match(std::string(1, c));
}

void ZBTokenSet::remove_all()
{
    m_token.clear();
    m_lineNo.clear();
    m_head = 0;
}

bool ZBTokenSet::operator==(const ZBTokenSet& other) const
{
    if (size() != other.size())
        return false;
    for (int i = 0; i < size(); ++i)
        if (get_token(i) != other.get_token(i) || get_line_no(i) != other.get_line_no(i))
            return false;
    return true;
}

void ZBTokenSet::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBTokenSet (" << size() << " tokens)\n";
    for (int i = 0; i < size(); ++i)
        out << pad << "    m_token[" << i << "] = \"" << get_token(i) << "\" line " << get_line_no(i) << "\n";
}

} // namespace Tervalon
