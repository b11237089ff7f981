#include "LibDatabase/db/zbdbcheckitem.h"

namespace Tervalon {

ZBDBCheckItem::ZBDBCheckItem(int id, int errorCode, const std::string& message, const std::string& shortMessage)
    : m_id(id), m_errorCode(errorCode), m_message(message), m_shortMessage(shortMessage)
{
}

bool ZBDBCheckItem::operator==(const ZBDBCheckItem& other) const
{
    return m_id == other.m_id && m_errorCode == other.m_errorCode && m_message == other.m_message &&
           m_shortMessage == other.m_shortMessage;
}

} // namespace Tervalon
