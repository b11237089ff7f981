#include "LibGui/qt/zbmessageboxqt.h"
#include "LibGui/qt/zbiconqt.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace Tervalon {

namespace {

QIcon icon_for(ZBMessageBoxQt::E_Icon icon, QStyle* style)
{
    switch (icon) {
    case ZBMessageBoxQt::E_Information:
        return ZBIconQt::get("Information", "dialog-information");
    case ZBMessageBoxQt::E_Question:
        return ZBIconQt::get("Question", "dialog-question");
    case ZBMessageBoxQt::E_Warning:
        return ZBIconQt::get("Warning", "dialog-warning");
    case ZBMessageBoxQt::E_Critical:
        return ZBIconQt::get("Critical", "dialog-error");
    default:
        (void)style;
        return QIcon();
    }
}

} // namespace

ZBMessageBoxQt::ZBMessageBoxQt(const QString& title, const QString& text, E_Icon icon,
                               const std::vector<QString>& buttons, const QString& details, QWidget* parent)
    : QDialog(parent), m_icon(new QLabel), m_text(new QLabel(text)), m_details(new QPlainTextEdit(details))
{
    setObjectName("messageBox");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(title);
    setSizeGripEnabled(true);

    QVBoxLayout* layout = new QVBoxLayout(this);
    QHBoxLayout* top = new QHBoxLayout;
    const QIcon pictured = icon_for(icon, style());
    m_icon->setVisible(!pictured.isNull());
    if (!pictured.isNull())
        m_icon->setPixmap(pictured.pixmap(48, 48));
    m_icon->setAlignment(Qt::AlignTop);
    top->addWidget(m_icon);
    m_text->setObjectName("messageText");
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_text->setMinimumWidth(320);
    top->addWidget(m_text, 1);
    layout->addLayout(top);

    m_details->setObjectName("messageDetails");
    m_details->setReadOnly(true);
    m_details->setVisible(false);
    m_details->setMinimumHeight(120);
    layout->addWidget(m_details, 1);

    QHBoxLayout* row = new QHBoxLayout;
    row->addStretch(1);
    std::vector<QString> wanted = buttons;
    bool hasDetails = false;
    for (const QString& b : wanted)
        if (QString::fromStdString(key_of(b.toStdString())) == C_Details)
            hasDetails = true;
    // A details text always gets its button, so it can be read.
    if (!details.isEmpty() && !hasDetails)
        wanted.insert(wanted.begin(), C_Details);
    for (const QString& description : wanted) {
        QPushButton* button = new QPushButton(this);
        button->setAutoDefault(false);
        m_button.push_back(button);
        row->addWidget(button);
        setup_button(button, description);
        connect(button, &QPushButton::clicked, this, [this, button]() { pressed(button); });
    }
    layout->addLayout(row);
}

ZBMessageBoxQt::~ZBMessageBoxQt() = default;

void ZBMessageBoxQt::setup_button(QPushButton* button, const QString& description)
{
    const Button parsed = parse_button(description.toStdString());
    if (!parsed.m_present) {
        button->hide();
        return;
    }
    button->setText(QString::fromStdString(parsed.m_caption));
    button->setObjectName(QString::fromStdString(parsed.m_caption) + "Button");
    button->setProperty("key", QString::fromStdString(parsed.m_caption));
    if (parsed.m_default)
        button->setDefault(true);
    if (!parsed.m_shortcut.empty())
        button->setShortcut(QKeySequence(QString::fromStdString(parsed.m_shortcut)));
    if (!parsed.m_toolTip.empty())
        button->setToolTip(QString::fromStdString(parsed.m_toolTip));
    // Esc reaches reject(), which presses this button; so the button keeps its own shortcut as well.
    if (parsed.m_escape)
        m_escape = button;
}

QPushButton* ZBMessageBoxQt::get_button(int n) const
{
    return n >= 0 && n < int(m_button.size()) ? m_button[size_t(n)] : nullptr;
}

QPushButton* ZBMessageBoxQt::get_button(const QString& caption) const
{
    for (QPushButton* button : m_button)
        if (button->property("key").toString() == caption)
            return button;
    return nullptr;
}

void ZBMessageBoxQt::handle_details()
{
    const bool show = !m_details->isVisible();
    m_details->setVisible(show);
    if (QPushButton* button = get_button(C_Details))
        button->setText(show ? "Hide Details" : C_Details);
    adjustSize();
}

void ZBMessageBoxQt::reject()
{
    if (m_escape) {
        m_escape->click();
        return;
    }
    // With a single button Esc can only mean that one.
    QPushButton* only = nullptr;
    int count = 0;
    for (QPushButton* button : m_button)
        if (!button->isHidden() && button->property("key").toString() != C_Details) {
            only = button;
            ++count;
        }
    if (count == 1)
        only->click();
}

void ZBMessageBoxQt::pressed(QPushButton* button)
{
    const QString key = button->property("key").toString();
    if (key == C_Details) {
        handle_details();
        return;
    }
    if (m_answered)
        return;
    m_answered = true;
    if (m_ids.size() == 1)
        emit sig_complete_id(key, m_ids[0].m_id);
    else if (m_ids.size() > 1)
        emit sig_complete_idlist(key, m_ids);
    else
        emit sig_complete_key(key, m_userKey);
    done(QDialog::Accepted);
}

ZBMessageBoxQt* ZBMessageBoxQt::start(const ZBIdList& ids, const QString& userKey, const QString& title,
                                      const QString& text, E_Icon icon, const QString& button1,
                                      const QString& button2, const QString& button3, const QString& button4,
                                      const QString& details, QWidget* parent)
{
    ZBMessageBoxQt* box = new ZBMessageBoxQt(title, text, icon, {button1, button2, button3, button4}, details, parent);
    box->m_ids = ids;
    box->m_userKey = userKey;
    box->m_answer = ids.size() == 1 ? E_AnswerId : (ids.size() > 1 ? E_AnswerIdList : E_AnswerKey);
    box->setWindowModality(parent ? Qt::WindowModal : Qt::NonModal);
    box->show();
    box->raise();
    box->activateWindow();
    return box;
}

ZBMessageBoxQt* ZBMessageBoxQt::information(const QString& title, const QString& text, QWidget* parent,
                                            std::function<void(const QString&)> done)
{
    ZBMessageBoxQt* box = start(ZBIdList(), QString(), title, text, E_Information, C_Ok, QString(), QString(),
                                QString(), QString(), parent);
    if (done)
        connect(box, &ZBMessageBoxQt::sig_complete_key, box, [done](const QString& key, const QString&) { done(key); });
    return box;
}

} // namespace Tervalon
