#include "LibCore/fileutils/zbdirectory.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/textstr/zbregexp.h"

#include <QDir>
#include <QFileInfo>

#include <ostream>

namespace Tervalon {

namespace {

int by_path(const ZBFile& a, const ZBFile& b)
{
    return a.get_pathname() > b.get_pathname() ? 1 : 0;
}

// Links can make a directory its own descendant; this bounds the walk.
const int C_MaxDepth = 64;

} // namespace

ZBDirectory::ZBDirectory() : m_filter("*") {}

ZBDirectory::ZBDirectory(const std::string& pathName, const std::string& filter) : ZBFile(pathName, true), m_filter(filter) {}

ZBDirectory::~ZBDirectory() = default;

bool ZBDirectory::is_directory() const
{
    return zb_dir_exists(m_pathName);
}

const ZBFile* ZBDirectory::get_file_by_index(int index) const
{
    return m_file.at(index);
}

const ZBFile* ZBDirectory::get_file_by_pathname(const std::string& pathName) const
{
    for (int i = 0; i < m_file.size(); ++i)
        if (m_file[i]->get_pathname() == pathName)
            return m_file[i];
    return nullptr;
}

int ZBDirectory::load(const std::string& pathName, const std::string& filter, bool recursive)
{
    m_filter = filter.empty() ? "*" : filter;
    set_pathname(pathName, true);
    return load(recursive);
}

int ZBDirectory::load(bool recursive)
{
    m_file.clear();
    refresh();
    if (!is_directory())
        return zbwarning(ZBErrC_FileNotExist, ZBLOC, "The directory %s does not exist.", m_pathName.c_str());
    int result = load_dir(m_pathName, recursive, 0);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    m_file.sort(by_path, 0, -1);
    return ZBErrC_ok;
}

int ZBDirectory::load_dir(const std::string& dir, bool recursive, int depth)
{
    QDir qdir(QString::fromStdString(dir));
    const QFileInfoList entries = qdir.entryInfoList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden);
    for (const QFileInfo& info : entries) {
        const std::string path = info.filePath().toStdString();
        if (info.isDir()) {
            if (recursive && depth < C_MaxDepth && !info.isSymLink())
                load_dir(path, true, depth + 1);
            continue;
        }
        if (ZBRegExp::match_filespec(m_filter, info.fileName().toStdString()))
            m_file.push_back(new ZBFile(path, true));
    }
    return ZBErrC_ok;
}

void ZBDirectory::dump(std::ostream& out, int indent) const
{
    ZBFile::dump(out, indent);
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "    m_filter : " << m_filter << "\n";
    for (int i = 0; i < m_file.size(); ++i)
        m_file[i]->dump(out, indent + 1);
}

} // namespace Tervalon
