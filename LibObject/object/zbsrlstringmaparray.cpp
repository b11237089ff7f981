#include "LibObject/object/zbsrlstringmaparray.h"
#include "LibCore/error/zberror.h"

#include <istream>
#include <iterator>
#include <ostream>

namespace Tervalon {

int ZBSrlStringMapArray::read(std::istream& in)
{
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return read_text(text);
}

int ZBSrlStringMapArray::read_text(const std::string& text)
{
    size_t sep = text.find('=');
    std::string key = text.substr(0, sep);
    std::string value = sep == std::string::npos ? std::string() : text.substr(sep + 1);
    int index = m_value.position_of(key);
    if (index >= 0)
        m_value.remove(index);
    return m_value.add(key, new std::string(value));
}

int ZBSrlStringMapArray::write(std::ostream& out, int index) const
{
    if (index < 0 || index >= m_value.size())
        return zberror(ZBErrC_ArrayBounds, ZBLOC, "Array index %d out of bounds %d.", index, m_value.size());
    out << m_value.tag(index) << '=' << *m_value[index];
    return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
}

} // namespace Tervalon
