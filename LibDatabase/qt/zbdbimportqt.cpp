#include "LibDatabase/qt/zbdbimportqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/qt/zbfirstrunqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/application/zbapplication.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrdetails.h"
#include "LibGui/qt/zbmessageboxqt.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>

namespace Tervalon {

const char* const ZBDBImportQt::C_Merge = "Merge#Shortcut:m";
const char* const ZBDBImportQt::C_Replace = "Replace#Shortcut:r";
const char* const ZBDBImportQt::C_Open = "Open#Default#Shortcut:o";

ZBDBImportQt::ZBDBImportQt(ZBDatabase& db, ZBDBManagerQt& manager)
    : ZBWidgetQt(&manager), m_db(db), m_manager(manager)
{
    setObjectName("dbImport");
    hide();
}

ZBDBImportQt::~ZBDBImportQt() = default;

ZBDBImportQt* ZBDBImportQt::start_import(ZBDatabase& db, ZBDBManagerQt& manager)
{
    ZBDBImportQt* import = new ZBDBImportQt(db, manager);
    connect(import, &ZBDBImportQt::import_complete, &manager, &ZBDBManagerQt::db_imported);
    import->step1();
    return import;
}

void ZBDBImportQt::step1()
{
    const QString ext = has_zbapplication() ? QString::fromStdString(zbapplication().get_extension()) : QString();
    QFileDialog* dialog = new QFileDialog(&m_manager, "Import", ZBFirstRunQt::documents_folder(),
                                          ext.isEmpty() ? QString() : "Data files (*" + ext + ");;All files (*)");
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) { step2(file.toStdString()); });
    connect(dialog, &QFileDialog::rejected, this, [this]() { finish(); });
    dialog->open();
}

void ZBDBImportQt::step2(const std::string& file)
{
    m_file = file;
    if (!m_db.is_loaded()) {
        step3(C_Open);
        return;
    }
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Import Type",
        "Choose one of the following:\n- Open - Load the import file into the app directory and open it in a new "
        "window.\n- Replace - Replace your current data with the import file.\n- Merge - Merge the import file into "
        "this database.",
        ZBMessageBoxQt::E_Question, C_Merge, C_Replace, C_Open, ZBMessageBox::C_Cancel, QString(), &m_manager);
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) { step3(key); });
}

void ZBDBImportQt::step3(const QString& key)
{
    const std::string k = ZBMessageBox::key_of(key.toStdString());
    const QString name = QString::fromStdString(m_file);
    QFile probe(name);
    if (k != ZBMessageBox::key_of(ZBMessageBox::C_Cancel) && !probe.open(QIODevice::ReadOnly)) {
        ZBMessageBoxQt::information("Import", "Could not open the file " + name, &m_manager);
        finish();
        return;
    }
    probe.close();
    auto failed = [this](const char* fallback) {
        const ZBErrDetails* top = get_zberror().top();
        const QString text = QString::fromStdString(top ? top->get_message() : std::string(fallback));
        get_zberror().clear_all();
        ZBMessageBoxQt::information("Import", text, &m_manager);
    };
    if (k == ZBMessageBox::key_of(C_Open)) {
        const QString folder = has_zbapplication() ? QString::fromStdString(zbapplication().get_data_dir())
                                                   : ZBFirstRunQt::documents_folder();
        QDir().mkpath(folder);
        const QString copy = ZBFirstRunQt::free_name(folder, name);
        if (!QFile::copy(name, copy)) {
            ZBMessageBoxQt::information("Import", "Could not copy " + name + " to " + copy, &m_manager);
        } else {
            ZBDBManagerQt* other = nullptr;
            if (!m_db.is_loaded())
                m_manager.do_load(copy.toStdString(), std::string(), ZBDBManagerQt::E_AllowReplace);
            else if (m_manager.new_window(copy.toStdString(), ZBDBManagerQt::E_AllowReplace, other) != ZBErrC_ok)
                m_manager.do_load(copy.toStdString(), m_db.get_filename(), ZBDBManagerQt::E_AllowReplace);
        }
    } else if (k == ZBMessageBox::key_of(C_Replace)) {
        // The data being replaced stays within reach as a snapshot.
        QApplication::setOverrideCursor(Qt::WaitCursor);
        int result = m_db.save_snapshot(false);
        if (!iszbwarn(result))
            result = m_db.replace_file(m_file);
        QApplication::restoreOverrideCursor();
        if (iszbwarn(result))
            failed("The file could not be imported.");
        else
            emit import_complete();
    } else if (k == ZBMessageBox::key_of(C_Merge)) {
        // Merging copies of one file comes with the merge of other devices'
        // copies; until then the choice says so and changes nothing.
        ZBMessageBoxQt::information("Import", "Merging is not available in this version; nothing was changed.",
                                    &m_manager);
    }
    finish();
}

void ZBDBImportQt::finish()
{
    deleteLater();
}

} // namespace Tervalon
