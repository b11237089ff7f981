#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbspecparser.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbsrlobjectarray.h"

#include <algorithm>
#include <ostream>
#include <regex>

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBObjectSpec", &ZBObjectSpec::create_zbobject);
const std::shared_ptr<ZBVarSpec> G_NoVar;
const std::string G_Empty;
} // namespace

const std::string ZBObjectSpec::C_ExportSpecSep(72, '#');

struct ZBObjectSpec::Impl {
    std::string m_name;
    std::vector<std::shared_ptr<ZBVarSpec>> m_varSpec;
    std::vector<std::string> m_inherit;
    bool m_baseOnly = false;
    bool m_defunct = false;
    std::string m_text;
    std::string m_fileName;
    int m_fileLine = -1;
    ZBPtrArray<ZBObjectSpecChild> m_child;
    std::vector<std::string> m_private;
    // Not stored: a spec read from a file counts as parsed until a parse fails.
    bool m_parsed = true;

    void copy_from(const Impl& other)
    {
        m_name = other.m_name;
        m_varSpec.clear();
        for (const std::shared_ptr<ZBVarSpec>& var : other.m_varSpec)
            m_varSpec.push_back(std::make_shared<ZBVarSpec>(*var));
        m_inherit = other.m_inherit;
        m_baseOnly = other.m_baseOnly;
        m_defunct = other.m_defunct;
        m_text = other.m_text;
        m_fileName = other.m_fileName;
        m_fileLine = other.m_fileLine;
        m_child = other.m_child;
        m_private = other.m_private;
        m_parsed = other.m_parsed;
    }
};

ZBObjectSpec::ZBObjectSpec() : impl(new Impl())
{
    ZBObjectSpec::register_zbobject();
}

ZBObjectSpec::ZBObjectSpec(const std::string& name, const std::string& text) : ZBObjectSpec()
{
    impl->m_name = name;
    impl->m_text = text;
    impl->m_parsed = false;
}

ZBObjectSpec::ZBObjectSpec(const ZBObjectSpec& other) : ZBDBObject(other), impl(new Impl())
{
    impl->copy_from(*other.impl);
    ZBObjectSpec::register_zbobject();
}

ZBObjectSpec::~ZBObjectSpec() = default;

ZBObjectSpec& ZBObjectSpec::operator=(const ZBObjectSpec& other)
{
    if (this == &other)
        return *this;
    ZBDBObject::operator=(other);
    impl->copy_from(*other.impl);
    return *this;
}

bool ZBObjectSpec::operator==(const ZBObjectSpec& other) const
{
    const Impl& a = *impl;
    const Impl& b = *other.impl;
    if (a.m_varSpec.size() != b.m_varSpec.size())
        return false;
    for (size_t i = 0; i < a.m_varSpec.size(); ++i)
        if (!(*a.m_varSpec[i] == *b.m_varSpec[i]))
            return false;
    return a.m_name == b.m_name && a.m_inherit == b.m_inherit && a.m_baseOnly == b.m_baseOnly
        && a.m_defunct == b.m_defunct && a.m_text == b.m_text && a.m_fileName == b.m_fileName
        && a.m_fileLine == b.m_fileLine && a.m_child == b.m_child && ZBDBObject::operator==(other);
}

void ZBObjectSpec::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBObjectSpec", out, indent);
    dump.add_entry("impl->m_name", impl->m_name);
    for (size_t i = 0; i < impl->m_varSpec.size(); ++i)
        dump.add_entry("impl->m_varSpec", impl->m_varSpec[i]->get_tag() + " = " + impl->m_varSpec[i]->get_spec(), int(i));
    for (size_t i = 0; i < impl->m_inherit.size(); ++i)
        dump.add_entry("impl->m_inherit", impl->m_inherit[i], int(i));
    dump.add("impl->m_baseOnly", impl->m_baseOnly);
    dump.add("impl->m_defunct", impl->m_defunct);
    dump.add_entry("impl->m_text", impl->m_text);
    dump.add_entry("impl->m_fileName", impl->m_fileName);
    dump.add("impl->m_fileLine", impl->m_fileLine);
    dump.add("impl->m_child", impl->m_child.size());
    dump.add("impl->m_parsed", impl->m_parsed);
    dump.write_heading("Base Class");
    dump.write();
    ZBDBObject::dump(out, indent + 1);
}

int ZBObjectSpec::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "N", impl->m_name, true);
    int result = ZBErrC_ok;
    {
        ZBPtrArray<ZBVarSpec> vars(in != nullptr);
        if (!in)
            for (const std::shared_ptr<ZBVarSpec>& var : impl->m_varSpec)
                vars.push_back(var.get());
        ZBSrlObjectArray<ZBVarSpec> srl(vars, version);
        result = serialise_object(in, out, prefix, "VS", srl);
        if (iszberr(result))
            return zbpass(ZBLOC);
        if (in) {
            impl->m_varSpec.clear();
            while (!vars.empty())
                impl->m_varSpec.emplace_back(vars.extract(0));
        }
    }
    serialise_string_vector(in, out, prefix, "IN", impl->m_inherit);
    serialise_field<bool>(in, out, prefix, "BO", impl->m_baseOnly, false);
    serialise_field<bool>(in, out, prefix, "DF", impl->m_defunct, false);
    serialise_string(in, out, prefix, "TX", impl->m_text, true);
    serialise_string(in, out, prefix, "FN", impl->m_fileName, true);
    serialise_field<int>(in, out, prefix, "FL", impl->m_fileLine, -1);
    ZBSrlObjectArray<ZBObjectSpecChild> children(impl->m_child, version);
    result = serialise_object(in, out, prefix, "CH", children);
    if (iszberr(result))
        return zbpass(ZBLOC);
    serialise_string_vector(in, out, prefix, "PV", impl->m_private);
    if (in)
        impl->m_parsed = true;
    return ZBDBObject::serialise(in, out, prefix, version);
}

void ZBObjectSpec::register_zbobject()
{
    register_objectname("ZBObjectSpec", &ZBObjectSpec::create_zbobject);
}

int ZBObjectSpec::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBObjectSpec>(out, from, "ZBObjectSpec");
}

void ZBObjectSpec::set_defaults(bool all)
{
    ZBDBObject::set_defaults(all);
    *impl = Impl();
}

std::string ZBObjectSpec::get_summary() const
{
    return "Spec " + impl->m_name;
}

int ZBObjectSpec::parse(int* errorLine)
{
    clear_variables();
    ZBSpecParser parser;
    const std::string& file = impl->m_fileName.empty() ? impl->m_name : impl->m_fileName;
    const int offset = impl->m_fileName.empty() || impl->m_fileLine < 1 ? 0 : impl->m_fileLine - 1;
    int result = parser.parse(impl->m_text, file, offset, *this, errorLine);
    impl->m_parsed = !iszbwarn(result);
    return result;
}

const std::string& ZBObjectSpec::get_name() const { return impl->m_name; }
void ZBObjectSpec::set_name(const std::string& name) { impl->m_name = name; }
const std::string& ZBObjectSpec::get_text() const { return impl->m_text; }
void ZBObjectSpec::set_text(const std::string& text) { impl->m_text = text; }

void ZBObjectSpec::set_file_info(const std::string& fileName, int line)
{
    impl->m_fileName = fileName;
    impl->m_fileLine = line;
}

const std::string& ZBObjectSpec::get_file_name() const { return impl->m_fileName; }
int ZBObjectSpec::get_file_line() const { return impl->m_fileLine; }
int ZBObjectSpec::get_nvarspecs() const { return int(impl->m_varSpec.size()); }

ZBVarSpec* ZBObjectSpec::get_varspec_by_index(int index) const
{
    return index >= 0 && index < get_nvarspecs() ? impl->m_varSpec[size_t(index)].get() : nullptr;
}

const std::shared_ptr<ZBVarSpec>& ZBObjectSpec::get_varspec_ptr(int index) const
{
    return index >= 0 && index < get_nvarspecs() ? impl->m_varSpec[size_t(index)] : G_NoVar;
}

ZBVarSpec* ZBObjectSpec::get_varspec_by_name(const std::string& tag) const
{
    return get_varspec_shared(tag).get();
}

std::shared_ptr<ZBVarSpec> ZBObjectSpec::get_varspec_shared(const std::string& tag) const
{
    for (const std::shared_ptr<ZBVarSpec>& var : impl->m_varSpec)
        if (var->get_tag() == tag)
            return var;
    return nullptr;
}

void ZBObjectSpec::add_varspec(const std::shared_ptr<ZBVarSpec>& var)
{
    if (!var)
        return;
    const std::string assoc = var->get_assoc();
    if (!assoc.empty())
        if (ZBVarSpec* main = get_varspec_by_name(var->get_name()))
            var->set_sysvalue(main->is_sysvalue());
    if (std::find(impl->m_private.begin(), impl->m_private.end(), var->get_tag()) != impl->m_private.end())
        var->set_private(true);
    for (std::shared_ptr<ZBVarSpec>& existing : impl->m_varSpec)
        if (existing->get_tag() == var->get_tag()) {
            existing = var;
            return;
        }
    impl->m_varSpec.push_back(var);
}

void ZBObjectSpec::clear_variables()
{
    impl->m_varSpec.clear();
    impl->m_inherit.clear();
    impl->m_child.clear();
    impl->m_private.clear();
    impl->m_baseOnly = false;
    impl->m_defunct = false;
    clear_scripts();
}

int ZBObjectSpec::get_nassoc(const std::string& name) const
{
    int n = 0;
    for (const std::shared_ptr<ZBVarSpec>& var : impl->m_varSpec)
        n += !var->get_assoc().empty() && var->get_name() == name;
    return n;
}

ZBVarSpec* ZBObjectSpec::get_assoc_by_index(const std::string& name, int index) const
{
    for (const std::shared_ptr<ZBVarSpec>& var : impl->m_varSpec)
        if (!var->get_assoc().empty() && var->get_name() == name && index-- == 0)
            return var.get();
    return nullptr;
}

void ZBObjectSpec::add_private(const std::string& tag)
{
    if (std::find(impl->m_private.begin(), impl->m_private.end(), tag) == impl->m_private.end())
        impl->m_private.push_back(tag);
    if (ZBVarSpec* var = get_varspec_by_name(tag))
        var->set_private(true);
}

int ZBObjectSpec::get_nchildren() const { return impl->m_child.size(); }

ZBObjectSpecChild* ZBObjectSpec::get_child_by_index(int index) const
{
    return index >= 0 && index < impl->m_child.size() ? impl->m_child[index] : nullptr;
}

ZBObjectSpecChild* ZBObjectSpec::get_child_by_name(const std::string& memberTag) const
{
    for (ZBObjectSpecChild* child : impl->m_child)
        if (child->m_memberTag == memberTag)
            return child;
    return nullptr;
}

void ZBObjectSpec::add_child(ZBObjectSpecChild* child)
{
    if (!child)
        return;
    for (int i = 0; i < impl->m_child.size(); ++i)
        if (impl->m_child[i]->m_memberTag == child->m_memberTag) {
            impl->m_child.remove(i);
            impl->m_child.insert(i, child);
            return;
        }
    impl->m_child.push_back(child);
}

int ZBObjectSpec::get_ninherited() const { return int(impl->m_inherit.size()); }

const std::string& ZBObjectSpec::get_inherited_by_index(int index) const
{
    return index >= 0 && index < get_ninherited() ? impl->m_inherit[size_t(index)] : G_Empty;
}

void ZBObjectSpec::add_inherited(const std::string& name)
{
    if (std::find(impl->m_inherit.begin(), impl->m_inherit.end(), name) == impl->m_inherit.end())
        impl->m_inherit.push_back(name);
}

const std::vector<std::string>& ZBObjectSpec::get_inherited() const { return impl->m_inherit; }

// Bases are applied in the written order after the spec's own text, so what is
// already here (this spec's own, or an earlier base's) wins.
void ZBObjectSpec::apply_inheritance(const ZBObjectSpec& other)
{
    for (const std::shared_ptr<ZBVarSpec>& var : other.impl->m_varSpec) {
        std::shared_ptr<ZBVarSpec> copy = std::make_shared<ZBVarSpec>(*var);
        bool found = false;
        for (std::shared_ptr<ZBVarSpec>& existing : impl->m_varSpec)
            if (existing->get_tag() == var->get_tag()) {
                found = true;
                if (!existing->defined_in_spec())
                    existing = copy;
                break;
            }
        if (!found)
            impl->m_varSpec.push_back(copy);
    }
    for (const std::string& tag : other.impl->m_private)
        add_private(tag);
    for (const ZBObjectSpecChild* child : other.impl->m_child)
        if (!get_child_by_name(child->m_memberTag))
            impl->m_child.push_back(new ZBObjectSpecChild(*child));
    for (int i = 0; i < other.get_nscripts(); ++i) {
        const ZBDBScript* script = other.get_script_no(i);
        if (!get_script(script->m_name))
            add_script(new ZBDBScript(*script));
    }
}

bool ZBObjectSpec::is_base_only() const { return impl->m_baseOnly; }
void ZBObjectSpec::set_baseonly(bool value) { impl->m_baseOnly = value; }
bool ZBObjectSpec::is_defunct() const { return impl->m_defunct; }
void ZBObjectSpec::set_defunct(bool value) { impl->m_defunct = value; }
bool ZBObjectSpec::is_parsed() const { return impl->m_parsed; }
void ZBObjectSpec::set_parsed(bool value) { impl->m_parsed = value; }

void ZBObjectSpec::take_parsed(const ZBObjectSpec& other)
{
    impl->m_varSpec = other.impl->m_varSpec;
    impl->m_inherit = other.impl->m_inherit;
    impl->m_child = other.impl->m_child;
    impl->m_private = other.impl->m_private;
    impl->m_baseOnly = other.impl->m_baseOnly;
    impl->m_defunct = other.impl->m_defunct;
    impl->m_parsed = true;
    clear_scripts();
    for (int i = 0; i < other.get_nscripts(); ++i)
        add_script(new ZBDBScript(*other.get_script_no(i)));
}

bool ZBObjectSpec::referenced(const std::string& name) const
{
    if (std::find(impl->m_inherit.begin(), impl->m_inherit.end(), name) != impl->m_inherit.end())
        return true;
    for (const ZBObjectSpecChild* child : impl->m_child)
        if (child->m_specName == name || child->m_defaultSpecName == name)
            return true;
    return false;
}

void ZBObjectSpec::handle_rename(const std::string& from, const std::string& to)
{
    if (!referenced(from))
        return;
    const std::regex inherits("(\\binherits\\s+)" + from + "\\b");
    const std::regex child("(\\$\\{\\s*|\\$\\{\\s*\\w+\\s*=\\s*)" + from + "\\b");
    impl->m_text = std::regex_replace(impl->m_text, inherits, "$1" + to);
    impl->m_text = std::regex_replace(impl->m_text, child, "$1" + to);
    for (std::string& name : impl->m_inherit)
        if (name == from)
            name = to;
    for (ZBObjectSpecChild* c : impl->m_child) {
        if (c->m_specName == from)
            c->m_specName = to;
        if (c->m_defaultSpecName == from)
            c->m_defaultSpecName = to;
    }
}

void ZBObjectSpec::export_spec(std::ostream& out) const
{
    out << C_ExportSpecSep << "{" << impl->m_name << "}\n" << impl->m_text;
    if (!impl->m_text.empty() && impl->m_text.back() != '\n')
        out << '\n';
}

} // namespace Tervalon
