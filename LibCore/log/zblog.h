#pragma once

#include <map>
#include <mutex>
#include <string>

namespace Tervalon {

// Named logs ("cloud", ...) in "<cache dir>/logs/<name>.log": one line per
// entry with its local time. Each log is cut to its newest lines every half
// hour of use, so it stays bounded however long the program runs. Safe to
// call from any thread; a log that cannot be written is reported once (as a
// user warning on the main thread, on stderr elsewhere) and work goes on.
class ZBLog {
public:
    static const char* const C_LogDir;
    static const char* const C_LogSuffix;
    static const char* const C_CloudLog;
    static const int C_RotateSeconds = 1800;
    static const int C_KeepLines = 2000;

    ZBLog();
    virtual ~ZBLog();

    int log(const std::string& name, const std::string& line);
    std::string read(const std::string& name);
    // Drops the older lines so that at most C_KeepLines remain.
    int rotate(const std::string& name);
    // Made of the cache directory (or the directory set for tests) and the
    // name, with characters that could leave the directory replaced by '_'.
    std::string get_log_path(const std::string& name);
    void set_base_dir(const std::string& dir);

private:
    int rotate_locked(const std::string& path);

    std::mutex m_mutex;
    std::string m_baseDir;
    std::map<std::string, long long> m_lastRotation;
    std::map<std::string, bool> m_failed;
};

} // namespace Tervalon
