// A month's timesheet over a large diary, and a long page written to HTML and
// to text: what `tervalon timesheet` and every report do at each call.
#include "AppTervalonDiary/diary/diary.h"
#include "AppTervalonDiary/diary/entryspent.h"
#include "AppTervalonDiary/diary/timesheet.h"
#include "LibMarkup/html/zbhtmlrenderer.h"
#include "LibMarkup/markup/zbmarkuppage.h"
#include "LibMarkup/markup/zbmarkupparagraph.h"
#include "LibMarkup/markup/zbmarkuprenderer.h"
#include "LibMarkup/markup/zbmarkuptable.h"
#include "bench/benchsupport.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <sstream>

using namespace Tervalon;

namespace {

// Monday 2 March 2026.
const ZBDate C_Start(2026, 3, 2, 0, 0, 0, 0, ZBDate::C_GMT);

std::string scratch_file()
{
    static int count = 0;
    return bench_scratch().path().toStdString() + "/markup" + std::to_string(++count) + ".zbd";
}

// 10,000 tasks in projects of 50, with 50,000 sessions of 30 to 120 minutes
// spread over two months, the month of the sheet among them.
std::unique_ptr<Diary> make_diary(int tasks, int sessions)
{
    std::unique_ptr<Diary> diary(new Diary());
    diary->create(scratch_file(), true);
    const int me = diary->get_default_resource_id();
    std::vector<DiaryEntry*> entries;
    DiaryEntry* project = nullptr;
    for (int n = 0; n < tasks; ++n) {
        if (n % 50 == 0)
            diary->create_entry(nullptr, 'O', "Project " + std::to_string(n / 50), &project);
        DiaryEntry* entry = nullptr;
        diary->create_entry(project, 'T', "Task " + std::to_string(n), &entry);
        entries.push_back(entry);
    }
    for (int s = 0; s < sessions; ++s) {
        DiaryEntry* entry = entries[size_t(std::int64_t(s) * 7919 % tasks)];
        const std::int64_t day = s % 61;
        const std::int64_t minute = 8 * 60 + (s / 61) % 20 * 30;
        const ZBDate from = C_Start + ZBDuration(day * 86400 + minute * 60);
        entry->edit_spent().add_session(ZBDateSlot(from, from + ZBDuration(std::int64_t(30 + s % 4 * 30) * 60)), me);
    }
    return diary;
}

Diary& shared_diary()
{
    static std::unique_ptr<Diary> diary = make_diary(10000, 50000);
    return *diary;
}

void BM_TimesheetMonth(benchmark::State& state)
{
    Diary& diary = shared_diary();
    int rows = 0;
    for (auto _ : state) {
        Timesheet sheet(diary);
        benchmark::DoNotOptimize(sheet.generate(C_Start, 31));
        rows = sheet.get_nrows();
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_TimesheetMonth)->Unit(benchmark::kMillisecond);

void BM_TimesheetMonthToPage(benchmark::State& state)
{
    Diary& diary = shared_diary();
    Timesheet sheet(diary);
    sheet.generate(C_Start, 31);
    for (auto _ : state) {
        ZBMarkupPage page;
        sheet.to_markup(page);
        benchmark::DoNotOptimize(ZBHtmlRenderer().to_string(page));
    }
}
BENCHMARK(BM_TimesheetMonthToPage)->Unit(benchmark::kMillisecond);

// 10,000 lines: headers, indented paragraphs with bold and coloured words,
// and a table of 5,000 rows, as a long report has them.
const ZBMarkupPage& long_page()
{
    static ZBMarkupPage page = [] {
        ZBMarkupPage made("A long report");
        for (int n = 0; n < 2500; ++n) {
            made.add_paragraph("Section " + std::to_string(n), 2);
            ZBMarkupParagraph* line = made.add_paragraph("Work on <item> " + std::to_string(n) + " & more");
            line->set_indent(n % 3);
        }
        auto* table = new ZBMarkupTable(4, 5000);
        for (int c = 0; c < 4; ++c)
            table->set_title("Column " + std::to_string(c), c);
        for (int r = 0; r < 5000; ++r) {
            table->set_cell("Task " + std::to_string(r), 0, r);
            table->set_cell("Mon 02-Mar-2026 09:00", 1, r);
            table->set_cell(std::to_string(r % 17) + ":30", 2, r, r % 5 == 0 ? "red" : "");
            table->set_cell("a note, \"quoted\"", 3, r);
        }
        made.append(table);
        return made;
    }();
    return page;
}

void BM_RenderHtml10kLines(benchmark::State& state)
{
    const ZBMarkupPage& page = long_page();
    size_t bytes = 0;
    for (auto _ : state) {
        const std::string html = ZBHtmlRenderer().to_string(page);
        bytes = html.size();
        benchmark::DoNotOptimize(html.data());
    }
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_RenderHtml10kLines)->Unit(benchmark::kMillisecond);

void BM_RenderText10kLines(benchmark::State& state)
{
    const ZBMarkupPage& page = long_page();
    size_t bytes = 0;
    for (auto _ : state) {
        const std::string text = ZBMarkupRenderer().to_string(page);
        bytes = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    state.counters["bytes"] = double(bytes);
}
BENCHMARK(BM_RenderText10kLines)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return Tervalon::bench_main(argc, argv, &C_Start);
}
