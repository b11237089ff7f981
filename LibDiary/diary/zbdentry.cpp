#include "LibDiary/diary/zbdentry.h"
#include "LibDiary/diary/zbdiary.h"
#include "LibDate/date/zbdateutils.h"
#include "LibDate/date/zbdateparser.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("ZBDEntry", &ZBDEntry::create_zbobject);

std::string number_text(double value)
{
    if (std::floor(value) == value && std::fabs(value) < 1e15)
        return zb_sprintf("%0.0f", value);
    return zb_double_to_string(value);
}

bool parse_bool(const std::string& text)
{
    const std::string lower = zb_tolower(zb_trim(text));
    return lower == "1" || lower == "true" || lower == "yes" || lower == "y" || lower == "on";
}
} // namespace

const char* const ZBDEntry::C_SysId = "Id";
const char* const ZBDEntry::C_SysSpec = "Spec";
const char* const ZBDEntry::C_SysTitle = "Title";
const char* const ZBDEntry::C_SysDetails = "Details";
const char* const ZBDEntry::C_SysChildren = "Children";
const char* const ZBDEntry::C_SysEntryType = "EntryType";
const char* const ZBDEntry::C_SysStartTime = "Start_Time";
const char* const ZBDEntry::C_SysEndTime = "End_Time";
const char* const ZBDEntry::C_SysStartAfter = "Start_After";
const char* const ZBDEntry::C_SysDueDate = "Due_Date";
const char* const ZBDEntry::C_SysRepeating = "Repeating";
const char* const ZBDEntry::C_SysStartRepeat = "Repeat_Start";
const char* const ZBDEntry::C_SysDueRepeat = "Repeat_Due";
const char* const ZBDEntry::C_SysBeginRepeat = "Begin_Repeating";
const char* const ZBDEntry::C_SysEndRepeat = "Finish_Repeating";
const char* const ZBDEntry::C_SysExcludeRepeat = "Exclude_Repeating";
const char* const ZBDEntry::C_SysDuration = "Duration";
const char* const ZBDEntry::C_SysTotalDuration = "TotalDuration";
const char* const ZBDEntry::C_SysRemaining = "Remaining";
const char* const ZBDEntry::C_SysTotalRemaining = "TotalRemaining";
const char* const ZBDEntry::C_SysSpent = "Spent";
const char* const ZBDEntry::C_SysCompletion = "Complete";
const char* const ZBDEntry::C_SysIsComplete = "IsComplete";
const char* const ZBDEntry::C_SysIsActive = "IsActive";
const char* const ZBDEntry::C_SysAutoProgress = "AutoProgress";
const char* const ZBDEntry::C_SysPriority = "Priority";
const char* const ZBDEntry::C_SysDependTitle = "Depend_Title";
const char* const ZBDEntry::C_SysPreventOthers = "Prevent_Other_Depend";
const char* const ZBDEntry::C_SysPreventDepend = "Prevent_Depend";
const char* const ZBDEntry::C_SysResource = "Resource";
const char* const ZBDEntry::C_SysTimeType = "TimeType";
const char* const ZBDEntry::C_SysBaselineDuration = "Baseline_Duration";
const char* const ZBDEntry::C_SysBaselineStart = "Baseline_Start";
const char* const ZBDEntry::C_SysBaselineEnd = "Baseline_End";
const char* const ZBDEntry::C_SysBaselineProgress = "Baseline_Progress";
const char* const ZBDEntry::C_SysBaselineAuto = "Auto_Baseline";
const char* const ZBDEntry::C_SysBookmark = "Bookmark";
const char* const ZBDEntry::C_SysPreserve = "Preserve";
const char* const ZBDEntry::C_SysReport = "Report";
const char* const ZBDEntry::C_SysCommand = "Command";
const char* const ZBDEntry::C_SysExecCommand = "ExecCommand";

const std::vector<ZBDEntry::SysQuant>& ZBDEntry::get_sysquants()
{
    static const std::vector<SysQuant> table = {
        {C_SysId, C_SysCodeText},
        {C_SysSpec, C_SysCodeText},
        {C_SysTitle, C_SysCodeText},
        {C_SysDetails, C_SysCodeText},
        {C_SysChildren, C_SysCodeText},
        {C_SysEntryType, C_SysCodeText},
        {C_SysStartTime, C_SysCodeDate},
        {C_SysEndTime, C_SysCodeDate},
        {C_SysStartAfter, C_SysCodeDate},
        {C_SysDueDate, C_SysCodeDate},
        {C_SysRepeating, C_SysCodeBool},
        {C_SysStartRepeat, C_SysCodeText},
        {C_SysDueRepeat, C_SysCodeText},
        {C_SysBeginRepeat, C_SysCodeDate},
        {C_SysEndRepeat, C_SysCodeDate},
        {C_SysExcludeRepeat, C_SysCodeText},
        {C_SysDuration, C_SysCodeDuration},
        {C_SysTotalDuration, C_SysCodeDuration},
        {C_SysRemaining, C_SysCodeText},
        {C_SysTotalRemaining, C_SysCodeDuration},
        {C_SysSpent, C_SysCodeDuration},
        {C_SysCompletion, C_SysCodeText},
        {C_SysIsComplete, C_SysCodeText},
        {C_SysIsActive, C_SysCodeText},
        {C_SysAutoProgress, C_SysCodeText},
        {C_SysPriority, C_SysCodeNumber},
        {C_SysDependTitle, C_SysCodeText},
        {C_SysPreventOthers, C_SysCodeText},
        {C_SysPreventDepend, C_SysCodeText},
        {C_SysResource, C_SysCodeText},
        {C_SysTimeType, C_SysCodeText},
        {C_SysBaselineDuration, C_SysCodeText},
        {C_SysBaselineStart, C_SysCodeDate},
        {C_SysBaselineEnd, C_SysCodeDate},
        {C_SysBaselineProgress, C_SysCodeBool},
        {C_SysBaselineAuto, C_SysCodeBool},
        {C_SysBookmark, C_SysCodeBool},
        {C_SysPreserve, C_SysCodeBool},
        {C_SysReport, C_SysCodeBool},
        {C_SysCommand, C_SysCodeText},
        {C_SysExecCommand, C_SysCodeText},
    };
    return table;
}

ZBDEntry::ZBDEntry()
    : m_start(ZBDate(ZBDate::E_Blank)), m_due(ZBDate(ZBDate::E_Blank)), m_priority(0.0), m_person(-1),
      m_timeType(-1), m_bookmark(false), m_preserve(false)
{
    ZBDEntry::register_zbobject();
}

ZBDEntry::ZBDEntry(const ZBDEntry& other)
    : ZBDBObject(other), ZBRepeatConfig(other), m_summary(other.m_summary),
      m_time(other.m_time), m_start(other.m_start), m_due(other.m_due), m_priority(other.m_priority),
      m_duration(other.m_duration), m_person(other.m_person), m_timeType(other.m_timeType),
      m_rare(other.m_rare ? new Rare(*other.m_rare) : nullptr), m_bookmark(other.m_bookmark), m_preserve(other.m_preserve),
      m_repeat(other.m_repeat ? new ZBDateRepeat(*other.m_repeat) : nullptr)
{
}

ZBDEntry::~ZBDEntry() = default;

ZBDEntry& ZBDEntry::operator=(const ZBDEntry& other)
{
    if (this == &other)
        return *this;
    ZBDBObject::operator=(other);
    clone_values(other);
    if (other.m_repeat)
        edit_repeat() = *other.m_repeat;
    else
        m_repeat.reset();
    return *this;
}

ZBDateRepeat& ZBDEntry::edit_repeat()
{
    if (!m_repeat) {
        m_repeat.reset(new ZBDateRepeat());
        prepare_repeat(*m_repeat);
    }
    return *m_repeat;
}

namespace {
const std::vector<int> g_noTags;
} // namespace

const std::string g_noText;

const std::vector<int>& ZBDEntry::get_tags() const
{
    return m_rare ? m_rare->tags : g_noTags;
}

const std::vector<int>& ZBDEntry::get_rtags() const
{
    return m_rare ? m_rare->rTags : g_noTags;
}

const std::string& ZBDEntry::get_text() const
{
    return m_rare ? m_rare->text : g_noText;
}

void ZBDEntry::set_text(const std::string& text)
{
    if (m_rare || !text.empty())
        rare().text = text;
}

const ZBDate& ZBDEntry::get_ack_time() const
{
    return m_rare ? m_rare->ackTime : ZBDate::C_Blank;
}

void ZBDEntry::set_ack_time(const ZBDate& date)
{
    if (m_rare || date != ZBDate::C_Blank)
        rare().ackTime = date;
}

ZBDEntry::Rare& ZBDEntry::rare()
{
    if (!m_rare)
        m_rare.reset(new Rare());
    return *m_rare;
}

// One per thread: a rule's const calls may fill its caches.
const ZBDateRepeat& ZBDEntry::blank_repeat()
{
    static thread_local const ZBDateRepeat blank;
    return blank;
}

bool ZBDEntry::operator==(const ZBDEntry& other) const
{
    return m_summary == other.m_summary && get_text() == other.get_text() && m_time == other.m_time
        && m_start == other.m_start && m_due == other.m_due && m_priority == other.m_priority
        && m_duration == other.m_duration && m_person == other.m_person && m_timeType == other.m_timeType
        && get_tags() == other.get_tags() && get_rtags() == other.get_rtags() && get_ack_time() == other.get_ack_time()
        && m_bookmark == other.m_bookmark && m_preserve == other.m_preserve && get_repeat() == other.get_repeat()
        && ZBDBObject::operator==(other);
}

void ZBDEntry::clone_values(const ZBDEntry& other)
{
    m_summary = other.m_summary;
    m_time = other.m_time;
    m_start = other.m_start;
    m_due = other.m_due;
    m_priority = other.m_priority;
    m_duration = other.m_duration;
    m_person = other.m_person;
    m_timeType = other.m_timeType;
    m_rare.reset(other.m_rare && !other.m_rare->empty() ? new Rare(*other.m_rare) : nullptr);
    m_bookmark = other.m_bookmark;
    m_preserve = other.m_preserve;
}

void ZBDEntry::clear_values()
{
    const ZBDate blank(ZBDate::E_Blank);
    m_summary.clear();
    m_time = ZBCalcPair<ZBDateSlot>();
    m_start = ZBCalcPair<ZBDate>(blank);
    m_due = ZBCalcPair<ZBDate>(blank);
    m_priority = ZBCalcPair<double>(0.0);
    m_duration = ZBCalcPair<ZBProgress>();
    m_person = ZBCalcPair<int>(-1);
    m_timeType = ZBCalcPair<int>(-1);
    m_rare.reset();
    m_bookmark = false;
    m_preserve = false;
    m_repeat.reset();
}

void ZBDEntry::dump(std::ostream& out, int indent) const
{
    ZBDump dump("ZBDEntry", out, indent);
    dump.add_entry("m_summary", m_summary);
    dump.add_entry("m_text", get_text());
    dump.add("m_time.orig", m_time.orig);
    dump.add("m_time.calc", m_time.calc);
    dump.add_entry("m_start.orig", m_start.orig.to_iso());
    dump.add_entry("m_start.calc", m_start.calc.to_iso());
    dump.add_entry("m_due.orig", m_due.orig.to_iso());
    dump.add_entry("m_due.calc", m_due.calc.to_iso());
    dump.add("m_priority.orig", m_priority.orig);
    dump.add("m_priority.calc", m_priority.calc);
    dump.add("m_duration.orig", m_duration.orig);
    dump.add("m_duration.calc", m_duration.calc);
    dump.add("m_person.orig", m_person.orig);
    dump.add("m_person.calc", m_person.calc);
    dump.add("m_timeType.orig", m_timeType.orig);
    dump.add("m_timeType.calc", m_timeType.calc);
    for (size_t i = 0; i < get_tags().size(); ++i)
        dump.add("m_tags", get_tags()[i], int(i));
    for (size_t i = 0; i < get_rtags().size(); ++i)
        dump.add("m_rTags", get_rtags()[i], int(i));
    dump.add_entry("m_ackTime", get_ack_time().to_iso());
    dump.add("m_bookmark", m_bookmark);
    dump.add("m_preserve", m_preserve);
    dump.add_entry("m_repeat", get_repeat().to_string());
    dump.write_heading("Base Class");
    dump.write();
    ZBDBObject::dump(out, indent + 1);
}

int ZBDEntry::serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    return serialise_entry(in, out, prefix, version, true);
}

// Tags are short and never change; a value equal to its default takes no line.
int ZBDEntry::serialise_entry(std::istream* in, std::ostream* out, const std::string& prefix, int version,
                              bool withTextTime)
{
    const ZBDate blank(ZBDate::E_Blank);
    // The rule goes first and only while it repeats; reading a record without
    // one leaves the rule at its default.
    if (out && m_repeat && m_repeat->is_repeating()) {
        ZBSrlObject<ZBDateRepeat> repeat(*m_repeat, version);
        if (iszberr(serialise_object(nullptr, out, prefix, "Rpt", repeat)))
            return zbpass(ZBLOC);
    } else if (in && !out) {
        ZBDateRepeat rule;
        ZBSrlObject<ZBDateRepeat> repeat(rule, version);
        if (iszberr(serialise_object(in, nullptr, prefix, "Rpt", repeat)))
            return zbpass(ZBLOC);
        if (rule == blank_repeat())
            m_repeat.reset();
        else
            m_repeat.reset(new ZBDateRepeat(rule));
    }
    // An entry without its rare fields reads them into ones kept from entry to
    // entry (one a thread), and takes them only when the text held some.
    static thread_local Rare scratch;
    Rare& rare = m_rare ? *m_rare : scratch;
    serialise_string(in, out, prefix, "Sm", m_summary, true);
    if (withTextTime) {
        serialise_string(in, out, prefix, "Tx", rare.text, true);
        m_time.serialise(*this, in, out, prefix, "Tm", ZBDateSlot());
    }
    m_start.serialise(*this, in, out, prefix, "SA", blank);
    m_due.serialise(*this, in, out, prefix, "DD", blank);
    m_priority.serialise(*this, in, out, prefix, "Pr", 0.0);
    m_duration.serialise(*this, in, out, prefix, "Dn", ZBProgress());
    m_person.serialise(*this, in, out, prefix, "Ps", -1);
    m_timeType.serialise(*this, in, out, prefix, "TT", -1);
    ZBSrlValueVector<int> tags(rare.tags);
    serialise_value(in, out, prefix, "Tg", tags);
    ZBSrlValueVector<int> rTags(rare.rTags);
    serialise_value(in, out, prefix, "RT", rTags);
    serialise_field<ZBDate>(in, out, prefix, "AK", rare.ackTime, blank);
    if (&rare == &scratch && !scratch.empty()) {
        m_rare.reset(new Rare(std::move(scratch)));
        scratch = Rare();
    }
    serialise_field<bool>(in, out, prefix, "BM", m_bookmark, false);
    serialise_field<bool>(in, out, prefix, "PV", m_preserve, false);
    if (iszberr(ZBDBObject::serialise(in, out, prefix, version)))
        return zbpass(ZBLOC);
    return ZBErrC_ok;
}

void ZBDEntry::register_zbobject()
{
    register_objectname("ZBDEntry", &ZBDEntry::create_zbobject);
}

int ZBDEntry::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<ZBDEntry>(out, from, "ZBDEntry");
}

void ZBDEntry::set_defaults(bool all)
{
    ZBDBObject::set_defaults(all);
    clear_values();
}

std::string ZBDEntry::entrytype_to_string(int type)
{
    switch (type) {
    case E_Event:
        return "Event";
    case E_Address:
        return "Address";
    case E_Journal:
        return "Journal";
    case E_Place:
        return "Place";
    case E_Person:
        return "Person";
    case E_Task:
        return "Task";
    default:
        return "Object";
    }
}

int ZBDEntry::string_to_entrytype(const std::string& text)
{
    if (zb_compare_nocase(zb_trim(text), "Appointment") == 0)
        return E_Event;
    if (zb_compare_nocase(zb_trim(text), "Group") == 0)
        return E_Address;
    for (int type : {int(E_Event), int(E_Address), int(E_Journal), int(E_Place), int(E_Person), int(E_Task)})
        if (zb_compare_nocase(entrytype_to_string(type), zb_trim(text)) == 0)
            return type;
    return E_Object;
}

void ZBDEntry::apply_note(const ZBDBObject& note)
{
    std::string text = note.get_summary();
    const std::string details = note.get_sysvalue(C_SysDetails);
    if (!details.empty())
        text = text.empty() ? details : text + "\n" + details;
    if (text.empty())
        return;
    std::string& own = rare().text;
    if (!own.empty() && own.back() != '\n')
        own += "\n";
    own += text;
}

void ZBDEntry::set_time(const ZBDateSlot& slot, bool calculated)
{
    calculated ? m_time.set_calc(slot) : m_time.set_orig(slot);
}

void ZBDEntry::set_start(const ZBDate& date, bool calculated)
{
    calculated ? m_start.set_calc(date) : m_start.set_orig(date);
}

void ZBDEntry::set_due(const ZBDate& date, bool calculated)
{
    calculated ? m_due.set_calc(date) : m_due.set_orig(date);
}

void ZBDEntry::set_priority(double priority, bool calculated)
{
    calculated ? m_priority.set_calc(priority) : m_priority.set_orig(priority);
}

void ZBDEntry::set_duration(const ZBProgress& duration, bool calculated)
{
    calculated ? m_duration.set_calc(duration) : m_duration.set_orig(duration);
}

void ZBDEntry::set_person(int id, bool calculated)
{
    calculated ? m_person.set_calc(id) : m_person.set_orig(id);
}

void ZBDEntry::set_timetype(int id, bool calculated)
{
    calculated ? m_timeType.set_calc(id) : m_timeType.set_orig(id);
}

bool ZBDEntry::is_complete() const
{
    return m_duration.calc.get_completion() >= 100.0;
}

int ZBDEntry::mark_complete(const ZBDate& date)
{
    ZBProgress done = m_duration.orig;
    done.set_completion(100.0);
    m_duration.set_orig(done);
    set_ack_time(date);
    return ZBErrC_ok;
}

void ZBDEntry::acknowledge()
{
    set_ack_time(ZBDateUtils::now());
}

bool ZBDEntry::is_acknowleged() const
{
    return get_ack_time().is_ok();
}

std::string ZBDEntry::get_sysvalue(const std::string& tag) const
{
    if (tag == C_SysId)
        return std::to_string(get_id());
    if (tag == C_SysSpec) {
        const ZBDatabase* db = get_database();
        const ZBDBObject* spec = db && get_specid() >= 0 ? db->get_object_by_id(get_specid()) : nullptr;
        return spec ? spec->get_summary() : std::string();
    }
    if (tag == C_SysTitle)
        return get_summary();
    if (tag == C_SysDetails)
        return get_text();
    if (tag == C_SysChildren) {
        int n = 0;
        if (const ZBDatabase* db = get_database())
            for (int i = 0; i < db->get_nobjects(); ++i) {
                const ZBDBObject* object = db->get_object_by_index(i);
                n += object->get_parent_id() == get_id() && !object->is_deleted();
            }
        return std::to_string(n);
    }
    if (tag == C_SysEntryType)
        return entrytype_to_string(get_entrytype());
    if (tag == C_SysStartTime)
        return m_time.calc.m_start.to_string();
    if (tag == C_SysEndTime)
        return m_time.calc.m_end.to_string();
    if (tag == C_SysStartAfter)
        return m_start.calc.to_string();
    if (tag == C_SysDueDate)
        return m_due.calc.to_string();
    if (tag == C_SysRepeating)
        return get_repeat().is_repeating() ? "1" : "0";
    if (tag == C_SysDuration || tag == C_SysTotalDuration)
        return m_duration.calc.get_duration().to_string();
    if (tag == C_SysCompletion)
        return zb_sprintf("%g%%", m_duration.calc.get_completion());
    if (tag == C_SysIsComplete)
        return is_complete() ? "1" : "0";
    if (tag == C_SysPriority)
        return number_text(m_priority.calc);
    if (tag == C_SysResource) {
        if (m_person.calc < 0)
            return std::string();
        const ZBDatabase* db = get_database();
        const ZBDBObject* person = db ? db->get_object_by_id(m_person.calc) : nullptr;
        return person ? person->get_summary() : std::string();
    }
    if (tag == C_SysTimeType)
        return m_timeType.calc < 0 ? std::string() : std::to_string(m_timeType.calc);
    if (tag == C_SysBookmark)
        return m_bookmark ? "1" : "0";
    if (tag == C_SysPreserve)
        return m_preserve ? "1" : "0";
    return ZBDBObject::get_sysvalue(tag);
}

int ZBDEntry::pre_validate_value(const std::string& tag, const std::string& value) const
{
    if (tag == C_SysStartTime || tag == C_SysEndTime || tag == C_SysStartAfter || tag == C_SysDueDate) {
        ZBDate date;
        std::string why;
        if (!ZBDateParser::read_typed(value, nullptr, nullptr, date, why))
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: Invalid date value: %s%s%s", tag.c_str(), value.c_str(),
                              why.empty() ? "" : ". ", why.c_str());
    } else if (tag == C_SysDuration) {
        ZBDuration duration;
        if (iszbwarn(duration.from_string(value)))
            return zbpass(ZBLOC);
    } else if (tag == C_SysPriority || tag == C_SysCompletion) {
        // The whole text must be the number ("%" may follow a completion, as it is read).
        const std::string text = zb_trim(value);
        char* end = nullptr;
        std::strtod(text.c_str(), &end);
        std::string rest = end ? std::string(end) : text;
        if (tag == C_SysCompletion && rest == "%")
            rest.clear();
        if (text.empty() || end == text.c_str() || !rest.empty())
            return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "%s: Invalid number value: %s", tag.c_str(), value.c_str());
    }
    return ZBErrC_ok;
}

// The value is checked before anything changes, so a bad one leaves the entry as it was.
int ZBDEntry::set_sysvalue(const std::string& tag, const std::string& value)
{
    if (iszbwarn(pre_validate_value(tag, value)))
        return zbpass(ZBLOC);
    if (tag == C_SysTitle) {
        m_summary = value;
    } else if (tag == C_SysDetails) {
        set_text(value);
    } else if (tag == C_SysStartTime || tag == C_SysEndTime || tag == C_SysStartAfter || tag == C_SysDueDate) {
        ZBDate date;
        std::string why;
        ZBDateParser::read_typed(value, nullptr, nullptr, date, why);
        if (tag == C_SysStartTime || tag == C_SysEndTime) {
            ZBDateSlot slot = m_time.orig;
            (tag == C_SysStartTime ? slot.m_start : slot.m_end) = date;
            m_time.set_orig(slot);
        } else if (tag == C_SysStartAfter) {
            m_start.set_orig(date);
        } else {
            m_due.set_orig(date);
        }
        sysval_time_modified();
    } else if (tag == C_SysDuration) {
        ZBDuration duration;
        duration.from_string(value);
        ZBProgress progress = m_duration.orig;
        progress.set_duration(duration);
        m_duration.set_orig(progress);
    } else if (tag == C_SysCompletion) {
        ZBProgress progress = m_duration.orig;
        progress.set_completion(std::strtod(value.c_str(), nullptr));
        m_duration.set_orig(progress);
    } else if (tag == C_SysPriority) {
        m_priority.set_orig(std::strtod(value.c_str(), nullptr));
    } else if (tag == C_SysBookmark) {
        m_bookmark = parse_bool(value);
    } else if (tag == C_SysPreserve) {
        m_preserve = parse_bool(value);
    } else {
        return ZBDBObject::set_sysvalue(tag, value);
    }
    return ZBErrC_ok;
}

bool ZBDEntry::has_tag(int id) const
{
    const std::vector<int>& tags = get_tags();
    return std::find(tags.begin(), tags.end(), id) != tags.end();
}

int ZBDEntry::add_tag(ZBDiary& diary, int id)
{
    ZBDEntry* other = diary.get_dentry_id(id);
    if (!other)
        return zberror(ZBDatabase::ZBErrC_ObjectIdNotFound, ZBLOC, "Could not find object ID %d.", id);
    if (!has_tag(id))
        rare().tags.push_back(id);
    const std::vector<int>& given = other->get_rtags();
    if (std::find(given.begin(), given.end(), get_id()) == given.end()) {
        other->rare().rTags.push_back(get_id());
        other->mark_changed(ZBLOC, true);
    }
    return ZBErrC_ok;
}

int ZBDEntry::remove_tag(ZBDiary& diary, int id)
{
    if (m_rare)
        m_rare->tags.erase(std::remove(m_rare->tags.begin(), m_rare->tags.end(), id), m_rare->tags.end());
    ZBDEntry* other = diary.get_dentry_id(id);
    if (other && other->m_rare) {
        auto& reverse = other->m_rare->rTags;
        auto end = std::remove(reverse.begin(), reverse.end(), get_id());
        if (end != reverse.end()) {
            reverse.erase(end, reverse.end());
            other->mark_changed(ZBLOC, true);
        }
    }
    return ZBErrC_ok;
}

bool ZBDEntry::update_tags(const ZBDiary& diary)
{
    auto gone = [&diary](int id) {
        const ZBDBObject* object = diary.get_object_by_id(id);
        return !object || object->is_deleted();
    };
    if (!m_rare)
        return false;
    std::vector<int>& tags = m_rare->tags;
    std::vector<int>& rTags = m_rare->rTags;
    const size_t before = tags.size() + rTags.size();
    tags.erase(std::remove_if(tags.begin(), tags.end(), gone), tags.end());
    rTags.erase(std::remove_if(rTags.begin(), rTags.end(), gone), rTags.end());
    return tags.size() + rTags.size() != before;
}

int ZBDEntry::remap_id(int from, int to)
{
    auto remap = [from, to](int& id) {
        if (id == from)
            id = to;
    };
    if (m_rare) {
        std::for_each(m_rare->tags.begin(), m_rare->tags.end(), remap);
        std::for_each(m_rare->rTags.begin(), m_rare->rTags.end(), remap);
    }
    remap(m_person.orig);
    remap(m_person.calc);
    return ZBDBObject::remap_id(from, to);
}

} // namespace Tervalon
