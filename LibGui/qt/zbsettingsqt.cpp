#include "LibGui/qt/zbsettingsqt.h"
#include "LibGui/qt/zbsettingsformqt.h"
#include "LibCore/error/zberror.h"
#include "LibCore/param/zbparam.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

namespace Tervalon {

namespace {

std::string system_value(const std::string& name)
{
    return has_zbparam() ? zbparam().get_system_value(name) : std::string();
}

QWidget* scrolled(QWidget* page)
{
    QScrollArea* area = new QScrollArea;
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    // The page shows the tab's own background, not a well cut into it.
    area->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    QWidget* holder = new QWidget;
    QVBoxLayout* layout = new QVBoxLayout(holder);
    layout->addWidget(area);
    return holder;
}

} // namespace

ZBSettingsQt::ZBSettingsQt(QWidget* parent)
    : ZBDialogQt(parent), m_tabs(new QTabWidget), m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel)),
      m_general(new ZBSettingsFormQt)
{
    setObjectName("settingsDialog");
    setWindowTitle("Settings");
    m_tabs->setObjectName("settingsTab");
    m_tabs->setToolTip("This dialog lets you edit the settings for the application.");
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_buttons);
    m_general->setObjectName("generalPage");
    m_form.push_back(m_general);
    m_tabs->addTab(scrolled(m_general), "&General");
    m_tabs->widget(0)->setObjectName("generalTab");
    connect(m_buttons, &QDialogButtonBox::accepted, this, [this]() { ok_pressed(); });
    connect(m_buttons, &QDialogButtonBox::rejected, this, [this]() { dialog_done(QDialog::Rejected); });
    resize(560, 420);
}

ZBSettingsQt::~ZBSettingsQt() = default;

ZBFormItemQt* ZBSettingsQt::add_param(const std::string& name, const QString& label, ZBFormItemQt::E_DataType kind,
                                      const std::string& defaultValue, double low, double high,
                                      const ZBFormItemQt::Choices& choices)
{
    const bool set = has_zbparam() && zbparam().is_system_value_set(name);
    const std::string value = set ? system_value(name) : defaultValue;
    ZBFormItemQt* item = new ZBFormItemQt;
    switch (kind) {
    case ZBFormItemQt::E_Bool:
        item->set_bool_type(name, label, value == "1" || value == "true");
        break;
    case ZBFormItemQt::E_Int:
        // A stored value that is not a number, or out of range, shows as the nearest allowed one.
        item->set_int_type(name, label, int(std::strtol(value.c_str(), nullptr, 10)), int(low), int(high));
        break;
    case ZBFormItemQt::E_Float:
        item->set_float_type(name, label, std::strtod(value.c_str(), nullptr), low, high);
        break;
    case ZBFormItemQt::E_Path:
        item->set_path_type(name, label, QString::fromStdString(value), false);
        break;
    case ZBFormItemQt::E_Choice:
        item->set_choice_type(name, label, choices, int(std::strtol(value.c_str(), nullptr, 10)));
        break;
    default:
        item->set_text_type(name, label, QString::fromStdString(value));
        break;
    }
    m_general->add_item(item);
    m_param.emplace_back(name, item);
    return item;
}

ZBSettingsFormQt* ZBSettingsQt::notify_page()
{
    if (!m_notify) {
        m_notify = new ZBSettingsFormQt;
        m_notify->setObjectName("notifyPage");
        add_form(m_notify, "&Notifications");
    }
    return m_notify;
}

void ZBSettingsQt::add_notify(const std::vector<std::pair<std::string, QString>>& schemes,
                              const ZBFormItemQt::Choices& choices, int defaultChoice)
{
    ZBSettingsFormQt* page = notify_page();
    for (const auto& scheme : schemes) {
        const std::string value = system_value(scheme.first);
        ZBFormItemQt* item = new ZBFormItemQt;
        item->set_choice_type(scheme.first, scheme.second, choices,
                              value.empty() ? defaultChoice : int(std::strtol(value.c_str(), nullptr, 10)));
        page->add_item(item);
        m_param.emplace_back(scheme.first, item);
    }
}

void ZBSettingsQt::add_form(ZBSettingsFormQt* form, const QString& title)
{
    m_form.push_back(form);
    QWidget* tab = scrolled(form);
    QString name = form->objectName();
    tab->setObjectName(name.isEmpty() ? QString("settingsPage%1").arg(m_form.size()) : name + "Tab");
    m_tabs->addTab(tab, title);
}

int ZBSettingsQt::update_display()
{
    for (ZBSettingsFormQt* form : m_form) {
        int result = form->update_display();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int ZBSettingsQt::start(bool modal)
{
    if (modal)
        return exec_dialog();
    return show_dialog();
}

int ZBSettingsQt::validate_display()
{
    std::string message;
    for (ZBSettingsFormQt* form : m_form)
        if (!form->validate(message))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s", message.c_str());
    return ZBErrC_ok;
}

int ZBSettingsQt::read_display(bool final)
{
    if (!final)
        return ZBErrC_ok;
    for (const auto& param : m_param) {
        if (!has_zbparam())
            break;
        const QString text = param.second->get_data_type() == ZBFormItemQt::E_Choice
                                 ? QString::number(param.second->get_choice_id())
                                 : param.second->value_text();
        const std::string value = text.toStdString();
        if (zbparam().get_system_value(param.first) == value)
            continue;
        int result = zbparam().set_system_value(param.first, value);
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    for (ZBSettingsFormQt* form : m_form) {
        int result = form->read_form();
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

void ZBSettingsQt::ok_pressed()
{
    accept_from_keyboard();
}

} // namespace Tervalon
