#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

class ZBDateDetails;
class ZBRepeatConfig;

// One step of a compiled date expression: a type, a number and, for work days
// and "@", a tag. Terms run on one ZBDateDetails, each seeing what the one
// before left. The type numbers are stored nowhere but keep their order, which
// is the order in which people think of them.
class ZBDateExpTerm {
public:
    enum E_TermType {
        SetMicro = 0,
        SetSecond,
        SetMinute,
        SetHour,
        SetDay,
        SetWeekday,
        SetWeek,
        SetMonth,
        SetYear,
        AddMicro,
        AddSecond,
        AddMinute,
        AddHour,
        AddDay,
        WorkDay,
        Fixed,
        AddWeek,
        AddMonth,
        AddYear,
        Now,
        Today,
        Tomorrow,
        Yesterday,
        Relative,
        SetZone,
        SetDST,
        AM,
        PM,
        Blank,
        Open,
        Or,
        Close,
        Invalid
    };
    // What a term can leave instead of a date.
    enum E_Outcome { E_Date = 0, E_Blank, E_Invalid };

    ZBDateExpTerm() = default;
    ZBDateExpTerm(int type, int value, const std::string& tag = std::string())
        : m_type(type), m_value(value), m_tag(tag) {}
    virtual ~ZBDateExpTerm() = default;

    // Changes the details. ZBErrC_okNotFinished from Fixed on a day off asks
    // the caller to run the expression again; outcome turns to blank or
    // invalid for Blank, Invalid and steps too large for any calendar.
    int apply(ZBDateDetails& details, const ZBRepeatConfig* config, int& outcome) const;
    // The canonical text, fused with its neighbours' types: clock fields make
    // one time, day, month and year one date. -1 for no neighbour.
    std::string to_string(int previousType, int nextType) const;

    static int encode_weekday_month(int weekNo, int weekday) { return weekday + 10 * weekNo + 40; }
    static void decode_weekday_month(int value, int& weekNo, int& weekday)
    {
        weekday = value % 10;
        weekNo = value / 10 - 4;
    }

    bool operator==(const ZBDateExpTerm& other) const
    {
        return m_type == other.m_type && m_value == other.m_value && m_tag == other.m_tag;
    }
    virtual void dump(std::ostream& out, int indent) const;

    int m_type = Invalid;
    int m_value = 0;
    std::string m_tag;
};

} // namespace Tervalon
