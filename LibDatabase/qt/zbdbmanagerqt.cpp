#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/qt/zbapplicationqt.h"
#include "LibDatabase/qt/zbcloudbuttonqt.h"
#include "LibDatabase/qt/zbdbimportqt.h"
#include "LibDatabase/qt/zbdbloadqt.h"
#include "LibDatabase/qt/zbdbsettingsformqt.h"
#include "LibDatabase/qt/zbdbunloadqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcheckitem.h"
#include "LibCore/application/zbappstatussetter.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrdetails.h"
#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbsettingsqt.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>

// The icons live in a static library; naming them here keeps the linker from dropping them.
static void init_libdatabase_resources()
{
    static bool done = false;
    if (!done) {
        Q_INIT_RESOURCE(libdatabase);
        done = true;
    }
}

namespace Tervalon {

namespace {

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

QString app_title()
{
    return has_zbapplication() ? q(zbapplication().get_title()) : QString();
}

QString app_extension()
{
    return has_zbapplication() ? q(zbapplication().get_extension()) : QString();
}

// The message of the error on top of the stack, which is then cleared.
QString take_error(const char* fallback)
{
    const ZBErrDetails* top = get_zberror().top();
    QString text = q(top ? top->get_message() : std::string(fallback));
    get_zberror().clear_all();
    return text;
}

} // namespace

ZBDBManagerQt::ZBDBManagerQt(ZBDatabase* database, QWidget* parent)
    : ZBMainWindowQt(parent), ZBDBManager(database), m_database(database), m_label(new QLabel(this)),
      m_periodicTimer(new QTimer(this)), m_frequentTimer(new QTimer(this)), m_detailTimer(new QTimer(this)),
      m_interactionTimer(new QTimer(this))
{
    init_libdatabase_resources();
    setObjectName("ZBDBManagerQt");
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setMargin(24);
    m_label->setObjectName("fileSummary");
    setCentralWidget(m_label);
    for (QTimer* timer : {m_periodicTimer, m_frequentTimer, m_detailTimer, m_interactionTimer})
        timer->setSingleShot(true);
    m_periodicTimer->setObjectName("periodicTimer");
    m_frequentTimer->setObjectName("frequentTimer");
    m_detailTimer->setObjectName("detailTimer");
    m_interactionTimer->setObjectName("interactionTimer");
    connect(m_periodicTimer, &QTimer::timeout, this, [this]() { periodic_timer_expired(); });
    connect(m_frequentTimer, &QTimer::timeout, this, [this]() { frequent_timer_expired(); });
    connect(m_interactionTimer, &QTimer::timeout, this, [this]() { m_updateDue = true; });
    build_toolbar();
    if (qApp) {
        qApp->installEventFilter(this);
        connect(qApp, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) { app_state_changed(state); });
    }
    resize(480, 200);
}

ZBDBManagerQt::~ZBDBManagerQt()
{
    if (qApp)
        qApp->removeEventFilter(this);
    if (has_zbapplicationqt())
        zbapplicationqt().remove_window(this);
    if (is_loaded())
        unload_now();
}

void ZBDBManagerQt::build_toolbar()
{
    QToolBar* bar = addToolBar("Database");
    bar->setObjectName("databaseToolbar");
    bar->setMovable(false);
    m_recalcButton = new QToolButton(bar);
    m_recalcButton->setObjectName("recalcButton");
    m_recalcButton->setText("Recalculate");
    m_recalcButton->setToolTip("Recalculate now. The icon shows whether a recalculation is running, waiting or done.");
    m_recalcButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
    connect(m_recalcButton, &QToolButton::clicked, this, [this]() { force_recalculate(); });
    bar->addWidget(m_recalcButton);
    m_cloudButton = new ZBCloudButtonQt(bar);
    connect(m_cloudButton, &QToolButton::clicked, this, [this]() { user_push(); });
    bar->addWidget(m_cloudButton);
    update_recalc_button(0);
    push_state_changed();
}

bool ZBDBManagerQt::is_loaded() const
{
    return m_database && m_database->is_loaded();
}

long long ZBDBManagerQt::now() const
{
    return m_clock ? m_clock() : QDateTime::currentSecsSinceEpoch();
}

int ZBDBManagerQt::start(const std::string& file, int periodic, int detail, int interaction)
{
    return start(file, E_CreateIfMissing, periodic, detail, interaction);
}

int ZBDBManagerQt::refuse_folder(const std::string& file)
{
    // A folder is no damaged file that a backup could replace: none of the
    // load questions fits, so the caller is told at once.
    if (!file.empty() && QFileInfo(q(file)).isDir())
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "%s is a folder, not a data file.", file.c_str());
    return ZBErrC_ok;
}

int ZBDBManagerQt::start(const std::string& file, int flags, int periodic, int detail, int interaction)
{
    if (iszbwarn(refuse_folder(file)))
        return zbpass(ZBLOC);
    m_periodic = periodic;
    m_detail = detail;
    m_interaction = interaction;
    if (has_zbapplicationqt())
        zbapplicationqt().add_window(this);
    show_dialog();
    // The file before this one is the way back when this one cannot be found.
    std::string previous;
    if (has_zbapplication())
        for (const std::string& recent : zbapplication().get_recent_files())
            if (recent != file && QFileInfo::exists(q(recent))) {
                previous = recent;
                break;
            }
    return do_load(file, previous, flags);
}

int ZBDBManagerQt::do_load(const std::string& file, const std::string& previous, int flags)
{
    if (iszbwarn(refuse_folder(file)))
        return zbpass(ZBLOC);
    ZBDBLoadQt::start_load(*m_database, file, previous, flags, *this);
    return is_loaded() && m_database->get_filename() == file ? ZBErrC_ok : ZBErrC_okNotFinished;
}

int ZBDBManagerQt::lock(const std::string& file, bool force)
{
    int result = m_lock.lock(file, force);
    if (result == ZBErrC_FileOpen)
        return result;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBManagerQt::unlock()
{
    return m_lock.unlock();
}

void ZBDBManagerQt::set_window_title()
{
    QString title = app_title();
    if (is_loaded()) {
        const QString name = QFileInfo(q(m_database->get_filename())).completeBaseName();
        title = title.isEmpty() ? name : name + " - " + title;
    }
    setWindowTitle(title);
}

int ZBDBManagerQt::update_display()
{
    set_window_title();
    if (!is_loaded()) {
        m_label->setText("No file is open.");
        return ZBErrC_ok;
    }
    const std::string& file = m_database->get_filename();
    m_label->setText(QString("<b>%1</b><br>%2<br>%3 objects")
                         .arg(QFileInfo(q(file)).fileName().toHtmlEscaped(), q(file).toHtmlEscaped())
                         .arg(m_database->get_nobjects()));
    return ZBErrC_ok;
}

int ZBDBManagerQt::save_now()
{
    if (!is_loaded() || m_database->is_read_only())
        return ZBErrC_ok;
    int result = m_database->save(true, true, false);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBManagerQt::url_command(const std::string&, const std::map<std::string, std::string>&)
{
    return ZBErrC_okNotHandled;
}

void ZBDBManagerQt::report(int result)
{
    if (iszbwarn(result))
        zbhandle_error(result, 2);
}

// ---- After a load, and the way out ----

void ZBDBManagerQt::db_loaded(const std::string& file)
{
    apply_settings();
    if (has_zbapplicationqt()) {
        ZBApplicationQt& app = zbapplicationqt();
        app.add_window(this);
        app.add_recent(file, std::max(0, app.get_window_id(this)));
    }
    update_display();
    m_lastUpdate = -1;
    do_periodic_update();
    m_periodicTimer->start(m_periodic);
    m_frequentTimer->start(C_FrequentMs);
    QTimer::singleShot(100, this, [this]() { report(gui_started()); });
    if (has_zbapplicationqt()) {
        zbapplicationqt().handle_pending_url();
        if (zbapplicationqt().get_nwindows() > 1)
            raise_window(0);
    }
    emit loaded(q(file));
    emit load_ended(true);
}

void ZBDBManagerQt::db_create(const std::string& file)
{
    ZBDBLoadQt::start_create(*m_database, file, *this);
}

void ZBDBManagerQt::db_failed()
{
    if (is_loaded()) {
        // The previous file came back.
        db_loaded(m_database->get_filename());
        return;
    }
    unlock();
    update_display();
    emit load_ended(false);
    // An empty window is of no use: it goes, and with it the program when it was the last.
    if (isVisible())
        close();
}

void ZBDBManagerQt::db_cancelled()
{
    db_failed();
}

void ZBDBManagerQt::db_imported()
{
    on_db_changed();
}

void ZBDBManagerQt::db_close_file()
{
    do_unload(false, [this]() { update_display(); });
}

void ZBDBManagerQt::db_close_window()
{
    close();
}

void ZBDBManagerQt::db_quit()
{
    user_quit(false);
}

int ZBDBManagerQt::unload_now()
{
    for (QTimer* timer : {m_periodicTimer, m_frequentTimer, m_detailTimer, m_interactionTimer})
        timer->stop();
    if (is_loaded()) {
        if (has_zbapplicationqt())
            zbapplicationqt().add_recent(m_database->get_filename(), std::max(0, zbapplicationqt().get_window_id(this)));
        m_database->stop_recalc_thread();
        int result = m_database->unload();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    m_lock.unlock();
    m_lastUpdate = -1;
    m_notifyList.reset();
    update_display();
    return ZBErrC_ok;
}

int ZBDBManagerQt::do_unload(bool quit, std::function<void()> onOk, std::function<void()> onCancel)
{
    (void)quit;
    if (m_unloadWaiting)
        return ZBErrC_okCancel;
    const int sync = sync_state();
    const bool needsSave = is_loaded() && !m_database->is_read_only() && m_database->needs_save();
    if (!is_loaded() || (!needsSave && sync != 2 && sync != 3 && !push_waiting())) {
        int result = unload_now();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
        if (onOk)
            onOk();
        return ZBErrC_ok;
    }
    m_unloadWaiting = true;
    ZBDBUnloadQt* unload = new ZBDBUnloadQt(*m_database, *this, false);
    connect(unload, &ZBDBUnloadQt::unload_complete, this, [this, onOk]() {
        m_unloadWaiting = false;
        if (onOk)
            onOk();
    });
    auto cancel = [this, onCancel]() {
        m_unloadWaiting = false;
        if (onCancel)
            onCancel();
    };
    connect(unload, &ZBDBUnloadQt::unload_cancelled, this, cancel);
    connect(unload, &ZBDBUnloadQt::unload_failed, this, cancel);
    unload->step1();
    return is_loaded() ? ZBErrC_okCancel : ZBErrC_ok;
}

void ZBDBManagerQt::closeEvent(QCloseEvent* event)
{
    if (m_unloadWaiting) {
        event->ignore();
        return;
    }
    if (is_loaded()) {
        if (has_zbapplicationqt()) {
            ZBApplicationQt& app = zbapplicationqt();
            app.record_open_windows(app.get_nwindows(), false);
        }
        m_closeAfterUnload = true;
        int result = do_unload(true, [this]() {
            // Answered later: the window closes now that the file is unloaded.
            if (!m_closeAfterUnload)
                close();
        });
        m_closeAfterUnload = false;
        if (iszbwarn(result))
            report(result);
        if (is_loaded()) {
            event->ignore();
            return;
        }
    }
    if (has_zbapplicationqt()) {
        ZBApplicationQt& app = zbapplicationqt();
        app.save_recent();
        app.remove_window(this);
    }
    ZBMainWindowQt::closeEvent(event);
    event->accept();
}

void ZBDBManagerQt::user_close(bool quit, bool force)
{
    (void)force;
    const int windows = has_zbapplicationqt() ? zbapplicationqt().get_nwindows() : 1;
    if (windows <= 1 && quit)
        db_close_window();
    else
        db_close_file();
}

int ZBDBManagerQt::user_quit(bool force)
{
    if (!has_zbapplicationqt())
        return ZBErrC_ok;
    ZBApplicationQt& app = zbapplicationqt();
    app.record_open_windows(app.get_nwindows(), force);
    for (int i = app.get_nwindows() - 1; i >= 0; --i) {
        ZBDBManagerQt* window = app.get_window_no(i);
        int result = window->do_unload(true, [window]() { window->close(); }, nullptr);
        if (result != ZBErrC_ok)
            return ZBErrC_okCancel;
        window->close();
    }
    QCoreApplication::exit(0);
    return ZBErrC_ok;
}

// ---- Commands ----

int ZBDBManagerQt::new_window(const std::string&, int, ZBDBManagerQt*& out)
{
    out = nullptr;
    return ZBErrC_okNotHandled;
}

void ZBDBManagerQt::user_create()
{
    ZBDBManagerQt* other = nullptr;
    if (is_loaded() && (!multiple_windows() || new_window(std::string(), E_CreateIfMissing, other) != ZBErrC_ok)) {
        if (!multiple_windows())
            ZBMessageBoxQt::information("File Already Loaded", "There is already a file loaded.", this);
        return;
    }
    const QString ext = app_extension();
    const QString file = QFileDialog::getSaveFileName(this, "New File", QString(),
                                                      ext.isEmpty() ? QString() : "Data files (*" + ext + ")");
    if (file.isEmpty())
        return;
    QString name = file;
    if (!ext.isEmpty() && !name.endsWith(ext))
        name += ext;
    db_create(name.toStdString());
}

void ZBDBManagerQt::user_open()
{
    if (is_loaded() && !multiple_windows()) {
        ZBMessageBoxQt::information("File Already Loaded", "There is already a file loaded.", this);
        return;
    }
    const QString ext = app_extension();
    const QString file = QFileDialog::getOpenFileName(this, "Load File",
                                                      has_zbapplication() ? q(zbapplication().get_data_dir()) : QString(),
                                                      ext.isEmpty() ? QString() : "Data files (*" + ext + ")");
    if (file.isEmpty())
        return;
    ZBDBManagerQt* other = nullptr;
    if (is_loaded()) {
        report(new_window(file.toStdString(), E_AllowReplace, other));
        return;
    }
    do_load(file.toStdString(), std::string(), E_AllowReplace);
}

void ZBDBManagerQt::user_import()
{
    ZBDBImportQt::start_import(*m_database, *this);
}

int ZBDBManagerQt::export_to(const std::string& file)
{
    if (file.empty()) {
        ZBMessageBoxQt::information("Export", "Please enter a file name to export to.", this);
        return ZBErrC_okCancel;
    }
    if (!is_loaded()) {
        ZBMessageBoxQt::information("Export", "There is no database file loaded.", this);
        return ZBErrC_okCancel;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    int result = m_database->export_db(file);
    QApplication::restoreOverrideCursor();
    if (iszbwarn(result)) {
        ZBMessageBoxQt::information("Export", take_error("The export failed."), this);
        return ZBErrC_okFailed;
    }
    ZBMessageBoxQt::information("Export", "Export Complete", this);
    return ZBErrC_ok;
}

void ZBDBManagerQt::user_export()
{
    QFileDialog* dialog = new QFileDialog(this, "Export As");
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { export_to(file.toStdString()); });
    dialog->open();
}

int ZBDBManagerQt::do_save(bool force)
{
    if (!is_loaded()) {
        ZBMessageBoxQt::information("Save", "There is no database file loaded.", this);
        return ZBErrC_okCancel;
    }
    repaint();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    int result = m_database->save(true, force, true);
    QApplication::restoreOverrideCursor();
    push_state_changed();
    if (iszbwarn(result)) {
        ZBMessageBoxQt::information("Save", take_error("The file could not be saved.") + "\nThe file on disk is unchanged.",
                                    this);
        return ZBErrC_okFailed;
    }
    update_display();
    return ZBErrC_ok;
}

void ZBDBManagerQt::user_save()
{
    do_save(false);
}

void ZBDBManagerQt::user_save_as()
{
    if (!is_loaded()) {
        ZBMessageBoxQt::information("Save", "There is no database file loaded.", this);
        return;
    }
    QFileDialog* dialog = new QFileDialog(this, "New File Name");
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
        QString name = file;
        const QString ext = app_extension();
        if (!ext.isEmpty() && !name.endsWith(ext))
            name += ext;
        if (iszbwarn(m_database->save_as(name.toStdString(), false)))
            ZBMessageBoxQt::information("Save", take_error("The file could not be saved."), this);
        else if (iszbwarn(lock(name.toStdString(), false)))
            get_zberror().clear_all();
        update_display();
    });
    dialog->open();
}

void ZBDBManagerQt::user_push()
{
    // Sending to other devices comes with the cloud services; until one is
    // connected the button says so in its tip.
    push_state_changed();
}

void ZBDBManagerQt::undo_selected()
{
    if (!is_loaded() || !m_database->can_undo())
        return;
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(ZBIdList(), QString(), "Undo",
                                                "Undo " + q(m_database->get_undo_operation()) + "?",
                                                ZBMessageBoxQt::E_Question, ZBMessageBox::C_Yes, ZBMessageBox::C_No,
                                                QString(), QString(), QString(), this);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) {
        if (key.toStdString() != ZBMessageBox::key_of(ZBMessageBox::C_Yes))
            return;
        report(m_database->undo());
        on_db_changed();
    });
}

void ZBDBManagerQt::redo_selected()
{
    if (!is_loaded() || !m_database->can_redo())
        return;
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(ZBIdList(), QString(), "Redo",
                                                "Redo " + q(m_database->get_redo_operation()) + "?",
                                                ZBMessageBoxQt::E_Question, ZBMessageBox::C_Yes, ZBMessageBox::C_No,
                                                QString(), QString(), QString(), this);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) {
        if (key.toStdString() != ZBMessageBox::key_of(ZBMessageBox::C_Yes))
            return;
        report(m_database->redo());
        on_db_changed();
    });
}

void ZBDBManagerQt::ask_spec_backup(std::function<void(bool)> done)
{
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Spec Edit", "Do you want to save a copy of your data before you modify the specs?",
        ZBMessageBoxQt::E_Question, ZBMessageBox::C_Yes, ZBMessageBox::C_No, ZBMessageBox::C_Cancel, QString(),
        QString(), this);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this, done](const QString& key) {
        const std::string k = key.toStdString();
        if (k == ZBMessageBox::key_of(ZBMessageBox::C_Yes)) {
            if (iszbwarn(m_database->save_snapshot(false))) {
                ZBMessageBoxQt::information("Spec Edit", take_error("The copy could not be saved."), this);
                return;
            }
            done(true);
        } else if (k == ZBMessageBox::key_of(ZBMessageBox::C_No)) {
            done(false);
        }
    });
}

void ZBDBManagerQt::add_settings(ZBSettingsQt& settings)
{
    ZBDBSettingsFormQt::add_settings(settings, *m_database, this, is_loaded());
}

// ---- The heartbeat ----

bool ZBDBManagerQt::is_idle() const
{
    return !m_interactionTimer->isActive();
}

void ZBDBManagerQt::periodic_timer_expired()
{
    m_updateDue = true;
}

void ZBDBManagerQt::frequent_timer_expired()
{
    if (is_loaded() && (m_database->recalc_complete() || m_updateDue))
        do_periodic_update();
    if (is_loaded())
        m_frequentTimer->start(C_FrequentMs);
}

int ZBDBManagerQt::do_periodic_update()
{
    if (m_pause || m_inProgress)
        return ZBErrC_okNotHandled;
    if (!is_loaded())
        return ZBErrC_okNotHandled;
    m_inProgress = true;
    struct Clear {
        bool& flag;
        ~Clear() { flag = false; }
    } clear{m_inProgress};

    const long long time = now();
    const bool longWait = m_lastUpdate < 0 || time - m_lastUpdate > C_MaxRecalcWait;
    const bool idle = is_idle();
    if (idle)
        m_uiPause = false;
    else if (m_uiPause)
        return ZBErrC_okNotHandled;
    if (!longWait && (m_database->object_edited() || isMinimized()))
        return ZBErrC_okNotHandled;

    update_recalc_button(2);
    ZBAppStatusSetter status("Recalculating...", false, 0);
    zbusererror_handle(false);

    report(pull_all(!m_database->needs_save()));

    const bool detailDue = !m_detailTimer->isActive() && idle;
    const int sync = sync_state();
    const bool syncing = sync == 2 || sync == 3;
    bool followUp = false;
    bool autosave = false;
    int level = ZBDatabase::E_RecalcNone;
    auto by_change = [&]() {
        if (m_database->db_has_changed_since(m_lastCalcCount, false)) {
            m_lastCalcCount = m_database->get_last_db_update();
            m_detailTimer->stop();
            return int(ZBDatabase::E_RecalcQuick);
        }
        return int(ZBDatabase::E_RecalcNone);
    };
    if (!syncing) {
        if (detailDue || m_detailFlag) {
            m_detailTimer->start(m_detail);
            m_detailFlag = false;
            // The full pass covers every change so far.
            m_lastCalcCount = m_database->get_last_db_update();
            level = ZBDatabase::E_RecalcFull;
            autosave = detailDue;
        } else {
            level = by_change();
        }
    } else {
        followUp = true;
        if (detailDue || m_detailFlag) {
            m_detailFlag = true;
            level = ZBDatabase::E_RecalcNone;
        } else {
            level = by_change();
        }
    }
    m_lastLevel = level;
    report(m_database->recalculate(ZBDatabase::E_RecalcLevel(level)));

    report(update_calcs());
    if (update_data_needed())
        report(update_data());

    notify_update();

    if (idle && (autosave || level != ZBDatabase::E_RecalcFull)) {
        int result = do_autosave(level == ZBDatabase::E_RecalcFull);
        // A failed autosave is told, and the heartbeat goes on.
        if (iszbwarn(result))
            report(result);
    }
    update_recalc_button(0);
    request_update_display(true);
    push_state_changed();

    m_lastUpdate = time;
    m_updateDue = false;
    ++m_nUpdates;
    if (followUp)
        QTimer::singleShot(C_FrequentMs, this, [this]() { periodic_timer_expired(); });
    else
        m_periodicTimer->start(m_periodic);
    return ZBErrC_ok;
}

void ZBDBManagerQt::on_db_changed()
{
    // The update rebuilds the notification list too, so the user's change shows at once everywhere.
    if (is_loaded())
        do_periodic_update();
    update_display();
}

void ZBDBManagerQt::force_recalculate()
{
    update_recalc_button(2);
    trigger_detail_calculate();
    QCoreApplication::processEvents();
    do_periodic_update();
}

void ZBDBManagerQt::update_recalc_button(int level)
{
    if (!m_recalcButton)
        return;
    const char* icon = ":/LibGui/images/32/CalculatePending.png";
    const char* state = "pending";
    if (level == 2) {
        icon = ":/LibGui/images/32/Calculate.png";
        state = "running";
    } else if (level == 0 && m_detailTimer->isActive() && !m_detailFlag) {
        icon = ":/LibGui/images/32/CalculateDone.png";
        state = "done";
    }
    m_recalcButton->setIcon(QIcon(icon));
    m_recalcButton->setProperty("state", state);
    m_recalcButton->repaint();
}

void ZBDBManagerQt::push_state_changed()
{
    if (m_cloudButton)
        m_cloudButton->update_state(get_cloud_state(), push_waiting());
}

void ZBDBManagerQt::mark_interact()
{
    m_lastInteract = now();
    m_interactionTimer->start(m_interaction);
}

bool ZBDBManagerQt::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
        if (watched->isWidgetType()) {
            mark_interact();
            if (event->type() == QEvent::KeyPress && isActiveWindow()) {
                QKeyEvent* key = static_cast<QKeyEvent*>(event);
                if (key->key() == Qt::Key_J && key->modifiers() == Qt::ControlModifier) {
                    report(quick_note());
                    return true;
                }
            }
        }
        break;
    default:
        break;
    }
    return ZBMainWindowQt::eventFilter(watched, event);
}

void ZBDBManagerQt::app_state_changed(Qt::ApplicationState state)
{
    if (!is_loaded())
        return;
    if (state == Qt::ApplicationActive) {
        const bool wasPaused = m_pause;
        m_pause = false;
        if (wasPaused && (m_lastUpdate < 0 || now() - m_lastUpdate > C_MaxRecalcWait))
            report(update_calcs());
        return;
    }
    // Leaving for another program saves what is waiting. Only a suspended
    // program stops its heartbeat: on a desktop the window keeps planning and
    // reminding while the user works elsewhere.
    report(do_autosave(false));
    if (state == Qt::ApplicationSuspended) {
        m_pause = true;
        if (m_database->needs_save() && m_database->get_autosave())
            report(m_database->save(false, false, false));
    }
}

// ---- Hooks ----

int ZBDBManagerQt::update_calcs()
{
    return ZBErrC_ok;
}

int ZBDBManagerQt::generate_notify(ZBNotifyList&)
{
    return ZBErrC_ok;
}

int ZBDBManagerQt::activate_notify(int)
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::select_notify(const ZBIdList&)
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::context_notify(QPoint, ZBId)
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::url_called(const std::string&)
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::gui_started()
{
    return ZBErrC_ok;
}

int ZBDBManagerQt::quick_note()
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::pull_all(bool)
{
    return ZBErrC_okNotHandled;
}

int ZBDBManagerQt::validate_specs()
{
    // The faults the last parse found; parsing again here would cost a pass over every spec each second.
    if (is_loaded() && !m_database->get_spec_errors().empty())
        return zbwarning(ZBErrC_Error, ZBLOC, "%s", m_database->get_spec_errors().front().c_str());
    return ZBErrC_ok;
}

int ZBDBManagerQt::validate_queries()
{
    return ZBErrC_ok;
}

bool ZBDBManagerQt::get_error_script(std::string&, int&, std::string&) const
{
    return false;
}

void ZBDBManagerQt::notify_update()
{
    m_notifyList.reset();
    const ZBDBChecker& checker = m_database->get_checker();
    for (int i = 0; i < checker.get_nitems() && i < C_MaxCheckItems; ++i) {
        const ZBDBCheckItem* item = checker.get_item_by_index(i);
        m_notifyList.add(ZBNotifyItem(C_NotifySystem, 300.0, item->get_short_message(), item->get_id(), ZBDate()));
    }
    report(generate_notify(m_notifyList));
    if (iszbwarn(validate_specs())) {
        get_zberror().clear_all();
        m_notifyList.add(ZBNotifyItem(C_NotifySystem, 300.0, "Object spec errors", C_SpecParseError, ZBDate()));
    }
    if (iszbwarn(validate_queries())) {
        get_zberror().clear_all();
        m_notifyList.add(ZBNotifyItem(C_NotifySystem, 300.0, "Query errors", C_SpecParseError, ZBDate()));
    }
    std::string script;
    std::string message;
    int line = 0;
    if (get_error_script(script, line, message))
        m_notifyList.add(ZBNotifyItem(C_NotifySystem, 300.0,
                                      "Script errors in " + script + " " + std::to_string(line) + ": " + message,
                                      C_ScriptError, ZBDate()));
    m_notifyList.update();
}

void ZBDBManagerQt::notify_triggered(int id)
{
    if (id == C_SpecParseError || id == C_ScriptError || id == C_NotifyNotes)
        return;
    report(activate_notify(id));
}

void ZBDBManagerQt::notify_selected(const ZBIdList& ids)
{
    ZBIdList rest;
    for (int i = 0; i < ids.size(); ++i)
        if (ids[i].m_id != C_DBCheckFailed && ids[i].m_id != C_SpecParseError)
            rest.add(ids[i]);
    report(select_notify(rest));
}

} // namespace Tervalon
