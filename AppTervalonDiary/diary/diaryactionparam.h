#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"
#include "LibGui/base/zbactionparam.h"
#include "LibObject/object/zbidlist.h"

#include <string>
#include <vector>

namespace Tervalon {

// What a diary action works on: the selection and the texts a menu, a link or
// the command line gives it. set_params fills the fields each action reads
// from its list of text arguments, so that every caller passes the same texts.
class DiaryActionParam : public ZBActionParam {
public:
    DiaryActionParam();

    // Reads the text arguments of action name into the fields it uses. A text
    // that must be a date, duration or number and is not gives a user warning
    // naming it, and the fields keep what they had.
    int set_params(const std::string& name, const std::vector<std::string>& args);
    // Reads "ID", "ID:p3" (plan 3), "ID:s0" (spent session 0), "ID:r2"
    // (predicted session 2) or "ID:c1" into a key; false for anything else.
    static bool parse_id(const std::string& text, ZBId& out);
    // The text parse_id reads, for a key.
    static std::string id_text(const ZBId& id);
    // Sets one field by its name without the "m_" ("userName", "dayRange",
    // "percent"...), from text; a day range is "DATE" (the whole day) or
    // "START..END" where END may also be a duration.
    int set_param(const std::string& field, const std::string& value);
    static const std::vector<std::string>& field_names();

    // Date texts as a user types them, read against the clock.
    static int read_date(const std::string& text, ZBDate& out);
    static int read_duration(const std::string& text, ZBDuration& out);
    // The whole day holding date, in the locale's zone.
    static ZBDateSlot whole_day(const ZBDate& date);
    // "START..END" (END a date or a duration) or one day.
    static int read_range(const std::string& text, ZBDateSlot& out);

    ZBIdList m_selectedId;
    std::string m_selectedCmd;
    int m_userId;
    std::string m_userName;
    ZBDateSlot m_dayRange;
    std::string m_postponeStart;
    std::string m_postponeEnd;
    int m_depth;
    std::string m_queryParam;
    std::string m_search;
    ZBDate m_date;
    int m_instance;
    bool m_clear;
    // The title of an entry an Add, CreateChild, CreateSibling or EditEntry makes or sets.
    std::string m_title;
    // Add under the diary's bookmarked entry of the type rather than at the top.
    bool m_bookmark;
    // The completion an AdjComplete sets, 0 to 100; -1 none given.
    double m_percent;
    // The type letter an AddEntry makes.
    char m_type;
};

} // namespace Tervalon
