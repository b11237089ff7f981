#include "LibCore/textstr/zbtextstr.h"
#include "LibCore/textstr/zbtokenset.h"

#include <QString>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstring>
#include <istream>

namespace Tervalon {

namespace {

inline char ascii_lower(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

inline char ascii_upper(char c)
{
    return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c;
}

bool has_high_bytes(const std::string& text)
{
    for (char c : text)
        if (static_cast<unsigned char>(c) >= 0x80)
            return true;
    return false;
}

bool utf8_sequence_valid(const std::string& text);

// Unicode case rules only for real UTF-8: a detour through QString would turn
// stray bytes into replacement characters, and a parser must not lose bytes.
bool needs_unicode(const std::string& text)
{
    return has_high_bytes(text) && utf8_sequence_valid(text);
}

// Length of the valid UTF-8 sequence at i, or 0 if the bytes there are not one.
size_t utf8_sequence(const std::string& s, size_t i)
{
    const unsigned char c = static_cast<unsigned char>(s[i]);
    size_t n = 0;
    unsigned int min = 0;
    unsigned int cp = 0;
    if (c < 0x80)
        return 1;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2;
        cp = c & 0x1F;
        min = 0x80;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3;
        cp = c & 0x0F;
        min = 0x800;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4;
        cp = c & 0x07;
        min = 0x10000;
    } else {
        return 0;
    }
    if (i + n > s.size())
        return 0;
    for (size_t k = 1; k < n; ++k) {
        const unsigned char cc = static_cast<unsigned char>(s[i + k]);
        if ((cc & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (cc & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    return n;
}

void append_utf8(std::string& out, unsigned int cp)
{
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

bool utf8_sequence_valid(const std::string& text)
{
    return zb_is_valid_utf8(text);
}

// Windows-1252 bytes 0x80-0x9F; the rest of the high half is Latin-1.
const unsigned short C_Cp1252[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                     0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

std::string trim_ends(const std::string& text, bool leading, bool trailing)
{
    size_t start = 0;
    size_t end = text.size();
    if (leading)
        while (start < end && zb_is_space(text[start]))
            ++start;
    if (trailing)
        while (end > start && zb_is_space(text[end - 1]))
            --end;
    return text.substr(start, end - start);
}

bool bounds_ok(size_t size, int pos, const char* text)
{
    if (pos < 0 || size_t(pos) > size) {
        zbwarning(ZBErrC_StringBounds, ZBLOC, "Position %d out of bounds in \"%s\".", pos, text);
        return false;
    }
    return true;
}

} // namespace

// ---------------------------------------------------------------- case

std::string zb_tolower(const std::string& text)
{
    if (needs_unicode(text))
        return QString::fromStdString(text).toLower().toStdString();
    std::string out(text);
    for (char& c : out)
        c = ascii_lower(c);
    return out;
}

std::string zb_toupper(const std::string& text)
{
    if (needs_unicode(text))
        return QString::fromStdString(text).toUpper().toStdString();
    std::string out(text);
    for (char& c : out)
        c = ascii_upper(c);
    return out;
}

int zb_compare_nocase(const std::string& a, const std::string& b)
{
    if (needs_unicode(a) || needs_unicode(b))
        return QString::compare(QString::fromStdString(a), QString::fromStdString(b), Qt::CaseInsensitive);
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        const char x = ascii_lower(a[i]);
        const char y = ascii_lower(b[i]);
        if (x != y)
            return static_cast<unsigned char>(x) < static_cast<unsigned char>(y) ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int zb_find_nocase(const std::string& text, const std::string& target, int start)
{
    if (start < 0)
        start = 0;
    if (target.empty())
        return size_t(start) <= text.size() ? start : -1;
    if (target.size() > text.size())
        return -1;
    if (needs_unicode(target)) {
        // Folding can change byte lengths, so positions are found on the folded
        // text only where it kept them.
        std::string lowText = zb_tolower(text);
        std::string lowTarget = zb_tolower(target);
        if (lowText.size() == text.size()) {
            size_t at = lowText.find(lowTarget, size_t(start));
            return at == std::string::npos ? -1 : int(at);
        }
    }
    const char first = ascii_lower(target[0]);
    for (size_t i = size_t(start); i + target.size() <= text.size(); ++i) {
        if (ascii_lower(text[i]) != first)
            continue;
        size_t k = 1;
        while (k < target.size() && ascii_lower(text[i + k]) == ascii_lower(target[k]))
            ++k;
        if (k == target.size())
            return int(i);
    }
    return -1;
}

int zb_find_in_vector(const std::string& text, const std::vector<std::string>& list, bool prefix, bool noCase)
{
    const std::string key = noCase ? zb_toupper(text) : text;
    int found = -1;
    int count = 0;
    for (size_t i = 0; i < list.size(); ++i) {
        const std::string entry = noCase ? zb_toupper(list[i]) : list[i];
        bool hit = prefix ? entry.compare(0, key.size(), key) == 0 && entry.size() >= key.size() : entry == key;
        if (!hit)
            continue;
        // An exact hit wins over prefixes it shares with longer entries ("May" and "Mayday").
        if (prefix && entry == key)
            return int(i);
        found = int(i);
        ++count;
    }
    return count == 1 ? found : -1;
}

bool zb_starts_with(const std::string& text, const std::string& prefix)
{
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

bool zb_ends_with(const std::string& text, const std::string& suffix)
{
    return text.size() >= suffix.size() && text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

// ---------------------------------------------------------------- white space

bool zb_is_space(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

int zb_skip_space(const std::string& text, int pos)
{
    if (pos < 0)
        pos = 0;
    size_t i = size_t(pos);
    while (i < text.size() && zb_is_space(text[i]))
        ++i;
    return int(std::min(i, text.size()));
}

std::string zb_elim_whitespace(const std::string& text, bool tabs, bool lineBreaks, bool leading, bool trailing)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (tabs && c == '\t')
            c = ' ';
        if (lineBreaks && (c == '\r' || c == '\n'))
            continue;
        out += c;
    }
    return trim_ends(out, leading, trailing);
}

std::string zb_trim(const std::string& text)
{
    return trim_ends(text, true, true);
}

std::string zb_clean_string(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        const unsigned char u = static_cast<unsigned char>(c);
        if ((u < 0x20 && c != '\t' && c != '\n') || u == 0x7F)
            continue;
        out += c;
    }
    return trim_ends(out, true, true);
}

bool zb_is_valid_utf8(const std::string& text)
{
    for (size_t i = 0; i < text.size();) {
        size_t n = utf8_sequence(text, i);
        if (n == 0)
            return false;
        i += n;
    }
    return true;
}

std::string zb_clean_unicode(const std::string& text)
{
    if (!has_high_bytes(text))
        return text;
    std::string out;
    out.reserve(text.size() + 8);
    for (size_t i = 0; i < text.size();) {
        size_t n = utf8_sequence(text, i);
        if (n > 0) {
            out.append(text, i, n);
            i += n;
            continue;
        }
        const unsigned char c = static_cast<unsigned char>(text[i]);
        append_utf8(out, c < 0xA0 ? C_Cp1252[c - 0x80] : c);
        ++i;
    }
    return out;
}

std::string zb_clean_paragraphs(const std::string& text)
{
    std::vector<std::string> lines;
    std::string line;
    for (size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || text[i] == '\n' || text[i] == '\r') {
            lines.push_back(trim_ends(line, false, true));
            line.clear();
            if (i + 1 < text.size() && text[i] == '\r' && text[i + 1] == '\n')
                ++i;
        } else {
            line += text[i];
        }
    }
    std::string out;
    bool pendingBlank = false;
    for (const std::string& l : lines) {
        if (l.empty()) {
            pendingBlank = !out.empty();
            continue;
        }
        if (!out.empty())
            out += pendingBlank ? "\n\n" : "\n";
        pendingBlank = false;
        out += l;
    }
    return out;
}

// ---------------------------------------------------------------- moving and copying

int zb_copy_string(char* target, const char* source, int size)
{
    if (!target)
        return zberror(ZBErrC_StringNull, ZBLOC, "Assertion Failed: ( target != nullptr )");
    if (!source)
        return zberror(ZBErrC_StringNull, ZBLOC, "Assertion Failed: ( source != nullptr )");
    if (size <= 0)
        return zberror(ZBErrC_StringBounds, ZBLOC, "Position out of bounds.");
    size_t n = std::min(std::strlen(source), size_t(size - 1));
    std::memcpy(target, source, n);
    target[n] = '\0';
    return ZBErrC_ok;
}

int zb_move_to(const std::string& text, char match, int& pos)
{
    if (!bounds_ok(text.size(), pos, text.c_str()))
        return zberrorvalue();
    size_t at = text.find(match, size_t(pos));
    pos = at == std::string::npos ? int(text.size()) : int(at);
    return ZBErrC_ok;
}

int zb_move_to(const char* strng, char match, int& pos)
{
    if (!strng)
        return zberror(ZBErrC_StringNull, ZBLOC, "Assertion Failed: ( strng != nullptr )");
    return zb_move_to(std::string(strng), match, pos);
}

int zb_move_to(const std::string& text, const char* match, int& pos)
{
    if (!match)
        return zberror(ZBErrC_StringNull, ZBLOC, "Assertion Failed: ( match != nullptr )");
    if (!bounds_ok(text.size(), pos, text.c_str()))
        return zberrorvalue();
    size_t at = text.find_first_of(match, size_t(pos));
    pos = at == std::string::npos ? int(text.size()) : int(at);
    return ZBErrC_ok;
}

int zb_read_to(const std::string& text, const std::string& stops, int& pos, std::string& out)
{
    if (!bounds_ok(text.size(), pos, text.c_str()))
        return zberrorvalue();
    size_t at = text.find_first_of(stops, size_t(pos));
    if (at == std::string::npos)
        at = text.size();
    out.assign(text, size_t(pos), at - size_t(pos));
    pos = int(at);
    return ZBErrC_ok;
}

bool zb_tag_value(const std::string& line, std::string& tag, std::string& value, char separator)
{
    size_t at = line.find(separator);
    if (at == std::string::npos) {
        tag = line;
        value.clear();
        return false;
    }
    tag = line.substr(0, at);
    value = line.substr(at + 1);
    return true;
}

std::string zb_replace_substr(const std::string& text, const std::string& from, const std::string& to)
{
    std::string out(text);
    zb_replace_substr(out, from, to, true);
    return out;
}

int zb_replace_substr(std::string& text, const std::string& from, const std::string& to, bool all)
{
    if (from.empty())
        return 0;
    std::string out;
    int count = 0;
    size_t start = 0;
    for (;;) {
        size_t at = text.find(from, start);
        if (at == std::string::npos || (!all && count > 0))
            break;
        out.append(text, start, at - start);
        out += to;
        start = at + from.size();
        ++count;
    }
    if (count == 0)
        return 0;
    out.append(text, start, std::string::npos);
    text.swap(out);
    return count;
}

// ---------------------------------------------------------------- splitting and wrapping

std::vector<std::string> zb_tokenise(const std::string& text, const std::string& separators, bool skipEmpty)
{
    std::vector<std::string> out;
    size_t start = 0;
    for (;;) {
        size_t at = text.find_first_of(separators, start);
        size_t end = at == std::string::npos ? text.size() : at;
        if (!(skipEmpty && end == start))
            out.push_back(text.substr(start, end - start));
        if (at == std::string::npos)
            break;
        start = at + 1;
    }
    if (!skipEmpty && text.empty())
        out.clear();
    return out;
}

int zb_tokenise(const std::string& text, ZBTokenSet& tokens, bool upper, int firstLine)
{
    int line = firstLine;
    int pos = 0;
    const int size = int(text.size());
    while (pos < size) {
        const unsigned char c = static_cast<unsigned char>(text[size_t(pos)]);
        if (zb_is_space(char(c))) {
            int start = pos;
            int startLine = line;
            while (pos < size && zb_is_space(text[size_t(pos)])) {
                if (text[size_t(pos)] == '\n')
                    ++line;
                ++pos;
            }
            tokens.push_token(text.substr(size_t(start), size_t(pos - start)), startLine);
        } else if (std::isalpha(c) || c == '_' || c >= 0x80) {
            pos = tokens.push_alpha(text, pos, upper, line);
        } else if (std::isdigit(c)) {
            pos = tokens.push_numeric(text, pos, line);
        } else {
            tokens.push_token(char(c), line);
            ++pos;
        }
    }
    return ZBErrC_ok;
}

int zb_utf8_length(const std::string& text)
{
    int n = 0;
    for (char c : text)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80)
            ++n;
    return n;
}

std::string zb_line_wrap(const std::string& text, int width)
{
    if (width < 1)
        return text;
    std::string out;
    size_t lineStart = 0;
    while (lineStart <= text.size()) {
        size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string::npos)
            lineEnd = text.size();
        std::string current;
        int currentLen = 0;
        size_t i = lineStart;
        bool firstOut = true;
        while (i < lineEnd) {
            while (i < lineEnd && text[i] == ' ')
                ++i;
            size_t wordEnd = text.find(' ', i);
            if (wordEnd == std::string::npos || wordEnd > lineEnd)
                wordEnd = lineEnd;
            if (wordEnd == i)
                break;
            std::string word = text.substr(i, wordEnd - i);
            int wordLen = zb_utf8_length(word);
            if (currentLen > 0 && currentLen + 1 + wordLen > width) {
                out += (firstOut ? "" : "\n") + current;
                firstOut = false;
                current.clear();
                currentLen = 0;
            }
            if (currentLen > 0) {
                current += ' ';
                ++currentLen;
            }
            current += word;
            currentLen += wordLen;
            i = wordEnd;
        }
        out += (firstOut ? "" : "\n") + current;
        if (lineEnd >= text.size())
            break;
        out += '\n';
        lineStart = lineEnd + 1;
    }
    return out;
}

// ---------------------------------------------------------------- CSV

int zb_read_csv(const std::string& line, std::vector<std::string>& fields, char separator)
{
    fields.clear();
    std::string field;
    bool quoted = false;
    bool wasQuoted = false;
    size_t end = line.size();
    if (end > 0 && line[end - 1] == '\r')
        --end;
    for (size_t i = 0; i < end; ++i) {
        const char c = line[i];
        if (quoted) {
            if (c == '"') {
                if (i + 1 < end && line[i + 1] == '"') {
                    field += '"';
                    ++i;
                } else {
                    quoted = false;
                }
            } else {
                field += c;
            }
        } else if (c == '"' && (field.empty() || zb_trim(field).empty()) && !wasQuoted) {
            // A quote opens a field only at its start; blanks before it are dropped.
            field.clear();
            quoted = true;
            wasQuoted = true;
        } else if (c == separator) {
            fields.push_back(field);
            field.clear();
            wasQuoted = false;
        } else {
            field += c;
        }
    }
    fields.push_back(field);
    return quoted ? ZBErrC_okNotFinished : ZBErrC_ok;
}

int zb_read_csv(std::istream& in, std::vector<std::string>& fields, char separator)
{
    fields.clear();
    std::string record;
    std::string line;
    if (!std::getline(in, line))
        return ZBErrC_okEndOfFile;
    record = line;
    while (zb_read_csv(record, fields, separator) == ZBErrC_okNotFinished) {
        if (!std::getline(in, line))
            return ZBErrC_ok; // an unclosed quote at the end takes the rest as its text
        if (!record.empty() && record.back() == '\r')
            record.pop_back();
        record += "\n" + line;
    }
    return ZBErrC_ok;
}

std::string zb_csv_out(const std::string& field, char separator)
{
    bool quote = !field.empty() && (zb_is_space(field.front()) || zb_is_space(field.back()));
    for (char c : field)
        if (c == separator || c == '"' || c == '\n' || c == '\r')
            quote = true;
    if (!quote)
        return field;
    std::string out = "\"";
    for (char c : field) {
        if (c == '"')
            out += '"';
        out += c;
    }
    out += '"';
    return out;
}

void zb_add_csv_entry(std::string& line, const std::string& field, bool first, char separator)
{
    if (!first)
        line += separator;
    line += zb_csv_out(field, separator);
}

std::string zb_csv_line(const std::vector<std::string>& fields, char separator)
{
    std::string line;
    for (size_t i = 0; i < fields.size(); ++i)
        zb_add_csv_entry(line, fields[i], i == 0, separator);
    return line;
}

// ---------------------------------------------------------------- stream escaping

std::string zb_stream_out(const std::string& text)
{
    std::string out;
    out.reserve(text.size() + 8);
    for (char c : text) {
        if (c == '\n')
            out += "\\n";
        else if (c == '\\')
            out += "\\\\";
        else if (c == '\r' || c == '\0')
            continue;
        else
            out += c;
    }
    return out;
}

std::string zb_stream_in(const std::string& text)
{
    // Most lines hold no escapes at all.
    if (text.find('\\') == std::string::npos)
        return text;
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c != '\\' || i + 1 == text.size()) {
            out += c;
            continue;
        }
        const char next = text[++i];
        out += next == 'n' ? '\n' : next;
    }
    return out;
}

// ---------------------------------------------------------------- conversions

std::string zb_int_to_string(int value)
{
    return std::to_string(value);
}

std::string zb_long_to_string(long long value)
{
    return std::to_string(value);
}

std::string zb_double_to_string(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value < 0 ? "-inf" : "inf";
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string zb_double_to_string(double value, int decimals)
{
    if (std::isnan(value) || std::isinf(value))
        return zb_double_to_string(value);
    char buffer[400];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                std::max(0, std::min(decimals, 30)));
    if (result.ec != std::errc())
        return zb_double_to_string(value);
    return std::string(buffer, result.ptr);
}

std::string zb_bool_to_string(bool value)
{
    return value ? "true" : "false";
}

namespace {

// The number's text without the blanks around it, and without a leading '+'
// (which from_chars does not take).
bool number_span(const std::string& text, const char*& first, const char*& last)
{
    size_t start = 0;
    size_t end = text.size();
    while (start < end && zb_is_space(text[start]))
        ++start;
    while (end > start && zb_is_space(text[end - 1]))
        --end;
    if (start < end && text[start] == '+' && (start + 1 == end || text[start + 1] != '-'))
        ++start;
    first = text.data() + start;
    last = text.data() + end;
    return start < end;
}

// The whole text (blanks around it aside) must be the number. from_chars
// ignores the process locale, so "1.5" reads the same everywhere.
template <typename T>
T read_number(const std::string& text, T defaultValue, bool* ok)
{
    const char* first = nullptr;
    const char* last = nullptr;
    T value = defaultValue;
    bool good = number_span(text, first, last);
    if (good) {
        auto result = std::from_chars(first, last, value);
        good = result.ec == std::errc() && result.ptr == last;
    }
    if (ok)
        *ok = good;
    return good ? value : defaultValue;
}

} // namespace

int zb_string_to_int(const std::string& text, int defaultValue, bool* ok)
{
    return read_number<int>(text, defaultValue, ok);
}

long long zb_string_to_long(const std::string& text, long long defaultValue, bool* ok)
{
    return read_number<long long>(text, defaultValue, ok);
}

double zb_string_to_double(const std::string& text, double defaultValue, bool* ok)
{
    return read_number<double>(text, defaultValue, ok);
}

bool zb_string_to_bool(const std::string& text, bool defaultValue, bool* ok)
{
    static const char* const C_True[] = {"true", "yes", "on", "1", "y", "t"};
    static const char* const C_False[] = {"false", "no", "off", "0", "n", "f"};
    const std::string word = zb_tolower(zb_trim(text));
    for (const char* t : C_True)
        if (word == t) {
            if (ok)
                *ok = true;
            return true;
        }
    for (const char* f : C_False)
        if (word == f) {
            if (ok)
                *ok = true;
            return false;
        }
    if (ok)
        *ok = false;
    return defaultValue;
}

} // namespace Tervalon
