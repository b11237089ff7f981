#include "LibDatabase/qt/zbdbmanagerqt.h"
#include "LibDatabase/qt/zbapplicationqt.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>

namespace Tervalon {

ZBDBManagerQt::ZBDBManagerQt(ZBDatabase* database, QWidget* parent)
    : QMainWindow(parent), m_database(database), m_label(new QLabel(this)), m_periodic(60000), m_detail(300000),
      m_interaction(15000)
{
    setObjectName("ZBDBManagerQt");
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setMargin(24);
    setCentralWidget(m_label);
    resize(480, 160);
}

ZBDBManagerQt::~ZBDBManagerQt()
{
    if (has_zbapplicationqt())
        zbapplicationqt().remove_window(this);
}

bool ZBDBManagerQt::is_loaded() const
{
    return m_database && m_database->is_loaded();
}

int ZBDBManagerQt::start(const std::string& file, int periodic, int detail, int interaction)
{
    m_periodic = periodic;
    m_detail = detail;
    m_interaction = interaction;
    int result = m_database->load(file, true);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    if (has_zbapplicationqt()) {
        zbapplicationqt().add_window(this);
        zbapplicationqt().add_recent(file);
    }
    update_display();
    show();
    if (has_zbapplicationqt())
        zbapplicationqt().handle_pending_url();
    return ZBErrC_ok;
}

void ZBDBManagerQt::update_display()
{
    const std::string& file = m_database->get_filename();
    QString name = QFileInfo(QString::fromStdString(file)).fileName();
    setWindowTitle(name + " - " + QString::fromStdString(has_zbapplicationqt() ? zbapplicationqt().get_title() : ""));
    m_label->setText(QString("<b>%1</b><br>%2<br>%3 objects")
                         .arg(name.toHtmlEscaped(), QString::fromStdString(file).toHtmlEscaped())
                         .arg(m_database->get_nobjects()));
}

int ZBDBManagerQt::save_now()
{
    if (!is_loaded() || m_database->is_read_only())
        return ZBErrC_ok;
    int result = m_database->save(true, true, false);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBManagerQt::url_command(const std::string&, const std::map<std::string, std::string>&)
{
    return ZBErrC_okNotHandled;
}

void ZBDBManagerQt::closeEvent(QCloseEvent* event)
{
    int result = save_now();
    if (iszbwarn(result)) {
        const ZBErrDetails* top = get_zberror().top();
        QString text = top ? QString::fromStdString(top->get_message()) : QString("The file could not be saved.");
        get_zberror().clear_all();
        QMessageBox::StandardButton answer = QMessageBox::warning(
            this, "Save failed", text + "\n\nThe file on disk is unchanged. Close without saving?",
            QMessageBox::Cancel | QMessageBox::Discard, QMessageBox::Cancel);
        if (answer != QMessageBox::Discard) {
            event->ignore();
            return;
        }
    }
    if (has_zbapplicationqt()) {
        ZBApplicationQt& app = zbapplicationqt();
        app.record_open_windows(app.get_nwindows(), false);
        app.save_recent();
        app.remove_window(this);
    }
    m_database->unload();
    event->accept();
}

} // namespace Tervalon
