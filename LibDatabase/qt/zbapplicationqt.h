#pragma once

#include "LibCore/application/zbapplication.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <QObject>
#include <QUrl>

#include <map>
#include <string>

namespace Tervalon {

class ZBQtApp;
class ZBDBManagerQt;
class ZBDatabase;

// The application with an event loop and windows: the list of open main
// windows, the start-up timer and the handler of the program's URL scheme.
class ZBApplicationQt : public QObject, public ZBApplication {
    Q_OBJECT
public:
    ZBApplicationQt(ZBQtApp& qtApp, int argc, char** argv, const std::string& application, const std::string& title,
                    const std::string& extension, const std::string& release, const std::string& tag,
                    const std::string& date, const std::string& description, const std::string& company,
                    const std::string& domain, const std::string& copyright, const std::string& authors,
                    const std::string& logo, const std::string& email, const std::string& web,
                    const std::string& website);
    ~ZBApplicationQt() override;

    // Schedules app_started and runs the event loop.
    int start() override;
    int setup_error() override;

    void add_window(ZBDBManagerQt* window);
    void remove_window(ZBDBManagerQt* window);
    int get_nwindows() const { return m_window.size(); }
    ZBDBManagerQt* get_window_no(int index) const { return m_window.at(index); }
    int get_window_id(const ZBDBManagerQt* window) const { return m_window.index_of(window); }
    ZBDBManagerQt* get_window_db(const ZBDatabase& db) const;
    ZBDBManagerQt* primary_window() const { return m_window.first(); }
    ZBQtApp& get_qtapp() const { return m_qtApp; }

    void push_status(const std::string& status, double percentage, bool background, int delay) override;

    void setup_url_handler(const std::string& scheme);
    // Acts on the pending URL once a window has its database loaded.
    void handle_pending_url();
    // Splits a URL of the scheme into its command and query items.
    static void parse_url(const QUrl& url, std::string& command, std::map<std::string, std::string>& values);

public slots:
    void app_started();
    // A request from the system to end (SIGTERM, SIGHUP, SIGINT): the windows
    // close as if the user closed them, so each saves its file first.
    void terminate_requested();
    Q_INVOKABLE void url_scheme(const QUrl& url);

private:
    void watch_signals();

    ZBQtApp& m_qtApp;
    ZBPtrArray<ZBDBManagerQt> m_window;
};

ZBApplicationQt& zbapplicationqt();
bool has_zbapplicationqt();

} // namespace Tervalon
