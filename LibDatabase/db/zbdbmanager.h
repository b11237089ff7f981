#pragma once

#include <string>

namespace Tervalon {

class ZBDatabase;

// The side of a database's window that needs no window: autosave when idle,
// and the system values it keeps. It does not own the database.
class ZBDBManager {
public:
    static const char* const C_AutoSave;
    static const char* const C_Backups;
    static const char* const C_CompSeparator;

    explicit ZBDBManager(ZBDatabase* db = nullptr) : m_db(db) {}

    void set_database(ZBDatabase* db) { m_db = db; }
    ZBDatabase* get_database() const { return m_db; }
    // Saves when a file is loaded, autosave is on and something changed
    // since the last full save; okNotHandled when there was nothing to do.
    int do_autosave(bool verify);
    // Reads "AutoSave" and "Backups" from the system values into the database.
    void apply_settings();

private:
    ZBDatabase* m_db;
};

} // namespace Tervalon
