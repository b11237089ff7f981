#include "LibDiary/diary/zbdperson.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDPerson", &ZBDPerson::create_zbobject);
}

ZBDPerson::ZBDPerson() : m_contact(false), m_lastContact(ZBDate::E_Blank), m_reminder(ZBDate::E_Blank)
{
    ZBDPerson::register_zbobject();
}

ZBDPerson::ZBDPerson(const ZBDPerson& other)
    : ZBDEntry(other), m_firstName(other.m_firstName), m_surname(other.m_surname), m_email(other.m_email),
      m_contactURL(other.m_contactURL), m_groups(other.m_groups), m_contact(other.m_contact),
      m_encouragement(other.m_encouragement), m_lastContact(other.m_lastContact), m_reminder(other.m_reminder)
{
}

ZBDPerson::~ZBDPerson() = default;

ZBDPerson& ZBDPerson::operator=(const ZBDPerson& other)
{
    if (this == &other)
        return *this;
    ZBDEntry::operator=(other);
    m_firstName = other.m_firstName;
    m_surname = other.m_surname;
    m_email = other.m_email;
    m_contactURL = other.m_contactURL;
    m_groups = other.m_groups;
    m_contact = other.m_contact;
    m_encouragement = other.m_encouragement;
    m_lastContact = other.m_lastContact;
    m_reminder = other.m_reminder;
    return *this;
}

bool ZBDPerson::operator==(const ZBDPerson& other) const
{
    return m_firstName == other.m_firstName && m_surname == other.m_surname && m_email == other.m_email
        && m_contactURL == other.m_contactURL && m_groups == other.m_groups && m_contact == other.m_contact
        && m_encouragement == other.m_encouragement && m_lastContact == other.m_lastContact
        && m_reminder == other.m_reminder && ZBDEntry::operator==(other);
}

void ZBDPerson::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDPerson", out, indent);
    dump.add_entry("m_firstName", m_firstName);
    dump.add_entry("m_surname", m_surname);
    dump.add_entry("m_email", m_email);
    dump.add_entry("m_contactURL", m_contactURL);
    for (size_t i = 0; i < m_groups.size(); ++i)
        dump.add("m_groups", m_groups[i], int(i));
    dump.add("m_contact", m_contact);
    dump.add_entry("m_encouragement", m_encouragement.to_string());
    dump.add_entry("m_lastContact", m_lastContact.to_iso());
    dump.add_entry("m_reminder", m_reminder.to_iso());
    dump.write_heading("Base Class");
    dump.write();
    ZBDEntry::dump(out, indent + 1);
}

int ZBDPerson::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    const ZBDate blank(ZBDate::E_Blank);
    serialise_string(in, out, prefix, "FN", m_firstName, true);
    serialise_string(in, out, prefix, "SN", m_surname, true);
    serialise_string(in, out, prefix, "EM", m_email, true);
    serialise_string(in, out, prefix, "CU", m_contactURL, true);
    ZBSrlValueVector<int> groups(m_groups);
    serialise_value(in, out, prefix, "GP", groups);
    serialise_field<bool>(in, out, prefix, "CO", m_contact, false);
    if (out == nullptr || m_encouragement.is_repeating()) {
        ZBSrlObject<ZBDateRepeat> encouragement(m_encouragement, version);
        if (iszberr(serialise_object(in, out, prefix, "EN", encouragement)))
            return zbpass(ZBLOC);
    }
    serialise_field<ZBDate>(in, out, prefix, "LC", m_lastContact, blank);
    serialise_field<ZBDate>(in, out, prefix, "RM", m_reminder, blank);
    return ZBDEntry::serialise(in, out, prefix, version);
}

void ZBDPerson::register_zbobject()
{
    register_objectname("ZBDPerson", &ZBDPerson::create_zbobject);
}

int ZBDPerson::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDPerson>(out, from, "ZBDPerson");
}

void ZBDPerson::set_defaults(bool all)
{
    ZBDEntry::set_defaults(all);
    m_firstName.clear();
    m_surname.clear();
    m_email.clear();
    m_contactURL.clear();
    m_groups.clear();
    m_contact = false;
    m_encouragement.clear_repeat();
    m_lastContact.set_blank();
    m_reminder.set_blank();
}

int ZBDPerson::remap_id(int from, int to)
{
    std::replace(m_groups.begin(), m_groups.end(), from, to);
    return ZBDEntry::remap_id(from, to);
}

std::string ZBDPerson::get_name() const
{
    if (m_surname.empty())
        return m_firstName;
    if (m_firstName.empty())
        return m_surname;
    return m_firstName + " " + m_surname;
}

int ZBDPerson::populate_url(const std::string& defaultTemplate, const std::string& details, std::string& out) const
{
    out = m_contactURL.empty() ? defaultTemplate : m_contactURL;
    zb_replace_substr(out, "$<FirstName>", m_firstName, true);
    zb_replace_substr(out, "$<LastName>", m_surname, true);
    zb_replace_substr(out, "$<FullName>", get_name(), true);
    zb_replace_substr(out, "$<Email>", m_email, true);
    zb_replace_substr(out, "$<Details>", details, true);
    return ZBErrC_ok;
}

std::string ZBDPerson::url_guide()
{
    return "A URL that can be opened to contact a person, including these substitutes.\n"
           "$<FirstName> The person's first name.\n"
           "$<LastName>  The person's last name.\n"
           "$<FullName>  The person's full name.\n"
           "$<Email>     The person's email address.\n"
           "$<Details>   Additional details including an event name.\n";
}

void ZBDPerson::add_group(int id)
{
    if (!in_group(id))
        m_groups.push_back(id);
}

bool ZBDPerson::in_group(int id) const
{
    return std::find(m_groups.begin(), m_groups.end(), id) != m_groups.end();
}

void ZBDPerson::mark_reminder()
{
    m_lastContact = ZBDateUtils::now();
    complete_reminder();
}

void ZBDPerson::initialise_reminder()
{
    if (!m_reminder.is_ok() && m_encouragement.is_repeating()) {
        // A rule that does not move (one the user steps by hand) gives no reminder.
        ZBDate now = ZBDateUtils::now();
        ZBDate next = m_encouragement.next_date(now, this);
        if (next.is_ok() && now < next)
            m_reminder = next;
    }
}

bool ZBDPerson::has_reminder() const
{
    return m_reminder.is_ok();
}

void ZBDPerson::complete_reminder()
{
    m_reminder.set_blank();
    if (m_encouragement.is_repeating()) {
        ZBDate now = ZBDateUtils::now();
        ZBDate next = m_encouragement.next_date(now, this);
        if (next.is_ok() && now < next)
            m_reminder = next;
    }
}

bool ZBDPerson::contacted_today() const
{
    return m_lastContact.is_ok() && m_lastContact >= ZBDateUtils::start_day(ZBDateUtils::now());
}

} // namespace Tervalon
