#include "LibCore/param/zbparamcmdline.h"
#include "LibCore/error/zberror.h"

#include <ostream>
#include <set>

namespace Tervalon {

const char* const ZBParamCmdLine::C_SystemGroup = "System";
const char* const ZBParamCmdLine::C_SystemValuesGroup = "System Values";

ZBParamCmdLine::ZBParamCmdLine()
    : m_showHelpPage(false), m_showManPage(false), m_showVersion(false), m_showTag(false), m_showRelease(false)
{
    ZBParamOptionGroup* system = add_option_group(C_SystemGroup);
    system->add_option("man", "Output the program options in man-page format.");
    system->add_option("version", "Output the program version information.");
    system->add_option("tag", "Show the executable tag version.");
    system->add_option("release", "Show the executable release version.");
    system->add_option("help", "Display this help page.")->set_equivalent("h");
    // The external editor comes from EDITOR unless a file or the command line names one.
    system->add_option("editor", "The external editor (default: the EDITOR variable).", true)->set_environment("EDITOR");
    ZBParamOptionGroup* values = add_option_group(C_SystemValuesGroup, true);
    values->add_option(ZBParamBase::C_System, "Settings kept by the program.", true, false, true, true);
}

ZBParamCmdLine::~ZBParamCmdLine() = default;

ZBParamOptionGroup* ZBParamCmdLine::add_option_group(const std::string& title, bool hidden)
{
    if (ZBParamOptionGroup* existing = get_option_group(title))
        return existing;
    m_optionGroup.emplace_back(new ZBParamOptionGroup(title, hidden));
    return m_optionGroup.back().get();
}

ZBParamOptionGroup* ZBParamCmdLine::get_option_group(const std::string& title) const
{
    for (const auto& group : m_optionGroup)
        if (group->get_title() == title)
            return group.get();
    return nullptr;
}

ZBParamValue* ZBParamCmdLine::add_value(const std::string& name, const std::string& description, bool mandatory,
                                        bool multipleValues)
{
    return m_valueGroup.add_value(name, description, mandatory, multipleValues);
}

void ZBParamCmdLine::get_all_options(ZBParamSet& set) const
{
    set.clear();
    for (const auto& group : m_optionGroup)
        for (int i = 0; i < group->get_noptions(); ++i)
            set.add_param(group->get_option(i));
    for (int i = 0; i < m_valueGroup.get_nvalues(); ++i)
        set.add_param(m_valueGroup.get_value(i));
}

ZBParamBase* ZBParamCmdLine::get_param_by_name(const std::string& name) const
{
    for (const auto& group : m_optionGroup)
        if (ZBParamOption* option = group->find_option(name))
            return option;
    for (int i = 0; i < m_valueGroup.get_nvalues(); ++i)
        if (m_valueGroup.get_value(i)->answers_to(name))
            return m_valueGroup.get_value(i);
    return nullptr;
}

int ZBParamCmdLine::set_tag_value(const std::string& name, const std::string& tag, const std::string& value)
{
    ZBParamBase* param = get_param_by_name(name);
    if (!param)
        return zberror(ZBErrC_ParamMissing, ZBLOC, "Missing parameter.");
    return param->set_tag_value(tag, value, ZBParamBase::C_CommandLine);
}

int ZBParamCmdLine::validate() const
{
    std::set<std::string> names;
    for (const auto& group : m_optionGroup)
        for (int i = 0; i < group->get_noptions(); ++i) {
            const ZBParamOption* option = group->get_option(i);
            if (option->get_name().empty())
                return zberror(ZBErrC_ParamInvalid, ZBLOC, "Invalid parameter specification.");
            for (const std::string& name : {option->get_name(), option->get_equivalent()})
                if (!name.empty() && !names.insert(name).second)
                    return zberror(ZBErrC_ParamAmbiguous, ZBLOC, "Ambiguous parameter specification.");
        }
    int optional = 0;
    for (int i = 0; i < m_valueGroup.get_nvalues(); ++i) {
        const ZBParamValue* value = m_valueGroup.get_value(i);
        if (value->get_name().empty())
            return zberror(ZBErrC_ParamInvalid, ZBLOC, "Invalid parameter specification.");
        if (!names.insert(value->get_name()).second)
            return zberror(ZBErrC_ParamAmbiguous, ZBLOC, "Ambiguous parameter specification.");
        if (!value->is_mandatory())
            ++optional;
        // Only the last value may take the rest of the words.
        if (value->has_multiple_values() && i + 1 < m_valueGroup.get_nvalues())
            return zberror(ZBErrC_ParamInvalid, ZBLOC, "Greater than 1 un-flagged value group");
    }
    if (optional > 1)
        return zberror(ZBErrC_ParamInvalid, ZBLOC, "Greater than 1 optional values.");
    return ZBErrC_ok;
}

int ZBParamCmdLine::parse_cmdline(const std::vector<std::string>& args, ZBParamSet& set)
{
    std::vector<ZBParamSet::Assignment> gathered;
    std::vector<std::string> words;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg.size() < 2 || arg[0] != '-') {
            words.push_back(arg);
            continue;
        }
        std::string name = arg.substr(arg[1] == '-' ? 2 : 1);
        std::string value;
        bool hasValue = false;
        size_t equals = name.find('=');
        if (equals != std::string::npos) {
            value = name.substr(equals + 1);
            name = name.substr(0, equals);
            hasValue = true;
        }
        ZBParamBase* param = set.get_param_by_name(name);
        ZBParamOption* option = param && param->is_option() ? static_cast<ZBParamOption*>(param) : nullptr;
        if (!option || option->get_name() == ZBParamBase::C_System)
            return zberror(ZBErrC_ParamInvalid, ZBLOC, "Invalid option %s", arg.c_str());
        if (option->takes_value() && !hasValue) {
            if (i + 1 >= args.size())
                return zberror(ZBErrC_ParamInvalid, ZBLOC, "Option %s requires a value", arg.c_str());
            value = args[++i];
        } else if (!option->takes_value()) {
            if (hasValue)
                return zberror(ZBErrC_ParamInvalid, ZBLOC, "Invalid option %s", arg.c_str());
            value = option->get_option_value();
        }
        gathered.push_back({option->get_name(), std::string(), value});
    }
    // Un-flagged words go to the declared values in order; the last may take many.
    int next = 0;
    for (const std::string& word : words) {
        if (next >= m_valueGroup.get_nvalues())
            return zberror(ZBErrC_ParamInvalid, ZBLOC, "Too many parameters (starting from %s).", word.c_str());
        ZBParamValue* value = m_valueGroup.get_value(next);
        gathered.push_back({value->get_name(), std::string(), word});
        if (!value->has_multiple_values())
            ++next;
    }
    for (int i = 0; i < m_valueGroup.get_nvalues(); ++i) {
        ZBParamValue* value = m_valueGroup.get_value(i);
        if (!value->is_mandatory())
            continue;
        bool given = value->is_set();
        for (const auto& a : gathered)
            given = given || a.name == value->get_name();
        if (!given)
            return zberror(ZBErrC_ParamMissing, ZBLOC, "Too few parameters (missing %s).", value->get_name().c_str());
    }
    int result = set.assign_values(gathered, ZBParamBase::C_CommandLine);
    if (iszbwarn(result))
        return result;
    for (const auto& group : m_optionGroup)
        for (int i = 0; i < group->get_noptions(); ++i) {
            ZBParamOption* option = group->get_option(i);
            if (option->is_mandatory() && !option->is_set())
                return zberror(ZBErrC_ParamMissing, ZBLOC, "The %s option must have a value supplied",
                               option->get_name().c_str());
        }
    auto given = [this](const char* name) {
        ZBParamBase* param = get_param_by_name(name);
        return param && param->is_set() && param->get_latest_source() == ZBParamBase::C_CommandLine;
    };
    m_showManPage = given("man");
    m_showHelpPage = given("help");
    m_showVersion = given("version");
    m_showTag = given("tag");
    m_showRelease = given("release");
    return ZBErrC_ok;
}

void ZBParamCmdLine::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBParamCmdLine\n"
        << pad << "    m_showHelpPage : " << m_showHelpPage << "\n"
        << pad << "    m_showManPage  : " << m_showManPage << "\n"
        << pad << "    m_showVersion  : " << m_showVersion << "\n";
    m_valueGroup.dump(out, indent + 1);
    for (const auto& group : m_optionGroup)
        group->dump(out, indent + 1);
}

} // namespace Tervalon
