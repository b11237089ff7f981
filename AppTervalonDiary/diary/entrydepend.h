#pragma once

#include "AppTervalonDiary/diary/entryfacet.h"

#include <string>
#include <unordered_set>
#include <vector>

namespace Tervalon {

class Diary;

// What an entry waits for, by id and by title, and how it takes part in its
// ancestors' dependencies. The stored ids and titles are resolved at every
// full recalculation into flat, sorted id lists: the unfinished leaves that
// must end before this entry can start (m_fullDepend) and the reverse
// (m_dependOnThis). A dependency on a parent means its leaves; a parent's
// dependency is pushed down to its leaves.
class EntryDepend : public EntryFacet {
public:
    // Keywords that may stand anywhere in a dependency title.
    static const char* const C_TitleLevel;   // "[LEVEL]": only the entry's own level
    static const char* const C_TitlePartial; // "[PARTIAL]": a part of the title is enough
    static const char* const C_TitleBlock;   // "[BLOCK]": the named entry waits for this one
    static const char* const C_TitleID;      // "[ID=": search under the entry with that id
    static const char* const C_TitleIDEnd;   // "]"
    static const char C_DependSeparator = ';';

    EntryDepend();
    EntryDepend(const EntryDepend& other) = default;
    EntryDepend& operator=(const EntryDepend& other) = default;

    void dump(std::ostream& out, int indent) const override;
    int serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix,
                        int version) override;
    void register_zbobject() override;
    static int create_zbobject(ZBObject*& out, const ZBObject* from);
    void set_defaults(bool all) override;

    // What the user entered.
    int get_ndepends() const { return int(m_dependId.size()); }
    int get_depend_no(int index) const;
    // No duplicates: gives false when the id was already there.
    bool add_depend(int id);
    bool remove_depend(int id);
    int get_ntitles() const { return int(m_dependTitle.size()); }
    std::string get_title_no(int index) const;
    bool add_title(const std::string& text);
    bool remove_title(const std::string& text);
    // This entry blocks another: the other entry gains a dependency on this one.
    int add_block(int id, Diary& diary);
    int remove_block(int id, Diary& diary);

    const std::vector<int>& get_depend_ids() const { return m_dependId; }
    void set_depend_ids(const std::vector<int>& ids) { m_dependId = ids; }
    const std::vector<std::string>& get_depend_titles() const { return m_dependTitle; }
    void set_depend_titles(const std::vector<std::string>& titles) { m_dependTitle = titles; }
    void clear_depends()
    {
        m_dependId.clear();
        m_dependTitle.clear();
    }
    bool get_preventothers() const { return m_preventOthers; }
    void set_preventothers(bool on) { m_preventOthers = on; }
    bool get_preventdepend() const { return m_preventDepend; }
    void set_preventdepend(bool on) { m_preventDepend = on; }

    // What the last resolution worked out.
    const std::vector<int>& get_leaf_nodes() const { return m_leafNode; }
    const std::vector<int>& get_base_depends() const { return m_baseDepend; }
    const std::vector<int>& get_base_blocks() const { return m_baseBlock; }
    const std::vector<int>& get_id_blocks() const { return m_idBlock; }
    const std::vector<int>& get_full_depends() const { return m_fullDepend; }
    const std::vector<int>& get_depends_this() const { return m_dependOnThis; }
    const std::vector<int>& get_depend_on_this() const { return m_dependOnThis; }
    std::vector<int>& edit_depend_on_this() { return m_dependOnThis; }
    // -1 not yet known, 0 nothing it waits for is active, 1 something is.
    int get_activedepends() const { return m_activeDepends; }
    void set_activedepends(int value) { m_activeDepends = value; }

    // Titles and ids for display: with directOnly what was resolved from ids
    // and titles, otherwise the ids as entered; sorted by the entry order.
    std::vector<std::pair<std::string, int>> get_depends(const Diary& diary, bool directOnly, int sort) const;
    std::vector<std::pair<std::string, int>> get_blocks(const Diary& diary, bool directOnly, int sort) const;

    // The id a dependency title names, or -1. With wantBlock only "[BLOCK]"
    // titles are searched, without it they are skipped.
    static int find_title(const std::string& title, const Diary& diary, const DiaryEntry& entry, bool wantBlock);

    // The steps of Diary::calculate_dependencies, in order.
    void clear_intermediate();
    void calc_title_blocks(Diary& diary);
    void calc_base_depends(Diary& diary);
    void calculate_leaf_nodes(Diary& diary);
    void push_down_direct(const std::vector<int>& inherited, Diary& diary);
    // Works out m_fullDepend; chain holds the entries being expanded, to find loops.
    void distribute_depends(Diary& diary, std::vector<int>& chain, std::unordered_set<int>& inChain);
    void finalise_depends(Diary& diary);

    // Takes the resolved lists from the same entry of a background copy.
    void upload(const EntryDepend& other);

    // The ids a dependency picker must not offer for entry: its descendants,
    // and (without includeSelf) itself, its ancestors and what already waits
    // for it; with includeSelf only the entry itself besides the descendants.
    void get_exclude_depend(const Diary& diary, std::vector<int>& result, bool includeSelf) const;
    // What the subtree's leaves need from outside the subtree.
    std::vector<int> calc_dep_nodes(const Diary& diary) const;
    std::vector<int> calc_leaf_nodes(const Diary& diary) const;

    void mark_debug(bool on) { m_doDebug = on; }
    const std::string& get_debug() const { return m_debugInfo; }

private:
    int own_id() const;
    void add_reverse(int id, Diary& diary);
    static void record_circular(Diary& diary, const DiaryEntry& entry, const DiaryEntry& other);

    std::vector<int> m_dependId;
    std::vector<std::string> m_dependTitle;
    bool m_preventOthers;
    bool m_preventDepend;

    // Worked out at every full recalculation, never stored.
    std::vector<int> m_idBlock;
    std::vector<int> m_baseDepend;
    std::vector<int> m_baseBlock;
    std::vector<int> m_leafNode;
    std::vector<int> m_nonExpanded;
    bool m_isExpanded;
    std::vector<int> m_fullDepend;
    std::vector<int> m_dependOnThis;
    int m_activeDepends;
    bool m_doDebug;
    std::string m_debugInfo;
};

} // namespace Tervalon
