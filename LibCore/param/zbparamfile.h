#pragma once

#include "LibCore/param/zbparamset.h"

#include <string>
#include <vector>

namespace Tervalon {

// One ".cfg" file of settings: lines "NAME=VALUE" or "NAME=TAG=VALUE"; lines not
// starting with a letter are comments. A backslash escapes a line feed ("\n"),
// a carriage return ("\r"), itself ("\\") and, in a tag, the separator ("\=").
// Rewriting keeps comments, unknown lines, lines that another source overrides
// for this run, and order, and goes through a ".tmp" file renamed over the old
// one, so a crash leaves either the old or the new file.
class ZBParamFile {
public:
    ZBParamFile(const std::string& name, bool userConfig);
    virtual ~ZBParamFile() = default;

    const std::string& get_name() const { return m_name; }
    bool is_user_config() const { return m_userConfig; }
    // A damaged line is reported with the file and line and skipped; the rest is
    // used. A missing file is not an error.
    int read_file(ZBParamSet& set);
    // Gives the lines kept for names unknown at reading to parameters declared
    // since, unless the command line or the environment has set them.
    void apply_pending(ZBParamSet& set);
    bool was_read() const { return m_read; }
    // Marks that a value this file holds has changed.
    void set_changed() { m_changed = true; }
    bool needs_write() const { return m_changed; }
    // Writes the values of the set that belong in this file.
    int rewrite_file(const ZBParamSet& set);
    int validate() const;

    // A value (or, with separatorToo, a tag) as a file line holds it, and back.
    static std::string escape(const std::string& text, bool separatorToo);
    static std::string unescape(const std::string& text);

    virtual void dump(std::ostream& out, int indent) const;

private:
    bool belongs_here(const std::string& source) const;

    std::string m_name;
    bool m_userConfig;
    bool m_read;
    bool m_changed;
    // Lines whose name no parameter had when the file was read.
    std::vector<std::string> m_pending;
};

} // namespace Tervalon
