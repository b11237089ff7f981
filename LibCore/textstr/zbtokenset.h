#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The token list under every parser of the system: texts with the line each
// came from, taken from the front as a parser reads. White space is kept as
// tokens of its own so that parsers can tell "a b" from "ab"; the readers
// skip it where it does not matter. Taking from the front is O(1).
class ZBTokenSet {
public:
    ZBTokenSet();
    virtual ~ZBTokenSet();

    int size() const { return int(m_token.size() - m_head); }
    bool empty() const { return size() == 0; }
    // The first and last token; an empty text when there is none.
    const std::string& first_token() const;
    const std::string& last_token() const;
    // The token at index from the front; empty text out of range.
    const std::string& get_token(int index) const;
    // The line of the first token, or of the last token read when empty.
    int get_line_no() const;
    int get_line_no(int index) const;

    // Whether the first token that is not white space starts with a letter
    // (or '_', or a non-ASCII character) or with a digit (or '-' and a digit).
    bool is_alphabetic() const;
    bool is_numeric() const;

    void push_token(char token, int line);
    void push_token(const std::string& token, int line);
    // Each reads a run from text at pos, pushes it and returns the position after it.
    // Letters (ASCII, '_' and any UTF-8 letter), upper-cased if asked.
    int push_alpha(const std::string& text, int pos, bool upper, int line);
    // Letters and digits.
    int push_alphanum(const std::string& text, int pos, bool upper, int line);
    // Digits, with a '-' as the first character only.
    int push_numeric(const std::string& text, int pos, int line);
    int push_whitespace(const std::string& text, int pos, int line);

    std::string pop_token();
    std::string pop_last_token();
    // Drop white-space tokens at the front, or at the back; return how many.
    int pop_whitespace();
    int pop_last_whitespace();

    // Drops leading white space, then takes tokens from the front while they
    // spell the start of text; true and consumed only if they spell it exactly,
    // so "$<" matches the tokens "$" "<" but "$" "X" leaves both.
    bool match(const std::string& text, bool noCase = false);
    bool match(char c);
    void remove_all();

    static bool is_whitespace_token(const std::string& token);

    bool operator==(const ZBTokenSet& other) const;
    virtual void dump(std::ostream& out, int indent) const;

private:
    void compact();

    std::vector<std::string> m_token;
    std::vector<int> m_lineNo;
    size_t m_head;
    int m_lastLine;
};

} // namespace Tervalon
