#include "AppTervalonDiary/cli/clisession.h"
#include "AppTervalonDiary/diary/appdiaryinfo.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

CliSession::CliSession() = default;

CliSession::~CliSession()
{
    close();
}

bool CliSession::take_discard_option(std::vector<std::string>& args)
{
    auto found = std::find(args.begin(), args.end(), "--discard-partial");
    if (found == args.end())
        return false;
    args.erase(found);
    return true;
}

int CliSession::open(CliContext& context, const std::string& file, bool writes, bool discardPartial)
{
    close();
    m_db.reset(AppDiaryInfo::make_database());
    if (!writes) {
        int result = m_db->read(file);
        if (iszbwarn(result)) {
            m_db.reset();
            return CliCommand::report_failure(context, result);
        }
        return 0;
    }
    int result = m_lock.lock(file, false);
    if (result == ZBErrC_FileOpen) {
        long long pid = 0;
        std::string host;
        ZBLockFile::get_holder(file, pid, host);
        if (ZBLockFile::held_by_live_process(file)) {
            context.err << "tervalon: " << file << " is locked by another user (process " << pid
                        << (host.empty() ? std::string() : " on " + host) << ")." << std::endl;
            m_db.reset();
            return 1;
        }
        result = m_lock.lock(file, true);
        if (iszbwarn(result)) {
            m_db.reset();
            return CliCommand::report_failure(context, result);
        }
        context.err << "tervalon: took over the lock of " << file << " left by process " << pid
                    << ", which is no longer running." << std::endl;
    } else if (iszbwarn(result)) {
        m_db.reset();
        return CliCommand::report_failure(context, result);
    }
    const bool hadLog = ZBDatabase::has_partial(file);
    // Leftovers of a save that was cut short go: the data file is whole
    // whenever a save stops. A crashed session's log is kept and replayed
    // unless the user threw it away.
    result = m_db->load(file, false, false, std::string(), hadLog && !discardPartial, true, !discardPartial, false);
    if (iszbwarn(result)) {
        m_db.reset();
        m_lock.unlock();
        return CliCommand::report_failure(context, result);
    }
    if (hadLog && discardPartial)
        context.err << "tervalon: discarded the unsaved changes of an unfinished session of " << file << "." << std::endl;
    if (m_db->get_recovered() > 0)
        context.err << "tervalon: recovered " << m_db->get_recovered() << " unsaved operation"
                    << (m_db->get_recovered() == 1 ? "" : "s") << " of an unfinished session of " << file << "."
                    << std::endl;
    else if (m_db->get_recovered() < 0)
        context.err << "tervalon: the unsaved changes of an unfinished session of " << file
                    << " could not be read (" << m_db->get_recovery_message() << "); the file is as last saved."
                    << std::endl;
    return 0;
}

int CliSession::save(CliContext& context)
{
    if (!m_db || m_db->is_read_only())
        return 0;
    int result = m_db->save(true, true, false);
    if (iszbwarn(result)) {
        const int status = CliCommand::report_failure(context, result);
        // The operations stay in the session's log, for the next load to recover.
        m_saveFailed = true;
        context.err << "tervalon: the changes are kept and will be recovered when " << m_db->get_filename()
                    << " is next opened." << std::endl;
        return status;
    }
    m_saveFailed = false;
    return 0;
}

void CliSession::close()
{
    if (m_db) {
        // After a failed save the log is left on disk, as a crash would leave
        // it; otherwise the session's files go with it.
        if (!(m_saveFailed && m_db->needs_save()))
            m_db->unload();
        m_db.reset();
    }
    m_saveFailed = false;
    m_lock.unlock();
}

} // namespace Tervalon
