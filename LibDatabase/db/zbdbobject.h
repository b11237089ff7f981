#pragma once

#include "LibObject/object/zbobject.h"
#include "LibDatabase/db/zbupdatecounter.h"
#include "LibDatabase/db/zbdbobjectlink.h"
#include "LibDatabase/db/zblockable.h"
#include "LibDatabase/db/zbdbcontainerbase.h"
#include "LibDatabase/db/zbdbscript.h"
#include "LibDatabase/db/zbvariable.h"
#include "LibDate/date/zbdate.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDatabase;
class ZBObjectSpec;
class ZBDBScriptCache;

// An identified node of a database's tree: its id, state, parent, the tags of
// the container that holds it and of its role there, links, spec and variables,
// create and modify times, managed children (outside a database) and scripts.
// The database owns every object; children are found through containers that
// resolve_containers rebuilds from the parent ids.
// A plain object is small: what only a node of a database's tree uses (tags,
// times, variables, containers) and what few objects use (links, scripts,
// managed children, the edit backup) are made on first use, because an entry
// holds a dozen objects of which only one is a node.
// Changes are made under the edit lock: edit() locks and keeps a backup copy,
// commit() drops it and records the change, revert() puts the backup back. The
// lock is a private base so that nothing bypasses the backup.
class ZBDBObject : public ZBObject, public ZBUpdateCounter, private ZBLockable {
public:
    enum E_ObjectState : char { E_Normal = 'N', E_Deleted = 'D' };

    // Trigger scripts are named C_Trigger followed by the trigger.
    static const char* const C_Trigger;
    static const char* const C_CreateTrigger;
    static const char* const C_EditTrigger;
    static const char* const C_RecalculateTrigger;
    static const char* const C_StartupTrigger;

    ZBDBObject();
    ZBDBObject(const ZBDBObject& other);
    ~ZBDBObject() override;
    ZBDBObject& operator=(const ZBDBObject& other);
    bool operator==(const ZBDBObject& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    virtual int remap_id(int from, int to);
    virtual std::string get_container_tag() const;
    virtual bool allow_children() const { return true; }
    virtual ZBDBObject* get_child_by_mtag(const std::string& tag) const;
    virtual int get_num_member_tag(const std::string& tag) const;
    virtual void on_add() {}
    virtual std::string get_summary() const;
    virtual void mark_structure_change();
    virtual bool uses_spec() const { return true; }
    // Values the program itself keeps on an object, by name; empty when unknown.
    virtual std::string get_sysvalue(const std::string& tag) const;
    virtual std::string get_sysvalue(const std::string& tag, const std::string& subtag) const;
    virtual int set_sysvalue(const std::string& tag, const std::string& value);
    virtual int set_sysvalue(const std::string& tag, const std::string& subtag, const std::string& value);
    virtual void trigger_update_vars() { m_triggerUpdateVars = true; }
    // Links the variables to a spec's declarations, adds the missing ones, drops
    // those the spec no longer has, and works the values out.
    virtual int apply_objectspec(const ZBObjectSpec& spec);
    // A hook through which a subclass (the notes) may take over a variable's
    // value; a claimed variable is neither reset nor expanded.
    virtual bool apply_note(ZBVariable& variable) { (void)variable; return false; }
    // Checks a value before it is set; message says why it is refused.
    virtual int pre_validate_value(const std::string& tag, const std::string& value, std::string& message) const;
    virtual bool can_run_scripts() const { return true; }

    // Editing. lockId names the holder (-1 for the program itself); created says
    // the object is new in this edit, which the forms use to offer a discard.
    int edit(int lockId, bool created);
    int commit();
    int revert();
    // Marks the object deleted under the lock of lockId, with no backup: what a
    // deletion takes away is kept, when wanted, as the copy that the database
    // extracts. Refused, and nothing changed, when the object is locked.
    int delete_locked(int lockId);
    bool is_edited() const { return get_backup() != nullptr; }
    bool get_created() const;
    const ZBDBObject* get_backup() const;
    using ZBLockable::is_locked;
    using ZBLockable::get_lock_id;

    int get_id() const { return m_id; }
    int get_parent_id() const { return m_parentId; }
    ZBDBObject* get_parent() const;
    ZBDatabase* get_database() const;
    const std::string& get_obj_container_tag() const;
    const std::string& get_member_tag() const;
    int get_specid() const { return m_specId; }
    void set_specid(int id) { m_specId = id; }
    E_ObjectState get_obj_state() const { return E_ObjectState(m_state); }
    bool is_deleted() const { return m_state == E_Deleted; }
    const ZBDate& get_create_time() const;
    const ZBDate& get_modify_time() const;
    int get_create_id() const;
    int get_alert_state() const;
    void set_alert_state(int state);
    const std::string& get_change_loc() const;

    // Records a change: a new modify time (one second after the clock) and update count.
    void mark_changed(const std::string& location, bool updateTime);
    // The next mark_changed is the program's own doing and is not counted.
    void set_systemchange() { m_systemChange = true; }
    void set_id(int id, const ZBDate& created, bool isNew);
    void set_state(E_ObjectState state);
    void set_parent(ZBDBObject* parent, const std::string& containerTag, const std::string& memberTag, ZBDatabase* db);
    void set_parent_ptr(ZBDBObject* parent, ZBDatabase* db);
    void set_create_time(const ZBDate& date);
    void set_modify_time(const ZBDate& date);

    // Links.
    void add_link(int id, const std::string& type);
    int remove_link(int id, const std::string& type, bool all);
    std::vector<int> get_links(const std::string& type) const;
    // The number of links of a type, and one of them by position (-1 when out of range).
    int get_nassoc(const std::string& type) const;
    int get_assoc_by_index(const std::string& type, int index) const;
    const std::vector<ZBDBObjectLink>& get_all_links() const;

    // Variables in their stored form, one "TAG=VALUE" text each, as the file
    // holds them. Refreshed from the variables on every write; changes go
    // through set_var_value.
    ZBPtrArray<std::string>& get_variable_text();
    const ZBPtrArray<std::string>& get_variable_text() const;

    // Variables. includePrivate false counts only those a user is shown.
    int get_nvars(bool includePrivate = true) const;
    ZBVariable* get_var_by_index(int index) const;
    ZBVariable* get_var_by_tag(const std::string& tag) const;
    // Derived variables are worked out on every update; the user does not type them.
    bool var_is_calculated(const std::string& tag) const;
    // Takes ownership; a variable of the same tag is replaced.
    int add_var(ZBVariable* variable);
    void clear_vars();
    int remove_var_by_index(int index);
    // Adds a prompt variable for each $<NAME> in text that the object lacks;
    // DATE, TIME and YEAR are filled from the clock at once.
    int locate_vars(const std::string& text);
    // The value of tag; with searchParents the nearest ancestor that has it.
    // An auto variable read with update counts on by one. An unknown tag gives
    // "$<TAG>", so that a text shows it unchanged.
    std::string get_var_value(const std::string& tag, bool searchParents = false, bool update = false);
    // Sets (or adds) a variable; the value counts as the user's own.
    int set_var_value(const std::string& tag, const std::string& value);
    // The stored form of one variable, and reading a list of them (entries end
    // at an unescaped "#" and a blank).
    std::string var_to_string(int index) const;
    int var_from_string(const std::string& text);
    // Works the values out in two passes: resets, then expands to a fixed
    // point. okFinished when every variable is done, okNotFinished otherwise.
    int update_vars();
    // Substitutes $<...> in text and then evaluates $=(...). okNotFinished when
    // a variable was missing or not yet worked out (then no expression runs).
    int apply_vars(std::string& text, bool firstTime, ZBDBScriptCache* cache);
    int expand_var(ZBVariable& variable);
    // Hands a worked-out system value to the object's own field.
    void write_sysvalue(const ZBVariable& variable);
    // Finds the next "$<...>" at or after from: its span and the text inside.
    static bool locate_next_var(const std::string& text, size_t from, size_t& start, size_t& end, std::string& inner);
    // Splits the inside of "$<...>" into modifier, parent steps and tag.
    static void extract_var(const std::string& inner, char& modifier, int& parents, std::string& tag);
    // Copies the values of variables both objects have; append_values also adds the others.
    int copy_values(const ZBDBObject& other);
    int append_values(const ZBDBObject& other);
    // Checks every value against its constraint; message lists the faults.
    int post_validate_values(std::string& message) const;
    // Sets an auto variable to number, padded to its present width.
    int set_number_seq(const std::string& tag, int number);

    // Managed children: the copies an object carries outside a database.
    void add_managed_child(ZBDBObject* child);
    ZBDBObject* extract_managed_child();
    int get_nmanaged_children() const;
    int get_children_by_mtag(const std::string& tag, ZBPtrArray<ZBDBObject>& out) const;

    // Scripts, by name; the object owns them.
    int get_nscripts() const;
    ZBDBScript* get_script_no(int index) const;
    ZBDBScript* get_script(const std::string& name) const;
    // The script of that name, made empty if there is none.
    ZBDBScript* edit_script(const std::string& name);
    int add_script(ZBDBScript* script);
    int remove_script(const std::string& name);
    void clear_scripts();
    // Every script in order, as a non-owning list.
    int get_all_scripts(ZBPtrArray<ZBDBScript>& out) const;
    // Finds the script for a trigger ("create", "edit", ...); okNotHandled when there is none.
    int run_trigger_script(const std::string& trigger);

    // Containers of children by tag; those a class registers, and others made on demand.
    void add_container(ZBDBContainerBase& container);
    ZBDBContainerBase* get_container(const std::string& tag) const;
    // The class's own container of that tag when it makes it on demand (see
    // make_own_container), else a plain one that the object owns.
    ZBDBContainerBase* get_or_make_container(const std::string& tag);
    void remap_container(const std::string& from, const std::string& to);
    void clear_containers();
    int get_ncontainers() const;
    ZBDBContainerBase* get_container_no(int index) const;

protected:
    // A class whose own container most objects leave empty (a leaf has no
    // children) makes it here, when the first child arrives, rather than in
    // its constructor; null when tag is not one of its own.
    virtual ZBDBContainerBase* make_own_container(const std::string& tag)
    {
        (void)tag;
        return nullptr;
    }

private:
    // The place of a stored object in its database: the tags, times, variables,
    // the parent and database pointers and the containers. Made on first use,
    // so that an object that only ever stands as a part of another (an entry's
    // facets) carries none of it.
    struct Node;
    // What few objects ever use: links, managed children, scripts, the edit
    // backup and the location of the last change.
    struct Extra;

    Node& node();
    Extra& extra();
    static const Node& blank_node();
    static const Extra& blank_extra();
    const Node& node_or_blank() const;
    const Extra& extra_or_blank() const;
    // The stored members of other, in place of this object's own.
    void copy_stored(const ZBDBObject& other);

    int m_id;
    int m_parentId;
    int m_specId;
    char m_state;
    bool m_objectSerialised;
    bool m_triggerUpdateVars;
    bool m_systemChange;
    // Set when a variable went away, so that the stored form is rebuilt even
    // when none is left.
    bool m_varsChanged;
    // How urgent the object's alerts are (a small level, 0 for none). Most
    // objects of a planner's tree have one, so it sits in the padding here
    // rather than in the extras.
    std::int8_t m_alertState;
    std::unique_ptr<Node> m_node;
    std::unique_ptr<Extra> m_extra;

    void stored_vars(std::vector<std::string>& out) const;
};

} // namespace Tervalon
