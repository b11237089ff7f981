#include "LibGui/qt/zbformitemqt.h"
#include "LibGui/qt/zbdurationqt.h"
#include "LibGui/qt/zbiconqt.h"
#include "LibGui/qt/zblocationqt.h"
#include "LibGui/qt/zbwindowqt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QDateTime>
#include <QDateTimeEdit>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QToolButton>

#include <algorithm>

namespace Tervalon {

struct ZBFormItemQt::Impl {
    std::string m_tag;
    E_DataType m_dataType = E_Label;
    QString m_label;
    QString m_toolTip;
    QStringList m_completer;
    bool m_multiLine = false;
    bool m_isFile = true;
    QString m_pathFilter;
    QString m_pathStartDir;
    Choices m_choice;
    int m_fieldWidth = -1;
    int m_fieldHeight = -1;
    bool m_signalFinalEdit = false;

    QString m_text;
    bool m_bool = false;
    int m_int = 0;
    int m_intLow = 0;
    int m_intHigh = 0;
    double m_double = 0.0;
    double m_doubleLow = 0.0;
    double m_doubleHigh = 0.0;
    int m_decimals = 2;
    ZBDate m_date;
    ZBDuration m_duration;
    ZBGeoPoint m_location;
    int m_choiceId = -1;

    QLabel* m_labelWidget = nullptr;
    QWidget* m_field = nullptr;
    QLineEdit* m_line = nullptr;
    QPlainTextEdit* m_plain = nullptr;
    QLabel* m_value = nullptr;
    QCheckBox* m_check = nullptr;
    QSpinBox* m_spin = nullptr;
    QDoubleSpinBox* m_doubleSpin = nullptr;
    QDateTimeEdit* m_dateEdit = nullptr;
    ZBDurationQt* m_durationEdit = nullptr;
    ZBLocationQt* m_locationEdit = nullptr;
    QComboBox* m_combo = nullptr;
};

namespace {

// Dates are shown in the zone they carry; a blank date is the field's minimum, shown as "No date".
QDateTime to_qt(const ZBDate& date)
{
    return QDateTime::fromMSecsSinceEpoch(date.to_micros() / 1000, Qt::UTC).toLocalTime();
}

QString with_mnemonic(const QString& label)
{
    if (label.isEmpty() || label.contains('&'))
        return label;
    return "&" + label;
}

} // namespace

ZBFormItemQt::ZBFormItemQt() : impl(new Impl)
{
    impl->m_date.set_blank();
    impl->m_location.set_blank();
}

ZBFormItemQt::~ZBFormItemQt() = default;

void ZBFormItemQt::set_label_type(const std::string& tag, const QString& label, const QString& text)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Label;
    impl->m_label = label;
    impl->m_text = text;
}

void ZBFormItemQt::set_text_type(const std::string& tag, const QString& label, const QString& text, bool multiLine,
                                 const QStringList& completions)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Text;
    impl->m_label = label;
    impl->m_text = text;
    impl->m_multiLine = multiLine;
    impl->m_completer = completions;
}

void ZBFormItemQt::set_bool_type(const std::string& tag, const QString& label, bool value)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Bool;
    impl->m_label = label;
    impl->m_bool = value;
}

void ZBFormItemQt::set_int_type(const std::string& tag, const QString& label, int value, int low, int high)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Int;
    impl->m_label = label;
    impl->m_intLow = std::min(low, high);
    impl->m_intHigh = std::max(low, high);
    impl->m_int = std::max(impl->m_intLow, std::min(value, impl->m_intHigh));
}

void ZBFormItemQt::set_float_type(const std::string& tag, const QString& label, double value, double low, double high,
                                  int decimals)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Float;
    impl->m_label = label;
    impl->m_doubleLow = std::min(low, high);
    impl->m_doubleHigh = std::max(low, high);
    impl->m_decimals = decimals;
    impl->m_double = value != value ? impl->m_doubleLow : std::max(impl->m_doubleLow, std::min(value, impl->m_doubleHigh));
}

void ZBFormItemQt::set_date_type(const std::string& tag, const QString& label, const ZBDate& value)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Date;
    impl->m_label = label;
    impl->m_date = value;
}

void ZBFormItemQt::set_duration_type(const std::string& tag, const QString& label, const ZBDuration& value)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Duration;
    impl->m_label = label;
    impl->m_duration = value;
}

void ZBFormItemQt::set_location_type(const std::string& tag, const QString& label, const ZBGeoPoint& value)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Location;
    impl->m_label = label;
    impl->m_location = value;
}

void ZBFormItemQt::set_path_type(const std::string& tag, const QString& label, const QString& path, bool isFile,
                                 const QString& filter, const QString& startDir)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Path;
    impl->m_label = label;
    impl->m_text = path;
    impl->m_isFile = isFile;
    impl->m_pathFilter = filter;
    impl->m_pathStartDir = startDir;
}

void ZBFormItemQt::set_choice_type(const std::string& tag, const QString& label, const Choices& choices, int selected)
{
    impl->m_tag = tag;
    impl->m_dataType = E_Choice;
    impl->m_label = label;
    impl->m_choice = choices;
    // An id that is not among the choices falls back to the first one.
    bool known = false;
    for (const auto& choice : choices)
        known = known || choice.first == selected;
    impl->m_choiceId = known ? selected : (choices.empty() ? -1 : choices.front().first);
}

const std::string& ZBFormItemQt::get_tag() const
{
    return impl->m_tag;
}

ZBFormItemQt::E_DataType ZBFormItemQt::get_data_type() const
{
    return impl->m_dataType;
}

QString ZBFormItemQt::get_label() const
{
    return impl->m_label;
}

void ZBFormItemQt::set_tooltip(const QString& tip)
{
    impl->m_toolTip = tip;
    if (impl->m_field)
        impl->m_field->setToolTip(tip);
}

void ZBFormItemQt::set_signal_final_edit(bool on)
{
    impl->m_signalFinalEdit = on;
}

void ZBFormItemQt::set_field_size(int width, int height)
{
    impl->m_fieldWidth = width;
    impl->m_fieldHeight = height;
}

QString ZBFormItemQt::get_text() const
{
    if (impl->m_line)
        return impl->m_line->text();
    if (impl->m_plain)
        return impl->m_plain->toPlainText();
    return impl->m_text;
}

void ZBFormItemQt::set_text(const QString& text)
{
    impl->m_text = text;
    if (impl->m_line)
        impl->m_line->setText(text);
    if (impl->m_plain)
        impl->m_plain->setPlainText(text);
    if (impl->m_value)
        impl->m_value->setText(text);
}

bool ZBFormItemQt::get_bool() const
{
    return impl->m_check ? impl->m_check->isChecked() : impl->m_bool;
}

int ZBFormItemQt::get_int() const
{
    return impl->m_spin ? impl->m_spin->value() : impl->m_int;
}

double ZBFormItemQt::get_double() const
{
    return impl->m_doubleSpin ? impl->m_doubleSpin->value() : impl->m_double;
}

ZBDate ZBFormItemQt::get_date() const
{
    if (!impl->m_dateEdit)
        return impl->m_date;
    if (impl->m_dateEdit->dateTime() == impl->m_dateEdit->minimumDateTime())
        return ZBDate::C_Blank;
    ZBDate date;
    const int zone = impl->m_date.is_ok() ? impl->m_date.get_timezone() : ZBDate::C_LocalTime;
    date.from_micros(impl->m_dateEdit->dateTime().toMSecsSinceEpoch() * 1000, zone);
    return date;
}

ZBDuration ZBFormItemQt::get_duration() const
{
    return impl->m_durationEdit ? impl->m_durationEdit->get_duration() : impl->m_duration;
}

ZBGeoPoint ZBFormItemQt::get_location() const
{
    return impl->m_locationEdit ? impl->m_locationEdit->get_location() : impl->m_location;
}

int ZBFormItemQt::get_choice_id() const
{
    if (impl->m_combo)
        return impl->m_combo->currentIndex() < 0 ? -1 : impl->m_combo->currentData().toInt();
    return impl->m_choiceId;
}

QString ZBFormItemQt::value_text() const
{
    switch (impl->m_dataType) {
    case E_Bool:
        return get_bool() ? "1" : "0";
    case E_Int:
        return QString::number(get_int());
    case E_Float:
        return QString::number(get_double(), 'f', impl->m_decimals);
    case E_Date:
        return QString::fromStdString(get_date().to_string());
    case E_Duration:
        return QString::fromStdString(get_duration().to_string());
    case E_Location:
        return QString::fromStdString(get_location().to_string());
    case E_Choice:
        return impl->m_combo ? impl->m_combo->currentText() : QString::number(get_choice_id());
    default:
        return get_text();
    }
}

bool ZBFormItemQt::validate(std::string& message) const
{
    if (impl->m_dataType == E_Duration && impl->m_durationEdit) {
        std::string why;
        if (!impl->m_durationEdit->check(why)) {
            message = impl->m_label.toStdString() + ": " + why;
            return false;
        }
    }
    if (impl->m_dataType == E_Choice && get_choice_id() < 0 && !impl->m_choice.empty()) {
        message = impl->m_label.toStdString() + ": choose one of the entries.";
        return false;
    }
    return true;
}

void ZBFormItemQt::changed()
{
    emit edited(this);
    const QString tag = QString::fromStdString(impl->m_tag);
    if (impl->m_dataType == E_Choice)
        emit id_changed(tag, get_choice_id());
    emit value_changed(tag, value_text());
}

void ZBFormItemQt::browse()
{
    const QString start = get_text().isEmpty() ? impl->m_pathStartDir : get_text();
    // Not exec(): the form goes on while the user chooses.
    QFileDialog* dialog = new QFileDialog(impl->m_field, impl->m_label, start, impl->m_pathFilter);
    dialog->setObjectName("pathDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(impl->m_isFile ? QFileDialog::AnyFile : QFileDialog::Directory);
    connect(dialog, &QFileDialog::fileSelected, this, [this](const QString& file) {
        set_text(file);
        changed();
    });
    dialog->open();
}

void ZBFormItemQt::make_widgets(QWidget* parent)
{
    Impl& d = *impl;
    const bool final = d.m_signalFinalEdit;
    switch (d.m_dataType) {
    case E_Label:
        d.m_value = new QLabel(d.m_text, parent);
        d.m_value->setWordWrap(true);
        d.m_value->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        d.m_field = d.m_value;
        break;
    case E_Text:
        if (d.m_multiLine) {
            d.m_plain = new QPlainTextEdit(d.m_text, parent);
            d.m_plain->setTabChangesFocus(true);
            d.m_plain->setMinimumHeight(60);
            d.m_field = d.m_plain;
            connect(d.m_plain, &QPlainTextEdit::textChanged, this, [this]() {
                if (!impl->m_signalFinalEdit)
                    changed();
            });
        } else {
            d.m_line = new QLineEdit(d.m_text, parent);
            if (!d.m_completer.isEmpty()) {
                QCompleter* completer = new QCompleter(d.m_completer, d.m_line);
                completer->setCaseSensitivity(Qt::CaseInsensitive);
                d.m_line->setCompleter(completer);
            }
            d.m_field = d.m_line;
            if (final)
                connect(d.m_line, &QLineEdit::editingFinished, this, &ZBFormItemQt::changed);
            else
                connect(d.m_line, &QLineEdit::textEdited, this, [this]() { changed(); });
        }
        break;
    case E_Bool:
        d.m_check = new QCheckBox(parent);
        d.m_check->setChecked(d.m_bool);
        d.m_field = d.m_check;
        connect(d.m_check, &QCheckBox::toggled, this, [this]() { changed(); });
        break;
    case E_Int:
        d.m_spin = new QSpinBox(parent);
        d.m_spin->setRange(d.m_intLow, d.m_intHigh);
        d.m_spin->setValue(d.m_int);
        d.m_field = d.m_spin;
        if (final)
            connect(d.m_spin, &QSpinBox::editingFinished, this, &ZBFormItemQt::changed);
        else
            connect(d.m_spin, QOverload<int>::of(&QSpinBox::valueChanged), this, [this]() { changed(); });
        break;
    case E_Float:
        d.m_doubleSpin = new QDoubleSpinBox(parent);
        d.m_doubleSpin->setRange(d.m_doubleLow, d.m_doubleHigh);
        d.m_doubleSpin->setDecimals(d.m_decimals);
        d.m_doubleSpin->setValue(d.m_double);
        d.m_field = d.m_doubleSpin;
        if (final)
            connect(d.m_doubleSpin, &QDoubleSpinBox::editingFinished, this, &ZBFormItemQt::changed);
        else
            connect(d.m_doubleSpin, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this, [this]() { changed(); });
        break;
    case E_Date:
        d.m_dateEdit = new QDateTimeEdit(parent);
        d.m_dateEdit->setCalendarPopup(true);
        d.m_dateEdit->setDisplayFormat("ddd d MMM yyyy hh:mm");
        d.m_dateEdit->setMinimumDateTime(QDateTime(QDate(1900, 1, 1), QTime(0, 0)));
        d.m_dateEdit->setSpecialValueText("No date");
        d.m_dateEdit->setDateTime(d.m_date.is_ok() ? to_qt(d.m_date) : d.m_dateEdit->minimumDateTime());
        d.m_field = d.m_dateEdit;
        if (final)
            connect(d.m_dateEdit, &QDateTimeEdit::editingFinished, this, &ZBFormItemQt::changed);
        else
            connect(d.m_dateEdit, &QDateTimeEdit::dateTimeChanged, this, [this]() { changed(); });
        break;
    case E_Duration:
        d.m_durationEdit = new ZBDurationQt(parent);
        d.m_durationEdit->set_duration(d.m_duration);
        d.m_field = d.m_durationEdit;
        connect(d.m_durationEdit, &ZBDurationQt::duration_changed, this, &ZBFormItemQt::changed);
        break;
    case E_Location:
        d.m_locationEdit = new ZBLocationQt(parent);
        d.m_locationEdit->set_location(d.m_location);
        d.m_field = d.m_locationEdit;
        connect(d.m_locationEdit, &ZBLocationQt::location_changed, this, &ZBFormItemQt::changed);
        break;
    case E_Path: {
        QWidget* box = new QWidget(parent);
        QHBoxLayout* row = new QHBoxLayout(box);
        row->setContentsMargins(0, 0, 0, 0);
        d.m_line = new QLineEdit(d.m_text, box);
        QToolButton* button = new QToolButton(box);
        button->setIcon(ZBIconQt::get("Browse", "document-open"));
        button->setToolTip(d.m_isFile ? "Choose a file." : "Choose a folder.");
        button->setObjectName("browseButton");
        row->addWidget(d.m_line, 1);
        row->addWidget(button);
        d.m_field = box;
        box->setFocusProxy(d.m_line);
        connect(button, &QToolButton::clicked, this, [this]() { browse(); });
        connect(d.m_line, &QLineEdit::editingFinished, this, &ZBFormItemQt::changed);
        break;
    }
    case E_Choice:
        d.m_combo = new QComboBox(parent);
        ZBWindowQt::load_combo(d.m_combo, d.m_choice, d.m_choiceId);
        d.m_field = d.m_combo;
        connect(d.m_combo, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this]() { changed(); });
        break;
    }
    d.m_field->setObjectName(QString::fromStdString(d.m_tag));
    if (!d.m_toolTip.isEmpty())
        d.m_field->setToolTip(d.m_toolTip);
    if (d.m_fieldWidth > 0)
        d.m_field->setMinimumWidth(d.m_fieldWidth);
    if (d.m_fieldHeight > 0)
        d.m_field->setMinimumHeight(d.m_fieldHeight);
    d.m_labelWidget = new QLabel(with_mnemonic(d.m_label), parent);
    d.m_labelWidget->setBuddy(d.m_field);
    d.m_labelWidget->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ZBFormItemQt::update(QGridLayout* layout, int row, int column, QWidget* parent)
{
    if (!impl->m_field)
        make_widgets(parent);
    const Qt::Alignment top = impl->m_multiLine ? Qt::AlignTop : Qt::Alignment();
    layout->addWidget(impl->m_labelWidget, row, column * 2, top);
    layout->addWidget(impl->m_field, row, column * 2 + 1);
}

QWidget* ZBFormItemQt::get_field() const
{
    return impl->m_field;
}

QLabel* ZBFormItemQt::get_label_widget() const
{
    return impl->m_labelWidget;
}

int ZBFormItemQt::get_total_width() const
{
    return impl->m_labelWidget ? impl->m_labelWidget->sizeHint().width() : 0;
}

} // namespace Tervalon
