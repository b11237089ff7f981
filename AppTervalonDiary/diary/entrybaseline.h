#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"
#include "LibObject/container/zbcalcpair.h"
#include "LibDate/date/zbduration.h"
#include "LibDate/date/zbdateslot.h"

#include <string>
#include <vector>

namespace Tervalon {

// A frozen copy of an entry's planned duration and dates, against which its
// progress is graded.
class EntryBaseline : public EntryFacet {
public:
    EntryBaseline();
    EntryBaseline(const EntryBaseline& other) = default;
    EntryBaseline& operator=(const EntryBaseline& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    static std::string btype_to_string(int kind);
    // A digit is read as its number; an unknown name gives 0.
    static int string_to_btype(const std::string& text);

    const ZBCalcPair<ZBDuration>& get_duration() const { return m_duration; }
    void set_duration(const ZBDuration& duration) { m_duration.set_orig(duration); }
    const ZBCalcPair<ZBDateSlot>& get_start_end() const { return m_startEnd; }
    void set_start_end(const ZBDateSlot& slot) { m_startEnd.set_orig(slot); }
    bool get_progressive() const { return m_progressive; }
    void set_progressive(bool on) { m_progressive = on; }
    int get_auto_baseline() const { return m_autoEntryBaseline; }
    void set_auto_baseline(int kind) { m_autoEntryBaseline = kind; }

private:
    ZBCalcPair<ZBDuration> m_duration;
    ZBCalcPair<ZBDateSlot> m_startEnd;
    bool m_progressive;
    int m_autoEntryBaseline;
};

} // namespace Tervalon
