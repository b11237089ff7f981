#pragma once

#include "LibGui/qt/zbformqt.h"

namespace Tervalon {

// A page of the settings dialog: a form that knows where its values go.
class ZBSettingsFormQt : public ZBFormQt {
    Q_OBJECT
public:
    explicit ZBSettingsFormQt(QWidget* parent = nullptr);
    ~ZBSettingsFormQt() override;

    // Writes the page's values back to where they came from; called when the
    // user accepts the dialog, after every page was validated.
    virtual int read_form();
};

} // namespace Tervalon
