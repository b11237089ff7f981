#pragma once

#include "LibDate/date/zbdateexpterm.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Tervalon {

class ZBDate;
class ZBDateDetails;
class ZBRepeatConfig;

// A compiled date expression such as "now +-1 Week" or
// "+-3 Month (1-Apr|1-Jul|1-Oct|+1 Year 1-Jan)": terms run strictly left to
// right on one ZBDateDetails. Compiled once by ZBDateParser and kept by its
// owner (a repeat rule, a report), so that every recalculation only runs it.
class ZBDateExp {
public:
    ZBDateExp();
    virtual ~ZBDateExp();

    void set_defaults();
    // Appends a term; the "@" term also names what the date is relative to.
    void add_term(int type, int value, const std::string& tag = std::string());
    void add_exp(const ZBDateExp& other);
    int size() const { return int(m_term.size()); }
    const ZBDateExpTerm& get_term(int index) const { return m_term[size_t(index)]; }
    const std::string& get_relative() const { return m_relative; }
    bool is_invalid() const;

    // Runs the terms on the date, or on now in the user's zone when the date
    // is not ok; the result keeps the zone the terms ended in. config says
    // what a work day is, or null for the locale's working week.
    ZBDate apply(const ZBDate& date, const ZBRepeatConfig* config = nullptr) const;
    // Runs terms first to last (inclusive) on a copy of the details.
    ZBDate evaluate(const ZBDateDetails& details, const ZBRepeatConfig* config, int firstTerm, int lastTerm) const;

    // The canonical text, which parses back to an equivalent expression.
    std::string to_string() const;

    bool operator==(const ZBDateExp& other) const { return m_term == other.m_term && m_relative == other.m_relative; }
    virtual void dump(std::ostream& out, int indent) const;

private:
    // The index of the Close matching the Open at index, or last + 1.
    int find_close(int open, int last) const;
    ZBDate evaluate_depth(const ZBDateDetails& details, const ZBRepeatConfig* config, int first, int last,
                          int depth) const;

    std::vector<ZBDateExpTerm> m_term;
    std::string m_relative;
};

} // namespace Tervalon
