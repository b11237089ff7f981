#include "LibCore/param/zbparam.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparamerrhandler.h"

#include <QStandardPaths>
#include <QString>

#include <cstdlib>
#include <iomanip>
#include <memory>
#include <mutex>
#include <ostream>
#include <sstream>

namespace Tervalon {

const char* const ZBParam::C_System = ZBParamBase::C_System;
const char* const ZBParam::C_TagValueSeparator = ZBParamBase::C_TagValueSeparator;

namespace {
std::unique_ptr<ZBParam>& param_singleton()
{
    static std::unique_ptr<ZBParam> param;
    return param;
}
} // namespace

struct ZBParam::Impl {
    int m_argc = 0;
    char** m_argv = nullptr;
    std::string m_exePath;
    std::string m_exeName;
    std::string m_programName;
    std::string m_programVersion;
    std::string m_programDesc;
    std::string m_programVendor;
    std::string m_programAuthors;
    std::string m_buildDate;
    std::string m_releaseTag;
    std::string m_buildTag;
    std::string m_manPage;
    std::unique_ptr<ZBParamCmdLine> m_params;
    std::vector<std::unique_ptr<ZBParamFile>> m_configFile;
    ZBParamSet m_set;
    std::vector<std::string> m_extraArgs;
    E_ParseResult m_parseResult = E_ParseContinue;
    mutable std::recursive_mutex m_mutex;
};

ZBParam::ZBParam() : impl(new Impl)
{
    impl->m_programName = "TervalonDiary";
    impl->m_exeName = impl->m_programName;
    impl->m_params.reset(new ZBParamCmdLine());
    refresh_set();
}

ZBParam::ZBParam(int argc, char** argv, const std::string& program, const std::string& version,
                 const std::string& description, const std::string& vendor, const std::string& authors,
                 const std::string& buildDate, const std::string& releaseTag, const std::string& buildTag)
    : ZBParam()
{
    impl->m_programName = program;
    impl->m_exeName = program;
    impl->m_programVersion = version;
    impl->m_programDesc = description;
    impl->m_programVendor = vendor;
    impl->m_programAuthors = authors;
    impl->m_buildDate = buildDate;
    impl->m_releaseTag = releaseTag;
    impl->m_buildTag = buildTag;
    set_args(argc, argv);
}

ZBParam::~ZBParam() = default;

void ZBParam::set_args(int argc, char** argv)
{
    impl->m_argc = argc;
    impl->m_argv = argv;
    if (argc > 0 && argv && argv[0])
        set_exe_details(argv[0]);
}

ZBParamCmdLine& ZBParam::get_commandline()
{
    return *impl->m_params;
}

const ZBParamCmdLine& ZBParam::get_commandline() const
{
    return *impl->m_params;
}

void ZBParam::set_cmdline(ZBParamCmdLine* cmdline)
{
    if (!cmdline)
        return;
    impl->m_params.reset(cmdline);
    refresh_set();
    // Values already read from files belong to the new declarations too.
    for (auto& file : impl->m_configFile)
        file->read_file(impl->m_set);
}

void ZBParam::refresh_set()
{
    impl->m_params->get_all_options(impl->m_set);
    for (auto& file : impl->m_configFile)
        file->apply_pending(impl->m_set);
}

void ZBParam::set_manpg(const std::string& text)
{
    impl->m_manPage = text;
}

void ZBParam::set_exe_details(const std::string& argv0)
{
    impl->m_exePath = argv0;
    std::string name = argv0.substr(argv0.find_last_of('/') == std::string::npos ? 0 : argv0.find_last_of('/') + 1);
    if (name.size() > 4 && name.compare(name.size() - 4, 4, ".exe") == 0)
        name.resize(name.size() - 4);
    impl->m_exeName = name;
    if (impl->m_programName.empty())
        impl->m_programName = name;
}

int ZBParam::validate()
{
    return impl->m_params->validate();
}

int ZBParam::parse(std::ostream& out)
{
    impl->m_parseResult = E_ParseContinue;
    impl->m_extraArgs.clear();
    int result = validate();
    if (iszbwarn(result)) {
        impl->m_parseResult = E_ParseExitFailure;
        return result;
    }
    refresh_set();
    for (auto& file : impl->m_configFile)
        if (!file->was_read())
            file->read_file(impl->m_set);
    std::vector<std::string> args;
    for (int i = 1; i < impl->m_argc; ++i) {
        std::string arg = impl->m_argv[i] ? impl->m_argv[i] : "";
        if (arg == "-extra-args" || arg == "--extra-args") {
            for (int j = i + 1; j < impl->m_argc; ++j)
                impl->m_extraArgs.push_back(impl->m_argv[j] ? impl->m_argv[j] : "");
            break;
        }
        args.push_back(arg);
    }
    for (int i = 0; i < impl->m_set.get_nparameters(); ++i)
        impl->m_set.get_param_by_index(i)->clear_values_from(ZBParamBase::C_CommandLine);
    ZBParamErrHandler handler(&out, get_usage());
    get_zberror().add_handler(&handler);
    result = impl->m_params->parse_cmdline(args, impl->m_set);
    get_zberror().remove_handler(&handler);
    if (iszbwarn(result)) {
        impl->m_parseResult = E_ParseExitFailure;
        return result;
    }
    for (int i = 0; i < impl->m_set.get_nparameters(); ++i)
        impl->m_set.get_param_by_index(i)->apply_environment();
    result = parse_standard(out);
    if (result == ZBErrC_okShutdown)
        impl->m_parseResult = E_ParseExitSuccess;
    return result;
}

int ZBParam::parse_standard(std::ostream& out)
{
    const ZBParamCmdLine& cmd = *impl->m_params;
    if (cmd.show_man_page())
        display_manpg(out);
    else if (cmd.show_help_page())
        display_usage(out);
    else if (cmd.show_version())
        display_version(out);
    else if (cmd.show_tag())
        display_tag(out);
    else if (cmd.show_release())
        display_release(out);
    else
        return ZBErrC_ok;
    return ZBErrC_okShutdown;
}

ZBParam::E_ParseResult ZBParam::get_parse_result() const
{
    return impl->m_parseResult;
}

int ZBParam::get_exit_status() const
{
    switch (impl->m_parseResult) {
    case E_ParseExitSuccess: return 0;
    case E_ParseExitFailure: return 1;
    default: return -1;
    }
}

const std::vector<std::string>& ZBParam::get_extra_args() const
{
    return impl->m_extraArgs;
}

void ZBParam::get_all_options(ZBParamSet& set) const
{
    impl->m_params->get_all_options(set);
}

std::string ZBParam::get_value(const std::string& name, int n) const
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    const ZBParamBase* param = impl->m_params->get_param_by_name(name);
    return param ? param->get_value(n) : std::string();
}

int ZBParam::get_nvalues(const std::string& name) const
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    const ZBParamBase* param = impl->m_params->get_param_by_name(name);
    return param ? param->get_nvalues() : 0;
}

bool ZBParam::is_set(const std::string& name) const
{
    return get_nvalues(name) > 0;
}

std::string ZBParam::default_user_config() const
{
    QString dir = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    return (dir + "/" + QString::fromStdString(impl->m_programName) + ".cfg").toStdString();
}

int ZBParam::add_config_file(const std::string& file, bool userConfig)
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    // Options may have been declared since the last look.
    refresh_set();
    for (auto& existing : impl->m_configFile)
        if (existing->get_name() == file)
            return existing->read_file(impl->m_set);
    impl->m_configFile.emplace_back(new ZBParamFile(file, userConfig));
    return impl->m_configFile.back()->read_file(impl->m_set);
}

ZBParamFile* ZBParam::user_file() const
{
    for (auto it = impl->m_configFile.rbegin(); it != impl->m_configFile.rend(); ++it)
        if ((*it)->is_user_config())
            return it->get();
    return nullptr;
}

const std::string& ZBParam::get_user_config() const
{
    static const std::string none;
    ZBParamFile* file = user_file();
    return file ? file->get_name() : none;
}

int ZBParam::write_user_config()
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    ZBParamFile* file = user_file();
    if (!file) {
        // Settings still live for this run; only the file is missing.
        zblog(ZBErrC_FileName, ZBLOC, "No user config file set.");
        return ZBErrC_ok;
    }
    if (!file->needs_write())
        return ZBErrC_ok;
    refresh_set();
    int result = file->rewrite_file(impl->m_set);
    return iszbwarn(result) ? zbpass(ZBLOC) : result;
}

ZBParamBase* ZBParam::system_param() const
{
    return impl->m_set.get_param_by_name(C_System);
}

std::string ZBParam::get_system_value(const std::string& tag, const std::string& defaultValue) const
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    const ZBParamBase* param = system_param();
    const ZBParamBase::Entry* entry = param ? param->find_tag(tag) : nullptr;
    return entry ? entry->value : defaultValue;
}

int ZBParam::get_system_value(const std::string& tag, int defaultValue) const
{
    std::string text = get_system_value(tag, std::string());
    if (text.empty())
        return defaultValue;
    char* end = nullptr;
    long value = std::strtol(text.c_str(), &end, 10);
    return end == text.c_str() ? defaultValue : int(value);
}

int ZBParam::set_system_value(const std::string& tag, const std::string& value)
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    ZBParamBase* param = system_param();
    if (!param)
        return zberror(ZBErrC_ParamMissing, ZBLOC, "Could not get the system parameters.");
    const ZBParamBase::Entry* entry = param->find_tag(tag);
    if (entry && entry->value == value)
        return ZBErrC_ok;
    param->set_tag_value(tag, value, C_System);
    if (ZBParamFile* file = user_file())
        file->set_changed();
    return write_user_config();
}

int ZBParam::set_system_value(const std::string& tag, int value)
{
    return set_system_value(tag, std::to_string(value));
}

bool ZBParam::is_system_value_set(const std::string& tag) const
{
    std::lock_guard<std::recursive_mutex> lock(impl->m_mutex);
    const ZBParamBase* param = system_param();
    return param && param->find_tag(tag);
}

std::string ZBParam::get_editor() const
{
    std::string editor = get_value("editor");
    if (editor.empty()) {
        const char* env = std::getenv("EDITOR");
        editor = env && *env ? env : "vi";
    }
    return editor;
}

namespace {

std::string option_label(const ZBParamOption& option)
{
    std::string label = "--" + option.get_name();
    if (option.takes_value())
        label += " ARG";
    if (option.is_mandatory())
        label += " (required)";
    return label;
}

std::string synopsis_values(const ZBParamValueGroup& values)
{
    std::string text;
    for (int i = 0; i < values.get_nvalues(); ++i) {
        const ZBParamValue* value = values.get_value(i);
        std::string name = value->get_name() + (value->has_multiple_values() ? "..." : "");
        text += value->is_mandatory() ? " <" + name + ">" : " [" + name + "]";
    }
    return text;
}

} // namespace

std::string ZBParam::get_usage() const
{
    std::ostringstream out;
    display_usage(out);
    return out.str();
}

void ZBParam::display_usage(std::ostream& out) const
{
    const ZBParamCmdLine& cmd = *impl->m_params;
    out << "Usage: " << impl->m_exeName << " [options]" << synopsis_values(cmd.get_value_group()) << "\n";
    if (!impl->m_programDesc.empty())
        out << impl->m_programDesc << "\n";
    const ZBParamValueGroup& values = cmd.get_value_group();
    if (values.get_nvalues() > 0) {
        out << "\nValues:\n";
        for (int i = 0; i < values.get_nvalues(); ++i) {
            const ZBParamValue* value = values.get_value(i);
            std::string label = value->get_name() + (value->is_mandatory() ? " (required)" : "");
            out << "  " << std::left << std::setw(24) << label << " " << value->get_description() << "\n";
        }
    }
    for (int g = 0; g < cmd.get_ngroups(); ++g) {
        const ZBParamOptionGroup* group = cmd.get_group(g);
        if (group->is_hidden())
            continue;
        out << "\n" << group->get_title() << " options:\n";
        for (int i = 0; i < group->get_noptions(); ++i) {
            const ZBParamOption* option = group->get_option(i);
            if (option->is_hidden())
                continue;
            out << "  " << std::left << std::setw(24) << option_label(*option) << " " << option->get_description() << "\n";
        }
    }
    out << "\nAn argument -extra-args ends the options; the words after it are passed on.\n";
}

void ZBParam::display_manpg(std::ostream& out) const
{
    const ZBParamCmdLine& cmd = *impl->m_params;
    out << ".TH " << impl->m_exeName << " 1 \"" << impl->m_buildDate << "\" \"" << impl->m_programVersion << "\"\n";
    out << ".SH NAME\n" << impl->m_exeName << " \\- " << impl->m_programDesc << "\n";
    out << ".SH SYNOPSIS\n.B " << impl->m_exeName << "\n[options]" << synopsis_values(cmd.get_value_group()) << "\n";
    out << ".SH DESCRIPTION\n" << (impl->m_manPage.empty() ? impl->m_programDesc : impl->m_manPage) << "\n";
    for (int g = 0; g < cmd.get_ngroups(); ++g) {
        const ZBParamOptionGroup* group = cmd.get_group(g);
        if (group->is_hidden())
            continue;
        out << ".SS " << group->get_title() << " options:\n";
        for (int i = 0; i < group->get_noptions(); ++i) {
            const ZBParamOption* option = group->get_option(i);
            if (!option->is_hidden())
                out << ".TP\n.B " << option_label(*option) << "\n" << option->get_description() << "\n";
        }
    }
    out << ".SH FILES\n" << default_user_config() << "\n";
    out << ".SH AUTHORS\nWritten by " << impl->m_programAuthors << ".\n";
    out << ".SH COPYRIGHT\nCopyright (c) " << impl->m_programVendor << "\n";
}

void ZBParam::display_version(std::ostream& out) const
{
    out << impl->m_programName << " " << impl->m_programVersion << "\n"
        << "  Build Tag:  " << impl->m_buildTag << "\n"
        << "  Build Date: " << impl->m_buildDate << "\n";
}

void ZBParam::display_tag(std::ostream& out) const
{
    out << impl->m_buildTag << "\n";
}

void ZBParam::display_release(std::ostream& out) const
{
    out << impl->m_releaseTag << "\n";
}

const std::string& ZBParam::get_program_name() const
{
    return impl->m_programName;
}

const std::string& ZBParam::get_exe_path() const
{
    return impl->m_exePath;
}

int ZBParam::argc() const
{
    return impl->m_argc;
}

char** ZBParam::argv() const
{
    return impl->m_argv;
}

std::vector<std::string> ZBParam::clone_argv() const
{
    std::vector<std::string> args;
    for (int i = 0; i < impl->m_argc; ++i)
        args.push_back(impl->m_argv[i] ? impl->m_argv[i] : "");
    return args;
}

void ZBParam::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBParam\n" << pad << "    impl->m_argc           : " << impl->m_argc << "\n";
    for (int i = 0; i < impl->m_argc; ++i)
        out << pad << "    impl->m_argv[" << i << "]        : " << (impl->m_argv[i] ? impl->m_argv[i] : "") << "\n";
    out << pad << "    impl->m_exePath        : " << impl->m_exePath << "\n"
        << pad << "    impl->m_programName    : " << impl->m_programName << "\n"
        << pad << "    impl->m_programVersion : " << impl->m_programVersion << "\n"
        << pad << "    impl->m_programDesc    : " << impl->m_programDesc << "\n"
        << pad << "    impl->m_programVendor  : " << impl->m_programVendor << "\n"
        << pad << "    impl->m_programAuthors : " << impl->m_programAuthors << "\n"
        << pad << "    impl->m_buildDate      : " << impl->m_buildDate << "\n"
        << pad << "    impl->m_releaseTag     : " << impl->m_releaseTag << "\n"
        << pad << "    impl->m_buildTag       : " << impl->m_buildTag << "\n"
        << pad << "    impl->m_manPage        : " << impl->m_manPage << "\n";
    impl->m_params->dump(out, indent + 1);
    for (const auto& file : impl->m_configFile)
        file->dump(out, indent + 1);
}

ZBParam& zbparam()
{
    std::unique_ptr<ZBParam>& param = param_singleton();
    if (!param)
        param.reset(new ZBParam());
    return *param;
}

void set_zbparam(ZBParam* param)
{
    param_singleton().reset(param);
}

bool has_zbparam()
{
    return param_singleton() != nullptr;
}

} // namespace Tervalon
