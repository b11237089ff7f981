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
    // Making a string stream costs more than most fields take to read (it
    // sets up its locale each time), so one stream a thread is reused. A
    // binder may read an object of its own, whose fields come back here while
    // the stream is in use: those get a stream of their own.
    static thread_local std::istringstream shared;
    static thread_local bool busy = false;
    if (busy) {
        std::istringstream in(text);
        return read(in);
    }
    busy = true;
    shared.clear();
    shared.flags(std::ios::skipws | std::ios::dec);
    shared.width(0);
    shared.str(text);
    const int result = read(shared);
    shared.str(std::string());
    busy = false;
    return result;
}

int ZBSrl::write_text(std::string& text, int index) const
{
    std::ostringstream out;
    int result = write(out, index);
    text = out.str();
    return result;
}

} // namespace Tervalon
