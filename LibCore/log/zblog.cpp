#include "LibCore/log/zblog.h"
#include "LibCore/error/zberrdetails.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibCore/time/zbmoment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QThread>

#include <iostream>
#include <memory>

namespace Tervalon {

const char* const ZBLog::C_LogDir = "logs";
const char* const ZBLog::C_LogSuffix = ".log";
const char* const ZBLog::C_CloudLog = "cloud";

namespace {

bool on_main_thread()
{
    QCoreApplication* app = QCoreApplication::instance();
    return !app || QThread::currentThread() == app->thread();
}

std::string safe_name(const std::string& name)
{
    std::string out;
    for (char c : name) {
        const unsigned char u = static_cast<unsigned char>(c);
        out += (std::isalnum(u) || c == '_' || c == '-' || c == '.' || u >= 0x80) ? c : '_';
    }
    if (out.empty() || out == "." || out == "..")
        out = "_" + out;
    return zb_clean_unicode(out);
}

} // namespace

ZBLog::ZBLog() = default;

ZBLog::~ZBLog() = default;

void ZBLog::set_base_dir(const std::string& dir)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_baseDir = dir;
}

std::string ZBLog::get_log_path(const std::string& name)
{
    std::string base = m_baseDir.empty() ? zb_cache_dir() : m_baseDir;
    std::string dir = base + "/" + C_LogDir;
    QDir().mkpath(QString::fromStdString(dir));
    return dir + "/" + safe_name(name) + C_LogSuffix;
}

int ZBLog::log(const std::string& name, const std::string& line)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const std::string path = get_log_path(name);
    const long long now = ZBMoment::now().to_micros();
    auto last = m_lastRotation.find(path);
    if (last == m_lastRotation.end() || now - last->second >= (long long)C_RotateSeconds * 1000000) {
        rotate_locked(path);
        m_lastRotation[path] = now;
    }
    // One entry, one line: breaks inside the text become indented continuation lines.
    std::string text = ZBErrDetails::format_time(now, false) + ": ";
    for (char c : zb_clean_unicode(line)) {
        if (c == '\r')
            continue;
        text += c;
        if (c == '\n')
            text += "    ";
    }
    text += "\n";
    QFile file(QString::fromStdString(path));
    bool ok = file.open(QIODevice::WriteOnly | QIODevice::Append)
        && file.write(text.data(), qint64(text.size())) == qint64(text.size());
    bool& failed = m_failed[path];
    if (ok) {
        failed = false;
        return ZBErrC_ok;
    }
    if (failed)
        return ZBErrC_okFailed;
    failed = true;
    lock.unlock();
    if (on_main_thread())
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the log file %s", path.c_str());
    // Other threads never touch the error stack.
    std::cerr << "Could not open the log file " << path << std::endl;
    return ZBErrDetails::compute_combination(ZBErrC_FileOpen, ZBErrSev_UserWarning);
}

std::string ZBLog::read(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    QFile file(QString::fromStdString(get_log_path(name)));
    if (!file.open(QIODevice::ReadOnly))
        return std::string();
    return file.readAll().toStdString();
}

int ZBLog::rotate(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const std::string path = get_log_path(name);
    m_lastRotation[path] = ZBMoment::now().to_micros();
    return rotate_locked(path);
}

int ZBLog::rotate_locked(const std::string& path)
{
    QFile in(QString::fromStdString(path));
    if (!in.open(QIODevice::ReadOnly))
        return ZBErrC_ok;
    QByteArray data = in.readAll();
    in.close();
    int lines = data.count('\n');
    if (lines <= C_KeepLines)
        return ZBErrC_ok;
    int skip = lines - C_KeepLines;
    int at = 0;
    while (skip > 0) {
        at = data.indexOf('\n', at) + 1;
        --skip;
    }
    QSaveFile out(QString::fromStdString(path));
    if (!out.open(QIODevice::WriteOnly))
        return ZBErrC_okFailed;
    out.write(data.constData() + at, data.size() - at);
    return out.commit() ? ZBErrC_ok : ZBErrC_okFailed;
}

ZBLog& zblog()
{
    static ZBLog log;
    return log;
}

} // namespace Tervalon
