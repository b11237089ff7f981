#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibObject/object/zbobject.h"

#include <string>
#include <vector>

namespace Tervalon {

// A dated exception in a calendar: over its dates, on the weekdays it
// applies to, the days are of another day type (leave, a public holiday,
// a week of half days). Owned by its calendar.
class ResourceCalEntry : public ZBObject {
public:
    ResourceCalEntry();
    ResourceCalEntry(const ResourceCalEntry& other) = default;
    ResourceCalEntry& operator=(const ResourceCalEntry& other) = default;
    bool operator==(const ResourceCalEntry& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const ZBDateSlot& get_date() const { return m_date; }
    void set_date(const ZBDateSlot& slot) { m_date = slot; }
    int get_daytype() const { return m_dayType; }
    void set_daytype(int id) { m_dayType = id; }
    const std::string& get_comment() const { return m_comment; }
    void set_comment(const std::string& comment) { m_comment = comment; }
    // Whether the exception applies on a weekday (0 Monday); any other day
    // number counts as applying.
    bool get_day_applic(int day) const;
    void set_day_applic(int day, bool on);

    // True when a starts behind b.
    static int compare_start(const ResourceCalEntry& a, const ResourceCalEntry& b);

private:
    ZBDateSlot m_date;
    int m_dayType;
    std::vector<int> m_dayApplic;
    std::string m_comment;
};

} // namespace Tervalon
