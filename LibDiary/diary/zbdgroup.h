#pragma once

#include "LibDiary/diary/zbdentry.h"
#include "LibDate/date/zbdaterepeat.h"

#include <string>
#include <vector>

namespace Tervalon {

// A group of people (an address list, or a group that prayers hang on): a
// name, the ids of the people to write to, and whether and when it comes up
// in the prayer lists.
class ZBDGroup : public ZBDEntry {
public:
    ZBDGroup();
    ZBDGroup(const ZBDGroup& other);
    ~ZBDGroup() override;
    ZBDGroup& operator=(const ZBDGroup& other);
    bool operator==(const ZBDGroup& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    int get_entrytype() const override { return E_Address; }
    std::string get_summary() const override { return m_name; }
    int remap_id(int from, int to) override;

    const std::string& get_name() const { return m_name; }
    void set_name(const std::string& name);
    bool get_prayer_group() const { return m_prayerGroup; }
    void set_prayer_group(bool prayerGroup) { m_prayerGroup = prayerGroup; }
    int get_prayer_type() const { return m_prayerType; }
    void set_prayer_type(int id) { m_prayerType = id; }
    bool get_use_schedule() const { return m_useSchedule; }
    void set_use_schedule(bool use) { m_useSchedule = use; }
    const std::vector<int>& get_email() const { return m_email; }
    void set_email(const std::vector<int>& people) { m_email = people; }
    bool has_member(int personId) const;
    const ZBDateRepeat& get_schedule() const { return m_schedule; }
    ZBDateRepeat& edit_schedule() { return m_schedule; }

private:
    std::string m_name;
    bool m_prayerGroup;
    int m_prayerType;
    bool m_useSchedule;
    std::vector<int> m_email;
    ZBDateRepeat m_schedule;
};

} // namespace Tervalon
