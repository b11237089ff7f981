#pragma once

#include <QWidget>

class QToolButton;

namespace Tervalon {

class ZBTreeWidgetQt;

// The strip above a window's tabs that lists the current notifications. It
// takes no room when there is nothing to say, one row when collapsed, and up
// to half the window when the user expands it. The rows are filled by the
// ZBNotifyListQt given the tree; the bar only sizes itself to them.
class ZBNotifyBarQt : public QWidget {
    Q_OBJECT
public:
    explicit ZBNotifyBarQt(QWidget* parent = nullptr);
    ~ZBNotifyBarQt() override;

    ZBTreeWidgetQt* get_tree() const { return m_tree; }
    QToolButton* get_expand_button() const { return m_expand; }
    bool is_expanded() const { return m_expanded; }
    void set_expanded(bool expanded);
    // Hides, shows one row, or grows to the rows, after a refill or a resize.
    void update_display();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    ZBTreeWidgetQt* m_tree;
    QToolButton* m_expand;
    bool m_expanded = false;
    QWidget* m_watched = nullptr;
};

} // namespace Tervalon
