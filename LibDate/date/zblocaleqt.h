#pragma once

#include "LibDate/date/zblocale.h"

namespace Tervalon {

// The locale with the platform's defaults and names: the day format closest to
// the system's short date, its first day of the week, clock, names, currency
// and number marks. The user's own choices, read after, still win. Qt Core only.
class ZBLocaleQt : public ZBLocale {
public:
    ZBLocaleQt();
    ZBLocale* clone() const override { return new ZBLocaleQt(*this); }
    void set_defaults() override;
    void set_locale_names() override;
};

} // namespace Tervalon
