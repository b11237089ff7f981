#pragma once

#include "LibDatabase/db/zbdbtransaction.h"
#include "LibCore/ptrarray/zbptrarray.h"
#include "LibObject/object/zbobject.h"

#include <iosfwd>
#include <string>

namespace Tervalon {

// The status of every transaction in the partial file, and how many of them
// the main file held at the last full save. The file is append-only: a status
// change appends the transaction again, and on loading the last record of an
// id wins. A transaction's id is its place in the list. Owned by the database.
class ZBDBIndex : public ZBObject {
public:
    static const char* const C_TransactionStart;
    static const char* const C_IndexStart;

    ZBDBIndex();
    ZBDBIndex(const ZBDBIndex&) = delete;
    ZBDBIndex& operator=(const ZBDBIndex&) = delete;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);

    // Names the file; nothing is read or written yet.
    void initialise(const std::string& name);
    const std::string& get_filename() const { return m_fileName; }
    void set_version(int version) { m_version = version; }

    int size() const { return m_transaction.size(); }
    const ZBDBTransaction* get_transaction(int id) const;
    bool can_undo() const;
    bool can_redo() const;
    std::string get_undo_operation() const;
    std::string get_redo_operation() const;
    // 0 (live) for an id outside the list, so that the changes of a
    // transaction whose record never reached the file are replayed.
    int get_status(int id) const;
    int get_last_save() const { return m_lastSave; }
    // Whether a transaction the main file holds was undone or redone after
    // the last full save, so that the main file no longer matches the log.
    bool changed_since_save() const { return m_changedSinceSave; }

    // A new live transaction; tagOut gets "<id>:<operation>". Undone
    // transactions are abandoned: a new operation ends the redo chain.
    int add_transaction(const std::string& operation, std::string& tagOut, int version);
    int write_transaction(const ZBDBTransaction& transaction);
    int write_index();
    // Flip the last live transaction to undone, or the first undone one back.
    int undo();
    int redo();
    int mark_save();
    void reset();
    // Reads the file; one that is not there is an empty index. A record cut
    // short at the end of the file (a write that a crash stopped) is dropped
    // and the file cut back to the last whole record.
    int load();

private:
    int append(const std::string& tag, const ZBObject& record);

    ZBPtrArray<ZBDBTransaction> m_transaction;
    int m_lastSave;
    std::string m_fileName;
    int m_version;
    bool m_changedSinceSave;
};

} // namespace Tervalon
