#pragma once

#include "LibCore/application/zbappstatusentry.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibCore/time/zbmoment.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBParam;
class ZBParamCmdLine;
class ZBParamFile;

// The process-wide application object: the program's identity, its directories,
// the recent files, the host name, the status stack and the start-up order.
// Everything here works without a display; ZBApplicationQt adds the event loop
// and windows. Reached through zbapplication(); lives for the whole run.
class ZBApplication {
public:
    static const int C_MaxRecent = 10;

    ZBApplication(int argc, char** argv, const std::string& application, const std::string& title,
                  const std::string& extension, const std::string& release, const std::string& tag,
                  const std::string& date, const std::string& description, const std::string& company,
                  const std::string& domain, const std::string& copyright, const std::string& authors,
                  const std::string& logo, const std::string& email, const std::string& web, const std::string& website);
    virtual ~ZBApplication();
    ZBApplication(const ZBApplication&) = delete;
    ZBApplication& operator=(const ZBApplication&) = delete;

    virtual int start();
    virtual int run();
    virtual int parameters(ZBParam& param, ZBParamCmdLine* cmdLine, ZBParamFile* file);
    virtual int setup_error();
    virtual int setup_parameters();
    // Makes the parameter store, reads the user's file and the command line;
    // ZBErrC_okShutdown after --help and the like, whose text goes to out.
    int read_parameters(std::ostream& out);

    const std::string& get_application() const { return m_application; }
    const std::string& get_title() const { return m_title; }
    const std::string& get_extension() const { return m_extension; }
    const std::string& get_release() const { return m_release; }
    const std::string& get_tag() const { return m_tag; }
    const std::string& get_date() const { return m_date; }
    const std::string& get_description() const { return m_description; }
    const std::string& get_company() const { return m_company; }
    const std::string& get_domain() const { return m_domain; }
    const std::string& get_copyright() const { return m_copyright; }
    const std::string& get_authors() const { return m_authors; }
    const std::string& get_logo() const { return m_logo; }
    const std::string& get_email() const { return m_email; }
    const std::string& get_web() const { return m_web; }
    const std::string& get_website() const { return m_website; }
    const std::string& get_executable() const { return m_executable; }
    const ZBMoment& get_app_start() const { return m_start; }
    int get_argc() const { return m_argc; }
    char** get_argv() const { return m_argv; }

    // Directories, from the desktop's standard locations.
    std::string get_cache_dir() const;
    std::string get_config_dir() const;
    std::string get_data_dir() const;
    std::string get_documents_dir() const;
    std::string get_scratch_dir() const;
    std::string get_executable_dir() const;
    std::string get_resources_dir() const;
    std::string get_doc_dir() const;
    std::string get_error_log() const;
    std::string get_performance_log() const;

    // Recent files, newest first, at most ten; kept in the system values.
    void add_recent(const std::string& file, int index = 0);
    void load_recent();
    void save_recent();
    void record_open_windows(int nWindows, bool force);
    void clear_session();
    std::string get_first_file() const;
    const std::vector<std::string>& get_recent_files() const { return m_recentFile; }
    const std::vector<std::string>& get_recent_windows() const { return m_recentWindows; }
    int get_last_nwindows() const { return m_lastNWindows; }

    // The status stack.
    virtual void push_status(const std::string& status, double percentage, bool background, int delay);
    virtual void pop_status(const std::string& status, bool background);
    std::string foreground_status() const;
    double status_percentage(const std::string& status, bool background) const;

    std::string get_hostname();
    std::string get_release_tag() const;
    std::string get_major_tag() const;
    static int release_to_int(const std::string& release);

    // "tervalondiary://..." names are URLs, not files: moves such a name to the
    // pending URL and clears it. True when it did.
    bool check_file_url(std::string& file);
    const std::string& get_pending_url() const { return m_pendingUrl; }
    void set_pending_url(const std::string& url) { m_pendingUrl = url; }

    // Sandbox permissions of another platform; nothing to do here.
    static void access_security_bookmark(const std::string&) {}
    static void store_security_bookmark(const std::string&, const std::string&) {}
    static std::string recentTag(const std::string& file);

    virtual void dump(std::ostream& out, int indent) const;

protected:
    std::string m_pendingUrl;

private:
    int m_argc;
    char** m_argv;
    std::string m_application;
    std::string m_title;
    std::string m_extension;
    std::string m_release;
    std::string m_tag;
    std::string m_date;
    std::string m_description;
    std::string m_company;
    std::string m_domain;
    std::string m_copyright;
    std::string m_authors;
    std::string m_logo;
    std::string m_email;
    std::string m_web;
    std::string m_website;
    std::string m_executable;
    std::string m_attribution;
    std::vector<std::string> m_recentFile;
    std::vector<std::string> m_recentWindows;
    int m_lastNWindows;
    ZBPtrArray<ZBAppStatusEntry> m_status;
    ZBPtrArray<ZBAppStatusEntry> m_background;
    ZBMoment m_start;
};

ZBApplication& zbapplication();
bool has_zbapplication();

} // namespace Tervalon
