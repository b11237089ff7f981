#pragma once

#include "LibCore/textstr/zbtextstr.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// One parsed unit of the object stream: a field (!tag!value), a nested object
// (@tag and the object's whole text) or a raw data line.
class ZBSerialisationEntry {
public:
    enum E_ReadMode { E_Field = 0, E_Class = 1, E_Raw = 2 };
    // Objects inside objects go no deeper than this in a stream. Reading a
    // nested object recurses, so a damaged or hostile file nested without
    // end is refused here rather than overflowing the stack.
    static const int C_MaxNesting = 256;

    ZBSerialisationEntry() = default;
    ZBSerialisationEntry(E_ReadMode type, const std::string& tag, const std::string& value)
        : m_entryType(type), m_tag(tag), m_value(value) {}
    virtual ~ZBSerialisationEntry() = default;

    // Reads one entry; ZBErrC_okEndOfRecord at the class end or the end of the stream.
    int read_entry(std::istream& in);
    // Writes the entry back in the form it was read from.
    int write_entry(std::ostream& out) const;

    bool operator==(const ZBSerialisationEntry& other) const
    {
        return m_entryType == other.m_entryType && m_tag == other.m_tag && m_value == other.m_value;
    }
    bool operator!=(const ZBSerialisationEntry& other) const { return !(*this == other); }

    virtual void dump(std::ostream& out, int indent) const;

    E_ReadMode m_entryType = E_Raw;
    std::string m_tag;
    std::string m_value;
};

// Reads one line with every CR and LF removed; false at the end of the stream.
bool zb_read_line(std::istream& in, std::string& line);
// Reads the lines of a nested object (after its "@tag" line) up to the line
// that closes it, found by the depth of '{' and '}' lines; appends them to
// value when given. ZBErrC_FileTooShort when the stream ends first, and
// ZBErrC_FileLineInvalid when objects nest deeper than C_MaxNesting.
int zb_read_nested(std::istream& in, std::string* value);
// Writes a raw data line, with the extra backslash where the line would otherwise
// be taken for a field, an object or a class marker.
void zb_write_raw_line(std::ostream& out, const std::string& text);

} // namespace Tervalon
