#include "LibCore/param/zbparambase.h"
#include "LibCore/error/zberror.h"

#include <cstdlib>
#include <ostream>

namespace Tervalon {

int ZBErrC_ParamAmbiguous = ZBError::allocate_code("ZBErrC_ParamAmbiguous", "Ambiguous parameter specification.");
int ZBErrC_ParamInvalid = ZBError::allocate_code("ZBErrC_ParamInvalid", "Invalid parameter specification.");
int ZBErrC_ParamMissing = ZBError::allocate_code("ZBErrC_ParamMissing", "Missing parameter.");

const char* const ZBParamBase::C_Environment = "Environment";
const char* const ZBParamBase::C_System = "System";
const char* const ZBParamBase::C_CommandLine = "Command Line";
const char* const ZBParamBase::C_TagValueSeparator = "=";

struct ZBParamBase::Impl {
    std::string m_name;
    std::string m_description;
    std::string m_latestSource;
    bool m_multipleValues = false;
    bool m_mandatory = false;
    bool m_hidden = false;
    std::string m_environment;
    std::vector<Entry> m_value;
};

ZBParamBase::ZBParamBase(const std::string& name, const std::string& description, bool mandatory, bool hidden,
                         bool multipleValues)
    : impl(new Impl)
{
    impl->m_name = name;
    impl->m_description = description;
    impl->m_mandatory = mandatory;
    impl->m_hidden = hidden;
    impl->m_multipleValues = multipleValues;
}

ZBParamBase::ZBParamBase(const ZBParamBase& other) : impl(new Impl(*other.impl)) {}

ZBParamBase& ZBParamBase::operator=(const ZBParamBase& other)
{
    *impl = *other.impl;
    return *this;
}

ZBParamBase::~ZBParamBase() = default;

const std::string& ZBParamBase::get_name() const { return impl->m_name; }
const std::string& ZBParamBase::get_description() const { return impl->m_description; }
bool ZBParamBase::is_mandatory() const { return impl->m_mandatory; }
bool ZBParamBase::is_hidden() const { return impl->m_hidden; }
bool ZBParamBase::has_multiple_values() const { return impl->m_multipleValues; }
void ZBParamBase::set_environment(const std::string& variable) { impl->m_environment = variable; }
const std::string& ZBParamBase::get_environment() const { return impl->m_environment; }
const std::string& ZBParamBase::get_latest_source() const { return impl->m_latestSource; }

void ZBParamBase::apply_environment()
{
    if (impl->m_environment.empty() || is_set())
        return;
    const char* value = std::getenv(impl->m_environment.c_str());
    if (value && *value)
        set_value(value, C_Environment);
}

int ZBParamBase::set_value(const std::string& value, const std::string& source)
{
    return set_tag_value(std::string(), value, source);
}

int ZBParamBase::set_tag_value(const std::string& tag, const std::string& value, const std::string& source)
{
    if (!impl->m_multipleValues) {
        if (!tag.empty())
            return zbwarning(ZBErrC_ParamInvalid, ZBLOC, "Attempting to set tag %s, value %s on single value param %s.",
                             tag.c_str(), value.c_str(), impl->m_name.c_str());
        impl->m_value.assign(1, Entry{tag, value, source});
    } else if (tag.empty()) {
        impl->m_value.push_back(Entry{tag, value, source});
    } else {
        Entry* found = nullptr;
        for (Entry& entry : impl->m_value)
            if (entry.tag == tag)
                found = &entry;
        if (found) {
            found->value = value;
            found->source = source;
        } else {
            impl->m_value.push_back(Entry{tag, value, source});
        }
    }
    impl->m_latestSource = source;
    return ZBErrC_ok;
}

bool ZBParamBase::remove_tag(const std::string& tag)
{
    for (auto it = impl->m_value.begin(); it != impl->m_value.end(); ++it)
        if (it->tag == tag) {
            impl->m_value.erase(it);
            return true;
        }
    return false;
}

void ZBParamBase::clear_values()
{
    impl->m_value.clear();
    impl->m_latestSource.clear();
}

void ZBParamBase::clear_values_from(const std::string& source)
{
    std::vector<Entry> kept;
    for (const Entry& entry : impl->m_value)
        if (entry.source != source)
            kept.push_back(entry);
    impl->m_value.swap(kept);
}

bool ZBParamBase::is_set() const
{
    return !impl->m_value.empty();
}

int ZBParamBase::get_nvalues() const
{
    return int(impl->m_value.size());
}

std::string ZBParamBase::get_value(int n) const
{
    return n >= 0 && n < int(impl->m_value.size()) ? impl->m_value[size_t(n)].value : std::string();
}

const ZBParamBase::Entry* ZBParamBase::get_entry(int n) const
{
    return n >= 0 && n < int(impl->m_value.size()) ? &impl->m_value[size_t(n)] : nullptr;
}

const ZBParamBase::Entry* ZBParamBase::find_tag(const std::string& tag) const
{
    for (const Entry& entry : impl->m_value)
        if (entry.tag == tag)
            return &entry;
    return nullptr;
}

void ZBParamBase::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "impl->m_name           : " << impl->m_name << "\n"
        << pad << "impl->m_description    : " << impl->m_description << "\n"
        << pad << "impl->m_latestSource   : " << impl->m_latestSource << "\n"
        << pad << "impl->m_multipleValues : " << impl->m_multipleValues << "\n"
        << pad << "impl->m_mandatory      : " << impl->m_mandatory << "\n"
        << pad << "impl->m_hidden         : " << impl->m_hidden << "\n";
    for (size_t i = 0; i < impl->m_value.size(); ++i)
        out << pad << "impl->m_value[" << i << "]       : " << impl->m_value[i].tag << C_TagValueSeparator
            << impl->m_value[i].value << " (" << impl->m_value[i].source << ")\n";
}

} // namespace Tervalon
