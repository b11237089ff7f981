#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibObject/object/zbid.h"
#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// One item a source puts on the day, week and month views: a task's plan, an
// appointment, a prayer, a payment. The id points back at what it shows (the
// sequence selects a session of an entry); what the data and view type
// numbers mean is the source's own business. A calendar owns its entries.
class ZBCalendarEntry : public ZBObject {
public:
    ZBCalendarEntry();
    ZBCalendarEntry(const ZBId& id, const ZBDateSlot& time, const std::string& summary);
    ZBCalendarEntry(const ZBCalendarEntry& other) = default;
    ZBCalendarEntry& operator=(const ZBCalendarEntry& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const ZBId& get_id() const { return m_id; }
    void set_id(const ZBId& id) { m_id = id; }
    int get_datatype() const { return m_dataType; }
    void set_datatype(int type) { m_dataType = type; }
    int get_grouping() const { return m_grouping; }
    void set_grouping(int grouping) { m_grouping = grouping; }
    const ZBDateSlot& get_time() const { return m_time; }
    // A slot given back to front is put in order, so that every query can
    // rely on start before end.
    void set_time(const ZBDateSlot& time);
    const std::string& get_summary() const { return m_summary; }
    void set_summary(const std::string& summary) { m_summary = summary; }
    const std::string& get_details() const { return m_details; }
    void set_details(const std::string& details) { m_details = details; }
    const std::string& get_image() const { return m_image; }
    void set_image(const std::string& image) { m_image = image; }
    int get_group() const { return m_group; }
    void set_group(int group) { m_group = group; }
    int get_viewtype() const { return m_viewType; }
    void set_viewtype(int type) { m_viewType = type; }
    double get_priority() const { return m_priority; }
    void set_priority(double priority) { m_priority = priority; }
    bool is_highlighted() const { return m_highlighted; }
    void set_highlighted(bool highlighted) { m_highlighted = highlighted; }

    // Order by start, then end, then id: neighbours after a sort are the
    // candidates for overlapping one another.
    bool less_than(const ZBCalendarEntry& other) const;
    bool greater_than(const ZBCalendarEntry& other) const { return other.less_than(*this); }

private:
    ZBId m_id;
    int m_dataType;
    int m_grouping;
    ZBDateSlot m_time;
    std::string m_summary;
    std::string m_details;
    std::string m_image;
    int m_group;
    int m_viewType;
    double m_priority;
    bool m_highlighted;
};

// Non-zero when a belongs behind b, the form ZBPtrArray::sort takes.
int compare_calendar_entries(const ZBCalendarEntry& a, const ZBCalendarEntry& b);

} // namespace Tervalon
