#pragma once

#include "LibDiary/diary/zbdentry.h"
#include "LibDate/date/zbdaterepeat.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBPersonData;

// A person: a name, how to reach them, the groups they belong to, and an
// optional schedule of reminders to get in touch. Other records name a person
// by id (an entry's m_person, a group's members).
class ZBDPerson : public ZBDEntry {
public:
    ZBDPerson();
    ZBDPerson(const ZBDPerson& other);
    ~ZBDPerson() override;
    ZBDPerson& operator=(const ZBDPerson& other);
    bool operator==(const ZBDPerson& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    int get_entrytype() const override { return E_Person; }
    std::string get_summary() const override { return get_name(); }
    int remap_id(int from, int to) override;

    const std::string& get_firstname() const { return m_firstName; }
    void set_firstname(const std::string& name) { m_firstName = name; }
    const std::string& get_surname() const { return m_surname; }
    void set_surname(const std::string& name) { m_surname = name; }
    std::string get_name() const;
    const std::string& get_email() const { return m_email; }
    void set_email(const std::string& email) { m_email = email; }
    const std::string& get_contacturl() const { return m_contactURL; }
    void set_contacturl(const std::string& url) { m_contactURL = url; }
    // The person's contact URL (or the default one) with the substitutes filled in.
    int populate_url(const std::string& defaultTemplate, const std::string& details, std::string& out) const;
    static std::string url_guide();

    const std::vector<int>& get_groups() const { return m_groups; }
    void set_groups(const std::vector<int>& groups) { m_groups = groups; }
    void add_group(int id);
    bool in_group(int id) const;
    bool get_contact() const { return m_contact; }
    void set_contact(bool contact) { m_contact = contact; }

    // Reminders to get in touch.
    const ZBDateRepeat& get_encouragement() const { return m_encouragement; }
    ZBDateRepeat& edit_encouragement() { return m_encouragement; }
    // Records a contact now and moves the reminder on.
    void mark_reminder();
    // Sets the first reminder from the schedule when there is none.
    void initialise_reminder();
    bool has_reminder() const;
    const ZBDate& get_reminder() const { return m_reminder; }
    void set_reminder(const ZBDate& date) { m_reminder = date; }
    // The reminder is done: the next one comes from the schedule, if any.
    void complete_reminder();
    bool contacted_today() const;
    const ZBDate& get_last_contact() const { return m_lastContact; }
    void set_last_contact(const ZBDate& date) { m_lastContact = date; }

private:
    std::string m_firstName;
    std::string m_surname;
    std::string m_email;
    std::string m_contactURL;
    std::vector<int> m_groups;
    bool m_contact;
    ZBDateRepeat m_encouragement;
    ZBDate m_lastContact;
    ZBDate m_reminder;
};

} // namespace Tervalon
