#include "LibDiary/diary/zbpersonmgr.h"
#include "LibDiary/diary/zbdgroup.h"
#include "LibDiary/diary/zbdiary.h"
#include "LibDiary/diary/zbdperson.h"
#include "LibDiary/diary/zbpersondata.h"
#include "LibDate/date/zbdateutils.h"

namespace Tervalon {

const char* const ZBPersonMgr::C_DeletePersonTitle = "Delete Person";
const char* const ZBPersonMgr::C_DeleteGroupTitle = "Delete Group";
int ZBPersonMgr::ZBErrC_PersonInUse = ZBError::allocate_code("ZBErrC_PersonInUse", "The record is still in use.");

ZBPersonMgr::ZBPersonMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "person") {}

ZBPersonData& ZBPersonMgr::data() const
{
    return get_diary().personC();
}

// The lists are worked out from the database rather than kept in step by
// hand, so records added by any path (a merge, a script, the planner) count.
void ZBPersonMgr::refresh() const
{
    ZBPersonData& block = data();
    const ZBDiary& diary = get_diary();
    if (block.m_builtObjects == diary.get_nobjects() && block.m_builtStructure == diary.get_last_structure_change())
        return;
    block.m_people.clear();
    block.m_groups.clear();
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        const ZBDBObject* object = diary.get_object_by_index(i);
        if (object->is_deleted())
            continue;
        if (dynamic_cast<const ZBDPerson*>(object))
            block.m_people.push_back(object->get_id());
        else if (dynamic_cast<const ZBDGroup*>(object))
            block.m_groups.push_back(object->get_id());
    }
    block.m_builtObjects = diary.get_nobjects();
    block.m_builtStructure = diary.get_last_structure_change();
}

bool ZBPersonMgr::has_user_data() const
{
    return get_npeople() > 0 || get_ngroups() > 0;
}

int ZBPersonMgr::remap_id(int, int)
{
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

int ZBPersonMgr::initialise()
{
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

// People whose contact reminder has come.
int ZBPersonMgr::generate_notify(std::vector<ZBNotifyItem>& out)
{
    const ZBDate now = ZBDateUtils::now();
    for (int i = 0; i < get_npeople(); ++i) {
        const ZBDPerson* person = get_person_no(i);
        if (person && person->has_reminder() && person->get_reminder() <= now && !person->contacted_today())
            out.emplace_back(0, 50, "Contact: " + person->get_name(), person->get_id(), person->get_reminder());
    }
    return ZBErrC_ok;
}

int ZBPersonMgr::get_npeople() const
{
    refresh();
    return int(data().m_people.size());
}

ZBDPerson* ZBPersonMgr::get_person_no(int index) const
{
    refresh();
    const std::vector<int>& people = data().m_people;
    if (index < 0 || index >= int(people.size())) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, int(people.size()));
        return nullptr;
    }
    return get_person_id(people[size_t(index)]);
}

ZBDPerson* ZBPersonMgr::get_person_id(int id) const
{
    return id < 0 ? nullptr : dynamic_cast<ZBDPerson*>(get_diary().get_object_by_id(id));
}

ZBDPerson* ZBPersonMgr::edit_person_id(int id) const
{
    ZBDPerson* person = get_person_id(id);
    if (!person || iszbwarn(person->edit(-1, false)))
        return nullptr;
    return person;
}

std::vector<std::string> ZBPersonMgr::get_person_name(bool withCounts) const
{
    std::vector<std::string> names;
    for (int i = 0; i < get_npeople(); ++i) {
        const ZBDPerson* person = get_person_no(i);
        std::string name = person->get_name();
        if (withCounts)
            name += zb_sprintf(" (%d)", person_use_count(person->get_id()));
        names.push_back(name);
    }
    return names;
}

std::string ZBPersonMgr::person_name_for_id(int id) const
{
    const ZBDPerson* person = get_person_id(id);
    return person ? person->get_name() : std::string();
}

int ZBPersonMgr::add_person(ZBDPerson*& out, const std::string& firstName, const std::string& surname, ZBDBObject* parent)
{
    out = nullptr;
    auto person = std::make_unique<ZBDPerson>();
    person->set_firstname(firstName);
    person->set_surname(surname);
    if (iszbwarn(get_diary().add_object(person.get(), parent ? parent : &get_diary(), ZBDiary::C_PersonTag,
                                        std::string(), -1, std::string())))
        return zbpass(ZBLOC);
    out = person.release();
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

int ZBPersonMgr::person_use_count(int id) const
{
    const ZBDiary& diary = get_diary();
    int count = 0;
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        const ZBDBObject* object = diary.get_object_by_index(i);
        if (object->is_deleted() || object->get_id() == id)
            continue;
        if (const ZBDGroup* group = dynamic_cast<const ZBDGroup*>(object))
            count += group->has_member(id);
        else if (const ZBDEntry* entry = dynamic_cast<const ZBDEntry*>(object))
            count += entry->get_person_pair().orig == id || entry->get_person_pair().calc == id;
    }
    return count;
}

int ZBPersonMgr::delete_person(const ZBDPerson& person)
{
    if (person_use_count(person.get_id()) > 0)
        return zbwarnuser(ZBErrC_PersonInUse, ZBLOC, "Person is in use.");
    if (iszbwarn(get_diary().delete_object(person.get_id(), C_DeletePersonTitle)))
        return zbpass(ZBLOC);
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

const std::string& ZBPersonMgr::get_contacturl() const
{
    return data().get_contacturl();
}

void ZBPersonMgr::set_contacturl(const std::string& url)
{
    data().set_contacturl(url);
    get_diary().mark_changed(ZBLOC, true);
}

int ZBPersonMgr::fill_contact_url(const ZBDPerson& person, const std::string& details, std::string& out) const
{
    return person.populate_url(get_contacturl(), details, out);
}

int ZBPersonMgr::get_ngroups() const
{
    refresh();
    return int(data().m_groups.size());
}

ZBDGroup* ZBPersonMgr::get_group_no(int index) const
{
    refresh();
    const std::vector<int>& groups = data().m_groups;
    if (index < 0 || index >= int(groups.size())) {
        zberror(ZBErrC_ArrayBounds, ZBLOC, "Element %d out of bounds (%d items)", index, int(groups.size()));
        return nullptr;
    }
    return get_group_id(groups[size_t(index)]);
}

ZBDGroup* ZBPersonMgr::get_group_id(int id) const
{
    return id < 0 ? nullptr : dynamic_cast<ZBDGroup*>(get_diary().get_object_by_id(id));
}

ZBDGroup* ZBPersonMgr::edit_group_id(int id) const
{
    ZBDGroup* group = get_group_id(id);
    if (!group || iszbwarn(group->edit(-1, false)))
        return nullptr;
    return group;
}

int ZBPersonMgr::add_group(ZBDGroup*& out, const std::string& name)
{
    out = nullptr;
    auto group = std::make_unique<ZBDGroup>();
    group->set_name(name);
    if (iszbwarn(get_diary().add_object(group.get(), &get_diary(), ZBDiary::C_GroupTag, std::string(), -1,
                                        std::string())))
        return zbpass(ZBLOC);
    out = group.release();
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

int ZBPersonMgr::group_use_count(int id) const
{
    int count = 0;
    for (int i = 0; i < get_npeople(); ++i)
        count += get_person_no(i)->in_group(id);
    return count;
}

int ZBPersonMgr::delete_group(const ZBDGroup& group)
{
    if (group_use_count(group.get_id()) > 0)
        return zbwarnuser(ZBErrC_PersonInUse, ZBLOC, "Group is in use.");
    if (iszbwarn(get_diary().delete_object(group.get_id(), C_DeleteGroupTitle)))
        return zbpass(ZBLOC);
    data().m_builtObjects = -1;
    return ZBErrC_ok;
}

} // namespace Tervalon
