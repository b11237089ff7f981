// Durations as people type them ("1h 30m", "1:30", "1.5h", "2d") and as files
// store them. The printed text of a duration must read back to it, and so
// must its stored text.
#include "fuzz/fuzzsupport.h"

#include "LibDate/date/zbduration.h"

#include <sstream>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

std::string stored_text(const ZBDuration& duration)
{
    std::ostringstream out;
    out << duration;
    return out.str();
}

void check_stored(const ZBDuration& duration, const std::string& text)
{
    const std::string stored = stored_text(duration);
    std::istringstream in(stored);
    ZBDuration back;
    in >> back;
    TERVALON_FUZZ_CHECK(back == duration, "a stored duration did not read back", text + "\n" + stored, stored_text(back));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    ZBDuration typed;
    if (!iszbwarn(typed.from_string(text, 0))) {
        for (bool withSeconds : {false, true}) {
            const std::string printed = typed.to_string(withSeconds);
            ZBDuration back;
            TERVALON_FUZZ_CHECK(!iszbwarn(back.from_string(printed, 0)), "a printed duration did not read", text, printed);
            TERVALON_FUZZ_CHECK(back == typed, "a printed duration read back as another", text + "\n" + printed,
                                back.to_string(true));
        }
        typed.to_string_day(true);
        check_stored(typed, text);
    }
    std::istringstream in(text);
    ZBDuration stored;
    in >> stored;
    check_stored(stored, text);
    Fuzz::clear_errors();
    return 0;
}
