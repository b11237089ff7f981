#include "LibDatabase/qt/zbfirstrunqt.h"
#include "LibCore/application/zbapplication.h"

#include <QCommandLinkButton>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace Tervalon {

namespace {

QString app_title()
{
    return has_zbapplication() ? QString::fromStdString(zbapplication().get_title()) : QString("Tervalon Diary");
}

QString app_extension()
{
    return has_zbapplication() ? QString::fromStdString(zbapplication().get_extension()) : QString(".zbd");
}

} // namespace

ZBFirstRunQt::ZBFirstRunQt(QWidget* parent) : QDialog(parent), m_pages(new QStackedWidget(this))
{
    setObjectName("firstRunDialog");
    setWindowTitle("Welcome to " + app_title());
    setAttribute(Qt::WA_DeleteOnClose);
    m_pages->addWidget(make_start_page());
    m_pages->addWidget(make_file_page(E_Create, "Start a new file",
                                      "Your data will be kept in this file. You can move it later with Save As."));
    m_pages->addWidget(make_file_page(E_Import, "Open a file you already have",
                                      "The file is copied into your documents folder and the copy is opened; "
                                      "the file you choose is left as it is."));
    m_pages->addWidget(make_file_page(E_Shared, "Take the file from another device",
                                      "Choose the shared folder (a synced cloud folder) where your other device "
                                      "keeps its file, then the file. A copy is made here."));

    m_problem = new QLabel(this);
    m_problem->setObjectName("firstRunProblem");
    m_problem->setWordWrap(true);
    m_problem->setStyleSheet("color: #b00020;");
    m_problem->hide();

    QDialogButtonBox* buttons = new QDialogButtonBox(this);
    m_back = buttons->addButton("&Back", QDialogButtonBox::ResetRole);
    m_continue = buttons->addButton("C&ontinue", QDialogButtonBox::AcceptRole);
    QPushButton* quit = buttons->addButton(QDialogButtonBox::Cancel);
    quit->setText("&Quit");
    m_back->hide();
    m_continue->hide();
    connect(m_back, &QPushButton::clicked, this, [this]() {
        m_problem->hide();
        m_back->hide();
        m_continue->hide();
        m_pages->setCurrentIndex(0);
    });
    connect(m_continue, &QPushButton::clicked, this, [this]() { go_on(); });
    connect(quit, &QPushButton::clicked, this, [this]() { reject(); });
    connect(this, &QDialog::rejected, this, [this]() {
        if (!m_answered) {
            m_answered = true;
            emit chosen(E_Cancel, QString());
        }
    });

    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(m_pages);
    layout->addWidget(m_problem);
    layout->addWidget(buttons);
    resize(520, 360);
}

ZBFirstRunQt::~ZBFirstRunQt() = default;

QWidget* ZBFirstRunQt::make_start_page()
{
    QWidget* page = new QWidget;
    QVBoxLayout* layout = new QVBoxLayout(page);
    QLabel* heading = new QLabel("<h2>Welcome to " + app_title().toHtmlEscaped() + "</h2>"
                                 "<p>There is no file open yet. How would you like to begin?</p>");
    heading->setWordWrap(true);
    layout->addWidget(heading);
    struct Choice {
        E_Choice choice;
        const char* name;
        const char* title;
        const char* text;
    };
    const Choice choices[] = {
        {E_Create, "createChoice", "Start a new file", "An empty file for your tasks, appointments and notes."},
        {E_Import, "importChoice", "Open a file I already have", "Bring in a file saved earlier or sent to you."},
        {E_Shared, "sharedChoice", "Take my file from another device",
         "Use the copy your other computer keeps in a shared folder."},
    };
    for (const Choice& c : choices) {
        QCommandLinkButton* button = new QCommandLinkButton(c.title, c.text, page);
        button->setObjectName(c.name);
        button->setAutoDefault(false);
        button->setDefault(c.choice == E_Create);
        E_Choice choice = c.choice;
        connect(button, &QCommandLinkButton::clicked, this, [this, choice]() { choose(choice); });
        layout->addWidget(button);
    }
    layout->addStretch(1);
    return page;
}

QWidget* ZBFirstRunQt::make_file_page(E_Choice choice, const QString& heading, const QString& text)
{
    QWidget* page = new QWidget;
    QVBoxLayout* layout = new QVBoxLayout(page);
    QLabel* label = new QLabel("<h3>" + heading.toHtmlEscaped() + "</h3><p>" + text.toHtmlEscaped() + "</p>");
    label->setWordWrap(true);
    layout->addWidget(label);
    QHBoxLayout* row = new QHBoxLayout;
    QLineEdit* path = new QLineEdit(page);
    path->setObjectName(choice == E_Shared ? "sharedFolder" : (choice == E_Create ? "newFile" : "importFile"));
    if (choice == E_Create)
        path->setText(default_file());
    QPushButton* browseButton = new QPushButton("&Browse...", page);
    connect(browseButton, &QPushButton::clicked, this, [this]() { browse(); });
    row->addWidget(path, 1);
    row->addWidget(browseButton);
    layout->addLayout(row);
    m_path[choice] = path;
    if (choice == E_Shared) {
        m_sharedFiles = new QListWidget(page);
        m_sharedFiles->setObjectName("sharedFiles");
        layout->addWidget(new QLabel("Files found in the folder:", page));
        layout->addWidget(m_sharedFiles, 1);
        connect(path, &QLineEdit::editingFinished, this, [this, path]() { scan_shared(path->text()); });
    } else {
        layout->addStretch(1);
    }
    return page;
}

void ZBFirstRunQt::start()
{
    // The likeliest answer has the focus, so Return starts a new file.
    if (QWidget* first = findChild<QWidget*>("createChoice"))
        first->setFocus();
    // Window-modal but not blocking: the rest of the load waits on the signal.
    open();
}

void ZBFirstRunQt::choose(E_Choice choice)
{
    m_choice = choice;
    m_pages->setCurrentIndex(int(choice));
    m_back->show();
    m_continue->show();
    m_continue->setDefault(true);
    m_problem->hide();
}

QLineEdit* ZBFirstRunQt::get_path() const
{
    return m_choice == E_Cancel ? nullptr : m_path[m_choice];
}

void ZBFirstRunQt::browse()
{
    QLineEdit* path = get_path();
    if (!path)
        return;
    const QString filter = QString("Data files (*%1);;All files (*)").arg(app_extension());
    QString chosen;
    if (m_choice == E_Create)
        chosen = QFileDialog::getSaveFileName(this, "New File", path->text(), filter);
    else if (m_choice == E_Import)
        chosen = QFileDialog::getOpenFileName(this, "Open File", documents_folder(), filter);
    else
        chosen = QFileDialog::getExistingDirectory(this, "Shared Folder", QDir::homePath());
    if (chosen.isEmpty())
        return;
    path->setText(chosen);
    if (m_choice == E_Shared)
        scan_shared(chosen);
}

void ZBFirstRunQt::scan_shared(const QString& folder)
{
    m_sharedFiles->clear();
    QDir dir(folder);
    for (const QFileInfo& info : dir.entryInfoList({"*" + app_extension()}, QDir::Files, QDir::Time)) {
        QListWidgetItem* item = new QListWidgetItem(
            info.fileName() + "  (" + info.lastModified().toString("yyyy-MM-dd hh:mm") + ")", m_sharedFiles);
        item->setData(Qt::UserRole, info.absoluteFilePath());
    }
    if (m_sharedFiles->count() > 0)
        m_sharedFiles->setCurrentRow(0);
}

QString ZBFirstRunQt::documents_folder()
{
    return has_zbapplication() ? QString::fromStdString(zbapplication().get_documents_dir()) : QDir::homePath();
}

QString ZBFirstRunQt::default_file()
{
    return QDir(documents_folder()).absoluteFilePath("Diary" + app_extension());
}

QString ZBFirstRunQt::free_name(const QString& folder, const QString& fileName)
{
    QDir dir(folder);
    QFileInfo info(fileName);
    QString name = dir.absoluteFilePath(info.fileName());
    for (int n = 2; QFileInfo::exists(name); ++n)
        name = dir.absoluteFilePath(QString("%1 %2.%3").arg(info.completeBaseName()).arg(n).arg(info.suffix()));
    return name;
}

QString ZBFirstRunQt::resolve(QString& error) const
{
    error.clear();
    QLineEdit* path = get_path();
    const QString text = path ? path->text().trimmed() : QString();
    if (m_choice == E_Create) {
        if (text.isEmpty()) {
            error = "Please enter a name for the new file.";
            return QString();
        }
        QString file = QFileInfo(text).absoluteFilePath();
        if (!file.endsWith(app_extension()))
            file += app_extension();
        if (QFileInfo::exists(file)) {
            error = "A file of that name already exists. Choose \"Open a file I already have\" to use it, "
                    "or give another name.";
            return QString();
        }
        return file;
    }
    QString source = text;
    if (m_choice == E_Shared) {
        QListWidgetItem* item = m_sharedFiles ? m_sharedFiles->currentItem() : nullptr;
        if (!item) {
            error = "No data file was found in that folder.";
            return QString();
        }
        source = item->data(Qt::UserRole).toString();
    }
    if (source.isEmpty() || !QFileInfo(source).isFile()) {
        error = "Could not open the file " + source;
        return QString();
    }
    QDir().mkpath(documents_folder());
    const QString copy = free_name(documents_folder(), source);
    if (!QFile::copy(source, copy)) {
        error = "Could not copy " + source + " to " + copy;
        return QString();
    }
    return copy;
}

void ZBFirstRunQt::go_on()
{
    QString error;
    const QString file = resolve(error);
    if (file.isEmpty()) {
        m_problem->setText(error);
        m_problem->show();
        return;
    }
    m_answered = true;
    emit chosen(m_choice, file);
    accept();
}

} // namespace Tervalon
