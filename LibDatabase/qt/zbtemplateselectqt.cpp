#include "LibDatabase/qt/zbtemplateselectqt.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace Tervalon {

ZBTemplateSelectQt::ZBTemplateSelectQt(const QString& title, const std::vector<std::pair<QString, QString>>& choices,
                                       const QString& button, QWidget* parent)
    : QDialog(parent), m_list(new QListWidget(this))
{
    setObjectName("templateSelect");
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    m_list->setObjectName("templateList");
    m_list->setWordWrap(true);
    for (const auto& choice : choices) {
        QString text = choice.first;
        if (!choice.second.isEmpty())
            text += "\n" + choice.second;
        m_list->addItem(text);
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    QDialogButtonBox* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(button, QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, [this]() {
        m_answered = true;
        emit chosen(m_list->currentRow());
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_list, &QListWidget::itemDoubleClicked, ok, &QPushButton::click);
    connect(this, &QDialog::rejected, this, [this]() {
        if (!m_answered) {
            m_answered = true;
            emit chosen(-1);
        }
    });
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel("Your new file starts as a copy of the template you choose.", this));
    layout->addWidget(m_list, 1);
    layout->addWidget(buttons);
    resize(440, 320);
}

ZBTemplateSelectQt::~ZBTemplateSelectQt() = default;

void ZBTemplateSelectQt::start()
{
    open();
}

} // namespace Tervalon
