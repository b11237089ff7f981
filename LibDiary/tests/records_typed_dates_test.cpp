#include "records_fixture.h"

#include "LibDiary/diary/zbdentry.h"

using namespace Tervalon;
using Tervalon::RecordsTest::RecordsFixture;

namespace {

using RecordsTypedDates = RecordsFixture;

} // namespace

// A date set on a record by name is typed text: read strictly, never as a
// stored date, and a refused one leaves the record as it was.
TEST_F(RecordsTypedDates, DateValuesAreReadAsTypedText)
{
    ZBDEntry* entry = new ZBDEntry();
    ASSERT_FALSE(iszbwarn(diary.add_object(entry, &diary, ZBDatabase::C_DefaultChildName, "", -1, "")));
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Due_Date", "9-Mar-2026 14:00")));
    const ZBDate before = entry->get_due();
    const struct {
        const char* text;
        const char* message;
    } rows[] = {
        {"202603021400", "Due_Date: Invalid date value: 202603021400"},
        {"31-Feb-2026", "Due_Date: Invalid date value: 31-Feb-2026. Feb 2026 has 28 days."},
        {"25:00", "Due_Date: Invalid date value: 25:00. There is no hour 25."},
        {"14:00 UTC+12:30", "Due_Date: Invalid date value: 14:00 UTC+12:30"},
    };
    for (const auto& row : rows) {
        get_zberror().clear_all();
        EXPECT_TRUE(iszbwarn(entry->set_sysvalue("Due_Date", row.text))) << row.text;
        EXPECT_EQ(last_error(), row.message);
        EXPECT_EQ(entry->get_due(), before) << row.text;
    }
    get_zberror().clear_all();
    ASSERT_FALSE(iszbwarn(entry->set_sysvalue("Due_Date", "10-Mar-2026 14:00 UTC+13")));
    EXPECT_EQ(entry->get_due().to_iso(), "2026-03-10T01:00:00Z");
}
