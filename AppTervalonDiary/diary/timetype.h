#pragma once

#include "LibDatabase/db/zbdbobject.h"

#include <string>

namespace Tervalon {

// A kind of work time ("Work", "Home"), which calendars offer and entries ask
// for. The diary owns its time types.
class TimeType : public ZBDBObject {
public:
    static constexpr int C_UnknownTimeTypeId = -1;
    static constexpr int C_ParentTimeTypeId = -2;
    static constexpr int C_UnassignedTimeTypeId = -3;
    static constexpr int C_BlockingTimeTypeId = -4;
    static constexpr int C_FreeTimeTypeId = -5;
    static const char* const C_TimeTypeTag;
    static const char* const C_DefaultName; // "Work"

    TimeType();
    TimeType(const TimeType& other) = default;
    TimeType& operator=(const TimeType& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise(std::istream* in, std::ostream* out, const std::string& prefix, int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;
    bool allow_children() const override { return false; }
    bool uses_spec() const override { return false; }
    std::string get_summary() const override { return m_name; }

    // The name of a reserved id, empty for any other.
    static std::string reserved_name(int id);
    const std::string& get_name() const { return m_name; }
    void set_name(const std::string& name) { m_name = name; }

private:
    std::string m_name;
};

} // namespace Tervalon
