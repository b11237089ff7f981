#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbdatabase.h"
#include "LibDatabase/db/zbdbcontainer.h"
#include "LibDatabase/db/zbdbscript.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <sstream>

namespace Tervalon {

namespace {
ZBObjectPreReg g_register("ZBDBObject", &ZBDBObject::create_zbobject);
}

const char* const ZBDBObject::C_Trigger = "on_";
const char* const ZBDBObject::C_CreateTrigger = "create";
const char* const ZBDBObject::C_EditTrigger = "edit";
const char* const ZBDBObject::C_RecalculateTrigger = "recalculate";
const char* const ZBDBObject::C_StartupTrigger = "startup";

ZBDBObject::ZBDBObject()
    : m_id(-1), m_state(E_Normal), m_parentId(-1), m_specId(-1), m_createTime(ZBDate::E_Blank), m_createID(-1),
      m_modifyTime(ZBDate::E_Blank), m_backup(nullptr), m_created(false), m_containers(false), m_parent(nullptr),
      m_database(nullptr), m_objectSerialised(false), m_triggerUpdateVars(false), m_alertState(0), m_systemChange(false)
{
    ZBDBObject::register_zbobject();
}

// A copy is a detached object: same stored members, no parent pointer, no
// database, no containers until it is placed in a database, no lock and no backup.
ZBDBObject::ZBDBObject(const ZBDBObject& other)
    : ZBObject(other), ZBUpdateCounter(other), ZBLockable(), m_id(other.m_id), m_state(other.m_state), m_parentId(other.m_parentId),
      m_containerTag(other.m_containerTag), m_memberTag(other.m_memberTag), m_link(other.m_link),
      m_specId(other.m_specId), m_variable(other.m_variable), m_createTime(other.m_createTime),
      m_createID(other.m_createID), m_modifyTime(other.m_modifyTime), m_child(other.m_child), m_script(other.m_script),
      m_backup(nullptr), m_created(false), m_containers(false), m_parent(nullptr), m_database(nullptr),
      m_objectSerialised(other.m_objectSerialised), m_triggerUpdateVars(other.m_triggerUpdateVars), m_modifyLoc(other.m_modifyLoc), m_alertState(other.m_alertState), m_systemChange(false)
{
    ZBDBObject::register_zbobject();
}

ZBDBObject::~ZBDBObject()
{
    delete m_backup;
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
    m_containerTag = other.m_containerTag;
    m_memberTag = other.m_memberTag;
    m_link = other.m_link;
    m_specId = other.m_specId;
    m_variable = other.m_variable;
    m_createTime = other.m_createTime;
    m_createID = other.m_createID;
    m_modifyTime = other.m_modifyTime;
    m_child = other.m_child;
    m_script = other.m_script;
    m_objectSerialised = other.m_objectSerialised;
    m_modifyLoc = other.m_modifyLoc;
    m_alertState = other.m_alertState;
    return *this;
}

bool ZBDBObject::operator==(const ZBDBObject& other) const
{
    return m_id == other.m_id && m_state == other.m_state && m_parentId == other.m_parentId
        && m_containerTag == other.m_containerTag && m_memberTag == other.m_memberTag && m_link == other.m_link
        && m_specId == other.m_specId && m_variable == other.m_variable && m_createTime == other.m_createTime
        && m_createID == other.m_createID && m_modifyTime == other.m_modifyTime && m_child == other.m_child
        && m_script == other.m_script && ZBObject::operator==(other);
}

void ZBDBObject::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDBObject", out, indent);
    dump.add("m_id", m_id);
    dump.add("m_state", m_state);
    dump.add("m_parentId", m_parentId);
    dump.add_entry("m_containerTag", m_containerTag);
    dump.add_entry("m_memberTag", m_memberTag);
    for (size_t i = 0; i < m_link.size(); ++i)
        dump.add("m_link", m_link[i], int(i));
    dump.add("m_specId", m_specId);
    for (int i = 0; i < m_variable.size(); ++i)
        dump.add_entry("m_variable", *m_variable[i], i);
    dump.add_entry("m_createTime", m_createTime.to_iso());
    dump.add("m_createID", m_createID);
    dump.add_entry("m_modifyTime", m_modifyTime.to_iso());
    dump.add("m_child", m_child.size());
    dump.add("m_script", m_script.size());
    dump.add_entry("m_modifyLoc", m_modifyLoc);
    dump.add("m_lastUpdate", get_last_update());
    dump.write_heading("Base Class");
    dump.write();
    ZBObject::dump(out, indent + 1);
}

int ZBDBObject::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    serialise_field<int>(in, out, prefix, "I", m_id, -1, true);
    serialise_field<char>(in, out, prefix, "S", m_state, char(E_Normal));
    bool oldFlag = false;
    serialise_field<bool>(in, out, prefix, "E", oldFlag, false);
    serialise_field<int>(in, out, prefix, "P", m_parentId, -1);
    serialise_string(in, out, prefix, "C", m_containerTag, true);
    serialise_string(in, out, prefix, "M", m_memberTag, true);
    ZBSrlValueVector<ZBDBObjectLink> links(m_link);
    serialise_value(in, out, prefix, "L", links);
    serialise_field<int>(in, out, prefix, "O", m_specId, -1);
    serialise_string_array(in, out, prefix, "V", m_variable);
    const ZBDate blank(ZBDate::E_Blank);
    serialise_field<ZBDate>(in, out, prefix, "CT", m_createTime, blank);
    serialise_field<int>(in, out, prefix, "CI", m_createID, -1);
    if (in || m_modifyTime != m_createTime)
        serialise_field<ZBDate>(in, out, prefix, "MT", m_modifyTime, blank);
    ZBSrlObjectArray<ZBDBObject> children(m_child, version);
    int result = serialise_object(in, out, prefix, "MC", children);
    if (iszberr(result))
        return zbpass(ZBLOC);
    ZBSrlObjectArray<ZBDBScript> scripts(m_script, version);
    result = serialise_object(in, out, prefix, "SC", scripts);
    if (iszberr(result))
        return zbpass(ZBLOC);
    if (in) {
        if (m_state != E_Normal && m_state != E_Deleted)
            m_state = E_Normal;
        if (m_parentId == m_id)
            m_parentId = -1;
        if (!m_modifyTime.is_ok())
            m_modifyTime = m_createTime;
        m_objectSerialised = true;
    }
    if (!m_modifyLoc.empty() && m_modifyTime.is_ok()
        && ZBDateUtils::now() - m_modifyTime > ZBDuration(0, ZBDate::C_DaySecs, 0))
        m_modifyLoc.clear();
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

int ZBDBObject::edit(int lockId, bool created)
{
    int result = lock(lockId);
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    m_created = created;
    delete m_backup;
    m_backup = dynamic_cast<ZBDBObject*>(clone_class());
    if (!m_backup) {
        unlock();
        return zberror(ZBErrC_DynamicCast, ZBLOC, "Could not duplicate this object.");
    }
    return ZBErrC_ok;
}

int ZBDBObject::commit()
{
    if (!is_locked())
        return zberror(ZBLockable::ZBErrC_ObjectNotLocked, ZBLOC, "The object %d was not locked.", m_id);
    if (!m_backup)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The object %d was not backed up.", m_id);
    delete m_backup;
    m_backup = nullptr;
    // Prompt variables count as answered from here on; they belong to the spec
    // machinery, which marks them through trigger_update_vars.
    unlock();
    mark_changed(ZBLOC, true);
    m_created = false;
    return ZBErrC_ok;
}

int ZBDBObject::revert()
{
    if (!is_locked())
        return zberror(ZBLockable::ZBErrC_ObjectNotLocked, ZBLOC, "The object %d was not locked.", m_id);
    if (!m_backup)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The object %d was not backed up.", m_id);
    const int version = m_database ? m_database->get_app_file_version() : 0;
    const int id = m_id;
    const long lastUpdate = get_last_update();
    int result = derived_assign(*m_backup, version);
    m_id = id;
    restore_update(lastUpdate);
    delete m_backup;
    m_backup = nullptr;
    unlock();
    m_created = false;
    if (iszbwarn(result))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

int ZBDBObject::remap_id(int from, int to)
{
    if (m_parentId == from)
        m_parentId = to;
    for (ZBDBObjectLink& link : m_link)
        if (link.m_id.m_id == from)
            link.m_id.m_id = to;
    return ZBErrC_ok;
}

std::string ZBDBObject::get_container_tag() const
{
    return m_containerTag;
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
    if (m_database)
        m_database->mark_db_structure_change(*this);
}

void ZBDBObject::mark_changed(const std::string& location, bool updateTime)
{
    if (m_systemChange) {
        m_systemChange = false;
        return;
    }
    if (updateTime)
        m_modifyTime = ZBDateUtils::now() + ZBDuration(1);
    m_modifyLoc = location;
    if (m_id >= 0)
        mark_update();
}

void ZBDBObject::set_id(int id, const ZBDate& created, bool isNew)
{
    if (isNew) {
        m_createID = -1;
    } else {
        if (id == m_id)
            return;
        if (m_createID < 0 && m_id >= 0)
            m_createID = m_id;
    }
    m_id = id;
    m_createTime = created;
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
    int parentId = parent ? parent->get_id() : -1;
    bool changed = parentId != m_parentId || containerTag != m_containerTag || memberTag != m_memberTag;
    m_parentId = parentId;
    m_parent = parent;
    m_containerTag = containerTag;
    m_memberTag = memberTag;
    m_database = db;
    if (changed) {
        mark_structure_change();
        mark_changed(ZBLOC, true);
    }
}

void ZBDBObject::set_parent_ptr(ZBDBObject* parent, ZBDatabase* db)
{
    m_parent = parent;
    m_database = db;
}

void ZBDBObject::add_link(int id, const std::string& type)
{
    ZBDBObjectLink link(ZBId(id), type);
    if (std::find(m_link.begin(), m_link.end(), link) != m_link.end())
        return;
    m_link.push_back(link);
}

int ZBDBObject::remove_link(int id, const std::string& type, bool all)
{
    for (size_t i = 0; i < m_link.size();) {
        if (m_link[i].m_id.m_id == id && m_link[i].m_type == type) {
            m_link.erase(m_link.begin() + long(i));
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
    for (const ZBDBObjectLink& link : m_link)
        n += link.m_type == type;
    return n;
}

int ZBDBObject::get_assoc_by_index(const std::string& type, int index) const
{
    for (const ZBDBObjectLink& link : m_link)
        if (link.m_type == type && index-- == 0)
            return link.m_id.m_id;
    return -1;
}

std::vector<int> ZBDBObject::get_links(const std::string& type) const
{
    std::vector<int> ids;
    for (const ZBDBObjectLink& link : m_link)
        if (link.m_type == type)
            ids.push_back(link.m_id.m_id);
    return ids;
}

void ZBDBObject::add_managed_child(ZBDBObject* child)
{
    if (child)
        m_child.push_back(child);
}

ZBDBObject* ZBDBObject::extract_managed_child()
{
    return m_child.empty() ? nullptr : m_child.extract(0);
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
    for (ZBDBScript* script : m_script)
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
    m_script.push_back(script);
    return script;
}

int ZBDBObject::add_script(ZBDBScript* script)
{
    if (!script)
        return zberror(ZBErrC_NullPointer, ZBLOC, "The supplied object was nullptr.");
    if (get_script(script->m_name))
        return zberror(ZBErrC_InvalidValue, ZBLOC, "A script named %s already exists.", script->m_name.c_str());
    m_script.push_back(script);
    return ZBErrC_ok;
}

int ZBDBObject::remove_script(const std::string& name)
{
    for (int i = 0; i < m_script.size(); ++i)
        if (m_script[i]->m_name == name)
            return m_script.remove(i);
    return ZBErrC_okNotHandled;
}

int ZBDBObject::get_all_scripts(ZBPtrArray<ZBDBScript>& out) const
{
    out.set_managed(false);
    for (ZBDBScript* script : m_script)
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
    m_containers.push_back(&container);
}

ZBDBContainerBase* ZBDBObject::get_container(const std::string& tag) const
{
    for (ZBDBContainerBase* container : m_containers)
        if (container->get_tag() == tag)
            return container;
    return nullptr;
}

ZBDBContainerBase* ZBDBObject::get_or_make_container(const std::string& tag)
{
    if (ZBDBContainerBase* container = get_container(tag))
        return container;
    if (!allow_children())
        return nullptr;
    m_ownContainers.emplace_back(new ZBDBContainer<ZBDBObject>(tag));
    m_containers.push_back(m_ownContainers.back().get());
    return m_containers.last();
}

void ZBDBObject::remap_container(const std::string& from, const std::string& to)
{
    if (ZBDBContainerBase* container = get_container(from))
        container->set_tag(to);
}

void ZBDBObject::clear_containers()
{
    for (ZBDBContainerBase* container : m_containers)
        container->clear();
}

} // namespace Tervalon
