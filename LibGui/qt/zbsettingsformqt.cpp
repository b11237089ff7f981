#include "LibGui/qt/zbsettingsformqt.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

ZBSettingsFormQt::ZBSettingsFormQt(QWidget* parent) : ZBFormQt(parent) {}

ZBSettingsFormQt::~ZBSettingsFormQt() = default;

int ZBSettingsFormQt::read_form()
{
    return ZBErrC_ok;
}

} // namespace Tervalon
