#pragma once

#include <iosfwd>
#include <memory>
#include <string>

namespace Tervalon {

// One cell of a ZBTable: the text shown and, when the cell holds a number, the
// number that sorting uses. A class derived from it can act as the handler of a
// column or row: the table passes every cell of that column or row through
// process() when it is set and on reprocess(), so formatting lives in one place.
class ZBTableEntry {
public:
    ZBTableEntry() = default;
    explicit ZBTableEntry(const std::string& text) : m_text(text) {}
    explicit ZBTableEntry(double value);
    virtual ~ZBTableEntry() = default;

    const std::string& get_text() const { return m_text; }
    void set_text(const std::string& text) { m_text = text; }
    bool has_value() const { return m_hasValue; }
    double get_value() const { return m_value; }
    void set_value(double value);
    void clear_value() { m_hasValue = false; m_value = 0.0; }

    // Applied to each cell of the handled column or row; the plain entry leaves it alone.
    virtual void process(ZBTableEntry& cell) const;
    // Numbers before texts; numbers by value, texts without regard to case.
    static int compare(const ZBTableEntry& a, const ZBTableEntry& b);

    bool operator==(const ZBTableEntry& other) const;
    virtual void dump(std::ostream& out, int indent) const;

private:
    std::string m_text;
    double m_value = 0.0;
    bool m_hasValue = false;
};

using ZBTableHandler = std::shared_ptr<const ZBTableEntry>;

} // namespace Tervalon
