#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

namespace Tervalon {

class ZBDate;

// tervalon date [--now ISO] [--style day|month|year] TEXT...: reads each text
// as date text, relative to a fixed now, and prints its moment in ISO 8601
// (UTC) and in the locale's long form. No data file.
class CmdDate : public CliCommand {
public:
    std::string name() const override { return "date"; }
    std::string usage() const override { return "date [--now ISO] [--style day|month|year] TEXT..."; }
    std::string summary() const override
    {
        return "Read dates and date expressions (\"now +-1 Week\") and print each moment in UTC and in full.";
    }
    bool writes() const override { return false; }
    int run(CliContext& context) override;

    // "2026-03-02T08:00:00Z", with optional ".uuuuuu" and "+hh:mm" for Z; false if not that form.
    static bool read_iso(const std::string& text, ZBDate& date);
};

} // namespace Tervalon
