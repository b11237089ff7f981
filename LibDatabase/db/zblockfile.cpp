#include "LibDatabase/db/zblockfile.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibCore/error/zberror.h"

#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QSysInfo>
#include <QLockFile>

#include <cerrno>
#include <csignal>
#include <sys/types.h>

namespace Tervalon {

const char* const ZBLockFile::C_LockExtension = ".dblock";
const char* const ZBLockFile::C_LockedQuestion = "%s is locked by another user.  Do you want to:";

ZBLockFile::ZBLockFile() = default;

ZBLockFile::~ZBLockFile()
{
    unlock();
}

std::string ZBLockFile::lock_name(const std::string& name)
{
    return ZBDatabase::get_cache_name(name, true) + C_LockExtension;
}

bool ZBLockFile::get_holder(const std::string& name, long long& pid, std::string& host)
{
    QLockFile probe(QString::fromStdString(lock_name(name)));
    qint64 id = 0;
    QString hostName;
    QString application;
    if (!probe.getLockInfo(&id, &hostName, &application))
        return false;
    pid = id;
    host = hostName.toStdString();
    return true;
}

bool ZBLockFile::held_by_live_process(const std::string& name)
{
    long long pid = 0;
    std::string host;
    if (!get_holder(name, pid, host))
        return false;
    // A lock from another machine (a shared folder) cannot be checked: it counts as live.
    if (!host.empty() && host != QSysInfo::machineHostName().toStdString())
        return true;
    if (pid <= 0)
        return false;
    return ::kill(pid_t(pid), 0) == 0 || errno == EPERM;
}

int ZBLockFile::lock(const std::string& name, bool removeStale)
{
    unlock();
    m_tookOverFrom = 0;
    m_fileName = lock_name(name);
    const QString lockPath = QString::fromStdString(m_fileName);
    QDir().mkpath(QFileInfo(lockPath).absolutePath());
    // A lock file already there is never removed unasked, whoever left it; and
    // asked, only when its owner is no longer running.
    if (QFileInfo::exists(lockPath)) {
        if (!removeStale)
            return ZBErrC_FileOpen;
        long long pid = 0;
        std::string host;
        get_holder(name, pid, host);
        if (held_by_live_process(name))
            return zbwarning(ZBErrC_FileOpen, ZBLOC, "Could not lock %s", name.c_str());
        QFile::remove(lockPath);
        m_tookOverFrom = pid > 0 ? pid : -1;
    }
    m_lock.reset(new QLockFile(lockPath));
    // No automatic staleness: a long session must never lose its lock.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0))
        return ZBErrC_ok;
    m_lock.reset();
    if (!removeStale)
        return ZBErrC_FileOpen;
    return zbwarning(ZBErrC_FileOpen, ZBLOC, "Could not lock %s", name.c_str());
}

int ZBLockFile::unlock()
{
    if (m_lock && m_lock->isLocked())
        m_lock->unlock();
    m_lock.reset();
    return ZBErrC_ok;
}

bool ZBLockFile::is_locked() const
{
    return m_lock && m_lock->isLocked();
}

} // namespace Tervalon
