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

ZBDBObject::ZBDBObject()
    : m_id(-1), m_state(E_Normal), m_parentId(-1), m_specId(-1), m_createTime(ZBDate::E_Blank), m_createID(-1),
      m_modifyTime(ZBDate::E_Blank), m_parent(nullptr), m_database(nullptr), m_objectSerialised(false), m_alertState(0),
      m_systemChange(false)
{
    ZBDBObject::register_zbobject();
}

// A copy is a detached object: same stored members, no parent pointer, no
// database and no containers until it is placed in a database.
ZBDBObject::ZBDBObject(const ZBDBObject& other)
    : ZBObject(other), ZBUpdateCounter(other), m_id(other.m_id), m_state(other.m_state), m_parentId(other.m_parentId),
      m_containerTag(other.m_containerTag), m_memberTag(other.m_memberTag), m_link(other.m_link),
      m_specId(other.m_specId), m_variable(other.m_variable), m_createTime(other.m_createTime),
      m_createID(other.m_createID), m_modifyTime(other.m_modifyTime), m_child(other.m_child), m_script(other.m_script),
      m_parent(nullptr), m_database(nullptr), m_objectSerialised(other.m_objectSerialised),
      m_modifyLoc(other.m_modifyLoc), m_alertState(other.m_alertState), m_systemChange(false)
{
    ZBDBObject::register_zbobject();
}

ZBDBObject::~ZBDBObject() = default;

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
    return m_containers.back();
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
