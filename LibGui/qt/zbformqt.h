#pragma once

#include <QWidget>

#include <memory>
#include <string>
#include <vector>

class QGridLayout;

namespace Tervalon {

class ZBFormItemQt;

// A form of typed rows laid out down one or more columns, labels aligned and
// the tab order following the rows. It owns its items and passes on their
// edits as value_changed (and id_changed for choices).
class ZBFormQt : public QWidget {
    Q_OBJECT
public:
    explicit ZBFormQt(QWidget* parent = nullptr);
    ~ZBFormQt() override;

    // Takes ownership; index -1 adds at the end.
    void add_item(ZBFormItemQt* item, int index = -1);
    int get_nitems() const { return int(m_item.size()); }
    ZBFormItemQt* get_item_no(int n) const;
    // The position of the row with this tag, or -1.
    int get_item_id(const std::string& tag) const;
    ZBFormItemQt* get_item_by_tag(const std::string& tag) const;
    ZBFormItemQt* get_last_edit_item() const { return m_lastEdit; }
    void select_first_field();
    void remove_items();
    void set_columns(int columns);
    int get_columns() const { return m_columns; }
    void set_fieldwidth(int width) { m_fieldWidth = width; }
    int get_fieldwidth() const { return m_fieldWidth; }
    // Lays out the rows: the first call makes the grid.
    int update_display();
    // False with the first row's complaint when a value cannot be used.
    bool validate(std::string& message) const;
    QGridLayout* get_layout() const { return m_layout; }

signals:
    void value_changed(const QString& tag, const QString& value);
    void id_changed(const QString& tag, int id);

private:
    std::vector<std::unique_ptr<ZBFormItemQt>> m_item;
    int m_columns = 1;
    int m_fieldWidth = -1;
    QGridLayout* m_layout = nullptr;
    ZBFormItemQt* m_lastEdit = nullptr;
};

} // namespace Tervalon
