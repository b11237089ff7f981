#include "LibDatabase/db/zbvarspec.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibObject/object/zbdump.h"

#include <cstdlib>
#include <cctype>
#include <cmath>
#include <vector>

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBVarSpec", &ZBVarSpec::create_zbobject);

const char* const G_Constraint[] = {"none", "bool", "int", "float", "date", "duration",
                                    "location", "url", "path", "choice", "reference"};
const int G_NConstraint = int(sizeof(G_Constraint) / sizeof(G_Constraint[0]));

bool parse_number(const std::string& text, double& out)
{
    std::string trimmed = text;
    while (!trimmed.empty() && std::isspace((unsigned char)trimmed.back()))
        trimmed.pop_back();
    size_t start = 0;
    while (start < trimmed.size() && std::isspace((unsigned char)trimmed[start]))
        ++start;
    if (start == trimmed.size())
        return false;
    char* end = nullptr;
    out = std::strtod(trimmed.c_str() + start, &end);
    return end && *end == '\0';
}

// A range parameter "LOW..HIGH"; either end may be missing.
bool parse_range(const std::string& param, double& low, double& high, bool& hasLow, bool& hasHigh)
{
    hasLow = hasHigh = false;
    size_t dots = param.find("..");
    if (dots == std::string::npos)
        return false;
    std::string a = param.substr(0, dots), b = param.substr(dots + 2);
    hasLow = parse_number(a, low);
    hasHigh = parse_number(b, high);
    return true;
}

std::vector<std::string> split_choices(const std::string& param)
{
    std::vector<std::string> out;
    std::string item;
    for (char c : param) {
        if (c == '|') {
            if (!item.empty())
                out.push_back(item);
            item.clear();
        } else {
            item += c;
        }
    }
    if (!item.empty())
        out.push_back(item);
    return out;
}
} // namespace

struct ZBVarSpec::Impl {
    std::string m_tag;
    std::string m_spec;
    bool m_isDerived = false;
    bool m_isPrompt = false;
    bool m_isSysValue = false;
    bool m_isAuto = false;
    bool m_isPrivate = false;
    int m_referenceCount = 0;
    int m_constraint = E_None;
    std::string m_constraintParam;
};

ZBVarSpec::ZBVarSpec() : impl(new Impl())
{
    ZBVarSpec::register_zbobject();
}

ZBVarSpec::ZBVarSpec(const std::string& tag, const std::string& spec) : ZBVarSpec()
{
    impl->m_tag = tag;
    impl->m_spec = spec;
}

// A copy is a new declaration: nobody links to it yet.
ZBVarSpec::ZBVarSpec(const ZBVarSpec& other) : ZBObject(other), impl(new Impl(*other.impl))
{
    impl->m_referenceCount = 0;
    ZBVarSpec::register_zbobject();
}

ZBVarSpec::~ZBVarSpec() = default;

ZBVarSpec& ZBVarSpec::operator=(const ZBVarSpec& other)
{
    if (this == &other)
        return *this;
    ZBObject::operator=(other);
    const int count = impl->m_referenceCount;
    *impl = *other.impl;
    impl->m_referenceCount = count;
    return *this;
}

bool ZBVarSpec::operator==(const ZBVarSpec& other) const
{
    const Impl& a = *impl;
    const Impl& b = *other.impl;
    return a.m_tag == b.m_tag && a.m_spec == b.m_spec && a.m_isDerived == b.m_isDerived && a.m_isPrompt == b.m_isPrompt
        && a.m_isSysValue == b.m_isSysValue && a.m_isAuto == b.m_isAuto && a.m_isPrivate == b.m_isPrivate
        && a.m_constraint == b.m_constraint && a.m_constraintParam == b.m_constraintParam && ZBObject::operator==(other);
}

void ZBVarSpec::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBVarSpec", out, indent);
    dump.add_entry("impl->m_tag", impl->m_tag);
    dump.add_entry("impl->m_spec", impl->m_spec);
    dump.add("impl->m_isDerived", impl->m_isDerived);
    dump.add("impl->m_isPrompt", impl->m_isPrompt);
    dump.add("impl->m_isSysValue", impl->m_isSysValue);
    dump.add("impl->m_isAuto", impl->m_isAuto);
    dump.add("impl->m_isPrivate", impl->m_isPrivate);
    dump.add("impl->m_referenceCount", impl->m_referenceCount);
    dump.add("impl->m_constraint", impl->m_constraint);
    dump.add_entry("impl->m_constraintParam", impl->m_constraintParam);
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBVarSpec::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_string(in, out, prefix, "T", impl->m_tag, true);
    serialise_string(in, out, prefix, "S", impl->m_spec, true);
    serialise_field<bool>(in, out, prefix, "D", impl->m_isDerived, false);
    serialise_field<bool>(in, out, prefix, "P", impl->m_isPrompt, false);
    serialise_field<bool>(in, out, prefix, "SV", impl->m_isSysValue, false);
    serialise_field<bool>(in, out, prefix, "A", impl->m_isAuto, false);
    serialise_field<bool>(in, out, prefix, "PR", impl->m_isPrivate, false);
    serialise_field<int>(in, out, prefix, "CT", impl->m_constraint, int(E_None));
    serialise_string(in, out, prefix, "CP", impl->m_constraintParam, true);
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBVarSpec::register_zbobject()
{
    register_objectname("ZBVarSpec", &ZBVarSpec::create_zbobject);
}

int ZBVarSpec::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBVarSpec>(out, from, "ZBVarSpec");
}

void ZBVarSpec::set_defaults(bool)
{
    const int count = impl->m_referenceCount;
    *impl = Impl();
    impl->m_referenceCount = count;
}

const std::string& ZBVarSpec::get_tag() const { return impl->m_tag; }
void ZBVarSpec::set_tag(const std::string& tag) { impl->m_tag = tag; }

std::string ZBVarSpec::get_name() const
{
    size_t colon = impl->m_tag.find(':');
    return colon == std::string::npos ? impl->m_tag : impl->m_tag.substr(0, colon);
}

std::string ZBVarSpec::get_assoc() const
{
    size_t colon = impl->m_tag.find(':');
    return colon == std::string::npos ? std::string() : impl->m_tag.substr(colon + 1);
}

const std::string& ZBVarSpec::get_spec() const { return impl->m_spec; }
void ZBVarSpec::set_spec(const std::string& text) { impl->m_spec = text; }
bool ZBVarSpec::is_derived() const { return impl->m_isDerived; }
void ZBVarSpec::set_derived(bool value) { impl->m_isDerived = value; }
bool ZBVarSpec::is_prompt() const { return impl->m_isPrompt; }
void ZBVarSpec::set_prompt(bool value) { impl->m_isPrompt = value; }
bool ZBVarSpec::is_sysvalue() const { return impl->m_isSysValue; }
void ZBVarSpec::set_sysvalue(bool value) { impl->m_isSysValue = value; }
bool ZBVarSpec::is_auto() const { return impl->m_isAuto; }
void ZBVarSpec::set_auto(bool value) { impl->m_isAuto = value; }
bool ZBVarSpec::is_private() const { return impl->m_isPrivate; }
void ZBVarSpec::set_private(bool value) { impl->m_isPrivate = value; }
int ZBVarSpec::get_constraint() const { return impl->m_constraint; }
const std::string& ZBVarSpec::get_constraint_param() const { return impl->m_constraintParam; }

void ZBVarSpec::set_constraint(int type, const std::string& param)
{
    impl->m_constraint = type;
    impl->m_constraintParam = param;
}

bool ZBVarSpec::constraint_satisfiable(std::string& message) const
{
    const std::string& param = impl->m_constraintParam;
    if (impl->m_constraint == E_Choice) {
        if (split_choices(param).empty()) {
            message = "A choice needs at least one value (\"A|B|C\").";
            return false;
        }
    } else if (impl->m_constraint == E_Int || impl->m_constraint == E_Float) {
        double low = 0, high = 0;
        bool hasLow = false, hasHigh = false;
        if (!param.empty() && !parse_range(param, low, high, hasLow, hasHigh)) {
            message = "A range should be of the form \"LOW..HIGH\".";
            return false;
        }
        if (hasLow && hasHigh && low > high) {
            message = "The range " + param + " holds no value.";
            return false;
        }
        if (impl->m_constraint == E_Int && hasLow && hasHigh && std::floor(low) != low && std::floor(high) != high
            && std::floor(low) == std::floor(high)) {
            message = "The range " + param + " holds no whole number.";
            return false;
        }
    } else if (impl->m_constraint == E_Reference) {
        // Checked against the database when the list is asked for.
    }
    return true;
}

bool ZBVarSpec::check_value(const std::string& value, std::string& message) const
{
    double number = 0;
    switch (impl->m_constraint) {
    case E_Bool:
        if (value != "true" && value != "false" && value != "1" && value != "0" && !value.empty()) {
            message = "\"" + value + "\" is not true or false.";
            return false;
        }
        return true;
    case E_Int:
    case E_Float: {
        if (value.empty())
            return true;
        if (!parse_number(value, number) || (impl->m_constraint == E_Int && std::floor(number) != number)) {
            message = "\"" + value + "\" is not a" + std::string(impl->m_constraint == E_Int ? " whole" : "") + " number.";
            return false;
        }
        double low = 0, high = 0;
        bool hasLow = false, hasHigh = false;
        if (parse_range(impl->m_constraintParam, low, high, hasLow, hasHigh)
            && ((hasLow && number < low) || (hasHigh && number > high))) {
            message = "\"" + value + "\" is outside " + impl->m_constraintParam + ".";
            return false;
        }
        return true;
    }
    case E_Choice: {
        if (value.empty())
            return true;
        for (const std::string& choice : split_choices(impl->m_constraintParam))
            if (choice == value)
                return true;
        message = "\"" + value + "\" is not one of " + impl->m_constraintParam + ".";
        return false;
    }
    default:
        return true;
    }
}

bool ZBVarSpec::defined_in_spec() const
{
    return !(impl->m_isSysValue && !impl->m_isPrompt && !impl->m_isDerived && impl->m_spec.empty());
}

void ZBVarSpec::link() { ++impl->m_referenceCount; }

void ZBVarSpec::unlink()
{
    if (impl->m_referenceCount > 0)
        --impl->m_referenceCount;
}

int ZBVarSpec::get_reference_count() const { return impl->m_referenceCount; }

int ZBVarSpec::str_to_constraint(const std::string& word)
{
    for (int i = 0; i < G_NConstraint; ++i)
        if (word == G_Constraint[i])
            return i;
    return -1;
}

std::string ZBVarSpec::constraint_to_str(int type)
{
    return type >= 0 && type < G_NConstraint ? G_Constraint[type] : std::string();
}

} // namespace Tervalon
