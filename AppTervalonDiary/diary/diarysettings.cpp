#include "AppTervalonDiary/diary/diarysettings.h"
#include "LibCore/param/zbparam.h"
#include "LibDate/date/zbdateutils.h"
#include "LibObject/object/zbdump.h"

#include <cstdlib>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("DiarySettings", &DiarySettings::create_zbobject);

struct SystemValue {
    const char* key;
    const char* defaultValue;
};
const SystemValue g_systemValues[] = {{"ReminderTime", "15"},  {"PlanDays", "7"},       {"EditPasteAs", "1"},
                                      {"DisplayAllSlots", "0"}, {"DisplayPlanTime", "0"}, {"FutureWarnings", "0"},
                                      {"RecalcActivity", "300"}, {"RecalcIdle", "1800"}};

int system_int(const char* key, int fallback)
{
    if (!has_zbparam())
        return fallback;
    std::string text = zbparam().get_system_value(key);
    return text.empty() ? fallback : std::atoi(text.c_str());
}
} // namespace

DiarySettings::DiarySettings()
{
    DiarySettings::register_zbobject();
    DiarySettings::set_defaults(true);
}

void DiarySettings::register_zbobject()
{
    register_objectname("DiarySettings", &DiarySettings::create_zbobject);
}

int DiarySettings::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<DiarySettings>(out, from, "DiarySettings");
}

void DiarySettings::set_defaults(bool)
{
    m_lookahead.clear();
    m_workHours = 24.0;
    m_sortOrder = 0;
    m_daySortOrder = 2;
    m_summarySortOrder = 0;
    m_planDate = ZBDateUtils::start_week(ZBDateUtils::now());
    m_planDays = 7;
    m_editPasteAs = true;
    m_displaySlots = false;
    m_displayPlans = false;
    m_futureWarnings = false;
    m_isSetUp = false;
    m_features = 0;
    m_reminderTime = 15;
    m_recalcActivity = 300;
    m_recalcIdle = 1800;
}

void DiarySettings::dump(std::ostream& out, int indent) const
{
    ZBDump dump("DiarySettings", out, indent);
    dump.add_entry("m_lookahead", m_lookahead);
    dump.add("m_workHours", m_workHours);
    dump.add("m_sortOrder", m_sortOrder);
    dump.add("m_planDate", m_planDate);
    dump.add("m_planDays", m_planDays);
    dump.add("m_features", m_features);
}

int DiarySettings::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    if (iszbwarn(serialise_settings(*this, in, out, prefix, version, false)))
        return zbpass(ZBLOC);
    return ZBObject::serialise(in, out, prefix, version);
}

int DiarySettings::serialise_settings(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                                      int, bool project)
{
    owner.serialise_string(in, out, prefix, "LA", m_lookahead, true);
    owner.serialise_field<double>(in, out, prefix, "WH", m_workHours, 24.0);
    owner.serialise_field<int>(in, out, prefix, "S", m_sortOrder, 0);
    owner.serialise_field<int>(in, out, prefix, "DS", m_daySortOrder, 2);
    owner.serialise_field<int>(in, out, prefix, "SS", m_summarySortOrder, 0);
    // Always written: its default moves with the clock.
    owner.serialise_field<ZBDate>(in, out, prefix, "PD", m_planDate, ZBDate::C_Blank);
    owner.serialise_field<int>(in, out, prefix, "PY", m_planDays, 7);
    owner.serialise_field<bool>(in, out, prefix, "EP", m_editPasteAs, true);
    owner.serialise_field<bool>(in, out, prefix, "CS", m_displaySlots, false);
    owner.serialise_field<bool>(in, out, prefix, "DP", m_displayPlans, false);
    owner.serialise_field<bool>(in, out, prefix, "FW", m_futureWarnings, false);
    owner.serialise_field<bool>(in, out, prefix, "SU", m_isSetUp, false);
    long features = long(m_features);
    owner.serialise_field<long>(in, out, prefix, "FT", features, 0L);
    m_features = features;
    if (in) {
        if (m_features == 0)
            m_features = C_FeatureTask | C_FeatureJournal | (project ? C_FeatureMultiUser : 0);
        m_planDate.set_timezone(ZBDate::C_LocalTime);
    } else {
        store_system_values();
    }
    return ZBErrC_ok;
}

void DiarySettings::set_system_defaults()
{
    if (!has_zbparam())
        return;
    for (const SystemValue& value : g_systemValues)
        if (zbparam().get_system_value(value.key).empty())
            zbparam().set_system_value(value.key, value.defaultValue);
}

void DiarySettings::refresh_settings()
{
    m_reminderTime = system_int("ReminderTime", 15);
    m_planDays = system_int("PlanDays", m_planDays);
    m_editPasteAs = system_int("EditPasteAs", 1) != 0;
    m_displaySlots = system_int("DisplayAllSlots", 0) != 0;
    m_displayPlans = system_int("DisplayPlanTime", 0) != 0;
    m_futureWarnings = system_int("FutureWarnings", 0) != 0;
    m_recalcActivity = system_int("RecalcActivity", 300);
    m_recalcIdle = system_int("RecalcIdle", 1800);
}

void DiarySettings::store_system_values() const
{
    if (!has_zbparam())
        return;
    if (system_int("RecalcActivity", -1) != m_recalcActivity)
        zbparam().set_system_value("RecalcActivity", m_recalcActivity);
    if (system_int("RecalcIdle", -1) != m_recalcIdle)
        zbparam().set_system_value("RecalcIdle", m_recalcIdle);
}

void DiarySettings::set_plandate(const ZBDate& date)
{
    m_planDate = ZBDateUtils::start_day(date);
}

ZBDateSlot DiarySettings::get_lookahead_date(bool futureOnly) const
{
    const std::string span = m_lookahead.empty() ? std::string("1 year") : m_lookahead;
    const ZBDate now = ZBDateUtils::now();
    ZBDate end = now;
    end.from_string("now +" + span);
    ZBDate start = now;
    if (!futureOnly)
        start.from_string("now +-" + span);
    return ZBDateSlot(start, end);
}

ZBDateSlot DiarySettings::get_planperiod() const
{
    ZBDate end = m_planDate + ZBDuration(m_planDays, 0, 0) - ZBDuration(0, 7200, 0);
    return ZBDateSlot(m_planDate, ZBDateUtils::end_day(end));
}

} // namespace Tervalon
