#include "AppTervalonDiary/cli/cmddepend.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <algorithm>
#include <cstdlib>
#include <ostream>

namespace Tervalon {

namespace {
// An id when the text is all digits and names an entry; -1 otherwise.
int read_id(const Diary& diary, const std::string& text)
{
    if (text.empty() || text.find_first_not_of("0123456789") != std::string::npos || text.size() > 9)
        return -1;
    const int id = std::atoi(text.c_str());
    return diary.get_entry_id(id) ? id : -1;
}

// The loops the diary has now, as their messages by entry.
std::vector<std::pair<int, std::string>> current_loops(Diary& diary)
{
    diary.calculate_dependencies();
    std::vector<std::pair<int, std::string>> loops;
    for (const ZBDBCheckItem* item : diary.get_circular_dependencies())
        loops.emplace_back(item->get_id(), item->get_message());
    return loops;
}
} // namespace

int CmdDepend::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>& args)
{
    Diary* diary = nullptr;
    DiaryEntry* entry = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(CliDiary::get_entry(*diary, args[0], entry)))
        return report_failure(context, zberrorvalue());
    const std::string& on = args[1];
    const int id = read_id(*diary, on);
    EntryDepend& depend = entry->edit_depend();

    if (!m_add) {
        const bool removed = id >= 0 ? depend.remove_depend(id) : depend.remove_title(on);
        if (!removed) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Entry %d does not depend on %s.", entry->get_id(), on.c_str());
            return report_failure(context, zberrorvalue());
        }
    } else {
        if (id == entry->get_id()) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "An entry cannot depend on itself.");
            return report_failure(context, zberrorvalue());
        }
        if (id < 0 && on.find_first_not_of("0123456789") == std::string::npos) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no entry with the id %s.", on.c_str());
            return report_failure(context, zberrorvalue());
        }
        const bool isBlock = on.find(EntryDepend::C_TitleBlock) != std::string::npos;
        const int found = id >= 0 ? id : EntryDepend::find_title(on, *diary, *entry, isBlock);
        if (found < 0) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No entry matches the title \"%s\".", on.c_str());
            return report_failure(context, zberrorvalue());
        }
        const std::vector<std::pair<int, std::string>> before = current_loops(*diary);
        const bool added = id >= 0 ? depend.add_depend(id) : depend.add_title(on);
        if (!added) {
            zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Entry %d already depends on %s.", entry->get_id(), on.c_str());
            return report_failure(context, zberrorvalue());
        }
        // A new loop is refused here, before it reaches the file; one the
        // file had already is the checker's to report.
        for (const auto& loop : current_loops(*diary))
            if (std::find(before.begin(), before.end(), loop) == before.end()) {
                const DiaryEntry* at = diary->get_entry_id(loop.first);
                zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "That would make a loop: %s (ID %d): %s",
                           at ? at->get_summary().c_str() : "", loop.first, loop.second.c_str());
                return report_failure(context, zberrorvalue());
            }
        const DiaryEntry* other = diary->get_entry_id(found);
        if (isBlock)
            context.out << other->get_id() << " \"" << other->get_summary() << "\" now waits for " << entry->get_id()
                        << std::endl;
        else
            context.out << entry->get_id() << " now waits for " << other->get_id() << " \"" << other->get_summary()
                        << "\"" << std::endl;
    }
    entry->clear_predicted(true);
    entry->mark_changed(ZBLOC, true);
    if (iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)) ||
        iszbwarn(diary->complete_operation(m_add ? "Add Dependency" : "Remove Dependency")))
        return report_failure(context, zberrorvalue());
    return 0;
}

} // namespace Tervalon
