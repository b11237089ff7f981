#include "LibDate/date/zbdatemoment.h"

namespace Tervalon {

ZBMoment zb_moment_from_date(const ZBDate& date)
{
    return date.is_ok() ? ZBMoment(date.to_micros()) : ZBMoment();
}

ZBDate zb_date_from_moment(const ZBMoment& moment, int zone)
{
    ZBDate date(ZBDate::E_Blank);
    if (moment.is_ok())
        date.from_micros(moment.to_micros(), zone);
    return date;
}

std::string zb_format_moment(const ZBMoment& moment, const std::string& format)
{
    return zb_date_from_moment(moment, ZBDate::C_LocalTime).to_string(format);
}

} // namespace Tervalon
