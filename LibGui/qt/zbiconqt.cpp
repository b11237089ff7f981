#include "LibGui/qt/zbiconqt.h"

#include <QFile>

// The resources live in a static library; naming them here keeps the linker from dropping them.
static void init_libgui_resources()
{
    static bool done = false;
    if (!done) {
        Q_INIT_RESOURCE(libgui);
        done = true;
    }
}

namespace Tervalon {

QString ZBIconQt::path(const QString& name)
{
    init_libgui_resources();
    return ":/LibGui/images/32/" + name + ".svg";
}

QIcon ZBIconQt::get(const QString& name, const QString& themeName)
{
    const QString own = path(name);
    QIcon fallback = QFile::exists(own) ? QIcon(own) : QIcon();
    if (themeName.isEmpty())
        return fallback;
    return QIcon::fromTheme(themeName, fallback);
}

} // namespace Tervalon
