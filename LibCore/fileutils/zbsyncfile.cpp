#include "LibCore/fileutils/zbsyncfile.h"
#include "LibCore/error/zberror.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

namespace Tervalon {

namespace {

std::atomic<long long> g_writeBudget{-1};

std::string parent_dir(const std::string& path)
{
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// Writes all of data, in one call unless the system cuts it short.
int write_all(int fd, const std::string& path, const std::string& data)
{
    size_t done = 0;
    while (done < data.size()) {
        size_t want = data.size() - done;
        long long budget = g_writeBudget.load();
        if (budget >= 0) {
            if (budget == 0) {
                errno = ENOSPC;
                return zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(errno));
            }
            want = std::min<size_t>(want, size_t(budget));
        }
        const ssize_t wrote = ::write(fd, data.data() + done, want);
        if (wrote < 0) {
            if (errno == EINTR)
                continue;
            return zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(errno));
        }
        if (budget >= 0)
            g_writeBudget = budget - wrote;
        done += size_t(wrote);
    }
    return ZBErrC_ok;
}

} // namespace

void zb_set_write_fault(long long budget)
{
    g_writeBudget = budget;
}

int zb_append_file(const std::string& path, const std::string& data)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s: %s", path.c_str(), std::strerror(errno));
    int result = write_all(fd, path, data);
    ::close(fd);
    return result;
}

int zb_write_file_synced(const std::string& path, const std::string& data)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0)
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s: %s", path.c_str(), std::strerror(errno));
    int result = write_all(fd, path, data);
    if (!iszbwarn(result) && ::fsync(fd) != 0)
        result = zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(errno));
    if (::close(fd) != 0 && !iszbwarn(result))
        result = zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(errno));
    return result;
}

int zb_sync_file(const std::string& path)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s: %s", path.c_str(), std::strerror(errno));
    const int rc = ::fsync(fd);
    const int saved = errno;
    ::close(fd);
    if (rc != 0)
        return zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(saved));
    return ZBErrC_ok;
}

int zb_sync_dir(const std::string& dir)
{
    const int fd = ::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the folder %s: %s", dir.c_str(), std::strerror(errno));
    // Some file systems refuse to flush a folder; the rename is done all the same.
    ::fsync(fd);
    ::close(fd);
    return ZBErrC_ok;
}

int zb_rename_synced(const std::string& from, const std::string& to)
{
    if (::rename(from.c_str(), to.c_str()) != 0)
        return zbwarnuser(ZBErrC_FileRename, ZBLOC, "Could not rename %s to %s: %s", from.c_str(), to.c_str(),
                          std::strerror(errno));
    zb_sync_dir(parent_dir(to));
    return ZBErrC_ok;
}

int zb_link_or_copy(const std::string& from, const std::string& to)
{
    ::unlink(to.c_str());
    if (::link(from.c_str(), to.c_str()) == 0)
        return ZBErrC_ok;
    QFile::remove(QString::fromStdString(to));
    if (!QFile::copy(QString::fromStdString(from), QString::fromStdString(to)))
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not copy %s to %s", from.c_str(), to.c_str());
    return ZBErrC_ok;
}

int zb_truncate_file(const std::string& path, long long size)
{
    if (::truncate(path.c_str(), off_t(size)) != 0)
        return zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Failed write of %s: %s", path.c_str(), std::strerror(errno));
    return ZBErrC_ok;
}

} // namespace Tervalon
