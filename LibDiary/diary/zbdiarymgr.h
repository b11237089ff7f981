#pragma once

#include "LibDatabase/db/zbdatabase.h"
#include "LibDiary/diary/zbnotifyitem.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDiary;

// The base of a module's manager. A manager holds no stored data of its own:
// it works on its module's data block and on the records in the diary that
// owns it, and the diary calls it at each step of the fan-out. Every
// operation has a do-nothing default so that a module overrides only what it
// takes part in.
class ZBDiaryMgr {
public:
    ZBDiaryMgr(ZBDiary& diary, const std::string& name);
    virtual ~ZBDiaryMgr() = default;
    ZBDiaryMgr(const ZBDiaryMgr&) = delete;
    ZBDiaryMgr& operator=(const ZBDiaryMgr&) = delete;

    virtual int recalculate(ZBDatabase::E_RecalcLevel level);
    virtual int update_feature(int count);
    virtual bool has_user_data() const;
    virtual int remap_id(int from, int to);
    virtual int pull_db_data(const ZBDiary& other);
    virtual int initialise();
    virtual int generate_notify(std::vector<ZBNotifyItem>& out);
    virtual void set_defaults(bool all);

    virtual void dump(std::ostream& out, int indent) const;

    ZBDiary& get_diary() const { return m_diary; }
    // The module's name, for logs and dumps.
    const std::string& get_name() const { return m_name; }

private:
    ZBDiary& m_diary;
    std::string m_name;
};

} // namespace Tervalon
