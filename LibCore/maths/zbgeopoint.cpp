#include "LibCore/maths/zbgeopoint.h"
#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbtextstr.h"

#include <cctype>
#include <cmath>
#include <ostream>

namespace Tervalon {

const double ZBGeoPoint::C_Blank = -999.0;

namespace {

std::string strip_zero(const char* format, double value)
{
    std::string text = zb_sprintf(format, value);
    if (text.find('.') != std::string::npos) {
        while (text.back() == '0')
            text.pop_back();
        if (text.back() == '.')
            text.pop_back();
    }
    return text;
}

} // namespace

ZBGeoPoint::ZBGeoPoint() : m_latitude(C_Blank), m_longitude(C_Blank), m_altitude(0.0) {}

ZBGeoPoint::ZBGeoPoint(double latitude, double longitude, double altitude)
    : m_latitude(latitude), m_longitude(longitude), m_altitude(altitude)
{
}

ZBGeoPoint::~ZBGeoPoint() = default;

void ZBGeoPoint::set_zero()
{
    m_latitude = m_longitude = m_altitude = 0.0;
}

void ZBGeoPoint::set_blank()
{
    m_latitude = m_longitude = C_Blank;
    m_altitude = 0.0;
}

bool ZBGeoPoint::is_blank() const
{
    return m_latitude == C_Blank || m_longitude == C_Blank;
}

std::vector<std::string> ZBGeoPoint::get_formats()
{
    return {"D.nnn N/S, D.nnn E/W",         "+/-D.nnn, +/-D.nnn",         "D M.nnn N/S, D M.nnn E/W",
            "+/-D M.nnn, +/-D M.nnn",       "D M S.nnn N/S, D M S.nnn E/W", "+/-D M S.nnn, +/-D M S.nnn"};
}

std::string ZBGeoPoint::format_part(double value, int format, bool latitude)
{
    const bool negative = value < 0;
    const bool hemi = format % 2 == 0;
    double magnitude = std::fabs(value);
    std::string text;
    if (format <= E_DegSign) {
        text = strip_zero("%.9f", magnitude);
    } else if (format <= E_DegMinSign) {
        // Rounded in minutes first, so 59.9999999 minutes becomes the next degree.
        double minutes = std::round(magnitude * 60.0 * 1e6) / 1e6;
        double degrees = std::floor(minutes / 60.0);
        minutes -= degrees * 60.0;
        text = strip_zero("%.0f", degrees) + " " + strip_zero("%.6f", minutes);
    } else {
        double seconds = std::round(magnitude * 3600.0 * 1e3) / 1e3;
        double degrees = std::floor(seconds / 3600.0);
        seconds -= degrees * 3600.0;
        double minutes = std::floor(seconds / 60.0);
        seconds -= minutes * 60.0;
        text = strip_zero("%.0f", degrees) + " " + strip_zero("%.0f", minutes) + " " + strip_zero("%.3f", seconds);
    }
    if (hemi)
        return text + (latitude ? (negative ? " S" : " N") : (negative ? " W" : " E"));
    return (negative && text != "0" ? "-" : "") + text;
}

std::string ZBGeoPoint::to_string(int format) const
{
    if (is_blank())
        return std::string();
    if (format < E_DegHemi || format > E_DegMinSecSign)
        format = E_DegHemi;
    return format_part(m_latitude, format, true) + ", " + format_part(m_longitude, format, false);
}

bool ZBGeoPoint::parse_part(const std::string& text, bool latitude, double& value)
{
    // Degree, minute and second marks read as blanks.
    std::string clean = text;
    clean = zb_replace_substr(clean, "\xC2\xB0", " ");
    for (char& c : clean)
        if (c == '\'' || c == '"')
            c = ' ';
    std::vector<std::string> words = zb_tokenise(clean, " \t", true);
    int sign = 1;
    bool hemisphere = false;
    if (!words.empty()) {
        std::string last = zb_toupper(words.back());
        if (last.size() == 1 && std::string(latitude ? "NS" : "EW").find(last[0]) != std::string::npos) {
            sign = (last == "S" || last == "W") ? -1 : 1;
            hemisphere = true;
            words.pop_back();
        } else if (last.size() == 1 && std::isalpha(static_cast<unsigned char>(last[0]))) {
            return false;
        }
    }
    if (words.empty() || words.size() > 3)
        return false;
    if (words[0][0] == '-' || words[0][0] == '+') {
        if (hemisphere)
            return false;
        if (words[0][0] == '-')
            sign = -1;
        words[0].erase(0, 1);
        if (words[0].empty())
            return false;
    }
    double total = 0.0;
    double scale = 1.0;
    for (size_t i = 0; i < words.size(); ++i) {
        bool ok = false;
        double part = zb_string_to_double(words[i], 0.0, &ok);
        if (!ok || part < 0 || (i > 0 && part >= 60.0))
            return false;
        total += part / scale;
        scale *= 60.0;
    }
    if (total > (latitude ? 90.0 : 180.0))
        return false;
    value = sign * total;
    return true;
}

int ZBGeoPoint::from_string(const std::string& text)
{
    std::vector<std::string> parts = zb_tokenise(text, ",", false);
    double latitude = 0.0;
    double longitude = 0.0;
    if (parts.size() != 2 || !parse_part(parts[0], true, latitude) || !parse_part(parts[1], false, longitude))
        return zbwarning(ZBErrC_InvalidValue, ZBLOC, "Could not read the position \"%s\".", text.c_str());
    m_latitude = latitude;
    m_longitude = longitude;
    return ZBErrC_ok;
}

bool ZBGeoPoint::operator==(const ZBGeoPoint& other) const
{
    return m_latitude == other.m_latitude && m_longitude == other.m_longitude && m_altitude == other.m_altitude;
}

void ZBGeoPoint::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBGeoPoint\n" << pad << "    m_latitude : " << m_latitude << "\n" << pad << "    m_longitude : "
        << m_longitude << "\n" << pad << "    m_altitude : " << m_altitude << "\n";
}

} // namespace Tervalon
