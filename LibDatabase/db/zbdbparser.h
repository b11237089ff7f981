#pragma once

#include "LibCore/textstr/zbtokenset.h"

#include <string>

namespace Tervalon {

// The tokens of the database's text languages (specs, queries): comments,
// quoted strings and ">"...""<" blocks each come out whole, so that a ";" or a
// line feed inside a value never ends a statement.
class ZBDBParser : public ZBTokenSet {
public:
    static const char* const C_BlockStart;
    static const char* const C_BlockEnd;

    // Replaces the tokens with those of text; line numbers count from 1.
    void tokenise(const std::string& text);
    // Whether the first token is a valid name, and whether name is one: only
    // letters, digits and "_", and at least one of them.
    bool is_valid_name() const;
    static bool is_valid_name(const std::string& name);
    // The tokens up to the next ";" (or the end), joined, without taking them.
    std::string peek_statement() const;
    // Drops tokens up to and including the next ";".
    void skip_statement();
};

} // namespace Tervalon
