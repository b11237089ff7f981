#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace Tervalon {

// The program's settings: the command line and the user's ".cfg" file, and the
// "system values" that the rest of the system keeps there as lines
// "System=TAG=VALUE". Reached through zbparam().
class ZBParam {
public:
    static const char* const C_System;
    static const char* const C_TagValueSeparator;

    ZBParam();
    ZBParam(int argc, char** argv, const std::string& program, const std::string& version, const std::string& description,
            const std::string& vendor, const std::string& authors, const std::string& buildDate,
            const std::string& releaseTag, const std::string& buildTag);
    virtual ~ZBParam();

    // The user's parameter file: "<config dir>/<program>.cfg".
    std::string default_user_config() const;
    // Sets and reads the user's file. A damaged line is reported with its file and
    // line; the rest is used, and the file is not written until a value changes.
    int add_config_file(const std::string& file);
    const std::string& get_user_config() const { return m_userConfig; }
    int write_user_config();

    std::string get_system_value(const std::string& tag, const std::string& defaultValue = std::string()) const;
    int get_system_value(const std::string& tag, int defaultValue) const;
    int set_system_value(const std::string& tag, const std::string& value);
    int set_system_value(const std::string& tag, int value);
    bool is_system_value_set(const std::string& tag) const;

    const std::string& get_program_name() const { return m_programName; }
    int argc() const { return m_argc; }
    char** argv() const { return m_argv; }

    virtual void dump(std::ostream& out, int indent) const;

private:
    int read_file(const std::string& file);

    int m_argc;
    char** m_argv;
    std::string m_programName;
    std::string m_programVersion;
    std::string m_programDesc;
    std::string m_programVendor;
    std::string m_programAuthors;
    std::string m_buildDate;
    std::string m_releaseTag;
    std::string m_buildTag;
    std::string m_userConfig;
    std::map<std::string, std::string> m_system;
    bool m_changed;
};

ZBParam& zbparam();
// Replaces the singleton; takes ownership.
void set_zbparam(ZBParam* param);
bool has_zbparam();

} // namespace Tervalon
