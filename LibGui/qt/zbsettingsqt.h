#pragma once

#include "LibGui/qt/zbdialogqt.h"
#include "LibGui/qt/zbformitemqt.h"

#include <string>
#include <utility>
#include <vector>

class QDialogButtonBox;
class QTabWidget;

namespace Tervalon {

class ZBSettingsFormQt;

// The settings dialog: one tab per page. The first page, "General", holds
// the application's system values, each added by name; other pages are
// forms that write their own values. Ok checks every page before any is
// written, so a bad value loses nothing.
class ZBSettingsQt : public ZBDialogQt {
    Q_OBJECT
public:
    explicit ZBSettingsQt(QWidget* parent = nullptr);
    ~ZBSettingsQt() override;

    // A system value on the "General" page, shown as the kind given (bool,
    // int, float, text, path or choice); low and high bound numbers.
    // A value not yet set shows as defaultValue.
    ZBFormItemQt* add_param(const std::string& name, const QString& label, ZBFormItemQt::E_DataType kind,
                            const std::string& defaultValue = std::string(), double low = 0, double high = 100000,
                            const ZBFormItemQt::Choices& choices = {});
    // A "Notifications" page: one choice per scheme (its system key and label).
    void add_notify(const std::vector<std::pair<std::string, QString>>& schemes, const ZBFormItemQt::Choices& choices,
                    int defaultChoice);
    // Takes the page over.
    void add_form(ZBSettingsFormQt* form, const QString& title);
    int start(bool modal);
    QTabWidget* get_tabs() const { return m_tabs; }
    ZBSettingsFormQt* get_general() const { return m_general; }

    int validate_display() override;
    int read_display(bool final) override;
    int update_display() override;

private:
    void ok_pressed();
    ZBSettingsFormQt* notify_page();

    QTabWidget* m_tabs;
    QDialogButtonBox* m_buttons;
    ZBSettingsFormQt* m_general;
    ZBSettingsFormQt* m_notify = nullptr;
    std::vector<ZBSettingsFormQt*> m_form;
    std::vector<std::pair<std::string, ZBFormItemQt*>> m_param;
};

} // namespace Tervalon
