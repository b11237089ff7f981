#include "LibDatabase/qt/zbdbsettingsformqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbmanager.h"
#include "LibCore/application/zbapplication.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrdetails.h"
#include "LibCore/param/zbparam.h"
#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbsettingsqt.h"

#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace Tervalon {

const char* const ZBDBSettingsFormQt::C_OpenAtStartup = "OpenAtStartup";

namespace {

QString error_message(const char* fallback)
{
    const ZBErrDetails* top = get_zberror().top();
    QString text = QString::fromStdString(top ? top->get_message() : std::string(fallback));
    get_zberror().clear_all();
    return text;
}

} // namespace

ZBDBSettingsFormQt::ZBDBSettingsFormQt(ZBDatabase& db, ZBDBManagerQt* manager, QWidget* parent)
    : ZBSettingsFormQt(parent), m_db(db), m_manager(manager)
{
    setObjectName("databaseSettings");
    QVBoxLayout* layout = new QVBoxLayout(this);
    QFormLayout* fields = new QFormLayout;
    m_backups = new QSpinBox(this);
    m_backups->setObjectName("backupsField");
    m_backups->setRange(0, 50);
    m_backups->setValue(db.get_backup_count());
    // A count of a few: a narrow field reads as one.
    m_backups->setMaximumWidth(m_backups->fontMetrics().horizontalAdvance("0000") + 48);
    m_backups->setToolTip("The system can automatically keep backups of this file.   How many do you want to keep?");
    fields->addRow("&Snapshots to Keep", m_backups);
    m_autosave = new QCheckBox("Save &automatically", this);
    m_autosave->setObjectName("autosaveCheckbox");
    m_autosave->setChecked(db.get_autosave());
    m_autosave->setToolTip("Save the file automatically after making changes and when quitting.");
    fields->addRow(QString(), m_autosave);
    m_noteUrl = new QLineEdit(QString::fromStdString(db.get_noteurl()), this);
    m_noteUrl->setObjectName("noteUrlField");
    m_noteUrl->setToolTip("The address that links in notes lead to.");
    fields->addRow("&Notes URL", m_noteUrl);
    layout->addLayout(fields);

    QGroupBox* startup = new QGroupBox("Open Files at Startup", this);
    QVBoxLayout* startupLayout = new QVBoxLayout(startup);
    m_reopenLast = new QRadioButton("Re-open &last open files", startup);
    m_reopenLast->setObjectName("reopenLast");
    m_reopenCurrent = new QRadioButton("Always re-open &current files", startup);
    m_reopenCurrent->setObjectName("reopenCurrent");
    const int open = has_zbparam() ? zbparam().get_system_value(C_OpenAtStartup, 0) : 0;
    (open == 1 ? m_reopenCurrent : m_reopenLast)->setChecked(true);
    startupLayout->addWidget(m_reopenLast);
    startupLayout->addWidget(m_reopenCurrent);
    layout->addWidget(startup);

    QGroupBox* upkeep = new QGroupBox("Snapshots and upkeep", this);
    QGridLayout* buttons = new QGridLayout(upkeep);
    struct Button {
        const char* text;
        const char* name;
        const char* tip;
        void (ZBDBSettingsFormQt::*slot)();
    };
    const Button list[] = {
        {"Restore Snapshot", "restoreSnapshot", "Put back the file as it was when a snapshot was taken.",
         &ZBDBSettingsFormQt::restore_snapshot},
        {"Take Snapshot", "takeSnapshot", "Keep a copy of the file as it is now.", &ZBDBSettingsFormQt::take_snapshot},
        {"Clean File", "cleanFile", "Drop data that this version does not use, to save space.",
         &ZBDBSettingsFormQt::clean_file},
        {"Error Log", "errorLog", "Show the log of errors.", &ZBDBSettingsFormQt::show_error_log},
    };
    int n = 0;
    for (const Button& b : list) {
        QPushButton* button = new QPushButton(b.text, upkeep);
        button->setObjectName(b.name);
        button->setToolTip(b.tip);
        auto slot = b.slot;
        connect(button, &QPushButton::clicked, this, [this, slot]() { (this->*slot)(); });
        // Two by two, snapshots above upkeep, each button as wide as its words.
        buttons->addWidget(button, n / 2, n % 2);
        ++n;
    }
    buttons->setColumnStretch(2, 1);
    upkeep->setEnabled(db.is_loaded() && !db.is_read_only());
    layout->addWidget(upkeep);
    layout->addStretch(1);
}

ZBDBSettingsFormQt::~ZBDBSettingsFormQt() = default;

ZBDBSettingsFormQt* ZBDBSettingsFormQt::add_settings(ZBSettingsQt& settings, ZBDatabase& db, ZBDBManagerQt* manager,
                                                     bool enabled)
{
    ZBDBSettingsFormQt* form = new ZBDBSettingsFormQt(db, manager);
    form->setEnabled(enabled);
    settings.add_form(form, "&Database");
    return form;
}

int ZBDBSettingsFormQt::read_form()
{
    m_db.set_backup_count(m_backups->value());
    m_db.set_autosave(m_autosave->isChecked());
    if (has_zbparam()) {
        zbparam().set_system_value(ZBDBManager::C_AutoSave, m_autosave->isChecked() ? 1 : 0);
        zbparam().set_system_value(C_OpenAtStartup, m_reopenCurrent->isChecked() ? 1 : 0);
    }
    const std::string url = m_noteUrl->text().trimmed().toStdString();
    if (m_db.is_loaded() && !m_db.is_read_only() && url != m_db.get_noteurl()) {
        m_db.set_noteurl(url);
        m_db.mark_changed(ZBLOC, true);
        if (iszbwarn(m_db.complete_operation("Change Settings")))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

QWidget* ZBDBSettingsFormQt::message_parent()
{
    return window();
}

void ZBDBSettingsFormQt::take_snapshot()
{
    if (iszbwarn(m_db.save_snapshot(false))) {
        ZBMessageBoxQt::information("Take Snapshot", error_message("The snapshot could not be taken."),
                                    message_parent());
        return;
    }
    ZBMessageBoxQt::information(
        "Snapshot Taken",
        "Snapshot taken.   Next time you save your file, this snapshot will be in the snapshot list.",
        message_parent());
}

void ZBDBSettingsFormQt::restore_snapshot()
{
    const std::string scratch = ZBDatabase::get_scratch_name(m_db.get_filename());
    QFileDialog* dialog = new QFileDialog(message_parent(), "Restore Snapshot",
                                          QFileInfo(QString::fromStdString(scratch)).absolutePath(),
                                          QString("Snapshots (%1.bk?)").arg(QFileInfo(QString::fromStdString(scratch)).fileName()));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QFileDialog::fileSelected, this,
            [this](const QString& file) { restore_selected(file.toStdString()); });
    dialog->open();
}

void ZBDBSettingsFormQt::restore_selected(const std::string& file)
{
    std::string keep;
    if (iszbwarn(m_db.restore_snapshot(file, keep))) {
        ZBMessageBoxQt::information("Restore Snapshot", error_message("The snapshot could not be restored."),
                                    message_parent());
        return;
    }
    ZBMessageBoxQt::information(
        "Restore Complete",
        QString::fromStdString(zb_sprintf("Snapshot %s restored.\nA copy of the file from before the restore has been "
                                          "saved at\n%s\nin the snapshots directory.",
                                          QFileInfo(QString::fromStdString(file)).fileName().toStdString().c_str(),
                                          keep.c_str())),
        message_parent());
    if (m_manager)
        m_manager->on_db_changed();
}

void ZBDBSettingsFormQt::clean_file()
{
    const std::string title = has_zbapplication() ? zbapplication().get_title() : std::string("this application");
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(
        ZBIdList(), QString(), "Clean Database",
        QString::fromStdString(zb_sprintf("You can save some space by cleaning up your application data.\nHowever... Do "
                                          "not do this if you load this data in two different versions of %s\nPress "
                                          "\"Ok\" if you want to proceed.",
                                          title.c_str())),
        ZBMessageBoxQt::E_Warning, ZBMessageBox::C_Ok, ZBMessageBox::C_Cancel, QString(), QString(), QString(),
        message_parent());
    connect(box, &ZBMessageBoxQt::sig_complete_key, this, [this](const QString& key) {
        if (key.toStdString() != ZBMessageBox::key_of(ZBMessageBox::C_Ok))
            return;
        ZBObject::set_purge_unhandled(true);
        int result = m_db.save(true, false, true);
        ZBObject::set_purge_unhandled(false);
        if (iszbwarn(result))
            ZBMessageBoxQt::information("Clean Database", error_message("The file could not be saved."),
                                        message_parent());
    });
}

void ZBDBSettingsFormQt::show_error_log()
{
    const QString log = has_zbapplication() ? QString::fromStdString(zbapplication().get_error_log()) : QString();
    QFile file(log);
    QString text;
    if (file.open(QIODevice::ReadOnly))
        text = QString::fromUtf8(file.readAll().right(200000));
    ZBMessageBoxQt* box = ZBMessageBoxQt::start(ZBIdList(), QString(), "Error Log",
                                                text.isEmpty() ? "The error log is empty." : "The error log, " + log + ":",
                                                ZBMessageBoxQt::E_Information, ZBMessageBox::C_Ok, QString(), QString(),
                                                QString(), text, message_parent());
    if (!text.isEmpty())
        box->handle_details();
}

} // namespace Tervalon
