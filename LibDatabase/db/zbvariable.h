#pragma once

#include "LibObject/object/zbobject.h"
#include "LibDatabase/db/zbvarspec.h"

#include <memory>
#include <string>

namespace Tervalon {

// One variable's value in one object, with the declaration it follows. A
// variable read from a file before its spec is applied has only a tag and a
// value; apply_objectspec links it. The object owns its variables.
class ZBVariable : public ZBObject {
public:
    ZBVariable();
    ZBVariable(const std::string& tag, const std::string& value);
    ZBVariable(const ZBVariable& other);
    ~ZBVariable() override;
    ZBVariable& operator=(const ZBVariable& other);
    bool operator==(const ZBVariable& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const std::string& get_tag() const { return m_tag; }
    void set_tag(const std::string& tag) { m_tag = tag; }
    const std::string& get_value() const { return m_value; }
    void set_value(const std::string& value) { m_value = value; }

    const std::shared_ptr<ZBVarSpec>& get_spec() const { return m_spec; }
    void set_spec(const std::shared_ptr<ZBVarSpec>& spec);

    // The value goes back to the declaration's text, to be worked out again.
    void clone_spec();
    void clear_cache() { m_isCached = false; m_scriptCache.clear(); }
    void mark_initialised(bool value = true) { m_isInitialised = value; }
    bool is_initialised() const { return m_isInitialised; }
    bool is_cached() const { return m_isCached; }
    void set_cached(bool value) { m_isCached = value; }
    std::string& script_cache() { return m_scriptCache; }

    // Declaration flags, false when there is no declaration.
    bool is_derived() const { return m_spec && m_spec->is_derived(); }
    bool is_prompt() const { return m_spec && m_spec->is_prompt(); }
    bool is_sysvalue() const { return m_spec && m_spec->is_sysvalue(); }
    bool is_auto() const { return m_spec && m_spec->is_auto(); }
    bool is_private() const { return m_spec && m_spec->is_private(); }

private:
    std::string m_tag;
    std::string m_value;
    std::shared_ptr<ZBVarSpec> m_spec;
    bool m_isCached;
    bool m_isInitialised;
    std::string m_scriptCache;
};

} // namespace Tervalon
