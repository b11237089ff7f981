#pragma once

#include "LibDate/date/zbdate.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// One finding of a module that the user should see: what it is about, how
// urgent it is, and the notification scheme that decides how it is shown.
// Managers make them afresh on every generate_notify; nothing is stored.
class ZBNotifyItem {
public:
    ZBNotifyItem() = default;
    ZBNotifyItem(int scheme, double priority, const std::string& text, int objectId, const ZBDate& date)
        : m_scheme(scheme), m_priority(priority), m_text(text), m_objectId(objectId), m_date(date) {}

    int get_scheme() const { return m_scheme; }
    double get_priority() const { return m_priority; }
    const std::string& get_text() const { return m_text; }
    int get_object_id() const { return m_objectId; }
    const ZBDate& get_date() const { return m_date; }

    bool operator==(const ZBNotifyItem& other) const
    {
        return m_scheme == other.m_scheme && m_priority == other.m_priority && m_text == other.m_text
            && m_objectId == other.m_objectId && m_date == other.m_date;
    }

    void dump(std::ostream& out, int indent) const;

private:
    int m_scheme = 0;
    double m_priority = 0.0;
    std::string m_text;
    int m_objectId = -1;
    ZBDate m_date{ZBDate::E_Blank};
};

} // namespace Tervalon
