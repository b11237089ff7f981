#pragma once

#include "LibDatabase/db/zbdatabase.h"
#include "LibDiary/diary/zbnotifyitem.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDEntry;
class ZBDiaryMgr;
class ZBPersonData;
class ZBPersonMgr;
class ZBJournalData;
class ZBJournalMgr;
class ZBEventData;
class ZBEventMgr;
class ZBPrayerData;
class ZBPrayerMgr;
class ZBFinanceData;
class ZBFinanceMgr;
class ZBCalData;
class ZBCalMgr;

// A database of dated records. It owns one data block and one manager per
// module, made in a fixed order by the constructor, and passes the database's
// life-cycle steps (recalculation, id remapping, pulling data from a copy,
// notifications) to the managers in that order, so that a later module may
// rely on what an earlier one worked out. The planner's Diary derives from it.
class ZBDiary : public ZBDatabase {
public:
    // Tags of the containers that hold each kind of record.
    static const char* const C_PersonTag;
    static const char* const C_GroupTag;
    static const char* const C_EventTag;
    static const char* const C_JournalTag;
    static const char* const C_PrayerTag;
    static const char* const C_RecordTag;

    // Names of the default specs of each record type.
    static const char* const C_JournalSpec;
    static const char* const C_EventSpec;
    static const char* const C_PersonSpec;
    static const char* const C_GroupSpec;
    static const char* const C_PrayerSpec;
    static const char* const C_PrayerUpdateSpec;
    static const char* const C_PrayerPersonSpec;
    static const char* const C_PrayerGroupSpec;

    // Notification schemes of the records modules.
    static constexpr int C_NotifyEventToday = 3000;
    static constexpr int C_NotifyEventNow = 3001;

    ZBDiary();
    ~ZBDiary() override;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    int initialise(bool created) override;
    int recalculate(E_RecalcLevel level) override;
    void containers_resolved() override;
    int upgrade_appfileversion() override;
    int remap_id(int from, int to) override;
    virtual int pull_db_data(const ZBDiary& other);
    // Called once every manager has pulled from the other copy.
    virtual int pull_complete();
    bool has_user_data() const override;
    int update_feature(int count) override;
    virtual int generate_notify(std::vector<ZBNotifyItem>& out);

    // People an entry concerns: its own person and any person above it.
    std::vector<int> get_people(const ZBDEntry& entry) const;
    // Makes the next n instances of a repeating entry, by the manager of its kind.
    virtual int generate_sequence(ZBDEntry& entry, int n, bool forward, bool keep, bool notify);
    // The entry with this id; null for another class of object or none.
    ZBDEntry* get_dentry_id(int id) const;

    // Specs.
    // The default spec of each record type, as spec objects of the database,
    // made when missing and parsed.
    int create_default_spec() override;
    // Marks each declaration of the spec that names a system value
    // (ZBDEntry::get_sysquants) as that system value, with the constraint of
    // its kind. A derived declaration (eval) keeps its own expression, and
    // what it works out is written to the record's field. Nothing
    // is added for the values a spec does not name, so that objects carry no
    // variables they do not use.
    int add_sysquants(ZBObjectSpec& spec) override;
    // Whether an entry of that kind may sit under a parent of this spec.
    int validate_spec(const ZBDEntry& entry, const std::string& specName, const std::string& childTag) const;
    int update_specs();
    // A warning naming the first field of the file that no record took.
    int check_all_read() const;
    // Whether any of the default specs (the database's and the records') is gone.
    bool missing_default_spec() const;
    // The source of a default spec by name; empty for a name that is not one.
    static std::string default_spec_source(const std::string& name);
    static const std::vector<std::string>& default_spec_names();
    // The source of a spec this database holds: the spec object's text, or the
    // source waiting for create_default_spec; empty when it has neither.
    std::string get_spec_source(const std::string& name) const;
    // Sets the source; a spec object of that name takes the text (unparsed).
    void set_spec_source(const std::string& name, const std::string& source);
    using ZBDatabase::set_spec_source;

    // Blocks and managers.
    const ZBPersonData& personC() const { return *m_personData; }
    ZBPersonData& personC() { return *m_personData; }
    ZBPersonMgr& person() const { return *m_personMgr; }
    const ZBJournalData& journalC() const { return *m_journalData; }
    ZBJournalData& journalC() { return *m_journalData; }
    ZBJournalMgr& journal() const { return *m_journalMgr; }
    const ZBEventData& eventC() const { return *m_eventData; }
    ZBEventData& eventC() { return *m_eventData; }
    ZBEventMgr& eventE() const { return *m_eventMgr; }
    const ZBPrayerData& prayerC() const { return *m_prayerData; }
    ZBPrayerData& prayerC() { return *m_prayerData; }
    ZBPrayerMgr& prayer() const { return *m_prayerMgr; }
    const ZBFinanceData& finC() const { return *m_financeData; }
    ZBFinanceData& finC() { return *m_financeData; }
    ZBFinanceMgr& fin() const { return *m_financeMgr; }
    const ZBCalData& calC() const { return *m_calData; }
    ZBCalData& calC() { return *m_calData; }
    ZBCalMgr& cal() const { return *m_calMgr; }

    // The managers in fan-out order.
    const std::vector<ZBDiaryMgr*>& get_managers() const { return m_managers; }
    // Told of each manager just before a fan-out step reaches it; for tracing.
    using FanoutObserver = std::function<void(const std::string& step, const ZBDiaryMgr& manager)>;
    void set_fanout_observer(FanoutObserver observer) { m_observer = std::move(observer); }

private:
    // Runs one step on each manager in order; the first warning stops it.
    int fan_out(const char* step, const std::function<int(ZBDiaryMgr&)>& call);

    std::unique_ptr<ZBPersonData> m_personData;
    std::unique_ptr<ZBPersonMgr> m_personMgr;
    std::unique_ptr<ZBJournalData> m_journalData;
    std::unique_ptr<ZBJournalMgr> m_journalMgr;
    std::unique_ptr<ZBEventData> m_eventData;
    std::unique_ptr<ZBEventMgr> m_eventMgr;
    std::unique_ptr<ZBPrayerData> m_prayerData;
    std::unique_ptr<ZBPrayerMgr> m_prayerMgr;
    std::unique_ptr<ZBFinanceData> m_financeData;
    std::unique_ptr<ZBFinanceMgr> m_financeMgr;
    std::unique_ptr<ZBCalData> m_calData;
    std::unique_ptr<ZBCalMgr> m_calMgr;
    std::vector<ZBDiaryMgr*> m_managers;
    FanoutObserver m_observer;
    // Spec sources by name for specs that have no object yet. Not stored: the
    // database's spec objects are the stored form.
    std::map<std::string, std::string> m_specSource;
};

} // namespace Tervalon
