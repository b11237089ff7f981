#pragma once

#include "LibObject/object/zbobject.h"

namespace Tervalon {

// What the diary remembers of its imports. Its fields come with the import
// tools; until then whatever a file holds here is kept and written back.
class DiaryImport : public ZBObject {
public:
    DiaryImport();
    DiaryImport(const DiaryImport& other) = default;
    DiaryImport& operator=(const DiaryImport& other) = default;

    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
};

} // namespace Tervalon
