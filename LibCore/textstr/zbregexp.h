#pragma once

#include <string>

namespace Tervalon {

// Pattern matching for queries and file lists; stateless.
class ZBRegExp {
public:
    // A file pattern with '*' (any run) and '?' (one character), matched
    // against the whole text; case is ignored, as users expect of file names.
    static bool match_filespec(const std::string& pattern, const std::string& text);
    // A regular expression found anywhere in text (or, with whole, matching all
    // of it). An invalid pattern matches nothing and is reported as a warning.
    static bool match_regex(const std::string& pattern, const std::string& text, bool noCase, bool whole);
    static bool is_valid_regex(const std::string& pattern, std::string* message = nullptr);
};

} // namespace Tervalon
