#include "LibDiary/diary/zbdjournal.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDJournal", &ZBDJournal::create_zbobject);
}

ZBDJournal::ZBDJournal()
{
    ZBDJournal::register_zbobject();
}

ZBDJournal::ZBDJournal(const ZBDJournal& other) = default;

ZBDJournal::~ZBDJournal() = default;

ZBDJournal& ZBDJournal::operator=(const ZBDJournal& other)
{
    ZBDEntry::operator=(other);
    return *this;
}

bool ZBDJournal::operator==(const ZBDJournal& other) const
{
    return ZBDEntry::operator==(other);
}

void ZBDJournal::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDJournal", out, indent);
    dump.add_entry("combined", get_combined());
    dump.write_heading("Base Class");
    dump.write();
    ZBDEntry::dump(out, indent + 1);
}

// A note keeps its text as "details" and its time as "date"; the rest of the
// entry goes under "rp".
int ZBDJournal::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    std::string text = get_text();
    serialise_string(in, out, prefix, "details", text, true);
    if (in)
        set_text(text);
    m_time.serialise(*this, in, out, prefix, "date", ZBDateSlot());
    return serialise_entry(in, out, make_ctag(prefix, "rp"), version, false);
}

void ZBDJournal::register_zbobject()
{
    register_objectname("ZBDJournal", &ZBDJournal::create_zbobject);
}

int ZBDJournal::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDJournal>(out, from, "ZBDJournal");
}

void ZBDJournal::set_defaults(bool all)
{
    ZBDEntry::set_defaults(all);
}

void ZBDJournal::set_date(const ZBDate& date)
{
    set_time(ZBDateSlot(date, date));
}

std::string ZBDJournal::get_combined() const
{
    const std::string date = get_date().to_string();
    if (date.empty())
        return get_text();
    if (get_text().empty())
        return date;
    return date + " " + get_text();
}

} // namespace Tervalon
