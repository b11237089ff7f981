#pragma once

#include <QWidget>

class QHBoxLayout;
class QToolButton;

namespace Tervalon {

// A row of small tool buttons beside a view (select several, select all, ...).
class ZBButtonBoxQt : public QWidget {
    Q_OBJECT
public:
    explicit ZBButtonBoxQt(QWidget* parent = nullptr);
    ~ZBButtonBoxQt() override;

    QToolButton* add_button(const QIcon& icon, const QString& toolTip, const QString& objectName);
    QToolButton* get_button(const QString& objectName) const;

private:
    QHBoxLayout* m_layout;
};

} // namespace Tervalon
