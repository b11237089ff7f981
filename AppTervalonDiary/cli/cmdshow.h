#pragma once

#include "AppTervalonDiary/cli/clifilecommand.h"
#include "AppTervalonDiary/cli/clioptions.h"

#include <set>

namespace Tervalon {

class Diary;
class ZBMarkupPage;

// tervalon show: the details page of one entry after a full recalculation,
// as plain text or HTML. Nothing is saved.
class CmdShow : public CliFileCommand {
public:
    // What the display commands share: they take out "--html", "--text" and
    // "--debug" (which take no value), read the rest as options, recalculate
    // with the clock at "--now", and write a page through a renderer.
    struct PageOptions {
        bool html = false;
        bool debug = false;
        CliOptions options;
    };
    static bool parse_page(const std::vector<std::string>& args, const std::set<std::string>& known, bool allowText,
                           PageOptions& out, std::string& error);
    static int render_page(CliContext& context, const ZBMarkupPage& page, bool html);
    // The resource named by "--resource", or -1 for none; a wrong name fails.
    static int read_resource(const Diary& diary, const CliOptions& options, int& out);

    std::string name() const override { return "show"; }
    std::string usage() const override { return "show FILE ID [--now DATE] [--debug] [--html|--text]"; }
    std::string summary() const override { return "Recalculate the diary and show the details page of one entry."; }
    bool writes() const override { return false; }

protected:
    int run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args) override;
    int min_args() const override { return 1; }
    int max_args() const override { return -1; }
};

} // namespace Tervalon
