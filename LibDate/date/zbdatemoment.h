#pragma once

#include "LibCore/time/zbmoment.h"
#include "LibDate/date/zbdate.h"

#include <string>

namespace Tervalon {

// The bridge between the foundation's small moment and the full date: the
// foundation keeps ZBMoment so that it needs nothing from this library.
// Blank and invalid dates become the blank moment; the blank moment becomes
// the blank date.
ZBMoment zb_moment_from_date(const ZBDate& date);
ZBDate zb_date_from_moment(const ZBMoment& moment, int zone = ZBDate::C_LocalTime);
// The formatter the foundation uses once this library is linked in: the moment
// in the machine's zone through ZBDate::to_string and the user's formats.
std::string zb_format_moment(const ZBMoment& moment, const std::string& format);

} // namespace Tervalon
