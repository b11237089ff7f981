#pragma once

#include <string>
#include <vector>

namespace Tervalon {

// Units of measure: a unit is a number, family * 100 + index, and each family
// has a base (its first unit) in which values are stored. Conversions go
// through the base; names are the short forms the user types and reads.
//
//   0 energy:   0 cal (kilocalorie, base), 1 kj
//   1 mass:     100 g (base), 101 mg, 102 ug, 103 kg, 104 lb, 105 oz
//   2 volume:   200 l (base), 201 cl, 202 ml, 203 gl, 204 pt, 205 qt (imperial measures)
//   3 length:   300 m (base), 301 cm, 302 mm, 303 km, 310 ft, 311 in, 312 mi
//   4 time:     400 hms (seconds, shown as h:mm:ss; base), 401 ms, 402 s, 403 min, 404 hr, 405 day
//   5 speed:    500 mps (metres a second, base), 501 kmh, 502 mih
//   6 other:    600 count, 601 avg
//   7 percent:  700 %
//   8 pressure: 800 Pa (base), 801 KPa, 802 MMHg
class ZBUnits {
public:
    enum E_UnitType { E_Energy = 0, E_Mass = 1, E_Volume = 2, E_Length = 3, E_Time = 4, E_Speed = 5,
                      E_Other = 6, E_Percent = 7, E_Pressure = 8 };
    static const int C_NoUnit = -1;

    // The family of a unit, or -1 for an unknown unit.
    static int get_base_type(int unit);
    static std::string get_unit_name(int unit);
    // The units of a family, base first.
    static std::vector<int> get_units(int type);
    // The unit of a name, ignoring case and allowing the usual other spellings
    // ("kcal", "kJ", "mcg", "lbs", "h", "mph", "mmHg"); -1 when unknown.
    static int unit_code(const std::string& text);

    // From the family's base into the unit, and back. An unknown unit leaves the value.
    static double to_unit(double base, int unit);
    static double from_unit(double value, int unit);

    // Reads "12.5", "12.5 kg", "5kg", "1:30:00" into a base value. A text with
    // no unit is in defaultUnit; a unit of another family than defaultUnit's is refused.
    static bool from_text(const std::string& text, int defaultUnit, double& base, int* unit = nullptr);
    // The value in the unit with the given decimals, trailing zeros trimmed if
    // asked, and the unit's name after a blank if asked.
    static std::string to_text(double base, int unit, int digits, bool showUnit, bool trimZeros);
    // A mixed form where people use one: "5' 11\"" for feet and inches, "9 lb 4 oz",
    // "1:30:00" for time; other units as to_text.
    static std::string to_text_alt(double base, int unit, int digits);
    // Rounds a base value to a sensible step in the unit: whole units from 100,
    // tenths from 10, hundredths below.
    static double round_to_units(double base, int unit);
    // Whether totals of the unit are averaged (percentages, pressures, speeds,
    // "avg") rather than summed.
    static bool unit_should_average(int unit);
};

} // namespace Tervalon
