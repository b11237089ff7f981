#include "LibCore/application/zbapplication.h"
#include "LibCore/error/zberror.h"
#include "LibCore/error/zberrhandlerlogfile.h"
#include "LibCore/error/zberrhandlerstream.h"
#include "LibCore/param/zbparam.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSysInfo>
#include <QStandardPaths>

#include <iostream>
#include <ostream>
#include <sstream>

namespace Tervalon {

namespace {

ZBApplication* g_application = nullptr;

std::string first_location(QStandardPaths::StandardLocation location)
{
    QStringList paths = QStandardPaths::standardLocations(location);
    QString path = paths.isEmpty() ? QStandardPaths::writableLocation(location) : paths.first();
    return path.toStdString();
}

std::vector<std::string> split_list(const std::string& text)
{
    std::vector<std::string> parts;
    std::string clean;
    for (char c : text)
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n')
            clean += c;
    std::stringstream in(clean);
    std::string part;
    while (std::getline(in, part, ';'))
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

std::string join_list(const std::vector<std::string>& parts, size_t most)
{
    std::string text;
    for (size_t i = 0; i < parts.size() && i < most; ++i) {
        if (i)
            text += ";";
        text += parts[i];
    }
    return text;
}

} // namespace

ZBApplication::ZBApplication(int argc, char** argv, const std::string& application, const std::string& title,
                             const std::string& extension, const std::string& release, const std::string& tag,
                             const std::string& date, const std::string& description, const std::string& company,
                             const std::string& domain, const std::string& copyright, const std::string& authors,
                             const std::string& logo, const std::string& email, const std::string& web,
                             const std::string& website)
    : m_argc(argc), m_argv(argv), m_application(application), m_title(title), m_extension(extension),
      m_release(release), m_tag(tag), m_date(date), m_description(description), m_company(company), m_domain(domain),
      m_copyright(copyright), m_authors(authors), m_logo(logo), m_email(email), m_web(web), m_website(website),
      m_lastNWindows(0), m_start(ZBMoment::now())
{
    if (argc > 0 && argv && argv[0])
        m_executable = QFileInfo(QString::fromLocal8Bit(argv[0])).absoluteFilePath().toStdString();
    // The standard locations (and so the parameter file) follow these names.
    QCoreApplication::setOrganizationName(QString::fromStdString(company));
    QCoreApplication::setOrganizationDomain(QString::fromStdString(domain));
    QCoreApplication::setApplicationName(QString::fromStdString(application));
    QCoreApplication::setApplicationVersion(QString::fromStdString(release));
    g_application = this;
}

ZBApplication::~ZBApplication()
{
    if (g_application == this)
        g_application = nullptr;
}

int ZBApplication::start()
{
    int result = setup_error();
    if (!iszbwarn(result))
        result = setup_parameters();
    if (result == ZBErrC_okShutdown)
        return ZBErrC_ok;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return run();
}

int ZBApplication::run()
{
    return ZBErrC_ok;
}

int ZBApplication::parameters(ZBParam&, ZBParamCmdLine*, ZBParamFile*)
{
    return ZBErrC_ok;
}

int ZBApplication::setup_error()
{
    set_zberror(new ZBError(m_application, m_release, m_company));
    QDir().mkpath(QString::fromStdString(get_cache_dir()));
    // The error log sees each record once, as it is reported: a record that a
    // caller recovers from and clears is still worth a line in the log.
    get_zberror().add_handler(new ZBErrHandlerLogfile(get_error_log(), true, false, false, true));
    // The terminal gets one line per failure, when it reaches the top of an
    // action: not the record as reported, and not again on every pass.
    get_zberror().set_stream(nullptr, ZBErrSev_All);
    get_zberror().add_handler(new ZBErrHandlerStream(&std::cerr, false, false, true, true));
    QDir().mkpath(QString::fromStdString(get_config_dir()));
    return ZBErrC_ok;
}

int ZBApplication::setup_parameters()
{
    // Options already read (before a window could be made) are not read again.
    if (has_zbparam() && zbparam().get_program_name() == m_application)
        return ZBErrC_ok;
    return read_parameters(std::cout);
}

int ZBApplication::read_parameters(std::ostream& out)
{
    QDir().mkpath(QString::fromStdString(get_config_dir()));
    ZBParam* param = new ZBParam(m_argc, m_argv, m_application, m_release, m_description, m_company, m_authors, m_date,
                                 get_release_tag(), m_tag);
    set_zbparam(param);
    int result = param->add_config_file(param->default_user_config());
    if (iszbwarn(result))
        handle_last_warning(result); // The defaults stand in for a damaged file.
    result = parameters(*param, &param->get_commandline(), nullptr);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    result = param->parse(out);
    if (param->get_exit_status() == 0)
        return ZBErrC_okShutdown;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- directories

std::string ZBApplication::get_cache_dir() const
{
    return first_location(QStandardPaths::CacheLocation);
}

std::string ZBApplication::get_config_dir() const
{
    return first_location(QStandardPaths::ConfigLocation);
}

std::string ZBApplication::get_data_dir() const
{
    return first_location(QStandardPaths::AppDataLocation);
}

std::string ZBApplication::get_documents_dir() const
{
    return first_location(QStandardPaths::DocumentsLocation);
}

std::string ZBApplication::get_scratch_dir() const
{
    return get_data_dir() + "/scratch";
}

std::string ZBApplication::get_executable_dir() const
{
    return QFileInfo(QString::fromStdString(m_executable)).absolutePath().toStdString();
}

std::string ZBApplication::get_resources_dir() const
{
    return QDir::cleanPath(QString::fromStdString(get_executable_dir() + "/../Resources")).toStdString();
}

std::string ZBApplication::get_doc_dir() const
{
    return get_resources_dir() + "Doc";
}

std::string ZBApplication::get_error_log() const
{
    return get_cache_dir() + "/" + m_application + "_error.log";
}

std::string ZBApplication::get_performance_log() const
{
    return get_cache_dir() + "/" + m_application + "_performance.log";
}

// ---------------------------------------------------------------- recent files

std::string ZBApplication::recentTag(const std::string& file)
{
    return zbparam().get_system_value("RecentBookmark", std::string("RecentBookmark")) + file;
}

void ZBApplication::load_recent()
{
    m_recentWindows = split_list(zbparam().get_system_value("LastSession", std::string()));
    m_recentFile = split_list(zbparam().get_system_value("LastFile", std::string()));
    m_lastNWindows = zbparam().get_system_value("NumLastFiles", 0);
    for (const std::string& file : m_recentFile)
        access_security_bookmark(file);
}

void ZBApplication::add_recent(const std::string& file, int index)
{
    if (file.empty())
        return;
    for (size_t i = 0; i < m_recentFile.size(); ++i)
        if (m_recentFile[i] == file) {
            m_recentFile.erase(m_recentFile.begin() + long(i));
            break;
        }
    if (index < 0 || index > int(m_recentFile.size()))
        index = 0;
    m_recentFile.insert(m_recentFile.begin() + index, file);
    if (m_recentFile.size() > size_t(C_MaxRecent))
        m_recentFile.resize(size_t(C_MaxRecent));
    save_recent();
    store_security_bookmark(recentTag(file), file);
}

void ZBApplication::save_recent()
{
    zbparam().set_system_value("LastFile", join_list(m_recentFile, size_t(C_MaxRecent)));
}

void ZBApplication::record_open_windows(int nWindows, bool force)
{
    if (nWindows <= 0 && !force)
        return;
    zbparam().set_system_value("NumLastFiles", nWindows);
    zbparam().set_system_value("LastSession", join_list(m_recentFile, size_t(nWindows > 0 ? nWindows : 0)));
}

void ZBApplication::clear_session()
{
    zbparam().set_system_value("LastSession", std::string());
}

std::string ZBApplication::get_first_file() const
{
    return m_recentFile.empty() ? std::string() : m_recentFile.front();
}

// ---------------------------------------------------------------- status stack

void ZBApplication::push_status(const std::string& status, double percentage, bool background, int delay)
{
    const ZBMoment showFrom = ZBMoment::now().plus_micros(delay);
    (background ? m_background : m_status).push_back(new ZBAppStatusEntry(status, percentage, showFrom));
}

void ZBApplication::pop_status(const std::string& status, bool background)
{
    ZBPtrArray<ZBAppStatusEntry>& list = background ? m_background : m_status;
    for (int i = 0; i < list.size(); ++i)
        if (list[i]->m_status == status) {
            list.remove(i);
            return;
        }
}

std::string ZBApplication::foreground_status() const
{
    const ZBMoment now = ZBMoment::now();
    const ZBAppStatusEntry* due = nullptr;
    for (const ZBAppStatusEntry* entry : m_status)
        if (entry->m_showFrom <= now && (!due || entry->m_showFrom >= due->m_showFrom))
            due = entry;
    return due ? due->m_status : std::string();
}

double ZBApplication::status_percentage(const std::string& status, bool background) const
{
    for (const ZBAppStatusEntry* entry : background ? m_background : m_status)
        if (entry->m_status == status)
            return entry->m_percentage;
    return 100.0;
}

// ---------------------------------------------------------------- identity

std::string ZBApplication::get_hostname()
{
    std::string name = zbparam().get_system_value("Hostname", std::string());
    if (!name.empty() && name != "localhost")
        return name;
    name = QSysInfo::machineHostName().toStdString();
    if (name.empty() || name == "localhost") {
        // A machine with no name still needs a stable one, to tell its copies apart.
        const long long seconds = ZBMoment::now().to_micros() / 1000000;
        name = "host" + std::to_string(seconds % 86400);
    }
    zbparam().set_system_value("Hostname", name);
    return name;
}

int ZBApplication::release_to_int(const std::string& release)
{
    if (release.empty())
        return 0;
    std::stringstream in(release);
    std::string major;
    std::string minor;
    std::getline(in, major, '.');
    std::getline(in, minor, '.');
    return int(std::strtol(major.c_str(), nullptr, 10)) * 1000 + int(std::strtol(minor.c_str(), nullptr, 10));
}

std::string ZBApplication::get_release_tag() const
{
    std::string tag = m_application;
    std::stringstream in(m_release);
    std::string part;
    while (std::getline(in, part, '.'))
        tag += "-" + part;
    return tag;
}

std::string ZBApplication::get_major_tag() const
{
    std::stringstream in(m_release);
    std::string major;
    std::getline(in, major, '.');
    return m_application + "-" + major;
}

bool ZBApplication::check_file_url(std::string& file)
{
    const std::string prefix = m_application + "://";
    if (file.size() < prefix.size())
        return false;
    if (QString::fromStdString(file.substr(0, prefix.size())).compare(QString::fromStdString(prefix), Qt::CaseInsensitive) != 0)
        return false;
    m_pendingUrl = file;
    file.clear();
    return true;
}

void ZBApplication::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBApplication\n"
        << pad << "    application : " << m_application << "\n"
        << pad << "    title       : " << m_title << "\n"
        << pad << "    release     : " << m_release << "\n"
        << pad << "    tag         : " << m_tag << "\n"
        << pad << "    executable  : " << m_executable << "\n"
        << pad << "    recentFile  : " << join_list(m_recentFile, m_recentFile.size()) << "\n"
        << pad << "    pendingUrl  : " << m_pendingUrl << "\n";
}

ZBApplication& zbapplication()
{
    if (!g_application) {
        // Reaching for the application before it exists is a programming error;
        // a fallback object keeps the process alive and says so.
        static ZBApplication fallback(0, nullptr, "TervalonDiary", "Tervalon Diary", ".zbd", "4.5.00",
                                      "TervalonDiary-4-5-00-15", "02-Dec-2023", "", "Tervalon", "", "", "", "", "", "", "");
        zberror(ZBErrC_NullSingleton, ZBLOC, "The application object has not been made.");
        return fallback;
    }
    return *g_application;
}

bool has_zbapplication()
{
    return g_application != nullptr;
}

} // namespace Tervalon
