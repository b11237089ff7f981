#include "LibCore/error/zberrhandlerlogfile.h"
#include "LibCore/error/zberror.h"
#include "LibCore/textstr/zbtextstr.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <iostream>
#include <sstream>
#include <vector>

namespace Tervalon {

const char* const ZBErrHandlerLogfile::C_Separator = "==================";

ZBErrHandlerLogfile::ZBErrHandlerLogfile(const std::string& name, bool immediate, bool intermediate, bool delayed,
                                         bool deletionManaged)
    : ZBErrHandler(immediate, intermediate, delayed, deletionManaged), m_name(name), m_failed(false)
{
}

int ZBErrHandlerLogfile::handle(ZBErrDetails& details)
{
    // A user warning has been shown to the user; it is not a fault to keep.
    if (details.get_severity() != ZBErrSev_UserWarning)
        write_record(details);
    return details.get_value();
}

void ZBErrHandlerLogfile::log(ZBErrDetails& details)
{
    write_record(details);
}

void ZBErrHandlerLogfile::write_record(const ZBErrDetails& details)
{
    const QString path = QString::fromStdString(m_name);
    QFileInfo info(path);
    QDir().mkpath(info.absolutePath());

    // An unreadable old log is no failure: the record is simply appended.
    std::vector<QByteArray> lines;
    {
        QFile in(path);
        if (in.open(QIODevice::ReadOnly)) {
            const QList<QByteArray> all = in.readAll().split('\n');
            for (const QByteArray& line : all)
                lines.push_back(line);
            if (!lines.empty() && lines.back().isEmpty())
                lines.pop_back();
        }
    }
    bool ok = true;
    if (int(lines.size()) > C_MaxLines) {
        QSaveFile out(path);
        if (out.open(QIODevice::WriteOnly)) {
            for (size_t i = lines.size() - size_t(C_MaxLines); i < lines.size(); ++i) {
                out.write(lines[i]);
                out.write("\n");
            }
            ok = out.commit();
        } else {
            ok = false;
        }
    }
    std::ostringstream record;
    record << details;
    std::string text = std::string(C_Separator) + "\n" + zb_clean_unicode(record.str()) + "\n";
    QFile out(path);
    if (ok && out.open(QIODevice::WriteOnly | QIODevice::Append))
        ok = out.write(text.data(), qint64(text.size())) == qint64(text.size());
    else
        ok = false;
    if (!ok && !m_failed)
        std::cerr << "Could not write the error log " << m_name << std::endl;
    m_failed = !ok;
}

void ZBErrHandlerLogfile::dump(std::ostream& out, int indent) const
{
    ZBErrHandler::dump(out, indent);
    out << std::string(size_t(indent) * 4, ' ') << "    name=" << m_name << "\n";
}

} // namespace Tervalon
