#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibDatabase/db/zbdbscript.h"
#include "LibDatabase/db/zbdbscriptcache.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cctype>
#include <mutex>
#include <unordered_set>
#include <cstdio>
#include <ctime>
#include <sstream>

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBDBObject", &ZBDBObject::create_zbobject);

// Managed children keep their own class when an object is copied.
void clone_children(const ZBPtrArray<ZBDBObject>& from, ZBPtrArray<ZBDBObject>& to)
{
    to.clear();
    to.reserve(from.size());
    for (const ZBDBObject* child : from)
        if (ZBDBObject* copy = child ? dynamic_cast<ZBDBObject*>(child->clone_class()) : nullptr)
            to.push_back(copy);
}
} // namespace

// An array made on its first element: most nodes hold no variables, and an
// empty array costs as much as a pointer to one several times over.
template <class T>
class OnDemandArray {
public:
    OnDemandArray() = default;
    OnDemandArray(const OnDemandArray& other) { *this = other; }
    OnDemandArray& operator=(const OnDemandArray& other)
    {
        if (this != &other)
            m_array.reset(other.empty() ? nullptr : new ZBPtrArray<T>(*other.m_array));
        return *this;
    }
    OnDemandArray& operator=(ZBPtrArray<T>&& other)
    {
        if (other.empty())
            m_array.reset();
        else
            edit() = std::move(other);
        return *this;
    }

    const ZBPtrArray<T>& view() const
    {
        static const ZBPtrArray<T> none;
        return m_array ? *m_array : none;
    }
    ZBPtrArray<T>& edit()
    {
        if (!m_array)
            m_array.reset(new ZBPtrArray<T>());
        return *m_array;
    }

    int size() const { return m_array ? m_array->size() : 0; }
    bool empty() const { return size() == 0; }
    T* operator[](int index) const { return view().at(index); }
    T* at(int index) const { return view().at(index); }
    typename std::vector<T*>::const_iterator begin() const { return view().begin(); }
    typename std::vector<T*>::const_iterator end() const { return view().end(); }
    int remove(int index) { return edit().remove(index); }
    void insert(int index, T* element) { edit().insert(index, element); }
    void push_back(T* element) { edit().push_back(element); }
    T* extract(int index) { return edit().extract(index); }
    // A new array is managed, so none is made to say so.
    void set_managed(bool managed)
    {
        if (m_array || !managed)
            edit().set_managed(managed);
    }
    void clear() { m_array.reset(); }

private:
    std::unique_ptr<ZBPtrArray<T>> m_array;
};

// The containers of a node, in the order they were added; the list owns those
// made on demand. Most nodes of a planner's tree are leaves and have none
// (an entry makes its own container with its first child), so the list is one
// pointer until the first container comes.
class ContainerList {
public:
    int size() const { return m_list ? int(m_list->all.size()) : 0; }
    ZBDBContainerBase* operator[](int index) const { return m_list->all[size_t(index)]; }
    void push_back(ZBDBContainerBase* container) { list().all.push_back(container); }
    ZBDBContainerBase* adopt(ZBDBContainerBase* container)
    {
        list().own.emplace_back(container);
        push_back(container);
        return container;
    }

private:
    struct List {
        std::vector<ZBDBContainerBase*> all;
        std::vector<std::unique_ptr<ZBDBContainerBase>> own;
    };
    List& list()
    {
        if (!m_list)
            m_list.reset(new List());
        return *m_list;
    }

    std::unique_ptr<List> m_list;
};

namespace {
// The tags of containers and roles are few and repeat across every object of
// a tree, so a node points at one shared copy of each instead of holding two
// strings of its own. Interned copies are never let go: a file names a
// handful of tags.
class SharedTag {
public:
    const std::string& get() const { return *m_text; }
    SharedTag& operator=(const std::string& text)
    {
        m_text = text.empty() ? &none() : &intern(text);
        return *this;
    }
    void clear() { m_text = &none(); }
    // Equal texts share one copy, so the pointers say it.
    bool operator==(const SharedTag& other) const { return m_text == other.m_text; }

private:
    static const std::string& none()
    {
        static const std::string empty;
        return empty;
    }
    static const std::string& intern(const std::string& text)
    {
        static std::mutex lock;
        static auto* pool = new std::unordered_set<std::string>();
        std::lock_guard<std::mutex> guard(lock);
        return *pool->insert(text).first;
    }

    const std::string* m_text = &none();
};
} // namespace

struct ZBDBObject::Node {
    Node() : m_createTime(ZBDate::E_Blank), m_modifyTime(ZBDate::E_Blank) {}

    // Stored.
    SharedTag m_containerTag;
    SharedTag m_memberTag;
    ZBDate m_createTime;
    ZBDate m_modifyTime;
    int m_createID = -1;
    OnDemandArray<std::string> m_variable;
    OnDemandArray<ZBVariable> m_vars;

    // Not stored.
    ZBDBObject* m_parent = nullptr;
    ZBDatabase* m_database = nullptr;
    // A class's own containers are its members; the list owns those made on demand.
    ContainerList m_containers;

    // The stored members back to their defaults; the place in the tree stays.
    void clear_stored()
    {
        m_containerTag.clear();
        m_memberTag.clear();
        m_createTime = ZBDate(ZBDate::E_Blank);
        m_modifyTime = ZBDate(ZBDate::E_Blank);
        m_createID = -1;
        m_variable.clear();
        m_vars.clear();
    }
    void copy_stored(const Node& other)
    {
        m_containerTag = other.m_containerTag;
        m_memberTag = other.m_memberTag;
        m_createTime = other.m_createTime;
        m_modifyTime = other.m_modifyTime;
        m_createID = other.m_createID;
        m_variable = other.m_variable;
        m_vars = other.m_vars;
    }
};

struct ZBDBObject::Extra {
    // Stored.
    std::vector<ZBDBObjectLink> m_link;
    ZBPtrArray<ZBDBObject> m_child;
    ZBPtrArray<ZBDBScript> m_script;

    // Not stored.
    std::unique_ptr<ZBDBObject> m_backup;
    bool m_created = false;
    std::string m_modifyLoc;

    void copy_stored(const Extra& other)
    {
        m_link = other.m_link;
        clone_children(other.m_child, m_child);
        m_script = other.m_script;
        m_modifyLoc = other.m_modifyLoc;
    }
};

const char* const ZBDBObject::C_Trigger = "on_";
const char* const ZBDBObject::C_CreateTrigger = "create";
const char* const ZBDBObject::C_EditTrigger = "edit";
const char* const ZBDBObject::C_RecalculateTrigger = "recalculate";
const char* const ZBDBObject::C_StartupTrigger = "startup";

ZBDBObject::ZBDBObject()
    : m_id(-1), m_parentId(-1), m_specId(-1), m_state(E_Normal), m_objectSerialised(false), m_triggerUpdateVars(false),
      m_systemChange(false), m_varsChanged(false), m_alertState(0)
{
    ZBDBObject::register_zbobject();
}

// A copy is a detached object: same stored members, no parent pointer, no
// database, no containers until it is placed in a database, no lock and no backup.
ZBDBObject::ZBDBObject(const ZBDBObject& other)
    : ZBObject(other), ZBUpdateCounter(other), ZBLockable(), m_id(other.m_id), m_parentId(other.m_parentId),
      m_specId(other.m_specId), m_state(other.m_state), m_objectSerialised(other.m_objectSerialised),
      m_triggerUpdateVars(other.m_triggerUpdateVars), m_systemChange(false), m_varsChanged(other.m_varsChanged),
      m_alertState(other.m_alertState)
{
    copy_stored(other);
    ZBDBObject::register_zbobject();
}

ZBDBObject::~ZBDBObject() = default;

ZBDBObject::Node& ZBDBObject::node()
{
    if (!m_node)
        m_node.reset(new Node());
    return *m_node;
}

ZBDBObject::Extra& ZBDBObject::extra()
{
    if (!m_extra)
        m_extra.reset(new Extra());
    return *m_extra;
}

const ZBDBObject::Node& ZBDBObject::blank_node()
{
    static const Node blank;
    return blank;
}

const ZBDBObject::Extra& ZBDBObject::blank_extra()
{
    static const Extra blank;
    return blank;
}

const ZBDBObject::Node& ZBDBObject::node_or_blank() const
{
    return m_node ? *m_node : blank_node();
}

const ZBDBObject::Extra& ZBDBObject::extra_or_blank() const
{
    return m_extra ? *m_extra : blank_extra();
}

void ZBDBObject::copy_stored(const ZBDBObject& other)
{
    if (other.m_node)
        node().copy_stored(*other.m_node);
    else if (m_node)
        m_node->clear_stored();
    if (other.m_extra)
        extra().copy_stored(*other.m_extra);
    else if (m_extra)
        m_extra->copy_stored(blank_extra());
}

// Assignment copies the stored state only: the lock, the backup, the place in
// the tree and the containers stay those of this object.
ZBDBObject& ZBDBObject::operator=(const ZBDBObject& other)
{
    if (this == &other)
        return *this;
    ZBObject::operator=(other);
    ZBUpdateCounter::operator=(other);
    m_id = other.m_id;
    m_state = other.m_state;
    m_parentId = other.m_parentId;
    m_specId = other.m_specId;
    m_varsChanged = other.m_varsChanged;
    m_objectSerialised = other.m_objectSerialised;
    m_alertState = other.m_alertState;
    copy_stored(other);
    return *this;
}

namespace {
bool same_vars(const ZBDBObject& a, const ZBDBObject& b);
}

bool ZBDBObject::operator==(const ZBDBObject& other) const
{
    const Node& a = node_or_blank();
    const Node& b = other.node_or_blank();
    const Extra& x = extra_or_blank();
    const Extra& y = other.extra_or_blank();
    return m_id == other.m_id && m_state == other.m_state && m_parentId == other.m_parentId
        && a.m_containerTag == b.m_containerTag && a.m_memberTag == b.m_memberTag && x.m_link == y.m_link
        && m_specId == other.m_specId && same_vars(*this, other) && a.m_createTime == b.m_createTime
        && a.m_createID == b.m_createID && a.m_modifyTime == b.m_modifyTime && x.m_child == y.m_child
        && x.m_script == y.m_script && ZBObject::operator==(other);
}

void ZBDBObject::dump(std::ostream& out, int indent) const
{
    const Node& n = node_or_blank();
    const Extra& x = extra_or_blank();
    ZBDump dump("ZBDBObject", out, indent);
    dump.add("m_id", m_id);
    dump.add("m_state", m_state);
    dump.add("m_parentId", m_parentId);
    dump.add_entry("m_containerTag", n.m_containerTag.get());
    dump.add_entry("m_memberTag", n.m_memberTag.get());
    for (size_t i = 0; i < x.m_link.size(); ++i)
        dump.add("m_link", x.m_link[i], int(i));
    dump.add("m_specId", m_specId);
    for (int i = 0; i < n.m_variable.size(); ++i)
        dump.add_entry("m_variable", *n.m_variable[i], i);
    dump.add_entry("m_createTime", n.m_createTime.to_iso());
    dump.add("m_createID", n.m_createID);
    dump.add_entry("m_modifyTime", n.m_modifyTime.to_iso());
    dump.add("m_child", x.m_child.size());
    dump.add("m_script", x.m_script.size());
    dump.add_entry("m_modifyLoc", x.m_modifyLoc);
    dump.add("m_lastUpdate", get_last_update());
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBDBObject::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    // Writing an object that never had a place in a database uses the defaults
    // without making room for them.
    Node blank;
    Node& n = (in || m_node) ? node() : blank;
    serialise_field<int>(in, out, prefix, "I", m_id, -1, true);
    serialise_field<char>(in, out, prefix, "S", m_state, char(E_Normal));
    bool oldFlag = false;
    serialise_field<bool>(in, out, prefix, "E", oldFlag, false);
    serialise_field<int>(in, out, prefix, "P", m_parentId, -1);
    {
        std::string containerTag = n.m_containerTag.get();
        std::string memberTag = n.m_memberTag.get();
        serialise_string(in, out, prefix, "C", containerTag, true);
        serialise_string(in, out, prefix, "M", memberTag, true);
        if (in) {
            n.m_containerTag = containerTag;
            n.m_memberTag = memberTag;
        }
    }
    {
        std::vector<ZBDBObjectLink> read;
        std::vector<ZBDBObjectLink>& links = (in || !m_extra) ? read : m_extra->m_link;
        ZBSrlValueVector<ZBDBObjectLink> binder(links);
        serialise_value(in, out, prefix, "L", binder);
        if (in && (m_extra || !read.empty()))
            extra().m_link = std::move(read);
    }
    serialise_field<int>(in, out, prefix, "O", m_specId, -1);
    if (out && (!n.m_vars.empty() || m_varsChanged)) {
        std::vector<std::string> stored;
        stored_vars(stored);
        n.m_variable.clear();
        for (const std::string& text : stored)
            n.m_variable.push_back(new std::string(text));
        m_varsChanged = false;
    }
    if (in) {
        ZBPtrArray<std::string> read;
        serialise_string_array(in, nullptr, prefix, "V", read);
        n.m_variable = std::move(read);
    } else if (out && !n.m_variable.empty()) {
        serialise_string_array(nullptr, out, prefix, "V", n.m_variable.edit());
    }
    if (in && (!n.m_vars.empty() || !n.m_variable.empty())) {
        // Read over a live object (a revert, a replayed change): values at
        // their default were not written, so they go back to the spec's text.
        for (int i = n.m_vars.size() - 1; i >= 0; --i) {
            if (n.m_vars[i]->get_spec())
                n.m_vars[i]->clone_spec();
            else
                n.m_vars.remove(i);
        }
        for (const std::string* text : n.m_variable)
            var_from_string(*text);
        m_varsChanged = false;
        trigger_update_vars();
    }
    const ZBDate blankDate(ZBDate::E_Blank);
    serialise_field<ZBDate>(in, out, prefix, "CT", n.m_createTime, blankDate);
    serialise_field<int>(in, out, prefix, "CI", n.m_createID, -1);
    if (in || n.m_modifyTime != n.m_createTime)
        serialise_field<ZBDate>(in, out, prefix, "MT", n.m_modifyTime, blankDate);
    {
        ZBPtrArray<ZBDBObject> read;
        ZBPtrArray<ZBDBObject>& children = (in || !m_extra) ? read : m_extra->m_child;
        ZBSrlObjectArray<ZBDBObject> binder(children, version);
        int result = serialise_object(in, out, prefix, "MC", binder);
        if (in && (m_extra || !read.empty()))
            extra().m_child = std::move(read);
        if (iszberr(result))
            return zbpass(ZBLOC);
    }
    {
        ZBPtrArray<ZBDBScript> read;
        ZBPtrArray<ZBDBScript>& scripts = (in || !m_extra) ? read : m_extra->m_script;
        ZBSrlObjectArray<ZBDBScript> binder(scripts, version);
        int result = serialise_object(in, out, prefix, "SC", binder);
        if (in && (m_extra || !read.empty()))
            extra().m_script = std::move(read);
        if (iszberr(result))
            return zbpass(ZBLOC);
    }
    if (in) {
        if (m_state != E_Normal && m_state != E_Deleted)
            m_state = E_Normal;
        if (m_parentId == m_id)
            m_parentId = -1;
        if (!n.m_modifyTime.is_ok())
            n.m_modifyTime = n.m_createTime;
        m_objectSerialised = true;
    }
    if (m_extra && !m_extra->m_modifyLoc.empty() && n.m_modifyTime.is_ok()
        && ZBDateUtils::now() - n.m_modifyTime > ZBDuration(0, ZBDate::C_DaySecs, 0))
        m_extra->m_modifyLoc.clear();
    return ZBObject::serialise(in, out, prefix, version);
}

void ZBDBObject::register_zbobject()
{
    register_objectname("ZBDBObject", &ZBDBObject::create_zbobject);
}

int ZBDBObject::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDBObject>(out, from, "ZBDBObject");
}

void ZBDBObject::set_defaults(bool)
{
    *this = ZBDBObject();
}

std::string ZBDBObject::get_sysvalue(const std::string&) const
{
    return std::string();
}

std::string ZBDBObject::get_sysvalue(const std::string& tag, const std::string&) const
{
    return get_sysvalue(tag);
}

int ZBDBObject::set_sysvalue(const std::string&, const std::string&)
{
    return ZBErrC_okNotHandled;
}

int ZBDBObject::set_sysvalue(const std::string& tag, const std::string&, const std::string& value)
{
    return set_sysvalue(tag, value);
}

// ---------------------------------------------------------------- members

bool ZBDBObject::get_created() const
{
    return m_extra && m_extra->m_created;
}

const ZBDBObject* ZBDBObject::get_backup() const
{
    return m_extra ? m_extra->m_backup.get() : nullptr;
}

ZBDBObject* ZBDBObject::get_parent() const
{
    return m_node ? m_node->m_parent : nullptr;
}

ZBDatabase* ZBDBObject::get_database() const
{
    return m_node ? m_node->m_database : nullptr;
}

const std::string& ZBDBObject::get_obj_container_tag() const
{
    return node_or_blank().m_containerTag.get();
}

const std::string& ZBDBObject::get_member_tag() const
{
    return node_or_blank().m_memberTag.get();
}

const ZBDate& ZBDBObject::get_create_time() const
{
    return node_or_blank().m_createTime;
}

const ZBDate& ZBDBObject::get_modify_time() const
{
    return node_or_blank().m_modifyTime;
}

int ZBDBObject::get_create_id() const
{
    return node_or_blank().m_createID;
}

int ZBDBObject::get_alert_state() const
{
    return m_alertState;
}

void ZBDBObject::set_alert_state(int state)
{
    m_alertState = std::int8_t(std::max(-128, std::min(127, state)));
}

const std::string& ZBDBObject::get_change_loc() const
{
    return extra_or_blank().m_modifyLoc;
}

void ZBDBObject::set_create_time(const ZBDate& date)
{
    node().m_createTime = date;
}

void ZBDBObject::set_modify_time(const ZBDate& date)
{
    node().m_modifyTime = date;
}

const std::vector<ZBDBObjectLink>& ZBDBObject::get_all_links() const
{
    return extra_or_blank().m_link;
}

ZBPtrArray<std::string>& ZBDBObject::get_variable_text()
{
    return node().m_variable.edit();
}

const ZBPtrArray<std::string>& ZBDBObject::get_variable_text() const
{
    return node_or_blank().m_variable.view();
}

ZBVariable* ZBDBObject::get_var_by_index(int index) const
{
    return node_or_blank().m_vars.at(index);
}

int ZBDBObject::get_nmanaged_children() const
{
    return extra_or_blank().m_child.size();
}

int ZBDBObject::get_nscripts() const
{
    return extra_or_blank().m_script.size();
}

ZBDBScript* ZBDBObject::get_script_no(int index) const
{
    return extra_or_blank().m_script.at(index);
}

void ZBDBObject::clear_scripts()
{
    if (m_extra)
        m_extra->m_script.clear();
}

int ZBDBObject::get_ncontainers() const
{
    return node_or_blank().m_containers.size();
}

ZBDBContainerBase* ZBDBObject::get_container_no(int index) const
{
    const ContainerList& containers = node_or_blank().m_containers;
    if (index < 0 || index >= containers.size()) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, containers.size());
        return nullptr;
    }
    return containers[index];
}

// ---------------------------------------------------------------- editing

int ZBDBObject::edit(int lockId, bool created)
{
    int result = lock(lockId);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    Extra& x = extra();
    x.m_created = created;
    x.m_backup.reset(dynamic_cast<ZBDBObject*>(clone_class()));
    if (!x.m_backup) {
        unlock();
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not duplicate this object.");
    }
    return ZBErrC_ok;
}

int ZBDBObject::commit()
{
    if (!is_locked())
        return zberror(ZBLockable::ZBErrC_ObjectNotLocked, ZBLOC, "The object %d was not locked.", m_id);
    if (!get_backup())
        return zberror(ZBErrC_NullPointer, ZBLOC, "The object %d was not backed up.", m_id);
    m_extra->m_backup.reset();
    // Prompt variables count as answered from here on.
    for (ZBVariable* variable : node_or_blank().m_vars)
        if (variable->is_prompt())
            variable->mark_initialised();
    unlock();
    mark_changed(ZBLOC, true);
    m_extra->m_created = false;
    return ZBErrC_ok;
}

int ZBDBObject::revert()
{
    if (!is_locked())
        return zberror(ZBLockable::ZBErrC_ObjectNotLocked, ZBLOC, "The object %d was not locked.", m_id);
    if (!get_backup())
        return zberror(ZBErrC_NullPointer, ZBLOC, "The object %d was not backed up.", m_id);
    const int version = get_database() ? get_database()->get_app_file_version() : 0;
    const int id = m_id;
    const long lastUpdate = get_last_update();
    // Held apart while it is read back: the read may touch this object's extras.
    std::unique_ptr<ZBDBObject> backup = std::move(m_extra->m_backup);
    int result = derived_assign(*backup, version);
    m_id = id;
    restore_update(lastUpdate);
    for (ZBVariable* variable : node_or_blank().m_vars)
        if (variable->get_spec()) {
            update_vars();
            break;
        }
    backup.reset();
    unlock();
    extra().m_created = false;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBObject::delete_locked(int lockId)
{
    int result = lock(lockId);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    set_state(E_Deleted);
    unlock();
    return ZBErrC_ok;
}

int ZBDBObject::remap_id(int from, int to)
{
    if (m_parentId == from)
        m_parentId = to;
    if (m_extra)
        for (ZBDBObjectLink& link : m_extra->m_link)
            if (link.m_id.m_id == from)
                link.m_id.m_id = to;
    return ZBErrC_ok;
}

std::string ZBDBObject::get_container_tag() const
{
    return get_obj_container_tag();
}

ZBDBObject* ZBDBObject::get_child_by_mtag(const std::string& tag) const
{
    ZBDBContainerBase* container = get_container(ZBDatabase::C_DatabaseAllTag + tag);
    return container && container->get_nobjects() > 0 ? container->get_object(0) : nullptr;
}

int ZBDBObject::get_num_member_tag(const std::string& tag) const
{
    ZBDBContainerBase* container = get_container(ZBDatabase::C_DatabaseAllTag + tag);
    return container ? container->get_nobjects() : 0;
}

std::string ZBDBObject::get_summary() const
{
    return get_class_name() + " " + std::to_string(m_id);
}

void ZBDBObject::mark_structure_change()
{
    if (ZBDatabase* db = get_database())
        db->mark_db_structure_change(*this);
}

void ZBDBObject::mark_changed(const std::string& location, bool updateTime)
{
    if (m_systemChange) {
        m_systemChange = false;
        return;
    }
    if (updateTime)
        node().m_modifyTime = ZBDateUtils::now() + ZBDuration(1);
    if (m_extra || !location.empty())
        extra().m_modifyLoc = location;
    if (m_id >= 0) {
        mark_update();
        if (m_node && m_node->m_database)
            m_node->m_database->note_changed(m_id);
    }
}

void ZBDBObject::set_id(int id, const ZBDate& created, bool isNew)
{
    Node& n = node();
    if (isNew) {
        n.m_createID = -1;
    } else {
        if (id == m_id)
            return;
        if (n.m_createID < 0 && m_id >= 0)
            n.m_createID = m_id;
    }
    m_id = id;
    n.m_createTime = created;
    mark_changed(ZBLOC, true);
}

void ZBDBObject::set_state(E_ObjectState state)
{
    if (m_state == state)
        return;
    m_state = state;
    mark_changed(ZBLOC, true);
}

void ZBDBObject::set_parent(ZBDBObject* parent, const std::string& containerTag, const std::string& memberTag, ZBDatabase* db)
{
    Node& n = node();
    int parentId = parent ? parent->get_id() : -1;
    bool changed = parentId != m_parentId || containerTag != n.m_containerTag.get()
        || memberTag != n.m_memberTag.get();
    m_parentId = parentId;
    n.m_parent = parent;
    n.m_containerTag = containerTag;
    n.m_memberTag = memberTag;
    n.m_database = db;
    if (changed) {
        mark_structure_change();
        mark_changed(ZBLOC, true);
    }
}

void ZBDBObject::set_parent_ptr(ZBDBObject* parent, ZBDatabase* db)
{
    if (!m_node && !parent && !db)
        return;
    Node& n = node();
    n.m_parent = parent;
    n.m_database = db;
}

void ZBDBObject::add_link(int id, const std::string& type)
{
    ZBDBObjectLink link(ZBId(id), type);
    std::vector<ZBDBObjectLink>& links = extra().m_link;
    if (std::find(links.begin(), links.end(), link) != links.end())
        return;
    links.push_back(link);
}

int ZBDBObject::remove_link(int id, const std::string& type, bool all)
{
    if (!m_extra)
        return ZBErrC_ok;
    std::vector<ZBDBObjectLink>& links = m_extra->m_link;
    for (size_t i = 0; i < links.size();) {
        if (links[i].m_id.m_id == id && links[i].m_type == type) {
            links.erase(links.begin() + long(i));
            if (!all)
                return ZBErrC_ok;
        } else {
            ++i;
        }
    }
    return ZBErrC_ok;
}

int ZBDBObject::get_nassoc(const std::string& type) const
{
    int n = 0;
    for (const ZBDBObjectLink& link : get_all_links())
        n += link.m_type == type;
    return n;
}

int ZBDBObject::get_assoc_by_index(const std::string& type, int index) const
{
    for (const ZBDBObjectLink& link : get_all_links())
        if (link.m_type == type && index-- == 0)
            return link.m_id.m_id;
    return -1;
}

std::vector<int> ZBDBObject::get_links(const std::string& type) const
{
    std::vector<int> ids;
    for (const ZBDBObjectLink& link : get_all_links())
        if (link.m_type == type)
            ids.push_back(link.m_id.m_id);
    return ids;
}

void ZBDBObject::add_managed_child(ZBDBObject* child)
{
    if (child)
        extra().m_child.push_back(child);
}

ZBDBObject* ZBDBObject::extract_managed_child()
{
    return !m_extra || m_extra->m_child.empty() ? nullptr : m_extra->m_child.extract(0);
}

int ZBDBObject::get_children_by_mtag(const std::string& tag, ZBPtrArray<ZBDBObject>& out) const
{
    ZBDBContainerBase* container = get_container(ZBDatabase::C_DatabaseAllTag + tag);
    if (!container)
        return ZBErrC_ok;
    for (int i = 0; i < container->get_nobjects(); ++i)
        out.push_back(container->get_object(i));
    return ZBErrC_ok;
}

ZBDBScript* ZBDBObject::get_script(const std::string& name) const
{
    for (ZBDBScript* script : extra_or_blank().m_script)
        if (script->m_name == name)
            return script;
    return nullptr;
}

ZBDBScript* ZBDBObject::edit_script(const std::string& name)
{
    if (ZBDBScript* script = get_script(name))
        return script;
    ZBDBScript* script = new ZBDBScript();
    script->m_name = name;
    extra().m_script.push_back(script);
    return script;
}

int ZBDBObject::add_script(ZBDBScript* script)
{
    if (!script)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    if (get_script(script->m_name))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "A script named %s already exists.", script->m_name.c_str());
    extra().m_script.push_back(script);
    return ZBErrC_ok;
}

int ZBDBObject::remove_script(const std::string& name)
{
    if (!m_extra)
        return ZBErrC_okNotHandled;
    ZBPtrArray<ZBDBScript>& scripts = m_extra->m_script;
    for (int i = 0; i < scripts.size(); ++i)
        if (scripts[i]->m_name == name)
            return scripts.remove(i);
    return ZBErrC_okNotHandled;
}

int ZBDBObject::get_all_scripts(ZBPtrArray<ZBDBScript>& out) const
{
    out.set_managed(false);
    for (ZBDBScript* script : extra_or_blank().m_script)
        out.push_back(script);
    return ZBErrC_ok;
}

// There is no script engine in this build, so a trigger never runs; the caller
// learns from okNotHandled that nothing happened, as when no script exists.
int ZBDBObject::run_trigger_script(const std::string&)
{
    return ZBErrC_okNotHandled;
}

void ZBDBObject::add_container(ZBDBContainerBase& container)
{
    node().m_containers.push_back(&container);
}

ZBDBContainerBase* ZBDBObject::get_container(const std::string& tag) const
{
    const ContainerList& containers = node_or_blank().m_containers;
    for (int i = 0; i < containers.size(); ++i)
        if (containers[i]->get_tag() == tag)
            return containers[i];
    return nullptr;
}

ZBDBContainerBase* ZBDBObject::get_or_make_container(const std::string& tag)
{
    if (ZBDBContainerBase* container = get_container(tag))
        return container;
    if (!allow_children())
        return nullptr;
    if (ZBDBContainerBase* own = make_own_container(tag)) {
        node().m_containers.push_back(own);
        return own;
    }
    return node().m_containers.adopt(new ZBDBContainer<ZBDBObject>(tag));
}

void ZBDBObject::remap_container(const std::string& from, const std::string& to)
{
    if (ZBDBContainerBase* container = get_container(from))
        container->set_tag(to);
}

void ZBDBObject::clear_containers()
{
    if (m_node)
        for (int i = 0; i < m_node->m_containers.size(); ++i)
            m_node->m_containers[i]->clear();
}

// ---------------------------------------------------------------- variables

namespace {

bool same_vars(const ZBDBObject& a, const ZBDBObject& b)
{
    if (a.get_nvars() == 0 && b.get_nvars() == 0)
        return a.get_variable_text() == b.get_variable_text();
    if (a.get_nvars() != b.get_nvars())
        return false;
    for (int i = 0; i < a.get_nvars(); ++i)
        if (!(*a.get_var_by_index(i) == *b.get_var_by_index(i)))
            return false;
    return true;
}

std::string escape_var(const std::string& text)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (c == '\\' || c == '#')
            out += '\\';
        out += c;
    }
    return out;
}

bool valid_var_tag(const std::string& tag)
{
    if (tag.empty())
        return false;
    int colons = 0;
    for (size_t i = 0; i < tag.size(); ++i) {
        const char c = tag[i];
        if (c == ':') {
            if (++colons > 1 || i == 0 || i + 1 == tag.size())
                return false;
        } else if (!std::isalnum((unsigned char)c) && c != '_') {
            return false;
        }
    }
    return true;
}

// The program's clock, so that a fixed moment (tests, replays) reaches these too.
std::string clock_text(const char* format)
{
    return ZBDateUtils::now().to_string(format);
}

} // namespace

void ZBDBObject::stored_vars(std::vector<std::string>& out) const
{
    for (int i = 0; i < node_or_blank().m_vars.size(); ++i) {
        const ZBVariable* variable = node_or_blank().m_vars[i];
        const std::shared_ptr<ZBVarSpec>& spec = variable->get_spec();
        // A system value is the object's own field, stored with the object.
        if (spec && (spec->is_sysvalue() || spec->is_derived() || variable->get_value() == spec->get_spec()))
            continue;
        out.push_back(var_to_string(i));
    }
}

int ZBDBObject::pre_validate_value(const std::string& tag, const std::string& value, std::string& message) const
{
    const ZBVariable* variable = get_var_by_tag(tag);
    if (variable && variable->get_spec() && !variable->get_spec()->check_value(value, message))
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: %s", tag.c_str(), message.c_str());
    return ZBErrC_ok;
}

int ZBDBObject::get_nvars(bool includePrivate) const
{
    if (includePrivate)
        return node_or_blank().m_vars.size();
    int n = 0;
    for (const ZBVariable* variable : node_or_blank().m_vars)
        n += !variable->is_private();
    return n;
}

ZBVariable* ZBDBObject::get_var_by_tag(const std::string& tag) const
{
    for (ZBVariable* variable : node_or_blank().m_vars)
        if (variable->get_tag() == tag)
            return variable;
    return nullptr;
}

bool ZBDBObject::var_is_calculated(const std::string& tag) const
{
    const ZBVariable* variable = get_var_by_tag(tag);
    return variable && variable->is_derived();
}

int ZBDBObject::add_var(ZBVariable* variable)
{
    if (!variable)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    for (int i = 0; i < node().m_vars.size(); ++i)
        if (node().m_vars[i]->get_tag() == variable->get_tag()) {
            node().m_vars.remove(i);
            node().m_vars.insert(i, variable);
            return ZBErrC_ok;
        }
    node().m_vars.push_back(variable);
    return ZBErrC_ok;
}

void ZBDBObject::clear_vars()
{
    if (!m_node)
        return;
    m_varsChanged = m_varsChanged || !m_node->m_vars.empty() || !m_node->m_variable.empty();
    m_node->m_vars.clear();
}

int ZBDBObject::remove_var_by_index(int index)
{
    if (index < 0 || index >= node().m_vars.size())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "There is no variable %d.", index);
    m_varsChanged = true;
    return node().m_vars.remove(index);
}

int ZBDBObject::locate_vars(const std::string& text)
{
    size_t start = 0, end = 0;
    std::string inner;
    for (size_t pos = 0; locate_next_var(text, pos, start, end, inner); pos = end) {
        char modifier = 0;
        int parents = 0;
        std::string tag;
        extract_var(inner, modifier, parents, tag);
        if (parents > 0 || !valid_var_tag(tag) || get_var_by_tag(tag))
            continue;
        ZBVariable* variable = new ZBVariable(tag, std::string());
        if (tag == "DATE" || tag == "TIME" || tag == "YEAR") {
            variable->set_value(clock_text(tag == "DATE" ? "%d-%b-%Y" : (tag == "TIME" ? "%I:%M:%S %p" : "%Y")));
            variable->mark_initialised();
        } else {
            std::shared_ptr<ZBVarSpec> spec = std::make_shared<ZBVarSpec>(tag);
            spec->set_prompt(true);
            variable->set_spec(spec);
        }
        node().m_vars.push_back(variable);
    }
    return ZBErrC_ok;
}

std::string ZBDBObject::get_var_value(const std::string& tag, bool searchParents, bool update)
{
    ZBDBObject* object = this;
    ZBVariable* variable = get_var_by_tag(tag);
    while (!variable && searchParents && object->get_parent()) {
        object = object->get_parent();
        variable = object->get_var_by_tag(tag);
    }
    if (!variable)
        return "$<" + tag + ">";
    if (update && variable->is_auto()) {
        const std::string& old = variable->get_value();
        const int width = int(old.size());
        const long next = std::strtol(old.c_str(), nullptr, 10) + 1;
        variable->set_value(zb_sprintf("%0*d", width, int(next)));
        variable->mark_initialised();
        object->mark_changed(ZBLOC, false);
    }
    return variable->get_value();
}

int ZBDBObject::set_var_value(const std::string& tag, const std::string& value)
{
    ZBVariable* variable = get_var_by_tag(tag);
    if (!variable) {
        if (!valid_var_tag(tag))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Invalid variable name %s.", tag.c_str());
        variable = new ZBVariable(tag, value);
        node().m_vars.push_back(variable);
    }
    variable->set_value(value);
    variable->clear_cache();
    variable->mark_initialised();
    if (variable->is_sysvalue()) {
        const std::string assoc = variable->get_spec()->get_assoc();
        if (assoc.empty())
            set_sysvalue(tag, value);
        else
            set_sysvalue(variable->get_spec()->get_name(), assoc, value);
    }
    return ZBErrC_ok;
}

std::string ZBDBObject::var_to_string(int index) const
{
    const ZBVariable* variable = node_or_blank().m_vars.at(index);
    if (!variable)
        return std::string();
    return variable->get_tag() + "=" + escape_var(variable->get_value());
}

int ZBDBObject::var_from_string(const std::string& text)
{
    size_t pos = 0;
    const size_t n = text.size();
    int result = ZBErrC_ok;
    while (pos < n) {
        while (pos < n && text[pos] == ' ')
            ++pos;
        if (pos >= n)
            break;
        const size_t equals = text.find('=', pos);
        std::string value;
        size_t next = n;
        if (equals != std::string::npos) {
            size_t i = equals + 1;
            for (; i < n; ++i) {
                if (text[i] == '\\' && i + 1 < n) {
                    value += text[++i];
                } else if (text[i] == '#' && (i + 1 == n || text[i + 1] == ' ')) {
                    next = i + 1;
                    break;
                } else {
                    value += text[i];
                }
            }
        }
        const std::string tag = equals == std::string::npos ? text.substr(pos) : text.substr(pos, equals - pos);
        if (equals == std::string::npos || !valid_var_tag(tag)) {
            result = zbwarnuser(ZBErrC_FileLineInvalid, ZBLOC, "Invalid embedded variable %s", text.substr(pos).c_str());
            break;
        }
        ZBVariable* variable = get_var_by_tag(tag);
        if (!variable) {
            variable = new ZBVariable(tag, value);
            node().m_vars.push_back(variable);
        }
        variable->set_value(value);
        variable->mark_initialised();
        pos = next;
    }
    return result;
}

int ZBDBObject::apply_objectspec(const ZBObjectSpec& spec)
{
    if (!uses_spec())
        return zberror(ZBErrC_InvalidValue, ZBLOC, "This object does not use object specs.");
    const int nspec = spec.get_nvarspecs();
    ZBPtrArray<ZBVariable> linked;
    for (int i = 0; i < nspec; ++i) {
        const std::shared_ptr<ZBVarSpec>& varSpec = spec.get_varspec_ptr(i);
        ZBVariable* variable = nullptr;
        for (int j = 0; j < node().m_vars.size(); ++j)
            if (node().m_vars[j]->get_tag() == varSpec->get_tag()) {
                variable = node().m_vars.extract(j);
                break;
            }
        if (!variable)
            variable = new ZBVariable(varSpec->get_tag(), varSpec->get_spec());
        else if (const std::shared_ptr<ZBVarSpec>& old = variable->get_spec())
            // A value still equal to the old declaration's text was never the
            // user's (the file does not store it), so it follows the new text.
            if (old->get_spec() != varSpec->get_spec() && variable->get_value() == old->get_spec())
                variable->mark_initialised(false);
        variable->set_spec(varSpec);
        linked.push_back(variable);
    }
    if (!node().m_vars.empty())
        m_varsChanged = true;
    node().m_vars = std::move(linked);
    node().m_vars.set_managed(true);
    update_vars();
    return ZBErrC_ok;
}

int ZBDBObject::update_vars()
{
    m_triggerUpdateVars = false;
    if (node_or_blank().m_vars.empty())
        return ZBErrC_okFinished;
    for (ZBVariable* variable : node_or_blank().m_vars) {
        // A computed system value (eval) is worked out below and written back
        // to the object; any other one is the object's field as it stands.
        if (variable->is_sysvalue() && !variable->is_derived()) {
            const std::string assoc = variable->get_spec()->get_assoc();
            variable->set_value(assoc.empty() ? get_sysvalue(variable->get_tag())
                                              : get_sysvalue(variable->get_spec()->get_name(), assoc));
            // The value is the object's own; nothing to work out or write back.
            variable->mark_initialised();
            continue;
        }
        if ((variable->is_derived() || !variable->is_initialised()) && variable->get_spec() && !apply_note(*variable))
            variable->clone_spec();
    }
    bool progress = true;
    bool unfinished = false;
    while (progress) {
        progress = false;
        unfinished = false;
        for (ZBVariable* variable : node_or_blank().m_vars) {
            if (variable->is_initialised())
                continue;
            if ((variable->is_prompt() && !variable->is_derived()) || apply_note(*variable)) {
                unfinished = true;
                continue;
            }
            if (expand_var(*variable) == ZBErrC_okFinished) {
                variable->mark_initialised();
                if (variable->is_sysvalue())
                    write_sysvalue(*variable);
                progress = true;
            } else {
                unfinished = true;
            }
        }
    }
    return unfinished ? ZBErrC_okNotFinished : ZBErrC_okFinished;
}

// Only a value that differs is written, so that an update that finds the
// object as its spec wants it changes nothing; a change is the object's own.
void ZBDBObject::write_sysvalue(const ZBVariable& variable)
{
    const std::string assoc = variable.get_spec()->get_assoc();
    const std::string& name = assoc.empty() ? variable.get_tag() : variable.get_spec()->get_name();
    const std::string before = assoc.empty() ? get_sysvalue(name) : get_sysvalue(name, assoc);
    if (before == variable.get_value())
        return;
    if (assoc.empty())
        set_sysvalue(name, variable.get_value());
    else
        set_sysvalue(name, assoc, variable.get_value());
    if ((assoc.empty() ? get_sysvalue(name) : get_sysvalue(name, assoc)) != before)
        mark_changed(ZBLOC, true);
}

int ZBDBObject::expand_var(ZBVariable& variable)
{
    std::string text = variable.get_value();
    int result = apply_vars(text, true, nullptr);
    if (result != ZBErrC_okFinished)
        return result;
    variable.set_value(text);
    variable.set_cached(true);
    return ZBErrC_okFinished;
}

bool ZBDBObject::locate_next_var(const std::string& text, size_t from, size_t& start, size_t& end, std::string& inner)
{
    start = text.find("$<", from);
    if (start == std::string::npos)
        return false;
    const size_t close = text.find('>', start + 2);
    if (close == std::string::npos)
        return false;
    inner = text.substr(start + 2, close - start - 2);
    end = close + 1;
    return true;
}

void ZBDBObject::extract_var(const std::string& inner, char& modifier, int& parents, std::string& tag)
{
    size_t pos = 0;
    modifier = 0;
    parents = 0;
    if (inner.size() >= 2 && inner[0] == '%') {
        modifier = inner[1];
        pos = 2;
    }
    while (pos < inner.size() && inner[pos] == '^') {
        ++parents;
        ++pos;
    }
    tag = inner.substr(pos);
}

int ZBDBObject::apply_vars(std::string& text, bool firstTime, ZBDBScriptCache* cache)
{
    bool unfinished = false;
    size_t pos = 0;
    for (int count = 0; count < 10000; ++count) {
        size_t start = 0, end = 0;
        std::string inner;
        if (!locate_next_var(text, pos, start, end, inner))
            break;
        char modifier = 0;
        int parents = 0;
        std::string tag;
        extract_var(inner, modifier, parents, tag);
        const ZBDBObject* object = this;
        for (int i = 0; i < parents && object; ++i)
            object = object->get_parent();
        const ZBVariable* variable = object ? object->get_var_by_tag(tag) : nullptr;
        if (!variable || (firstTime && !variable->is_initialised())) {
            unfinished = true;
            pos = start + 2;
            continue;
        }
        std::string value = variable->get_value();
        if (modifier == 'L' || modifier == 'l')
            for (char& c : value)
                c = char(std::tolower((unsigned char)c));
        else if (modifier == 'U' || modifier == 'u')
            for (char& c : value)
                c = char(std::toupper((unsigned char)c));
        text.replace(start, end - start, value);
        // The value is not searched again, so a value holding "$<" cannot loop.
        pos = start + value.size();
    }
    if (unfinished)
        return ZBErrC_okNotFinished;
    ZBDBScriptCache temporary;
    if (!cache)
        cache = &temporary;
    pos = 0;
    for (int slot = 0; slot < 100; ++slot) {
        const size_t start = text.find("$=(", pos);
        if (start == std::string::npos)
            break;
        size_t i = start + 3;
        int depth = 1;
        for (; i < text.size() && depth > 0; ++i)
            depth += text[i] == '(' ? 1 : (text[i] == ')' ? -1 : 0);
        if (depth > 0)
            break;
        std::string result;
        cache->evaluate(text.substr(start + 3, i - 1 - start - 3), slot, result);
        text.replace(start, i - start, result);
        pos = start + result.size();
    }
    return ZBErrC_okFinished;
}

int ZBDBObject::copy_values(const ZBDBObject& other)
{
    for (ZBVariable* variable : node_or_blank().m_vars)
        if (const ZBVariable* from = other.get_var_by_tag(variable->get_tag())) {
            variable->set_value(from->get_value());
            variable->mark_initialised(from->is_initialised());
        }
    return ZBErrC_ok;
}

int ZBDBObject::append_values(const ZBDBObject& other)
{
    copy_values(other);
    for (const ZBVariable* from : other.node_or_blank().m_vars)
        if (!get_var_by_tag(from->get_tag())) {
            ZBVariable* copy = new ZBVariable(from->get_tag(), from->get_value());
            copy->mark_initialised(from->is_initialised());
            node().m_vars.push_back(copy);
        }
    return ZBErrC_ok;
}

int ZBDBObject::post_validate_values(std::string& message) const
{
    message.clear();
    for (const ZBVariable* variable : node_or_blank().m_vars) {
        std::string why;
        if (variable->get_spec() && !variable->get_spec()->check_value(variable->get_value(), why))
            message += (message.empty() ? "" : "\n") + variable->get_tag() + ": " + why;
    }
    if (!message.empty())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s", message.c_str());
    return ZBErrC_ok;
}

int ZBDBObject::set_number_seq(const std::string& tag, int number)
{
    ZBVariable* variable = get_var_by_tag(tag);
    if (!variable)
        return zberror(ZBErrC_InvalidValue, ZBLOC, "There is no variable %s.", tag.c_str());
    const int width = int(variable->get_value().size());
    variable->set_value(zb_sprintf("%0*d", width, number));
    variable->mark_initialised();
    return ZBErrC_ok;
}

} // namespace Tervalon
