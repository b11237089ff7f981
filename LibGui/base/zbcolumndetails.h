#pragma once

namespace Tervalon {

// What a column of a view wants: its size (or 0 to follow its contents),
// the least and most it may take (-1 for no limit), whether it may shrink
// when room is short, and whether it shares in spare room.
struct ZBColumnDetails {
    int m_size = 0;
    int m_min = 20;
    int m_max = -1;
    bool m_resize = true;
    bool m_fill = false;
};

} // namespace Tervalon
