#pragma once

#include "LibDatabase/db/zbdbchecker.h"
#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibDatabase/db/zbdbindex.h"
#include "LibDatabase/db/zbdbtransaction.h"
#include "LibDatabase/db/zbexternaldb.h"
#include "LibComms/thread/zbthread.h"
#include "LibCore/ptrarray/zbptrarrayindex.h"

#include <QMutex>

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The whole in-memory database: every object by id, and the code that reads
// and writes them to one text file. There is no paging: a database lives in
// memory from load to unload, and a full save rewrites the file. The database
// is itself the root object of its tree. One background thread per database
// runs long calculations (background_recalculate).
class ZBDatabase : public virtual ZBDBObject, public ZBThread {
public:
    enum E_RecalcLevel { E_RecalcNone = 0, E_RecalcQuick = 1, E_RecalcFull = 2 };

    static const char* const C_DlmtDBIdentifier;
    static const char* const C_DlmtVersion;
    static const char* const C_DlmtTransaction;
    static const char* const C_ObjectStart;
    static const char* const C_IdMgr;
    static const char* const C_DatabaseService;
    static const char* const C_DatabasePartDirParam;
    static const char* const C_DatabasePartDirLabel;
    static const std::string C_DatabaseAllTag;
    static const char* const C_SpecTag;
    static const char* const C_DefaultSpecName;
    static const char* const C_TopLevelSpecName;
    static const char* const C_DefaultChildName;
    static const char* const C_QueryTag;
    static const char* const C_NoteTag;
    static const char* const C_SystemReference;
    static const int C_LatestFileVersion = 0;
    // The family of files around a data file F.
    static const char* const C_NewExtension;     // F being written, beside F
    static const char* const C_OldExtension;     // the previous F during a save, beside F
    static const char* const C_PartialExtension; // the log of this session's operations
    static const char* const C_BaseExtension;    // the state the log applies to
    static const char* const C_IndexExtension;   // the statuses of the logged transactions
    static const char* const C_LastKnownGood;    // the last file that passed verification
    static const char* const C_SnapshotKeep;     // the state before a snapshot was restored
    static const char* const C_BakExtension;     // a corrupt F set aside
    // Seconds between two rotations of the backups.
    static const int C_BackupInterval = 7200;

    static int ZBErrC_NotADatabase;
    static int ZBErrC_InvalidDatabaseVersion;
    static int ZBErrC_NewerAppVersion;
    static int ZBErrC_ObjectIdNotFound;
    static int ZBErrC_CorruptDatabase;
    static int ZBErrC_CorruptPartial;
    static int ZBErrC_Intermediate;
    static int ZBErrC_DatabaseNotLoaded;
    static int ZBErrC_DatabaseReadOnly;
    static int ZBErrC_DatabaseAlreadyLoaded;
    static int ZBErrC_WrongAppType;

    ZBDatabase();
    ~ZBDatabase() override;
    ZBDatabase(const ZBDatabase&) = delete;
    ZBDatabase& operator=(const ZBDatabase&) = delete;

    int func() override;
    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);

    virtual int create_object(ZBDBObject* parent, const std::string& tag, int specId, ZBDBObject** out);
    virtual int change_id(ZBDBObject& object, int id);
    virtual int current_appfileversion() const { return 0; }
    virtual int upgrade_appfileversion();
    virtual int update_feature(int count);
    virtual int initialise(bool created);
    virtual bool has_user_data() const;
    virtual bool use_save_validation() const { return false; }
    virtual int recalculate(E_RecalcLevel level);
    virtual void containers_resolved() {}
    virtual void background_recalculate() {}

    // Lifecycle.
    int load(const std::string& name, bool readOnly, bool create, const std::string& templateFile, bool keepPartial,
             bool forceClean, bool usePartial, bool noClean);
    int load(const std::string& name, bool create, const std::string& templateFile = std::string(),
             bool keepPartial = false, bool forceClean = false, bool usePartial = true);
    // A read-only load: nothing on disk is touched.
    int read(const std::string& name, bool keepPartial = false, bool forceClean = false);
    int create(const std::string& name, bool cleanOld);
    // Writes the whole database to its file, through a temporary file that
    // replaces the old one only when it is complete.
    int save(bool push, bool includeManual, bool verify);
    int save_as(const std::string& name, bool copyFile);
    int unload();
    // Loads another file in this one's place, keeping this one's name (a merge
    // where the other copy won).
    int replace_file(const std::string& name);
    // Loads the file again after a load failed: F is set aside as ".bak" and the
    // last verified copy (or the newest backup) takes its place. okNotHandled
    // when there is nothing to restore from.
    int handle_load_fail(const std::string& name);
    // Reads a file in a second database of this class, read-only; on success it
    // becomes the last known good copy.
    int verify(const std::string& fileName, const std::string& appType) const;
    virtual ZBDatabase* create_verification_db(const std::string& appType) const;
    // The session's log.
    int save_partial(const std::string& operation);
    int load_partial(bool skipSaved);
    int load_base();
    static bool has_partial(const std::string& name);
    static int remove_partial(const std::string& name);
    bool has_partial() const { return has_partial(m_completeFile); }
    // Backups and snapshots.
    void set_backup_count(int count);
    int get_backup_count() const { return m_backupCount; }
    void set_autosave(bool on) { m_autosave = on; }
    bool get_autosave() const { return m_autosave; }
    int save_snapshot(bool includeManual);
    int restore_snapshot(const std::string& file, std::string& keep);
    // The rotated backups of a data file that exist, newest first.
    static std::vector<std::string> list_snapshots(const std::string& name);
    // Writes the whole database to another file, which is flushed to the disk.
    int export_db(const std::string& fileName);
    // Takes the data file as it now is on disk for the one this session
    // loaded, so that a save may overwrite a change another program made.
    void accept_file_change();
    // Whether the data file on disk is no longer the one loaded or last saved.
    bool file_changed_on_disk() const;
    int read(std::istream& in, bool partial, bool skipSaved);
    int write(std::ostream& out, long since, bool withHead, const std::string& operation, int version);
    bool is_loaded() const { return m_isLoaded; }
    bool is_read_only() const { return m_readOnly; }
    const std::string& get_filename() const { return m_completeFile; }
    void set_filename(const std::string& name);
    const std::string& get_app_type() const { return m_appType; }
    void set_app_type(const std::string& type) { m_appType = type; }
    void set_expected_app_type(const std::string& type) { m_expectedAppType = type; }
    int get_loadid() const { return m_loadID; }
    void set_loadid(int id) { m_loadID = id; }
    int get_app_file_version() const { return m_appFileVersion; }
    int get_database_file_version() const { return m_databaseFileVersion; }
    const std::string& get_app_release() const { return m_appRelease; }
    const ZBDate& get_write_time() const { return m_writeTime; }
    const std::string& get_write_host() const { return m_writeHost; }
    const std::string& get_comment() const { return m_comment; }
    void set_comment(const std::string& comment) { m_comment = comment; }
    // Where the links of notes lead; kept in the file.
    const std::string& get_noteurl() const { return m_noteURL; }
    void set_noteurl(const std::string& url) { m_noteURL = url; }

    // Objects. add_object takes the object only when it succeeds (a result
    // that is not a warning): refused, the object is still the caller's to free.
    int add_object(ZBDBObject* object, ZBDBObject* parent, const std::string& containerTag,
                   const std::string& memberTag, int specId, const std::string& operation, int id = -1);
    int delete_object(int id, const std::string& operation);
    int extract_object(int id, ZBDBObject*& out, bool keep);
    int clone_object(int id, ZBDBObject*& out) const;
    int reparent(ZBDBObject* object, ZBDBObject* parent, const std::string& tag);
    ZBDBObject* get_object_by_id(int id) const;
    ZBDBObject* get_object_by_index(int index) const { return m_object.at(index); }
    int get_nobjects() const { return m_object.size(); }
    // The specs, queries and notes held directly by the database; filled by resolve_containers.
    const ZBDBContainer<ZBObjectSpec>& get_objectspecs() const { return m_objectSpec; }
    const ZBDBContainer<ZBDBObject>& get_queries() const { return m_query; }
    const ZBDBContainer<ZBDBObject>& get_notes() const { return m_note; }
    ZBDBObject* get_object_parent(int id) const;
    ZBDBContainerBase* get_object_container(int id) const;
    ZBDBObject* get_object_by_createid(int createId, const ZBDate& created) const;
    bool is_ancestor(int child, int ancestor) const;
    static int first_object(const std::string& fileName, std::string& className);
    int allocate_id();
    int next_id() const { return m_uniqueId; }
    void mark_db_structure_change(const ZBDBObject& object);
    long get_last_structure_change() const { return m_lastStructureChange; }
    long get_last_db_update() const;
    bool db_has_changed_since(long since, bool structureOnly) const;
    bool needs_save() const;
    int resolve_containers();
    // Works out the variables of one object, or of all (id -1); with mark, an
    // object whose stored values changed is marked changed.
    int update_vars(int id, bool mark);

    // Specs. A spec text that does not parse is never applied: the spec keeps
    // what it had and its objects keep their variables.
    int get_nobjectspecs() const { return m_objectSpec.size(); }
    ZBObjectSpec* get_objectspec_by_index(int index) const;
    ZBObjectSpec* get_objectspec_by_name(const std::string& name) const;
    ZBObjectSpec* get_objectspec_by_id(int id) const;
    // Adds a spec from its text and parses it; the id goes to id when given.
    int add_objectspec(const std::string& name, const std::string& text, int* id = nullptr,
                       const std::string& operation = std::string());
    // Adds a spec object made by the caller (taking it) and parses it.
    int add_objectspec(ZBObjectSpec* spec, const std::string& operation = std::string());
    // Creates the spec or replaces its text; with parse, parses and applies.
    int set_spec_source(const std::string& name, const std::string& text, bool parse);
    // Parses one spec and, first, the specs it inherits from. line gets the
    // line of a fault.
    int parse_objectspec(ZBObjectSpec& spec, int* line = nullptr);
    // Parses every spec; with apply, applies them to their objects. The first
    // fault is returned after all were tried.
    int parse_objectspecs(bool apply);
    // The "Default" and "TopLevel" specs, made when missing. Applications add
    // their own default types in an override.
    virtual int create_default_spec();
    // Told of each spec just after its text parsed, so that a database with
    // system values can mark the declarations that name them.
    virtual int add_sysquants(ZBObjectSpec& spec);
    int apply_objectspecs();
    // Gives object the spec specId and its variables; update works them out.
    virtual int apply_objectspec_to_db(ZBDBObject& object, int specId, bool update);
    int edit_objectspec(int id, int lockId = -1);
    int commit_objectspec(int id, const std::string& operation = std::string(), int* line = nullptr);
    int revert_objectspec(int id);
    int delete_objectspec(int id, const std::string& operation = std::string());
    int rename_spec(int id, const std::string& name);
    bool objectspec_in_use(int id) const;
    bool objectspec_referenced(int id) const;
    // Whether spec specId is baseId or inherits from it, at any depth.
    bool is_spec_derived_from(int specId, int baseId) const;
    // Every distinct non-blank trimmed value of a variable across the objects.
    int get_var_values(const std::string& tag, std::vector<std::string>& out) const;
    // The values a "reference" constraint offers: param is "${SPEC} VARIABLE".
    int get_ref_constraint_values(const std::string& param, std::vector<std::string>& out) const;
    // The ".zbo" spec file: every spec, or reading one in (replacing specs of
    // the same name). import gives the names read in names, when asked.
    int export_specs(std::ostream& out) const;
    int export_specs(const std::string& fileName) const;
    int import_specs(std::istream& in, const std::string& fileName, std::vector<std::string>* names = nullptr);
    int import_specs(const std::string& fileName, std::vector<std::string>* names = nullptr);
    // The messages of the spec faults found by the last parse_objectspecs.
    const std::vector<std::string>& get_spec_errors() const { return m_specErrors; }
    // Closes one user action: its changes go to the partial file as one
    // transaction named operation, which is then one step of undo.
    virtual int complete_operation(const std::string& operation);

    // The editing protocol: edit locks an object and keeps a backup, commit
    // records the change (and, given an operation, closes the step), revert
    // puts the backup back (and drops an object made by this edit).
    int edit_object(int id, bool created, int lockId = -1);
    int commit_object(int id, const std::string& operation);
    int revert_object(int id);
    bool object_edited() const;
    // Undo and redo rebuild the database from the base file and the live transactions.
    bool can_undo() const { return m_dbIndex.can_undo(); }
    bool can_redo() const { return m_dbIndex.can_redo(); }
    std::string get_undo_operation() const { return m_dbIndex.get_undo_operation(); }
    std::string get_redo_operation() const { return m_dbIndex.get_redo_operation(); }
    int undo();
    int redo();
    // Drops changes not yet closed as an operation: the database goes back to
    // the state after the last logged step.
    int discard_changes();
    const ZBDBIndex& get_index() const { return m_dbIndex; }
    const std::string& get_partial_file() const { return m_partialFile; }
    const std::string& get_base_file() const { return m_baseFile; }
    const std::string& get_index_file() const { return m_indexFile; }
    // Told by an object each time it records a change, so that a partial
    // write looks at the changed objects only.
    void note_changed(int id);

    // After a load: how many transactions of a crashed session were replayed
    // (0 none, -1 the log was damaged and set aside, with its message).
    int get_recovered() const { return m_recovered; }
    const std::string& get_recovery_message() const { return m_recoveryMessage; }
    // Whether a damaged log stops the load with ZBErrC_CorruptPartial, leaving
    // every file as it was, so that a window can ask before anything is set
    // aside. Off, the damaged log is set aside and the file loads as last saved.
    void set_report_damaged_partial(bool on) { m_reportDamagedPartial = on; }

    // The findings of the data check about this database's objects.
    ZBDBChecker& get_checker() { return m_checker; }
    const ZBDBChecker& get_checker() const { return m_checker; }

    // The background thread.
    // How long the thread sleeps when nobody wakes it.
    static constexpr int C_RecalcWakeMs = 10000;
    int start_recalc_thread(E_ThreadPriority priority = E_LowPriority);
    // Marks the thread to stop, wakes it and waits for it: afterwards nothing
    // of the background pass runs any more.
    void stop_recalc_thread();
    void signal_recalc_thread() { signal_thread(); }
    // Set by the thread when results wait; read and cleared by the owner.
    void signal_recalc_complete();
    bool recalc_complete();
    // Holds the thread off (between passes) while the owner saves, merges or
    // reloads; resuming wakes it.
    void pause_background(bool pause);
    bool is_background_paused() const;

    // Where the files around a data file go. Without force, on this desktop,
    // name itself; with force, the cache folder, a folder named from the data
    // file's folders, and the file part. get_scratch_name is the same in the
    // scratch folder; partial_name adds the partial extension to it.
    static std::string get_cache_name(const std::string& name, bool force);
    static std::string get_scratch_name(const std::string& name);
    static std::string partial_name(const std::string& name);
    // A new name for the copy of a data file kept before its data is upgraded
    // from version: never one already in use, and distinct for files of the
    // same name in different folders.
    static std::string version_copy_name(const std::string& name, int version);

protected:
    // Takes an object and its live descendants out of the tree as deleted, all
    // or none of them: a locked one refuses the whole. With out, also gives a
    // detached copy that carries copies of the descendants; a plain delete
    // passes null and pays for no copy. Costs one pass over the ids plus the
    // subtree, however deep or wide.
    int extract_tree(int id, ZBDBObject** out);
    // Writes "O:" objects; since 0 is a full write, where old tombstones are left out.
    int write_objects(std::ostream& out, long since, int version);
    int clean_intermediate(bool keepPartial, bool forceClean);
    // The base file for this session: made from the data file before the first
    // change is logged, or the one a recovered log applies to.
    int ensure_base();
    // Reads a complete file into this database, replacing what it holds only
    // once the whole file has been read.
    int replace_from_text(const std::string& text, const std::string& fileName);
    // Replays a partial file's text; a last block cut short by a crash is
    // dropped (and, with cutTorn, cut from the file).
    int read_partial_text(std::string& text, bool skipSaved, bool cutTorn);
    bool partial_pending() const;
    void after_replay();
    void rotate_backups();
    // Reads one "O:" record's entries and then the object; refuses a damaged
    // id. lineNo counts the lines of the file.
    static int read_record(ZBObject& object, std::istream& in, int version, int& lineNo);
    // Puts an object (checked already) and the children it carries into the tree.
    void take_object(ZBDBObject* object, ZBDBObject* parent, ZBDBContainerBase* container,
                     const std::string& containerTag, const std::string& memberTag, int specId, int id);

private:
    ZBPtrArrayIndex<ZBDBObject, int> m_object;
    // Lines at the top of the file that are not objects (from a newer
    // program), written back after the version field.
    ZBPtrArray<ZBSerialisationEntry> m_headEntry;
    // Set when the file was upgraded: its writes drop unhandled data.
    bool m_purgeUnhandled = false;
    // Typed by the classes that will fill them; until those exist they hold plain objects.
    ZBDBContainer<ZBObjectSpec> m_objectSpec;
    // Specs under parse, to find inheritance cycles.
    std::vector<int> m_specParsing;
    std::vector<std::string> m_specErrors;
    ZBDBContainer<ZBDBObject> m_query;
    ZBDBContainer<ZBDBObject> m_note;
    int m_uniqueId;
    long m_lastFullWrite;
    long m_lastPartialWrite;
    bool m_firstPartialWrite;
    long m_lastStructureChange;
    std::string m_completeFile;
    std::string m_partialFile;
    std::string m_baseFile;
    std::string m_indexFile;
    bool m_readOnly;
    bool m_isLoaded;
    bool m_isResolved;
    int m_backupCount;
    ZBDate m_lastBackup;
    std::string m_appType;
    std::string m_expectedAppType;
    int m_loadID;
    int m_databaseFileVersion;
    int m_appFileVersion;
    int m_featureCount;
    std::string m_appRelease;
    std::string m_comment;
    ZBDBIndex m_dbIndex;
    ZBPtrArray<ZBExternalDB> m_external;
    ZBDate m_writeTime;
    std::string m_writeHost;
    ZBDate m_latestWrite;
    std::string m_noteURL;
    void* m_actionMgr;
    bool m_pauseBackground;
    bool m_recalcComplete;
    bool m_autosave;
    // Ids of objects marked changed since the last partial write; when it
    // overflows a partial write looks at every object.
    std::vector<int> m_changedIds;
    bool m_changedOverflow;
    // The data file's identity (size, time, inode) when loaded or last saved.
    std::string m_fileStamp;
    bool m_forceRotation;
    int m_recovered;
    std::string m_recoveryMessage;
    bool m_reportDamagedPartial = false;
    ZBMutex m_recalcMutex;
    mutable ZBMutex m_pauseMutex;
    ZBDBChecker m_checker;
};

// Makes the concrete database class an application needs.
template <class T>
class ZBDBFactory {
public:
    static T* create_instance() { return new T(); }
};

} // namespace Tervalon
