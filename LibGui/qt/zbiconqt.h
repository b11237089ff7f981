#pragma once

#include <QIcon>
#include <QString>

namespace Tervalon {

// Icons of the window framework: the desktop theme's icon of the given name
// where the theme has one, else our own drawing from the resources
// (":/LibGui/images/32/<name>.svg").
class ZBIconQt {
public:
    static QIcon get(const QString& name, const QString& themeName = QString());
    static QString path(const QString& name);
};

} // namespace Tervalon
