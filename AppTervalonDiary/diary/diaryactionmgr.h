#pragma once

#include "LibGui/base/zbactionmgr.h"

#include <functional>
#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryActionParam;
class DiaryEntry;

// Every user operation on the diary, known by name: menus, links in the
// display page, scripts and the command line all come through here, so that
// each says the same thing about whether it can run and does the same thing
// when it does. A mutating action is one undo step under its own name. The
// manager does not own the diary. The window derives from it and takes the
// actions that only move the view through run_action_on_gui.
class DiaryActionMgr : public ZBActionMgr {
public:
    // Editing.
    static const char* const C_ActEdit;
    static const char* const C_ActEditEntry;
    static const char* const C_ActEditID;
    static const char* const C_ActCopy;
    static const char* const C_ActCopyID;
    static const char* const C_ActCutID;
    static const char* const C_ActPaste;
    static const char* const C_ActPasteAs;
    static const char* const C_ActDelete;
    static const char* const C_ActUndo;
    static const char* const C_ActRedo;
    static const char* const C_ActFind;
    static const char* const C_ActNote;
    static const char* const C_ActShowHTML;
    // Entries.
    static const char* const C_ActComplete;
    static const char* const C_ActCompact;
    static const char* const C_ActPostpone;
    static const char* const C_ActPostponeDay;
    static const char* const C_ActAdjComplete;
    static const char* const C_ActLink;
    static const char* const C_ActRepeatInstance;
    static const char* const C_ActBaselineHours;
    static const char* const C_ActBaselineDate;
    static const char* const C_ActAddEntry;
    static const char* const C_ActAddTask;
    static const char* const C_ActAddAppointment;
    static const char* const C_ActAddJournal;
    static const char* const C_ActAddPerson;
    static const char* const C_ActAddAddress;
    static const char* const C_ActAddPlace;
    static const char* const C_ActCreateChild;
    static const char* const C_ActCreateSibling;
    // Sessions.
    static const char* const C_ActStartSession;
    static const char* const C_ActStopSession;
    static const char* const C_ActCompleteSession;
    static const char* const C_ActAddSession;
    static const char* const C_ActClearSession;
    // Plans.
    static const char* const C_ActPlan;
    static const char* const C_ActMovePlanUp;
    static const char* const C_ActMovePlanDown;
    static const char* const C_ActLockSession;
    static const char* const C_ActLockTaskDay;
    static const char* const C_ActLockTaskAll;
    static const char* const C_ActLockDay;
    static const char* const C_ActLockAll;
    static const char* const C_ActUnlockTaskDay;
    static const char* const C_ActUnlockTaskAll;
    static const char* const C_ActUnlockDay;
    static const char* const C_ActUnlockAll;
    // Commands.
    static const char* const C_ActCommandRun;
    static const char* const C_ActCommandRunAll;
    static const char* const C_ActCommandSkip;
    static const char* const C_ActCommandClear;
    // Calendar.
    static const char* const C_ActCalNextDay;
    static const char* const C_ActCalLastDay;
    static const char* const C_ActCalNextWeek;
    static const char* const C_ActCalLastWeek;
    static const char* const C_ActCalNextMonth;
    static const char* const C_ActCalLastMonth;
    static const char* const C_ActCalNextYear;
    static const char* const C_ActCalLastYear;
    static const char* const C_ActCalToday;
    static const char* const C_ActCalGoDate;
    // Navigation.
    static const char* const C_ActGoSession;
    static const char* const C_ActGoFirstTask;
    static const char* const C_ActGoNextTask;
    static const char* const C_ActGoLastTask;
    static const char* const C_ActGoFirstPlan;
    static const char* const C_ActGoNextPlan;
    static const char* const C_ActGoLastPlan;
    static const char* const C_ActGoID;
    static const char* const C_ActDetails;
    static const char* const C_ActRefresh;
    static const char* const C_ActRecalculate;
    static const char* const C_ActCloseTab;
    static const char* const C_ActCollapse;
    static const char* const C_ActExpand;
    // Views. The journal view is the day view: both names are "DayView".
    static const char* const C_ActTreeView;
    static const char* const C_ActDayView;
    static const char* const C_ActJournalView;
    static const char* const C_ActWeekView;
    static const char* const C_ActMonthView;
    static const char* const C_ActSummaryView;
    static const char* const C_ActPlanningView;
    static const char* const C_ActTimesheetView;
    static const char* const C_ActProjectView;
    static const char* const C_ActFocusView;
    // Data.
    static const char* const C_ActQuery;
    static const char* const C_ActExportTree;
    static const char* const C_ActExportQuery;
    static const char* const C_ActImportTasks;

    // Every action name, in menu order.
    static const std::vector<std::string>& action_names();
    static bool is_action(const std::string& name);
    // Actions that only move or repaint the window and change no data.
    static bool is_gui_action(const std::string& name);

    // Opens a URL on the desktop; true when it was handed over. The model
    // knows no desktop: the program installs the real opener, tests a recorder.
    using UrlOpener = std::function<bool(const std::string& url)>;
    static void set_url_opener(UrlOpener opener);
    static const UrlOpener& get_url_opener();

    explicit DiaryActionMgr(Diary* diary);
    ~DiaryActionMgr() override;

    Diary* get_diary() const { return m_diary; }
    void set_diary(Diary* diary) { m_diary = diary; }

    // False with the reason the user is shown when the action cannot run now
    // (some refusals, such as Undo with nothing to undo, give no reason).
    bool is_available(const std::string& name, const ZBActionParam& param, std::string& reason);
    // Runs the action: a refusal is a user warning with the reason, and a
    // failing step drops every change the action made.
    int run_action(const std::string& name, const ZBActionParam& param);
    // The base's forms, with the key as the only selection.
    bool is_available(const std::string& name, const ZBId& id, const ZBActionParam& param,
                      std::string& reason) override;
    int run_command(const std::string& name, const ZBId& id, const ZBActionParam& param) override;

    // What the window does for an action that moves the view. The base
    // refuses: without a window there is nothing to move.
    virtual int run_action_on_gui(const std::string& name, const DiaryActionParam& param);
    // The window fills in what it knows (selection, day shown, user) before a run.
    virtual void fill_parameters(DiaryActionParam& param);
    // Names the step being built and closes it as one undo step.
    void record_operation(const std::string& text);
    int complete_operation(const std::string& text);
    const std::string& get_operation() const { return m_operation; }

    // Runs the selected command of the selected entry (all remaining ones
    // with param.m_clear), marking each as run.
    int run_command(const DiaryActionParam& param);
    // At a session's start (start true) runs each command not yet run that
    // is marked to start automatically, at its end each marked to end; a
    // command marked "=0" stops the list. Does not close an undo step.
    int run_auto_command(DiaryEntry& entry, const DiaryActionParam& param, bool start);
    // Marks a command of the entry as run; once all have run a journal is
    // done, and so is a task whose list has a command for its end.
    int mark_command(DiaryEntry& entry, const std::string& tag);

    // What the last run has to tell the user besides its result: reminders,
    // URLs handed to the desktop, commands that cannot run yet.
    const std::vector<std::string>& get_messages() const { return m_messages; }
    void clear_messages() { m_messages.clear(); }

private:
    int run_entry_action(const std::string& name, const DiaryActionParam& param);
    bool check_available(const std::string& name, const DiaryActionParam& param, std::string& reason) const;
    int run_one_command(DiaryEntry& entry, const std::string& tag);
    // The simple query until stored queries come: entries whose title holds
    // the text; to a CSV file (m_search) or as messages.
    int run_query(const DiaryActionParam& param, bool toFile);

    Diary* m_diary;
    std::string m_operation;
    std::vector<std::string> m_messages;
};

} // namespace Tervalon
