#include "LibDatabase/db/zbdbchecker.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibObject/object/zbdump.h"

#include <ostream>

namespace Tervalon {

ZBDBChecker::ZBDBChecker() : m_lastCheckTime(0), m_lastCheckCount(0) {}

void ZBDBChecker::record_error(const ZBDBObject& object, int code, const std::string& message,
                               const std::string& shortMessage)
{
    record_error(object.get_id(), code, message, shortMessage);
}

void ZBDBChecker::record_error(int id, int code, const std::string& message, const std::string& shortMessage)
{
    ZBDBCheckItem item(id, code, message, shortMessage);
    for (const ZBDBCheckItem* existing : m_items)
        if (*existing == item)
            return;
    m_items.push_back(new ZBDBCheckItem(item));
}

void ZBDBChecker::clear_error(int code)
{
    for (int i = m_items.size() - 1; i >= 0; --i)
        if (m_items.at(i)->get_error_code() == code)
            m_items.remove(i);
}

void ZBDBChecker::clear()
{
    m_items.clear();
}

bool ZBDBChecker::has_error(int id) const
{
    for (const ZBDBCheckItem* item : m_items)
        if (item->get_id() == id)
            return true;
    return false;
}

std::vector<const ZBDBCheckItem*> ZBDBChecker::get_items_for(int id) const
{
    std::vector<const ZBDBCheckItem*> result;
    for (const ZBDBCheckItem* item : m_items)
        if (item->get_id() == id)
            result.push_back(item);
    return result;
}

void ZBDBChecker::upload(const ZBDBChecker& other)
{
    m_items.clear();
    for (const ZBDBCheckItem* item : other.m_items)
        m_items.push_back(new ZBDBCheckItem(*item));
    m_lastCheckTime = other.m_lastCheckTime;
    m_lastCheckCount = other.m_lastCheckCount;
}

void ZBDBChecker::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDBChecker", out, indent);
    dump.add("m_lastCheckTime", m_lastCheckTime);
    dump.add("m_lastCheckCount", m_lastCheckCount);
    for (int i = 0; i < m_items.size(); ++i)
        dump.add_entry("m_items", std::to_string(m_items.at(i)->get_id()) + ": " + m_items.at(i)->get_message(), i);
}

} // namespace Tervalon
