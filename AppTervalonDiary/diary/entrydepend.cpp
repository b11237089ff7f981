#include "AppTervalonDiary/diary/entrydepend.h"
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/diaryentry.h"
#include "LibCore/textstr/zbtextstr.h"
#include "LibObject/object/zbdump.h"

#include <algorithm>
#include <cstdlib>
#include <ostream>

namespace Tervalon {

namespace {
const ZBObjectPreReg g_register("EntryDepend", &EntryDepend::create_zbobject);

// Sorted id lists: the planner looks these up and merges them all the time.
void push_sorted(std::vector<int>& list, int id)
{
    auto at = std::lower_bound(list.begin(), list.end(), id);
    if (at == list.end() || *at != id)
        list.insert(at, id);
}

void merge_sorted(std::vector<int>& list, const std::vector<int>& more)
{
    if (more.empty())
        return;
    std::vector<int> merged;
    merged.reserve(list.size() + more.size());
    std::set_union(list.begin(), list.end(), more.begin(), more.end(), std::back_inserter(merged));
    list.swap(merged);
}

void sort_unique(std::vector<int>& list)
{
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
}

bool remove_keyword(std::string& title, const char* keyword)
{
    const size_t at = title.find(keyword);
    if (at == std::string::npos)
        return false;
    title.erase(at, std::char_traits<char>::length(keyword));
    return true;
}

bool title_matches(const DiaryEntry& entry, const std::string& title, bool partial)
{
    const std::string& summary = entry.get_summary();
    return partial ? summary.find(title) != std::string::npos : summary == title;
}

// One step of the title search from start (null: the top level): its children
// in order, each searched inside next when recurse is set; then, with goUp,
// the same from start's parent, skipping the subtree already searched.
int find_title_from(const std::string& title, const Diary& diary, const DiaryEntry* start, int skipId,
                    const std::vector<int>& exclusions, bool partial, bool goUp, bool recurse, int depth)
{
    // Nesting is bounded by the tree, which a damaged file could make deep.
    if (depth > 10000)
        return -1;
    auto search = [&](DiaryEntry* child) -> int {
        if (child->get_id() == skipId || child->is_deleted())
            return -1;
        if (std::find(exclusions.begin(), exclusions.end(), child->get_id()) != exclusions.end())
            return -1;
        if (title_matches(*child, title, partial))
            return child->get_id();
        if (recurse)
            return find_title_from(title, diary, child, skipId, exclusions, partial, false, true, depth + 1);
        return -1;
    };
    if (start) {
        for (DiaryEntry* child : start->get_children()) {
            const int found = search(child);
            if (found >= 0)
                return found;
        }
    } else {
        for (int i = 0; i < diary.get_nentries(); ++i) {
            const int found = search(diary.get_entry_index(i));
            if (found >= 0)
                return found;
        }
    }
    if (!goUp || !start)
        return -1;
    const ZBDBObject* parent = start->get_parent();
    if (!parent || parent == &diary)
        return find_title_from(title, diary, nullptr, start->get_id(), exclusions, partial, true, recurse, depth + 1);
    const DiaryEntry* parentEntry = dynamic_cast<const DiaryEntry*>(parent);
    if (!parentEntry)
        return -1;
    return find_title_from(title, diary, parentEntry, start->get_id(), exclusions, partial, true, recurse, depth + 1);
}
} // namespace

const char* const EntryDepend::C_TitleLevel = "[LEVEL]";
const char* const EntryDepend::C_TitlePartial = "[PARTIAL]";
const char* const EntryDepend::C_TitleBlock = "[BLOCK]";
const char* const EntryDepend::C_TitleID = "[ID=";
const char* const EntryDepend::C_TitleIDEnd = "]";

EntryDepend::EntryDepend()
{
    EntryDepend::register_zbobject();
    EntryDepend::set_defaults(true);
}

void EntryDepend::register_zbobject()
{
    register_objectname("EntryDepend", &EntryDepend::create_zbobject);
}

int EntryDepend::create_zbobject(ZBObject*& out, const ZBObject* from)
{
    return create_as<EntryDepend>(out, from, "EntryDepend");
}

void EntryDepend::set_defaults(bool)
{
    m_dependId.clear();
    m_dependTitle.clear();
    m_preventOthers = false;
    m_preventDepend = false;
    m_idBlock.clear();
    m_baseDepend.clear();
    m_baseBlock.clear();
    m_leafNode.clear();
    m_nonExpanded.clear();
    m_isExpanded = false;
    m_fullDepend.clear();
    m_dependOnThis.clear();
    m_activeDepends = -1;
    m_doDebug = false;
    m_debugInfo.clear();
}

void EntryDepend::dump(std::ostream& out, int indent) const
{
    ZBDump dump("EntryDepend", out, indent);
    for (size_t i = 0; i < m_dependId.size(); ++i)
        dump.add("m_dependId", m_dependId[i], int(i));
    for (size_t i = 0; i < m_dependTitle.size(); ++i)
        dump.add_entry("m_dependTitle", m_dependTitle[i], int(i));
    dump.add("m_preventOthers", m_preventOthers);
    dump.add("m_preventDepend", m_preventDepend);
    for (size_t i = 0; i < m_fullDepend.size(); ++i)
        dump.add("m_fullDepend", m_fullDepend[i], int(i));
    for (size_t i = 0; i < m_dependOnThis.size(); ++i)
        dump.add("m_dependOnThis", m_dependOnThis[i], int(i));
    dump.add("m_activeDepends", m_activeDepends);
}

int EntryDepend::serialise_facet(ZBObject& owner, std::istream* in, std::ostream* out, const std::string& prefix, int version)
{
    (void)version;
    ZBSrlValueVector<int> ids(m_dependId);
    owner.serialise_value(in, out, prefix, "dp", ids);
    owner.serialise_string_vector(in, out, prefix, "dt", m_dependTitle);
    owner.serialise_field<bool>(in, out, prefix, "dpo", m_preventOthers, false);
    owner.serialise_field<bool>(in, out, prefix, "dpd", m_preventDepend, false);
    return ZBErrC_ok;
}

int EntryDepend::own_id() const
{
    return get_entry() ? get_entry()->get_id() : -1;
}

// ---------------------------------------------------------------- as entered

int EntryDepend::get_depend_no(int index) const
{
    return index >= 0 && index < get_ndepends() ? m_dependId[size_t(index)] : -1;
}

bool EntryDepend::add_depend(int id)
{
    if (std::find(m_dependId.begin(), m_dependId.end(), id) != m_dependId.end())
        return false;
    m_dependId.push_back(id);
    return true;
}

bool EntryDepend::remove_depend(int id)
{
    auto at = std::find(m_dependId.begin(), m_dependId.end(), id);
    if (at == m_dependId.end())
        return false;
    m_dependId.erase(at);
    return true;
}

std::string EntryDepend::get_title_no(int index) const
{
    return index >= 0 && index < get_ntitles() ? m_dependTitle[size_t(index)] : std::string();
}

bool EntryDepend::add_title(const std::string& text)
{
    if (text.empty() || std::find(m_dependTitle.begin(), m_dependTitle.end(), text) != m_dependTitle.end())
        return false;
    m_dependTitle.push_back(text);
    return true;
}

bool EntryDepend::remove_title(const std::string& text)
{
    auto at = std::find(m_dependTitle.begin(), m_dependTitle.end(), text);
    if (at == m_dependTitle.end())
        return false;
    m_dependTitle.erase(at);
    return true;
}

int EntryDepend::add_block(int id, Diary& diary)
{
    DiaryEntry* other = diary.get_entry_id(id);
    if (!other)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no entry %d.", id);
    if (other->edit_depend().add_depend(own_id()))
        other->clear_predicted(true);
    return ZBErrC_ok;
}

int EntryDepend::remove_block(int id, Diary& diary)
{
    DiaryEntry* other = diary.get_entry_id(id);
    if (!other)
        return zbwarnuser(ZBErrC_InvalidValue, ZBLOC, "There is no entry %d.", id);
    if (other->edit_depend().remove_depend(own_id()))
        other->clear_predicted(true);
    return ZBErrC_ok;
}

namespace {
// Titles and ids of the entries named, in the entry order asked for.
std::vector<std::pair<std::string, int>> titles_of(const Diary& diary, const std::vector<int>& ids, int sort)
{
    ZBPtrArray<DiaryEntry> entries(false);
    for (int id : ids)
        if (DiaryEntry* entry = diary.get_entry_id(id))
            entries.push_back(entry);
    DiaryEntry::sort_entries(entries, sort);
    std::vector<std::pair<std::string, int>> result;
    for (const DiaryEntry* entry : entries)
        result.emplace_back(entry->get_summary(), entry->get_id());
    return result;
}
} // namespace

std::vector<std::pair<std::string, int>> EntryDepend::get_depends(const Diary& diary, bool directOnly, int sort) const
{
    return titles_of(diary, directOnly ? m_baseDepend : m_dependId, sort);
}

std::vector<std::pair<std::string, int>> EntryDepend::get_blocks(const Diary& diary, bool directOnly, int sort) const
{
    return titles_of(diary, directOnly ? m_baseBlock : m_idBlock, sort);
}

// ---------------------------------------------------------------- titles

int EntryDepend::find_title(const std::string& text, const Diary& diary, const DiaryEntry& entry, bool wantBlock)
{
    std::string title = text;
    const bool level = remove_keyword(title, C_TitleLevel);
    const bool partial = remove_keyword(title, C_TitlePartial);
    if (remove_keyword(title, C_TitleBlock)) {
        if (!wantBlock)
            return -1;
    } else if (wantBlock) {
        return -1;
    }
    int base = entry.get_parent() ? entry.get_parent()->get_id() : diary.get_id();
    const size_t at = title.find(C_TitleID);
    if (at != std::string::npos) {
        const size_t from = at + std::char_traits<char>::length(C_TitleID);
        const size_t end = title.find(C_TitleIDEnd, from);
        const std::string digits = title.substr(from, end == std::string::npos ? std::string::npos : end - from);
        base = int(std::strtol(digits.c_str(), nullptr, 10));
        title.erase(at, end == std::string::npos ? std::string::npos : end + 1 - at);
    }
    title = zb_clean_string(title);
    if (title.empty())
        return -1;

    const DiaryEntry* start = nullptr;
    if (base == entry.get_id())
        start = &entry;
    else if (base != diary.get_id()) {
        start = diary.get_entry_id(base);
        if (!start)
            return -1;
    }
    std::vector<int> exclusions{entry.get_id()};
    for (const DiaryEntry* up = entry.get_parent_entry(); up; up = up->get_parent_entry())
        exclusions.push_back(up->get_id());

    int found = find_title_from(title, diary, start, entry.get_id(), exclusions, partial, !level, false, 0);
    if (found < 0 && !level)
        found = find_title_from(title, diary, start, entry.get_id(), exclusions, partial, true, true, 0);
    return found;
}

// ---------------------------------------------------------------- resolving

void EntryDepend::clear_intermediate()
{
    m_idBlock.clear();
    m_baseDepend.clear();
    m_baseBlock.clear();
    m_leafNode.clear();
    m_nonExpanded.clear();
    m_isExpanded = false;
    m_fullDepend.clear();
    m_dependOnThis.clear();
    m_activeDepends = -1;
    m_debugInfo.clear();
}

void EntryDepend::calc_title_blocks(Diary& diary)
{
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    for (const std::string& title : m_dependTitle) {
        const int found = find_title(title, diary, *entry, true);
        if (found < 0 || found == entry->get_id())
            continue;
        if (DiaryEntry* other = diary.lookup_entry(found))
            other->edit_depend().m_baseDepend.push_back(entry->get_id());
        if (m_doDebug)
            m_debugInfo += "\"" + title + "\" blocks " + std::to_string(found) + "\n";
    }
}

void EntryDepend::calc_base_depends(Diary& diary)
{
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    for (int id : m_dependId)
        if (diary.lookup_entry(id))
            m_baseDepend.push_back(id);
    for (const std::string& title : m_dependTitle) {
        const int found = find_title(title, diary, *entry, false);
        if (m_doDebug)
            m_debugInfo += "\"" + title + "\" finds " + std::to_string(found) + "\n";
        if (found >= 0)
            m_baseDepend.push_back(found);
    }
    m_baseDepend.erase(std::remove(m_baseDepend.begin(), m_baseDepend.end(), entry->get_id()), m_baseDepend.end());
    sort_unique(m_baseDepend);
}

void EntryDepend::calculate_leaf_nodes(Diary& diary)
{
    DiaryEntry* entry = get_entry();
    m_leafNode.clear();
    if (!entry)
        return;
    for (DiaryEntry* child : entry->get_children())
        child->edit_depend().calculate_leaf_nodes(diary);
    if (m_preventOthers)
        return;
    if (entry->get_nchildren() == 0) {
        m_leafNode.push_back(entry->get_id());
        return;
    }
    for (DiaryEntry* child : entry->get_children())
        merge_sorted(m_leafNode, child->get_depend().m_leafNode);
}

void EntryDepend::push_down_direct(const std::vector<int>& inherited, Diary& diary)
{
    DiaryEntry* entry = get_entry();
    if (!entry || m_preventDepend)
        return;
    const int id = entry->get_id();
    for (int target : m_dependId)
        if (DiaryEntry* other = diary.lookup_entry(target))
            push_sorted(other->edit_depend().m_idBlock, id);
    for (int target : m_baseDepend)
        if (DiaryEntry* other = diary.lookup_entry(target))
            push_sorted(other->edit_depend().m_baseBlock, id);
    merge_sorted(m_baseDepend, inherited);
    m_baseDepend.erase(std::remove(m_baseDepend.begin(), m_baseDepend.end(), id), m_baseDepend.end());
    for (DiaryEntry* child : entry->get_children())
        child->edit_depend().push_down_direct(m_baseDepend, diary);
    for (int target : m_baseDepend) {
        DiaryEntry* other = diary.lookup_entry(target);
        if (!other)
            continue;
        const std::vector<int>& back = other->get_depend().m_baseDepend;
        if (std::binary_search(back.begin(), back.end(), id))
            record_circular(diary, *entry, *other);
        m_nonExpanded.insert(m_nonExpanded.end(), other->get_depend().m_leafNode.begin(),
                             other->get_depend().m_leafNode.end());
    }
    sort_unique(m_nonExpanded);
}

void EntryDepend::distribute_depends(Diary& diary, std::vector<int>& chain, std::unordered_set<int>& inChain)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    const int id = entry->get_id();
    chain.push_back(id);
    inChain.insert(id);
    for (DiaryEntry* child : entry->get_children())
        child->edit_depend().distribute_depends(diary, chain, inChain);
    if (!m_isExpanded) {
        for (int target : m_nonExpanded) {
            DiaryEntry* other = diary.lookup_entry(target);
            if (!other)
                continue;
            if (inChain.count(target)) {
                record_circular(diary, *entry, *other);
                continue;
            }
            // A completed task is followed but not listed: what it waited for still counts.
            if (!other->is_complete())
                push_sorted(m_fullDepend, target);
            other->edit_depend().distribute_depends(diary, chain, inChain);
            merge_sorted(m_fullDepend, other->get_depend().m_fullDepend);
        }
        m_fullDepend.erase(std::remove(m_fullDepend.begin(), m_fullDepend.end(), id), m_fullDepend.end());
        if (!entry->is_complete())
            for (int target : m_fullDepend)
                add_reverse(target, diary);
        m_isExpanded = true;
        m_nonExpanded.clear();
    }
    inChain.erase(id);
    chain.pop_back();
}

void EntryDepend::add_reverse(int id, Diary& diary)
{
    // Gathered in any order and sorted once by finalise_depends: a long chain
    // adds to the same lists thousands of times.
    if (DiaryEntry* other = diary.lookup_entry(id))
        other->edit_depend().m_dependOnThis.push_back(own_id());
}

void EntryDepend::finalise_depends(Diary& diary)
{
    DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    for (DiaryEntry* child : entry->get_children())
        child->edit_depend().finalise_depends(diary);
    sort_unique(m_dependOnThis);
    if (m_doDebug) {
        m_debugInfo += "waits for:";
        for (int target : m_fullDepend)
            m_debugInfo += " " + std::to_string(target);
        m_debugInfo += "\nwaited for by:";
        for (int target : m_dependOnThis)
            m_debugInfo += " " + std::to_string(target);
        m_debugInfo += "\n";
        m_doDebug = false;
    }
}

void EntryDepend::record_circular(Diary& diary, const DiaryEntry& entry, const DiaryEntry& other)
{
    char text[1024];
    std::snprintf(text, sizeof(text), "This depends on %s (ID %d), which depends back on this.",
                  other.get_summary().c_str(), other.get_id());
    diary.get_checker().record_error(entry, Diary::ZBErrC_CircularDependancy, text, "Circular Dependancy");
}

void EntryDepend::upload(const EntryDepend& other)
{
    m_fullDepend = other.m_fullDepend;
    m_dependOnThis = other.m_dependOnThis;
    m_baseDepend = other.m_baseDepend;
    m_idBlock = other.m_idBlock;
    m_leafNode = other.m_leafNode;
    m_baseBlock = other.m_baseBlock;
    m_nonExpanded = other.m_nonExpanded;
}

// ---------------------------------------------------------------- pickers

void EntryDepend::get_exclude_depend(const Diary& diary, std::vector<int>& result, bool includeSelf) const
{
    (void)diary;
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return;
    std::vector<int> below = entry->get_child_ids(true);
    result.insert(result.end(), below.begin(), below.end());
    result.push_back(entry->get_id());
    if (!includeSelf) {
        for (const DiaryEntry* up = entry->get_parent_entry(); up; up = up->get_parent_entry())
            result.push_back(up->get_id());
        result.insert(result.end(), m_dependOnThis.begin(), m_dependOnThis.end());
    }
    sort_unique(result);
}

std::vector<int> EntryDepend::calc_leaf_nodes(const Diary& diary) const
{
    (void)diary;
    std::vector<int> leaves;
    const DiaryEntry* entry = get_entry();
    if (!entry)
        return leaves;
    if (entry->get_nchildren() == 0) {
        leaves.push_back(entry->get_id());
        return leaves;
    }
    for (const DiaryEntry* child : entry->get_children())
        merge_sorted(leaves, child->get_depend().calc_leaf_nodes(diary));
    return leaves;
}

std::vector<int> EntryDepend::calc_dep_nodes(const Diary& diary) const
{
    const std::vector<int> leaves = calc_leaf_nodes(diary);
    std::vector<int> needed;
    for (int leaf : leaves)
        if (const DiaryEntry* entry = diary.get_entry_id(leaf))
            merge_sorted(needed, entry->get_depend().m_fullDepend);
    std::vector<int> outside;
    std::set_difference(needed.begin(), needed.end(), leaves.begin(), leaves.end(), std::back_inserter(outside));
    return outside;
}

} // namespace Tervalon
