#include "LibDatabase/db/zbdbindex.h"

#include <ostream>

namespace Tervalon {

std::string ZBDBIndex::add_transaction(const std::string& operation, int version)
{
    int id = m_nextId++;
    m_transaction.push_back({id, operation, version, 0});
    return std::to_string(id) + ":" + operation;
}

int ZBDBIndex::get_status(int id) const
{
    for (const Transaction& t : m_transaction)
        if (t.m_id == id)
            return t.m_status;
    return 0;
}

void ZBDBIndex::clear()
{
    m_transaction.clear();
    m_nextId = 1;
    m_lastSave = 0;
}

void ZBDBIndex::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBDBIndex\n" << pad << "    transactions : " << m_transaction.size() << "\n"
        << pad << "    lastSave     : " << m_lastSave << "\n";
}

} // namespace Tervalon
