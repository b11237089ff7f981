#include "LibCore/param/zbparamfile.h"
#include "LibCore/error/zberror.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cctype>
#include <fstream>
#include <map>
#include <ostream>
#include <set>

namespace Tervalon {

namespace {

struct Line {
    std::string text;
    std::string name; // empty for comments and lines we do not understand
    std::string tag;
};

bool starts_with_letter(const std::string& line)
{
    return !line.empty() && std::isalpha(static_cast<unsigned char>(line[0]));
}

// Splits "NAME=VALUE" or "NAME=TAG=VALUE" as the parameter expects.
bool split_line(const std::string& line, const ZBParamSet& set, Line& out, std::string& value)
{
    size_t sep = line.find(ZBParamBase::C_TagValueSeparator);
    if (sep == std::string::npos)
        return false;
    out.name = line.substr(0, sep);
    std::string rest = line.substr(sep + 1);
    const ZBParamBase* param = set.get_param_by_name(out.name);
    if (param && param->has_multiple_values()) {
        size_t tagEnd = rest.find(ZBParamBase::C_TagValueSeparator);
        if (tagEnd == std::string::npos)
            return false;
        out.tag = rest.substr(0, tagEnd);
        value = rest.substr(tagEnd + 1);
    } else {
        value = rest;
    }
    return true;
}

std::vector<std::string> read_lines(const std::string& name, bool& opened)
{
    std::vector<std::string> lines;
    std::ifstream in(name);
    opened = bool(in);
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

} // namespace

ZBParamFile::ZBParamFile(const std::string& name, bool userConfig)
    : m_name(name), m_userConfig(userConfig), m_read(false), m_changed(false)
{
}

bool ZBParamFile::belongs_here(const std::string& source) const
{
    return source == m_name || (m_userConfig && source == ZBParamBase::C_System);
}

int ZBParamFile::read_file(ZBParamSet& set)
{
    for (int i = 0; i < set.get_nparameters(); ++i)
        set.get_param_by_index(i)->clear_values_from(m_name);
    m_read = true;
    m_changed = false;
    QFileInfo info(QString::fromStdString(m_name));
    if (!info.exists())
        return ZBErrC_ok;
    bool opened = false;
    std::vector<std::string> lines = read_lines(m_name, opened);
    if (!opened)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not read %s - the default settings are used.", m_name.c_str());
    int result = ZBErrC_ok;
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string& text = lines[i];
        if (!starts_with_letter(text))
            continue;
        Line line;
        std::string value;
        int one = ZBErrC_ok;
        if (!split_line(text, set, line, value))
            one = zbwarnuser(ZBErrC_ParamInvalid, ZBLOC, "Invalid line %s in %s:%d", text.c_str(), m_name.c_str(), int(i + 1));
        else if (set.set_value(line.name, line.tag, value, m_name, &one) && iszbwarn(one))
            one = zbwarnuser(ZBErrC_ParamInvalid, ZBLOC, "Invalid line %s in %s:%d", text.c_str(), m_name.c_str(), int(i + 1));
        // A name that no parameter has is kept in the file and otherwise ignored.
        if (iszbwarn(one) && !iszbwarn(result))
            result = one;
    }
    return result;
}

int ZBParamFile::rewrite_file(const ZBParamSet& set)
{
    // What this file should hold now, by name and tag.
    std::map<std::pair<std::string, std::string>, std::string> wanted;
    std::vector<std::pair<std::string, std::string>> order;
    std::map<std::string, bool> multi;
    for (int i = 0; i < set.get_nparameters(); ++i) {
        const ZBParamBase* param = set.get_param_by_index(i);
        multi[param->get_name()] = param->has_multiple_values();
        for (int n = 0; n < param->get_nvalues(); ++n) {
            const ZBParamBase::Entry* entry = param->get_entry(n);
            if (!belongs_here(entry->source))
                continue;
            auto key = std::make_pair(param->get_name(), entry->tag);
            if (!wanted.count(key))
                order.push_back(key);
            wanted[key] = entry->value;
        }
    }
    auto line_for = [&multi](const std::pair<std::string, std::string>& key, const std::string& value) {
        std::string text = key.first + ZBParamBase::C_TagValueSeparator;
        if (multi[key.first])
            text += key.second + ZBParamBase::C_TagValueSeparator;
        return text + value;
    };

    bool opened = false;
    std::vector<std::string> old = read_lines(m_name, opened);
    std::vector<std::string> lines;
    std::set<std::pair<std::string, std::string>> written;
    for (const std::string& text : old) {
        Line line;
        std::string value;
        if (!starts_with_letter(text) || !split_line(text, set, line, value) || !set.get_param_by_name(line.name)) {
            lines.push_back(text);
            continue;
        }
        auto key = std::make_pair(set.get_param_by_name(line.name)->get_name(), line.tag);
        auto it = wanted.find(key);
        if (it == wanted.end() || written.count(key))
            continue; // removed since, or a repeat of a line already written
        lines.push_back(value == it->second && key.first == line.name ? text : line_for(key, it->second));
        written.insert(key);
    }
    for (const auto& key : order)
        if (!written.count(key))
            lines.push_back(line_for(key, wanted[key]));

    QFileInfo info(QString::fromStdString(m_name));
    QDir().mkpath(info.absolutePath());
    const std::string temp = m_name + ".tmp";
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out)
            return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", temp.c_str());
        for (const std::string& line : lines)
            out << line << "\n";
        out.flush();
        if (!out)
            return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", temp.c_str());
    }
    if (std::rename(temp.c_str(), m_name.c_str()) != 0) {
        QFile::remove(QString::fromStdString(temp));
        return zbwarning(ZBErrC_FileRename, ZBLOC, "Could not create the file %s", m_name.c_str());
    }
    m_changed = false;
    return ZBErrC_ok;
}

int ZBParamFile::validate() const
{
    if (m_name.empty())
        return zberror(ZBErrC_FileName, ZBLOC, "No user config file set.");
    return ZBErrC_ok;
}

void ZBParamFile::dump(std::ostream& out, int indent) const
{
    std::string pad(indent * 4, ' ');
    out << pad << "ZBParamFile\n"
        << pad << "    m_name       : " << m_name << "\n"
        << pad << "    m_userConfig : " << m_userConfig << "\n"
        << pad << "    m_changed    : " << m_changed << "\n";
}

} // namespace Tervalon
