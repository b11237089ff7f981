#pragma once

#include "LibDate/date/zbdateslot.h"
#include "LibObject/object/zbidlist.h"

namespace Tervalon {

class Diary;
class DiaryDisplay;

// What a page of the main window needs to fill itself: the diary, its display
// helper, whose plan is shown, the calendar's current range and the one
// selection that every page follows. The window owns all of it; a page only
// reads it while it fills.
class DiaryPageContext {
public:
    Diary* m_diary = nullptr;
    DiaryDisplay* m_display = nullptr;
    int m_user = 0;           // the resource whose plan is shown
    ZBDateSlot m_range;       // the calendar's current day range
    ZBIdList m_selected;      // the window's selection, first id first
};

} // namespace Tervalon
