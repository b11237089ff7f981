#include "LibDate/calendar/zbcalendarreporter.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

int ZBCalendarReporter::generate_report(const ZBDateSlot&, ZBCalendar&)
{
    return ZBErrC_ok;
}

} // namespace Tervalon
