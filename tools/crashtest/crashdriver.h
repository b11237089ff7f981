#pragma once

// Kills a "tervalon shell" with SIGKILL at random points while it changes a
// diary, and checks after each kill that the next load holds every change the
// shell acknowledged, and that the file loads at all. Shared by the CI test
// (a few dozen kills) and tools/crashtest (a thousand).

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <poll.h>
#include <random>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Tervalon {
namespace CrashTest {

// A child process with its standard input and output on pipes.
class Child {
public:
    Child(const std::string& program, const std::vector<std::string>& args)
    {
        int in[2], out[2];
        if (::pipe(in) != 0 || ::pipe(out) != 0)
            return;
        m_pid = ::fork();
        if (m_pid == 0) {
            ::dup2(in[0], 0);
            ::dup2(out[1], 1);
            const int null = ::open("/dev/null", O_WRONLY);
            ::dup2(null, 2);
            ::close(in[1]);
            ::close(out[0]);
            std::vector<char*> argv;
            argv.push_back(const_cast<char*>(program.c_str()));
            for (const std::string& arg : args)
                argv.push_back(const_cast<char*>(arg.c_str()));
            argv.push_back(nullptr);
            ::execv(program.c_str(), argv.data());
            ::_exit(127);
        }
        ::close(in[0]);
        ::close(out[1]);
        m_in = in[1];
        m_out = out[0];
        ::signal(SIGPIPE, SIG_IGN);
    }
    ~Child()
    {
        kill();
        if (m_in >= 0)
            ::close(m_in);
        if (m_out >= 0)
            ::close(m_out);
    }
    bool started() const { return m_pid > 0; }
    bool send(const std::string& line)
    {
        const std::string text = line + "\n";
        return ::write(m_in, text.data(), text.size()) == ssize_t(text.size());
    }
    void close_input()
    {
        ::close(m_in);
        m_in = -1;
    }
    // The next line of output; false at its end or after timeoutMs.
    bool read_line(std::string& line, int timeoutMs)
    {
        while (true) {
            const size_t at = m_buffer.find('\n');
            if (at != std::string::npos) {
                line = m_buffer.substr(0, at);
                m_buffer.erase(0, at + 1);
                return true;
            }
            pollfd fd{m_out, POLLIN, 0};
            if (::poll(&fd, 1, timeoutMs) <= 0)
                return false;
            char chunk[4096];
            const ssize_t got = ::read(m_out, chunk, sizeof(chunk));
            if (got <= 0)
                return false;
            m_buffer.append(chunk, size_t(got));
        }
    }
    void kill()
    {
        if (m_pid > 0) {
            ::kill(m_pid, SIGKILL);
            int status = 0;
            ::waitpid(m_pid, &status, 0);
            m_pid = -1;
        }
    }
    // Waits for a normal end; the exit status, or -1.
    int wait()
    {
        int status = 0;
        if (m_pid <= 0 || ::waitpid(m_pid, &status, 0) != m_pid)
            return -1;
        m_pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_pid = -1;
    int m_in = -1;
    int m_out = -1;
    std::string m_buffer;
};

// The run: a model of the entries the file must hold, and the kills.
class Driver {
public:
    Driver(const std::string& program, const std::string& file, unsigned seed)
        : m_program(program), m_file(file), m_random(seed)
    {
    }

    // Makes the file; false (with failure set) when even that fails.
    bool create()
    {
        Child child(m_program, {"create", m_file});
        if (!child.started() || child.wait() != 0)
            return fail("could not create " + m_file);
        return true;
    }

    // One session: random lines, acknowledged ones entered in the model, cut
    // short by SIGKILL at a random point; then the check.
    bool session()
    {
        Child child(m_program, {"shell", m_file});
        if (!child.started())
            return fail("could not start the shell");
        const int lines = std::uniform_int_distribution<int>(1, 12)(m_random);
        int lineNo = 0;
        m_pending = Pending();
        for (int i = 0; i < lines; ++i) {
            const Pending op = next_op();
            if (!child.send(op.line))
                break;
            ++lineNo;
            // Sometimes the kill comes while the line is being worked on.
            if (std::uniform_int_distribution<int>(0, 4)(m_random) == 0) {
                m_pending = op;
                ::usleep(useconds_t(std::uniform_int_distribution<int>(0, 3000)(m_random)));
                break;
            }
            std::string out, last;
            bool acked = false;
            while (child.read_line(out, 20000)) {
                if (out == "ok " + std::to_string(lineNo)) {
                    acked = true;
                    break;
                }
                last = out;
            }
            if (!acked)
                return fail("no acknowledgement of: " + op.line);
            apply(op, last);
        }
        child.kill();
        ++m_kills;
        return check();
    }

    int kills() const { return m_kills; }
    const std::string& failure() const { return m_failure; }

private:
    struct Pending {
        enum Kind { None, Add, Set, Remove, Save } kind = None;
        std::string line;
        int id = -1;
        std::string title;
    };

    Pending next_op()
    {
        Pending op;
        const int roll = std::uniform_int_distribution<int>(0, 9)(m_random);
        if (m_entries.empty() || roll < 4) {
            op.kind = Pending::Add;
            op.title = "t" + std::to_string(++m_serial);
            op.line = "add --type T --title " + op.title;
        } else if (roll < 9 || m_entries.size() < 3) {
            auto it = m_entries.begin();
            std::advance(it, std::uniform_int_distribution<int>(0, int(m_entries.size()) - 1)(m_random));
            op.id = it->first;
            if (roll < 7) {
                op.kind = Pending::Set;
                op.title = "u" + std::to_string(++m_serial);
                op.line = "set " + std::to_string(op.id) + " title " + op.title;
            } else {
                op.kind = Pending::Remove;
                op.line = "rm " + std::to_string(op.id);
            }
        } else {
            op.kind = Pending::Save;
            op.line = "save";
        }
        return op;
    }

    void apply(const Pending& op, const std::string& output)
    {
        switch (op.kind) {
        case Pending::Add:
            m_entries[std::stoi(output)] = op.title;
            break;
        case Pending::Set:
            m_entries[op.id] = op.title;
            break;
        case Pending::Remove:
            m_entries.erase(op.id);
            break;
        default:
            break;
        }
    }

    // The next load, by a shell of its own: it recovers the log and prints the tree.
    bool check()
    {
        Child child(m_program, {"shell", m_file});
        if (!child.started())
            return fail("could not start the checking shell");
        child.send("tree");
        child.send("quit");
        child.close_input();
        std::map<int, std::string> found;
        std::string line;
        bool acked = false;
        while (child.read_line(line, 20000)) {
            if (line == "ok 1") {
                acked = true;
                continue;
            }
            std::istringstream words(line);
            int id = -1;
            std::string type, title;
            if (words >> id >> type >> title)
                found[id] = title;
        }
        if (child.wait() != 0 || !acked)
            return fail("the file did not load after kill " + std::to_string(m_kills));
        // The line the kill cut short may or may not have happened.
        if (m_pending.kind == Pending::Add) {
            for (const auto& entry : found)
                if (entry.second == m_pending.title && !m_entries.count(entry.first))
                    m_entries[entry.first] = entry.second;
        } else if ((m_pending.kind == Pending::Set || m_pending.kind == Pending::Remove) && m_entries.count(m_pending.id)) {
            auto it = found.find(m_pending.id);
            if (it == found.end())
                m_entries.erase(m_pending.id);
            else
                m_entries[m_pending.id] = it->second;
        }
        if (found != m_entries) {
            std::ostringstream text;
            text << "after kill " << m_kills << " the file holds " << found.size() << " entries, expected "
                 << m_entries.size() << ":";
            for (const auto& entry : m_entries)
                if (!found.count(entry.first) || found[entry.first] != entry.second)
                    text << " missing " << entry.first << "=" << entry.second;
            for (const auto& entry : found)
                if (!m_entries.count(entry.first))
                    text << " extra " << entry.first << "=" << entry.second;
            return fail(text.str());
        }
        return true;
    }

    bool fail(const std::string& why)
    {
        m_failure = why;
        return false;
    }

    std::string m_program;
    std::string m_file;
    std::mt19937 m_random;
    std::map<int, std::string> m_entries;
    Pending m_pending;
    int m_serial = 0;
    int m_kills = 0;
    std::string m_failure;
};

} // namespace CrashTest
} // namespace Tervalon
