#pragma once

#include "LibObject/object/zbobject.h"

#include <string>
#include <vector>

namespace Tervalon {

// Which day type each weekday is, for one resource or for the whole diary.
// Owned by its resource or by the diary. The day types and dated exceptions
// that fill a calendar come with the work-time planning; until then a calendar
// keeps them as data it passes through unchanged.
class ResourceCalendar : public ZBObject {
public:
    static constexpr int C_DefaultStdDay = -1;

    ResourceCalendar();
    ResourceCalendar(const ResourceCalendar& other) = default;
    ResourceCalendar& operator=(const ResourceCalendar& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    int get_standard_day(int weekday) const;
    void set_standard_day(int weekday, int id);
    bool default_created() const { return m_defaultCreated; }
    void set_default_created(bool created) { m_defaultCreated = created; }
    // Whether a day type of this calendar books time of that type; the name of
    // what uses it goes to text.
    bool timetype_is_used(int id, std::string& text) const;
    void add_timetype_use(int id) { m_timeTypes.push_back(id); }

private:
    std::vector<int> m_standardDay;
    bool m_defaultCreated;
    // Time type ids the calendar's day types book, so that deleting one can be refused.
    std::vector<int> m_timeTypes;
};

} // namespace Tervalon
