#pragma once

#include "LibObject/object/zbobject.h"

#include <string>

namespace Tervalon {

// One user action as the undo log knows it: its number (its place in the
// index), whether it is live, undone or abandoned, and the name the Undo menu
// shows. The index owns its transactions.
class ZBDBTransaction : public ZBObject {
public:
    enum E_Status { E_Live = 0, E_Undone = 1, E_Abandoned = 2 };

    ZBDBTransaction();
    ZBDBTransaction(int id, const std::string& operation);
    ZBDBTransaction(const ZBDBTransaction& other) = default;
    ZBDBTransaction& operator=(const ZBDBTransaction& other) = default;
    bool operator==(const ZBDBTransaction& other) const;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // "<id>:<operation>", the text after "!Transaction!" in the partial file.
    std::string write_tag() const;
    // The number before the ":" of such a text; -1 when there is none.
    static int read_transaction_tag(const std::string& text);

    int m_id;
    int m_status;
    std::string m_operation;
};

} // namespace Tervalon
