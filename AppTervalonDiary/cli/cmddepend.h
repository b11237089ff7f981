#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"

namespace Tervalon {

// tervalon depend / undepend: makes an entry wait for another, named by id or
// by a title with its keywords ("[LEVEL]", "[PARTIAL]", "[BLOCK]", "[ID=n]"),
// or takes that back. A dependency that names nothing or closes a loop is
// refused and the file is left as it was.
class CmdDepend : public CliFileCommand {
public:
    explicit CmdDepend(bool add) : m_add(add) {}
    std::string name() const override { return m_add ? "depend" : "undepend"; }
    std::string usage() const override { return name() + " FILE ID ON"; }
    std::string summary() const override
    {
        return m_add ? "Make entry ID wait for ON: an id, or a title with [LEVEL], [PARTIAL], [BLOCK] or [ID=n]."
                     : "Take back a dependency of entry ID on ON, as it was given.";
    }
    bool writes() const override { return true; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 2; }
    int max_args() const override { return 2; }

private:
    bool m_add;
};

} // namespace Tervalon
