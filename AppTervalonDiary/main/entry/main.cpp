// The desktop program's entry point.
#include "AppTervalonDiary/main/appdiary.h"
#include "LibCore/error/zberror.h"
#include "LibDate/date/zblocaleqt.h"
#include "LibGui/qt/zbqtapp.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    // --help and --version need no display: answer them before the window system is asked for.
    int early = Tervalon::AppDiary::early_options(argc, argv);
    if (early >= 0)
        return early;
    early = Tervalon::ZBQtApp::pre_setup(argc, argv);
    if (early >= 0)
        return early;
    // Sharp on high-density screens: the layout scales and icons come in the screen's density.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    Tervalon::ZBQtApp qtApp(argc, argv);
    // The platform's formats and names; the start-up reads the user's own over them.
    Tervalon::set_zblocale(new Tervalon::ZBLocaleQt());
    int status = 0;
    {
        Tervalon::AppDiary app(qtApp, argc, argv);
        int value = Tervalon::ZBErrC_ok;
        try {
            value = app.start();
        } catch (const Tervalon::ZBErrDetails& details) {
            value = details.get_value();
        }
        if (Tervalon::iszbwarn(value))
            status = Tervalon::zbhandle_error(value, 3) >= 3 ? 1 : 0;
        else if (value != 0)
            status = 1;
    }
    return status;
}
