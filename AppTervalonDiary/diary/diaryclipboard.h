#pragma once

#include "LibObject/object/zbidlist.h"

#include <memory>
#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBDBObject;

// Copy, cut and paste of entries with everything below them. The clipboard
// keeps its own copies of the subtrees, taken when they are copied or cut, so
// that a paste gives what was copied even after the originals changed or went.
// One clipboard serves the whole process, as the desktop's does.
class DiaryClipboard {
public:
    static DiaryClipboard& instance();

    // Takes copies of the entries (and their subtrees); cut marks them so
    // that views can grey them out until they are deleted or pasted.
    int copy(const Diary& diary, const ZBIdList& ids, bool cut);
    bool clipboard_has_object() const { return !m_items.empty(); }
    bool get_was_copied() const { return m_wereCopied; }
    int size() const { return int(m_items.size()); }
    static bool is_cut(int id);
    void clear();

    // Adds copies of the clipboard's entries under target (null: the top
    // level) with new ids, times times over; the ids of the new top entries
    // go to made. Does not close an undo step.
    int do_paste(Diary& diary, DiaryEntry* target, int times, std::vector<int>* made = nullptr);

private:
    struct Item {
        std::unique_ptr<ZBDBObject> object;
        std::string memberTag;
        int specId = -1;
        std::vector<Item> children;
    };
    static int take(const DiaryEntry& entry, Item& out);
    static int paste_item(Diary& diary, const Item& item, ZBDBObject* parent, int& madeId);

    std::vector<Item> m_items;
    bool m_wereCopied = true;
    static ZBIdList m_cutID;
};

} // namespace Tervalon
