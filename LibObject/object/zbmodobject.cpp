#include "LibObject/object/zbmodobject.h"
#include "LibObject/object/zbobject.h"

namespace Tervalon {

ZBModObject::ZBModObject() = default;

ZBModObject::ZBModObject(const ZBModObject& other)
{
    *this = other;
}

ZBModObject::~ZBModObject() = default;

ZBModObject& ZBModObject::operator=(const ZBModObject& other)
{
    if (this != &other)
        m_baseline.reset(other.m_baseline ? other.m_baseline->clone_class() : nullptr);
    return *this;
}

bool ZBModObject::operator==(const ZBModObject& other) const
{
    if (!m_baseline || !other.m_baseline)
        return !m_baseline && !other.m_baseline;
    return m_baseline->derived_compare(*other.m_baseline, 0);
}

void ZBModObject::record_baseline(const ZBObject* object)
{
    m_baseline.reset(object ? object->clone_class() : nullptr);
}

void ZBModObject::clear()
{
    m_baseline.reset();
}

bool ZBModObject::has_changed(const ZBObject& object) const
{
    return !m_baseline || !m_baseline->derived_compare(object, 0);
}

} // namespace Tervalon
