#include "LibObject/object/zbobjectindex.h"

#include <ostream>

namespace Tervalon {

ZBObjectIndex::ZBObjectIndex() : m_entry(false) {}

int ZBObjectIndex::append(const std::string& name, ZBCreateFunction create, int& id)
{
    if (ZBObjectIndexEntry* entry = find(name)) {
        id = entry->m_id;
        return id;
    }
    id = m_entry.size();
    ZBObjectIndexEntry* entry = new ZBObjectIndexEntry(id, name, create);
    m_entry.add(name, entry);
    m_byName.emplace(name, entry);
    return id;
}

ZBObjectIndexEntry* ZBObjectIndex::get(int id) const
{
    if (id < 0 || id >= m_entry.size())
        return nullptr;
    return m_entry.begin()[id];
}

void ZBObjectIndex::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBObjectIndex\n";
    for (const ZBObjectIndexEntry* entry : m_entry)
        out << pad << "    entry[" << entry->m_id << "]: " << entry->m_name << "\n";
}

ZBObjectIndex& zbclassindex()
{
    static ZBObjectIndex index;
    return index;
}

ZBObjectPreReg::ZBObjectPreReg(const std::string& name, ZBCreateFunction create)
{
    int id = -1;
    zbclassindex().append(name, create, id);
}

} // namespace Tervalon
