#pragma once

#include <memory>

namespace Tervalon {

class ZBObject;

// Tells whether an object has changed since a recorded moment: it keeps a clone
// taken then, and compares by the stream text. Two empty baselines are equal.
class ZBModObject {
public:
    ZBModObject();
    ZBModObject(const ZBModObject& other);
    ~ZBModObject();
    ZBModObject& operator=(const ZBModObject& other);
    bool operator==(const ZBModObject& other) const;
    bool operator!=(const ZBModObject& other) const { return !(*this == other); }

    void record_baseline(const ZBObject* object);
    void clear();
    bool has_baseline() const { return m_baseline != nullptr; }
    // True when the object differs from the baseline (or there is none).
    bool has_changed(const ZBObject& object) const;
    const ZBObject* get_baseline() const { return m_baseline.get(); }

private:
    std::unique_ptr<ZBObject> m_baseline;
};

} // namespace Tervalon
