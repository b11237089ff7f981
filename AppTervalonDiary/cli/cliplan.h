#pragma once

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class ZBDatabase;
class ZBNotifyList;
struct CliContext;

// What "plan" and "alerts" share: the "--now DATE" and "--json" options, and
// one foreground full recalculation of the whole diary with the clock fixed.
class CliPlan {
public:
    // Reads the options; false with the message in error for anything else.
    static bool parse(const std::vector<std::string>& args, bool allowJson, std::string& now, bool& json,
                      std::string& error);
    // Fixes the clock at now (when given) and runs the full pass: the
    // dependencies, the entry phases, the planner and the phases again. On
    // failure the clock runs again; on success the caller frees it when done.
    static int recalculate(ZBDatabase& db, const std::string& now, Diary*& diary);
    // Collects the round's notifications of every entry.
    static void collect(const Diary& diary, ZBNotifyList& list);
};

} // namespace Tervalon
