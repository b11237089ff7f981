#include "LibDatabase/db/zbexprevaluator.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace Tervalon {

namespace {

struct Value {
    bool isString = false;
    bool isBool = false;
    double number = 0;
    std::string text;

    static Value of(double d) { Value v; v.number = d; return v; }
    static Value of(bool b) { Value v; v.isBool = true; v.number = b ? 1 : 0; return v; }
    static Value of(const std::string& s) { Value v; v.isString = true; v.text = s; return v; }

    std::string str() const
    {
        if (isString)
            return text;
        if (isBool)
            return number != 0 ? "true" : "false";
        if (std::isnan(number))
            return "NaN";
        // Whole numbers a double holds exactly are written out in full.
        if (std::floor(number) == number && std::fabs(number) < 9007199254740992.0) {
            char buffer[32];
            std::snprintf(buffer, sizeof buffer, "%.0f", number);
            return buffer;
        }
        // Otherwise fifteen significant digits: every decimal of that length
        // reads back to the same text, so a value worked out again from its own
        // text never drifts, and sums such as 0.1 + 0.2 still print as 0.3.
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.15g", number);
        return buffer;
    }
    double num() const
    {
        if (!isString)
            return number;
        char* end = nullptr;
        double d = std::strtod(text.c_str(), &end);
        return text.empty() ? 0 : (end && *end == '\0' ? d : NAN);
    }
    bool truth() const { return isString ? !text.empty() : number != 0 && !std::isnan(number); }
};

class Parser {
public:
    explicit Parser(const std::string& text) : m_text(text), m_pos(0) {}

    bool run(Value& out, std::string& message)
    {
        out = parse_or();
        skip();
        if (m_error.empty() && m_pos < m_text.size())
            m_error = "unexpected \"" + m_text.substr(m_pos) + "\"";
        message = m_error;
        return m_error.empty();
    }

private:
    void skip()
    {
        while (m_pos < m_text.size() && std::isspace((unsigned char)m_text[m_pos]))
            ++m_pos;
    }
    bool accept(const char* op)
    {
        skip();
        size_t n = std::char_traits<char>::length(op);
        if (m_text.compare(m_pos, n, op) != 0)
            return false;
        m_pos += n;
        return true;
    }
    Value parse_or()
    {
        Value left = parse_and();
        while (m_error.empty() && accept("||")) {
            Value right = parse_and();
            left = Value::of(left.truth() || right.truth());
        }
        return left;
    }
    Value parse_and()
    {
        Value left = parse_compare();
        while (m_error.empty() && accept("&&")) {
            Value right = parse_compare();
            left = Value::of(left.truth() && right.truth());
        }
        return left;
    }
    Value parse_compare()
    {
        Value left = parse_sum();
        static const char* const ops[] = {"==", "!=", "<=", ">=", "<", ">"};
        for (;;) {
            int which = -1;
            for (int i = 0; i < 6 && which < 0; ++i)
                if (accept(ops[i]))
                    which = i;
            if (which < 0 || !m_error.empty())
                return left;
            Value right = parse_sum();
            int cmp = 0;
            if (left.isString && right.isString)
                cmp = left.text.compare(right.text);
            else
                cmp = left.num() < right.num() ? -1 : (left.num() > right.num() ? 1 : 0);
            bool r = false;
            switch (which) {
            case 0: r = cmp == 0; break;
            case 1: r = cmp != 0; break;
            case 2: r = cmp <= 0; break;
            case 3: r = cmp >= 0; break;
            case 4: r = cmp < 0; break;
            default: r = cmp > 0; break;
            }
            left = Value::of(r);
        }
    }
    Value parse_sum()
    {
        Value left = parse_product();
        for (;;) {
            skip();
            if (m_pos >= m_text.size() || !m_error.empty())
                return left;
            char c = m_text[m_pos];
            if (c != '+' && c != '-')
                return left;
            ++m_pos;
            Value right = parse_product();
            if (c == '+' && (left.isString || right.isString))
                left = Value::of(left.str() + right.str());
            else
                left = Value::of(c == '+' ? left.num() + right.num() : left.num() - right.num());
        }
    }
    Value parse_product()
    {
        Value left = parse_unary();
        for (;;) {
            skip();
            if (m_pos >= m_text.size() || !m_error.empty())
                return left;
            char c = m_text[m_pos];
            if (c != '*' && c != '/' && c != '%')
                return left;
            ++m_pos;
            Value right = parse_unary();
            double a = left.num(), b = right.num();
            left = Value::of(c == '*' ? a * b : (c == '/' ? a / b : std::fmod(a, b)));
        }
    }
    // Every nesting, of brackets or of signs, passes through parse_unary: the
    // depth is counted there so that a hostile text cannot exhaust the stack.
    Value parse_unary()
    {
        if (!m_error.empty())
            return Value();
        if (m_depth >= ZBExprEvaluator::C_MaxDepth) {
            m_error = "the expression is nested more than " + std::to_string(ZBExprEvaluator::C_MaxDepth) + " levels deep";
            return Value();
        }
        ++m_depth;
        Value value = parse_unary_at_depth();
        --m_depth;
        return value;
    }
    // A run of signs ("!!-+x") is read in a loop and applied from the inside
    // out, so that only brackets count as nesting: the same text in brackets
    // is then always one level deeper, whatever its signs.
    Value parse_unary_at_depth()
    {
        std::string signs;
        for (;;) {
            if (accept("!"))
                signs += '!';
            else if (accept("-"))
                signs += '-';
            else if (accept("+"))
                signs += '+';
            else
                break;
        }
        Value value = parse_primary();
        for (auto sign = signs.rbegin(); sign != signs.rend() && m_error.empty(); ++sign) {
            if (*sign == '!')
                value = Value::of(!value.truth());
            else if (*sign == '-')
                value = Value::of(-value.num());
            else
                value = Value::of(value.num());
        }
        return value;
    }
    Value parse_primary()
    {
        skip();
        if (m_pos >= m_text.size()) {
            m_error = "the expression ends too soon";
            return Value();
        }
        char c = m_text[m_pos];
        if (c == '(') {
            ++m_pos;
            Value v = parse_or();
            if (!accept(")") && m_error.empty())
                m_error = "missing \")\"";
            return v;
        }
        if (c == '"' || c == '\'') {
            size_t end = m_text.find(c, m_pos + 1);
            if (end == std::string::npos) {
                m_error = "unclosed quote";
                return Value();
            }
            Value v = Value::of(m_text.substr(m_pos + 1, end - m_pos - 1));
            m_pos = end + 1;
            return v;
        }
        if (std::isdigit((unsigned char)c) || c == '.') {
            char* end = nullptr;
            double d = std::strtod(m_text.c_str() + m_pos, &end);
            m_pos = size_t(end - m_text.c_str());
            return Value::of(d);
        }
        if (accept("true"))
            return Value::of(true);
        if (accept("false"))
            return Value::of(false);
        if (m_error.empty())
            m_error = "unexpected \"" + m_text.substr(m_pos) + "\"";
        return Value();
    }

    const std::string& m_text;
    size_t m_pos;
    int m_depth = 0;
    std::string m_error;
};

} // namespace

bool ZBExprEvaluator::evaluate(const std::string& text, std::string& result, std::string& message)
{
    Value value;
    Parser parser(text);
    if (!parser.run(value, message))
        return false;
    result = value.str();
    return true;
}

} // namespace Tervalon
