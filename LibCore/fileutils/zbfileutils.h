#pragma once

// File and path functions. Paths are UTF-8 std::strings; the work is done by
// Qt, so names with blanks, quotes or non-ASCII letters are safe. Operations
// report failures through the error system and return its values.

#include "LibCore/time/zbmoment.h"

#include <string>

namespace Tervalon {

// The cache directory: logs, the error log and performance log, scratch work.
// The first of the platform's cache locations; made if missing.
std::string zb_cache_dir();
// "<cache dir>/<application name><suffix>", as "_error.log" or "_performance.log".
std::string zb_cache_file(const std::string& suffix);

bool zb_file_exists(const std::string& path);
bool zb_dir_exists(const std::string& path);
// Tried for real: a scratch file is made and removed, since permission bits
// do not tell the whole story (read-only mounts, full disks, ACLs).
bool zb_dir_writable(const std::string& dir);
// The time of last change; an invalid date when the file does not exist.
ZBMoment zb_file_modified(const std::string& path);
long long zb_file_size(const std::string& path);
// same is true when both files hold the same bytes.
int zb_file_compare(const std::string& a, const std::string& b, bool& same);
int zb_copy_file(const std::string& from, const std::string& to, bool overwrite);
int zb_rename_file(const std::string& from, const std::string& to, bool overwrite);
// Deleting a file that is not there succeeds: the wish is met.
int zb_delete_file(const std::string& path);
// Makes the directory and its parents; an existing directory is fine.
int zb_create_dir(const std::string& path);
int zb_delete_dir(const std::string& path, bool recursive);

bool zb_is_absolute_path(const std::string& path);
// QDir::cleanPath; with forward, backslashes become '/'. Doubled separators
// after the second character are squeezed, so a network path keeps its "//".
std::string zb_clean_pathname(const std::string& path, bool forward);
// "/a/b/c.tar.gz" gives "/a/b", "c.tar", ".gz". A leading dot is part of the
// name (".cfg" has no extension). Only '/' separates directories.
void zb_split_path(const std::string& path, std::string& dir, std::string& base, std::string& ext);
std::string zb_filename(const std::string& path);
std::string zb_basename(const std::string& path);
std::string zb_dirname(const std::string& path);
// With its dot: ".zbd"; empty when there is none.
std::string zb_extension(const std::string& path);
std::string zb_join_path(const std::string& dir, const std::string& name);

// Whole-file text helpers used by logs and small files.
int zb_read_text_file(const std::string& path, std::string& text);
int zb_write_text_file(const std::string& path, const std::string& text);

} // namespace Tervalon
