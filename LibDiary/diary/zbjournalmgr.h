#pragma once

#include "LibDiary/diary/zbdiarymgr.h"

namespace Tervalon {

class ZBJournalData;
class ZBDJournal;

// Keeps the journal notes of a diary, and turns an event that has happened
// into a note of it.
class ZBJournalMgr : public ZBDiaryMgr {
public:
    explicit ZBJournalMgr(ZBDiary& diary);

    ZBJournalData& data() const;

    bool has_user_data() const override;

    ZBDJournal* get_journal_id(int id) const;
    int add_journal(ZBDBObject* parent, ZBDJournal*& out);
    // Replaces the event with a journal note of the same values and id.
    int event_to_journal(int id);
};

} // namespace Tervalon
