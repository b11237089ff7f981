#include "AppTervalonDiary/cli/cmdrestore.h"
#include "AppTervalonDiary/cli/clisession.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibDatabase/db/zbdatabase.h"

#include <QFile>
#include <QFileInfo>

#include <ostream>

namespace Tervalon {

std::string CmdRestore::snapshot_path(const std::string& file, const std::string& snapshot)
{
    const std::string scratch = ZBDatabase::get_scratch_name(file);
    if (snapshot == "last-good" || snapshot == "lkg")
        return scratch + ZBDatabase::C_LastKnownGood;
    if (snapshot == "before-restore" || snapshot == "bkc")
        return scratch + ZBDatabase::C_SnapshotKeep;
    std::string number = snapshot.compare(0, 2, "bk") == 0 ? snapshot.substr(2) : snapshot;
    if (!number.empty() && number.size() < 3 && number.find_first_not_of("0123456789") == std::string::npos)
        return scratch + ".bk" + std::to_string(std::stoi(number));
    return QFileInfo::exists(QString::fromStdString(snapshot)) ? snapshot : std::string();
}

int CmdRestore::run(CliContext& context)
{
    std::vector<std::string> args = context.args;
    const bool discard = CliSession::take_discard_option(args);
    if (args.size() != 2)
        return usage_error(context, *this, args.size() < 2 ? "give FILE and SNAPSHOT" : "wrong number of arguments");
    const std::string& file = args[0];
    std::string source = snapshot_path(file, args[1]);
    std::string temporary;
    if (source.empty() || !QFileInfo::exists(QString::fromStdString(source))) {
        context.err << "tervalon: there is no snapshot " << args[1] << " of " << file
                    << " (tervalon snapshots " << file << " lists them)." << std::endl;
        return 1;
    }
    // The before-restore copy is overwritten by the restore itself: it is restored from a copy.
    if (source == ZBDatabase::get_scratch_name(file) + ZBDatabase::C_SnapshotKeep) {
        const std::string copy = source + ".restoring";
        if (iszbwarn(zb_copy_file(source, copy, true)))
            return report_failure(context, zberrorvalue());
        source = temporary = copy;
    }
    CliSession session;
    std::ostream& err = context.err;
    int status = session.open(context, file, true, discard);
    if (status != 0) {
        if (!QFileInfo::exists(QString::fromStdString(file)))
            return status;
        // The file does not read: it is set aside, and the snapshot takes its place.
        if (iszbwarn(zb_rename_file(file, file + ZBDatabase::C_BakExtension, true))
            || iszbwarn(zb_copy_file(source, file, true)))
            return report_failure(context, zberrorvalue());
        err << "tervalon: " << file << " did not read; it was set aside as " << file << ZBDatabase::C_BakExtension
            << "." << std::endl;
        status = session.open(context, file, true, true);
        if (status != 0)
            return status;
        context.out << "Restored " << args[1] << " of " << file << "." << std::endl;
        return session.save(context);
    }
    std::string keep;
    int result = session.db().restore_snapshot(source, keep);
    if (!temporary.empty())
        QFile::remove(QString::fromStdString(temporary));
    if (iszbwarn(result))
        return report_failure(context, result);
    context.out << "Restored " << args[1] << " of " << file << "; the state before is kept as before-restore (" << keep
                << ")." << std::endl;
    session.close();
    return 0;
}

} // namespace Tervalon
