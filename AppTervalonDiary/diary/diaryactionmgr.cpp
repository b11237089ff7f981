#include "AppTervalonDiary/diary/diaryactionmgr.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryactionparam.h"
#include "AppTervalonDiary/diary/diaryclipboard.h"
#include "AppTervalonDiary/diary/taskimport.h"
#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbsyncfile.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDate/date/zbdateutils.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <set>
#include <sstream>

namespace Tervalon {

const char* const DiaryActionMgr::C_ActEdit = "Edit";
const char* const DiaryActionMgr::C_ActEditEntry = "EditEntry";
const char* const DiaryActionMgr::C_ActEditID = "EditID";
const char* const DiaryActionMgr::C_ActCopy = "Copy";
const char* const DiaryActionMgr::C_ActCopyID = "CopyID";
const char* const DiaryActionMgr::C_ActCutID = "CutID";
const char* const DiaryActionMgr::C_ActPaste = "Paste";
const char* const DiaryActionMgr::C_ActPasteAs = "PasteAs";
const char* const DiaryActionMgr::C_ActDelete = "Delete";
const char* const DiaryActionMgr::C_ActUndo = "Undo";
const char* const DiaryActionMgr::C_ActRedo = "Redo";
const char* const DiaryActionMgr::C_ActFind = "Find";
const char* const DiaryActionMgr::C_ActNote = "Note";
const char* const DiaryActionMgr::C_ActShowHTML = "ShowHTML";
const char* const DiaryActionMgr::C_ActComplete = "Complete";
const char* const DiaryActionMgr::C_ActCompact = "Compact";
const char* const DiaryActionMgr::C_ActPostpone = "Postpone";
const char* const DiaryActionMgr::C_ActPostponeDay = "PostponeDay";
const char* const DiaryActionMgr::C_ActAdjComplete = "AdjComplete";
const char* const DiaryActionMgr::C_ActLink = "Link";
const char* const DiaryActionMgr::C_ActRepeatInstance = "RepeatInstance";
const char* const DiaryActionMgr::C_ActBaselineHours = "BaselineHours";
const char* const DiaryActionMgr::C_ActBaselineDate = "BaselineDate";
const char* const DiaryActionMgr::C_ActAddEntry = "AddEntry";
const char* const DiaryActionMgr::C_ActAddTask = "AddTask";
const char* const DiaryActionMgr::C_ActAddAppointment = "AddAppointment";
const char* const DiaryActionMgr::C_ActAddJournal = "AddJournal";
const char* const DiaryActionMgr::C_ActAddPerson = "AddPerson";
const char* const DiaryActionMgr::C_ActAddAddress = "AddAddress";
const char* const DiaryActionMgr::C_ActAddPlace = "AddPlace";
const char* const DiaryActionMgr::C_ActCreateChild = "CreateChild";
const char* const DiaryActionMgr::C_ActCreateSibling = "CreateSibling";
const char* const DiaryActionMgr::C_ActStartSession = "StartSession";
const char* const DiaryActionMgr::C_ActStopSession = "StopSession";
const char* const DiaryActionMgr::C_ActCompleteSession = "CompleteSession";
const char* const DiaryActionMgr::C_ActAddSession = "AddSession";
const char* const DiaryActionMgr::C_ActClearSession = "ClearSession";
const char* const DiaryActionMgr::C_ActPlan = "Plan";
const char* const DiaryActionMgr::C_ActMovePlanUp = "MovePlanUp";
const char* const DiaryActionMgr::C_ActMovePlanDown = "MovePlanDown";
const char* const DiaryActionMgr::C_ActLockSession = "LockSession";
const char* const DiaryActionMgr::C_ActLockTaskDay = "LockTaskDay";
const char* const DiaryActionMgr::C_ActLockTaskAll = "LockTaskAll";
const char* const DiaryActionMgr::C_ActLockDay = "LockDay";
const char* const DiaryActionMgr::C_ActLockAll = "LockAll";
const char* const DiaryActionMgr::C_ActUnlockTaskDay = "UnlockTaskDay";
const char* const DiaryActionMgr::C_ActUnlockTaskAll = "UnlockTaskAll";
const char* const DiaryActionMgr::C_ActUnlockDay = "UnlockDay";
const char* const DiaryActionMgr::C_ActUnlockAll = "UnlockAll";
const char* const DiaryActionMgr::C_ActCommandRun = "CommandRun";
const char* const DiaryActionMgr::C_ActCommandRunAll = "CommandRunAll";
const char* const DiaryActionMgr::C_ActCommandSkip = "CommandSkip";
const char* const DiaryActionMgr::C_ActCommandClear = "CommandClear";
const char* const DiaryActionMgr::C_ActCalNextDay = "CalNextDay";
const char* const DiaryActionMgr::C_ActCalLastDay = "CalLastDay";
const char* const DiaryActionMgr::C_ActCalNextWeek = "CalNextWeek";
const char* const DiaryActionMgr::C_ActCalLastWeek = "CalLastWeek";
const char* const DiaryActionMgr::C_ActCalNextMonth = "CalNextMonth";
const char* const DiaryActionMgr::C_ActCalLastMonth = "CalLastMonth";
const char* const DiaryActionMgr::C_ActCalNextYear = "CalNextYear";
const char* const DiaryActionMgr::C_ActCalLastYear = "CalLastYear";
const char* const DiaryActionMgr::C_ActCalToday = "CalToday";
const char* const DiaryActionMgr::C_ActCalGoDate = "CalGoDate";
const char* const DiaryActionMgr::C_ActGoSession = "GoSession";
const char* const DiaryActionMgr::C_ActGoFirstTask = "GoFirstTask";
const char* const DiaryActionMgr::C_ActGoNextTask = "GoNextTask";
const char* const DiaryActionMgr::C_ActGoLastTask = "GoLastTask";
const char* const DiaryActionMgr::C_ActGoFirstPlan = "GoFirstPlan";
const char* const DiaryActionMgr::C_ActGoNextPlan = "GoNextPlan";
const char* const DiaryActionMgr::C_ActGoLastPlan = "GoLastPlan";
const char* const DiaryActionMgr::C_ActGoID = "GoID";
const char* const DiaryActionMgr::C_ActDetails = "Details";
const char* const DiaryActionMgr::C_ActRefresh = "Refresh";
const char* const DiaryActionMgr::C_ActRecalculate = "Recalculate";
const char* const DiaryActionMgr::C_ActCloseTab = "CloseTab";
const char* const DiaryActionMgr::C_ActCollapse = "Collapse";
const char* const DiaryActionMgr::C_ActExpand = "Expand";
const char* const DiaryActionMgr::C_ActTreeView = "TreeView";
const char* const DiaryActionMgr::C_ActDayView = "DayView";
const char* const DiaryActionMgr::C_ActJournalView = "DayView";
const char* const DiaryActionMgr::C_ActWeekView = "WeekView";
const char* const DiaryActionMgr::C_ActMonthView = "MonthView";
const char* const DiaryActionMgr::C_ActSummaryView = "SummaryView";
const char* const DiaryActionMgr::C_ActPlanningView = "PlanningView";
const char* const DiaryActionMgr::C_ActTimesheetView = "TimesheetView";
const char* const DiaryActionMgr::C_ActProjectView = "ProjectView";
const char* const DiaryActionMgr::C_ActFocusView = "FocusView";
const char* const DiaryActionMgr::C_ActQuery = "Query";
const char* const DiaryActionMgr::C_ActExportTree = "ExportTree";
const char* const DiaryActionMgr::C_ActExportQuery = "ExportQuery";
const char* const DiaryActionMgr::C_ActImportTasks = "ImportTasks";

namespace {
int ZBErrC_ActionRefused = ZBError::allocate_code("ZBErrC_ActionRefused", "The action cannot run now.");

DiaryActionMgr::UrlOpener& url_opener()
{
    static DiaryActionMgr::UrlOpener opener;
    return opener;
}

using M = DiaryActionMgr;

bool one_of(const std::string& name, std::initializer_list<const char*> names)
{
    for (const char* candidate : names)
        if (name == candidate)
            return true;
    return false;
}

// The Add forms and the entry type each makes.
char add_type(const std::string& name)
{
    if (name == M::C_ActAddTask)
        return 'T';
    if (name == M::C_ActAddAppointment)
        return 'A';
    if (name == M::C_ActAddJournal)
        return 'J';
    if (name == M::C_ActAddPerson)
        return 'P';
    if (name == M::C_ActAddAddress)
        return 'D';
    if (name == M::C_ActAddPlace)
        return 'L';
    return 0;
}

const char* bookmark_refusal(char type)
{
    switch (type) {
    case 'T':
        return "There are no task bookmarks.";
    case 'A':
        return "There are no appointment bookmarks.";
    case 'J':
        return "There are no journal bookmarks.";
    case 'P':
        return "There are no person bookmarks.";
    case 'D':
        return "There are no address bookmarks.";
    default:
        return "There are no place bookmarks.";
    }
}

bool is_command_action(const std::string& name)
{
    return one_of(name, {M::C_ActCommandRun, M::C_ActCommandRunAll, M::C_ActCommandSkip, M::C_ActCommandClear});
}

// Actions that need no selection at all.
bool is_diary_action(const std::string& name)
{
    return add_type(name) || one_of(name, {M::C_ActAddEntry, M::C_ActUndo, M::C_ActRedo, M::C_ActPaste,
                                           M::C_ActLockDay, M::C_ActLockAll, M::C_ActUnlockDay, M::C_ActUnlockAll,
                                           M::C_ActStopSession, M::C_ActCompleteSession, M::C_ActNote,
                                           M::C_ActQuery, M::C_ActExportQuery, M::C_ActExportTree,
                                           M::C_ActImportTasks, M::C_ActRecalculate});
}

char seq_letter(int sequence)
{
    return sequence >= DiaryEntry::C_SeqFactor ? char(DiaryEntry::get_type_seq(sequence)) : 0;
}

std::string count_word(int count)
{
    static const char* const words[] = {"Zero", "One", "Two", "Three", "Four", "Five",
                                        "Six",  "Seven", "Eight", "Nine", "Ten"};
    return count >= 0 && count <= 10 ? words[count] : std::to_string(count);
}

DiaryEntry* running_entry(const Diary& diary)
{
    DiaryEntry* entry = diary.get_session_entry();
    return entry && entry->get_spent().has_running_session() ? entry : nullptr;
}

DiaryEntry* bookmarked(const Diary& diary, char type)
{
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        DiaryEntry* entry = dynamic_cast<DiaryEntry*>(diary.get_object_by_index(i));
        if (entry && !entry->is_deleted() && entry->get_bookmark() && entry->get_entrytype() == type)
            return entry;
    }
    return nullptr;
}

bool any_plans(const Diary& diary)
{
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        const DiaryEntry* entry = dynamic_cast<const DiaryEntry*>(diary.get_object_by_index(i));
        if (entry && !entry->is_deleted() && entry->get_plan().get_planned().size() > 0)
            return true;
    }
    return false;
}

// The day a day action works on: the range given, else the day of the date
// given, else today.
ZBDateSlot action_day(const DiaryActionParam& param)
{
    if (param.m_dayRange.m_start.is_ok() && param.m_dayRange.m_end.is_ok())
        return param.m_dayRange;
    return DiaryActionParam::whole_day(param.m_date.is_ok() ? param.m_date : ZBDateUtils::now());
}

// Whether the previous entry of a Link can come before entry.
bool can_link(const Diary& diary, const DiaryEntry& entry, const DiaryEntry& previous)
{
    if (entry.get_id() == previous.get_id() || diary.is_ancestor(entry.get_id(), previous.get_id())
        || diary.is_ancestor(previous.get_id(), entry.get_id()))
        return false;
    const EntryDepend& before = previous.get_depend();
    for (int i = 0; i < before.get_ndepends(); ++i)
        if (before.get_depend_no(i) == entry.get_id())
            return false;
    return true;
}

// The message of the newest error, which is then dropped with any other
// raised since the stack held before records.
std::string take_message(int before)
{
    ZBError& error = get_zberror();
    std::string message;
    if (const ZBErrDetails* top = error.top()) {
        message = top->get_details(ZBErrAsp_User);
        if (message.empty() || message == error.get_default_message(ZBErrAsp_User))
            message = top->get_message();
    }
    while (error.get_nerrors() > before)
        error.clear_last_error();
    return message;
}

std::string lower(std::string text)
{
    for (char& c : text)
        c = char(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string csv_field(const std::string& text)
{
    if (text.find_first_of(",\"\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}
} // namespace

const std::vector<std::string>& DiaryActionMgr::action_names()
{
    static const std::vector<std::string> names = {
        C_ActEdit, C_ActEditEntry, C_ActEditID, C_ActCopy, C_ActCopyID, C_ActCutID, C_ActPaste, C_ActPasteAs,
        C_ActDelete, C_ActUndo, C_ActRedo, C_ActFind, C_ActNote, C_ActShowHTML, C_ActComplete, C_ActCompact,
        C_ActPostpone, C_ActPostponeDay, C_ActAdjComplete, C_ActLink, C_ActRepeatInstance, C_ActBaselineHours,
        C_ActBaselineDate, C_ActAddEntry, C_ActAddTask, C_ActAddAppointment, C_ActAddJournal, C_ActAddPerson,
        C_ActAddAddress, C_ActAddPlace, C_ActCreateChild, C_ActCreateSibling, C_ActStartSession, C_ActStopSession,
        C_ActCompleteSession, C_ActAddSession, C_ActClearSession, C_ActPlan, C_ActMovePlanUp, C_ActMovePlanDown,
        C_ActLockSession, C_ActLockTaskDay, C_ActLockTaskAll, C_ActLockDay, C_ActLockAll, C_ActUnlockTaskDay,
        C_ActUnlockTaskAll, C_ActUnlockDay, C_ActUnlockAll, C_ActCommandRun, C_ActCommandRunAll, C_ActCommandSkip,
        C_ActCommandClear, C_ActCalNextDay, C_ActCalLastDay, C_ActCalNextWeek, C_ActCalLastWeek, C_ActCalNextMonth,
        C_ActCalLastMonth, C_ActCalNextYear, C_ActCalLastYear, C_ActCalToday, C_ActCalGoDate, C_ActGoSession,
        C_ActGoFirstTask, C_ActGoNextTask, C_ActGoLastTask, C_ActGoFirstPlan, C_ActGoNextPlan, C_ActGoLastPlan,
        C_ActGoID, C_ActDetails, C_ActRefresh, C_ActRecalculate, C_ActCloseTab, C_ActCollapse, C_ActExpand,
        C_ActTreeView, C_ActDayView, C_ActWeekView, C_ActMonthView, C_ActSummaryView, C_ActPlanningView,
        C_ActTimesheetView, C_ActProjectView, C_ActFocusView, C_ActQuery, C_ActExportTree, C_ActExportQuery,
        C_ActImportTasks
    };
    return names;
}

bool DiaryActionMgr::is_action(const std::string& name)
{
    const std::vector<std::string>& names = action_names();
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool DiaryActionMgr::is_gui_action(const std::string& name)
{
    if (name.compare(0, 3, "Cal") == 0 || name.compare(0, 2, "Go") == 0)
        return true;
    if (name.size() > 4 && name.compare(name.size() - 4, 4, "View") == 0)
        return true;
    return one_of(name, {C_ActEdit, C_ActEditID, C_ActFind, C_ActShowHTML, C_ActDetails, C_ActRefresh,
                         C_ActCloseTab, C_ActCollapse, C_ActExpand});
}

void DiaryActionMgr::set_url_opener(UrlOpener opener)
{
    url_opener() = std::move(opener);
}

const DiaryActionMgr::UrlOpener& DiaryActionMgr::get_url_opener()
{
    return url_opener();
}

DiaryActionMgr::DiaryActionMgr(Diary* diary) : m_diary(diary) {}

DiaryActionMgr::~DiaryActionMgr() = default;

int DiaryActionMgr::run_action_on_gui(const std::string& name, const DiaryActionParam&)
{
    return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "The %s action only moves the window and needs one.",
                      name.c_str());
}

void DiaryActionMgr::fill_parameters(DiaryActionParam&) {}

void DiaryActionMgr::record_operation(const std::string& text)
{
    m_operation = text;
}

int DiaryActionMgr::complete_operation(const std::string& text)
{
    record_operation(text);
    if (!m_diary)
        return ZBErrC_ok;
    if (iszbwarn(m_diary->complete_operation(text)))
        return zbpass(ZBLOC);
    m_diary->force_recalculate(false, false, false, false);
    return ZBErrC_ok;
}

bool DiaryActionMgr::is_available(const std::string& name, const ZBId& id, const ZBActionParam& param,
                                  std::string& reason)
{
    const DiaryActionParam* diaryParam = dynamic_cast<const DiaryActionParam*>(&param);
    if (!diaryParam) {
        reason = "Could not cast to DiaryActionParam";
        return false;
    }
    DiaryActionParam copy(*diaryParam);
    if (id.m_id >= 0) {
        copy.m_selectedId.clear();
        copy.m_selectedId.add(id);
    }
    return is_available(name, copy, reason);
}

int DiaryActionMgr::run_command(const std::string& name, const ZBId& id, const ZBActionParam& param)
{
    const DiaryActionParam* diaryParam = dynamic_cast<const DiaryActionParam*>(&param);
    if (!diaryParam)
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Could not cast to DiaryActionParam");
    DiaryActionParam copy(*diaryParam);
    if (id.m_id >= 0) {
        copy.m_selectedId.clear();
        copy.m_selectedId.add(id);
    }
    return run_action(name, copy);
}

bool DiaryActionMgr::is_available(const std::string& name, const ZBActionParam& param, std::string& reason)
{
    reason.clear();
    const DiaryActionParam* diaryParam = dynamic_cast<const DiaryActionParam*>(&param);
    if (!diaryParam) {
        reason = "Could not cast to DiaryActionParam";
        return false;
    }
    return check_available(name, *diaryParam, reason);
}

bool DiaryActionMgr::check_available(const std::string& name, const DiaryActionParam& param,
                                     std::string& reason) const
{
    if (!is_action(name) && name != C_ActJournalView) {
        reason = "There is no action called \"" + name + "\".";
        return false;
    }
    if (is_gui_action(name))
        return true;
    if (!m_diary) {
        reason = "No diary is open.";
        return false;
    }
    const Diary& diary = *m_diary;
    if (name == C_ActUndo)
        return diary.can_undo();
    if (name == C_ActRedo)
        return diary.can_redo();
    if (const char type = add_type(name)) {
        if (param.m_bookmark && !bookmarked(diary, type)) {
            reason = bookmark_refusal(type);
            return false;
        }
        return true;
    }
    if (name == C_ActStopSession || name == C_ActCompleteSession) {
        if (!running_entry(diary)) {
            reason = "There is no current active session.";
            return false;
        }
        return true;
    }
    if (name == C_ActUnlockDay || name == C_ActUnlockAll)
        return any_plans(diary);
    if (name == C_ActPaste && !DiaryClipboard::instance().clipboard_has_object()) {
        reason = "No object on the clipboard.";
        return false;
    }
    if (name == C_ActImportTasks && param.m_search.empty()) {
        reason = "No file to import was given.";
        return false;
    }
    if (name == C_ActExportTree && param.m_search.empty()) {
        reason = "No file to export to was given.";
        return false;
    }
    if (is_diary_action(name))
        return true;

    // Everything else works on the selection.
    if (param.m_selectedId.empty()) {
        reason = "No item has been selected.";
        return false;
    }
    std::vector<DiaryEntry*> entries;
    for (int i = 0; i < param.m_selectedId.size(); ++i) {
        DiaryEntry* entry = diary.get_entry_id(param.m_selectedId[i].m_id);
        if (!entry) {
            reason = "Could not find the entry in the diary.";
            return false;
        }
        entries.push_back(entry);
    }
    const DiaryEntry& entry = *entries.front();
    const int sequence = param.m_selectedId.first_sequence();
    const char letter = seq_letter(sequence);
    const char type = char(entry.get_entrytype());

    if (name == C_ActCreateChild) {
        const ZBObjectSpec* spec = entry.get_specid() >= 0 ? diary.get_objectspec_by_id(entry.get_specid()) : nullptr;
        if (spec && spec->get_nchildren() == 0) {
            reason = "This object cannot have children.";
            return false;
        }
    } else if (name == C_ActStartSession || name == C_ActAddSession) {
        if (name == C_ActStartSession && running_entry(diary)) {
            reason = "A session is already active.";
            return false;
        }
        if (type != 'T' && type != 'A') {
            reason = "Must be a task or appointment.";
            return false;
        }
        if (name == C_ActAddSession && !(param.m_dayRange.m_start.is_ok() && param.m_dayRange.m_end.is_ok())) {
            reason = "No time was given for the session.";
            return false;
        }
    } else if (name == C_ActComplete) {
        if (entry.get_nchildren() > 0) {
            reason = "Tasks with children cannot be signed off.";
            return false;
        }
        if (entry.is_complete()) {
            reason = "That entry is already complete.";
            return false;
        }
    } else if (name == C_ActAdjComplete) {
        if (entry.get_nchildren() > 0) {
            reason = "Tasks with children cannot have completion adjusted.";
            return false;
        }
        if (param.m_percent < 0.0) {
            reason = "No completion was given.";
            return false;
        }
    } else if (name == C_ActLink) {
        if (entries.size() < 2) {
            reason = "Select at least two entries to link.";
            return false;
        }
        for (size_t i = 1; i < entries.size(); ++i)
            if (!can_link(diary, *entries[i], *entries[i - 1])) {
                reason = "\"" + entries[i]->get_summary() + "\" cannot be linked to previous.";
                return false;
            }
    } else if (name == C_ActBaselineHours || name == C_ActBaselineDate) {
        if (type != 'T') {
            reason = "Must be a task.";
            return false;
        }
    } else if (name == C_ActLockSession) {
        if (letter != 'r') {
            reason = "No predicted session selected.";
            return false;
        }
    } else if (name == C_ActMovePlanUp || name == C_ActMovePlanDown || name == C_ActUnlockTaskDay) {
        const ZBDateSet& planned = entry.get_plan().get_planned();
        if (name != C_ActUnlockTaskDay && letter != 'p') {
            reason = "No plan selected.";
            return false;
        }
        if (name == C_ActUnlockTaskDay && letter != 0 && letter != 'p') {
            reason = "No plan selected.";
            return false;
        }
        if (planned.size() == 0 || (letter == 'p' && DiaryEntry::get_index_seq(sequence) >= planned.size())) {
            reason = "No planned time for this task.";
            return false;
        }
    } else if (name == C_ActPlan || name == C_ActLockTaskDay || name == C_ActLockTaskAll) {
        if (entry.get_nchildren() > 0) {
            reason = "Tasks with children cannot have plans set.";
            return false;
        }
        if (entry.is_complete()) {
            reason = "You cannot plan complete tasks.";
            return false;
        }
        if (name == C_ActPlan && !(param.m_dayRange.m_start.is_ok() && param.m_dayRange.m_end.is_ok())) {
            reason = "No time was given for the plan.";
            return false;
        }
    } else if (is_command_action(name)) {
        EntryCommand commands(entry.get_command());
        commands.attach(const_cast<DiaryEntry*>(&entry));
        const int before = get_zberror().get_nerrors();
        if (iszbwarn(commands.update_commands())) {
            reason = take_message(before);
            return false;
        }
        int listed = 0;
        for (const DiaryCommand& command : commands.get_commands())
            if (!command.m_stop)
                ++listed;
        if (listed == 0) {
            reason = "There are no commands for this task.";
            return false;
        }
        if (name == C_ActCommandRunAll) {
            if (commands.count_remaining() <= 1) {
                reason = "There is only one remaining command.";
                return false;
            }
            return true;
        }
        const DiaryCommand* command = commands.find_command(param.m_selectedCmd);
        if (!command) {
            reason = "No command selected.";
            return false;
        }
        if ((name == C_ActCommandRun || name == C_ActCommandSkip) && command->m_executed) {
            reason = "The command has already been run.";
            return false;
        }
        if (name == C_ActCommandClear && !command->m_executed) {
            reason = "The command has not been run.";
            return false;
        }
    } else if (name == C_ActClearSession) {
        if (letter != 'p' && letter != 's') {
            reason = "Must be either planned or spent time.";
            return false;
        }
    } else if (name == C_ActPostpone || name == C_ActPostponeDay) {
        if (type != 'T' && type != 'A' && type != 'J') {
            reason = "Must be a task, appointment or journal.";
            return false;
        }
        if (entry.is_complete()) {
            reason = "The task is complete.";
            return false;
        }
        if (letter == 0) {
            if (entry.var_is_calculated("Due_Date") || entry.var_is_calculated("Start_After")) {
                reason = "Due date and start date are fixed.";
                return false;
            }
            if (entry.var_is_calculated("Start_Time") || entry.var_is_calculated("End_Time")) {
                reason = "Start date and end date are fixed.";
                return false;
            }
        }
    } else if (name == C_ActDelete) {
        if (letter != 0) {
            if (letter != 'p' && letter != 's') {
                reason = "You can only delete spent or planned time.";
                return false;
            }
        } else {
            for (const DiaryEntry* selected : entries) {
                const DiaryEntry* parent = selected->get_parent_entry();
                if (parent && parent->is_mandatory_child(*selected)) {
                    reason = "This object is mandatory and cannot be removed.";
                    return false;
                }
            }
        }
    } else if (name == C_ActRepeatInstance) {
        if (!entry.get_repeat().is_repeating()) {
            reason = "The entry does not repeat.";
            return false;
        }
    }
    if ((letter == 'p' || letter == 's' || letter == 'r') && one_of(name, {C_ActDelete, C_ActClearSession,
                                                                          C_ActPostpone, C_ActLockSession,
                                                                          C_ActMovePlanUp, C_ActMovePlanDown})) {
        const ZBDateSet& set = letter == 'p'   ? entry.get_plan().get_planned()
                               : letter == 's' ? entry.get_spent().get_sessions()
                                               : entry.get_plan().get_predicted();
        if (DiaryEntry::get_index_seq(sequence) >= set.size()) {
            reason = "The selected time is no longer there.";
            return false;
        }
    }
    return true;
}

int DiaryActionMgr::run_action(const std::string& name, const ZBActionParam& param)
{
    m_messages.clear();
    m_operation.clear();
    const DiaryActionParam* given = dynamic_cast<const DiaryActionParam*>(&param);
    if (!given)
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Could not cast to DiaryActionParam");
    DiaryActionParam filled(*given);
    fill_parameters(filled);
    std::string reason;
    if (!check_available(name, filled, reason)) {
        if (reason.empty())
            reason = "The " + name + " action cannot run now.";
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "%s", reason.c_str());
    }
    if (is_gui_action(name)) {
        const int result = run_action_on_gui(name, filled);
        return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
    }
    if (name == C_ActRefresh)
        return ZBErrC_ok;
    if (name == C_ActUndo || name == C_ActRedo) {
        const int result = name == C_ActUndo ? m_diary->undo() : m_diary->redo();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
        m_diary->force_recalculate(true, false, false, false);
        return ZBErrC_ok;
    }
    if (name == C_ActRecalculate) {
        m_diary->force_recalculate(true, true, true, true);
        return ZBErrC_ok;
    }
    // A step that fails drops whatever the action changed before it.
    const int result = run_entry_action(name, filled);
    if (iszbwarn(result)) {
        m_diary->discard_changes();
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int DiaryActionMgr::run_entry_action(const std::string& name, const DiaryActionParam& param)
{
    Diary& diary = *m_diary;
    const ZBDate now = ZBDateUtils::now();
    std::vector<DiaryEntry*> entries;
    for (int i = 0; i < param.m_selectedId.size(); ++i)
        entries.push_back(diary.get_entry_id(param.m_selectedId[i].m_id));
    DiaryEntry* entry = entries.empty() ? nullptr : entries.front();
    const int sequence = param.m_selectedId.empty() ? -1 : param.m_selectedId.first_sequence();
    const char letter = seq_letter(sequence);
    const int index = letter ? DiaryEntry::get_index_seq(sequence) : -1;
    int result = ZBErrC_ok;
    std::string undo;

    if (const char type = add_type(name); type || name == C_ActAddEntry) {
        DiaryEntry* parent = param.m_bookmark ? bookmarked(diary, type ? type : param.m_type) : nullptr;
        DiaryEntry* made = nullptr;
        result = diary.create_entry(parent, type ? type : param.m_type, param.m_title, &made);
        if (made)
            m_messages.push_back(std::to_string(made->get_id()));
        undo = "Create Entry";
    } else if (name == C_ActCreateChild || name == C_ActCreateSibling) {
        DiaryEntry* parent = name == C_ActCreateChild ? entry : entry->get_parent_entry();
        DiaryEntry* made = nullptr;
        result = diary.create_entry(parent, char(entry->get_entrytype()), param.m_title, &made);
        if (made)
            m_messages.push_back(std::to_string(made->get_id()));
        undo = name == C_ActCreateChild ? "Create Child" : "Create Sibling";
    } else if (name == C_ActEditEntry) {
        // Without a window to edit in, the title given is the edit.
        if (param.m_title.empty())
            return run_action_on_gui(name, param);
        entry->set_summary(param.m_title);
        entry->mark_changed(ZBLOC, true);
        undo = "Edit Entry";
    } else if (name == C_ActDelete) {
        if (letter == 'p' || letter == 's') {
            ZBDateSet& set = letter == 'p' ? entry->edit_plan().edit_planned() : entry->edit_spent().edit_sessions();
            set.erase(index);
            entry->clear_predicted(true);
            entry->mark_changed(ZBLOC, true);
            undo = "Delete Session";
        } else if (param.m_date.is_ok() && entry->get_repeat().is_repeating()) {
            entry->edit_repeat().exclude_day(param.m_date);
            entry->clear_predicted(true);
            entry->mark_changed(ZBLOC, true);
            undo = "Exclude Date";
        } else {
            for (DiaryEntry* selected : entries)
                if (!selected->is_deleted() && iszbwarn(result = diary.delete_object(selected->get_id(), std::string())))
                    break;
            undo = "Delete Entry";
        }
    } else if (name == C_ActCopy || name == C_ActCopyID) {
        result = DiaryClipboard::instance().copy(diary, param.m_selectedId, false);
        undo = "Copy Entry";
    } else if (name == C_ActCutID) {
        result = DiaryClipboard::instance().copy(diary, param.m_selectedId, true);
        for (DiaryEntry* selected : entries)
            if (!iszbwarn(result) && !selected->is_deleted())
                result = diary.delete_object(selected->get_id(), std::string());
        undo = "Cut Entry";
    } else if (name == C_ActPaste || name == C_ActPasteAs) {
        // PasteAs pastes the clipboard as many times as asked (at least once).
        const int times = name == C_ActPasteAs ? std::max(1, param.m_instance) : 1;
        std::vector<int> made;
        result = DiaryClipboard::instance().do_paste(diary, entry, times, &made);
        for (int id : made)
            m_messages.push_back(std::to_string(id));
        undo = name == C_ActPaste ? std::string("Paste objects") : "Paste Entry " + count_word(int(made.size()));
    } else if (name == C_ActLink) {
        for (size_t i = 1; i < entries.size(); ++i) {
            entries[i]->edit_depend().add_depend(entries[i - 1]->get_id());
            entries[i]->clear_predicted(true);
            entries[i]->mark_changed(ZBLOC, true);
        }
        undo = "Link Tasks";
    } else if (name == C_ActComplete) {
        result = entry->mark_complete(now);
        if (!iszbwarn(result))
            result = run_auto_command(*entry, param, false);
        undo = "Complete Task";
    } else if (name == C_ActCompact) {
        result = entry->compact(&diary, true);
        if (!iszbwarn(result))
            result = diary.apply_objectspecs();
        undo = "Compact Entry";
    } else if (name == C_ActPostpone || name == C_ActPostponeDay) {
        std::string startText = name == C_ActPostponeDay ? std::string("+1 d") : param.m_postponeStart;
        std::string endText = name == C_ActPostponeDay ? std::string("+1 d") : param.m_postponeEnd;
        if (startText.empty() && endText.empty())
            return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "No date was given to postpone to.");
        // A task's due moves with its start unless an end of its own is given.
        if (endText.empty() && (letter || entry->get_entrytype() == 'T'))
            endText = startText;
        result = entry->postpone(startText, endText, letter == 'p' || letter == 's' ? sequence : 0);
        entry->clear_predicted(true);
        undo = name == C_ActPostponeDay ? "Postpone 1 Day" : "Postpone";
    } else if (name == C_ActAdjComplete) {
        result = entry->set_completion(param.m_percent, false);
        undo = "Adjust Completion";
    } else if (name == C_ActRepeatInstance) {
        int made = -1;
        result = EntryRepeat::create_instance(&diary, entry, param.m_date.is_ok() ? param.m_date : now, -1, &made);
        if (made >= 0)
            m_messages.push_back(std::to_string(made));
        undo = "Convert Repeat to Instance";
    } else if (name == C_ActBaselineHours || name == C_ActBaselineDate) {
        entry->save_baseline(name == C_ActBaselineDate);
        entry->mark_changed(ZBLOC, true);
        undo = name == C_ActBaselineDate ? "Save Baseline Hours and Date" : "Save Baseline Hours";
    } else if (name == C_ActStartSession) {
        const Resource* resource = diary.get_resource_by_name(param.m_userName);
        const int resourceId = param.m_userId >= 0 ? param.m_userId : resource ? resource->get_id() : -1;
        result = diary.start_session(entry->get_id(), resourceId);
        if (!iszbwarn(result))
            result = run_auto_command(*entry, param, true);
        undo = "Start Session";
    } else if (name == C_ActStopSession || name == C_ActCompleteSession) {
        DiaryEntry* running = running_entry(diary);
        diary.stop_session();
        running->clear_predicted(true);
        result = run_auto_command(*running, param, false);
        if (!iszbwarn(result) && name == C_ActCompleteSession && !running->is_complete())
            result = running->mark_complete(now);
        undo = name == C_ActCompleteSession ? "Complete Running Task" : "Stop Session";
    } else if (name == C_ActAddSession || name == C_ActPlan) {
        const Resource* resource = diary.get_resource_by_name(param.m_userName);
        if (!param.m_userName.empty() && !resource)
            return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "There is no resource called \"%s\".",
                              param.m_userName.c_str());
        const int resourceId = param.m_userId >= 0 ? param.m_userId
                               : resource          ? resource->get_id()
                                                   : entry->get_props().get_resource_calc();
        if (name == C_ActAddSession)
            entry->edit_spent().add_session(param.m_dayRange, resourceId);
        else
            entry->edit_plan().edit_planned().add(param.m_dayRange, resourceId);
        entry->clear_predicted(true);
        entry->mark_changed(ZBLOC, true);
        undo = name == C_ActAddSession ? "Add Session" : "Plan Time";
    } else if (name == C_ActClearSession) {
        ZBDateSet& set = letter == 'p' ? entry->edit_plan().edit_planned() : entry->edit_spent().edit_sessions();
        set.erase(index);
        entry->clear_predicted(true);
        entry->mark_changed(ZBLOC, true);
        undo = "Clear Session";
    } else if (name == C_ActMovePlanUp || name == C_ActMovePlanDown) {
        result = diary.move_plan(entry->get_id(), sequence, name == C_ActMovePlanUp, nullptr);
        undo = name == C_ActMovePlanUp ? "Move Plan Up" : "Move Plan Down";
    } else if (name == C_ActLockSession) {
        result = entry->edit_plan().lock_plan(sequence);
        undo = "Lock Predicted Session";
    } else if (name == C_ActLockTaskDay || name == C_ActLockTaskAll || name == C_ActUnlockTaskDay
               || name == C_ActUnlockTaskAll) {
        const bool all = name == C_ActLockTaskAll || name == C_ActUnlockTaskAll;
        ZBDateSlot slot = all ? ZBDateSlot(ZBDate::C_Blank, ZBDate::C_Blank) : action_day(param);
        // A plan selected for the day's unlock names the day itself.
        if (name == C_ActUnlockTaskDay && letter == 'p')
            slot = DiaryActionParam::whole_day(entry->get_plan().get_planned()[index]->m_start);
        if (name == C_ActLockTaskDay || name == C_ActLockTaskAll)
            result = entry->edit_plan().lock_plans(slot);
        else
            result = entry->edit_plan().clear_plans(slot);
        undo = name == C_ActLockTaskDay     ? "Lock Task for Day"
               : name == C_ActLockTaskAll   ? "Lock Task"
               : name == C_ActUnlockTaskDay ? "Unlock Task for Day"
                                            : "Unlock Task";
    } else if (name == C_ActLockDay || name == C_ActLockAll || name == C_ActUnlockDay || name == C_ActUnlockAll) {
        const bool all = name == C_ActLockAll || name == C_ActUnlockAll;
        const ZBDateSlot slot = all ? ZBDateSlot(ZBDate::C_Blank, ZBDate::C_Blank) : action_day(param);
        if (name == C_ActLockDay || name == C_ActLockAll)
            result = diary.lock_plans(slot);
        else
            result = diary.clear_plans(slot);
        undo = name == C_ActLockDay   ? "Lock Day"
               : name == C_ActLockAll ? "Lock All Tasks"
               : name == C_ActUnlockDay ? "Unlock Day"
                                        : "Unlock All";
    } else if (name == C_ActCommandRun || name == C_ActCommandRunAll) {
        DiaryActionParam all(param);
        all.m_clear = name == C_ActCommandRunAll;
        result = run_command(all);
        undo = name == C_ActCommandRun ? "Run Command" : "Run All Commands";
    } else if (name == C_ActCommandSkip || name == C_ActCommandClear) {
        if (name == C_ActCommandSkip) {
            result = mark_command(*entry, param.m_selectedCmd);
        } else {
            entry->edit_command().clear_command(param.m_selectedCmd);
            entry->mark_changed(ZBLOC, true);
        }
        undo = name == C_ActCommandSkip ? "Skip Command" : "Clear Command";
    } else if (name == C_ActNote) {
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Notes cannot be kept in this version of the diary.");
    } else if (name == C_ActQuery || name == C_ActExportQuery) {
        result = run_query(param, name == C_ActExportQuery);
    } else if (name == C_ActExportTree) {
        DiaryActionParam everything(param);
        everything.m_queryParam.clear();
        result = run_query(everything, true);
    } else if (name == C_ActImportTasks) {
        std::ifstream in(param.m_search);
        if (!in)
            return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Could not read %s.", param.m_search.c_str());
        std::ostringstream text;
        text << in.rdbuf();
        TaskImport import;
        result = import.import(diary, text.str(), entry);
        if (!iszbwarn(result))
            m_messages.push_back(import.get_summary());
        undo = "Import Tasks";
    } else {
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "The %s action cannot run here.", name.c_str());
    }
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    if (undo.empty())
        return ZBErrC_ok;
    if (iszbwarn(diary.recalculate(ZBDatabase::E_RecalcQuick)))
        return zbpass(ZBLOC);
    record_operation(undo);
    return iszbwarn(complete_operation(undo)) ? zbpass(ZBLOC) : ZBErrC_ok;
}

int DiaryActionMgr::run_query(const DiaryActionParam& param, bool toFile)
{
    // Entries whose title holds the query text, whatever the case, in tree
    // order; no text gives them all.
    const std::string wanted = lower(param.m_queryParam);
    std::vector<const DiaryEntry*> found;
    for (const DiaryEntry* entry : m_diary->get_display_list())
        if (!entry->is_deleted() && lower(entry->get_summary()).find(wanted) != std::string::npos)
            found.push_back(entry);
    if (!toFile) {
        for (const DiaryEntry* entry : found)
            m_messages.push_back(std::to_string(entry->get_id()) + " " + entry->get_summary());
        return ZBErrC_ok;
    }
    if (param.m_search.empty())
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "No file to export to was given.");
    std::ostringstream text;
    text << "Id,Type,Title,Parent,Complete\n";
    for (const DiaryEntry* entry : found) {
        const DiaryEntry* parent = entry->get_parent_entry();
        text << entry->get_id() << ',' << char(entry->get_entrytype()) << ',' << csv_field(entry->get_summary()) << ','
             << (parent ? parent->get_id() : -1) << ',' << (entry->is_complete() ? "yes" : "no") << '\n';
    }
    if (iszbwarn(zb_write_file_synced(param.m_search, text.str())))
        return zbpass(ZBLOC);
    m_messages.push_back(std::to_string(found.size()) + " entries written to " + param.m_search);
    return ZBErrC_ok;
}

int DiaryActionMgr::run_command(const DiaryActionParam& param)
{
    DiaryEntry* entry = m_diary && !param.m_selectedId.empty() ? m_diary->get_entry_id(param.m_selectedId.first_id())
                                                               : nullptr;
    if (!entry)
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Could not find the entry in the diary.");
    EntryCommand& commands = entry->edit_command();
    if (iszbwarn(commands.update_commands()))
        return zbpass(ZBLOC);
    std::vector<std::string> tags;
    for (const DiaryCommand& command : commands.get_commands())
        if (!command.m_stop && !command.m_executed && (param.m_clear || command.m_tag == param.m_selectedCmd))
            tags.push_back(command.m_tag);
    if (tags.empty())
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "There are no commands for this task.");
    for (const std::string& tag : tags)
        if (iszbwarn(run_one_command(*entry, tag)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int DiaryActionMgr::run_auto_command(DiaryEntry& entry, const DiaryActionParam&, bool start)
{
    if (entry.get_command().get_command().empty())
        return ZBErrC_ok;
    EntryCommand& commands = entry.edit_command();
    if (iszbwarn(commands.update_commands()))
        return zbpass(ZBLOC);
    std::vector<std::string> tags;
    for (const DiaryCommand& command : commands.get_commands()) {
        if (command.m_stop)
            break;
        if (!command.m_executed && (start ? command.m_autoStart : command.m_autoEnd))
            tags.push_back(command.m_tag);
    }
    for (const std::string& tag : tags)
        if (iszbwarn(run_one_command(entry, tag)))
            return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int DiaryActionMgr::run_one_command(DiaryEntry& entry, const std::string& tag)
{
    EntryCommand& commands = entry.edit_command();
    const DiaryCommand* command = commands.find_command(tag);
    if (!command)
        return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "No command selected.");
    switch (command->get_kind()) {
    case DiaryCommand::E_Macro:
        // Scripts are not kept yet: the command stays to run.
        m_messages.push_back("The macro \"" + command->get_argument() + "\" cannot run: this diary has no scripts.");
        return ZBErrC_ok;
    case DiaryCommand::E_Reminder:
        m_messages.push_back("Reminder: " + command->get_argument());
        break;
    case DiaryCommand::E_Url: {
        const std::string url = command->m_command;
        if (!DiaryCommand::is_valid_url(url))
            return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "\"%s\" is not a valid URL.", url.c_str());
        const UrlOpener& opener = get_url_opener();
        if (!opener || !opener(url))
            return zbwarnuser(ZBErrC_ActionRefused, ZBLOC, "Could not open %s.", url.c_str());
        m_messages.push_back("Opened " + url);
        break;
    }
    }
    return mark_command(entry, tag);
}

int DiaryActionMgr::mark_command(DiaryEntry& entry, const std::string& tag)
{
    EntryCommand& commands = entry.edit_command();
    if (iszbwarn(commands.update_commands()))
        return zbpass(ZBLOC);
    commands.mark_command(tag);
    entry.mark_changed(ZBLOC, true);
    // A list marked to end the task completes it once everything has run;
    // a journal's commands are its progress.
    if (commands.count_remaining() == 0 && !entry.is_complete()) {
        if (entry.get_entrytype() == 'J' || commands.has_auto_end())
            return iszbwarn(entry.mark_complete(ZBDateUtils::now())) ? zbpass(ZBLOC) : ZBErrC_ok;
    }
    return ZBErrC_ok;
}

} // namespace Tervalon
