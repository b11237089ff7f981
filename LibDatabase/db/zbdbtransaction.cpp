#include "LibDatabase/db/zbdbtransaction.h"
#include "LibObject/object/zbdump.h"

#include <cstdlib>

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBDBTransaction", &ZBDBTransaction::create_zbobject);
}

ZBDBTransaction::ZBDBTransaction() : m_id(-1), m_status(E_Live)
{
    ZBDBTransaction::register_zbobject();
}

ZBDBTransaction::ZBDBTransaction(int id, const std::string& operation) : m_id(id), m_status(E_Live), m_operation(operation)
{
    ZBDBTransaction::register_zbobject();
}

bool ZBDBTransaction::operator==(const ZBDBTransaction& other) const
{
    return m_id == other.m_id && m_status == other.m_status && m_operation == other.m_operation
        && ZBObject::operator==(other);
}

void ZBDBTransaction::set_defaults(bool all)
{
    m_id = -1;
    m_status = E_Live;
    m_operation.clear();
    ZBObject::set_defaults(all);
}

void ZBDBTransaction::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDBTransaction", out, indent);
    dump.add("m_id", m_id);
    dump.add("m_status", m_status);
    dump.add_entry("m_operation", m_operation);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBDBTransaction::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "id", m_id, -1);
    serialise_field<int>(in, out, prefix, "st", m_status, 0);
    serialise_string(in, out, prefix, "op", m_operation, false);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDBTransaction::register_zbobject()
{
    register_objectname("ZBDBTransaction", &ZBDBTransaction::create_zbobject);
}

int ZBDBTransaction::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDBTransaction>(out, from, "ZBDBTransaction");
}

std::string ZBDBTransaction::write_tag() const
{
    return std::to_string(m_id) + ":" + m_operation;
}

int ZBDBTransaction::read_transaction_tag(const std::string& text)
{
    const size_t colon = text.find(':');
    const std::string number = text.substr(0, colon);
    if (number.empty() || number.find_first_not_of("0123456789") != std::string::npos || number.size() > 9)
        return -1;
    return int(std::strtol(number.c_str(), nullptr, 10));
}

} // namespace Tervalon
