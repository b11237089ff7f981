#pragma once

#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbvarspec.h"
#include "LibDatabase/db/zbobjectspecchild.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// One object spec: the type of the objects that name it. The user edits its
// text; parsing fills the variable declarations, children, inherited names and
// scripts. The database owns specs as objects under its "OS" container and
// resolves inheritance between them.
class ZBObjectSpec : public ZBDBObject {
public:
    // The line that opens each definition of a ".zbo" file: 72 "#".
    static const std::string C_ExportSpecSep;

    ZBObjectSpec();
    explicit ZBObjectSpec(const std::string& name, const std::string& text = std::string());
    ZBObjectSpec(const ZBObjectSpec& other);
    ~ZBObjectSpec() override;
    ZBObjectSpec& operator=(const ZBObjectSpec& other);
    bool operator==(const ZBObjectSpec& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    bool uses_spec() const override { return false; }
    std::string get_summary() const override;

    // Parses the text into this spec (after clear_variables). errorLine gets the
    // line of a fault, in the file the spec came from when it has one.
    int parse(int* errorLine = nullptr);

    const std::string& get_name() const;
    void set_name(const std::string& name);
    const std::string& get_text() const;
    void set_text(const std::string& text);
    // Where the text came from, for messages; the line is that of its first line.
    void set_file_info(const std::string& fileName, int line);
    const std::string& get_file_name() const;
    int get_file_line() const;

    int get_nvarspecs() const;
    ZBVarSpec* get_varspec_by_index(int index) const;
    const std::shared_ptr<ZBVarSpec>& get_varspec_ptr(int index) const;
    ZBVarSpec* get_varspec_by_name(const std::string& tag) const;
    std::shared_ptr<ZBVarSpec> get_varspec_shared(const std::string& tag) const;
    // Replaces a declaration of the same tag; an associated tag takes the
    // system-value flag of its main variable.
    void add_varspec(const std::shared_ptr<ZBVarSpec>& var);
    // Empties everything parsing fills, leaving name, text and file.
    void clear_variables();
    // Declarations NAME:ASSOC of one NAME.
    int get_nassoc(const std::string& name) const;
    ZBVarSpec* get_assoc_by_index(const std::string& name, int index) const;
    // Marks a variable private, now and when it comes by inheritance.
    void add_private(const std::string& tag);

    int get_nchildren() const;
    ZBObjectSpecChild* get_child_by_index(int index) const;
    ZBObjectSpecChild* get_child_by_name(const std::string& memberTag) const;
    // Takes ownership; replaces a child of the same member tag.
    void add_child(ZBObjectSpecChild* child);

    int get_ninherited() const;
    const std::string& get_inherited_by_index(int index) const;
    void add_inherited(const std::string& name);
    const std::vector<std::string>& get_inherited() const;
    // Takes from a base what this spec does not define itself.
    void apply_inheritance(const ZBObjectSpec& other);

    bool is_base_only() const;
    void set_baseonly(bool value);
    bool is_defunct() const;
    void set_defunct(bool value);
    // Whether the parse of the present text succeeded; a failed spec keeps the
    // declarations of its last good parse.
    bool is_parsed() const;
    void set_parsed(bool value);
    // Takes the results of a parse from other, keeping identity and text.
    void take_parsed(const ZBObjectSpec& other);

    // Whether the text names spec name (inherits it or holds children of it).
    bool referenced(const std::string& name) const;
    // Follows a spec's rename through the text and the parsed names.
    void handle_rename(const std::string& from, const std::string& to);
    // Writes the spec as a definition of a ".zbo" file.
    void export_spec(std::ostream& out) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Tervalon
