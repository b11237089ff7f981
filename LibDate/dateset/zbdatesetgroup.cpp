#include "LibDate/dateset/zbdatesetgroup.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

ZBDateSet* ZBDateSetGroup::add_dateset(const std::string& name)
{
    ZBDateSet* set = new ZBDateSet();
    m_set.push_back(set);
    m_name.push_back(new std::string(name));
    return set;
}

std::string ZBDateSetGroup::get_dateset_name_by_index(int index) const
{
    const std::string* name = m_name.at(index);
    return name ? *name : std::string();
}

int ZBDateSetGroup::get_combined(ZBDateSet& outSet) const
{
    for (const ZBDateSet* set : m_set)
        if (iszbwarn(outSet.add(*set)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDateSetGroup::finish_bulk_add()
{
    for (ZBDateSet* set : m_set)
        if (iszbwarn(set->finish_bulk_add()))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDateSetGroup::subtract(const ZBDateSlot& slot)
{
    for (ZBDateSet* set : m_set)
        set->subtract(slot, -1);
    return ZBErrC_ok;
}

int ZBDateSetGroup::subtract(const ZBDateSet& other)
{
    for (ZBDateSet* set : m_set)
        set->subtract(other);
    return ZBErrC_ok;
}

ZBDate ZBDateSetGroup::get_start() const
{
    ZBDate result(ZBDate::E_Blank);
    for (const ZBDateSet* set : m_set)
        if (!set->empty() && set->start() < result)
            result = set->start();
    return result;
}

ZBDate ZBDateSetGroup::get_end() const
{
    ZBDate result(ZBDate::E_Blank);
    for (const ZBDateSet* set : m_set) {
        if (set->empty())
            continue;
        if (!result.is_ok() || set->end() > result)
            result = set->end();
    }
    return result;
}

void ZBDateSetGroup::dump(std::ostream& out, int indent) const
{
    ZBDump writer("ZBDateSetGroup", out, indent);
    for (int i = 0; i < m_set.size(); ++i) {
        writer.add("m_name", *m_name[i], i);
        writer.write_heading("m_set", i);
        m_set[i]->dump(out, indent + 1);
    }
    writer.write();
}

} // namespace Tervalon
