#pragma once

#include "LibDate/date/zbdateexp.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBDate;
class ZBRepeatConfig;
class ZBTokenSet;

// Reads date text as people write it (absolute dates, times, weekdays,
// relative words and "+N unit" steps) into a ZBDateExp. Stateless; the
// locale supplies names, the order of day, month and year, and today's
// century for two-digit years.
class ZBDateParser {
public:
    // Never fails: text it cannot read gives the expression of the Invalid
    // term, and empty text the Blank term.
    static ZBDateExp parse_date(const std::string& text);
    // The same, telling whether all of the text was read.
    static ZBDateExp parse_date(const std::string& text, bool* complete);
    // The lexer of date text: digit runs, upper-cased letter runs, white space
    // runs and single other characters.
    static void split_tokens(ZBTokenSet& tokens, const std::string& text);
    // The lexer of durations: numbers (with a point), words, other characters.
    static void split_tokens(std::vector<std::string>& tokens, const std::string& text);
    // Whether token starts with prefix, the first character also lying in
    // from..to (a range of 0 means any).
    static bool compare_token(const std::string& token, const std::string& prefix, char from = 0, char to = 0);

    // For text a user has just typed: reads it as from_string does, but
    // refuses what the lenient reading would carry into another date (31
    // February, hour 25, day 0) and what it cannot read, with the message
    // "Invalid date value: " and the text. Empty text is the blank date.
    static int read_checked(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config,
                            ZBDate& result);
    // The same check without a report, for callers that word their own
    // message: false with why holding the reason ("" when the text simply
    // cannot be read).
    static bool read_typed(const std::string& text, const ZBDate* relative, const ZBRepeatConfig* config,
                           ZBDate& result, std::string& why);

    // Two digits take today's century, or the one before when that lands more
    // than ten years ahead; longer years stay as written.
    static int adjusted_year(int year, int digits);

private:
    // Why a literal field of the expression cannot be; empty when all can.
    static std::string impossible_field(const ZBDateExp& exp, const ZBDate& start);
};

} // namespace Tervalon
