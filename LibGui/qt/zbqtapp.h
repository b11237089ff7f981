#pragma once

#include <QApplication>

namespace Tervalon {

// The program's QApplication. It turns a file-open event from the desktop
// into a URL for the application, and handles an error record that escapes a
// slot instead of letting it end the process.
class ZBQtApp : public QApplication {
    Q_OBJECT
public:
    ZBQtApp(int& argc, char** argv);
    ~ZBQtApp() override;

    // Runs before the QApplication exists: tells a user without a display what
    // to do instead of failing inside the window system.
    // Returns -1 to go on, or the exit status to end with.
    static int pre_setup(int argc, char** argv);

    // The object whose invokable url_scheme(QUrl) gets files and URLs opened by the desktop.
    void set_url_receiver(QObject* receiver) { m_urlReceiver = receiver; }

    bool event(QEvent* event) override;
    bool notify(QObject* receiver, QEvent* event) override;

private:
    QObject* m_urlReceiver = nullptr;
};

} // namespace Tervalon
