#include "LibObject/object/zbserialisationentry.h"
#include "LibCore/error/zberror.h"

#include <istream>
#include <ostream>

namespace Tervalon {

bool zb_read_line(std::istream& in, std::string& line)
{
    if (!std::getline(in, line))
        return false;
    // getline has taken the line feed; a carriage return may stand anywhere.
    // Nul characters go too: the writer never puts them out, so a tag or
    // class name read with them would come back as another one.
    // A plain loop: find_first_of looks each character up in the set with a
    // call of its own, and every line of a file passes here.
    bool dropped = false;
    for (char c : line)
        if (c == '\r' || c == '\0') {
            dropped = true;
            break;
        }
    if (dropped) {
        std::string clean;
        clean.reserve(line.size());
        for (char c : line)
            if (c != '\r' && c != '\n' && c != '\0')
                clean += c;
        line.swap(clean);
    }
    return true;
}

int zb_read_nested(std::istream& in, std::string* value)
{
    int depth = 0;
    int opened = 0;
    std::string next;
    while (zb_read_line(in, next)) {
        if (value) {
            *value += next;
            *value += '\n';
        }
        if (!next.empty()) {
            // A class marker is followed by its class line; anything else
            // (a closing brace, a field) means the block was damaged, and
            // reading on would swallow what follows it.
            if (opened == 0 && next[0] != '{')
                return zberror(ZBErrC_FileLineInvalid, ZBLOC, "A class marker is not followed by its class: \"%s\".",
                               next.substr(0, 40).c_str());
            if (next[0] == '{') {
                ++opened;
                if (++depth > ZBSerialisationEntry::C_MaxNesting)
                    return zberror(ZBErrC_FileLineInvalid, ZBLOC, "Objects are nested more than %d deep.",
                                   ZBSerialisationEntry::C_MaxNesting);
            } else if (next[0] == '}') {
                --depth;
            }
        }
        if (opened > 0 && depth == 0)
            return ZBErrC_ok;
    }
    return zberror(ZBErrC_FileTooShort, ZBLOC, "Could not find the end of the class marker.");
}

void zb_write_raw_line(std::ostream& out, const std::string& text)
{
    std::string escaped = zb_stream_out(text);
    if (!escaped.empty()) {
        char first = escaped[0];
        if (first == '!' || first == '@' || first == '\\' || first == '{' || first == '}')
            out << '\\';
    }
    out << escaped << '\n';
}

int ZBSerialisationEntry::read_entry(std::istream& in)
{
    std::string line;
    if (!zb_read_line(in, line))
        return ZBErrC_okEndOfRecord;
    if (line.size() <= 1) {
        if (line == "}")
            return ZBErrC_okEndOfRecord;
        m_entryType = E_Raw;
        m_tag.clear();
        m_value = line;
        return ZBErrC_ok;
    }
    char first = line[0];
    if (first == '!') {
        m_entryType = E_Field;
        const bool escaped = line.find('\\') != std::string::npos;
        std::string unescaped;
        if (escaped)
            unescaped = zb_stream_in(line);
        const std::string& text = escaped ? unescaped : line;
        size_t bang = text.find('!', 1);
        if (bang == std::string::npos) {
            m_tag = text.substr(1);
            m_value.clear();
        } else {
            m_tag = text.substr(1, bang - 1);
            m_value = text.substr(bang + 1);
        }
        return ZBErrC_ok;
    }
    if (first == '@') {
        m_entryType = E_Class;
        m_tag = zb_stream_in(line.substr(1));
        m_value.clear();
        return zb_read_nested(in, &m_value);
    }
    if (first == '}')
        return ZBErrC_okEndOfRecord;
    m_entryType = E_Raw;
    m_tag.clear();
    m_value = zb_stream_in(first == '\\' ? line.substr(1) : line);
    return ZBErrC_ok;
}

int ZBSerialisationEntry::write_entry(std::ostream& out) const
{
    switch (m_entryType) {
    case E_Field:
        out << zb_stream_out("!" + m_tag + "!" + m_value) << '\n';
        break;
    case E_Class:
        out << '@' << zb_stream_out(m_tag) << '\n' << m_value;
        break;
    case E_Raw:
        zb_write_raw_line(out, m_value);
        break;
    }
    if (!out)
        return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    return ZBErrC_ok;
}

void ZBSerialisationEntry::dump(std::ostream& out, int indent) const
{
    out << std::string(indent * 4, ' ') << "ZBSerialisationEntry " << int(m_entryType) << " [" << m_tag << "] " << m_value << "\n";
}

} // namespace Tervalon
