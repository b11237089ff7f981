#include "LibCore/maths/zbcountset.h"

namespace Tervalon {

void ZBCountSet::add(int key, int n)
{
    auto it = m_count.find(key);
    if (it == m_count.end())
        m_count.emplace(key, n);
    else
        it->second += n;
}

int ZBCountSet::count(int key) const
{
    auto it = m_count.find(key);
    return it == m_count.end() ? 0 : it->second;
}

} // namespace Tervalon
