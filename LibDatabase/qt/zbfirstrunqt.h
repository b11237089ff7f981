#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace Tervalon {

// Shown when there is no file to open at all: the user starts a new file,
// brings in one they already have, or takes the copy another device keeps in
// a shared folder. A file brought in is copied into the documents folder, so
// the original is never written to. It never blocks: the answer comes by
// signal, and the dialog deletes itself.
class ZBFirstRunQt : public QDialog {
    Q_OBJECT
public:
    enum E_Choice { E_Cancel = 0, E_Create = 1, E_Import = 2, E_Shared = 3 };

    explicit ZBFirstRunQt(QWidget* parent = nullptr);
    ~ZBFirstRunQt() override;

    void start();
    // Moves to the page of one choice, as its button does.
    void choose(E_Choice choice);
    E_Choice get_choice() const { return m_choice; }
    QLineEdit* get_path() const;
    QListWidget* get_shared_files() const { return m_sharedFiles; }
    // Fills the list of data files found in the shared folder.
    void scan_shared(const QString& folder);
    // The file the chosen page leads to, copying it in for import and shared
    // folder; empty with the reason in error when that cannot be done.
    QString resolve(QString& error) const;
    // The default new file and the folder copies go to.
    static QString default_file();
    static QString documents_folder();
    // A name in folder for file that no existing file has.
    static QString free_name(const QString& folder, const QString& fileName);

signals:
    void chosen(int choice, const QString& file);

private:
    void go_on();
    void browse();
    QWidget* make_start_page();
    QWidget* make_file_page(E_Choice choice, const QString& heading, const QString& text);

    QStackedWidget* m_pages;
    QLineEdit* m_path[4] = {nullptr, nullptr, nullptr, nullptr};
    QListWidget* m_sharedFiles = nullptr;
    QPushButton* m_back;
    QPushButton* m_continue;
    QLabel* m_problem;
    E_Choice m_choice = E_Cancel;
    bool m_answered = false;
};

} // namespace Tervalon
