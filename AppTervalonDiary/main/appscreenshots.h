#pragma once

#include <memory>
#include <string>

class QWidget;

namespace Tervalon {

class Diary;
class ZBDatabase;

// The picture tour of the program's windows: each window, tab and dialog
// there is, shown in turn on the diary named (read only, never written) or
// on a sample made in memory, and saved as "<folder>/<objectName>.png".
// Used to check the look on a machine without a desktop (under xvfb-run).
class AppScreenshots {
public:
    AppScreenshots(const std::string& folder, const std::string& file);
    ~AppScreenshots();

    // ZBErrC_ok when every picture was saved.
    int run();
    int get_nsaved() const { return m_saved; }

private:
    int open_diary();
    int make_sample();
    int save(QWidget* window, const std::string& name = std::string());
    int show_form();
    int show_container();
    int show_settings();
    int show_tree();
    int show_message();
    int show_graph();
    // The questions of opening and closing a file, its settings page and the first run.
    int show_load();
    int save_box(QWidget& window, const std::string& name, const char* caption);
    int show_notify();

    std::string m_folder;
    std::string m_file;
    std::unique_ptr<ZBDatabase> m_db;
    Diary* m_diary = nullptr;
    int m_saved = 0;
};

} // namespace Tervalon
