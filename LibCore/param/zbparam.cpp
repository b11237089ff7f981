#include "LibCore/param/zbparam.h"
#include "LibCore/error/zberror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <fstream>
#include <memory>
#include <ostream>
#include <sstream>

namespace Tervalon {

const char* const ZBParam::C_System = "System";
const char* const ZBParam::C_TagValueSeparator = "=";

namespace {
std::unique_ptr<ZBParam>& param_singleton()
{
    static std::unique_ptr<ZBParam> param;
    return param;
}
} // namespace

ZBParam::ZBParam() : m_argc(0), m_argv(nullptr), m_programName("TervalonDiary"), m_changed(false) {}

ZBParam::ZBParam(int argc, char** argv, const std::string& program, const std::string& version,
                 const std::string& description, const std::string& vendor, const std::string& authors,
                 const std::string& buildDate, const std::string& releaseTag, const std::string& buildTag)
    : m_argc(argc), m_argv(argv), m_programName(program), m_programVersion(version), m_programDesc(description),
      m_programVendor(vendor), m_programAuthors(authors), m_buildDate(buildDate), m_releaseTag(releaseTag),
      m_buildTag(buildTag), m_changed(false)
{
}

ZBParam::~ZBParam() = default;

std::string ZBParam::default_user_config() const
{
    QString dir = QStandardPaths::writableLocation(QStandardPaths::ConfigLocation);
    return (dir + "/" + QString::fromStdString(m_programName) + ".cfg").toStdString();
}

int ZBParam::add_config_file(const std::string& file)
{
    m_userConfig = file;
    return read_file(file);
}

int ZBParam::read_file(const std::string& file)
{
    std::ifstream in(file);
    if (!in)
        return ZBErrC_ok; // A missing file is not an error.
    std::string line;
    int number = 0;
    int result = ZBErrC_ok;
    const std::string prefix = std::string(C_System) + C_TagValueSeparator;
    while (std::getline(in, line)) {
        ++number;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || !std::isalpha(static_cast<unsigned char>(line[0])))
            continue;
        size_t sep = line.find('=');
        if (sep == std::string::npos) {
            result = zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Invalid line %s in %s:%d", line.c_str(), file.c_str(), number);
            continue;
        }
        if (line.compare(0, prefix.size(), prefix) == 0) {
            std::string rest = line.substr(prefix.size());
            size_t tagEnd = rest.find('=');
            if (tagEnd == std::string::npos) {
                result = zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Invalid line %s in %s:%d", line.c_str(), file.c_str(), number);
                continue;
            }
            m_system[rest.substr(0, tagEnd)] = rest.substr(tagEnd + 1);
        }
    }
    return result;
}

int ZBParam::write_user_config()
{
    if (m_userConfig.empty())
        return zbwarning(ZBErrC_FileName, ZBLOC, "No user config file set.");
    // Keep every line of the old file that is not one of our values, in its place.
    std::vector<std::string> lines;
    std::map<std::string, bool> written;
    const std::string prefix = std::string(C_System) + C_TagValueSeparator;
    {
        std::ifstream in(m_userConfig);
        std::string line;
        while (std::getline(in, line)) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            if (line.compare(0, prefix.size(), prefix) == 0) {
                std::string rest = line.substr(prefix.size());
                size_t tagEnd = rest.find('=');
                if (tagEnd != std::string::npos) {
                    std::string tag = rest.substr(0, tagEnd);
                    auto it = m_system.find(tag);
                    if (it == m_system.end() || written[tag])
                        continue;
                    line = prefix + tag + "=" + it->second;
                    written[tag] = true;
                }
            }
            lines.push_back(line);
        }
    }
    for (const auto& value : m_system)
        if (!written[value.first])
            lines.push_back(prefix + value.first + "=" + value.second);
    QFileInfo info(QString::fromStdString(m_userConfig));
    QDir().mkpath(info.absolutePath());
    QSaveFile out(info.absoluteFilePath());
    if (!out.open(QIODevice::WriteOnly))
        return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", m_userConfig.c_str());
    for (const std::string& line : lines) {
        out.write(line.data(), qint64(line.size()));
        out.write("\n", 1);
    }
    if (!out.commit())
        return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", m_userConfig.c_str());
    m_changed = false;
    return ZBErrC_ok;
}

std::string ZBParam::get_system_value(const std::string& tag, const std::string& defaultValue) const
{
    auto it = m_system.find(tag);
    return it == m_system.end() ? defaultValue : it->second;
}

int ZBParam::get_system_value(const std::string& tag, int defaultValue) const
{
    auto it = m_system.find(tag);
    if (it == m_system.end())
        return defaultValue;
    char* end = nullptr;
    long value = std::strtol(it->second.c_str(), &end, 10);
    return end == it->second.c_str() ? defaultValue : int(value);
}

int ZBParam::set_system_value(const std::string& tag, const std::string& value)
{
    auto it = m_system.find(tag);
    if (it != m_system.end() && it->second == value)
        return ZBErrC_ok;
    m_system[tag] = value;
    m_changed = true;
    if (m_userConfig.empty())
        return ZBErrC_ok;
    return write_user_config();
}

int ZBParam::set_system_value(const std::string& tag, int value)
{
    return set_system_value(tag, std::to_string(value));
}

bool ZBParam::is_system_value_set(const std::string& tag) const
{
    return m_system.count(tag) != 0;
}

void ZBParam::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBParam\n" << pad << "    programName : " << m_programName << "\n"
        << pad << "    userConfig  : " << m_userConfig << "\n";
    for (const auto& value : m_system)
        out << pad << "    System " << value.first << " = " << value.second << "\n";
}

ZBParam& zbparam()
{
    std::unique_ptr<ZBParam>& param = param_singleton();
    if (!param)
        param.reset(new ZBParam());
    return *param;
}

void set_zbparam(ZBParam* param)
{
    param_singleton().reset(param);
}

bool has_zbparam()
{
    return param_singleton() != nullptr;
}

} // namespace Tervalon
