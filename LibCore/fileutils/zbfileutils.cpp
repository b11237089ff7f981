#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/error/zberror.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <cstdio>

namespace Tervalon {

namespace {

inline QString qs(const std::string& text)
{
    return QString::fromStdString(text);
}

inline std::string ss(const QString& text)
{
    return text.toStdString();
}

} // namespace

std::string zb_cache_dir()
{
    QStringList locations = QStandardPaths::standardLocations(QStandardPaths::CacheLocation);
    QString dir = locations.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::CacheLocation) : locations.first();
    if (dir.isEmpty())
        dir = QDir::tempPath();
    QDir().mkpath(dir);
    return ss(dir);
}

std::string zb_cache_file(const std::string& suffix)
{
    QString name = QCoreApplication::applicationName();
    if (name.isEmpty())
        name = "TervalonDiary";
    return zb_cache_dir() + "/" + ss(name) + suffix;
}

bool zb_file_exists(const std::string& path)
{
    QFileInfo info(qs(path));
    return info.exists() && !info.isDir();
}

bool zb_dir_exists(const std::string& path)
{
    return !path.empty() && QFileInfo(qs(path)).isDir();
}

bool zb_dir_writable(const std::string& dir)
{
    if (!zb_dir_exists(dir))
        return false;
    QFile probe(QDir(qs(dir)).filePath("ABCDEFFFED-test.txt"));
    if (!probe.open(QIODevice::WriteOnly))
        return false;
    bool wrote = probe.write("x", 1) == 1;
    probe.close();
    return probe.remove() && wrote;
}

ZBMoment zb_file_modified(const std::string& path)
{
    QFileInfo info(qs(path));
    return info.exists() ? ZBMoment(info.lastModified().toMSecsSinceEpoch() * 1000) : ZBMoment();
}

long long zb_file_size(const std::string& path)
{
    QFileInfo info(qs(path));
    return info.exists() ? info.size() : -1;
}

int zb_file_compare(const std::string& a, const std::string& b, bool& same)
{
    same = false;
    QFile fa(qs(a));
    if (!fa.open(QIODevice::ReadOnly))
        return zbwarning(ZBErrC_FileOpen, ZBLOC, "zb_file_compare: Could not open %s for reading.", a.c_str());
    QFile fb(qs(b));
    if (!fb.open(QIODevice::ReadOnly))
        return zbwarning(ZBErrC_FileOpen, ZBLOC, "zb_file_compare: Could not open %s for reading.", b.c_str());
    if (fa.size() != fb.size())
        return ZBErrC_ok;
    const qint64 C_Block = 65536;
    while (!fa.atEnd()) {
        if (fa.read(C_Block) != fb.read(C_Block))
            return ZBErrC_ok;
    }
    same = fb.atEnd();
    return ZBErrC_ok;
}

int zb_copy_file(const std::string& from, const std::string& to, bool overwrite)
{
    if (!zb_file_exists(from))
        return zbwarning(ZBErrC_FileNotExist, ZBLOC, "The file %s does not exist.", from.c_str());
    if (zb_file_exists(to)) {
        if (!overwrite)
            return zbwarning(ZBErrC_FileExists, ZBLOC, "The file %s already exists.", to.c_str());
        if (!QFile::remove(qs(to)))
            return zbwarning(ZBErrC_FileDelete, ZBLOC, "Could not delete %s", to.c_str());
    }
    if (!QFile::copy(qs(from), qs(to)))
        return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not copy %s to %s", from.c_str(), to.c_str());
    return ZBErrC_ok;
}

int zb_rename_file(const std::string& from, const std::string& to, bool overwrite)
{
    if (!zb_file_exists(from))
        return zbwarning(ZBErrC_FileNotExist, ZBLOC, "The file %s does not exist.", from.c_str());
    if (from == to)
        return ZBErrC_ok;
    if (zb_file_exists(to)) {
        if (!overwrite)
            return zbwarning(ZBErrC_FileExists, ZBLOC, "The file %s already exists.", to.c_str());
        // rename(2) replaces the target in one step, so no moment is left
        // without either file.
        if (std::rename(QFile::encodeName(qs(from)).constData(), QFile::encodeName(qs(to)).constData()) == 0)
            return ZBErrC_ok;
        return zbwarning(ZBErrC_FileRename, ZBLOC, "Could not rename %s to %s", from.c_str(), to.c_str());
    }
    if (!QFile::rename(qs(from), qs(to)))
        return zbwarning(ZBErrC_FileRename, ZBLOC, "Could not rename %s to %s", from.c_str(), to.c_str());
    return ZBErrC_ok;
}

int zb_delete_file(const std::string& path)
{
    QFile file(qs(path));
    if (!file.exists())
        return ZBErrC_ok;
    if (!file.remove())
        return zbwarning(ZBErrC_FileDelete, ZBLOC, "Could not delete %s (error %d - %s)", path.c_str(), int(file.error()),
                         file.errorString().toStdString().c_str());
    return ZBErrC_ok;
}

int zb_create_dir(const std::string& path)
{
    if (zb_dir_exists(path))
        return ZBErrC_ok;
    if (path.empty() || !QDir().mkpath(qs(path)))
        return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create %s", path.c_str());
    return ZBErrC_ok;
}

int zb_delete_dir(const std::string& path, bool recursive)
{
    if (!zb_dir_exists(path))
        return zbwarning(ZBErrC_FileNotExist, ZBLOC, "The directory %s does not exist.", path.c_str());
    QDir dir(qs(path));
    bool ok = recursive ? dir.removeRecursively() : dir.rmdir(".");
    if (!ok)
        return zbwarning(ZBErrC_FileDelete, ZBLOC, "Could not delete %s", path.c_str());
    return ZBErrC_ok;
}

bool zb_is_absolute_path(const std::string& path)
{
    return !path.empty() && QDir::isAbsolutePath(qs(path));
}

std::string zb_clean_pathname(const std::string& path, bool forward)
{
    if (path.empty())
        return path;
    std::string text = path;
    if (forward)
        for (char& c : text)
            if (c == '\\')
                c = '/';
    // cleanPath would fold a leading "//" into "/", losing a network path.
    bool network = text.size() > 1 && (text[0] == '/' || text[0] == '\\') && text[1] == text[0];
    std::string cleaned = ss(QDir::cleanPath(qs(text)));
    if (network && (cleaned.size() < 2 || cleaned[1] != cleaned[0]))
        cleaned = std::string(1, text[0]) + cleaned;
    std::string out;
    out.reserve(cleaned.size());
    for (size_t i = 0; i < cleaned.size(); ++i) {
        const char c = cleaned[i];
        if (i >= 2 && (c == '/' || c == '\\') && out.back() == c)
            continue;
        out += c;
    }
    return out;
}

void zb_split_path(const std::string& path, std::string& dir, std::string& base, std::string& ext)
{
    size_t slash = path.rfind('/');
    std::string name;
    if (slash == std::string::npos) {
        dir.clear();
        name = path;
    } else {
        dir = slash == 0 ? std::string("/") : path.substr(0, slash);
        name = path.substr(slash + 1);
    }
    size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0) {
        base = name;
        ext.clear();
    } else {
        base = name.substr(0, dot);
        ext = name.substr(dot);
    }
}

std::string zb_filename(const std::string& path)
{
    size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string zb_basename(const std::string& path)
{
    std::string dir, base, ext;
    zb_split_path(path, dir, base, ext);
    return base;
}

std::string zb_dirname(const std::string& path)
{
    std::string dir, base, ext;
    zb_split_path(path, dir, base, ext);
    return dir;
}

std::string zb_extension(const std::string& path)
{
    std::string dir, base, ext;
    zb_split_path(path, dir, base, ext);
    return ext;
}

std::string zb_join_path(const std::string& dir, const std::string& name)
{
    if (dir.empty())
        return name;
    if (name.empty())
        return dir;
    if (dir.back() == '/')
        return name.front() == '/' ? dir + name.substr(1) : dir + name;
    return name.front() == '/' ? dir + name : dir + "/" + name;
}

int zb_read_text_file(const std::string& path, std::string& text)
{
    text.clear();
    QFile file(qs(path));
    if (!file.exists())
        return zbwarning(ZBErrC_FileNotExist, ZBLOC, "The file %s does not exist.", path.c_str());
    if (!file.open(QIODevice::ReadOnly))
        return zbwarning(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", path.c_str());
    text = file.readAll().toStdString();
    return ZBErrC_ok;
}

int zb_write_text_file(const std::string& path, const std::string& text)
{
    // Written beside and renamed over, so a crash never leaves half a file.
    QSaveFile file(qs(path));
    if (!file.open(QIODevice::WriteOnly))
        return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", path.c_str());
    if (file.write(text.data(), qint64(text.size())) != qint64(text.size()) || !file.commit())
        return zbwarning(ZBErrC_FileWrite, ZBLOC, "Could not write to the file %s", path.c_str());
    return ZBErrC_ok;
}

} // namespace Tervalon
