#pragma once

#include "LibGui/qt/zbwidgetqt.h"

#include <string>
#include <vector>

namespace Tervalon {

class ZBDatabase;
class ZBDBManagerQt;

// The path from a file name to a loaded database, as a chain of steps, each
// of which may wait on a question to the user without blocking the event
// loop. Nothing on disk is given up without the user saying so: a damaged
// file is set aside, never deleted. It deletes itself when done and reports
// by signal. Owned by the window it works for.
class ZBDBLoadQt : public ZBWidgetQt {
    Q_OBJECT
public:
    static const char* const C_FindIt;
    static const char* const C_CreateNew;
    static const char* const C_Previous;
    static const char* const C_OpenAnyway;
    static const char* const C_TryAgain;
    static const char* const C_AutoSaved;

    ZBDBLoadQt(ZBDatabase& db, ZBDBManagerQt& manager);
    ~ZBDBLoadQt() override;

    // flags are ZBDBManagerQt::E_LoadFlag.
    static ZBDBLoadQt* start_load(ZBDatabase& db, const std::string& file, const std::string& previous, int flags,
                                  ZBDBManagerQt& manager);
    static ZBDBLoadQt* start_create(ZBDatabase& db, const std::string& file, ZBDBManagerQt& manager);

    // The steps; public so that each can be driven on its own.
    void load_step1();
    void load_step2(int code);
    void load_step3();
    void file_create_choice(const QString& key);
    void find_base(bool create);
    void base_chosen(const std::string& base);
    void load_step4();
    void lock_choice(const QString& key);
    void load_step5();
    void handle_partial(const QString& key);
    void handle_temp(const QString& key);
    void handle_load_fail(const QString& key);
    void handle_delete_corrupt(const QString& key);
    void create_step1();
    void overwrite_choice(const QString& key);
    void create_step2();
    void create_step3();
    void complete();
    void cancelled();
    void failed();

    const std::string& get_file() const { return m_file; }

signals:
    void load_complete(const std::string& file);
    void load_failed();
    void load_cancelled();
    void do_create(const std::string& file);

private:
    void finish();
    void reload();
    void file_found(const std::string& file);
    void load_file(bool usePartial, bool forceClean);
    std::string error_text() const;

    ZBDatabase& m_db;
    ZBDBManagerQt& m_manager;
    std::string m_file;
    std::string m_previous;
    // The file this load unloaded to make room: reloaded when the load fails.
    std::string m_reload;
    std::string m_template;
    int m_flags = 0;
    bool m_create = false;
    bool m_done = false;
    bool m_triedAgain = false;
    std::vector<std::string> m_templates;
};

} // namespace Tervalon
