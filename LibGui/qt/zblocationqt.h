#pragma once

#include "LibCore/maths/zbgeopoint.h"

#include <QWidget>

class QDoubleSpinBox;

namespace Tervalon {

// A place as three numbers: "Latitude" and "Longitude" in degrees and
// "Altitude" in metres, each held to its possible range.
class ZBLocationQt : public QWidget {
    Q_OBJECT
public:
    explicit ZBLocationQt(QWidget* parent = nullptr);

    ZBGeoPoint get_location() const;
    void set_location(const ZBGeoPoint& point);
    QDoubleSpinBox* get_field(int n) const;

signals:
    void location_changed();

private:
    QDoubleSpinBox* m_latitude;
    QDoubleSpinBox* m_longitude;
    QDoubleSpinBox* m_altitude;
};

} // namespace Tervalon
