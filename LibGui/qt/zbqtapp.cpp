#include "LibGui/qt/zbqtapp.h"
#include "LibCore/application/zbapplication.h"
#include "LibCore/error/zberror.h"

#include <QFileOpenEvent>
#include <QUrl>

#include <cstdlib>
#include <cstring>
#include <iostream>

namespace Tervalon {

ZBQtApp::ZBQtApp(int& argc, char** argv) : QApplication(argc, argv) {}

ZBQtApp::~ZBQtApp() = default;

int ZBQtApp::pre_setup(int argc, char** argv)
{
    (void)argc;
    (void)argv;
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    bool headless = platform && (std::strcmp(platform, "offscreen") == 0 || std::strcmp(platform, "minimal") == 0);
    if (!headless && !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
        std::cerr << "tervalon-diary: no display found. The command-line program works without one: tervalon --help\n";
        return 1;
    }
    return -1;
}

bool ZBQtApp::event(QEvent* event)
{
    if (event->type() == QEvent::FileOpen) {
        QFileOpenEvent* open = static_cast<QFileOpenEvent*>(event);
        QUrl url = open->url().isEmpty() ? QUrl::fromLocalFile(open->file()) : open->url();
        if (m_urlReceiver)
            QMetaObject::invokeMethod(m_urlReceiver, "url_scheme", Qt::QueuedConnection, Q_ARG(QUrl, url));
        return true;
    }
    return QApplication::event(event);
}

bool ZBQtApp::notify(QObject* receiver, QEvent* event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const ZBErrDetails& details) {
        zbhandle_error(details.get_value(), 2);
        return false;
    }
}

} // namespace Tervalon
