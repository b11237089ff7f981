#pragma once

#include "LibGui/qt/zbsettingsformqt.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSpinBox;

namespace Tervalon {

class ZBDatabase;
class ZBDBManagerQt;
class ZBSettingsQt;

// The database page of the settings: how many snapshots are kept, autosave,
// the notes address, which files open at start-up, and the file's upkeep
// (snapshots, cleaning, the error log). Values are written back only when
// the dialog is accepted; the upkeep buttons act at once, each asking or
// telling the user what it did.
class ZBDBSettingsFormQt : public ZBSettingsFormQt {
    Q_OBJECT
public:
    static const char* const C_OpenAtStartup;

    ZBDBSettingsFormQt(ZBDatabase& db, ZBDBManagerQt* manager, QWidget* parent = nullptr);
    ~ZBDBSettingsFormQt() override;

    static ZBDBSettingsFormQt* add_settings(ZBSettingsQt& settings, ZBDatabase& db, ZBDBManagerQt* manager,
                                            bool enabled);
    int read_form() override;

    void take_snapshot();
    void restore_snapshot();
    void restore_selected(const std::string& file);
    void clean_file();
    void show_error_log();

    QSpinBox* get_backups() const { return m_backups; }
    QCheckBox* get_autosave() const { return m_autosave; }

private:
    QWidget* message_parent();

    ZBDatabase& m_db;
    ZBDBManagerQt* m_manager;
    QSpinBox* m_backups;
    QCheckBox* m_autosave;
    QLineEdit* m_noteUrl;
    QRadioButton* m_reopenLast;
    QRadioButton* m_reopenCurrent;
};

} // namespace Tervalon
