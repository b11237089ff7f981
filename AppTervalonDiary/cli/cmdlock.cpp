#include "AppTervalonDiary/cli/cmdlock.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/cli/clioptions.h"
#include "AppTervalonDiary/cli/cliplan.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibDate/date/zbdateutils.h"

#include <ostream>
#include <sstream>

namespace Tervalon {

namespace {
// The clock fixed by --now runs again however the command ends.
struct ClockRelease {
    ~ClockRelease() { ZBDateUtils::clear_fixed_now(); }
};

std::string text_date(const ZBDate& date)
{
    return date.is_ok() ? date.to_string("%Y-%m-%d %H:%M") : std::string("-");
}

// A date typed without a clock time stands for its whole day.
bool has_clock(const std::string& text)
{
    return text.find(':') != std::string::npos;
}

// The sessions of entry and those below it that the command would move,
// one line each.
void collect(const DiaryEntry& entry, bool lock, const ZBDateSlot& slot, std::vector<std::string>& lines)
{
    const ZBDateSet& set = lock ? entry.get_plan().get_predicted() : entry.get_plan().get_planned();
    for (int i = 0; i < set.size(); ++i)
        if (EntryPlan::in_slot(set[i]->slot(), slot)) {
            std::ostringstream line;
            line << entry.get_id() << " \"" << entry.get_summary() << "\" " << text_date(set[i]->m_start) << " - "
                 << text_date(set[i]->m_end);
            lines.push_back(line.str());
        }
    for (const DiaryEntry* child : entry.get_children())
        if (!child->is_deleted())
            collect(*child, lock, slot, lines);
}
} // namespace

int CmdLock::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    CliOptions options;
    std::string error;
    if (!options.parse(args, {"from", "to", "now"}, error))
        return usage_error(context, *this, error);
    if (options.positional().size() > 1)
        return usage_error(context, *this, "unexpected argument '" + options.positional()[1] + "'");

    ClockRelease release;
    Diary* diary = nullptr;
    if (iszbwarn(CliPlan::recalculate(db, options.get("now"), diary)))
        return report_failure(context, zberrorvalue());

    DiaryEntry* entry = nullptr;
    if (!options.positional().empty() && iszbwarn(CliDiary::get_entry(*diary, options.positional()[0], entry)))
        return report_failure(context, zberrorvalue());

    // A range: a date without a clock time means from the start or to the
    // end of its day; --from alone runs to the end of its day, --to alone
    // from the start of its day.
    ZBDateSlot slot(ZBDate::C_Blank, ZBDate::C_Blank);
    const bool ranged = options.has("from") || options.has("to");
    if (ranged) {
        ZBDate from;
        ZBDate to;
        const std::string fromText = options.get("from");
        const std::string toText = options.get("to");
        if (options.has("from") && iszbwarn(CliDiary::read_date(fromText, from)))
            return report_failure(context, zberrorvalue());
        if (options.has("to") && iszbwarn(CliDiary::read_date(toText, to)))
            return report_failure(context, zberrorvalue());
        if (!options.has("from"))
            from = CliDiary::day_start(to);
        else if (!has_clock(fromText))
            from = CliDiary::day_start(from);
        if (!options.has("to"))
            to = CliDiary::day_end(from) + ZBDuration(1);
        else if (!has_clock(toText))
            to = CliDiary::day_end(to) + ZBDuration(1);
        if (to < from || to == from) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The --from date %s is not before the --to date %s.",
                       text_date(from).c_str(), text_date(to).c_str());
            return report_failure(context, zberrorvalue());
        }
        slot = ZBDateSlot(from, to);
    }

    if (entry && m_lock) {
        if (entry->get_nchildren() > 0) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Tasks with children cannot have plans set.");
            return report_failure(context, zberrorvalue());
        }
        if (entry->is_complete()) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "You cannot plan complete tasks.");
            return report_failure(context, zberrorvalue());
        }
    }

    std::vector<std::string> lines;
    if (entry) {
        collect(*entry, m_lock, slot, lines);
    } else {
        for (int i = 0; i < diary->get_nentries(); ++i)
            collect(*diary->get_entry_index(i), m_lock, slot, lines);
    }
    if (lines.empty()) {
        const std::string what = m_lock ? "no predicted sessions to lock" : "no planned time to unlock";
        const std::string where = ranged ? " in that range" : "";
        if (entry)
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Entry %d has %s%s.", entry->get_id(), what.c_str(),
                       where.c_str());
        else
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The diary has %s%s.", what.c_str(), where.c_str());
        return report_failure(context, zberrorvalue());
    }

    int count = 0;
    int result = ZBErrC_ok;
    if (entry)
        result = m_lock ? entry->edit_plan().lock_plans(slot, &count) : entry->edit_plan().clear_plans(slot, &count);
    else
        result = m_lock ? diary->lock_plans(slot, &count) : diary->clear_plans(slot, &count);
    if (iszbwarn(result))
        return report_failure(context, result);

    // The names the same commands carry in the application's undo list.
    const char* undo = m_lock ? (entry ? (ranged ? "Lock Task for Day" : "Lock Task") : (ranged ? "Lock Day" : "Lock All Tasks"))
                              : (entry ? (ranged ? "Unlock Task for Day" : "Unlock Task")
                                       : (ranged ? "Unlock Day" : "Unlock All"));
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) || iszbwarn(diary->complete_operation(undo)))
        return report_failure(context, zberrorvalue());
    std::string text;
    for (const std::string& line : lines)
        text += (m_lock ? "Locked " : "Unlocked ") + line + "\n";
    text += std::string(m_lock ? "Locked " : "Unlocked ") + std::to_string(count) +
            (count == 1 ? " session.\n" : " sessions.\n");
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
