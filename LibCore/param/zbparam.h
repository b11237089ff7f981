#pragma once

#include "LibCore/param/zbparamcmdline.h"
#include "LibCore/param/zbparamfile.h"
#include "LibCore/param/zbparamset.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// The program's settings: the declared command line, the ".cfg" files, and
// the "system values" that the rest of the system keeps in the user's file as
// lines "System=TAG=VALUE". Later sources win: files in the order added, then
// the command line. Reached through zbparam(); parsed once at start-up on the
// main thread, read from any thread after that.
class ZBParam {
public:
    static const char* const C_System;
    static const char* const C_TagValueSeparator;

    // What the caller should do after parse(): go on, or leave with status 0
    // (a standard option such as --help was served) or 1 (a command-line mistake,
    // already shown with the help text).
    enum E_ParseResult { E_ParseContinue = 0, E_ParseExitSuccess = 1, E_ParseExitFailure = 2 };

    ZBParam();
    ZBParam(int argc, char** argv, const std::string& program, const std::string& version, const std::string& description,
            const std::string& vendor, const std::string& authors, const std::string& buildDate,
            const std::string& releaseTag, const std::string& buildTag);
    virtual ~ZBParam();

    // The declared command line; one with the standard options exists from the start.
    ZBParamCmdLine& get_commandline();
    const ZBParamCmdLine& get_commandline() const;
    // Takes ownership.
    void set_cmdline(ZBParamCmdLine* cmdline);
    void set_manpg(const std::string& text);
    void set_exe_details(const std::string& argv0);
    void set_args(int argc, char** argv);

    // validate, files, command line (up to "-extra-args"), then the standard
    // options: ZBErrC_okShutdown after one of them. Messages go to out.
    int parse(std::ostream& out);
    int validate();
    int parse_standard(std::ostream& out);
    E_ParseResult get_parse_result() const;
    // -1 to go on, else the process's exit status.
    int get_exit_status() const;
    // The words after "-extra-args", left for the caller.
    const std::vector<std::string>& get_extra_args() const;
    void get_all_options(ZBParamSet& set) const;

    std::string get_value(const std::string& name, int n = 0) const;
    int get_nvalues(const std::string& name) const;
    bool is_set(const std::string& name) const;

    // The user's parameter file: "<config dir>/<program>.cfg".
    std::string default_user_config() const;
    // Adds a file and reads it at once. A damaged line is reported with its file
    // and line; the rest is used, and the file is not written until a value changes.
    int add_config_file(const std::string& file, bool userConfig = true);
    const std::string& get_user_config() const;
    int write_user_config();

    std::string get_system_value(const std::string& tag, const std::string& defaultValue = std::string()) const;
    int get_system_value(const std::string& tag, int defaultValue) const;
    int set_system_value(const std::string& tag, const std::string& value);
    int set_system_value(const std::string& tag, int value);
    bool is_system_value_set(const std::string& tag) const;

    // The external editor: the "editor" option, else EDITOR, else "vi".
    std::string get_editor() const;

    void display_usage(std::ostream& out) const;
    std::string get_usage() const;
    void display_manpg(std::ostream& out) const;
    void display_version(std::ostream& out) const;
    void display_tag(std::ostream& out) const;
    void display_release(std::ostream& out) const;

    const std::string& get_program_name() const;
    const std::string& get_exe_path() const;
    int argc() const;
    char** argv() const;
    std::vector<std::string> clone_argv() const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    ZBParamBase* system_param() const;
    ZBParamFile* user_file() const;
    void refresh_set();

    struct Impl;
    std::unique_ptr<Impl> impl;
};

ZBParam& zbparam();
// Replaces the singleton; takes ownership.
void set_zbparam(ZBParam* param);
bool has_zbparam();

} // namespace Tervalon
