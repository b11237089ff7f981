#pragma once

#include <iosfwd>
#include <string>

namespace Tervalon {

class ZBDateDetails;

// How the owner of a date expression or repeat rule says what a work day is:
// a diary answers from a person's working calendar, named by the tag. Without
// one, the locale's working week decides.
class ZBRepeatConfig {
public:
    virtual ~ZBRepeatConfig() = default;
    virtual void dump(std::ostream& out, int indent) const;
    // The base class works every day.
    virtual bool is_workday(const ZBDateDetails& details, const std::string& tag) const;
    virtual bool timetypes_used() const { return false; }
};

} // namespace Tervalon
