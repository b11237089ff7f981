#pragma once

#include "LibDatabase/db/zbdbmanager.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibGui/base/zbnotifylist.h"
#include "LibGui/qt/zbmainwindowqt.h"
#include "LibObject/object/zbidlist.h"

#include <QPoint>

#include <functional>
#include <map>
#include <memory>
#include <string>

class QLabel;
class QTimer;
class QToolButton;

namespace Tervalon {

class ZBCloudButtonQt;
class ZBDatabase;
class ZBSettingsQt;

// The base of every main window that shows a database. It owns the database
// from load to unload, turns every way a load can fail into a question, runs
// the heartbeat that recalculates, checks, notifies and autosaves, and is
// the way back out through save and unload. The database never asks the user
// anything; this window does.
class ZBDBManagerQt : public ZBMainWindowQt, public ZBDBManager {
    Q_OBJECT
public:
    // How start and do_load treat a file that is not there.
    enum E_LoadFlag {
        E_LoadPlain = 0,
        // Named by the user (the command line): a missing file is made.
        E_CreateIfMissing = 1,
        // A missing file is made from a template without asking.
        E_UseTemplate = 2,
        // Another file loaded in this window may be replaced.
        E_AllowReplace = 4
    };

    static constexpr int C_MaxRecalcWait = 600;
    static constexpr int C_UserInteractionTimeout = 15;
    static constexpr int C_DBCheckFailed = -100;
    static constexpr int C_SpecParseError = -101;
    static constexpr int C_ScriptError = -102;
    static constexpr int C_NotifySystem = 1000;
    static constexpr int C_NotifyNotes = 1001;
    // Check items beyond these are not shown: a broken file can have thousands.
    static constexpr int C_MaxCheckItems = 100;
    static constexpr int C_FrequentMs = 1000;

    explicit ZBDBManagerQt(ZBDatabase* database, QWidget* parent = nullptr);
    ~ZBDBManagerQt() override;

    // Shows the window and loads the file through the load dialogs. The
    // periods are those of the periodic update, the detail calculation and
    // the interaction timer, in milliseconds. ZBErrC_ok when the file loaded
    // at once, okNotFinished while a question waits on the user.
    int start(const std::string& file, int flags, int periodic, int detail, int interaction);
    // The same for a file the user named: made when it does not exist.
    int start(const std::string& file, int periodic, int detail, int interaction);

    ZBDatabase* get_database() const { return m_database.get(); }
    bool is_loaded() const;
    // Saves the whole file; on failure the old file stays as it was.
    int save_now();
    // A command that arrived by URL, with its query items.
    virtual int url_command(const std::string& command, const std::map<std::string, std::string>& values);
    int update_display() override;
    void set_window_title();

    // Loading and unloading. do_load runs the load dialogs; do_unload unloads
    // at once when nothing stands in the way (ZBErrC_ok) or asks first
    // (okCancel, and then on_ok or on_cancel runs).
    int do_load(const std::string& file, const std::string& previous, int flags);
    int do_unload(bool quit, std::function<void()> onOk = nullptr, std::function<void()> onCancel = nullptr);
    // Unloads with no question: recent list, background thread, file, lock.
    int unload_now();
    int lock(const std::string& file, bool force);
    int unlock();
    const ZBLockFile& get_lock() const { return m_lock; }
    // Whether closing waits on an unload question.
    bool unload_waiting() const { return m_unloadWaiting; }

    // User commands.
    void user_create();
    void user_open();
    void user_import();
    void user_export();
    void user_save();
    void user_save_as();
    void user_close(bool quit, bool force);
    static int user_quit(bool force);
    void user_push();
    void undo_selected();
    void redo_selected();
    int do_save(bool force);
    int export_to(const std::string& file);
    // Asked before specs are edited: whether to save a copy first.
    void ask_spec_backup(std::function<void(bool)> done);

    // The heartbeat.
    int do_periodic_update();
    void frequent_timer_expired();
    void periodic_timer_expired();
    void on_db_changed();
    void force_recalculate();
    void trigger_detail_calculate() { m_detailFlag = true; }
    void set_ui_pause(bool pause) { m_uiPause = pause; }
    void set_pause(bool pause) { m_pause = pause; }
    // Marks user input: an update waits until the user has been idle a while.
    void mark_interact();
    void app_state_changed(Qt::ApplicationState state);
    // The clock of the heartbeat, in seconds; tests give their own.
    void set_clock(std::function<long long()> now) { m_clock = std::move(now); }
    long long now() const;
    long long get_last_update() const { return m_lastUpdate; }
    long long get_last_interact() const { return m_lastInteract; }
    int get_last_recalc_level() const { return m_lastLevel; }
    // How many updates ran to the end: for the status line and for tests.
    int get_nupdates() const { return m_nUpdates; }
    bool is_idle() const;
    QTimer* get_interaction_timer() const { return m_interactionTimer; }
    QTimer* get_detail_timer() const { return m_detailTimer; }
    QTimer* get_periodic_timer() const { return m_periodicTimer; }
    QTimer* get_frequent_timer() const { return m_frequentTimer; }
    ZBNotifyList& get_notify_list() { return m_notifyList; }
    void update_recalc_button(int level);
    QToolButton* get_recalc_button() const { return m_recalcButton; }
    ZBCloudButtonQt* get_cloud_button() const { return m_cloudButton; }
    void push_state_changed();
    // The database page of the settings dialog.
    void add_settings(ZBSettingsQt& settings);

    // What a derived window fills, in the order of the periodic update.
    virtual int update_calcs();
    virtual int generate_notify(ZBNotifyList& list);
    virtual int activate_notify(int id);
    virtual int select_notify(const ZBIdList& ids);
    virtual int context_notify(QPoint where, ZBId id);
    virtual int url_called(const std::string& url);
    virtual bool multiple_windows() const { return false; }
    virtual int new_window(const std::string& file, int flags, ZBDBManagerQt*& out);
    virtual int gui_started();
    // Ctrl+J anywhere in the application.
    virtual int quick_note();
    void notify_triggered(int id);
    void notify_selected(const ZBIdList& ids);

    // Steps that later work fills; each is a no-op until then.
    // Brings in changes that came from other devices.
    virtual int pull_all(bool canReplace);
    // 2 or 3 while a copy is being synced with other devices.
    virtual int sync_state() const { return 0; }
    // Whether changes wait to go out to other devices.
    virtual bool push_waiting() const { return false; }
    // The cloud state shown by the cloud button: -1 none, 4 connected.
    virtual int get_cloud_state() const { return -1; }
    virtual int validate_specs();
    virtual int validate_queries();
    // The first script with an error, if any.
    virtual bool get_error_script(std::string& name, int& line, std::string& message) const;
    // Rebuilds the notification list for this round: the data check's
    // findings (the first C_MaxCheckItems), the derived window's items, spec,
    // query and script errors; the one place that talks to the list.
    virtual void notify_update();

public slots:
    void db_loaded(const std::string& file);
    void db_create(const std::string& file);
    void db_failed();
    void db_cancelled();
    void db_imported();
    void db_close_file();
    void db_close_window();
    void db_quit();

signals:
    void loaded(const QString& file);
    void load_ended(bool ok);

protected:
    void closeEvent(QCloseEvent* event) override;
    // Key and mouse input anywhere marks the user as busy.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static int refuse_folder(const std::string& file);
    void build_toolbar();
    void report(int result);

    std::unique_ptr<ZBDatabase> m_database;
    ZBLockFile m_lock;
    ZBNotifyList m_notifyList;
    QLabel* m_label;
    QToolButton* m_recalcButton = nullptr;
    ZBCloudButtonQt* m_cloudButton = nullptr;
    QTimer* m_periodicTimer;
    QTimer* m_frequentTimer;
    QTimer* m_detailTimer;
    QTimer* m_interactionTimer;
    int m_periodic = 60000;
    int m_detail = 300000;
    int m_interaction = 15000;
    bool m_updateDue = false;
    bool m_detailFlag = false;
    bool m_uiPause = false;
    bool m_pause = false;
    bool m_inProgress = false;
    bool m_unloadWaiting = false;
    bool m_closeAfterUnload = false;
    long long m_lastUpdate = -1;
    long long m_lastInteract = -1;
    long m_lastDisplayCount = 0;
    long m_lastCalcCount = 0;
    int m_lastLevel = -1;
    int m_nUpdates = 0;
    std::function<long long()> m_clock;
};

} // namespace Tervalon
