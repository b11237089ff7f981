#pragma once

#include "LibObject/object/zbobject.h"

#include <string>

namespace Tervalon {

// A script held by an object: its name, trigger and text. The script engine
// comes later; until then a script is kept and written back as it was read.
class ZBDBScript : public ZBObject {
public:
    ZBDBScript();
    ZBDBScript(const ZBDBScript& other) = default;
    ZBDBScript& operator=(const ZBDBScript& other) = default;
    bool operator==(const ZBDBScript& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);

    std::string m_name;
    std::string m_trigger;
    std::string m_script;
    // The key that runs the script from an object's window; empty for none.
    std::string m_shortcut;
};

} // namespace Tervalon
