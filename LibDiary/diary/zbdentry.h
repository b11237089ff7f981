#pragma once

#include "LibDatabase/db/zbdbobject.h"
#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbprogress.h"
#include "LibDate/date/zbrepeatconfig.h"
#include "LibObject/container/zbcalcpair.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDiary;
class ZBDBObject;

// The base of every dated record of a diary: planner entries, people, groups,
// events, journal notes, prayers and food records. It carries what all of them
// share (title and text, when, how important, who, tags, acknowledgement) and
// answers the system values that scripts and queries read by name. Values the
// planner works out are pairs: the user's (orig) and the calculated (calc).
// The database owns every entry; entries name one another by id only.
class ZBDEntry : public ZBDBObject, public ZBRepeatConfig {
public:
    // Entry types are character codes; the letter is the code.
    enum E_EntryType {
        E_Event = 'A',
        E_Address = 'D',
        E_Journal = 'J',
        E_Place = 'L',
        E_Object = 'O',
        E_Person = 'P',
        E_Task = 'T',
    };

    // Names of the system values, in the order they are offered to specs.
    static const char* const C_SysId;
    static const char* const C_SysSpec;
    static const char* const C_SysTitle;
    static const char* const C_SysDetails;
    static const char* const C_SysChildren;
    static const char* const C_SysEntryType;
    static const char* const C_SysStartTime;
    static const char* const C_SysEndTime;
    static const char* const C_SysStartAfter;
    static const char* const C_SysDueDate;
    static const char* const C_SysRepeating;
    static const char* const C_SysStartRepeat;
    static const char* const C_SysDueRepeat;
    static const char* const C_SysBeginRepeat;
    static const char* const C_SysEndRepeat;
    static const char* const C_SysExcludeRepeat;
    static const char* const C_SysDuration;
    static const char* const C_SysTotalDuration;
    static const char* const C_SysRemaining;
    static const char* const C_SysTotalRemaining;
    static const char* const C_SysSpent;
    static const char* const C_SysCompletion;
    static const char* const C_SysIsComplete;
    static const char* const C_SysIsActive;
    static const char* const C_SysAutoProgress;
    static const char* const C_SysPriority;
    static const char* const C_SysDependTitle;
    static const char* const C_SysPreventOthers;
    static const char* const C_SysPreventDepend;
    static const char* const C_SysResource;
    static const char* const C_SysTimeType;
    static const char* const C_SysBaselineDuration;
    static const char* const C_SysBaselineStart;
    static const char* const C_SysBaselineEnd;
    static const char* const C_SysBaselineProgress;
    static const char* const C_SysBaselineAuto;
    static const char* const C_SysBookmark;
    static const char* const C_SysPreserve;
    static const char* const C_SysReport;
    static const char* const C_SysCommand;
    static const char* const C_SysExecCommand;

    // Constraint codes of system values: what kind of value each one is.
    static constexpr int C_SysCodeDate = 100;
    static constexpr int C_SysCodeBool = 98;
    static constexpr int C_SysCodeNumber = 102;
    static constexpr int C_SysCodeText = 110;
    static constexpr int C_SysCodeDuration = 117;

    struct SysQuant {
        const char* name;
        int code;
    };
    // Every system value with its code, in order.
    static const std::vector<SysQuant>& get_sysquants();

    ZBDEntry();
    ZBDEntry(const ZBDEntry& other);
    ~ZBDEntry() override;
    ZBDEntry& operator=(const ZBDEntry& other);
    bool operator==(const ZBDEntry& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // What kind of record this is, a character code of E_EntryType.
    virtual int get_entrytype() const { return E_Object; }
    static std::string entrytype_to_string(int type);
    // The type whose text this is (any case, "Appointment" and "Group" too);
    // E_Object for an unknown text.
    static int string_to_entrytype(const std::string& text);

    std::string get_summary() const override { return m_summary; }
    void set_summary(const std::string& summary) { m_summary = summary; }
    const std::string& get_text() const;
    void set_text(const std::string& text);
    // Appends a quick note's text below the entry's own.
    void apply_note(const ZBDBObject& note);

    const ZBDateSlot& get_time() const { return m_time.calc; }
    const ZBCalcPair<ZBDateSlot>& get_time_pair() const { return m_time; }
    void set_time(const ZBDateSlot& slot, bool calculated = false);
    const ZBDate& get_start() const { return m_start.calc; }
    const ZBCalcPair<ZBDate>& get_start_pair() const { return m_start; }
    void set_start(const ZBDate& date, bool calculated = false);
    const ZBDate& get_due() const { return m_due.calc; }
    const ZBCalcPair<ZBDate>& get_due_pair() const { return m_due; }
    void set_due(const ZBDate& date, bool calculated = false);
    double get_priority() const { return m_priority.calc; }
    const ZBCalcPair<double>& get_priority_pair() const { return m_priority; }
    void set_priority(double priority, bool calculated = false);
    const ZBProgress& get_duration() const { return m_duration.calc; }
    const ZBCalcPair<ZBProgress>& get_duration_pair() const { return m_duration; }
    void set_duration(const ZBProgress& duration, bool calculated = false);
    int get_person() const { return m_person.calc; }
    const ZBCalcPair<int>& get_person_pair() const { return m_person; }
    void set_person(int id, bool calculated = false);
    int get_timetype() const { return m_timeType.calc; }
    const ZBCalcPair<int>& get_timetype_pair() const { return m_timeType; }
    void set_timetype(int id, bool calculated = false);

    virtual bool is_complete() const;
    virtual int mark_complete(const ZBDate& date);
    // Marks the entry as seen now.
    virtual void acknowledge();
    // The spelling is kept: callers across the program use this name.
    virtual bool is_acknowleged() const;
    const ZBDate& get_ack_time() const;
    void set_ack_time(const ZBDate& date);

    // The repeat rule: stored only while it repeats. An entry that never had
    // one answers with a shared rule that does not repeat; edit_repeat makes
    // the entry its own.
    const ZBDateRepeat& get_repeat() const { return m_repeat ? *m_repeat : blank_repeat(); }
    ZBDateRepeat& edit_repeat();

    bool get_bookmark() const { return m_bookmark; }
    void set_bookmark(bool bookmark) { m_bookmark = bookmark; }
    bool get_preserve() const { return m_preserve; }
    void set_preserve(bool preserve) { m_preserve = preserve; }

    // System values by name, as text; empty for a name this class does not keep.
    std::string get_sysvalue(const std::string& tag) const override;
    using ZBDBObject::get_sysvalue;
    int set_sysvalue(const std::string& tag, const std::string& value) override;
    using ZBDBObject::set_sysvalue;
    // Checks a value before it is set; a bad one is reported and okFailed returned.
    virtual int pre_validate_value(const std::string& tag, const std::string& value) const;
    // Told after a system value has changed a date, so a subclass can react.
    virtual void sysval_time_modified() {}
    // Takes the other's record values (not its identity, place in the tree or
    // repeat rule: a copy made from one instance of a series stands alone).
    void clone_values(const ZBDEntry& other);

    // Tags: ids of other entries, each mirrored by a reverse tag on the other.
    const std::vector<int>& get_tags() const;
    const std::vector<int>& get_rtags() const;
    bool has_tag(int id) const;
    int add_tag(ZBDiary& diary, int id);
    int remove_tag(ZBDiary& diary, int id);
    // Drops tags and reverse tags whose entry no longer exists; true if any went.
    bool update_tags(const ZBDiary& diary);
    int remap_id(int from, int to) override;

protected:
    // The body of serialise. A class that keeps the text and time under keys
    // of its own passes withTextTime false and streams them itself.
    int serialise_entry(std::istream* in, std::ostream* out, const std::string& prefix, int version, bool withTextTime);
    // Puts the record values back to their defaults, identity untouched.
    void clear_values();
    // Called on a rule that edit_repeat has just made for this entry.
    virtual void prepare_repeat(ZBDateRepeat& rule) { (void)rule; }
    static const ZBDateRepeat& blank_repeat();

    std::string m_summary;
    ZBCalcPair<ZBDateSlot> m_time;
    ZBCalcPair<ZBDate> m_start;
    ZBCalcPair<ZBDate> m_due;
    ZBCalcPair<double> m_priority;
    ZBCalcPair<ZBProgress> m_duration;
    ZBCalcPair<int> m_person;
    ZBCalcPair<int> m_timeType;
    // What most entries leave empty: the details text, the tags the entry
    // gives and those it is given, and when it was acknowledged. Made on the
    // first that is set; the getters give the defaults until then.
    struct Rare {
        std::string text;
        std::vector<int> tags;
        std::vector<int> rTags;
        ZBDate ackTime{ZBDate::E_Blank};
        bool empty() const { return text.empty() && tags.empty() && rTags.empty() && ackTime == ZBDate::C_Blank; }
    };
    Rare& rare();
    std::unique_ptr<Rare> m_rare;
    bool m_bookmark;
    bool m_preserve;
    // Made on the first edit or read of a rule: almost no entry repeats, and a
    // rule is a large object.
    std::unique_ptr<ZBDateRepeat> m_repeat;
};

} // namespace Tervalon
