#pragma once

// Writes that must survive a crash. A record appended to a log goes down in
// one system call, so a killed process leaves it whole or cut at its end,
// never interleaved. A file that replaces another is flushed to the disk
// before the rename, and the folder after it, so a power cut leaves the old
// file or the new one, never an empty one. Failures carry the system's text.

#include <string>

namespace Tervalon {

// Appends data to path (made if missing) with one write.
int zb_append_file(const std::string& path, const std::string& data);
// Writes path afresh with data and flushes it to the disk before returning.
int zb_write_file_synced(const std::string& path, const std::string& data);
// Flushes a file, or a folder's list of names, to the disk.
int zb_sync_file(const std::string& path);
int zb_sync_dir(const std::string& dir);
// Renames from to to, replacing to, in one step, and flushes the folder.
int zb_rename_synced(const std::string& from, const std::string& to);
// Makes to a second name of from (a hard link), or a copy where links are not
// allowed; an existing to is replaced. The original keeps its name throughout.
int zb_link_or_copy(const std::string& from, const std::string& to);
// Cuts a file to size bytes.
int zb_truncate_file(const std::string& path, long long size);

// For tests of a full disk: after budget more bytes, every write of the
// functions above fails as a full disk does. A negative budget turns it off.
void zb_set_write_fault(long long budget);

} // namespace Tervalon
