#pragma once

#include "LibCore/maths/zbgeopoint.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <string>
#include <utility>
#include <vector>

class QGridLayout;
class QLabel;
class QWidget;

namespace Tervalon {

// One row of a form: a label with its mnemonic and one field of a kind set by
// a set_*_type call. The row makes its widgets when the form first lays it
// out; before that, and after, its value can be set and read. A value out of
// its range is held at the nearest limit.
class ZBFormItemQt : public QObject {
    Q_OBJECT
public:
    enum E_DataType { E_Label = 0, E_Text, E_Bool, E_Int, E_Float, E_Date, E_Duration, E_Location, E_Path, E_Choice };
    using Choices = std::vector<std::pair<int, std::string>>;

    ZBFormItemQt();
    ~ZBFormItemQt() override;

    void set_label_type(const std::string& tag, const QString& label, const QString& text);
    void set_text_type(const std::string& tag, const QString& label, const QString& text, bool multiLine = false,
                       const QStringList& completions = QStringList());
    void set_bool_type(const std::string& tag, const QString& label, bool value);
    void set_int_type(const std::string& tag, const QString& label, int value, int low, int high);
    void set_float_type(const std::string& tag, const QString& label, double value, double low, double high,
                        int decimals = 2);
    void set_date_type(const std::string& tag, const QString& label, const ZBDate& value);
    void set_duration_type(const std::string& tag, const QString& label, const ZBDuration& value);
    void set_location_type(const std::string& tag, const QString& label, const ZBGeoPoint& value);
    void set_path_type(const std::string& tag, const QString& label, const QString& path, bool isFile = true,
                       const QString& filter = QString(), const QString& startDir = QString());
    void set_choice_type(const std::string& tag, const QString& label, const Choices& choices, int selected);

    const std::string& get_tag() const;
    E_DataType get_data_type() const;
    QString get_label() const;
    void set_tooltip(const QString& tip);
    // Only when editing is finished (Return or leaving the field), not on every key.
    void set_signal_final_edit(bool on);
    void set_field_size(int width, int height);

    QString get_text() const;
    void set_text(const QString& text);
    bool get_bool() const;
    int get_int() const;
    double get_double() const;
    ZBDate get_date() const;
    ZBDuration get_duration() const;
    ZBGeoPoint get_location() const;
    int get_choice_id() const;
    // The value as text, as value_changed carries it.
    QString value_text() const;
    // False with a message for a value the user typed that cannot be used.
    bool validate(std::string& message) const;

    // Makes the widgets (once) and places them at row, column*2 of layout.
    void update(QGridLayout* layout, int row, int column, QWidget* parent);
    QWidget* get_field() const;
    QLabel* get_label_widget() const;
    // The width the label needs.
    int get_total_width() const;

signals:
    void value_changed(const QString& tag, const QString& value);
    void id_changed(const QString& tag, int id);
    void edited(ZBFormItemQt* item);

private:
    void make_widgets(QWidget* parent);
    void changed();
    void browse();

    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Tervalon
