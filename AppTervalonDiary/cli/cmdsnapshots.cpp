#include "AppTervalonDiary/cli/cmdsnapshots.h"
#include "LibDatabase/db/zbdatabase.h"

#include <QDateTime>
#include <QFileInfo>

#include <ostream>

namespace Tervalon {

namespace {

void print_copy(std::ostream& out, const std::string& label, const std::string& path)
{
    const QFileInfo info(QString::fromStdString(path));
    if (!info.exists())
        return;
    out << label << "\t" << info.lastModified().toUTC().toString("yyyy-MM-dd HH:mm:ss").toStdString() << " UTC\t"
        << info.size() << " bytes\t" << path << "\n";
}

} // namespace

int CmdSnapshots::run(CliContext& context)
{
    if (context.args.size() != 1)
        return usage_error(context, *this, context.args.empty() ? "no file given" : "wrong number of arguments");
    const std::string& file = context.args.front();
    const std::string scratch = ZBDatabase::get_scratch_name(file);
    const std::vector<std::string> copies = ZBDatabase::list_snapshots(file);
    for (const std::string& copy : copies)
        print_copy(context.out, copy.substr(copy.rfind('.') + 1), copy);
    print_copy(context.out, "last-good", scratch + ZBDatabase::C_LastKnownGood);
    print_copy(context.out, "before-restore", scratch + ZBDatabase::C_SnapshotKeep);
    if (copies.empty() && !QFileInfo::exists(QString::fromStdString(scratch + ZBDatabase::C_LastKnownGood))
        && !QFileInfo::exists(QString::fromStdString(scratch + ZBDatabase::C_SnapshotKeep)))
        context.out << "No snapshots of " << file << ".\n";
    context.out.flush();
    return 0;
}

} // namespace Tervalon
