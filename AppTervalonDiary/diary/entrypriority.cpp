#include "AppTervalonDiary/diary/entrypriority.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryPriority", &EntryPriority::create_zbobject);
}

EntryPriority::EntryPriority()
{
    EntryPriority::register_zbobject();
    EntryPriority::set_defaults(true);
}

void EntryPriority::register_zbobject()
{
    register_objectname("EntryPriority", &EntryPriority::create_zbobject);
}

int EntryPriority::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryPriority>(out, from, "EntryPriority");
}

void EntryPriority::set_defaults(bool)
{
    m_nonDueEntryPriority = 0.0;
    m_maxChildPriority = 0.0;
    m_displayOrder = 0;
    m_priorityOrder = 0.0;
}

void EntryPriority::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryPriority", out, indent);
    dump.add("m_nonDueEntryPriority", m_nonDueEntryPriority);
    dump.add("m_maxChildPriority", m_maxChildPriority);
    dump.add("m_displayOrder", m_displayOrder);
    dump.add("m_priorityOrder", m_priorityOrder);
}

int EntryPriority::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)owner;
    (void)in;
    (void)out;
    (void)prefix;
    (void)version;
    return ZBErrC_ok;
}

double EntryPriority::get_priority() const
{
    return get_entry() ? get_entry()->get_priority().orig : 0.0;
}

void EntryPriority::set_priority(double value)
{
    DiaryEntry* entry = get_entry();
    if (!entry || entry->get_priority().orig == value)
        return;
    entry->edit_priority().set_orig(value);
    entry->mark_changed(ZBLOC, true);
    entry->clear_predicted(true);
}

double EntryPriority::get_calc_priority() const
{
    return get_entry() ? get_entry()->get_priority().calc : 0.0;
}

int EntryPriority::get_source_id() const
{
    return get_entry() ? get_entry()->get_priority_id() : -1;
}

void EntryPriority::reset_priority_order()
{
    DiaryEntry* entry = get_entry();
    m_priorityOrder = 0.0;
    if (!entry || !entry->is_active()) {
        m_maxChildPriority = 0.0;
        return;
    }
    m_maxChildPriority = entry->get_priority().orig;
    for (const DiaryEntry* child : entry->get_children())
        if (child->is_active())
            m_maxChildPriority = std::max(m_maxChildPriority, child->get_priority_facet().get_maxchildpriority());
}

void EntryPriority::push_priority_order(double& counter, double step)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    ZBPtrArray<DiaryEntry> children;
    children.set_managed(false);
    for (DiaryEntry* child : entry->get_children())
        children.push_back(child);
    DiaryEntry::sort_entries(children, DiaryEntry::E_SortChildPriority);
    for (int i = children.size() - 1; i >= 0; --i)
        children.at(i)->edit_priority_facet().push_priority_order(counter, step);
    if (entry->is_active()) {
        m_priorityOrder = counter;
        counter += step;
    } else {
        m_priorityOrder = 0.0;
    }
}

void EntryPriority::reset_initial_priority()
{
    if (DiaryEntry* entry = get_entry()) {
        entry->edit_priority().set_calc(C_PriorityUnset);
        entry->set_priority_id(entry->get_id());
    }
}

double EntryPriority::calc_base_priority(int& source) const
{
    const DiaryEntry* entry = get_entry();
    const char type = entry->get_derived_entrytype();
    if (type != 'T' && type != 'A')
        return C_PriorityNonTask;
    source = entry->get_id();
    if (entry->is_complete())
        return C_PriorityComplete;
    double value = entry->get_priority().orig;
    if (const DiaryEntry* parent = entry->get_parent_entry())
        if (parent->get_priority().calc > value) {
            value = parent->get_priority().calc;
            source = parent->get_id();
        }
    return value;
}

void EntryPriority::calc_initial_priority(Diary* diary)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    int source = entry->get_id();
    const double base = calc_base_priority(source);
    upgrade_priority(base, diary, source, true);
}

double EntryPriority::upgrade_priority(double value, Diary* diary, int source, bool push)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return value;
    ZBCalcPair<double>& priority = entry->edit_priority();
    if (!(value > priority.calc + m_priorityOrder) || entry->is_complete())
        return priority.calc;
    priority.set_calc(value);
    entry->set_priority_id(source);
    if (entry->get_nchildren() == 0) {
        const std::vector<int>& depends = entry->get_depend().get_full_depends();
        if (!depends.empty() && diary) {
            double next = priority.calc + C_DependStep;
            if (push)
                next += m_priorityOrder;
            const int chainSource = push || source < 0 ? entry->get_id() : source;
            for (auto it = depends.rbegin(); it != depends.rend(); ++it) {
                DiaryEntry* other = diary->lookup_entry(*it);
                if (other && !other->is_complete())
                    other->edit_priority_facet().upgrade_priority(next, diary, chainSource, false);
            }
        }
        return priority.calc;
    }
    const int childSource = source < 0 ? entry->get_id() : source;
    const ZBDBContainer<DiaryEntry>& children = entry->get_children();
    for (int i = children.size() - 1; i >= 0; --i)
        children.get(i)->edit_priority_facet().upgrade_priority(priority.calc, diary, childSource, push);
    return priority.calc;
}

void EntryPriority::recalculate_priority(Diary* diary)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    const ZBDate now = ZBDateUtils::now();
    const bool active = entry->is_active();
    const double offset = active ? 0.0 : C_PriorityInactiveExtra;
    ZBCalcPair<double>& priority = entry->edit_priority();
    // Nothing raised it (a folder, or a priority below zero): the user's value stands.
    if (priority.calc == C_PriorityUnset)
        priority.set_calc(priority.orig);
    double calc = priority.calc + m_priorityOrder;
    m_nonDueEntryPriority = calc;
    if (entry->is_complete()) {
        calc = C_PriorityComplete;
    } else {
        const ZBDate& due = entry->get_due().calc;
        const ZBDate& start = entry->get_start().calc;
        const ZBDate& mustStart = entry->get_muststart();
        const bool running = entry->get_spent().has_running_session();
        if (due.is_ok() && due <= now)
            calc += C_PriorityDue + offset;
        else if (entry->get_derived_entrytype() == 'A' && start.is_ok() && start < now && !running)
            calc += C_PriorityDue + offset;
        else if (mustStart.is_ok() && mustStart <= now && !entry->is_planned()
                 && entry->get_nchildren() == 0)
            calc += C_PriorityUrgent + offset;
        else if (entry->get_plan().should_start())
            calc += C_PriorityShouldStart + offset;
        else if (!active)
            calc += C_PriorityInactive;
        else if (diary && diary->is_delayed_range(entry->get_props().get_resource_calc(), due))
            calc += C_PriorityDelayed;
    }
    priority.set_calc(calc);
    for (const DiaryEntry* child : entry->get_children())
        if (child->get_priority().calc > priority.calc) {
            priority.set_calc(child->get_priority().calc);
            entry->set_priority_id(child->get_id());
        }
}

void EntryPriority::push_display_order(int order, int& counter)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    m_displayOrder = counter++;
    ZBPtrArray<DiaryEntry> children;
    children.set_managed(false);
    entry->query_entries(ZBDateSlot(), children, order, 0);
    for (int i = 0; i < children.size(); ++i)
        children.at(i)->edit_priority_facet().push_display_order(order, counter);
}

} // namespace Tervalon
