#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"

#include "LibCore/time/zbmoment.h"

#include <cstdio>
#include <ostream>

namespace Tervalon {

ZBErrDetails::ZBErrDetails() : m_code(0), m_severity(ZBErrSev_Log), m_time(0) {}

ZBErrDetails::ZBErrDetails(int code, ZBErrSeverity severity) : m_code(code), m_severity(severity), m_time(0) {}

ZBErrDetails::~ZBErrDetails() = default;

int ZBErrDetails::compute_severity(int value)
{
    if (value > 499999 || value < 0)
        return 0;
    return value / 100000;
}

int ZBErrDetails::compute_code(int value)
{
    if (value > 499999 || value < 0)
        return -1;
    return value % 100000;
}

int ZBErrDetails::compute_combination(int code, int severity)
{
    return severity * 100000 + code;
}

int ZBErrDetails::get_value() const
{
    return compute_combination(m_code, m_severity);
}

void ZBErrDetails::populate_error(int code, ZBErrSeverity severity)
{
    m_code = compute_code(code) < 0 ? code : compute_code(code);
    m_severity = severity;
}

void ZBErrDetails::append_location(const std::string& location)
{
    if (location.empty())
        return;
    if (!m_location.empty())
        m_location += "\n";
    m_location += location;
}

void ZBErrDetails::append_extra(const std::string& name, const std::string& value)
{
    m_extra += name + ": " + value + "\n";
}

std::string ZBErrDetails::get_time_text() const
{
    return m_time == 0 ? std::string() : format_time(m_time, true);
}

std::string ZBErrDetails::format_time(long long microsSinceEpoch, bool withMicros)
{
    // Shown in the machine's zone, as the wall clock read when it happened.
    return ZBMoment(microsSinceEpoch).to_string(withMicros ? "%D %H:%M:%U" : "%D %H:%M:%S");
}

std::string ZBErrDetails::get_message() const
{
    if (!m_details[ZBErrAsp_User].empty() && m_details[ZBErrAsp_User] != get_zberror().get_default_message(ZBErrAsp_User))
        return m_details[ZBErrAsp_User];
    return m_details[ZBErrAsp_System];
}

ZBErrDetails& ZBErrDetails::operator+=(const ZBErrDetails& other)
{
    for (int i = 0; i < 2; ++i)
        if (!other.m_details[i].empty() && other.m_details[i] != m_details[i])
            m_details[i] += m_details[i].empty() ? other.m_details[i] : "\n" + other.m_details[i];
    append_location(other.m_location);
    m_extra += other.m_extra;
    return *this;
}

bool ZBErrDetails::operator==(const ZBErrDetails& other) const
{
    return m_code == other.m_code && m_severity == other.m_severity && m_details[0] == other.m_details[0]
        && m_details[1] == other.m_details[1] && m_location == other.m_location && m_extra == other.m_extra;
}

void ZBErrDetails::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBErrDetails\n"
        << pad << "    code     : " << m_code << "\n"
        << pad << "    severity : " << m_severity << "\n"
        << pad << "    details[0]: " << m_details[0] << "\n"
        << pad << "    details[1]: " << m_details[1] << "\n"
        << pad << "    location : " << m_location << "\n"
        << pad << "    extra    : " << m_extra << "\n";
}

// One record as the error log keeps it. Continuation lines of the location and
// the extra part are indented under their label.
std::ostream& operator<<(std::ostream& out, const ZBErrDetails& details)
{
    const ZBErrCode& code = ZBError::get_code(details.get_code());
    if (details.get_severity() == ZBErrSev_Log) {
        out << "Log: " << details.get_time_text() << " " << details.get_location() << " "
            << details.get_details(ZBErrAsp_System);
        return out;
    }
    out << " ZBError Code " << code.m_code << "(" << code.m_name << ") at " << details.get_time_text() << "\n"
        << details.get_details(ZBErrAsp_System);
    const std::string& user = details.get_details(ZBErrAsp_User);
    if (!user.empty() && user != details.get_details(ZBErrAsp_System)
        && user != get_zberror().get_default_message(ZBErrAsp_User))
        out << "\n  User: " << user;
    auto labelled = [&out](const char* label, const std::string& text) {
        size_t start = 0;
        while (start < text.size()) {
            size_t end = text.find('\n', start);
            if (end == std::string::npos)
                end = text.size();
            if (end > start)
                out << "\n" << label << text.substr(start, end - start);
            start = end + 1;
        }
    };
    labelled("  Location: ", details.get_location());
    labelled("  Extra: ", details.get_extra());
    return out;
}

} // namespace Tervalon
