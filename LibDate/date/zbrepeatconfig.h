#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDateDetails;

// What the owner of a repeat rule says about work days: a person's working
// calendar, or nothing (every day counts). Repeat rules and date
// expressions ask it; they never own it.
class ZBRepeatConfig {
public:
    ZBRepeatConfig() = default;
    virtual ~ZBRepeatConfig() = default;

    virtual void dump(std::ostream& out, int indent) const;
    // tag names a time type (its id as text), empty for plain work time.
    virtual bool is_workday(const ZBDateDetails& details, const std::string& tag) const;
    virtual bool timetypes_used() const { return false; }
    // The time types a work-day rule may name, as parallel lists.
    virtual void get_timetypes(std::vector<int>& ids, std::vector<std::string>& names) const;
    virtual int get_capability() const { return encode_capability(0, 1); }

    // Which parts of a rule the owner lets the user edit: a range type plus
    // eight times a level type.
    static int encode_capability(int range, int level) { return range + 8 * level; }
    static int capability_range(int capability) { return capability % 8; }
    static int capability_level(int capability) { return capability / 8; }
};

} // namespace Tervalon
