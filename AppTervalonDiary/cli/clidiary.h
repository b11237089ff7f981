#pragma once

#include "AppTervalonDiary/cli/clicommand.h"

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"

#include <string>

namespace Tervalon {

class Diary;
class DiaryEntry;
class ZBDatabase;

// What the entry commands share: the diary behind a database, an entry by
// the id a user typed, and the reading of typed dates and durations. Each
// reports its failure through the error stack and returns the code.
class CliDiary {
public:
    static int get_diary(ZBDatabase& db, Diary*& out);
    static int get_entry(Diary& diary, const std::string& idText, DiaryEntry*& out);
    static int read_date(const std::string& text, ZBDate& out);
    static int read_duration(const std::string& text, ZBDuration& out);
    // The first and the last second of the day of a date, in the locale's zone.
    static ZBDate day_start(const ZBDate& date);
    static ZBDate day_end(const ZBDate& date);
    static int read_number(const std::string& text, double& out);
    // Sets one field by name, as the set command and add's options do.
    static int set_field(Diary& diary, DiaryEntry& entry, const std::string& field, const std::string& value);
};

} // namespace Tervalon
