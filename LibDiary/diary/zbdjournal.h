#pragma once

#include "LibDiary/diary/zbdentry.h"

namespace Tervalon {

// A journal note: a dated text. Its text and date are kept under keys of
// their own. Notes may hang on a person, an event or a prayer.
class ZBDJournal : public ZBDEntry {
public:
    ZBDJournal();
    ZBDJournal(const ZBDJournal& other);
    ~ZBDJournal() override;
    ZBDJournal& operator=(const ZBDJournal& other);
    bool operator==(const ZBDJournal& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    int get_entrytype() const override { return E_Journal; }

    const ZBDate& get_date() const { return get_time().m_start; }
    void set_date(const ZBDate& date);
    // The date and the text on one line, for lists and exports.
    std::string get_combined() const;
};

} // namespace Tervalon
