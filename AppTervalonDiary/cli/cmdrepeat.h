#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

class ZBDate;

// tervalon repeat RULE [--from ISO] [--count N]: prints a stored repeat rule
// in words, then the start and end of its next instances, one per line.
// Takes no data file.
class CmdRepeat : public CliCommand {
public:
    std::string name() const override { return "repeat"; }
    std::string usage() const override { return "repeat RULE [--from ISO] [--count N]"; }
    std::string summary() const override { return "Print a repeat rule in words and the instances it generates."; }
    bool writes() const override { return false; }
    int run(CliContext& context) override;

    // Reads "YYYY-MM-DDTHH:MM[:SS[.ffffff]]" with "Z" or "+HH:MM"/"-HH:MM";
    // the moment is kept in UTC. False for anything else.
    static bool parse_iso(const std::string& text, ZBDate& out);
};

} // namespace Tervalon
