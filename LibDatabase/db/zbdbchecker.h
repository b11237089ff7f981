#pragma once

#include "LibDatabase/db/zbdbcheckitem.h"
#include "LibCore/ptrarray/zbptrarray.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

class ZBDBObject;

// The findings about a database's objects that do not stop it from working
// but that the user should put right: circular dependencies, objects that no
// longer fit their record type. Findings are kept per object id and are
// reported as items, never as errors. One checker per database, main thread
// only; a checker filled on a background copy is brought over with upload.
class ZBDBChecker {
public:
    ZBDBChecker();
    ZBDBChecker(const ZBDBChecker&) = delete;
    ZBDBChecker& operator=(const ZBDBChecker&) = delete;

    // Adds a finding; the same finding twice is kept once.
    void record_error(const ZBDBObject& object, int code, const std::string& message, const std::string& shortMessage);
    void record_error(int id, int code, const std::string& message, const std::string& shortMessage);
    // Forgets every finding of the code, so a pass that makes them can start afresh.
    void clear_error(int code);
    void clear();

    int get_nitems() const { return m_items.size(); }
    const ZBDBCheckItem* get_item_by_index(int index) const { return m_items.at(index); }
    bool has_error(int id) const;
    // The findings about one object, in the order they were made.
    std::vector<const ZBDBCheckItem*> get_items_for(int id) const;

    // Takes the findings of a checker that ran on a copy of the database.
    void upload(const ZBDBChecker& other);

    long get_last_check_time() const { return m_lastCheckTime; }
    int get_last_check_count() const { return m_lastCheckCount; }

    void dump(std::ostream& out, int indent) const;

private:
    ZBPtrArray<ZBDBCheckItem> m_items;
    long m_lastCheckTime;
    int m_lastCheckCount;
};

} // namespace Tervalon
