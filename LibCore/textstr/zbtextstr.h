#pragma once

// Free text functions on UTF-8 std::string. Positions are byte offsets.
// Case folding is ASCII for speed, with a Unicode path for text that has
// other letters. zb_sprintf lives with the error core, which formats reports.

#include "LibCore/error/zberror.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBTokenSet;

// ---- case and comparison
std::string zb_tolower(const std::string& text);
std::string zb_toupper(const std::string& text);
// <0, 0, >0 as strcmp, ignoring case.
int zb_compare_nocase(const std::string& a, const std::string& b);
// Position of target in text at or after start, ignoring case; -1 if absent.
int zb_find_nocase(const std::string& text, const std::string& target, int start = 0);
// Index of the one entry equal to text (or, with prefix, starting with it);
// -1 when none or more than one match, so an ambiguous abbreviation is no match.
int zb_find_in_vector(const std::string& text, const std::vector<std::string>& list, bool prefix, bool noCase);
bool zb_starts_with(const std::string& text, const std::string& prefix);
bool zb_ends_with(const std::string& text, const std::string& suffix);

// ---- white space and cleaning
bool zb_is_space(char c);
// First position at or after pos that is not white space (the length if none).
int zb_skip_space(const std::string& text, int pos = 0);
// In this order: tabs to blanks; drop CR and LF; trim the start; trim the end.
std::string zb_elim_whitespace(const std::string& text, bool tabs, bool lineBreaks, bool leading, bool trailing);
std::string zb_trim(const std::string& text);
// Drops control characters (keeping tab and line feed) and trims both ends.
std::string zb_clean_string(const std::string& text);
// Makes any byte string valid UTF-8: valid sequences stay, other bytes are
// read as Windows-1252 (a superset of Latin-1), the usual source of stray bytes.
std::string zb_clean_unicode(const std::string& text);
bool zb_is_valid_utf8(const std::string& text);
// Line ends to "\n", trailing blanks of lines removed, runs of blank lines to
// one, no blank lines at either end.
std::string zb_clean_paragraphs(const std::string& text);

// ---- moving and copying
// Copies at most size-1 bytes and always terminates; reports null pointers.
int zb_copy_string(char* target, const char* source, int size);
// Moves pos to the next occurrence of match at or after pos, or to the end.
// A pos outside the text reports ZBErrC_StringBounds.
int zb_move_to(const std::string& text, char match, int& pos);
int zb_move_to(const char* strng, char match, int& pos);
// The same for the next of any character of match.
int zb_move_to(const std::string& text, const char* match, int& pos);
// Reads from pos up to (not including) the next character of stops, or the end,
// into out; pos is left on the stop character.
int zb_read_to(const std::string& text, const std::string& stops, int& pos, std::string& out);
// Splits "tag<sep>value" at the first separator; false (tag = line) without one.
bool zb_tag_value(const std::string& line, std::string& tag, std::string& value, char separator = '=');
// Every occurrence of from replaced by to; an empty from changes nothing.
std::string zb_replace_substr(const std::string& text, const std::string& from, const std::string& to);
int zb_replace_substr(std::string& text, const std::string& from, const std::string& to, bool all);

// ---- splitting and wrapping
// Splits at any character of separators; empty pieces are kept unless skipEmpty.
std::vector<std::string> zb_tokenise(const std::string& text, const std::string& separators, bool skipEmpty);
// The general lexer under the parsers: runs of letters and '_' (upper-cased if
// asked), runs of digits, runs of white space, and every other character alone,
// each with its line number (from firstLine).
int zb_tokenise(const std::string& text, ZBTokenSet& tokens, bool upper = false, int firstLine = 1);
// Breaks text into lines of at most width characters at blanks; a longer word
// stands alone on its line. Existing line breaks are kept.
std::string zb_line_wrap(const std::string& text, int width);
int zb_utf8_length(const std::string& text);

// ---- CSV
// Reads one record from a line. Quoted fields may hold separators and doubled
// quotes. Returns ZBErrC_okNotFinished when a quoted field is still open at the
// end of the line (the caller appends the next line and reads again).
int zb_read_csv(const std::string& line, std::vector<std::string>& fields, char separator = ',');
// Reads one record from a stream, joining lines inside quotes; ZBErrC_okEndOfFile at the end.
int zb_read_csv(std::istream& in, std::vector<std::string>& fields, char separator = ',');
// A field quoted when it must be: separator, quote, line break, or blanks at an end.
std::string zb_csv_out(const std::string& field, char separator = ',');
void zb_add_csv_entry(std::string& line, const std::string& field, bool first, char separator = ',');
std::string zb_csv_line(const std::vector<std::string>& fields, char separator = ',');

// ---- line escaping of the object stream
// Line feed to "\n", backslash doubled, CR and NUL dropped.
std::string zb_stream_out(const std::string& text);
// "\n" to a line feed, "\x" to x; a lone backslash at the very end is kept.
std::string zb_stream_in(const std::string& text);

// ---- conversions. The readers are strict: the whole text (blanks around it
// aside) must be the number, else the default comes back and ok is false.
std::string zb_int_to_string(int value);
std::string zb_long_to_string(long long value);
// Shortest text that reads back to the same double ("%.17g" at most); "0.1" not "0.10000000000000001".
std::string zb_double_to_string(double value);
std::string zb_double_to_string(double value, int decimals);
std::string zb_bool_to_string(bool value);
int zb_string_to_int(const std::string& text, int defaultValue = 0, bool* ok = nullptr);
long long zb_string_to_long(const std::string& text, long long defaultValue = 0, bool* ok = nullptr);
double zb_string_to_double(const std::string& text, double defaultValue = 0.0, bool* ok = nullptr);
// "true", "yes", "on", "1" and their opposites, any case.
bool zb_string_to_bool(const std::string& text, bool defaultValue = false, bool* ok = nullptr);

} // namespace Tervalon
