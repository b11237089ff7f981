#include "LibGui/qt/zblocationqt.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>

namespace Tervalon {

namespace {

QDoubleSpinBox* make_field(QHBoxLayout* layout, const QString& label, double low, double high, int decimals,
                           const QString& suffix)
{
    QLabel* text = new QLabel(label);
    QDoubleSpinBox* field = new QDoubleSpinBox;
    field->setRange(low, high);
    field->setDecimals(decimals);
    field->setSuffix(suffix);
    field->setAccessibleName(label);
    field->setToolTip(label);
    text->setBuddy(field);
    layout->addWidget(text);
    layout->addWidget(field, 1);
    return field;
}

} // namespace

ZBLocationQt::ZBLocationQt(QWidget* parent) : QWidget(parent)
{
    QHBoxLayout* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_latitude = make_field(layout, "Latitude", -90.0, 90.0, 5, QString::fromUtf8("\u00b0"));
    m_longitude = make_field(layout, "Longitude", -180.0, 180.0, 5, QString::fromUtf8("\u00b0"));
    m_altitude = make_field(layout, "Altitude", -500.0, 9000.0, 1, " m");
    for (QDoubleSpinBox* field : {m_latitude, m_longitude, m_altitude})
        connect(field, &QDoubleSpinBox::editingFinished, this, &ZBLocationQt::location_changed);
}

ZBGeoPoint ZBLocationQt::get_location() const
{
    return ZBGeoPoint(m_latitude->value(), m_longitude->value(), m_altitude->value());
}

void ZBLocationQt::set_location(const ZBGeoPoint& point)
{
    if (point.is_blank()) {
        m_latitude->setValue(0.0);
        m_longitude->setValue(0.0);
        m_altitude->setValue(0.0);
        return;
    }
    // A stored point out of range is held at the nearest possible value by the fields.
    m_latitude->setValue(point.get_latitude());
    m_longitude->setValue(point.get_longitude());
    m_altitude->setValue(point.get_altitude());
}

QDoubleSpinBox* ZBLocationQt::get_field(int n) const
{
    return n == 0 ? m_latitude : (n == 1 ? m_longitude : m_altitude);
}

} // namespace Tervalon
