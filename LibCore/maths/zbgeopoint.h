#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// A place on the earth: latitude and longitude in degrees (north and east
// positive) and altitude in metres. Blank means "no position".
class ZBGeoPoint {
public:
    // The text forms, by number: decimal degrees, degrees and minutes, degrees
    // minutes and seconds; each with hemisphere letters or with signs.
    enum LatLonFormat { E_DegHemi = 0, E_DegSign = 1, E_DegMinHemi = 2, E_DegMinSign = 3, E_DegMinSecHemi = 4,
                        E_DegMinSecSign = 5 };
    static const double C_Blank;

    ZBGeoPoint();
    ZBGeoPoint(double latitude, double longitude, double altitude = 0.0);
    virtual ~ZBGeoPoint();

    double get_latitude() const { return m_latitude; }
    void set_latitude(double latitude) { m_latitude = latitude; }
    double get_longitude() const { return m_longitude; }
    void set_longitude(double longitude) { m_longitude = longitude; }
    double get_altitude() const { return m_altitude; }
    void set_altitude(double altitude) { m_altitude = altitude; }

    void set_zero();
    void set_blank();
    bool is_blank() const;

    // Latitude and longitude in the given form; empty text when blank.
    std::string to_string(int format = E_DegHemi) const;
    // Reads any of the six forms (and degree, minute and second marks);
    // a text out of range or not a position is reported and changes nothing.
    int from_string(const std::string& text);
    static std::vector<std::string> get_formats();

    bool operator==(const ZBGeoPoint& other) const;
    virtual void dump(std::ostream& out, int indent) const;

private:
    static std::string format_part(double value, int format, bool latitude);
    static bool parse_part(const std::string& text, bool latitude, double& value);

    double m_latitude;
    double m_longitude;
    double m_altitude;
};

} // namespace Tervalon
