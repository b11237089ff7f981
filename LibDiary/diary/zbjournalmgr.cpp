#include "LibDiary/diary/zbjournalmgr.h"
#include "LibDatabase/db/zbobjectspec.h"
#include "LibDiary/diary/zbdevent.h"
#include "LibDiary/diary/zbdiary.h"
#include "LibDiary/diary/zbdjournal.h"
#include "LibDiary/diary/zbeventmgr.h"
#include "LibDiary/diary/zbjournaldata.h"

#include <memory>

namespace Tervalon {

ZBJournalMgr::ZBJournalMgr(ZBDiary& diary) : ZBDiaryMgr(diary, "journal") {}

ZBJournalData& ZBJournalMgr::data() const
{
    return get_diary().journalC();
}

bool ZBJournalMgr::has_user_data() const
{
    const ZBDiary& diary = get_diary();
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        const ZBDBObject* object = diary.get_object_by_index(i);
        if (!object->is_deleted() && dynamic_cast<const ZBDJournal*>(object))
            return true;
    }
    return false;
}

ZBDJournal* ZBJournalMgr::get_journal_id(int id) const
{
    return id < 0 ? nullptr : dynamic_cast<ZBDJournal*>(get_diary().get_object_by_id(id));
}

int ZBJournalMgr::add_journal(ZBDBObject* parent, ZBDJournal*& out)
{
    out = nullptr;
    auto journal = std::make_unique<ZBDJournal>();
    if (iszbwarn(get_diary().add_object(journal.get(), parent ? parent : &get_diary(), ZBDiary::C_JournalTag,
                                        std::string(), -1, std::string())))
        return zbpass(ZBLOC);
    out = journal.release();
    return ZBErrC_ok;
}

namespace {
// Undeletes the live objects that the detached copy's children stand for, at
// any depth; each keeps its own parent, which is back in the tree as well.
void restore_subtree(ZBDiary& diary, ZBDBObject& copy)
{
    while (ZBDBObject* child = copy.extract_managed_child()) {
        std::unique_ptr<ZBDBObject> held(child);
        ZBDBObject* live = diary.get_object_by_id(child->get_id());
        if (live && live->is_deleted()) {
            live->set_state(ZBDBObject::E_Normal);
            restore_subtree(diary, *child);
        }
    }
}
} // namespace

// The event stays behind as a deleted record, so that a merge with an older
// copy sees it go; what referred to the event refers to the note from now on.
int ZBJournalMgr::event_to_journal(int id)
{
    ZBDiary& diary = get_diary();
    ZBDEvent* event = diary.eventE().get_event_id(id);
    if (event == nullptr)
        return ZBASSERT(event != nullptr);
    auto journal = std::make_unique<ZBDJournal>();
    journal->clone_values(*event);
    journal->set_date(event->get_time().m_start);
    ZBDBObject* parent = diary.get_object_by_id(event->get_parent_id());
    if (!parent || parent->is_deleted())
        parent = &diary;
    const std::string member = event->get_member_tag();
    ZBDBObject* removed = nullptr;
    if (iszbwarn(diary.extract_object(id, removed, false)))
        return zbpass(ZBLOC);
    std::unique_ptr<ZBDBObject> copy(removed);
    const ZBObjectSpec* spec = diary.get_objectspec_by_name(ZBDiary::C_JournalSpec);
    const int specId = spec ? spec->get_id() : -1;
    if (iszbwarn(diary.add_object(journal.get(), parent, ZBDiary::C_JournalTag, member, specId, std::string())))
        return zbpass(ZBLOC);
    ZBDJournal* note = journal.release();
    if (specId >= 0 && iszbwarn(diary.apply_objectspec_to_db(*note, specId, false)))
        return zbpass(ZBLOC);
    // Children of the event (notes, people) move to the new note, and all
    // that hangs below them comes back where it was.
    while (ZBDBObject* child = copy->extract_managed_child()) {
        std::unique_ptr<ZBDBObject> held(child);
        const std::string tag = child->get_obj_container_tag().empty() ? ZBDatabase::C_DefaultChildName
                                                                        : child->get_obj_container_tag();
        ZBDBObject* live = diary.get_object_by_id(child->get_id());
        if (live && live->is_deleted()) {
            live->set_state(ZBDBObject::E_Normal);
            live->set_parent(note, tag, live->get_member_tag(), &diary);
            restore_subtree(diary, *child);
        }
    }
    for (int i = 0; i < diary.get_nobjects(); ++i) {
        ZBDBObject* object = diary.get_object_by_index(i);
        if (object != note && !object->is_deleted())
            object->remap_id(id, note->get_id());
    }
    return diary.resolve_containers();
}

} // namespace Tervalon
