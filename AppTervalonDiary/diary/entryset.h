#pragma once

#include "AppTervalonDiary/diary/entrysetline.h"
#include "LibDate/date/zbdateslot.h"
#include "LibDate/date/zbduration.h"

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class DiaryEntry;

// A display group of entries for the summary: a title, lines, the groups
// under it (owned) and the time they add up to. The colour of a group tells
// whether its time fits in what is available.
class EntrySet {
public:
    // Colours of a group's total against the time available.
    enum E_Colour { C_ColourNone = 0, C_ColourAvailable = 1, C_ColourBorderline = 2, C_ColourOver = 3 };
    // Flags of add.
    static constexpr int C_AddNoTotal = 1; // the line's time does not join the total
    // Spare time under this share of what is available is borderline.
    static constexpr double C_BorderlineShare = 0.1;

    explicit EntrySet(const std::string& title = std::string());
    EntrySet(const EntrySet& other);
    EntrySet& operator=(const EntrySet& other);

    void dump(std::ostream& out, int indent) const;

    const std::string& get_title() const { return m_title; }
    int get_durcolour() const { return m_durColour; }
    int size() const { return int(m_lines.size()); }
    const EntrySetLine& get_line(int i) const { return m_lines.at(size_t(i)); }
    int get_nsubsets() const { return int(m_subSet.size()); }
    const EntrySet* get_subset(int i) const;
    const ZBDuration& get_duration() const { return m_duration; }

    // Adds a line for entry: its remaining time (or, with a valid slot, its
    // plans within the slot) at its target date. For a series, the first
    // instance ending after date and within slot gives the date.
    void add(DiaryEntry& entry, const ZBDateSlot& slot, const ZBDate& date, int flags);
    // Appends a group; with count its time joins this one's. Its colour is set
    // from its total against available.
    void add_set(const EntrySet& other, const ZBDuration& available, bool count);
    static int colour_for(const ZBDuration& total, const ZBDuration& available);

private:
    std::string m_title;
    int m_durColour;
    std::vector<std::unique_ptr<EntrySet>> m_subSet;
    std::vector<EntrySetLine> m_lines;
    ZBDuration m_duration;
};

} // namespace Tervalon
