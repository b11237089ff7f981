#pragma once

#include "LibDatabase/db/zbdbparser.h"

#include <string>

namespace Tervalon {

class ZBObjectSpec;

// Reads the text of one object spec into a ZBObjectSpec. Each statement ends
// with ";"; the first fault stops the parse with a user warning that names the
// file (or spec) and line, and the line is handed back so that editors can go
// to it. The spec is filled as far as the text was good; callers parse into a
// copy and keep it only on success.
class ZBSpecParser : public ZBDBParser {
public:
    static const char C_EndOfLine = ';';
    static const char C_Assign = '=';
    static const char C_Quote = '"';

    // lineOffset is added to the text's own line numbers (a spec read from line
    // 40 of a file passes 39). errorLine gets the line of the fault, or -1.
    int parse(const std::string& text, const std::string& fileName, int lineOffset, ZBObjectSpec& spec,
              int* errorLine = nullptr);

    int parse_var(ZBObjectSpec& spec);
    int parse_child(ZBObjectSpec& spec);
    int parse_private(ZBObjectSpec& spec);
    int parse_constrain(ZBObjectSpec& spec);
    int parse_script(ZBObjectSpec& spec);
    int parse_inherit(ZBObjectSpec& spec);

    static std::string var_form();
    static std::string child_form();

private:
    int fail(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int end_of_line();
    // Reads "$<NAME>" after the keyword of a private or constrain statement.
    int read_var_ref(const std::string& keyword, std::string& name);
    // Reads a quoted string: quote, contents, quote. False when it does not open
    // with a quote; a missing closing quote is reported.
    int read_quoted(std::string& value, bool& present);

    std::string m_prefix;
    int m_line;
};

} // namespace Tervalon
