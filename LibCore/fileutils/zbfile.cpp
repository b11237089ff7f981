#include "LibCore/fileutils/zbfile.h"
#include "LibCore/error/zberror.h"
#include "LibCore/fileutils/zbfileutils.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <ostream>

namespace Tervalon {

namespace {

ZBMoment from_qdatetime(const QDateTime& time)
{
    return time.isValid() ? ZBMoment(time.toMSecsSinceEpoch() * 1000) : ZBMoment();
}

} // namespace

ZBFile::ZBFile() : m_size(-1), m_exists(false) {}

ZBFile::ZBFile(const std::string& pathName, bool refreshNow) : m_pathName(pathName), m_size(-1), m_exists(false)
{
    if (refreshNow)
        refresh();
}

ZBFile::~ZBFile() = default;

bool ZBFile::refresh()
{
    QFileInfo info(QString::fromStdString(m_pathName));
    m_exists = info.exists();
    if (!m_exists) {
        m_size = -1;
        m_created = ZBMoment();
        m_modified = ZBMoment();
        return false;
    }
    m_size = info.isDir() ? 0 : info.size();
    // Not every file system keeps a birth time; the last status change stands in.
    QDateTime born = info.birthTime();
    m_created = from_qdatetime(born.isValid() ? born : info.metadataChangeTime());
    m_modified = from_qdatetime(info.lastModified());
    return true;
}

void ZBFile::set_pathname(const std::string& pathName, bool refreshNow)
{
    m_pathName = pathName;
    if (refreshNow)
        refresh();
}

std::string ZBFile::get_filename() const
{
    return zb_filename(m_pathName);
}

int ZBFile::set_times(const ZBMoment& created, const ZBMoment& modified)
{
    m_created = created;
    m_modified = modified;
    if (!modified.is_ok() || !zb_file_exists(m_pathName))
        return ZBErrC_ok;
    QFile file(QString::fromStdString(m_pathName));
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return zbwarning(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", m_pathName.c_str());
    QDateTime time = QDateTime::fromMSecsSinceEpoch(modified.to_micros() / 1000);
    if (!file.setFileTime(time, QFileDevice::FileModificationTime))
        return zbwarning(ZBErrC_FileWrite, ZBLOC, "Could not set the time of %s", m_pathName.c_str());
    return ZBErrC_ok;
}

bool ZBFile::operator==(const ZBFile& other) const
{
    return m_pathName == other.m_pathName && m_size == other.m_size && m_modified == other.m_modified;
}

void ZBFile::dump(std::ostream& out, int indent) const
{
    std::string pad(size_t(indent) * 4, ' ');
    out << pad << "ZBFile\n" << pad << "    m_pathName : " << m_pathName << "\n" << pad << "    m_size : " << m_size << "\n"
        << pad << "    m_modified : " << m_modified.to_string("%D %T") << "\n";
}

} // namespace Tervalon
