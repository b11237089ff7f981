#include "AppTervalonDiary/diary/diaryclipboard.h"
#include "AppTervalonDiary/diary/diary.h"
#include "LibCore/error/zberror.h"

namespace Tervalon {

ZBIdList DiaryClipboard::m_cutID;

DiaryClipboard& DiaryClipboard::instance()
{
    static DiaryClipboard clipboard;
    return clipboard;
}

void DiaryClipboard::clear()
{
    m_items.clear();
    m_cutID.clear();
    m_wereCopied = true;
}

bool DiaryClipboard::is_cut(int id)
{
    return m_cutID.is_marked(ZBId(id));
}

int DiaryClipboard::take(const DiaryEntry& entry, Item& out)
{
    ZBObject* copy = entry.clone_class();
    out.object.reset(dynamic_cast<ZBDBObject*>(copy));
    if (!out.object) {
        delete copy;
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Could not copy entry %d.", entry.get_id());
    }
    out.memberTag = entry.get_member_tag();
    out.specId = entry.get_specid();
    for (const DiaryEntry* child : entry.get_children()) {
        if (child->is_deleted())
            continue;
        Item item;
        if (iszbwarn(take(*child, item)))
            return zbpass(ZBLOC);
        out.children.push_back(std::move(item));
    }
    return ZBErrC_ok;
}

int DiaryClipboard::copy(const Diary& diary, const ZBIdList& ids, bool cut)
{
    std::vector<Item> items;
    ZBIdList taken;
    for (int i = 0; i < ids.size(); ++i) {
        const DiaryEntry* entry = diary.get_entry_id(ids[i].m_id);
        if (!entry)
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "Could not find the entry in the diary.");
        // An entry below another one taken comes with it already.
        bool inside = false;
        for (int j = 0; j < ids.size(); ++j)
            if (j != i && diary.is_ancestor(ids[i].m_id, ids[j].m_id))
                inside = true;
        if (inside)
            continue;
        Item item;
        if (iszbwarn(take(*entry, item)))
            return zbpass(ZBLOC);
        items.push_back(std::move(item));
        taken.add(ZBId(entry->get_id()));
    }
    m_items.swap(items);
    m_wereCopied = !cut;
    m_cutID = cut ? taken : ZBIdList();
    return ZBErrC_ok;
}

int DiaryClipboard::paste_item(Diary& diary, const Item& item, ZBDBObject* parent, int& madeId)
{
    ZBObject* copy = item.object->clone_class();
    ZBDBObject* object = dynamic_cast<ZBDBObject*>(copy);
    if (!object) {
        delete copy;
        return zberror(ZBErrC_InvalidValue, ZBLOC, "Missing spec or member tag.");
    }
    ZBDBObject* holder = parent ? parent : static_cast<ZBDBObject*>(&diary);
    madeId = diary.allocate_id();
    if (iszbwarn(diary.add_object(object, holder, DiaryEntry::C_EntryTag, item.memberTag, item.specId, std::string(),
                                  madeId))) {
        delete object; // refused, so still ours
        return zbpass(ZBLOC);
    }
    object->mark_changed(ZBLOC, true);
    for (const Item& child : item.children) {
        int childId = -1;
        if (iszbwarn(paste_item(diary, child, object, childId)))
            return zbpass(ZBLOC);
    }
    return ZBErrC_ok;
}

int DiaryClipboard::do_paste(Diary& diary, DiaryEntry* target, int times, std::vector<int>* made)
{
    if (m_items.empty())
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "No object on the clipboard.");
    for (int n = 0; n < times; ++n)
        for (const Item& item : m_items) {
            int id = -1;
            if (iszbwarn(paste_item(diary, item, target, id)))
                return zbpass(ZBLOC);
            if (made)
                made->push_back(id);
        }
    // Pasted once, a cut is over: its entries are no longer waiting to move.
    m_cutID.clear();
    if (iszbwarn(diary.resolve_containers()))
        return zbpass(ZBLOC);
    if (target)
        target->calc_derived_entrytype();
    diary.force_recalculate(true, false, false, false);
    return ZBErrC_ok;
}

} // namespace Tervalon
