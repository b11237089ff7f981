#include "LibCore/maths/zbunits.h"
#include "LibCore/textstr/zbtextstr.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

namespace Tervalon {

namespace {

struct UnitRow {
    int code;
    const char* name;
    double factor; // base units in one of this unit
};

const UnitRow C_Units[] = {
    {0, "cal", 1.0},
    {1, "kj", 1.0 / 4.184},
    {100, "g", 1.0},
    {101, "mg", 1e-3},
    {102, "ug", 1e-6},
    {103, "kg", 1000.0},
    {104, "lb", 453.59237},
    {105, "oz", 28.349523125},
    {200, "l", 1.0},
    {201, "cl", 0.01},
    {202, "ml", 0.001},
    {203, "gl", 4.54609},
    {204, "pt", 0.56826125},
    {205, "qt", 1.1365225},
    {300, "m", 1.0},
    {301, "cm", 0.01},
    {302, "mm", 0.001},
    {303, "km", 1000.0},
    {310, "ft", 0.3048},
    {311, "in", 0.0254},
    {312, "mi", 1609.344},
    {400, "hms", 1.0},
    {401, "ms", 0.001},
    {402, "s", 1.0},
    {403, "min", 60.0},
    {404, "hr", 3600.0},
    {405, "day", 86400.0},
    {500, "mps", 1.0},
    {501, "kmh", 1.0 / 3.6},
    {502, "mih", 0.44704},
    {600, "count", 1.0},
    {601, "avg", 1.0},
    {700, "%", 1.0},
    {800, "Pa", 1.0},
    {801, "KPa", 1000.0},
    {802, "MMHg", 133.322387415},
};

struct Alias {
    const char* name;
    int code;
};

const Alias C_Aliases[] = {
    {"kcal", 0},    {"calories", 0}, {"kilojoules", 1}, {"grams", 100}, {"gram", 100},  {"mcg", 102},
    {"\xC2\xB5g", 102}, {"lbs", 104}, {"pound", 104},   {"pounds", 104}, {"ounce", 105}, {"ounces", 105},
    {"litre", 200}, {"liter", 200},  {"gal", 203},      {"inch", 311},   {"inches", 311}, {"feet", 310},
    {"foot", 310},  {"h", 404},      {"hrs", 404},      {"hour", 404},   {"hours", 404},  {"mins", 403},
    {"sec", 402},   {"secs", 402},   {"days", 405},     {"km/h", 501},   {"kph", 501},    {"mph", 502},
    {"m/s", 500},   {"mmhg", 802},   {"percent", 700},
};

const UnitRow* find_unit(int unit)
{
    for (const UnitRow& row : C_Units)
        if (row.code == unit)
            return &row;
    return nullptr;
}

std::string strip_zeros(std::string text)
{
    if (text.find('.') == std::string::npos)
        return text;
    while (!text.empty() && text.back() == '0')
        text.pop_back();
    if (!text.empty() && text.back() == '.')
        text.pop_back();
    if (text == "-0")
        text = "0";
    return text;
}

std::string hms_text(double seconds)
{
    bool negative = seconds < 0;
    long long total = std::llround(std::fabs(seconds));
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%s%lld:%02lld:%02lld", negative ? "-" : "", total / 3600, total / 60 % 60,
                  total % 60);
    return buffer;
}

bool is_time_text(const std::string& text)
{
    return text.find(':') != std::string::npos;
}

// "h:mm:ss", "mm:ss" (read as minutes and seconds only with two parts and a
// time unit of minutes), "-1:30".
bool read_hms(const std::string& text, double& seconds)
{
    std::vector<std::string> parts = zb_tokenise(zb_trim(text), ":", false);
    if (parts.empty() || parts.size() > 3)
        return false;
    bool negative = !parts[0].empty() && parts[0][0] == '-';
    if (negative)
        parts[0].erase(0, 1);
    double total = 0;
    for (const std::string& part : parts) {
        bool ok = false;
        double value = zb_string_to_double(part, 0, &ok);
        if (!ok || value < 0)
            return false;
        total = total * 60 + value;
    }
    if (parts.size() == 2)
        total *= 60; // "1:30" is an hour and a half
    seconds = negative ? -total : total;
    return true;
}

} // namespace

int ZBUnits::get_base_type(int unit)
{
    return find_unit(unit) ? unit / 100 : -1;
}

std::string ZBUnits::get_unit_name(int unit)
{
    const UnitRow* row = find_unit(unit);
    return row ? row->name : std::string();
}

std::vector<int> ZBUnits::get_units(int type)
{
    std::vector<int> units;
    for (const UnitRow& row : C_Units)
        if (row.code / 100 == type)
            units.push_back(row.code);
    return units;
}

int ZBUnits::unit_code(const std::string& text)
{
    const std::string name = zb_trim(text);
    if (name.empty())
        return C_NoUnit;
    for (const UnitRow& row : C_Units)
        if (zb_compare_nocase(name, row.name) == 0)
            return row.code;
    for (const Alias& alias : C_Aliases)
        if (zb_compare_nocase(name, alias.name) == 0)
            return alias.code;
    return C_NoUnit;
}

double ZBUnits::to_unit(double base, int unit)
{
    const UnitRow* row = find_unit(unit);
    return row ? base / row->factor : base;
}

double ZBUnits::from_unit(double value, int unit)
{
    const UnitRow* row = find_unit(unit);
    return row ? value * row->factor : value;
}

bool ZBUnits::from_text(const std::string& text, int defaultUnit, double& base, int* unitOut)
{
    const std::string trimmed = zb_trim(text);
    if (trimmed.empty())
        return false;
    if (is_time_text(trimmed)) {
        if (defaultUnit >= 0 && get_base_type(defaultUnit) != E_Time)
            return false;
        double seconds = 0;
        if (!read_hms(trimmed, seconds))
            return false;
        base = seconds;
        if (unitOut)
            *unitOut = defaultUnit >= 0 ? defaultUnit : 400;
        return true;
    }
    // The number is the longest leading part that reads as one.
    size_t end = 0;
    while (end < trimmed.size()
           && (std::isdigit(static_cast<unsigned char>(trimmed[end])) || trimmed[end] == '.' || trimmed[end] == '-'
               || trimmed[end] == '+' || ((trimmed[end] == 'e' || trimmed[end] == 'E') && end > 0
                                          && end + 1 < trimmed.size()
                                          && (std::isdigit(static_cast<unsigned char>(trimmed[end + 1]))
                                              || trimmed[end + 1] == '-'))))
        ++end;
    bool ok = false;
    double value = zb_string_to_double(trimmed.substr(0, end), 0, &ok);
    if (!ok)
        return false;
    int unit = defaultUnit;
    const std::string rest = zb_trim(trimmed.substr(end));
    if (!rest.empty()) {
        unit = unit_code(rest);
        if (unit == C_NoUnit)
            return false;
        if (defaultUnit >= 0 && get_base_type(defaultUnit) != get_base_type(unit))
            return false;
    }
    base = from_unit(value, unit);
    if (unitOut)
        *unitOut = unit;
    return true;
}

std::string ZBUnits::to_text(double base, int unit, int digits, bool showUnit, bool trimZeros)
{
    std::string text;
    if (unit == 400) {
        text = hms_text(base);
    } else {
        text = zb_double_to_string(to_unit(base, unit), std::max(0, digits));
        if (trimZeros)
            text = strip_zeros(text);
        if (text == "-0")
            text = "0";
    }
    if (showUnit && unit != 400 && find_unit(unit))
        text += unit == 700 ? "%" : " " + get_unit_name(unit);
    return text;
}

std::string ZBUnits::to_text_alt(double base, int unit, int digits)
{
    const int type = get_base_type(unit);
    const bool negative = base < 0;
    const double magnitude = std::fabs(base);
    const std::string sign = negative ? "-" : "";
    if (unit == 310 || unit == 311) {
        double inches = to_unit(magnitude, 311);
        long long feet = (long long)(inches / 12.0);
        double rest = inches - double(feet) * 12.0;
        std::string restText = strip_zeros(zb_double_to_string(rest, std::max(0, digits)));
        if (restText == "12") {
            ++feet;
            restText = "0";
        }
        return sign + std::to_string(feet) + "' " + restText + "\"";
    }
    if (unit == 104 || unit == 105) {
        double ounces = to_unit(magnitude, 105);
        long long pounds = (long long)(ounces / 16.0);
        double rest = ounces - double(pounds) * 16.0;
        std::string restText = strip_zeros(zb_double_to_string(rest, std::max(0, digits)));
        if (restText == "16") {
            ++pounds;
            restText = "0";
        }
        return sign + std::to_string(pounds) + " lb " + restText + " oz";
    }
    if (type == E_Time)
        return hms_text(base);
    return to_text(base, unit, digits, true, true);
}

double ZBUnits::round_to_units(double base, int unit)
{
    double value = to_unit(base, unit);
    double magnitude = std::fabs(value);
    double step = magnitude >= 100 ? 1.0 : magnitude >= 10 ? 0.1 : 0.01;
    double rounded = std::round(value / step) * step;
    return from_unit(rounded, unit);
}

bool ZBUnits::unit_should_average(int unit)
{
    const int type = get_base_type(unit);
    return unit == 601 || type == E_Percent || type == E_Pressure || type == E_Speed;
}

} // namespace Tervalon
