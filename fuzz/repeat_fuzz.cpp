// Repeat rule texts: read with from_string, written with to_string and read
// again (the two texts must agree), described in words, and a bounded number
// of instances generated forwards and backwards from a fixed seed.
#include "fuzz/fuzzsupport.h"

#include "LibDate/date/zbdaterepeat.h"
#include "LibDate/date/zbrepeatconfig.h"

#include <vector>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

const int C_Instances = 40;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    ZBDateRepeat rule;
    if (iszbwarn(rule.from_string(text))) {
        Fuzz::clear_errors();
        return 0;
    }
    const std::string written = rule.to_string();
    ZBDateRepeat again;
    TERVALON_FUZZ_CHECK(!iszbwarn(again.from_string(written)), "the text of a repeat rule did not read back", text,
                        written);
    TERVALON_FUZZ_CHECK(again.to_string() == written, "a repeat rule changed on its way through its text", written,
                        again.to_string());

    const ZBRepeatConfig config;
    rule.to_natural(&config);
    rule.to_natural(nullptr);
    rule.offset_to_natural();
    rule.range_to_string(true);
    rule.range_to_string(false);

    // 9 March 2026, 09:00 to 10:30 (months and days count from 0).
    const ZBDate start(2026, 2, 8, 9, 0, 0, 0, ZBDate::C_GMT);
    const ZBDate end(2026, 2, 8, 10, 30, 0, 0, ZBDate::C_GMT);
    const ZBDateSlot seed(start, end);
    const ZBDateSlot range(ZBDate(2025, 0, 0, 0, 0, 0, 0, ZBDate::C_GMT), ZBDate(2028, 0, 0, 0, 0, 0, 0, ZBDate::C_GMT));
    ZBDateRepeat generator(rule);
    if (!iszbwarn(generator.initialise(&config))) {
        std::vector<ZBDateSlot> slots;
        generator.generate_slots(seed, range, C_Instances, &config, slots);
        TERVALON_FUZZ_CHECK(int(slots.size()) <= C_Instances, "more instances than asked for", text, written);
        slots.clear();
        generator.generate_back_slots(seed, range, C_Instances, &config, slots);
        TERVALON_FUZZ_CHECK(int(slots.size()) <= C_Instances, "more earlier instances than asked for", text, written);
        ZBDate date = start;
        for (int i = 0; i < C_Instances; ++i) {
            const ZBDate next = generator.next_date(date, &config);
            if (!next.is_ok() || next == date)
                break;
            date = next;
        }
    }
    Fuzz::clear_errors();
    return 0;
}
