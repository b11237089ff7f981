#include "LibDatabase/qt/zbdbunloadqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrdetails.h"
#include "LibGui/qt/zbmessageboxqt.h"

#include <QApplication>
#include <QFileInfo>
#include <QTimer>

namespace Tervalon {

const char* const ZBDBUnloadQt::C_Discard = "Discard#Shortcut:d";

ZBDBUnloadQt::ZBDBUnloadQt(ZBDatabase& db, ZBDBManagerQt& manager, bool force)
    : ZBWidgetQt(&manager), m_db(db), m_manager(manager), m_force(force)
{
    setObjectName("dbUnload");
    hide();
}

ZBDBUnloadQt::~ZBDBUnloadQt() = default;

ZBDBUnloadQt* ZBDBUnloadQt::start_unload(ZBDatabase& db, ZBDBManagerQt& manager, bool force)
{
    ZBDBUnloadQt* unload = new ZBDBUnloadQt(db, manager, force);
    unload->step1();
    return unload;
}

void ZBDBUnloadQt::step1()
{
    if (!m_db.is_loaded()) {
        m_manager.unlock();
        emit unload_complete();
        finish();
        return;
    }
    if (!m_db.needs_save() || m_db.is_read_only()) {
        step2();
        return;
    }
    if (m_db.get_autosave()) {
        save_choice(QString::fromStdString(ZBMessageBox::key_of(ZBMessageBox::C_Save)));
        return;
    }
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Save",
        QFileInfo(QString::fromStdString(m_db.get_filename())).fileName() + " has changes and needs to be saved.",
        ZBMessageBoxQt::E_Question, ZBMessageBox::C_Save, C_Discard, ZBMessageBox::C_Cancel, QString(), QString(),
        &m_manager);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { save_choice(key); });
}

void ZBDBUnloadQt::save_choice(const QString& key)
{
    const std::string k = key.toStdString();
    if (k == ZBMessageBox::key_of(ZBMessageBox::C_Save)) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        int result = m_db.save(true, true, true);
        QApplication::restoreOverrideCursor();
        if (iszbwarn(result)) {
            // A failed save never lets the changes go: the user is asked again.
            const ZBErrDetails* top = get_zberror().top();
            const QString text = QString::fromStdString(top ? top->get_message() : std::string("The file could not be saved."));
            get_zberror().clear_all();
            ZBMessageBoxQt::information("Save", text + "\nThe file on disk is unchanged.", &m_manager,
                                        [this](const QString&) {
                                            emit unload_cancelled();
                                            finish();
                                        });
            return;
        }
        step2();
    } else if (k == ZBMessageBox::key_of(C_Discard)) {
        ZBDatabase::remove_partial(m_db.get_filename());
        step2();
    } else {
        emit unload_cancelled();
        finish();
    }
}

void ZBDBUnloadQt::step2()
{
    const int sync = m_manager.sync_state();
    if (sync != 2 && sync != 3 && !m_manager.push_waiting()) {
        step3();
        return;
    }
    if (m_force) {
        QTimer::singleShot(1000, this, [this]() { step2(); });
        return;
    }
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Sync In Progess",
        QFileInfo(QString::fromStdString(m_db.get_filename())).fileName() + " is being synced. Do you still want to quit?",
        ZBMessageBoxQt::E_Question, ZBMessageBox::C_Yes, ZBMessageBox::C_No, QString(), QString(), QString(), &m_manager);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { sync_choice(key); });
}

void ZBDBUnloadQt::sync_choice(const QString& key)
{
    if (key.toStdString() == ZBMessageBox::key_of(ZBMessageBox::C_Yes)) {
        step3();
        return;
    }
    emit unload_cancelled();
    finish();
}

void ZBDBUnloadQt::step3()
{
    int result = m_manager.unload_now();
    if (iszbwarn(result)) {
        get_zberror().clear_all();
        emit unload_failed();
    } else {
        emit unload_complete();
    }
    finish();
}

void ZBDBUnloadQt::finish()
{
    m_done = true;
    deleteLater();
}

} // namespace Tervalon
