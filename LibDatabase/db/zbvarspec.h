#pragma once

#include "LibObject/object/zbobject.h"

#include <memory>
#include <string>

namespace Tervalon {

// One variable's declaration in an object spec: its tag (NAME or NAME:ASSOC),
// the text after the assignment, how it is computed and what values it takes.
// The spec that parsed it owns it; every object whose variable follows it holds
// a shared reference (link/unlink keep the count the editors show), so that a
// re-parse never leaves an object pointing at a freed declaration.
class ZBVarSpec : public ZBObject {
public:
    enum E_Constraint {
        E_None = 0, E_Bool, E_Int, E_Float, E_Date, E_Duration, E_Location, E_Url, E_Path, E_Choice, E_Reference
    };

    ZBVarSpec();
    explicit ZBVarSpec(const std::string& tag, const std::string& spec = std::string());
    ZBVarSpec(const ZBVarSpec& other);
    ~ZBVarSpec() override;
    ZBVarSpec& operator=(const ZBVarSpec& other);
    bool operator==(const ZBVarSpec& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    const std::string& get_tag() const;
    void set_tag(const std::string& tag);
    // The part before ":" and the part after it (empty when there is none).
    std::string get_name() const;
    std::string get_assoc() const;
    const std::string& get_spec() const;
    void set_spec(const std::string& text);

    bool is_derived() const;
    void set_derived(bool value);
    bool is_prompt() const;
    void set_prompt(bool value);
    bool is_sysvalue() const;
    void set_sysvalue(bool value);
    bool is_auto() const;
    void set_auto(bool value);
    bool is_private() const;
    void set_private(bool value);

    int get_constraint() const;
    const std::string& get_constraint_param() const;
    void set_constraint(int type, const std::string& param);
    // Whether value is one the constraint allows; message says why not.
    bool check_value(const std::string& value, std::string& message) const;
    // Whether any value at all could meet the constraint (a choice with no
    // choices or a range whose low end is above its high end cannot).
    bool constraint_satisfiable(std::string& message) const;

    // True when its object spec sets something for the variable; a declaration that
    // does not may be overwritten by an inherited one.
    bool defined_in_spec() const;

    void link();
    void unlink();
    int get_reference_count() const;

    // The constraint words in number order; a word not known gives -1.
    static int str_to_constraint(const std::string& word);
    static std::string constraint_to_str(int type);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Tervalon
