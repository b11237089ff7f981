#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

// Codes of the parameter store, given out with the others at start-up.
extern int ZBErrC_ParamAmbiguous;
extern int ZBErrC_ParamInvalid;
extern int ZBErrC_ParamMissing;

// What every parameter has: a name, a description for the help page, its
// values (each with an optional tag and the source that set it), and whether
// it is mandatory, hidden or takes many values. A parameter may name an
// environment variable that gives its value when no other source does.
class ZBParamBase {
public:
    static const char* const C_Environment;
    static const char* const C_System;
    static const char* const C_CommandLine;
    static const char* const C_TagValueSeparator;

    struct Entry {
        std::string tag;
        std::string value;
        std::string source;
    };

    ZBParamBase(const std::string& name, const std::string& description, bool mandatory = false, bool hidden = false,
                bool multipleValues = false);
    ZBParamBase(const ZBParamBase& other);
    ZBParamBase& operator=(const ZBParamBase& other);
    virtual ~ZBParamBase();

    const std::string& get_name() const;
    const std::string& get_description() const;
    bool is_mandatory() const;
    bool is_hidden() const;
    bool has_multiple_values() const;
    virtual bool is_option() const { return false; }
    // Another name that means this parameter ("h" for "help").
    virtual bool answers_to(const std::string& name) const { return name == get_name(); }

    void set_environment(const std::string& variable);
    const std::string& get_environment() const;
    // Takes the environment's value when nothing else set one.
    void apply_environment();

    // A single-valued parameter keeps one untagged value; a tag on it is an error.
    int set_value(const std::string& value, const std::string& source);
    int set_tag_value(const std::string& tag, const std::string& value, const std::string& source);
    bool remove_tag(const std::string& tag);
    void clear_values();
    // Drops what one source set, before that source is read again.
    void clear_values_from(const std::string& source);

    bool is_set() const;
    int get_nvalues() const;
    std::string get_value(int n = 0) const;
    const Entry* get_entry(int n) const;
    const Entry* find_tag(const std::string& tag) const;
    const std::string& get_latest_source() const;

    virtual void dump(std::ostream& out, int indent) const;

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Tervalon
