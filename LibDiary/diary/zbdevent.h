#pragma once

#include "LibDiary/diary/zbdentry.h"
#include "LibDate/date/zbdaterepeat.h"

namespace Tervalon {

// Something that happens at a time: a birthday, a meeting, an anniversary.
// It may repeat; each instance is then seen and acknowledged on its own, so
// that acknowledging this week's does not silence next week's.
class ZBDEvent : public ZBDEntry {
public:
    ZBDEvent();
    ZBDEvent(const ZBDEvent& other);
    ~ZBDEvent() override;
    ZBDEvent& operator=(const ZBDEvent& other);
    bool operator==(const ZBDEvent& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    int get_entrytype() const override { return E_Event; }

    bool is_repeating() const { return get_repeat().is_repeating(); }
    // The instance that is current at a moment: the latest that has started
    // by then, or the first one when none has; the event's own slot when it
    // does not repeat.
    ZBDateSlot get_instance(const ZBDate& when) const;
    bool has_passed() const;
    static bool compare_date(const ZBDEvent* a, const ZBDEvent* b);

    // A repeating event acknowledges the instance current at the date.
    int mark_complete(const ZBDate& date) override;
    bool is_acknowleged() const override;
    bool is_acknowleged(const ZBDateSlot& instance) const;

private:
};

} // namespace Tervalon
