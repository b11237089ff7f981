#include "LibGui/qt/zbnotifydbusqt.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

namespace Tervalon {

namespace {
const char* const C_Service = "org.freedesktop.Notifications";
const char* const C_Path = "/org/freedesktop/Notifications";
} // namespace

ZBNotifyDBusQt::ZBNotifyDBusQt(const QString& appName) : m_appName(appName) {}

bool ZBNotifyDBusQt::is_available()
{
    // A desktop session names its bus; without one, finding a bus would mean
    // launching one, slow and pointless when nothing serves notifications.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return false;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface())
        return false;
    return bus.interface()->isServiceRegistered(C_Service).value();
}

void ZBNotifyDBusQt::notify(const QString& title, const QString& message, const QString& icon)
{
    QDBusMessage call = QDBusMessage::createMethodCall(C_Service, C_Path, C_Service, "Notify");
    // app name, id to replace (none), icon, summary, body, actions, hints, timeout (the server's).
    call << m_appName << uint(0) << icon << title << message << QStringList() << QVariantMap() << int(-1);
    QDBusConnection::sessionBus().call(call, QDBus::NoBlock);
}

} // namespace Tervalon
