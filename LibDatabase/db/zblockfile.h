#pragma once

#include <memory>
#include <string>

class QLockFile;

namespace Tervalon {

// The lock that keeps two programs from working on one data file at once. It
// lives in the cache folder beside the file's index, named from the file's
// whole path. A lock left by a program that died is taken over only when
// asked; one whose owner is still running never is. Owned by whoever opened
// the file (a window, a shell session).
class ZBLockFile {
public:
    static const char* const C_LockExtension;
    // What the window asks when the lock is held; the command line says the first part.
    static const char* const C_LockedQuestion;

    ZBLockFile();
    ~ZBLockFile();
    ZBLockFile(const ZBLockFile&) = delete;
    ZBLockFile& operator=(const ZBLockFile&) = delete;

    // ZBErrC_FileOpen (with no report) when another holds the lock and
    // removeStale is not set; with removeStale a dead owner's lock is removed
    // and the lock taken, and a live owner's is refused with "Could not lock %s".
    int lock(const std::string& name, bool removeStale);
    int unlock();
    bool is_locked() const;
    const std::string& get_lock_name() const { return m_fileName; }
    // Who holds the lock on name now, if anyone: the process id and host.
    static bool get_holder(const std::string& name, long long& pid, std::string& host);
    // Whether the lock on name is held by a process that is still running on this host.
    static bool held_by_live_process(const std::string& name);
    static std::string lock_name(const std::string& name);
    // After a lock() that removed a dead owner's lock: that owner's process
    // id (-1 when the lock did not say); 0 otherwise.
    long long took_over_from() const { return m_tookOverFrom; }

private:
    std::string m_fileName;
    std::unique_ptr<QLockFile> m_lock;
    long long m_tookOverFrom = 0;
};

} // namespace Tervalon
