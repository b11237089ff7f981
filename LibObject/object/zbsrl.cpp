#include "LibObject/object/zbsrl.h"
#include "LibCore/error/zberror.h"

#include <ostream>
#include <sstream>

namespace Tervalon {

void ZBSrl::dump(std::ostream& out, int indent) const
{
    out << std::string(size_t(indent) * 4, ' ') << "ZBSrl entries=" << get_nentries() << "\n";
}

int ZBSrl::read_text(const std::string& text)
{
    std::istringstream in(text);
    return read(in);
}

int ZBSrl::write_text(std::string& text, int index) const
{
    std::ostringstream out;
    int result = write(out, index);
    text = out.str();
    return result;
}

} // namespace Tervalon
