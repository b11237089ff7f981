#include "AppTervalonDiary/cli/cmdtree.h"
#include "AppTervalonDiary/cli/clidiary.h"
#include "AppTervalonDiary/diary/diary.h"

#include <cstdio>
#include <ostream>
#include <string>

namespace Tervalon {

namespace {
void print_entry(std::string& text, const DiaryEntry& entry, int depth, int running)
{
    text.append(size_t(depth) * 2, ' ');
    text += std::to_string(entry.get_id());
    text += ' ';
    text += char(entry.get_entrytype());
    text += ' ';
    text += entry.get_summary();
    // Appointments and notes stand at a time; tasks have a due date.
    const int type = entry.get_entrytype();
    const ZBDate& at = entry.get_time().calc.m_start;
    if ((type == 'A' || type == 'J') && at.is_ok()) {
        text += "  at ";
        text += at.to_string("%Y-%m-%d %H:%M");
    }
    const ZBDate& due = entry.get_due().calc;
    if (due.is_ok()) {
        text += "  due ";
        text += due.to_string("%Y-%m-%d %H:%M");
    }
    char percent[32];
    std::snprintf(percent, sizeof(percent), "  %g%%", entry.get_duration().orig.get_completion());
    text += percent;
    if (entry.get_id() == running)
        text += "  [session since " + entry.get_spent().get_current_session().m_start.to_string("%Y-%m-%d %H:%M") + "]";
    text += '\n';
    for (const DiaryEntry* child : entry.get_children())
        print_entry(text, *child, depth + 1, running);
}
} // namespace

int CmdTree::run_on(CliContext& context, ZBDatabase& db, const std::vector<std::string>&)
{
    Diary* diary = nullptr;
    if (iszbwarn(CliDiary::get_diary(db, diary)) || iszbwarn(diary->recalculate(ZBDatabase::E_RecalcQuick)))
        return report_failure(context, zberrorvalue());
    // Written in pieces of some 16 kB, a top-level entry at a time: few
    // writes, and the text of a large diary is never held whole.
    const DiaryEntry* session = diary->get_session_entry();
    const int running = session ? session->get_id() : -1;
    const size_t piece = 16 * 1024;
    std::string text;
    text.reserve(piece + piece / 4);
    for (int i = 0; i < diary->get_nentries(); ++i) {
        print_entry(text, *diary->get_entry_index(i), 0, running);
        if (text.size() >= piece) {
            context.out << text;
            text.clear();
        }
    }
    context.out << text;
    context.out.flush();
    return 0;
}

} // namespace Tervalon
