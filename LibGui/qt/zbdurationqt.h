#pragma once

#include "LibDate/date/zbduration.h"

#include <QLineEdit>

namespace Tervalon {

// A field for a duration typed as text ("2 Hours", "1:30", "3 days"). Text
// that is not a duration is marked and its tip says why; the value stays
// the last good one.
class ZBDurationQt : public QLineEdit {
    Q_OBJECT
public:
    explicit ZBDurationQt(QWidget* parent = nullptr);

    const ZBDuration& get_duration() const { return m_duration; }
    void set_duration(const ZBDuration& duration);
    // True when the text reads as a duration; otherwise message says what is wrong.
    bool check(std::string& message);

signals:
    void duration_changed();

private:
    void read_text();

    ZBDuration m_duration;
};

} // namespace Tervalon
