#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbrepeatconfig.h"
#include "LibDate/dateset/zbdateset.h"
#include "LibObject/object/zbobject.h"

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDateDetails;

// When something happens again: a calendar entry, a repeating task, a
// standing transaction. Held as a small record for the editing form and
// stored as one line of text (to_string / from_string). The record is
// compiled once into two date expressions, one that steps from an instance
// to the next and one that gives the end of an instance, so that all
// calendar arithmetic stays in ZBDateExp; every change to the record throws
// the compiled form away. The owner says what a work day is through a
// ZBRepeatConfig, which the rule never owns.
//
// Every generator is bounded: a rule that stops moving ends its series.
class ZBDateRepeat : public ZBObject {
public:
    enum E_RepeatType {
        E_None = 0,
        E_Seconds = 1,
        E_Days = 2,
        E_Weeks = 3,
        E_Months = 4,
        E_Years = 5,
        E_Expression = 6,
        E_SetDates = 7,
        E_Choice = 8,
        E_NTypes = 9
    };
    enum E_WorkdayType { E_WorkNone = 0, E_WorkNext = 1, E_WorkOnly = 2, E_WorkAvailable = 3 };
    enum E_Fixed { E_FixedDue = 1, E_FixedOffset = 2, E_FixedBegin = 3, E_FixedEnd = 4, E_FixedExclude = 5 };
    enum E_OffsetDetails { E_OffDuration = 0, E_OffTime = 1, E_OffLast = 2, E_OffBlank = 3, E_OffExpression = 4 };

    static constexpr std::int64_t C_OffsetLast = 0;
    static constexpr std::int64_t C_OffsetExpression = 1;
    static constexpr std::int64_t C_OffsetBlank = 2;
    static constexpr std::int64_t C_OffsetDuration = 10;
    static constexpr int C_V1RepeatManual = 9999;
    static constexpr int C_DefaultWork = 0;
    static constexpr int C_DefaultInterval = 0;
    // The capability range type of an owner whose series is held by its due
    // date (a task): its offset is read back from the end.
    static constexpr int C_RangeDue = 3;
    static const ZBDuration C_DefaultAt;
    // Steps a generator may take without producing an instance before it
    // gives up; keeps rules that never match (29 February on Mondays,
    // everything excluded) from looping.
    static constexpr int C_MaxSteps = 100000;
    // Days searched for a work day before a work-day rule counts as having
    // none: a full year, so that a long leave does not end a series.
    static constexpr int C_WorkPeriodDays = 366;

    ZBDateRepeat();
    ZBDateRepeat(const ZBDateRepeat& other);
    ~ZBDateRepeat() override;
    ZBDateRepeat& operator=(const ZBDateRepeat& other);
    bool operator==(const ZBDateRepeat& other) const;
    bool operator!=(const ZBDateRepeat& other) const { return !(*this == other); }

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    // Copies the other's generated slots too, which assignment leaves alone.
    void load_slots(const ZBDateRepeat& other);

    // Kinds and what they use.
    int get_type() const { return m_type; }
    bool is_repeating() const { return m_type != E_None; }
    bool is_manual() const { return m_type == E_Choice; }
    bool uses_interval() const { return m_type >= E_Seconds && m_type <= E_Years; }
    bool uses_days() const { return m_type >= E_Weeks && m_type <= E_Years; }
    bool uses_at() const { return m_type >= E_Days && m_type <= E_Years; }
    bool uses_offset() const { return (m_type >= E_Seconds && m_type <= E_Years) || m_type == E_SetDates; }
    bool uses_range() const { return m_type >= E_Seconds && m_type <= E_Expression; }

    // Setters; each change invalidates what was generated.
    int set_type(E_RepeatType type);
    int set_type_int(int type);
    int set_interval(int interval);
    int get_interval() const { return m_interval; }
    void adjust_interval(int n);
    int set_days(const std::vector<int>& days);
    const std::vector<int>& get_days() const { return m_days; }
    void set_at_times(const std::vector<ZBDuration>& at);
    const std::vector<ZBDuration>& get_at_times() const { return m_at; }
    void set_dateset(const std::vector<ZBDate>& dates);
    const std::vector<ZBDate>& get_dateset() const { return m_set; }
    void set_offset_last();
    void set_offset_blank();
    void set_offset_duration(const ZBDuration& duration);
    // Ends each instance at a time of day, days after the day it starts.
    void set_offset_time(const ZBDuration& time, int days);
    void set_offset_as_expression();
    std::int64_t get_offset() const { return m_offset; }
    // 0 duration, 1 time, 2 last, 3 blank, 4 expression.
    int get_offset_details(ZBDuration& duration, int& days) const;
    int set_workday(E_WorkdayType type, int id);
    void get_workday(E_WorkdayType& type, int& id) const;
    int get_work() const { return m_work; }
    int set_range_start(const ZBDate& date, bool fixed);
    int set_range_end(const ZBDate& date, bool fixed);
    const ZBDate& get_range_start() const { return m_begin; }
    const ZBDate& get_range_end() const { return m_end; }
    void set_exp(const std::string& text);
    const std::string& get_exp() const { return m_exp; }
    void set_offset_exp(const std::string& text);
    const std::string& get_offset_exp() const { return m_offsetExp; }
    void set_fixed(E_Fixed field, bool fixed);
    bool get_fixed(E_Fixed field) const;

    // Exclusions.
    void set_exclude(const ZBDateSet& set);
    int set_exclude(const std::string& text);
    void exclude_day(const ZBDate& date);
    void exclude_range(const ZBDateSlot& slot);
    bool is_excluded(const ZBDate& date) const;
    // The exclusions as the user reads them, each a range of days.
    std::string get_exclude_string() const;
    const ZBDateSet& get_exclude() const { return m_exclude; }

    void clear_repeat();
    void invalidate();
    int initialise(const ZBRepeatConfig* config);
    int sanity_check(const ZBRepeatConfig* config);
    // 0 not compiled, 1 compiled, 2 slots generated.
    int get_state() const { return m_state; }
    // The largest interval of a type from which a date before year 9998 can
    // still come; 0 for types that have no interval.
    static int max_interval(int type);

    // Compiles the record into the two expressions; done on first use by
    // next_date and generate_slot, and again after any change.
    void populate_expressions(const ZBRepeatConfig* config) const;
    const ZBDateExp& get_expression() const;
    const ZBDateExp& get_offset_expression() const;
    // One step of the compiled rule from date: the next candidate before
    // exclusions, date itself when the rule does not move.
    ZBDate apply_expression(const ZBDate& date, const ZBRepeatConfig* config) const;

    // Generation.
    int generate(bool force, const ZBDateSlot& seed, const ZBRepeatConfig* config);
    int generate_slots(const ZBDateSlot& seed, const ZBDateSlot& range, int limit, const ZBRepeatConfig* config,
                       std::vector<ZBDateSlot>& out) const;
    // Instances before the seed (or the range's end), nearest first.
    int generate_back_slots(const ZBDateSlot& seed, const ZBDateSlot& range, int limit, const ZBRepeatConfig* config,
                            std::vector<ZBDateSlot>& out) const;
    ZBDateSlot generate_slot(const ZBDate& last, const ZBDate& date, const ZBDate& next,
                             const ZBRepeatConfig* config) const;
    // The next instance strictly after date; date itself when the rule does
    // not move (a rule the owner steps by hand), which ends a series; blank
    // for a rule that does not repeat.
    ZBDate next_date(const ZBDate& date, const ZBRepeatConfig* config) const;
    void apply_seed_slot(const ZBDateSlot& slot, bool replace);
    int days_between() const;
    const std::vector<ZBDateSlot>& get_slots() const { return m_slots; }
    const std::vector<ZBDateSlot>& get_back_slots() const { return m_backSlots; }

    // Texts.
    std::string to_string() const;
    int from_string(const std::string& text);
    std::string to_natural(const ZBRepeatConfig* config) const;
    std::string workday_to_natural(bool start, const ZBRepeatConfig* config) const;
    std::string offset_to_natural() const;
    std::string range_to_string(bool start) const;
    std::string get_interval_unit() const;
    std::string get_days_str() const;
    static std::string monthday_to_string(int day);
    static std::string yearday_to_string(int day);
    static std::vector<std::string> get_types();
    static std::vector<std::string> get_days_options(int type, bool longForm);

    // Day encodings.
    static int to_weekday_of_month(int week, int weekday) { return weekday + 10 * week + 40; }
    static void from_weekday_of_month(int value, int& week, int& weekday);
    static int to_yearday(int day, int month) { return day + 200 * month + 100; }
    static int to_weekday_of_year(int week, int weekday) { return weekday + 10 * week + 5000; }
    // True for a weekday in a numbered week, false for a day in a month.
    static bool from_yearday(int value, int& dayOrWeekday, int& monthOrWeek);
    // Whether a day code reads back as written for the rule's type.
    static bool valid_day(int type, int day);

    // The span and count used when a rule gives no range of its own. Each
    // thread has its own, so a background plan never sees the live one's.
    static void set_global_range(const ZBDateSlot& slot, int limit);
    static thread_local ZBDateSlot g_range;
    static thread_local int g_limit;

private:
    // One alternative of a calendar rule's step: a stretch of m_expr, and
    // whether it stays in the period of the date it starts from.
    struct Choice {
        int m_first;
        int m_last;
        bool m_samePeriod;
    };

    void compile() const;
    void add_choice(const std::vector<ZBDateExpTerm>& terms, bool samePeriod) const;
    ZBDate earliest_choice(const ZBDate& date, const ZBRepeatConfig* config) const;
    bool on_rule(const ZBDate& date, const ZBRepeatConfig* config) const;
    bool workday_ahead(const ZBDate& date, const ZBRepeatConfig* config, const std::string& tag) const;
    bool is_workday(const ZBDate& date, const ZBRepeatConfig* config) const;
    std::string work_tag() const;
    std::string exclude_storage_string() const;
    void clean_exclude();
    int parse_part(const std::string& part, const std::string& whole);
    int parse_old_form(const std::string& part);

    int m_type;
    int m_interval;
    std::vector<int> m_days;
    std::vector<ZBDuration> m_at;
    std::vector<ZBDate> m_set;
    int m_work;
    std::int64_t m_offset;
    ZBDate m_begin;
    ZBDate m_end;
    ZBDateSet m_exclude;
    std::string m_exp;
    std::string m_offsetExp;
    std::vector<ZBDateSlot> m_slots;
    std::vector<ZBDateSlot> m_backSlots;
    int m_capabilities;
    int m_fixed;

    // Compiled on first use from the fields above, which is why a const
    // query may fill it; a rule is used by one thread at a time.
    mutable int m_state;
    mutable ZBDateExp m_expr;
    mutable ZBDateExp m_offsetExpr;
    mutable std::vector<Choice> m_choices;
    // First term of m_expr after the alternatives: the work-day terms.
    mutable int m_tail;
    // Whether a step asks about work days, and for which time type.
    mutable bool m_usesWork;
    mutable std::string m_exprWorkTag;
    // Index of the work-day term at the end of m_offsetExpr, or -1.
    mutable int m_offsetWork;
};

} // namespace Tervalon
