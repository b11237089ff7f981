#include "AppTervalonDiary/diary/entryset.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibObject/object/zbdump.h"

namespace Tervalon {

EntrySet::EntrySet(const std::string& title) : m_title(title), m_durColour(C_ColourNone) {}

EntrySet::EntrySet(const EntrySet& other)
    : m_title(other.m_title), m_durColour(other.m_durColour), m_lines(other.m_lines), m_duration(other.m_duration)
{
    for (const auto& set : other.m_subSet)
        m_subSet.emplace_back(new EntrySet(*set));
}

EntrySet& EntrySet::operator=(const EntrySet& other)
{
    if (this != &other) {
        EntrySet copy(other);
        m_title = copy.m_title;
        m_durColour = copy.m_durColour;
        m_subSet = std::move(copy.m_subSet);
        m_lines = std::move(copy.m_lines);
        m_duration = copy.m_duration;
    }
    return *this;
}

void EntrySet::dump(std::ostream& out, int indent) const
{
    {
        ZBDump dump("EntrySet", out, indent);
        dump.add("m_title", m_title);
        dump.add("m_durColour", m_durColour);
        dump.add("m_duration", m_duration);
    }
    for (const EntrySetLine& line : m_lines)
        line.dump(out, indent + 1);
    for (const auto& set : m_subSet)
        set->dump(out, indent + 1);
}

const EntrySet* EntrySet::get_subset(int i) const
{
    return i >= 0 && i < int(m_subSet.size()) ? m_subSet[size_t(i)].get() : nullptr;
}

void EntrySet::add(DiaryEntry& entry, const ZBDateSlot& slot, const ZBDate& date, int flags)
{
    ZBDuration duration = entry.get_duration().calc.get_remaining();
    const bool task = entry.get_derived_entrytype() == 'T';
    ZBDate target = task ? entry.get_due().calc : entry.get_etime().get_calc_date().m_start;
    if (slot.is_ok()) {
        // The entry's time in the span: what is planned and predicted there.
        const int resource = entry.get_props().get_resource_calc();
        duration = entry.get_plan().get_planned().query_range(slot, resource)
                   + entry.get_plan().get_predicted().query_range(slot, resource);
    }
    if (entry.get_repeat().is_repeating()) {
        EntryRepeat& bridge = entry.edit_erepeat();
        if (!bridge.has_slots()) {
            const Diary* diary = entry.get_diary();
            const ZBDateSlot range = slot.is_ok() || !diary ? slot : diary->get_settings().get_lookahead_date(false);
            bridge.generate_slots(false, range, EntryRepeat::C_MaxInstances);
        }
        for (const ZBDateSlot& instance : bridge.get_slots()) {
            if (instance.m_end.is_ok() && (!date.is_ok() || date < instance.m_end) && slot.within(instance.m_end)) {
                target = task ? instance.m_end : instance.m_start;
                break;
            }
        }
    }
    m_lines.emplace_back(&entry, target, duration, entry.is_active());
    if (!(flags & C_AddNoTotal))
        m_duration += duration;
}

int EntrySet::colour_for(const ZBDuration& total, const ZBDuration& available)
{
    if (available < total)
        return C_ColourOver;
    const double spare = double((available - total).get_as_seconds());
    return spare < C_BorderlineShare * double(available.get_as_seconds()) ? C_ColourBorderline : C_ColourAvailable;
}

void EntrySet::add_set(const EntrySet& other, const ZBDuration& available, bool count)
{
    m_subSet.emplace_back(new EntrySet(other));
    m_subSet.back()->m_durColour = colour_for(other.m_duration, available);
    if (count)
        m_duration += other.m_duration;
}

} // namespace Tervalon
