#pragma once

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbduration.h"

#include <string>
#include <vector>

namespace Tervalon {

class Diary;
class DiaryEntry;

// Brings a task list in the JSON form of a task manager's export (one object
// per line, or one array) into a diary, so that a user can move here with
// their tasks and large plans can be built for benchmarks. Each task becomes
// a task entry, each project path a chain of folders, each dependency a link.
// The whole text is read before anything changes: text that is not JSON
// changes nothing. The caller closes the undo step and saves; doc/import.md
// holds the mapping of every field.
class TaskImport {
public:
    TaskImport();

    // Adds the tasks of text under parent (null: the top level). A user
    // warning, with nothing changed, when the text holds no JSON object at
    // all; otherwise every readable task goes in and what could not be read
    // is listed by get_problems, one "line N: ..." text each.
    int import(Diary& diary, const std::string& text, DiaryEntry* parent = nullptr);

    const std::vector<std::string>& get_problems() const { return m_problems; }
    int get_ntasks() const { return m_tasks; }
    int get_nfolders() const { return m_folders; }
    int get_ndepends() const { return m_depends; }
    int get_ndeleted() const { return m_deleted; }
    int get_nrecurring() const { return m_recurring; }
    // "Imported 120 tasks, 8 folders, 30 dependencies; skipped 2 deleted".
    std::string get_summary() const;

    // A moment as the export writes it ("20261123T170000Z"), or in the
    // extended form ("2026-11-23T17:00:00Z"); false when text is neither.
    static bool read_date(const std::string& text, ZBDate& out);
    // An estimate: an ISO 8601 duration ("PT2H30M", "P1DT4H") or the diary's
    // own duration text ("2h 30m"); false when text is neither.
    static bool read_duration(const std::string& text, ZBDuration& out);

    // Folders deeper than this keep the rest of the project path in the name
    // of the deepest one, so that no text can build an unbounded tree.
    static constexpr int C_MaxProjectDepth = 32;

private:
    void clear();

    std::vector<std::string> m_problems;
    int m_tasks = 0;
    int m_folders = 0;
    int m_depends = 0;
    int m_deleted = 0;
    int m_recurring = 0;
};

} // namespace Tervalon
