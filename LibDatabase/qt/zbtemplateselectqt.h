#pragma once

#include <QDialog>
#include <QString>

#include <utility>
#include <vector>

class QListWidget;

namespace Tervalon {

// Lets the user pick the template a new file starts from, each shown with
// the comment its file carries. The answer comes by signal (-1 when closed);
// the dialog deletes itself.
class ZBTemplateSelectQt : public QDialog {
    Q_OBJECT
public:
    // choices: each template's name and comment.
    ZBTemplateSelectQt(const QString& title, const std::vector<std::pair<QString, QString>>& choices,
                       const QString& button, QWidget* parent = nullptr);
    ~ZBTemplateSelectQt() override;

    void start();
    QListWidget* get_list() const { return m_list; }

signals:
    void chosen(int index);

private:
    QListWidget* m_list;
    bool m_answered = false;
};

} // namespace Tervalon
