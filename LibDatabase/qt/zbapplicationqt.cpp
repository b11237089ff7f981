#include "LibDatabase/qt/zbapplicationqt.h"
#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibGui/qt/zbqtapp.h"
#include "LibGui/qt/zberrorqt.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zblocale.h"

#include <QDesktopServices>
#include <QSocketNotifier>
#include <QTimer>
#include <QRegularExpression>
#include <QUrlQuery>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace Tervalon {

namespace {

ZBApplicationQt* g_applicationQt = nullptr;
// A signal handler may only write to a descriptor; the event loop reads the other end.
int g_signalPipe[2] = {-1, -1};

void on_terminate_signal(int)
{
    const char byte = 1;
    ssize_t written = ::write(g_signalPipe[0], &byte, 1);
    (void)written;
}

} // namespace

ZBApplicationQt::ZBApplicationQt(ZBQtApp& qtApp, int argc, char** argv, const std::string& application,
                                 const std::string& title, const std::string& extension, const std::string& release,
                                 const std::string& tag, const std::string& date, const std::string& description,
                                 const std::string& company, const std::string& domain, const std::string& copyright,
                                 const std::string& authors, const std::string& logo, const std::string& email,
                                 const std::string& web, const std::string& website)
    : QObject(nullptr), ZBApplication(argc, argv, application, title, extension, release, tag, date, description,
                                      company, domain, copyright, authors, logo, email, web, website),
      m_qtApp(qtApp), m_window(false)
{
    g_applicationQt = this;
    qtApp.set_url_receiver(this);
    watch_signals();
}

void ZBApplicationQt::watch_signals()
{
    if (g_signalPipe[0] < 0 && ::socketpair(AF_UNIX, SOCK_STREAM, 0, g_signalPipe) != 0)
        return;
    QSocketNotifier* notifier = new QSocketNotifier(g_signalPipe[1], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &ZBApplicationQt::terminate_requested);
    struct sigaction action = {};
    action.sa_handler = on_terminate_signal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int signal : {SIGTERM, SIGHUP, SIGINT})
        sigaction(signal, &action, nullptr);
}

void ZBApplicationQt::terminate_requested()
{
    char byte = 0;
    ssize_t got = ::read(g_signalPipe[1], &byte, 1);
    (void)got;
    QApplication::closeAllWindows();
    if (get_nwindows() == 0)
        QCoreApplication::quit();
}

ZBApplicationQt::~ZBApplicationQt()
{
    m_qtApp.set_url_receiver(nullptr);
    if (g_applicationQt == this)
        g_applicationQt = nullptr;
}

int ZBApplicationQt::start()
{
    QTimer::singleShot(100, this, &ZBApplicationQt::app_started);
    int result = QApplication::exec();
    if (result != 0 && iszbwarn(result))
        return zberrorvalue();
    return result == 0 ? ZBErrC_ok : result;
}

int ZBApplicationQt::setup_error()
{
    int result = ZBApplication::setup_error();
    ZBErrorQt::install();
    return result;
}

void ZBApplicationQt::app_started()
{
    int result = ZBErrC_ok;
    try {
        result = setup_error();
        if (!iszbwarn(result))
            result = setup_parameters();
        if (result == ZBErrC_okShutdown) {
            QCoreApplication::exit(0);
            return;
        }
        if (!iszbwarn(result))
            result = zblocale().read_config();
        if (!iszbwarn(result))
            result = run();
        if (result == ZBErrC_okShutdown) {
            QCoreApplication::exit(0);
            return;
        }
    } catch (const ZBErrDetails& details) {
        result = details.get_value();
    }
    if (!iszbwarn(result))
        return;
    if (get_nwindows() > 0) {
        zbhandle_error(result, 2);
        return;
    }
    // Nothing is open: one message, which the user closes, and the run ends.
    ZBErrorQt::set_waiting(true);
    zbhandle_error(result, 2);
    ZBErrorQt::set_waiting(false);
    QCoreApplication::exit(1);
}

void ZBApplicationQt::add_window(ZBDBManagerQt* window)
{
    if (window && m_window.index_of(window) < 0)
        m_window.push_back(window);
}

void ZBApplicationQt::remove_window(ZBDBManagerQt* window)
{
    int index = m_window.index_of(window);
    if (index >= 0)
        m_window.remove(index);
}

ZBDBManagerQt* ZBApplicationQt::get_window_db(const ZBDatabase& db) const
{
    for (ZBDBManagerQt* window : m_window)
        if (window->get_database() == &db)
            return window;
    return nullptr;
}

void ZBApplicationQt::push_status(const std::string& status, double percentage, bool background, int delay)
{
    ZBApplication::push_status(status, percentage, background, delay);
    if (ZBDBManagerQt* window = primary_window())
        window->update_display();
}

void ZBApplicationQt::setup_url_handler(const std::string& scheme)
{
    QDesktopServices::setUrlHandler(QString::fromStdString(scheme), this, "url_scheme");
}

void ZBApplicationQt::parse_url(const QUrl& url, std::string& command, std::map<std::string, std::string>& values)
{
    QString text = QUrl::fromPercentEncoding(url.toString().toUtf8());
    int start = text.indexOf("://");
    QString rest = start < 0 ? text : text.mid(start + 3);
    int end = rest.indexOf(QRegularExpression("[/?]"));
    command = (end < 0 ? rest : rest.left(end)).toStdString();
    values.clear();
    for (const auto& item : QUrlQuery(url).queryItems(QUrl::FullyDecoded))
        values[item.first.toStdString()] = item.second.toStdString();
}

void ZBApplicationQt::url_scheme(const QUrl& url)
{
    ZBDBManagerQt* window = primary_window();
    if (!window || !window->is_loaded()) {
        m_pendingUrl = url.toString().toStdString();
        return;
    }
    std::string command;
    std::map<std::string, std::string> values;
    parse_url(url, command, values);
    window->url_command(command, values);
}

void ZBApplicationQt::handle_pending_url()
{
    if (m_pendingUrl.empty())
        return;
    ZBDBManagerQt* window = primary_window();
    if (!window || !window->is_loaded())
        return;
    QUrl url(QString::fromStdString(m_pendingUrl));
    m_pendingUrl.clear();
    url_scheme(url);
}

ZBApplicationQt& zbapplicationqt()
{
    return *g_applicationQt;
}

bool has_zbapplicationqt()
{
    return g_applicationQt != nullptr;
}

} // namespace Tervalon
