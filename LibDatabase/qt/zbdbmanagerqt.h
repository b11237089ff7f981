#pragma once

#include <QMainWindow>

#include <map>
#include <memory>
#include <string>

class QLabel;

namespace Tervalon {

class ZBDatabase;

// A window that owns one database from load to unload. This first form opens
// or creates the file, shows its name and object count, and writes the file
// back whole when it closes; the full manager window grows on it.
class ZBDBManagerQt : public QMainWindow {
    Q_OBJECT
public:
    explicit ZBDBManagerQt(ZBDatabase* database, QWidget* parent = nullptr);
    ~ZBDBManagerQt() override;

    // Loads (or creates) the file. The periods are those of the periodic update,
    // the detail calculation and the interaction timer, in milliseconds.
    int start(const std::string& file, int periodic, int detail, int interaction);
    ZBDatabase* get_database() const { return m_database.get(); }
    bool is_loaded() const;
    // Saves the whole file; on failure the old file stays as it was.
    int save_now();
    // A command that arrived by URL, with its query items.
    virtual int url_command(const std::string& command, const std::map<std::string, std::string>& values);
    void update_display();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::unique_ptr<ZBDatabase> m_database;
    QLabel* m_label;
    int m_periodic;
    int m_detail;
    int m_interaction;
};

} // namespace Tervalon
