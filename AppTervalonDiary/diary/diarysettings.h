#pragma once

#include "LibDatabase/db/zbdbobjectchild.h"
#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateslot.h"

#include <cstdint>
#include <string>

namespace Tervalon {

class Diary;

// The settings of one diary file, written inline in the diary's own record.
// Six of them are the user's rather than the file's and live as system values
// of the parameter file; refresh_settings copies them in.
class DiarySettings : public ZBDBObjectChild<Diary> {
public:
    static constexpr std::int64_t C_FeatureTask = 1;
    static constexpr std::int64_t C_FeatureJournal = 2;
    static constexpr std::int64_t C_FeatureMultiUser = 4;
    static constexpr std::int64_t C_FeaturePrayer = 8;
    static constexpr std::int64_t C_FeatureFinance = 16;
    static constexpr std::int64_t C_FeatureFoodTally = 32;

    DiarySettings();
    DiarySettings(const DiarySettings& other) = default;
    DiarySettings& operator=(const DiarySettings& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    // The fields in owner's field list.
    int serialise_settings(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version,
                           bool project);
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // Sets the system values that are still empty to their defaults.
    static void set_system_defaults();
    // Copies the system values into this record.
    void refresh_settings();
    // Stores the two recalculation values as system values.
    void store_system_values() const;

    // The planning horizon: from now (or as far back) to as far ahead.
    ZBDateSlot get_lookahead_date(bool futureOnly) const;
    ZBDateSlot get_planperiod() const;

    const std::string& get_lookahead() const { return m_lookahead; }
    void set_lookahead(const std::string& text) { m_lookahead = text; }
    double get_workhours() const { return m_workHours; }
    void set_workhours(double hours) { m_workHours = hours; }
    int get_sortorder() const { return m_sortOrder; }
    void set_sortorder(int order) { m_sortOrder = order; }
    int get_day_sortorder() const { return m_daySortOrder; }
    int get_summary_sortorder() const { return m_summarySortOrder; }
    const ZBDate& get_plandate() const { return m_planDate; }
    void set_plandate(const ZBDate& date);
    int get_plandays() const { return m_planDays; }
    bool get_edit_paste_as() const { return m_editPasteAs; }
    bool get_display_slots() const { return m_displaySlots; }
    bool get_display_plans() const { return m_displayPlans; }
    bool get_future_warnings() const { return m_futureWarnings; }
    bool get_is_setup() const { return m_isSetUp; }
    void set_is_setup(bool done) { m_isSetUp = done; }
    std::int64_t get_features() const { return m_features; }
    void set_features(std::int64_t features) { m_features = features; }
    bool has_feature(std::int64_t feature) const { return (m_features & feature) != 0; }
    int get_reminder_time() const { return m_reminderTime; }
    int get_recalc_activity() const { return m_recalcActivity; }
    int get_recalc_idle() const { return m_recalcIdle; }

private:
    std::string m_lookahead;
    double m_workHours;
    int m_sortOrder;
    int m_daySortOrder;
    int m_summarySortOrder;
    ZBDate m_planDate;
    int m_planDays;
    bool m_editPasteAs;
    bool m_displaySlots;
    bool m_displayPlans;
    bool m_futureWarnings;
    bool m_isSetUp;
    std::int64_t m_features;
    int m_reminderTime;
    int m_recalcActivity;
    int m_recalcIdle;
};

} // namespace Tervalon
