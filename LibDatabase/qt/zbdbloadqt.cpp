#include "LibDatabase/qt/zbdbloadqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/qt/zbfirstrunqt.h"
#include "LibDatabase/qt/zbtemplateselectqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zblockfile.h"
#include "LibCore/application/zbapplication.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrdetails.h"
#include "LibGui/qt/zbmessageboxqt.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>

#include <memory>

namespace Tervalon {

const char* const ZBDBLoadQt::C_FindIt = "Find It#Shortcut:f";
const char* const ZBDBLoadQt::C_CreateNew = "Create New#Shortcut:c";
const char* const ZBDBLoadQt::C_Previous = "Previous#Shortcut:p";
const char* const ZBDBLoadQt::C_OpenAnyway = "Open Anyway#Shortcut:o";
const char* const ZBDBLoadQt::C_TryAgain = "Try Again#Default#Shortcut:t";
const char* const ZBDBLoadQt::C_AutoSaved = "Auto-Saved#Shortcut:a";

namespace {

QString q(const std::string& text)
{
    return QString::fromStdString(text);
}

std::string extension()
{
    return has_zbapplication() ? zbapplication().get_extension() : std::string();
}

// A name beside file that is not in use: file plus suffix, then numbered.
std::string free_name(const std::string& file, const std::string& suffix)
{
    std::string name = file + suffix;
    for (int n = 1; QFileInfo::exists(q(name)); ++n)
        name = file + suffix + std::to_string(n);
    return name;
}

bool key_is(const QString& key, const char* description)
{
    return key.toStdString() == ZBMessageBox::key_of(description);
}

} // namespace

ZBDBLoadQt::ZBDBLoadQt(ZBDatabase& db, ZBDBManagerQt& manager) : ZBWidgetQt(&manager), m_db(db), m_manager(manager)
{
    setObjectName("dbLoad");
    hide();
}

ZBDBLoadQt::~ZBDBLoadQt() = default;

ZBDBLoadQt* ZBDBLoadQt::start_load(ZBDatabase& db, const std::string& file, const std::string& previous, int flags,
                                   ZBDBManagerQt& manager)
{
    ZBDBLoadQt* load = new ZBDBLoadQt(db, manager);
    load->m_file = file;
    load->m_previous = previous;
    load->m_flags = flags;
    connect(load, &ZBDBLoadQt::load_complete, &manager, &ZBDBManagerQt::db_loaded);
    connect(load, &ZBDBLoadQt::load_failed, &manager, &ZBDBManagerQt::db_failed);
    connect(load, &ZBDBLoadQt::load_cancelled, &manager, &ZBDBManagerQt::db_cancelled);
    connect(load, &ZBDBLoadQt::do_create, &manager, &ZBDBManagerQt::db_create);
    load->load_step1();
    return load;
}

ZBDBLoadQt* ZBDBLoadQt::start_create(ZBDatabase& db, const std::string& file, ZBDBManagerQt& manager)
{
    ZBDBLoadQt* load = new ZBDBLoadQt(db, manager);
    load->m_file = file;
    load->m_create = true;
    connect(load, &ZBDBLoadQt::load_complete, &manager, &ZBDBManagerQt::db_loaded);
    connect(load, &ZBDBLoadQt::load_failed, &manager, &ZBDBManagerQt::db_failed);
    connect(load, &ZBDBLoadQt::load_cancelled, &manager, &ZBDBManagerQt::db_cancelled);
    load->create_step1();
    return load;
}

void ZBDBLoadQt::load_step1()
{
    if (m_file.empty() && has_zbapplication())
        m_file = zbapplication().get_first_file();
    if (!m_file.empty()) {
        load_step2(ZBErrC_ok);
        return;
    }
    // Nothing to open: a first run. The dialog waits without blocking, like every other step.
    ZBFirstRunQt* first = new ZBFirstRunQt(&m_manager);
    connect(first, &ZBFirstRunQt::chosen, this, [this](int choice, const QString& file) {
        m_file = file.toStdString();
        load_step2(choice == ZBFirstRunQt::E_Create ? ZBErrC_okCreate
                                                    : (m_file.empty() ? ZBErrC_okCancel : ZBErrC_ok));
    });
    first->start();
}

void ZBDBLoadQt::load_step2(int code)
{
    if (code == ZBErrC_okCreate) {
        emit do_create(m_file);
        finish();
        return;
    }
    if (code != ZBErrC_ok || m_file.empty()) {
        failed();
        return;
    }
    if (m_db.is_loaded()) {
        if (m_db.get_filename() == m_file) {
            complete();
            return;
        }
        if (!(m_flags & ZBDBManagerQt::E_AllowReplace)) {
            failed();
            return;
        }
        m_previous = m_db.get_filename();
        m_reload = m_previous;
        QPointer<ZBDBLoadQt> self(this);
        m_manager.do_unload(false, [self]() { if (self) self->load_step3(); },
                            [self]() { if (self) self->cancelled(); });
        return;
    }
    load_step3();
}

void ZBDBLoadQt::load_step3()
{
    if (QFileInfo(q(m_file)).isFile()) {
        load_step4();
        return;
    }
    if (m_flags & (ZBDBManagerQt::E_CreateIfMissing | ZBDBManagerQt::E_UseTemplate)) {
        find_base(true);
        return;
    }
    // Without a previous file the button would lead nowhere, so it is left out.
    const bool hasPrevious = !m_previous.empty() && m_previous != m_file;
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Load File", "Could not find or access " + q(m_file) + ". Do you want to:",
        ZBMessageBoxQt::E_Question, C_FindIt, C_CreateNew, hasPrevious ? QString(C_Previous) : QString(),
        ZBMessageBox::C_Quit, QString(), &m_manager);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { file_create_choice(key); });
}

void ZBDBLoadQt::file_create_choice(const QString& key)
{
    if (key_is(key, C_FindIt)) {
        const QString dir = has_zbapplication() ? q(zbapplication().get_data_dir()) : QString();
        const QString ext = q(extension()).remove('.');
        QFileDialog* dialog = new QFileDialog(&m_manager, "Load File", dir,
                                              ext.isEmpty() ? QString() : QString("Data files (*.%1)").arg(ext));
        dialog->setFileMode(QFileDialog::ExistingFile);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { file_found(file.toStdString()); });
        // Closing the selector brings the question back: nothing was chosen yet.
        connect(dialog, &QFileDialog::rejected, this, [this]() { load_step3(); });
        dialog->open();
    } else if (key_is(key, C_CreateNew)) {
        find_base(false);
    } else if (key_is(key, C_Previous) && !m_previous.empty()) {
        file_found(m_previous);
    } else {
        failed();
    }
}

void ZBDBLoadQt::file_found(const std::string& file)
{
    m_file = file;
    load_step3();
}

void ZBDBLoadQt::find_base(bool create)
{
    m_templates.clear();
    const std::string ext = extension();
    if (has_zbapplication() && !ext.empty()) {
        QDir dir(q(zbapplication().get_resources_dir()));
        for (const QString& name : dir.entryList({"*" + q(ext)}, QDir::Files, QDir::Name))
            m_templates.push_back(dir.absoluteFilePath(name).toStdString());
    }
    if (m_templates.size() <= 1 || create) {
        base_chosen(m_templates.empty() ? std::string() : m_templates.front());
        return;
    }
    std::vector<std::pair<QString, QString>> choices;
    for (const std::string& file : m_templates) {
        std::unique_ptr<ZBDatabase> probe(m_db.create_verification_db(m_db.get_app_type()));
        QString comment;
        if (probe && !iszbwarn(probe->read(file)))
            comment = q(probe->get_comment());
        get_zberror().clear_all();
        choices.emplace_back(QFileInfo(q(file)).completeBaseName(), comment);
    }
    ZBTemplateSelectQt* select = new ZBTemplateSelectQt("Select a template to use", choices, "Create", &m_manager);
    connect(select, &ZBTemplateSelectQt::chosen, this, [this](int index) {
        if (index < 0)
            cancelled();
        else
            base_chosen(m_templates[size_t(index)]);
    });
    select->start();
}

void ZBDBLoadQt::base_chosen(const std::string& base)
{
    m_template = base;
    if (m_create && !m_db.is_loaded() && m_manager.get_lock().is_locked()) {
        create_step3();
        return;
    }
    m_create = true;
    load_step4();
}

void ZBDBLoadQt::load_step4()
{
    // Asked again, a lock whose owner is gone is taken over: the user has seen the question.
    const bool takeOver = m_triedAgain && !ZBLockFile::held_by_live_process(m_file);
    int result = m_manager.lock(m_file, takeOver);
    if (!iszbwarn(result) && result != ZBErrC_FileOpen) {
        load_step5();
        return;
    }
    get_zberror().clear_all();
    ZBMessageBoxQt::question(
        this, &ZBDBLoadQt::lock_choice, "Load File",
        QString::fromStdString(zb_sprintf(ZBLockFile::C_LockedQuestion, m_file.c_str())), ZBMessageBox::C_Quit,
        C_OpenAnyway, C_TryAgain, &m_manager);
}

void ZBDBLoadQt::lock_choice(const QString& key)
{
    if (key_is(key, C_OpenAnyway)) {
        // The user accepts sharing the file: a lock a live program holds stays its own.
        if (iszbwarn(m_manager.lock(m_file, true)))
            get_zberror().clear_all();
        load_step5();
    } else if (key_is(key, C_TryAgain)) {
        m_triedAgain = true;
        load_step4();
    } else {
        failed();
    }
}

std::string ZBDBLoadQt::error_text() const
{
    const ZBErrDetails* top = get_zberror().top();
    return top ? top->get_message() : std::string();
}

void ZBDBLoadQt::load_file(bool usePartial, bool forceClean)
{
    const bool hasPartial = usePartial && ZBDatabase::has_partial(m_file);
    m_db.set_report_damaged_partial(true);
    int result = m_db.load(m_file, m_create, m_template, hasPartial, forceClean, usePartial);
    m_db.set_report_damaged_partial(false);
    if (!iszbwarn(result)) {
        complete();
        return;
    }
    const int code = result % 100000;
    const std::string details = error_text();
    get_zberror().clear_all();
    const QString name = q(m_file);
    if (code == ZBDatabase::ZBErrC_CorruptPartial) {
        ZBMessageBoxQt* box = ZBMessageBoxQt::start(
            ZBIdList(), QString(), "Partial Save",
            "A partially saved version of " + name + " has been located, but is corrupt.\n"
                "The application may not have been shut down cleanly last time is was run.  You can delete the file, "
                "or just quit.",
            ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Delete, ZBMessageBox::C_Quit, QString(), QString(), q(details),
            &m_manager);
        connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { handle_partial(key); });
    } else if (code == ZBDatabase::ZBErrC_Intermediate) {
        ZBMessageBoxQt* box = ZBMessageBoxQt::start(
            ZBIdList(), QString(), "Temp Files",
            "Some temporary files from " + name + " have been located.\n"
                "The application may not have been shut down cleanly last time is was run.  You can delete these "
                "files, or just quit.",
            ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Delete, ZBMessageBox::C_Quit, QString(), QString(), q(details),
            &m_manager);
        connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { handle_temp(key); });
    } else {
        ZBMessageBoxQt* box = ZBMessageBoxQt::start(
            ZBIdList(), QString(), "Corrupt File",
            "There was a problem opening " + name + ".  Press OK to view the error details.\n"
                "If the file is corrupt, then you can delete it, and restore from a backup or open the Auto-Saved file.",
            ZBMessageBoxQt::E_Critical, ZBMessageBox::C_Ok, ZBMessageBox::C_Delete, C_AutoSaved, QString(),
            q(details), &m_manager);
        connect(box, &ZBMessageBoxQt::sig_complete_key, this,
                [this, details](const QString& key) {
                    if (key_is(key, ZBMessageBox::C_Ok)) {
                        ZBMessageBoxQt::information("Corrupt File", q(details.empty() ? "No details." : details),
                                                    &m_manager, [this](const QString&) { failed(); });
                        return;
                    }
                    handle_load_fail(key);
                });
    }
}

void ZBDBLoadQt::load_step5()
{
    load_file(true, false);
}

void ZBDBLoadQt::handle_partial(const QString& key)
{
    if (!key_is(key, ZBMessageBox::C_Delete)) {
        failed();
        return;
    }
    if (m_db.is_loaded())
        m_db.unload();
    ZBDatabase::remove_partial(m_file);
    load_file(false, false);
}

void ZBDBLoadQt::handle_temp(const QString& key)
{
    if (!key_is(key, ZBMessageBox::C_Delete)) {
        failed();
        return;
    }
    // Only the leftovers of an unfinished save go: the session's log still
    // holds the user's latest changes, so it is replayed as usual.
    load_file(true, true);
}

void ZBDBLoadQt::handle_load_fail(const QString& key)
{
    if (key_is(key, ZBMessageBox::C_Delete)) {
        ZBMessageBoxQt* box = ZBMessageBoxQt::start(ZBIdList(), QString(), "Corrupt File",
                                                    "Are you sure you want to delete " + q(m_file),
                                                    ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Ok,
                                                    ZBMessageBox::C_Cancel, QString(), QString(), QString(), &m_manager);
        connect(box, &ZBMessageBoxQt::sig_complete_key, this,
                [this](const QString& answer) { handle_delete_corrupt(answer); });
    } else if (key_is(key, C_AutoSaved)) {
        int result = m_db.handle_load_fail(m_file);
        if (result == ZBErrC_okNotHandled) {
            ZBMessageBoxQt::information("Corrupt File", "There is no auto-saved copy of " + q(m_file) + ".",
                                        &m_manager, [this](const QString&) { load_step5(); });
            return;
        }
        if (iszbwarn(result)) {
            const std::string details = error_text();
            get_zberror().clear_all();
            ZBMessageBoxQt::information("Corrupt File", q(details), &m_manager, [this](const QString&) { failed(); });
            return;
        }
        complete();
    } else {
        failed();
    }
}

void ZBDBLoadQt::handle_delete_corrupt(const QString& key)
{
    if (!key_is(key, ZBMessageBox::C_Ok)) {
        // Back to the choices: nothing was touched.
        load_step5();
        return;
    }
    if (m_db.is_loaded())
        m_db.unload();
    // Set aside, not removed: a damaged file can often still be mended by hand.
    const std::string aside = free_name(m_file, ZBDatabase::C_BakExtension);
    if (!QFile::rename(q(m_file), q(aside))) {
        ZBMessageBoxQt::information("Corrupt File", "Could not move " + q(m_file) + " out of the way.", &m_manager,
                                    [this](const QString&) { failed(); });
        return;
    }
    ZBDatabase::remove_partial(m_file);
    create_step1();
}

void ZBDBLoadQt::create_step1()
{
    m_create = true;
    if (!QFileInfo::exists(q(m_file))) {
        create_step2();
        return;
    }
    const QString name = q(m_file);
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Overrwrite File",
        "The file " + name + " already exists.\nDo you want to overwrite it?\nNOTE: All data in " + name +
            " will be lost.",
        ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Yes, ZBMessageBox::C_No, ZBMessageBox::C_Quit, QString(), QString(),
        &m_manager);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { overwrite_choice(key); });
}

void ZBDBLoadQt::overwrite_choice(const QString& key)
{
    if (key_is(key, ZBMessageBox::C_Yes)) {
        ZBDatabase::remove_partial(m_file);
        QFile::remove(q(m_file));
        create_step2();
    } else if (key_is(key, ZBMessageBox::C_No)) {
        cancelled();
    } else {
        failed();
    }
}

void ZBDBLoadQt::create_step2()
{
    if (iszbwarn(m_manager.lock(m_file, true)))
        get_zberror().clear_all();
    if (!m_db.is_loaded()) {
        find_base(false);
        return;
    }
    create_step3();
}

void ZBDBLoadQt::create_step3()
{
    int result = m_db.load(m_file, true, m_template);
    if (iszbwarn(result)) {
        const std::string details = error_text();
        get_zberror().clear_all();
        ZBMessageBoxQt::information("Create File", q(details), &m_manager, [this](const QString&) { failed(); });
        return;
    }
    complete();
}

void ZBDBLoadQt::complete()
{
    if (m_done)
        return;
    emit load_complete(m_db.get_filename());
    finish();
}

void ZBDBLoadQt::cancelled()
{
    if (m_done)
        return;
    reload();
    emit load_cancelled();
    finish();
}

void ZBDBLoadQt::failed()
{
    if (m_done)
        return;
    reload();
    emit load_failed();
    finish();
}

void ZBDBLoadQt::reload()
{
    // Only a file this load unloaded comes back; a file merely offered as the way back does not.
    if (m_db.is_loaded() || m_reload.empty() || m_reload == m_file)
        return;
    if (iszbwarn(m_manager.lock(m_reload, false)))
        get_zberror().clear_all();
    if (iszbwarn(m_db.load(m_reload, false, std::string(), ZBDatabase::has_partial(m_reload))))
        get_zberror().clear_all();
}

void ZBDBLoadQt::finish()
{
    m_done = true;
    deleteLater();
}

} // namespace Tervalon
