#include "LibDatabase/db/zbdbscriptcache.h"
#include "LibDatabase/db/zbexprevaluator.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

int ZBDBScriptCache::evaluate(const std::string& text, int slot, std::string& result)
{
    if (slot >= 0) {
        if (size_t(slot) >= m_slot.size())
            m_slot.resize(size_t(slot) + 1);
        m_slot[size_t(slot)] = text;
    }
    std::string message;
    if (!ZBExprEvaluator::evaluate(text, result, message)) {
        result = "#ERROR";
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Could not evaluate \"%s\": %s", text.c_str(), message.c_str());
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
