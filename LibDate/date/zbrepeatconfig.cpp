#include "LibDate/date/zbrepeatconfig.h"

#include <ostream>

namespace Tervalon {

void ZBRepeatConfig::dump(std::ostream& out, int indent) const
{
    out << std::string(size_t(indent) * 4, ' ') << "ZBRepeatConfig\n";
}

bool ZBRepeatConfig::is_workday(const ZBDateDetails&, const std::string&) const
{
    return true;
}

void ZBRepeatConfig::get_timetypes(std::vector<int>& ids, std::vector<std::string>& names) const
{
    ids.clear();
    names.clear();
}

} // namespace Tervalon
