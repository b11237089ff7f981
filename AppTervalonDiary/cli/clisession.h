#pragma once

#include "AppTervalonDiary/cli/clicommand.h"
#include "LibDatabase/db/zblockfile.h"

#include <memory>
#include <string>

namespace Tervalon {

class ZBDatabase;

// One data file held open by the command line, the way the window holds it:
// locked while open, a crashed session's log recovered (or discarded) on
// opening, each operation logged to the partial file as it completes, and
// the full save through the database's own save. Owned by the command that
// opened it.
class CliSession {
public:
    CliSession();
    ~CliSession();
    CliSession(const CliSession&) = delete;
    CliSession& operator=(const CliSession&) = delete;

    // Opens file; a command that only reads needs no lock and leaves every
    // other file alone. Messages go to the context's error stream. Gives the
    // exit status: 0 when open.
    int open(CliContext& context, const std::string& file, bool writes, bool discardPartial);
    int save(CliContext& context);
    // Ends the session: the database is unloaded, its log removed, the lock freed.
    void close();

    ZBDatabase& db() { return *m_db; }
    bool is_open() const { return m_db != nullptr; }

    // Takes "--discard-partial" out of a command's arguments.
    static bool take_discard_option(std::vector<std::string>& args);

private:
    std::unique_ptr<ZBDatabase> m_db;
    ZBLockFile m_lock;
    bool m_saveFailed = false;
};

} // namespace Tervalon
