#pragma once

namespace Tervalon {

// For tests of a crash in the middle of a full save: from now on every save
// stops after this step (5 new file written, 6 old file linked, 7 base made,
// 9 renamed into place, 10 backups rotated, 11 old file deleted) and returns
// okShutdown, leaving the disk as a crash there would. 0 lets saves run to
// the end.
void zb_set_save_stop(int step);

} // namespace Tervalon
