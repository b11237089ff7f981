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

// The first separator at or after from that no backslash escapes.
size_t find_separator(const std::string& text, size_t from)
{
    const char separator = ZBParamBase::C_TagValueSeparator[0];
    for (size_t i = from; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == separator)
            return i;
    }
    return std::string::npos;
}

// Splits "NAME=VALUE" or "NAME=TAG=VALUE" as the parameter expects; the value
// (and tag) come back with their escapes undone.
bool split_line(const std::string& line, const ZBParamSet& set, Line& out, std::string& value)
{
    size_t sep = find_separator(line, 0);
    if (sep == std::string::npos)
        return false;
    out.name = ZBParamFile::unescape(line.substr(0, sep));
    std::string rest = line.substr(sep + 1);
    const ZBParamBase* param = set.get_param_by_name(out.name);
    if (param && param->has_multiple_values()) {
        size_t tagEnd = find_separator(rest, 0);
        if (tagEnd == std::string::npos)
            return false;
        out.tag = ZBParamFile::unescape(rest.substr(0, tagEnd));
        value = ZBParamFile::unescape(rest.substr(tagEnd + 1));
    } else {
        value = ZBParamFile::unescape(rest);
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

// A file holds one value per tag, the empty tag too: a repeated line replaces
// the value before it, as a rewrite keeps only one line for it.
void drop_earlier_untagged(ZBParamBase* param, const std::string& tag, const std::string& source)
{
    if (!param || !tag.empty() || !param->has_multiple_values())
        return;
    const ZBParamBase::Entry* earlier = param->find_tag(tag);
    if (earlier && earlier->source == source)
        param->remove_tag(tag);
}

// Whether the parameter holds any value under the key, from whatever source.
bool has_value_for(const ZBParamBase& param, const std::string& tag)
{
    return param.has_multiple_values() ? param.find_tag(tag) != nullptr : param.is_set();
}

} // namespace

std::string ZBParamFile::escape(const std::string& text, bool separatorToo)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        default:
            if (separatorToo && c == ZBParamBase::C_TagValueSeparator[0])
                out += '\\';
            out += c;
        }
    }
    return out;
}

std::string ZBParamFile::unescape(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 >= text.size()) {
            out += text[i];
            continue;
        }
        const char next = text[i + 1];
        if (next == 'n')
            out += '\n';
        else if (next == 'r')
            out += '\r';
        else if (next == '\\' || next == ZBParamBase::C_TagValueSeparator[0])
            out += next;
        else {
            // Not one of ours: a backslash written by hand stays as it was.
            out += '\\';
            continue;
        }
        ++i;
    }
    return out;
}

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
    m_pending.clear();
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
        else if (!set.get_param_by_name(line.name))
            // Perhaps an option declared later in the run: kept until it is.
            m_pending.push_back(text);
        else {
            drop_earlier_untagged(set.get_param_by_name(line.name), line.tag, m_name);
            if (set.set_value(line.name, line.tag, value, m_name, &one) && iszbwarn(one))
                one = zbwarnuser(ZBErrC_ParamInvalid, ZBLOC, "Invalid line %s in %s:%d", text.c_str(), m_name.c_str(),
                                 int(i + 1));
        }
        if (iszbwarn(one) && !iszbwarn(result))
            result = one;
    }
    return result;
}

void ZBParamFile::apply_pending(ZBParamSet& set)
{
    std::vector<std::string> still;
    for (const std::string& text : m_pending) {
        Line line;
        std::string value;
        if (!split_line(text, set, line, value))
            continue; // now known, and the line does not fit it
        ZBParamBase* param = set.get_param_by_name(line.name);
        if (!param) {
            still.push_back(text);
            continue;
        }
        // The command line and the environment outrank any file.
        const ZBParamBase::Entry* given = param->has_multiple_values() ? param->find_tag(line.tag) : param->get_entry(0);
        if (given && (given->source == ZBParamBase::C_CommandLine || given->source == ZBParamBase::C_Environment))
            continue;
        drop_earlier_untagged(param, line.tag, m_name);
        param->set_tag_value(line.tag, value, m_name);
    }
    m_pending.swap(still);
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
            text += escape(key.second, true) + ZBParamBase::C_TagValueSeparator;
        return text + escape(value, false);
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
        const ZBParamBase& param = *set.get_param_by_name(line.name);
        auto key = std::make_pair(param.get_name(), line.tag);
        auto it = wanted.find(key);
        if (it == wanted.end()) {
            // The user's line stands while another source (the command line, say)
            // overrides it for this run; only a value removed altogether goes.
            if (has_value_for(param, line.tag))
                lines.push_back(text);
            continue;
        }
        if (written.count(key))
            continue; // a repeat of a line already written
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
        // A kept line that still ends in a carriage return (the file had two
        // before its line feed) gets the one the reader takes off back, so
        // its value reads again as it was.
        for (const std::string& line : lines)
            out << line << (!line.empty() && line.back() == '\r' ? "\r\n" : "\n");
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
