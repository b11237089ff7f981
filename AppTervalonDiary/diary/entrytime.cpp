#include "AppTervalonDiary/diary/entrytime.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

#include <ostream>
#include <utility>
#include <vector>
#include "AppTervalonDiary/diary/diary.h"

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryTime", &EntryTime::create_zbobject);
}

EntryTime::EntryTime()
{
    EntryTime::register_zbobject();
    EntryTime::set_defaults(true);
}

void EntryTime::register_zbobject()
{
    register_objectname("EntryTime", &EntryTime::create_zbobject);
}

int EntryTime::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryTime>(out, from, "EntryTime");
}

void EntryTime::set_defaults(bool)
{
    m_endId = -1;
}

void EntryTime::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryTime", out, indent);
    dump.add("m_endId", m_endId);
}

int EntryTime::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)owner;
    (void)in;
    (void)out;
    (void)prefix;
    (void)version;
    return ZBErrC_ok;
}

namespace {
const ZBDateSlot g_blankSlot;
}

const ZBDateSlot& EntryTime::get_orig_date() const
{
    return get_entry() ? get_entry()->get_time().orig : g_blankSlot;
}

const ZBDateSlot& EntryTime::get_calc_date() const
{
    return get_entry() ? get_entry()->get_time().calc : g_blankSlot;
}

void EntryTime::set_orig_date(const ZBDateSlot& slot)
{
    if (get_entry())
        get_entry()->edit_time().set_orig(slot);
}

void EntryTime::set_calc_date(const ZBDateSlot& slot)
{
    if (get_entry())
        get_entry()->edit_time().set_calc(slot);
}

void EntryTime::recalculate_date()
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    ZBDateSlot calc = entry->get_time().orig;
    const char type = entry->get_derived_entrytype();
    const ZBDateSet& sessions = entry->get_spent().get_sessions();
    const ZBDateSet& predicted = entry->get_plan().get_predicted();
    const ZBDateSet& planned = entry->get_plan().get_planned();
    if (entry->get_nchildren() == 0) {
        if (!sessions.empty() && type != 'A') {
            calc.m_start = sessions.start();
            calc.m_end = !entry->is_complete() && !predicted.empty() ? predicted.end() : sessions.end();
            if (calc.m_end < calc.m_start)
                std::swap(calc.m_start, calc.m_end);
        } else if (type == 'T') {
            if (!predicted.empty()) {
                calc = ZBDateSlot(predicted.start(), predicted.end());
                if (!planned.empty()) {
                    if (planned.start() < calc.m_start)
                        calc.m_start = planned.start();
                    if (calc.m_end < planned.end())
                        calc.m_end = planned.end();
                }
                m_endId = entry->get_id();
            } else if (!entry->is_complete()) {
                calc = ZBDateSlot();
            }
        }
        entry->edit_time().set_calc(calc);
        return;
    }
    bool first = true;
    for (const DiaryEntry* child : entry->get_children()) {
        const ZBDateSlot& slot = child->get_time().calc;
        if (first) {
            calc = slot;
            first = false;
            continue;
        }
        if (calc.m_start.is_blank() || (!slot.m_start.is_blank() && slot.m_start < calc.m_start))
            calc.m_start = slot.m_start;
        if (calc.m_end.is_blank() || (!slot.m_end.is_blank() && calc.m_end < slot.m_end))
            calc.m_end = slot.m_end;
    }
    if (!sessions.empty() && type != 'A') {
        if (calc.m_start.is_blank() || sessions.start() < calc.m_start)
            calc.m_start = sessions.start();
        if (calc.m_end.is_blank() || calc.m_end < sessions.end())
            calc.m_end = sessions.end();
    }
    entry->edit_time().set_calc(calc);
}

bool EntryTime::push_end(const ZBDate& date, bool force, int source)
{
    DiaryEntry* entry = get_entry();
    if (!entry || !date.is_ok() || entry->is_complete() || entry->get_derived_entrytype() != 'T')
        return false;
    ZBDateSlot calc = entry->get_time().calc;
    if (!(calc.m_end < date || !calc.m_end.is_ok() || force))
        return false;
    calc.m_end = date;
    if (calc.m_start.is_ok() && date < calc.m_start)
        std::swap(calc.m_start, calc.m_end);
    entry->edit_time().set_calc(calc);
    m_endId = source;
    return true;
}

// The news travels on only from an entry whose end moved: an end can move
// once for a given date, so a long chain costs one visit per entry and a
// dependency cycle in a damaged file comes to rest. The walk keeps its own
// list rather than the call stack, for chains of any length.
void EntryTime::upgrade_date(const ZBDate& date, bool force, int source)
{
    DiaryEntry* origin = get_entry();
    if (!origin || !date.is_ok() || origin->is_complete())
        return;
    push_end(date, force, source);
    Diary* diary = origin->get_diary();
    std::vector<DiaryEntry*> pending{origin};
    while (!pending.empty()) {
        DiaryEntry* entry = pending.back();
        pending.pop_back();
        if (diary)
            for (int id : entry->get_depend().get_depend_on_this())
                if (DiaryEntry* other = diary->get_entry_id(id))
                    if (other->edit_etime().push_end(date, false, entry->get_id()))
                        pending.push_back(other);
        if (DiaryEntry* parent = entry->get_parent_entry())
            if (parent->edit_etime().push_end(date, false, entry->get_id()))
                pending.push_back(parent);
    }
}

} // namespace Tervalon
