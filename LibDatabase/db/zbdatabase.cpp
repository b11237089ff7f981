#include "LibDatabase/db/zbdatabase.h"
#include "LibComms/thread/zbmutexlocker.h"
#include "LibDatabase/db/zbsavestop.h"
#include "LibDatabase/db/zbdbparser.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibCore/application/zbapplication.h"
#include "LibCore/application/zbappstatussetter.h"
#include "LibCore/fileutils/zbfileutils.h"
#include "LibCore/fileutils/zbsyncfile.h"
#include "LibCore/param/zbparam.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbdateparser.h"
#include "LibObject/object/zbdump.h"
#include "LibObject/object/zbpurgeunhandledscope.h"

#include <QCryptographicHash>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

#include <sys/stat.h>

namespace Tervalon {

const char* const ZBDatabase::C_DlmtDBIdentifier = "ZBDatabase:7685";
const char* const ZBDatabase::C_DlmtVersion = "Version";
const char* const ZBDatabase::C_DlmtTransaction = "Transaction";
const char* const ZBDatabase::C_ObjectStart = "O:";
const char* const ZBDatabase::C_IdMgr = "IM";
const char* const ZBDatabase::C_DatabaseService = "Database";
const char* const ZBDatabase::C_DatabasePartDirParam = "PartDir";
const char* const ZBDatabase::C_DatabasePartDirLabel = "Temporary File Location";
const std::string ZBDatabase::C_DatabaseAllTag = "DB:";
const char* const ZBDatabase::C_SpecTag = "OS";
const char* const ZBDatabase::C_DefaultSpecName = "Default";
const char* const ZBDatabase::C_TopLevelSpecName = "TopLevel";
const char* const ZBDatabase::C_DefaultChildName = "Object";
const char* const ZBDatabase::C_QueryTag = "QU";
const char* const ZBDatabase::C_NoteTag = "NO";
const char* const ZBDatabase::C_SystemReference = "SYSTEM";
const char* const ZBDatabase::C_NewExtension = ".new";
const char* const ZBDatabase::C_OldExtension = ".old";
const char* const ZBDatabase::C_PartialExtension = ".bpu";
const char* const ZBDatabase::C_BaseExtension = ".zbdbbase";
const char* const ZBDatabase::C_IndexExtension = ".zbdbindex";
const char* const ZBDatabase::C_LastKnownGood = ".lkg";
const char* const ZBDatabase::C_SnapshotKeep = ".bkc";
const char* const ZBDatabase::C_BakExtension = ".bak";

int ZBDatabase::ZBErrC_NotADatabase = ZBError::allocate_code("ZBErrC_NotADatabase", "The specified file is not a ZBDatabase file.");
int ZBDatabase::ZBErrC_InvalidDatabaseVersion =
    ZBError::allocate_code("ZBErrC_InvalidDatabaseVersion", "The database file version is not recognised.");
int ZBDatabase::ZBErrC_NewerAppVersion =
    ZBError::allocate_code("ZBErrC_NewerAppVersion", "The database file was written with a newer version of the app.");
int ZBDatabase::ZBErrC_ObjectIdNotFound =
    ZBError::allocate_code("ZBErrC_ObjectIdNotFound", "Could not find the specified object ID in the database.");
int ZBDatabase::ZBErrC_CorruptDatabase = ZBError::allocate_code("ZBErrC_CorruptDatabase", "Corrupt database file.");
int ZBDatabase::ZBErrC_CorruptPartial = ZBError::allocate_code("ZBErrC_CorruptPartial", "Corrupt database session file.");
int ZBDatabase::ZBErrC_Intermediate = ZBError::allocate_code("ZBErrC_Intermediate", "Some files still remain from last session.");
int ZBDatabase::ZBErrC_DatabaseNotLoaded = ZBError::allocate_code("ZBErrC_DatabaseNotLoaded", "No database file loaded.");
int ZBDatabase::ZBErrC_DatabaseReadOnly = ZBError::allocate_code("ZBErrC_DatabaseReadOnly", "Database opened read-only.");
int ZBDatabase::ZBErrC_DatabaseAlreadyLoaded =
    ZBError::allocate_code("ZBErrC_DatabaseAlreadyLoaded", "Database file already loaded.");
int ZBDatabase::ZBErrC_WrongAppType =
    ZBError::allocate_code("ZBErrC_WrongAppType", "Database file for different application type.");

namespace {

ZBObjectPreReg g_register("ZBDatabase", &ZBDatabase::create_zbobject);

std::string running_release()
{
    return has_zbapplication() ? zbapplication().get_release() : std::string();
}

std::string application_name()
{
    return has_zbapplication() ? zbapplication().get_title() : std::string("this program");
}

std::string host_name()
{
    if (has_zbapplication())
        return zbapplication().get_hostname();
    return QSysInfo::machineHostName().toStdString();
}

std::string trim_right(std::string text)
{
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.pop_back();
    return text;
}

// Holds the background thread off between passes for the length of a save,
// and leaves a pause the caller set as it was.
class BackgroundPause {
public:
    explicit BackgroundPause(ZBDatabase& db) : m_db(db), m_wasPaused(db.is_background_paused())
    {
        if (!m_wasPaused)
            m_db.pause_background(true);
    }
    ~BackgroundPause()
    {
        if (!m_wasPaused)
            m_db.pause_background(false);
    }
    BackgroundPause(const BackgroundPause&) = delete;
    BackgroundPause& operator=(const BackgroundPause&) = delete;

private:
    ZBDatabase& m_db;
    bool m_wasPaused;
};

} // namespace

ZBDatabase::ZBDatabase()
    : m_object(false), m_objectSpec(C_SpecTag), m_query(C_QueryTag), m_note(C_NoteTag), m_uniqueId(0), m_lastFullWrite(0), m_lastPartialWrite(0), m_firstPartialWrite(true),
      m_lastStructureChange(0), m_readOnly(false), m_isLoaded(false), m_isResolved(false), m_backupCount(5),
      m_lastBackup(ZBDate::E_Zero), m_loadID(1), m_databaseFileVersion(0), m_appFileVersion(0), m_featureCount(0),
      m_appRelease(running_release()), m_writeTime(ZBDate::E_Blank), m_latestWrite(ZBDate::E_Blank),
      m_actionMgr(nullptr), m_pauseBackground(false), m_recalcComplete(false), m_autosave(true),
      m_changedOverflow(false), m_forceRotation(false), m_recovered(0)
{
    ZBDatabase::register_zbobject();
    add_container(m_objectSpec);
    add_container(m_query);
    add_container(m_note);
}

ZBDatabase::~ZBDatabase()
{
    stop_recalc_thread();
    // A session that ends with everything saved leaves no files behind; one
    // with unsaved changes keeps its log for the next load to recover.
    if (m_isLoaded && !m_readOnly && !m_completeFile.empty() && !needs_save())
        clean_intermediate(false, true);
}

void ZBDatabase::register_zbobject()
{
    register_objectname("ZBDatabase", &ZBDatabase::create_zbobject);
}

// A database is never copied whole; a copy is a new empty one that reads the other's text.
int ZBDatabase::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    ZBDatabase* db = new ZBDatabase();
    out = db;
    if (from)
        return db->derived_assign(*from, 0);
    return ZBErrC_ok;
}

void ZBDatabase::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDatabase", out, indent);
    dump.add("m_object", m_object.size());
    dump.add("m_uniqueId", m_uniqueId);
    dump.add("m_lastFullWrite", m_lastFullWrite);
    dump.add("m_lastPartialWrite", m_lastPartialWrite);
    dump.add("m_firstPartialWrite", m_firstPartialWrite);
    dump.add("m_lastStructureChange", m_lastStructureChange);
    dump.add_entry("m_completeFile", m_completeFile);
    dump.add_entry("m_partialFile", m_partialFile);
    dump.add_entry("m_baseFile", m_baseFile);
    dump.add_entry("m_indexFile", m_indexFile);
    dump.add("m_readOnly", m_readOnly);
    dump.add("m_isLoaded", m_isLoaded);
    dump.add("m_isResolved", m_isResolved);
    dump.add("m_backupCount", m_backupCount);
    dump.add_entry("m_appType", m_appType);
    dump.add("m_loadID", m_loadID);
    dump.add("m_databaseFileVersion", m_databaseFileVersion);
    dump.add("m_appFileVersion", m_appFileVersion);
    dump.add("m_featureCount", m_featureCount);
    dump.add_entry("m_appRelease", m_appRelease);
    dump.add_entry("m_comment", m_comment);
    dump.add("m_external", m_external.size());
    dump.add_entry("m_writeTime", m_writeTime.to_iso());
    dump.add_entry("m_writeHost", m_writeHost);
    dump.add_entry("m_noteURL", m_noteURL);
    dump.add("m_pauseBackground", is_background_paused());
    dump.write_heading("Base Class");
    dump.write();
    ZBDBObject::dump(out, indent + 1);
}

int ZBDatabase::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "UnID", m_uniqueId, 0);
    serialise_string(in, out, prefix, "AppType", m_appType, false);
    serialise_string(in, out, prefix, "Comment", m_comment, false);
    serialise_field<int>(in, out, prefix, "AFV", m_appFileVersion, 0, true);
    serialise_field<int>(in, out, prefix, "FC", m_featureCount, 0, true);
    if (in) {
        // Old files carried the backup count here; it is a system value now.
        int backups = -1;
        if (serialise_field<int>(in, out, prefix, "BackupCount", backups, -1) == ZBErrC_ok && backups >= 0)
            m_backupCount = backups;
    }
    ZBSrlObjectArray<ZBExternalDB> external(m_external, version);
    if (iszberr(serialise_object(in, out, prefix, "External", external)))
        return zbpass(ZBLOC);
    const ZBDate blank(ZBDate::E_Blank);
    serialise_field<ZBDate>(in, out, prefix, "WriteTime", m_writeTime, blank);
    serialise_string(in, out, prefix, "WriteHost", m_writeHost, false);
    // The application type stands twice in every file; both lines are read.
    serialise_string(in, out, prefix, "AppType", m_appType, false);
    serialise_string(in, out, prefix, "AppRelease", m_appRelease, false);
    serialise_string(in, out, prefix, "NoteURL", m_noteURL, false);
    return ZBDBObject::serialise(in, out, prefix, version);
}

int ZBDatabase::func()
{
    while (!is_stopping()) {
        wait_signal(C_RecalcWakeMs);
        if (is_stopping())
            break;
        {
            ZBMutexLocker lock(m_pauseMutex);
            if (m_pauseBackground)
                continue;
        }
        try {
            background_recalculate();
        } catch (const ZBErrDetails&) {
            // A background failure goes no further than here; the loop goes on.
        }
    }
    return ZBErrC_ok;
}

int ZBDatabase::create_object(ZBDBObject* parent, const std::string& tag, int specId, ZBDBObject** out)
{
    std::unique_ptr<ZBDBObject> object(new ZBDBObject());
    int result = add_object(object.get(), parent ? parent : this, tag, std::string(), specId, std::string());
    if (iszbwarn(result)) {
        if (out)
            *out = nullptr;
        return zbpass(ZBLOC);
    }
    if (out)
        *out = object.get();
    object.release();
    return ZBErrC_ok;
}

int ZBDatabase::change_id(ZBDBObject& object, int id)
{
    int old = object.get_id();
    if (old == id)
        return ZBErrC_ok;
    if (get_object_by_id(id))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Object ID %d is already in use.", id);
    int index = m_object.position_of(old);
    if (index < 0)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find object ID %d.", old);
    object.set_id(id, object.get_create_time(), false);
    m_object.rekey(index, id);
    for (ZBDBObject* other : m_object)
        other->remap_id(old, id);
    if (id >= m_uniqueId)
        m_uniqueId = id + 1;
    return resolve_containers();
}

int ZBDatabase::upgrade_appfileversion()
{
    if (m_appFileVersion >= current_appfileversion())
        return ZBErrC_ok;
    if (!m_completeFile.empty() && QFile::exists(QString::fromStdString(m_completeFile))) {
        const std::string copy = version_copy_name(m_completeFile, m_appFileVersion);
        if (!QFile::copy(QString::fromStdString(m_completeFile), QString::fromStdString(copy)))
            return zbwarning(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", copy.c_str());
    }
    resolve_containers();
    // Fields the old version kept that this one does not know are dropped
    // from this file's writes, and from no other file's.
    m_purgeUnhandled = true;
    m_appFileVersion = current_appfileversion();
    mark_changed(ZBLOC, true);
    return ZBErrC_ok;
}

int ZBDatabase::update_feature(int count)
{
    if (count > m_featureCount) {
        m_featureCount = count;
        mark_changed(ZBLOC, true);
    }
    return ZBErrC_ok;
}

int ZBDatabase::initialise(bool created)
{
    if (created) {
        if (get_id() < 0)
            set_id(allocate_id(), ZBDateUtils::now(), true);
        if (m_appType.empty() && has_zbapplication())
            m_appType = zbapplication().get_application();
        // A new file is of the current data version: its first load must not
        // take it for an old file and upgrade it.
        m_appFileVersion = current_appfileversion();
    }
    int result = resolve_containers();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    // A spec that does not parse leaves its objects as they were; the load goes on.
    parse_objectspecs(true);
    return ZBErrC_ok;
}

bool ZBDatabase::has_user_data() const
{
    for (const ZBDBObject* object : m_object)
        if (!object->is_deleted())
            return true;
    return false;
}

int ZBDatabase::recalculate(E_RecalcLevel level)
{
    if (level >= E_RecalcFull)
        return update_vars(-1, false);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- lifecycle

void ZBDatabase::set_filename(const std::string& name)
{
    m_completeFile = name;
    m_partialFile = name.empty() ? std::string() : partial_name(name);
    m_indexFile = name.empty() ? std::string() : get_cache_name(name, true) + C_IndexExtension;
    m_dbIndex.initialise(m_indexFile);
    m_baseFile.clear();
    m_firstPartialWrite = true;
}

// The folder's path is hashed into the name, so that two data files of the
// same name in different folders keep their own copies, and a copy already
// there is never overwritten: a second upgrade of the same version gets the
// next free number.
std::string ZBDatabase::version_copy_name(const std::string& name, int version)
{
    const QFileInfo info(QString::fromStdString(name));
    const QString folder = info.absoluteDir().canonicalPath().isEmpty() ? info.absolutePath()
                                                                          : info.absoluteDir().canonicalPath();
    const std::string hash =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(8).toStdString();
    const QString dir = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    QDir().mkpath(dir);
    const std::string base = (dir + "/" + info.fileName()).toStdString() + "." + hash + ".Ver" + std::to_string(version);
    std::string copy = base;
    for (int n = 2; QFile::exists(QString::fromStdString(copy)); ++n)
        copy = base + "-" + std::to_string(n);
    return copy;
}

namespace {

std::string cache_dir()
{
    if (has_zbapplication())
        return zbapplication().get_cache_dir();
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation).toStdString();
}

std::string scratch_dir()
{
    if (has_zbapplication())
        return zbapplication().get_scratch_dir();
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString() + "/scratch";
}

// The data file's folder, whole, with links resolved where it exists, so that
// one file reached by two paths has one family of files.
QString whole_folder(const std::string& name)
{
    const QFileInfo info(QString::fromStdString(name));
    const QString canonical = info.absoluteDir().canonicalPath();
    return canonical.isEmpty() ? QDir::cleanPath(info.absolutePath()) : canonical;
}

// The folder under the cache or scratch folder that holds a data file's
// files: the initial of each folder on its path, then a short hash of the
// whole path, so that "/a/b/x.zbd" and "/a/bb/x.zbd" never share.
std::string mangled_folder(const std::string& name)
{
    const QString folder = whole_folder(name);
    std::string initials;
    for (int i = 0; i + 1 < folder.size(); ++i)
        if ((folder[i] == '/' || folder[i] == '\\') && folder[i + 1] != '/' && folder[i + 1] != '\\')
            initials += QString(folder[i + 1]).toStdString();
    const std::string hash =
        QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex().left(8).toStdString();
    return initials + "." + hash;
}

std::string file_part(const std::string& name)
{
    return QFileInfo(QString::fromStdString(name)).fileName().toStdString();
}

bool exists(const std::string& path)
{
    return !path.empty() && QFileInfo::exists(QString::fromStdString(path));
}

void make_parent(const std::string& path)
{
    QDir().mkpath(QFileInfo(QString::fromStdString(path)).absolutePath());
}

void remove_file(const std::string& path)
{
    if (!path.empty())
        QFile::remove(QString::fromStdString(path));
}

bool read_whole(const std::string& path, std::string& text)
{
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return false;
    std::ostringstream all;
    all << in.rdbuf();
    text = all.str();
    return !in.bad();
}

// Size, change time and inode: what tells that another program wrote the file.
std::string file_stamp(const std::string& path)
{
    struct stat info;
    if (path.empty() || ::stat(path.c_str(), &info) != 0)
        return std::string();
    return std::to_string(info.st_size) + ":" + std::to_string(info.st_mtim.tv_sec) + "."
        + std::to_string(info.st_mtim.tv_nsec) + ":" + std::to_string(info.st_ino);
}

// A save told to stop after a step leaves the disk as a crash there would.
int g_saveStop = 0;

// Drops the records a recovered failure left on the error stack.
void pop_errors(int keep)
{
    while (get_zberror().get_nerrors() > keep)
        get_zberror().clear_last_error();
}

} // namespace

void zb_set_save_stop(int step)
{
    g_saveStop = step;
}

std::string ZBDatabase::get_cache_name(const std::string& name, bool force)
{
    if (!force)
        return name;
    return cache_dir() + "/" + mangled_folder(name) + "/" + file_part(name);
}

std::string ZBDatabase::get_scratch_name(const std::string& name)
{
    return scratch_dir() + "/" + mangled_folder(name) + "/" + file_part(name);
}

std::string ZBDatabase::partial_name(const std::string& name)
{
    return get_scratch_name(name) + C_PartialExtension;
}

bool ZBDatabase::has_partial(const std::string& name)
{
    if (name.empty())
        return false;
    QFileInfo info(QString::fromStdString(partial_name(name)));
    return info.exists() && info.size() > 0;
}

int ZBDatabase::remove_partial(const std::string& name)
{
    if (name.empty())
        return ZBErrC_ok;
    remove_file(partial_name(name));
    remove_file(get_cache_name(name, true) + C_IndexExtension);
    remove_file(get_cache_name(name, true) + C_BaseExtension);
    return ZBErrC_ok;
}

int ZBDatabase::clean_intermediate(bool keepPartial, bool forceClean)
{
    if (m_readOnly || m_completeFile.empty())
        return ZBErrC_ok;
    const std::string newName = get_cache_name(m_completeFile + C_NewExtension, false);
    const std::string oldName = get_cache_name(m_completeFile + C_OldExtension, false);
    const std::string baseName = get_cache_name(m_completeFile, true) + C_BaseExtension;
    if (forceClean) {
        remove_file(newName);
        remove_file(oldName);
        if (!keepPartial) {
            remove_file(m_partialFile);
            remove_file(baseName);
            m_baseFile.clear();
            remove_file(m_indexFile);
            m_dbIndex.reset();
            m_firstPartialWrite = true;
        }
        return ZBErrC_ok;
    }
    for (const std::string& name : {newName, oldName})
        if (exists(name))
            return zbwarnuser(ZBErrC_Intermediate, ZBLOC, "File %s exists with main database.", name.c_str());
    if (!keepPartial)
        for (const std::string& name : {m_partialFile, m_indexFile})
            if (exists(name))
                return zbwarnuser(ZBErrC_Intermediate, ZBLOC, "File %s exists with main database.", name.c_str());
    return ZBErrC_ok;
}

int ZBDatabase::ensure_base()
{
    // A file not yet written (being created) has no base: its first full
    // save holds everything and becomes the base.
    if (m_readOnly || m_completeFile.empty() || !m_baseFile.empty() || !exists(m_completeFile))
        return ZBErrC_ok;
    const std::string base = get_cache_name(m_completeFile, true) + C_BaseExtension;
    if (m_dbIndex.size() > 0 && exists(base)) {
        // A recovered log goes on from the base it was written against.
        m_baseFile = base;
        return ZBErrC_ok;
    }
    if (m_dbIndex.size() > 0 || has_partial(m_completeFile)) {
        // A log without its base cannot be undone: the main file takes in the
        // recovered state, and the log starts again from it.
        remove_file(m_partialFile);
        remove_file(m_indexFile);
        m_dbIndex.reset();
        m_firstPartialWrite = true;
        mark_changed(ZBLOC, false);
        if (iszbwarn(save(false, false, false)))
            return zbpass(ZBLOC);
        return ZBErrC_ok;
    }
    make_parent(base);
    if (iszbwarn(zb_copy_file(m_completeFile, base, true)))
        return zbpass(ZBLOC);
    m_baseFile = base;
    return ZBErrC_ok;
}

int ZBDatabase::load(const std::string& name, bool readOnly, bool create, const std::string& templateFile,
                     bool keepPartial, bool forceClean, bool usePartial, bool noClean)
{
    if (m_isLoaded)
        return zberror(ZBErrC_DatabaseAlreadyLoaded, ZBLOC, "Database file %s already loaded.", name.c_str());
    set_filename(name);
    m_readOnly = readOnly;
    if (has_zbparam())
        m_backupCount = std::max(0, zbparam().get_system_value("Backups", m_backupCount));
    const std::string expected = m_expectedAppType;
    if (name.empty()) {
        m_isLoaded = true;
        return initialise(true);
    }
    const QString qname = QString::fromStdString(name);
    if (!QFile::exists(qname)) {
        if (!create)
            return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "The file %s does not exist.", name.c_str());
        if (templateFile.empty()) {
            m_readOnly = false;
            return this->create(name, false);
        }
        if (!QFile::copy(QString::fromStdString(templateFile), qname))
            return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", name.c_str());
    }
    if (QFileInfo(qname).isDir())
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "%s is a folder, not a data file.", name.c_str());
    if (!noClean && !readOnly) {
        int result = clean_intermediate(keepPartial, forceClean);
        if (iszbwarn(result))
            return zbpass(ZBLOC);
    }
    std::ifstream in(name, std::ios::binary);
    if (!in)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", name.c_str());
    m_fileStamp = file_stamp(name);
    int result = read(in, false, true);
    if (iszbwarn(result)) {
        zbuserinfo_set("%s contains invalid data.", name.c_str());
        // Nothing of the damaged file stays in memory.
        m_object.clear();
        m_headEntry.clear();
        m_completeFile.clear();
        return zbpass(ZBLOC);
    }
    m_isLoaded = true;
    m_lastFullWrite = m_lastPartialWrite = get_counter(true);
    m_recovered = 0;
    if (usePartial && !readOnly && has_partial(name)) {
        const int errors = get_zberror().get_nerrors();
        m_dbIndex.load();
        const std::string base = get_cache_name(name, true) + C_BaseExtension;
        // Undo or redo of a saved transaction after the save leaves the main
        // file out of step with the log: then the whole log is replayed on
        // its base. Otherwise the transactions from the last save on are
        // replayed on the main file.
        int replay = m_dbIndex.changed_since_save() && exists(base)
            ? (m_baseFile = base, load_base())
            : load_partial(true);
        if (iszbwarn(replay) && m_reportDamagedPartial) {
            const std::string message = get_zberror().top() ? get_zberror().top()->get_message() : std::string();
            pop_errors(errors);
            // Read-only for the unload, so that the log and the index stay on disk for the user's choice.
            m_readOnly = true;
            unload();
            return zbwarnuser(ZBErrC_CorruptPartial, ZBLOC, "%s", message.c_str());
        }
        if (iszbwarn(replay)) {
            // The user keeps what the main file holds; the damaged log goes.
            m_recoveryMessage = get_zberror().top() ? get_zberror().top()->get_message() : std::string();
            pop_errors(errors);
            m_baseFile.clear();
            remove_partial(name);
            m_dbIndex.reset();
            m_recovered = -1;
        } else {
            m_recovered = std::max(1, m_dbIndex.size() - m_dbIndex.get_last_save());
        }
        m_lastPartialWrite = get_counter(true);
    }
    if (!readOnly && iszbwarn(ensure_base()))
        return zbpass(ZBLOC);
    if (!expected.empty() && m_appType != expected) {
        const std::string extension = has_zbapplication() ? zbapplication().get_extension() : std::string();
        if (!extension.empty() && QFileInfo(qname).suffix() == QString::fromStdString(extension).remove('.')) {
            std::string found = m_appType;
            unload();
            return zbwarnuser(ZBErrC_WrongAppType, ZBLOC, "%s is not a %s data file (it is a %s data file).",
                              name.c_str(), expected.c_str(), found.c_str());
        }
        m_appType = expected;
    }
    if (!readOnly) {
        long before = get_last_db_update();
        if (iszbwarn(upgrade_appfileversion()) || iszbwarn(initialise(false)))
            return zbpass(ZBLOC);
        if ((get_last_db_update() > before || m_recovered != 0) && iszbwarn(save(true, true, false)))
            return zbpass(ZBLOC);
    } else {
        resolve_containers();
        // In memory only: a read-only view shows the variables as specs give them.
        parse_objectspecs(true);
    }
    return ZBErrC_ok;
}

int ZBDatabase::load(const std::string& name, bool create, const std::string& templateFile, bool keepPartial,
                     bool forceClean, bool usePartial)
{
    return load(name, false, create, templateFile, keepPartial, forceClean, usePartial, false);
}

int ZBDatabase::read(const std::string& name, bool keepPartial, bool forceClean)
{
    return load(name, true, false, std::string(), keepPartial, forceClean, false, true);
}

int ZBDatabase::create(const std::string& name, bool)
{
    if (m_readOnly)
        return zberror(ZBErrC_DatabaseReadOnly, ZBLOC, "This database was opened read-only.");
    if (m_isLoaded)
        return zberror(ZBErrC_DatabaseAlreadyLoaded, ZBLOC, "Database file %s already loaded.", name.c_str());
    if (QFile::exists(QString::fromStdString(name)))
        return zbwarnuser(ZBErrC_FileExists, ZBLOC, "The file %s already exists.", name.c_str());
    set_filename(name);
    clean_intermediate(false, true);
    m_fileStamp.clear();
    m_isLoaded = true;
    if (!m_expectedAppType.empty())
        m_appType = m_expectedAppType;
    if (iszbwarn(initialise(true)))
        return zbpass(ZBLOC);
    int result = save(true, true, false);
    if (iszbwarn(result)) {
        m_isLoaded = false;
        return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

bool ZBDatabase::file_changed_on_disk() const
{
    if (m_completeFile.empty() || m_fileStamp.empty())
        return false;
    return file_stamp(m_completeFile) != m_fileStamp;
}

void ZBDatabase::accept_file_change()
{
    m_fileStamp = file_stamp(m_completeFile);
}

int ZBDatabase::save(bool push, bool includeManual, bool verifyFile)
{
    (void)push;
    (void)includeManual;
    ZBAppStatusSetter status("Saving...", false, 1000000);
    if (m_readOnly)
        return zberror(ZBErrC_DatabaseReadOnly, ZBLOC, "This database was opened read-only.");
    if (!m_isLoaded)
        return zberror(ZBErrC_DatabaseNotLoaded, ZBLOC, "Database file %s not loaded.", m_completeFile.c_str());
    if (m_completeFile.empty())
        return ZBErrC_ok;
    BackgroundPause pause(*this);
    const std::string& file = m_completeFile;
    if (file_changed_on_disk())
        return zbwarnuser(ZBErrC_FileWrite, ZBLOC,
                          "%s was changed by another program since it was opened; it was not overwritten.",
                          file.c_str());
    // With nothing logged yet, the new file simply becomes the base. Otherwise
    // what was changed outside an operation goes to the log first, so that a
    // replay after this save still finds it.
    const bool rebase = m_dbIndex.size() == 0 && !exists(m_partialFile);
    if (!rebase && !m_baseFile.empty() && iszbwarn(save_partial(std::string())))
        return zbpass(ZBLOC);
    const std::string newName = get_cache_name(file + C_NewExtension, false);
    const std::string oldName = get_cache_name(file + C_OldExtension, false);
    make_parent(newName);
    make_parent(oldName);

    m_writeTime = ZBDateUtils::now();
    m_latestWrite.set_latest(m_writeTime);
    m_writeHost = host_name();
    m_appRelease = running_release().empty() ? m_appRelease : running_release();
    std::ostringstream text;
    if (iszbwarn(write(text, 0, false, std::string(), -1)))
        return zbpass(ZBLOC);
    // The new file is on the disk before anything else changes.
    if (iszbwarn(zb_write_file_synced(newName, text.str()))) {
        remove_file(newName);
        return zbpass(ZBLOC);
    }
    // The old file keeps its name until the new one replaces it in one
    // rename; the ".old" name is a second link to it, so that the data file
    // is never missing, whenever the program stops.
    if (g_saveStop == 5)
        return ZBErrC_okShutdown;
    const bool existed = exists(file);
    if (existed && iszbwarn(zb_link_or_copy(file, oldName))) {
        remove_file(newName);
        return zbpass(ZBLOC);
    }
    if (g_saveStop == 6)
        return ZBErrC_okShutdown;
    if (m_baseFile.empty() || rebase) {
        const std::string base = get_cache_name(file, true) + C_BaseExtension;
        make_parent(base);
        const std::string& from = m_dbIndex.size() == 0 || !existed ? newName : oldName;
        if (iszbwarn(zb_copy_file(from, base, true))) {
            remove_file(newName);
            remove_file(oldName);
            return zbpass(ZBLOC);
        }
        m_baseFile = base;
    }
    if (g_saveStop == 7)
        return ZBErrC_okShutdown;
    if (iszbwarn(zb_rename_synced(newName, file))) {
        remove_file(newName);
        remove_file(oldName);
        return zbpass(ZBLOC);
    }
    if (use_save_validation() || verifyFile) {
        int result = verify(file, m_appType);
        if (iszbwarn(result)) {
            if (existed)
                zb_rename_synced(oldName, file);
            m_fileStamp = file_stamp(file);
            return zbpass(ZBLOC);
        }
    }
    if (g_saveStop == 9)
        return ZBErrC_okShutdown;
    rotate_backups();
    if (g_saveStop == 10)
        return ZBErrC_okShutdown;
    remove_file(oldName);
    m_fileStamp = file_stamp(file);
    if (g_saveStop == 11)
        return ZBErrC_okShutdown;
    m_dbIndex.mark_save();
    m_lastPartialWrite = get_counter(true);
    m_lastFullWrite = m_lastPartialWrite;
    m_changedIds.clear();
    m_changedOverflow = false;
    return ZBErrC_ok;
}

void ZBDatabase::rotate_backups()
{
    const std::string oldName = get_cache_name(m_completeFile + C_OldExtension, false);
    if (m_backupCount < 1)
        return;
    const ZBDate now = ZBDateUtils::now();
    if (!m_forceRotation) {
        std::int64_t last = m_lastBackup.is_zero() || !m_lastBackup.is_ok() ? 0 : m_lastBackup.to_micros();
        if (last == 0) {
            // Across sessions the newest backup's time tells when the last rotation was.
            const ZBMoment made = zb_file_modified(get_scratch_name(m_completeFile) + ".bk0");
            if (made.is_ok())
                last = made.to_micros();
        }
        const std::int64_t since = now.to_micros() - last;
        // A rotation time ahead of the clock (the clock was put back) counts as long past.
        if (last != 0 && since >= 0 && since <= std::int64_t(C_BackupInterval) * 1000000)
            return;
    }
    const std::string scratch = get_scratch_name(m_completeFile);
    make_parent(scratch);
    for (int i = m_backupCount - 1; i >= 0; --i) {
        const std::string source = i == 0 ? oldName : scratch + ".bk" + std::to_string(i - 1);
        const std::string target = scratch + ".bk" + std::to_string(i);
        if (exists(source))
            zb_rename_file(source, target, true);
    }
    // The rotation's time, for the next session's two-hour rule and for the list of snapshots.
    const std::string newest = scratch + ".bk0";
    if (exists(newest)) {
        QFile touch(QString::fromStdString(newest));
        if (touch.open(QIODevice::ReadWrite))
            touch.setFileTime(QDateTime::fromMSecsSinceEpoch(qint64(now.to_micros() / 1000), Qt::UTC),
                             QFileDevice::FileModificationTime);
    }
    m_lastBackup = now;
}

int ZBDatabase::verify(const std::string& fileName, const std::string& appType) const
{
    if (m_completeFile.empty())
        return ZBErrC_ok;
    std::unique_ptr<ZBDatabase> check(create_verification_db(appType));
    if (!check)
        return zberror(ZBErrC_NullPointer, ZBLOC, "Could not make a database to verify %s.", fileName.c_str());
    check->set_expected_app_type(std::string());
    int result = check->load(fileName, true, false, std::string(), false, false, false, true);
    check->unload();
    if (iszbwarn(result))
        return zbwarnuser(ZBErrC_CorruptDatabase, ZBLOC, "Unable to load database %s.", fileName.c_str());
    const std::string good = get_scratch_name(m_completeFile) + C_LastKnownGood;
    make_parent(good);
    zb_copy_file(fileName, good, true);
    return ZBErrC_ok;
}

ZBDatabase* ZBDatabase::create_verification_db(const std::string&) const
{
    ZBObjectIndexEntry* entry = zbclassindex().find(get_class_name());
    ZBObject* made = nullptr;
    if (!entry || !entry->m_create || iszbwarn(entry->m_create(made, nullptr))) {
        delete made;
        return nullptr;
    }
    ZBDatabase* db = dynamic_cast<ZBDatabase*>(made);
    if (!db)
        delete made;
    return db;
}

int ZBDatabase::save_as(const std::string& name, bool copyFile)
{
    const std::string oldFile = m_completeFile;
    const std::string oldPartial = m_partialFile;
    const std::string oldIndex = m_indexFile;
    const std::string oldBase = m_baseFile;
    set_filename(name);
    m_fileStamp.clear();
    // The session's log goes with the file, so undo reaches back past the rename.
    if (!oldFile.empty() && exists(oldPartial)) {
        make_parent(m_partialFile);
        make_parent(m_indexFile);
        zb_rename_file(oldPartial, m_partialFile, true);
        if (exists(oldIndex))
            zb_rename_file(oldIndex, m_indexFile, true);
        m_dbIndex.load();
        m_firstPartialWrite = false;
    }
    if (!oldBase.empty() && exists(oldBase)) {
        m_baseFile = get_cache_name(name, true) + C_BaseExtension;
        make_parent(m_baseFile);
        zb_rename_file(oldBase, m_baseFile, true);
    }
    if (copyFile && exists(oldFile) && !exists(name))
        zb_copy_file(oldFile, name, false);
    m_fileStamp = file_stamp(name);
    return save(true, false, true);
}

int ZBDatabase::replace_file(const std::string& name)
{
    const std::string keepName = m_completeFile;
    unload();
    if (iszbwarn(load(name, false, false, std::string(), false, true, false, true)))
        return zberror(ZBErrC_DatabaseNotLoaded, ZBLOC, "Database file %s not loaded.", name.c_str());
    set_filename(keepName);
    m_fileStamp = file_stamp(keepName);
    m_lastFullWrite = m_lastPartialWrite = get_counter(true);
    return ZBErrC_ok;
}

int ZBDatabase::handle_load_fail(const std::string& name)
{
    const std::string scratch = get_scratch_name(name);
    std::string source = scratch + C_LastKnownGood;
    if (!exists(source))
        source = scratch + ".bk0";
    if (!exists(source))
        return ZBErrC_okNotHandled;
    if (m_isLoaded)
        unload();
    remove_partial(name);
    if (exists(name) && iszbwarn(zb_rename_file(name, name + C_BakExtension, true)))
        return zbpass(ZBLOC);
    if (iszbwarn(zb_copy_file(source, name, true)))
        return zbpass(ZBLOC);
    if (iszbwarn(load(name, false, false, std::string(), false, true, false, false)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDatabase::set_backup_count(int count)
{
    m_backupCount = std::max(0, count);
    if (has_zbparam())
        zbparam().set_system_value("Backups", m_backupCount);
}

int ZBDatabase::save_snapshot(bool includeManual)
{
    const int keep = m_backupCount;
    if (m_backupCount == 0)
        m_backupCount = 10;
    m_lastBackup = ZBDate(ZBDate::E_Zero);
    m_forceRotation = true;
    // A snapshot is taken even when nothing changed since the last save.
    int result = save(true, includeManual, true);
    m_forceRotation = false;
    m_backupCount = keep;
    m_lastBackup = ZBDate(ZBDate::E_Zero);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

std::vector<std::string> ZBDatabase::list_snapshots(const std::string& name)
{
    std::vector<std::string> out;
    const std::string scratch = get_scratch_name(name);
    for (int i = 0; i < 100; ++i) {
        const std::string file = scratch + ".bk" + std::to_string(i);
        if (exists(file))
            out.push_back(file);
    }
    return out;
}

int ZBDatabase::export_db(const std::string& fileName)
{
    std::ostringstream text;
    if (iszbwarn(write(text, 0, false, std::string(), -1)))
        return zbpass(ZBLOC);
    make_parent(fileName);
    if (iszbwarn(zb_write_file_synced(fileName, text.str())))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDatabase::restore_snapshot(const std::string& file, std::string& keep)
{
    if (!exists(file))
        return zbwarning(ZBErrC_FileOpen, ZBLOC, "Could not open %s.", file.c_str());
    const std::string name = m_completeFile;
    keep = get_scratch_name(name) + C_SnapshotKeep;
    if (iszbwarn(export_db(keep)))
        return zbpass(ZBLOC);
    // The snapshot is checked before it replaces anything.
    if (iszbwarn(verify(file, m_appType)))
        return zbwarnuser(ZBErrC_CorruptDatabase, ZBLOC, "Could not restore snapshot %s", file.c_str());
    unload();
    const std::string incoming = name + C_NewExtension;
    int result = zb_copy_file(file, incoming, true);
    if (!iszbwarn(result))
        result = zb_rename_synced(incoming, name);
    if (!iszbwarn(result))
        result = load(name, false, false, std::string(), false, true, false, false);
    if (!iszbwarn(result))
        return save(false, false, false);
    const int errors = get_zberror().get_nerrors();
    unload();
    zb_copy_file(keep, name, true);
    load(name, false, false, std::string(), false, true, false, false);
    pop_errors(errors);
    return zbwarnuser(ZBErrC_CorruptDatabase, ZBLOC, "Could not restore snapshot %s", file.c_str());
}

int ZBDatabase::unload()
{
    stop_recalc_thread();
    if (!m_readOnly)
        clean_intermediate(false, true);
    clear_containers();
    for (ZBDBObject* object : m_object)
        object->clear_containers();
    m_object.clear();
    m_headEntry.clear();
    m_purgeUnhandled = false;
    m_isLoaded = false;
    m_isResolved = false;
    m_readOnly = false;
    m_completeFile.clear();
    m_partialFile.clear();
    m_baseFile.clear();
    m_indexFile.clear();
    m_dbIndex.initialise(std::string());
    m_fileStamp.clear();
    m_changedIds.clear();
    m_changedOverflow = false;
    return ZBErrC_ok;
}

int ZBDatabase::first_object(const std::string& fileName, std::string& className)
{
    className.clear();
    std::ifstream in(fileName, std::ios::binary);
    if (!in)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", fileName.c_str());
    std::string line;
    if (!zb_read_line(in, line) || trim_right(line) != C_DlmtDBIdentifier)
        return zberror(ZBErrC_NotADatabase, ZBLOC, "The file you are opening is not a database file.");
    while (zb_read_line(in, line))
        if (!line.empty() && line[0] == '{') {
            className = line.substr(1);
            return ZBErrC_ok;
        }
    return zberror(ZBErrC_NotADatabase, ZBLOC, "Could not locate database information in DB file.");
}

namespace {

// Whether the text of an id field is a whole, non-negative number. A stream
// extraction would read "xyz" as 0, the database's own id.
bool valid_id_text(const std::string& stored)
{
    const std::string text = stored.find('\\') == std::string::npos ? stored : zb_stream_in(stored);
    const size_t start = text.find_first_not_of(" \t");
    if (start == std::string::npos)
        return false;
    const size_t end = text.find_last_not_of(" \t") + 1;
    // Nine digits at most, so that the number fits an int.
    return end - start <= 9
        && std::all_of(text.begin() + long(start), text.begin() + long(end), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

// The record's entries are read first, so that its id can be checked before
// it is used and the line of a fault named; lineNo is the line of the class
// start, and afterwards that of the class end.
int ZBDatabase::read_record(ZBObject& object, std::istream& in, int version, int& lineNo)
{
    object.clear_unhandled_data();
    if (iszbwarn(object.read_class_entries(in)))
        return zbpass(ZBLOC);
    int line = lineNo;
    for (int i = 0; i < object.get_nserentries(); ++i) {
        const ZBSerialisationEntry* entry = object.get_serentry(i);
        ++line;
        if (entry->m_entryType == ZBSerialisationEntry::E_Class)
            line += int(std::count(entry->m_value.begin(), entry->m_value.end(), '\n'));
        else if (entry->m_entryType == ZBSerialisationEntry::E_Field && entry->m_tag == "I" && !valid_id_text(entry->m_value))
            return zberror(ZBErrC_CorruptDatabase, ZBLOC, "The object id \"%s\" on line %d is damaged.",
                           entry->m_value.c_str(), line);
    }
    lineNo = line + 1;
    if (iszbwarn(object.serialise(&in, nullptr, "", version)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

// Objects are read straight from the file stream, each by its class, so that a
// large file is parsed once; the form is the same as an object's entry text.
int ZBDatabase::read(std::istream& in, bool partial, bool skipSaved)
{
    std::string line;
    if (!zb_read_line(in, line) || trim_right(line) != C_DlmtDBIdentifier) {
        if (partial)
            return ZBErrC_okDelete;
        return zberror(ZBErrC_NotADatabase, ZBLOC, "The file you are opening is not a database file.");
    }
    int lineNo = 1;
    if (!partial)
        m_headEntry.clear();
    bool skip = partial && skipSaved && m_dbIndex.get_last_save() > 0;
    bool seenDatabase = false;
    int highest = m_uniqueId;
    const std::string objectTag = C_ObjectStart;
    std::vector<signed char> databaseClass; // by class id: 1 a database class, 0 not, -1 not known yet
    while (zb_read_line(in, line)) {
        ++lineNo;
        if (line.empty() || line == "}")
            continue; // Blank lines and a stray class end carry nothing.
        if (line.size() < 2 || (line[0] != '!' && line[0] != '@')) {
            if (!partial)
                m_headEntry.push_back(new ZBSerialisationEntry(ZBSerialisationEntry::E_Raw, std::string(),
                                                               zb_stream_in(line[0] == '\\' ? line.substr(1) : line)));
            continue;
        }
        if (line[0] == '!') {
            const std::string text = zb_stream_in(line);
            const size_t bang = text.find('!', 1);
            const std::string tag = text.substr(1, bang == std::string::npos ? std::string::npos : bang - 1);
            const std::string value = bang == std::string::npos ? std::string() : text.substr(bang + 1);
            if (tag == C_DlmtVersion) {
                m_databaseFileVersion = int(std::strtol(value.c_str(), nullptr, 10));
                if (m_databaseFileVersion != C_LatestFileVersion)
                    return zberror(ZBErrC_InvalidDatabaseVersion, ZBLOC,
                                   "Does not handle database version %d (max version handled is %d)",
                                   m_databaseFileVersion, C_LatestFileVersion);
            } else if (tag == C_DlmtTransaction) {
                if (partial) {
                    const int id = ZBDBTransaction::read_transaction_tag(value);
                    skip = m_dbIndex.get_status(id) != 0 || (skipSaved && id < m_dbIndex.get_last_save());
                }
            } else if (!partial) {
                // A field of a newer program's file head: kept and written back.
                m_headEntry.push_back(new ZBSerialisationEntry(ZBSerialisationEntry::E_Field, tag, value));
            }
            continue;
        }
        const std::string objectLine = zb_stream_in(line.substr(1));
        if (objectLine.compare(0, objectTag.size(), objectTag) != 0) {
            std::unique_ptr<ZBSerialisationEntry> nested(
                new ZBSerialisationEntry(ZBSerialisationEntry::E_Class, objectLine, std::string()));
            if (iszbwarn(zb_read_nested(in, &nested->m_value)))
                return zbpass(ZBLOC);
            lineNo += int(std::count(nested->m_value.begin(), nested->m_value.end(), '\n'));
            if (!partial)
                m_headEntry.push_back(nested.release());
            continue;
        }
        std::string start;
        do {
            if (!zb_read_line(in, start))
                return zberror(ZBErrC_FileTooShort, ZBLOC, "Could not find the end of the class marker.");
            ++lineNo;
        } while (start.empty() || start[0] != '{');
        const std::string name = start.substr(1);
        ZBObjectIndexEntry* entry = zbclassindex().find(name);
        if (!entry)
            return zberror(ZBErrC_ObjectUnknown, ZBLOC, "Could not identify object %s", name.c_str());
        if (!entry->m_create)
            return zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "No create function for %s", name.c_str());
        if (entry->m_id >= int(databaseClass.size()))
            databaseClass.resize(size_t(entry->m_id) + 1, -1);
        signed char& isDatabase = databaseClass[size_t(entry->m_id)];
        ZBObject* created = nullptr;
        if (isDatabase != 1 || skip) {
            if (iszbwarn(entry->m_create(created, nullptr)) || !created) {
                delete created;
                return zberror(ZBErrC_ObjectFuncNotRegistered, ZBLOC, "Create function failed for %s", name.c_str());
            }
            if (isDatabase < 0)
                isDatabase = dynamic_cast<ZBDatabase*>(created) ? 1 : 0;
        }
        if (isDatabase == 1 && !skip) {
            // The database's own record goes into this object, and its file
            // version governs how the other objects are read.
            delete created;
            if (iszbwarn(read_record(*this, in, m_appFileVersion, lineNo)))
                return zbpass(ZBLOC);
            if (in.fail())
                return zberror(ZBErrC_FileTooShort, ZBLOC, "Could not find the end of the class marker.");
            if (m_appFileVersion > current_appfileversion())
                return zberror(ZBErrC_NewerAppVersion, ZBLOC, "This file was written by a newer version of %s - Cannot load.",
                               application_name().c_str());
            seenDatabase = true;
            continue;
        }
        std::unique_ptr<ZBObject> holder(created);
        if (iszbwarn(read_record(*created, in, m_appFileVersion, lineNo)))
            return zbpass(ZBLOC);
        if (in.fail())
            return zberror(ZBErrC_FileTooShort, ZBLOC, "Could not find the end of the class marker.");
        if (skip)
            continue;
        ZBDBObject* object = dynamic_cast<ZBDBObject*>(created);
        if (!object)
            return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not cast to a ZBDBObject.");
        const int id = object->get_id();
        if (id >= highest)
            highest = id + 1;
        if (ZBDBObject* existing = m_object.find(id)) {
            // A later record of the same object updates it, as a replayed change does.
            if (iszbwarn(existing->derived_assign(*object, m_appFileVersion)))
                return zbpass(ZBLOC);
            continue;
        }
        holder.release();
        m_object.add(id, object);
    }
    if (!seenDatabase) {
        if (partial)
            return resolve_containers();
        return zberror(ZBErrC_NotADatabase, ZBLOC, "Could not locate database information in DB file.");
    }
    if (highest > m_uniqueId)
        m_uniqueId = highest;
    if (get_id() >= m_uniqueId)
        m_uniqueId = get_id() + 1;
    m_latestWrite.set_latest(m_writeTime);
    return resolve_containers();
}

int ZBDatabase::write(std::ostream& out, long since, bool withHead, const std::string& operation, int version)
{
    if (m_readOnly)
        return zberror(ZBErrC_DatabaseReadOnly, ZBLOC, "This database was opened read-only.");
    const bool head = since == 0 || withHead;
    ZBPurgeUnhandledScope purge(m_purgeUnhandled);
    if (head && version != -1 && version != m_databaseFileVersion)
        return zberror(ZBErrC_InvalidDatabaseVersion, ZBLOC,
                       "You must use a since value of 0 if you are going to change the database file version.");
    if (head) {
        out << C_DlmtDBIdentifier << '\n';
        write_tagged_field(C_DlmtVersion, out, "%d", m_databaseFileVersion);
        // What a newer program put at the top of the file goes back there.
        if (since == 0)
            for (const ZBSerialisationEntry* entry : m_headEntry)
                if (iszbwarn(entry->write_entry(out)))
                    return zbpass(ZBLOC);
    }
    if (since > 0 && !operation.empty()) {
        if (!running_release().empty())
            m_appRelease = running_release();
        std::string tag;
        if (iszbwarn(m_dbIndex.add_transaction(operation, tag, m_appFileVersion)))
            return zbpass(ZBLOC);
        write_tagged_field(C_DlmtTransaction, out, "%s", tag.c_str());
    }
    if (since == 0 || has_changed_since(since))
        if (iszbwarn(write_tagged_class(C_ObjectStart, out, m_appFileVersion)))
            return zbpass(ZBLOC);
    if (iszbwarn(write_objects(out, since, m_appFileVersion)))
        return zbpass(ZBLOC);
    if (!out)
        return zberror(ZBErrC_FileWrite, ZBLOC, "Write operation failed.");
    return ZBErrC_ok;
}

int ZBDatabase::write_objects(std::ostream& out, long since, int version)
{
    if (since > 0 && !m_changedOverflow) {
        // A partial write looks at the objects marked since the last one, not
        // at all of them, so that its cost follows the change, not the file.
        std::unordered_set<int> seen;
        for (int id : m_changedIds) {
            if (!seen.insert(id).second)
                continue;
            const ZBDBObject* object = m_object.find(id);
            if (object && object->has_changed_since(since)
                && iszbwarn(object->write_tagged_class(C_ObjectStart, out, version)))
                return zbpass(ZBLOC);
        }
        return ZBErrC_ok;
    }
    // Deleted objects stay for a week as tombstones, so that a merge sees them.
    const ZBDate limit = ZBDateParser::parse_date("now +-1 Week").apply(ZBDateUtils::now());
    for (const ZBDBObject* object : m_object) {
        if (since == 0) {
            if (object->is_deleted() && object->get_modify_time().is_ok() && object->get_modify_time() < limit)
                continue;
        } else if (!object->has_changed_since(since)) {
            continue;
        }
        if (iszbwarn(object->write_tagged_class(C_ObjectStart, out, version)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- objects

int ZBDatabase::allocate_id()
{
    int id = m_uniqueId++;
    mark_changed(ZBLOC, false);
    return id;
}

ZBDBObject* ZBDatabase::get_object_by_id(int id) const
{
    if (id == get_id() && id >= 0)
        return const_cast<ZBDatabase*>(this);
    return m_object.find(id);
}

ZBDBObject* ZBDatabase::get_object_parent(int id) const
{
    ZBDBObject* object = get_object_by_id(id);
    return object ? get_object_by_id(object->get_parent_id()) : nullptr;
}

ZBDBContainerBase* ZBDatabase::get_object_container(int id) const
{
    ZBDBObject* object = get_object_by_id(id);
    ZBDBObject* parent = object ? get_object_by_id(object->get_parent_id()) : nullptr;
    return parent ? parent->get_container(object->get_obj_container_tag()) : nullptr;
}

ZBDBObject* ZBDatabase::get_object_by_createid(int createId, const ZBDate& created) const
{
    for (ZBDBObject* object : m_object)
        if ((object->get_create_id() == createId || (object->get_create_id() < 0 && object->get_id() == createId))
            && object->get_create_time() == created)
            return object;
    return nullptr;
}

bool ZBDatabase::is_ancestor(int child, int ancestor) const
{
    ZBDBObject* object = get_object_by_id(child);
    // The walk is bounded by the number of objects, so a damaged cycle ends.
    for (int steps = 0; object && steps <= m_object.size() + 1; ++steps) {
        int parent = object->get_parent_id();
        if (parent < 0)
            return false;
        if (parent == ancestor)
            return true;
        object = get_object_by_id(parent);
    }
    return false;
}

void ZBDatabase::mark_db_structure_change(const ZBDBObject&)
{
    m_lastStructureChange = get_counter(true);
}

long ZBDatabase::get_last_db_update() const
{
    return get_counter(false);
}

bool ZBDatabase::db_has_changed_since(long since, bool structureOnly) const
{
    if (structureOnly)
        return m_lastStructureChange > since;
    if (has_changed_since(since))
        return true;
    for (const ZBDBObject* object : m_object)
        if (object->has_changed_since(since))
            return true;
    return false;
}

bool ZBDatabase::needs_save() const
{
    return m_isLoaded && !m_readOnly && db_has_changed_since(m_lastFullWrite, false);
}

namespace {

// Whether an object, and every object it carries, may hold the children it
// carries. The carried children are put back as they were.
bool can_hold_children(ZBDBObject& object)
{
    std::vector<ZBDBObject*> children;
    while (ZBDBObject* child = object.extract_managed_child())
        children.push_back(child);
    bool fits = children.empty() || object.allow_children();
    for (ZBDBObject* child : children)
        fits = fits && can_hold_children(*child);
    for (ZBDBObject* child : children)
        object.add_managed_child(child);
    return fits;
}

} // namespace

// Every check that can refuse comes before the database takes the object: a
// refused object is still the caller's, untouched, and a taken one is the
// database's whatever follows.
int ZBDatabase::add_object(ZBDBObject* object, ZBDBObject* parent, const std::string& containerTag,
                           const std::string& memberTag, int specId, const std::string& operation, int id)
{
    if (!object)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    if (parent && containerTag.empty())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "The container tag must be set if a parent is assigned.");
    if (parent && parent->get_id() < 0)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "The parent object of %d does not have a valid ID set (%d).",
                       object->get_id(), parent->get_id());
    ZBDBContainerBase* container = parent ? parent->get_or_make_container(containerTag) : nullptr;
    if (parent && !container)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "The parent container tag %s could not be located.", containerTag.c_str());
    if (!can_hold_children(*object))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "The object %d cannot hold the children it carries.", object->get_id());
    take_object(object, parent, container, containerTag, memberTag, specId, id);
    object->on_add();
    if (!operation.empty()) {
        int result = complete_operation(operation);
        // The object is in the tree and the database's; the caller must not free it.
        if (iszbwarn(result))
            return ZBErrC_okFailed;
    }
    return ZBErrC_ok;
}

void ZBDatabase::take_object(ZBDBObject* object, ZBDBObject* parent, ZBDBContainerBase* container,
                             const std::string& containerTag, const std::string& memberTag, int specId, int id)
{
    if (id < 0)
        id = object->get_id();
    if (id < 0 || m_object.find(id) || id == get_id())
        id = allocate_id();
    else if (id >= m_uniqueId)
        m_uniqueId = id + 1;
    object->set_id(id, ZBDateUtils::now(), true);
    m_object.add(id, object);
    if (specId >= 0)
        object->set_specid(specId);
    object->set_parent(parent, containerTag, memberTag, this);
    if (container) {
        container->add_object(object);
        if (ZBDBContainerBase* members = parent->get_or_make_container(C_DatabaseAllTag + memberTag))
            members->add_object(object);
        parent->mark_changed(ZBLOC, true);
    }
    object->mark_changed(ZBLOC, true);
    // Children carried by the object come into the database with it.
    while (ZBDBObject* child = object->extract_managed_child()) {
        const std::string childTag =
            child->get_obj_container_tag().empty() ? C_DefaultChildName : child->get_obj_container_tag();
        take_object(child, object, object->get_or_make_container(childTag), childTag, child->get_member_tag(),
                    child->get_specid(), child->get_id());
        child->on_add();
    }
}

int ZBDatabase::extract_object(int id, ZBDBObject*& out, bool)
{
    out = nullptr;
    int result = extract_tree(id, &out);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    resolve_containers();
    update_vars(-1, true);
    return ZBErrC_ok;
}

int ZBDatabase::extract_tree(int id, ZBDBObject** out)
{
    if (out)
        *out = nullptr;
    ZBDBObject* root = m_object.find(id);
    if (!root)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not delete - Object ID %d not found.", id);

    // The live children of every object, by parent id, in the order of
    // m_object: one pass over the ids instead of one per object taken out.
    int maxId = 0;
    for (const ZBDBObject* object : m_object)
        maxId = std::max(maxId, std::max(object->get_id(), object->get_parent_id()));
    std::vector<int> first(size_t(maxId) + 2, 0);
    for (const ZBDBObject* object : m_object)
        if (object->get_parent_id() >= 0 && !object->is_deleted())
            ++first[size_t(object->get_parent_id()) + 1];
    for (size_t i = 1; i < first.size(); ++i)
        first[i] += first[i - 1];
    std::vector<ZBDBObject*> children(size_t(first.back()));
    {
        std::vector<int> next(first.begin(), first.end() - 1);
        for (ZBDBObject* object : m_object)
            if (object->get_parent_id() >= 0 && !object->is_deleted())
                children[size_t(next[size_t(object->get_parent_id())]++)] = object;
    }

    // The subtree, breadth first, each with the position of its parent; an
    // object seen twice (a cycle in a damaged file) is taken once.
    std::vector<ZBDBObject*> tree{root};
    std::vector<int> parentAt{-1};
    std::vector<char> seen(size_t(maxId) + 1, 0);
    if (id >= 0)
        seen[size_t(id)] = 1;
    for (size_t at = 0; at < tree.size(); ++at) {
        const int objectId = tree[at]->get_id();
        if (objectId < 0)
            continue;
        for (int i = first[size_t(objectId)]; i < first[size_t(objectId) + 1]; ++i) {
            ZBDBObject* child = children[size_t(i)];
            if (child->get_id() >= 0 && seen[size_t(child->get_id())]++)
                continue;
            tree.push_back(child);
            parentAt.push_back(int(at));
        }
    }

    // Nothing is changed while any of them is being edited elsewhere.
    for (ZBDBObject* object : tree)
        if (object->is_locked())
            return object->delete_locked(-1);

    if (out) {
        std::vector<ZBDBObject*> copies(tree.size(), nullptr);
        for (size_t i = 0; i < tree.size(); ++i) {
            ZBDBObject* copy = dynamic_cast<ZBDBObject*>(tree[i]->clone_class());
            if (!copy) {
                delete copies[0];
                return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not duplicate this object.");
            }
            // A copy is detached: no parent, and clearing it is not a change of anyone's.
            if (copy->get_parent_id() >= 0) {
                copy->set_systemchange();
                copy->set_parent(nullptr, tree[i]->get_obj_container_tag(), tree[i]->get_member_tag(), nullptr);
            }
            copy->set_parent_ptr(nullptr, nullptr);
            copies[i] = copy;
            if (i > 0)
                copies[size_t(parentAt[i])]->add_managed_child(copy);
        }
        *out = copies[0];
    }

    if (ZBDBObject* parent = get_object_by_id(root->get_parent_id()))
        parent->mark_changed(ZBLOC, true);
    mark_changed(ZBLOC, true);
    for (ZBDBObject* object : tree)
        if (iszbwarn(object->delete_locked(-1))) {
            if (out) {
                delete *out;
                *out = nullptr;
            }
            return zbpass(ZBLOC);
        }
    mark_db_structure_change(*root);
    return ZBErrC_ok;
}

int ZBDatabase::delete_object(int id, const std::string& operation)
{
    int result = extract_tree(id, nullptr);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    resolve_containers();
    update_vars(-1, true);
    return complete_operation(operation);
}

int ZBDatabase::clone_object(int id, ZBDBObject*& out) const
{
    out = nullptr;
    ZBDBObject* object = get_object_by_id(id);
    if (!object)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find object ID %d.", id);
    out = dynamic_cast<ZBDBObject*>(object->clone_class());
    return out ? ZBErrC_ok : zbpass(ZBLOC);
}

int ZBDatabase::reparent(ZBDBObject* object, ZBDBObject* parent, const std::string& tag)
{
    if (!object || !parent)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    if (object == parent || is_ancestor(parent->get_id(), object->get_id()))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "An object cannot be moved into itself.");
    object->set_parent(parent, tag, object->get_member_tag(), this);
    return resolve_containers();
}

int ZBDatabase::resolve_containers()
{
    clear_containers();
    // Parent pointers are set again below, only for objects found in the
    // tree, so a set pointer means "already placed" while the pass runs.
    for (ZBDBObject* object : m_object) {
        object->clear_containers();
        object->set_parent_ptr(nullptr, this);
    }
    // An object is in the tree when its chain of parents reaches the top; one
    // whose chain meets a missing or deleted object, or runs round in a circle
    // (found by a walk longer than there are objects), is an orphan. Parents
    // mostly come before their children, so the walk mostly stops at once at
    // a parent placed already.
    // direct gets the object's own parent.
    auto in_tree = [this](const ZBDBObject* object, ZBDBObject*& direct) {
        direct = nullptr;
        for (int steps = 0; steps <= m_object.size(); ++steps) {
            const int parentId = object->get_parent_id();
            if (parentId < 0)
                return true;
            ZBDBObject* parent = get_object_by_id(parentId);
            if (steps == 0)
                direct = parent;
            if (parent == this)
                return true;
            if (!parent || parent->is_deleted())
                return false;
            if (parent->get_parent())
                return true;
            object = parent;
        }
        return false;
    };
    for (ZBDBObject* object : m_object) {
        const int parentId = object->get_parent_id();
        if (parentId < 0 || object->is_deleted())
            continue;
        ZBDBObject* parent = nullptr;
        if (!in_tree(object, parent)) {
            // An orphan, and every object below it, leaves the tree as a
            // deleted object with a fresh modify time: it stays in the file as
            // a tombstone for the week that other copies need to see it go,
            // rather than vanishing at the first save because its own times
            // were old.
            object->set_state(ZBDBObject::E_Deleted);
            continue;
        }
        if (ZBDBContainerBase* container = parent->get_or_make_container(object->get_obj_container_tag()))
            container->add_object(object);
        if (ZBDBContainerBase* members = parent->get_or_make_container(C_DatabaseAllTag + object->get_member_tag()))
            members->add_object(object);
        object->set_parent_ptr(parent, this);
    }
    containers_resolved();
    m_isResolved = true;
    return ZBErrC_ok;
}

int ZBDatabase::update_vars(int id, bool mark)
{
    auto update = [mark](ZBDBObject* object) {
        if (object->get_nvars() == 0)
            return;
        std::vector<std::string> before;
        if (mark)
            for (int i = 0; i < object->get_nvars(); ++i)
                before.push_back(object->var_to_string(i));
        object->update_vars();
        if (!mark)
            return;
        bool changed = int(before.size()) != object->get_nvars();
        for (int i = 0; !changed && i < object->get_nvars(); ++i)
            changed = before[size_t(i)] != object->var_to_string(i);
        if (changed)
            object->mark_changed(ZBLOC, true);
    };
    if (id >= 0) {
        ZBDBObject* object = get_object_by_id(id);
        if (!object)
            return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find object ID %d.", id);
        update(object);
        return ZBErrC_ok;
    }
    for (ZBDBObject* object : m_object)
        if (!object->is_deleted())
            update(object);
    return ZBErrC_ok;
}

// ---------------------------------------------------------------- editing and undo

int ZBDatabase::edit_object(int id, bool created, int lockId)
{
    if (!m_isLoaded)
        return zberror(ZBErrC_DatabaseNotLoaded, ZBLOC, "Database file %s not loaded.", m_completeFile.c_str());
    ZBDBObject* object = get_object_by_id(id);
    if (!object)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not edit - Object ID %d not found.", id);
    if (iszbwarn(object->edit(lockId, created)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDatabase::commit_object(int id, const std::string& operation)
{
    ZBDBObject* object = get_object_by_id(id);
    if (!object)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not edit - Object ID %d not found.", id);
    update_vars(id, true);
    object->run_trigger_script(ZBDBObject::C_EditTrigger);
    if (iszbwarn(object->commit()))
        return zbpass(ZBLOC);
    if (!operation.empty() && iszbwarn(complete_operation(operation)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDatabase::revert_object(int id)
{
    ZBDBObject* object = get_object_by_id(id);
    if (!object)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not edit - Object ID %d not found.", id);
    const bool created = object->get_created();
    if (iszbwarn(object->revert()))
        return zbpass(ZBLOC);
    // An object made for this edit goes again; nothing of it reaches the log.
    if (created && iszbwarn(delete_object(id, std::string())))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

bool ZBDatabase::object_edited() const
{
    for (const ZBDBObject* object : m_object)
        if (object->is_edited())
            return true;
    return false;
}

void ZBDatabase::note_changed(int id)
{
    if (m_changedOverflow)
        return;
    // A session that never writes its log (read-only, in memory, a background
    // copy) would let the list grow without end: past a limit, a partial write
    // looks at every object instead.
    if (m_changedIds.size() > size_t(m_object.size()) * 2 + 4096) {
        m_changedIds.clear();
        m_changedOverflow = true;
        return;
    }
    m_changedIds.push_back(id);
}

bool ZBDatabase::partial_pending() const
{
    if (has_changed_since(m_lastPartialWrite))
        return true;
    if (m_changedOverflow)
        return db_has_changed_since(m_lastPartialWrite, false);
    for (int id : m_changedIds) {
        const ZBDBObject* object = m_object.find(id);
        if (object && object->has_changed_since(m_lastPartialWrite))
            return true;
    }
    return false;
}

int ZBDatabase::complete_operation(const std::string& operation)
{
    if (!m_isLoaded)
        return zberror(ZBErrC_DatabaseNotLoaded, ZBLOC, "Database file %s not loaded.", m_completeFile.c_str());
    if (m_readOnly || !partial_pending())
        return ZBErrC_ok;
    if (iszbwarn(save_partial(operation)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDatabase::save_partial(const std::string& operation)
{
    if (!m_isLoaded)
        return zberror(ZBErrC_DatabaseNotLoaded, ZBLOC, "Database file %s not loaded.", m_completeFile.c_str());
    if (m_readOnly)
        return zberror(ZBErrC_DatabaseReadOnly, ZBLOC, "This database was opened read-only.");
    if (m_completeFile.empty())
        return ZBErrC_ok;
    if (operation.empty() && !partial_pending())
        return ZBErrC_ok;
    // The base goes down before the first change, so that undo always has a
    // state to start from.
    if (iszbwarn(ensure_base()))
        return zbpass(ZBLOC);
    if (m_baseFile.empty())
        return ZBErrC_ok;
    make_parent(m_partialFile);
    struct stat info;
    const bool head = m_firstPartialWrite || ::stat(m_partialFile.c_str(), &info) != 0 || info.st_size == 0;
    std::ostringstream text;
    if (iszbwarn(write(text, m_lastPartialWrite, head, operation, -1)))
        return zbpass(ZBLOC);
    // One append, so that a crash leaves the block whole or cut at its end.
    if (iszbwarn(zb_append_file(m_partialFile, text.str())))
        return zbpass(ZBLOC);
    m_lastPartialWrite = get_counter(true);
    m_firstPartialWrite = false;
    m_changedIds.clear();
    m_changedOverflow = false;
    return ZBErrC_ok;
}

int ZBDatabase::read_partial_text(std::string& text, bool skipSaved, bool cutTorn)
{
    const int errors = get_zberror().get_nerrors();
    std::istringstream in(text);
    int result = read(in, true, skipSaved);
    if (result == ZBErrC_okDelete || !iszbwarn(result))
        return result;
    // A block cut short by a crash is the last in the file: without it the
    // rest must read. Damage anywhere else is damage.
    size_t cut = text.rfind("\n!" + std::string(C_DlmtTransaction) + "!");
    if (cut == std::string::npos) {
        std::string message = get_zberror().top() ? get_zberror().top()->get_message() : std::string();
        pop_errors(errors);
        return zbwarnuser(ZBErrC_CorruptPartial, ZBLOC, "The file %s is damaged: %s", m_partialFile.c_str(),
                          message.c_str());
    }
    const std::string message = get_zberror().top() ? get_zberror().top()->get_message() : std::string();
    pop_errors(errors);
    std::istringstream whole(text.substr(0, cut + 1));
    if (iszbwarn(read(whole, true, skipSaved))) {
        pop_errors(errors);
        return zbwarnuser(ZBErrC_CorruptPartial, ZBLOC, "The file %s is damaged: %s", m_partialFile.c_str(),
                          message.c_str());
    }
    text.resize(cut + 1);
    if (cutTorn)
        zb_truncate_file(m_partialFile, (long long)text.size());
    return ZBErrC_ok;
}

int ZBDatabase::load_partial(bool skipSaved)
{
    if (!exists(m_partialFile))
        return ZBErrC_ok;
    if (iszbwarn(m_dbIndex.load()))
        return zbpass(ZBLOC);
    std::string text;
    if (!read_whole(m_partialFile, text))
        return zbwarnuser(ZBErrC_CorruptPartial, ZBLOC, "Could not open the file %s", m_partialFile.c_str());
    int result = read_partial_text(text, skipSaved, true);
    if (result == ZBErrC_okDelete) {
        // The file had no head: nothing in it can be replayed.
        remove_file(m_partialFile);
    } else if (iszbwarn(result)) {
        return zbpass(ZBLOC);
    }
    mark_changed(ZBLOC, false);
    return ZBErrC_ok;
}

int ZBDatabase::replace_from_text(const std::string& text, const std::string& fileName)
{
    // Read first into a second database: a damaged base or log leaves this one as it was.
    std::string partial;
    const bool hasLog = exists(m_partialFile);
    if (hasLog && !read_whole(m_partialFile, partial))
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", m_partialFile.c_str());
    {
        std::unique_ptr<ZBDatabase> check(create_verification_db(m_appType));
        if (!check)
            return zberror(ZBErrC_NullPointer, ZBLOC, "Could not make a database to read %s.", fileName.c_str());
        check->m_partialFile = m_partialFile;
        check->m_dbIndex.initialise(m_indexFile);
        std::istringstream in(text);
        int result = check->read(in, false, false);
        if (!iszbwarn(result) && hasLog && iszbwarn(check->m_dbIndex.load()))
            result = zberrorvalue();
        if (!iszbwarn(result) && hasLog) {
            std::string copy = partial;
            result = check->read_partial_text(copy, false, false);
        }
        check->m_partialFile.clear();
        if (iszbwarn(result) && result != ZBErrC_okDelete) {
            zbuserinfo_set("%s contains invalid data.", fileName.c_str());
            return zbpass(ZBLOC);
        }
    }
    const int uniqueId = m_uniqueId;
    clear_containers();
    for (ZBDBObject* object : m_object)
        object->clear_containers();
    m_object.clear();
    std::istringstream in(text);
    if (iszbwarn(read(in, false, false)))
        return zbpass(ZBLOC);
    if (hasLog) {
        int result = read_partial_text(partial, false, true);
        if (iszbwarn(result) && result != ZBErrC_okDelete)
            return zbpass(ZBLOC);
    }
    if (uniqueId > m_uniqueId)
        m_uniqueId = uniqueId;
    resolve_containers();
    parse_objectspecs(true);
    return ZBErrC_ok;
}

int ZBDatabase::load_base()
{
    if (iszbwarn(save_partial(std::string())))
        return zbpass(ZBLOC);
    std::string text;
    if (m_baseFile.empty() || !read_whole(m_baseFile, text))
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s",
                          m_baseFile.empty() ? (m_completeFile + C_BaseExtension).c_str() : m_baseFile.c_str());
    std::unordered_map<int, long> updates;
    updates.reserve(size_t(m_object.size()));
    for (const ZBDBObject* object : m_object)
        updates[object->get_id()] = object->get_last_update();
    const long ownUpdate = get_last_update();
    if (iszbwarn(replace_from_text(text, m_baseFile)))
        return zbpass(ZBLOC);
    // Objects that the step did not touch count as unchanged since the log
    // last saw them; those it brought back keep their new count.
    for (ZBDBObject* object : m_object) {
        auto found = updates.find(object->get_id());
        if (found != updates.end())
            object->restore_update(found->second);
    }
    restore_update(ownUpdate);
    m_changedIds.clear();
    m_changedOverflow = false;
    return ZBErrC_ok;
}

int ZBDatabase::discard_changes()
{
    if (!m_isLoaded || m_readOnly || m_completeFile.empty() || !partial_pending())
        return ZBErrC_ok;
    std::string text;
    if (iszbwarn(ensure_base()))
        return zbpass(ZBLOC);
    if (!read_whole(m_baseFile, text))
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", m_baseFile.c_str());
    if (iszbwarn(replace_from_text(text, m_baseFile)))
        return zbpass(ZBLOC);
    after_replay();
    return ZBErrC_ok;
}

int ZBDatabase::undo()
{
    if (!m_dbIndex.can_undo())
        return ZBErrC_ok;
    if (iszbwarn(save_partial(std::string())) || iszbwarn(m_dbIndex.undo()))
        return zbpass(ZBLOC);
    if (iszbwarn(load_base())) {
        // The database is as it was, and so is the log: the step stays done,
        // and a new operation must not abandon it.
        const int errors = get_zberror().get_nerrors();
        m_dbIndex.redo();
        pop_errors(errors);
        return zbpass(ZBLOC);
    }
    after_replay();
    return ZBErrC_ok;
}

int ZBDatabase::redo()
{
    if (!m_dbIndex.can_redo())
        return ZBErrC_ok;
    if (iszbwarn(save_partial(std::string())) || iszbwarn(m_dbIndex.redo()))
        return zbpass(ZBLOC);
    if (iszbwarn(load_base())) {
        const int errors = get_zberror().get_nerrors();
        m_dbIndex.undo();
        pop_errors(errors);
        return zbpass(ZBLOC);
    }
    after_replay();
    return ZBErrC_ok;
}

// The database differs from its file now, but nothing new is waiting for the
// log: the next operation that changes nothing must not end the redo chain.
void ZBDatabase::after_replay()
{
    mark_changed(ZBLOC, false);
    m_lastPartialWrite = get_counter(false);
    m_changedIds.clear();
    m_changedOverflow = false;
}

// ---------------------------------------------------------------- background thread

int ZBDatabase::start_recalc_thread(E_ThreadPriority priority)
{
    if (iszbwarn(start_thread(priority)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDatabase::stop_recalc_thread()
{
    stop_thread();
}

void ZBDatabase::signal_recalc_complete()
{
    ZBMutexLocker lock(m_recalcMutex);
    m_recalcComplete = true;
}

bool ZBDatabase::recalc_complete()
{
    ZBMutexLocker lock(m_recalcMutex);
    bool complete = m_recalcComplete;
    m_recalcComplete = false;
    return complete;
}

void ZBDatabase::pause_background(bool pause)
{
    {
        ZBMutexLocker lock(m_pauseMutex);
        m_pauseBackground = pause;
    }
    if (!pause)
        signal_thread();
}

bool ZBDatabase::is_background_paused() const
{
    ZBMutexLocker lock(m_pauseMutex);
    return m_pauseBackground;
}

// ---------------------------------------------------------------- specs


namespace {

// The line of the first statement of text that matches pattern, counted from 1
// and moved by offset; the spec's own first line when none matches.
int line_of(const std::string& text, const std::string& pattern, int offset)
{
    std::smatch match;
    const std::regex re(pattern);
    if (!std::regex_search(text, match, re))
        return offset + 1;
    return offset + 1 + int(std::count(text.begin(), text.begin() + match.position(0), '\n'));
}

std::string trim(const std::string& text)
{
    const size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string::npos)
        return std::string();
    const size_t end = text.find_last_not_of(" \t\r\n");
    return text.substr(start, end - start + 1);
}

std::string spec_source(const ZBObjectSpec& spec)
{
    return spec.get_file_name().empty() ? spec.get_name() : spec.get_file_name();
}

int spec_offset(const ZBObjectSpec& spec)
{
    return spec.get_file_name().empty() || spec.get_file_line() < 1 ? 0 : spec.get_file_line() - 1;
}

} // namespace

ZBObjectSpec* ZBDatabase::get_objectspec_by_index(int index) const
{
    return index >= 0 && index < m_objectSpec.size() ? m_objectSpec.get(index) : nullptr;
}

ZBObjectSpec* ZBDatabase::get_objectspec_by_name(const std::string& name) const
{
    for (int i = 0; i < m_objectSpec.size(); ++i)
        if (m_objectSpec.get(i)->get_name() == name)
            return m_objectSpec.get(i);
    return nullptr;
}

ZBObjectSpec* ZBDatabase::get_objectspec_by_id(int id) const
{
    return id < 0 ? nullptr : m_objectSpec.find_id(id);
}

int ZBDatabase::add_objectspec(ZBObjectSpec* spec, const std::string& operation)
{
    if (!spec)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    if (!ZBDBParser::is_valid_name(spec->get_name())) {
        const std::string name = spec->get_name();
        delete spec;
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                          "The \"%s\" spec name is invalid - It should only contain letters, numbers or the \"_\" character",
                          name.c_str());
    }
    if (get_objectspec_by_name(spec->get_name())) {
        const std::string name = spec->get_name();
        delete spec;
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A spec named %s already exists.", name.c_str());
    }
    int result = add_object(spec, this, C_SpecTag, std::string(), -1, std::string());
    if (iszbwarn(result)) {
        delete spec;
        return zbpass(ZBLOC);
    }
    result = parse_objectspec(*spec);
    if (!operation.empty())
        complete_operation(operation);
    return result;
}

int ZBDatabase::add_objectspec(const std::string& name, const std::string& text, int* id, const std::string& operation)
{
    ZBObjectSpec* spec = new ZBObjectSpec(name, text);
    int result = add_objectspec(spec, operation);
    if (id)
        *id = get_objectspec_by_name(name) ? get_objectspec_by_name(name)->get_id() : -1;
    return result;
}

int ZBDatabase::set_spec_source(const std::string& name, const std::string& text, bool parse)
{
    ZBObjectSpec* spec = get_objectspec_by_name(name);
    if (!spec) {
        spec = new ZBObjectSpec(name, text);
        if (!parse) {
            if (!ZBDBParser::is_valid_name(name)) {
                delete spec;
                return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                                  "The \"%s\" spec name is invalid - It should only contain letters, numbers or the \"_\" character",
                                  name.c_str());
            }
            int result = add_object(spec, this, C_SpecTag, std::string(), -1, std::string());
            if (iszbwarn(result))
                delete spec;
            return result;
        }
        int result = add_objectspec(spec);
        if (iszbwarn(result))
            return result;
        return apply_objectspecs();
    }
    if (spec->get_text() != text) {
        spec->set_text(text);
        spec->mark_changed(ZBLOC, true);
    }
    if (!parse)
        return ZBErrC_ok;
    int result = parse_objectspecs(true);
    return iszbwarn(result) ? result : ZBErrC_ok;
}

int ZBDatabase::parse_objectspec(ZBObjectSpec& spec, int* line)
{
    if (line)
        *line = -1;
    const std::string source = spec_source(spec);
    const int offset = spec_offset(spec);
    if (std::find(m_specParsing.begin(), m_specParsing.end(), spec.get_id()) != m_specParsing.end()) {
        const int at = line_of(spec.get_text(), "\\binherits\\b", offset);
        if (line)
            *line = at;
        spec.set_parsed(false);
        return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC,
                          "Spec Inheritance Error: %s:%d: error The spec %s inherits from itself.", source.c_str(), at,
                          spec.get_name().c_str());
    }
    m_specParsing.push_back(spec.get_id());
    struct Pop {
        std::vector<int>& stack;
        ~Pop() { stack.pop_back(); }
    } pop{m_specParsing};

    ZBObjectSpec trial(spec);
    int result = trial.parse(line);
    if (iszbwarn(result)) {
        spec.set_parsed(false);
        return result;
    }
    if (iszbwarn(add_sysquants(trial))) {
        spec.set_parsed(false);
        return zbpass(ZBLOC);
    }
    for (const std::string& name : std::vector<std::string>(trial.get_inherited())) {
        const int at = line_of(spec.get_text(), "\\binherits\\s+" + name + "\\b", offset);
        const std::string prefix = zb_sprintf("%s:%d:", source.c_str(), at);
        ZBObjectSpec* base = get_objectspec_by_name(name);
        if (!base || base == &spec) {
            if (line)
                *line = at;
            spec.set_parsed(false);
            if (base)
                return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC,
                                  "Spec Inheritance Error: %s error The spec %s inherits from itself.", prefix.c_str(),
                                  name.c_str());
            return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC,
                              "Spec Inheritance Error: %s Could not find inherited spec name %s.", prefix.c_str(),
                              name.c_str());
        }
        if (iszbwarn(parse_objectspec(*base))) {
            // The base's own message stays below this one on the error stack.
            if (line)
                *line = at;
            spec.set_parsed(false);
            return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Spec Error: %s Error in inherited spec %s.",
                              prefix.c_str(), name.c_str());
        }
        trial.apply_inheritance(*base);
    }
    for (int i = 0; i < trial.get_nchildren(); ++i) {
        ZBObjectSpecChild* child = trial.get_child_by_index(i);
        ZBObjectSpec* childSpec = get_objectspec_by_name(child->m_specName);
        if (!childSpec) {
            if (line)
                *line = child->m_lineNo;
            spec.set_parsed(false);
            return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Child Spec Error: %s:%d Could not find child spec name %s.",
                              source.c_str(), child->m_lineNo, child->m_specName.c_str());
        }
        child->m_specId = childSpec->get_id();
        child->m_defaultSpecId = -1;
        if (!child->m_defaultSpecName.empty()) {
            ZBObjectSpec* defaultSpec = get_objectspec_by_name(child->m_defaultSpecName);
            if (!defaultSpec) {
                if (line)
                    *line = child->m_lineNo;
                spec.set_parsed(false);
                return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC,
                                  "Child Default Spec Error: %s:%d Could not find child spec name %s.", source.c_str(),
                                  child->m_lineNo, child->m_defaultSpecName.c_str());
            }
            child->m_defaultSpecId = defaultSpec->get_id();
        }
    }
    spec.take_parsed(trial);
    return ZBErrC_ok;
}

int ZBDatabase::parse_objectspecs(bool apply)
{
    m_specErrors.clear();
    int first = ZBErrC_ok;
    for (int i = 0; i < m_objectSpec.size(); ++i) {
        ZBObjectSpec* spec = m_objectSpec.get(i);
        if (spec->is_deleted())
            continue;
        int result = parse_objectspec(*spec);
        if (iszbwarn(result)) {
            const ZBErrDetails* top = get_zberror().top();
            m_specErrors.push_back(top ? top->get_details(ZBErrAsp_User) : std::string("Spec ") + spec->get_name());
            if (!iszbwarn(first))
                first = result;
        }
    }
    if (apply)
        apply_objectspecs();
    return first;
}

int ZBDatabase::create_default_spec()
{
    const std::string tail = std::string(C_DefaultChildName) + "] = ${" + C_DefaultSpecName + "}[];\n";
    if (!get_objectspec_by_name(C_DefaultSpecName)) {
        std::unique_ptr<ZBObjectSpec> spec(
            new ZBObjectSpec(C_DefaultSpecName, "# Default objects can also have default objects as children\n$[" + tail));
        if (iszbwarn(add_object(spec.get(), this, C_SpecTag, std::string(), -1, std::string())))
            return zbpass(ZBLOC);
        spec.release();
    }
    if (!get_objectspec_by_name(C_TopLevelSpecName)) {
        std::unique_ptr<ZBObjectSpec> spec(
            new ZBObjectSpec(C_TopLevelSpecName, "# Allow Default objects at the top level of the database\n$[" + tail));
        if (iszbwarn(add_object(spec.get(), this, C_SpecTag, std::string(), -1, std::string())))
            return zbpass(ZBLOC);
        spec.release();
    }
    return parse_objectspecs(true);
}

int ZBDatabase::add_sysquants(ZBObjectSpec&)
{
    return ZBErrC_ok;
}

int ZBDatabase::apply_objectspecs()
{
    for (ZBDBObject* object : m_object) {
        if (object->get_specid() < 0 || object->is_deleted() || !object->uses_spec())
            continue;
        ZBObjectSpec* spec = get_objectspec_by_id(object->get_specid());
        if (spec && spec->is_parsed())
            object->apply_objectspec(*spec);
    }
    return ZBErrC_ok;
}

int ZBDatabase::apply_objectspec_to_db(ZBDBObject& object, int specId, bool update)
{
    ZBObjectSpec* spec = get_objectspec_by_id(specId);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find spec ID %d.", specId);
    if (spec->is_base_only())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The spec %s is only a base for other specs.", spec->get_name().c_str());
    if (!spec->is_parsed())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The spec %s has errors and cannot be applied.", spec->get_name().c_str());
    object.set_specid(specId);
    int result = object.apply_objectspec(*spec);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    if (update)
        object.mark_changed(ZBLOC, true);
    return ZBErrC_ok;
}

int ZBDatabase::edit_objectspec(int id, int lockId)
{
    ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not edit - Object ID %d not found.", id);
    int result = spec->edit(lockId, false);
    return iszbwarn(result) ? zbpass(ZBLOC) : ZBErrC_ok;
}

// A text that does not parse is not committed: the spec stays in edit with the
// user's text, so that it can be mended or reverted, and no object changes.
int ZBDatabase::commit_objectspec(int id, const std::string& operation, int* line)
{
    ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find spec ID %d.", id);
    int result = parse_objectspec(*spec, line);
    if (iszbwarn(result))
        return result;
    result = spec->commit();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    parse_objectspecs(false);
    for (ZBDBObject* object : m_object) {
        if (object->is_deleted() || object->get_specid() < 0 || !is_spec_derived_from(object->get_specid(), id))
            continue;
        ZBObjectSpec* own = get_objectspec_by_id(object->get_specid());
        if (own && own->is_parsed()) {
            object->apply_objectspec(*own);
            object->mark_changed(ZBLOC, true);
        }
    }
    if (!operation.empty())
        return complete_operation(operation);
    return ZBErrC_ok;
}

int ZBDatabase::revert_objectspec(int id)
{
    ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find spec ID %d.", id);
    int result = spec->revert();
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    spec->set_parsed(true);
    return ZBErrC_ok;
}

bool ZBDatabase::objectspec_in_use(int id) const
{
    for (const ZBDBObject* object : m_object)
        if (!object->is_deleted() && object->get_specid() == id)
            return true;
    return false;
}

bool ZBDatabase::objectspec_referenced(int id) const
{
    const ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return false;
    for (int i = 0; i < m_objectSpec.size(); ++i) {
        const ZBObjectSpec* other = m_objectSpec.get(i);
        if (other != spec && !other->is_deleted() && other->referenced(spec->get_name()))
            return true;
    }
    return false;
}

int ZBDatabase::delete_objectspec(int id, const std::string& operation)
{
    ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find spec ID %d.", id);
    if (objectspec_in_use(id))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The spec %s is used by objects and cannot be deleted.",
                          spec->get_name().c_str());
    if (objectspec_referenced(id))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "The spec %s is used by other specs and cannot be deleted.",
                          spec->get_name().c_str());
    return delete_object(id, operation);
}

int ZBDatabase::rename_spec(int id, const std::string& name)
{
    ZBObjectSpec* spec = get_objectspec_by_id(id);
    if (!spec)
        return zberror(ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find spec ID %d.", id);
    if (!ZBDBParser::is_valid_name(name))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                          "The \"%s\" spec name is invalid - It should only contain letters, numbers or the \"_\" character",
                          name.c_str());
    if (get_objectspec_by_name(name))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "A spec named %s already exists.", name.c_str());
    const std::string from = spec->get_name();
    for (int i = 0; i < m_objectSpec.size(); ++i) {
        ZBObjectSpec* other = m_objectSpec.get(i);
        if (other->referenced(from)) {
            other->handle_rename(from, name);
            other->mark_changed(ZBLOC, true);
        }
    }
    spec->set_name(name);
    spec->mark_changed(ZBLOC, true);
    return ZBErrC_ok;
}

bool ZBDatabase::is_spec_derived_from(int specId, int baseId) const
{
    std::vector<int> seen;
    std::vector<int> todo{specId};
    while (!todo.empty()) {
        const int id = todo.back();
        todo.pop_back();
        if (id == baseId)
            return true;
        if (std::find(seen.begin(), seen.end(), id) != seen.end())
            continue;
        seen.push_back(id);
        if (const ZBObjectSpec* spec = get_objectspec_by_id(id))
            for (const std::string& name : spec->get_inherited())
                if (const ZBObjectSpec* base = get_objectspec_by_name(name))
                    todo.push_back(base->get_id());
    }
    return false;
}

int ZBDatabase::get_var_values(const std::string& tag, std::vector<std::string>& out) const
{
    std::set<std::string> seen(out.begin(), out.end());
    for (const ZBDBObject* object : m_object) {
        if (object->is_deleted())
            continue;
        if (const ZBVariable* variable = object->get_var_by_tag(tag)) {
            const std::string value = trim(variable->get_value());
            if (!value.empty() && seen.insert(value).second)
                out.push_back(value);
        }
    }
    return ZBErrC_ok;
}

int ZBDatabase::get_ref_constraint_values(const std::string& param, std::vector<std::string>& out) const
{
    static const std::regex form("^\\s*\\$\\{\\s*(\\w+)\\s*\\}\\s*(\\w+(?::\\w+)?)\\s*$");
    std::smatch match;
    if (!std::regex_match(param, match, form)) {
        out.push_back("ERROR: REFERENCE should be followed by \"${SPEC} VARIABLE\"");
        return ZBErrC_ok;
    }
    const ZBObjectSpec* spec = get_objectspec_by_name(match[1].str());
    if (!spec) {
        out.push_back("Cannot find spec " + match[1].str());
        return ZBErrC_ok;
    }
    std::set<std::string> seen;
    const std::string tag = match[2].str();
    for (const ZBDBObject* object : m_object) {
        if (object->is_deleted() || object->get_specid() < 0 || !is_spec_derived_from(object->get_specid(), spec->get_id()))
            continue;
        if (const ZBVariable* variable = object->get_var_by_tag(tag)) {
            const std::string value = trim(variable->get_value());
            if (!value.empty() && seen.insert(value).second)
                out.push_back(value);
        }
    }
    return ZBErrC_ok;
}

int ZBDatabase::export_specs(std::ostream& out) const
{
    for (int i = 0; i < m_objectSpec.size(); ++i)
        if (!m_objectSpec.get(i)->is_deleted())
            m_objectSpec.get(i)->export_spec(out);
    return out ? ZBErrC_ok : zberror(ZBErrC_FileWrite, ZBLOC, "Could not write the specs.");
}

int ZBDatabase::export_specs(const std::string& fileName) const
{
    std::ofstream out(fileName, std::ios::binary | std::ios::trunc);
    if (!out)
        return zbwarnuser(ZBErrC_FileCreate, ZBLOC, "Could not create the file %s", fileName.c_str());
    int result = export_specs(out);
    out.close();
    if (!out)
        return zbwarnuser(ZBErrC_FileWrite, ZBLOC, "Could not write the file %s", fileName.c_str());
    return result;
}

// Definitions open with the separator line and "{NAME}" (a spec) or "[NAME]"
// (a query); a definition runs to the next separator or the end of the file.
// Everything is read before anything changes, so a bad file changes nothing.
int ZBDatabase::import_specs(std::istream& in, const std::string& fileName, std::vector<std::string>* names)
{
    struct Definition {
        std::string name;
        std::string text;
        int line;
        bool query;
    };
    std::vector<Definition> definitions;
    std::string line;
    int lineNo = 0;
    bool inside = false;
    std::set<std::string> seen;
    while (std::getline(in, line)) {
        ++lineNo;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.compare(0, ZBObjectSpec::C_ExportSpecSep.size(), ZBObjectSpec::C_ExportSpecSep) == 0) {
            const std::string rest = line.substr(ZBObjectSpec::C_ExportSpecSep.size());
            const bool query = !rest.empty() && rest[0] == '[';
            const char close = query ? ']' : '}';
            if (rest.empty() || (rest[0] != '{' && rest[0] != '[') || rest.back() != close)
                return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "(%s:%d): error: Unterminated spec \"%s\"",
                                  fileName.c_str(), lineNo, rest.c_str());
            const std::string name = trim(rest.substr(1, rest.size() - 2));
            if (name.empty())
                return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, query ? "(%s:%d): error: Empty query name."
                                                                       : "(%s:%d): error: Empty spec name.",
                                  fileName.c_str(), lineNo);
            if (!seen.insert((query ? "[" : "{") + name).second)
                return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "(%s:%d): error: Extra \"%s\" tag.", fileName.c_str(),
                                  lineNo, rest.c_str());
            definitions.push_back(Definition{name, std::string(), lineNo + 1, query});
            inside = true;
            continue;
        }
        if (!inside) {
            if (trim(line).empty())
                continue;
            return zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "(%s:%d): error: Unknown line \"%s\" outside spec definition.",
                              fileName.c_str(), lineNo, line.c_str());
        }
        definitions.back().text += line + "\n";
    }
    for (const Definition& definition : definitions)
        if (!definition.query && !ZBDBParser::is_valid_name(definition.name))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC,
                              "The \"%s\" spec name is invalid - It should only contain letters, numbers or the \"_\" character",
                              definition.name.c_str());
    for (const Definition& definition : definitions) {
        if (definition.query)
            continue; // Queries are read by the query machinery from the same file.
        if (names)
            names->push_back(definition.name);
        ZBObjectSpec* spec = get_objectspec_by_name(definition.name);
        if (!spec) {
            spec = new ZBObjectSpec(definition.name, definition.text);
            int result = add_object(spec, this, C_SpecTag, std::string(), -1, std::string());
            if (iszbwarn(result)) {
                delete spec;
                return zbpass(ZBLOC);
            }
        } else {
            spec->set_text(definition.text);
            spec->mark_changed(ZBLOC, true);
        }
        spec->set_file_info(fileName, definition.line);
    }
    return parse_objectspecs(true);
}

int ZBDatabase::import_specs(const std::string& fileName, std::vector<std::string>* names)
{
    std::ifstream in(fileName, std::ios::binary);
    if (!in)
        return zbwarnuser(ZBErrC_FileOpen, ZBLOC, "Could not open the file %s", fileName.c_str());
    return import_specs(in, fileName, names);
}

} // namespace Tervalon
