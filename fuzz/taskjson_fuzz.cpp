// A task list in the JSON export form imported into a fresh diary held in
// memory, as `tervalon import` does. Text that is refused must leave the diary
// empty; text that is taken must give one entry per task and folder counted,
// a report line per problem, a recalculation that finishes, and a diary that
// is written and read back.
#include "fuzz/fuzzsupport.h"

#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/taskimport.h"

#include <sstream>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

int count_entries(const Diary& diary, const DiaryEntry* under)
{
    int total = 0;
    const int n = under ? under->get_nchildren() : diary.get_nentries();
    for (int i = 0; i < n; ++i) {
        const DiaryEntry* child = under ? under->get_child_no(i) : diary.get_entry_index(i);
        total += 1 + count_entries(diary, child);
    }
    return total;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    Diary diary;
    if (iszbwarn(diary.load(std::string(), true)))
        Fuzz::fail("an empty diary could not be made", text, std::string());
    Fuzz::clear_errors();
    TaskImport import;
    if (iszbwarn(import.import(diary, text))) {
        TERVALON_FUZZ_CHECK(diary.get_nentries() == 0, "a refused task list changed the diary", text, std::string());
        diary.unload();
        Fuzz::clear_errors();
        return 0;
    }
    const int entries = count_entries(diary, nullptr);
    TERVALON_FUZZ_CHECK(entries == import.get_ntasks() + import.get_nfolders(),
                        "the entries made are not the tasks and folders counted", text, import.get_summary());
    for (const std::string& problem : import.get_problems())
        TERVALON_FUZZ_CHECK(problem.compare(0, 5, "line ") == 0, "a problem without its line", text, problem);
    diary.recalculate(ZBDatabase::E_RecalcQuick);
    diary.complete_operation("Import Tasks");

    std::ostringstream out;
    TERVALON_FUZZ_CHECK(!iszbwarn(diary.write(out, 0, true, std::string(), -1)), "an imported diary could not be written",
                        text, std::string());
    Diary back;
    std::istringstream in(out.str());
    TERVALON_FUZZ_CHECK(!iszbwarn(back.read(in, false, false)), "an imported diary did not read back", text, out.str());
    TERVALON_FUZZ_CHECK(count_entries(back, nullptr) == entries, "entries were lost through the file", text,
                        out.str());
    back.unload();
    diary.unload();
    Fuzz::clear_errors();
    return 0;
}
