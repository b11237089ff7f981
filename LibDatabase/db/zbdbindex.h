#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

// The list of transactions (one per user action) written to the partial file.
// Undo and redo come later; for now it numbers the transactions and remembers
// the last one that reached a full save.
class ZBDBIndex {
public:
    struct Transaction {
        int m_id;
        std::string m_operation;
        int m_version;
        int m_status; // 0 done, otherwise undone
    };

    // Records a transaction and gives its tag "<id>:<operation>".
    std::string add_transaction(const std::string& operation, int version);
    int get_status(int id) const;
    long get_last_save() const { return m_lastSave; }
    void set_last_save(long id) { m_lastSave = id; }
    int get_ntransactions() const { return int(m_transaction.size()); }
    void clear();
    void dump(std::ostream& out, int indent) const;

private:
    std::vector<Transaction> m_transaction;
    int m_nextId = 1;
    long m_lastSave = 0;
};

} // namespace Tervalon
