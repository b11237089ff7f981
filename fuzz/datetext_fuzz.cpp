// Date text and date expressions: the lenient reader (ZBDate::from_string and
// the parsed expression), the strict reader for typed text (read_checked), and
// the stored form of a date. An expression's canonical text must read back to
// an expression that lands on the same moment; what the strict reader accepts
// the lenient one must read the same way; a stored date must read back equal.
#include "fuzz/fuzzsupport.h"

#include "LibDate/date/zbdate.h"
#include "LibDate/date/zbdateexp.h"
#include "LibDate/date/zbdateparser.h"
#include "LibDate/date/zbrepeatconfig.h"

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

void check_stored(const ZBDate& date, const std::string& text)
{
    std::string stored;
    date.write_stored(stored);
    ZBDate back;
    back.read_stored(stored);
    std::string again;
    back.write_stored(again);
    TERVALON_FUZZ_CHECK(stored == again, "a stored date did not read back", text + "\n" + stored, again);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    const ZBDate base(2026, 2, 8, 14, 45, 30, 0, ZBDate::C_GMT); // 9 March 2026, 14:45:30
    const ZBRepeatConfig config;

    bool complete = false;
    const ZBDateExp exp = ZBDateParser::parse_date(text, &complete);
    const ZBDate landed = exp.apply(base, &config);
    if (!exp.is_invalid()) {
        const std::string canonical = exp.to_string();
        const ZBDateExp back = ZBDateParser::parse_date(canonical);
        TERVALON_FUZZ_CHECK(!back.is_invalid(), "the canonical text of a date expression did not read", text, canonical);
        const ZBDate again = back.apply(base, &config);
        TERVALON_FUZZ_CHECK(again.to_iso() == landed.to_iso(), "the canonical text of a date lands elsewhere",
                            text + "\n" + canonical + "\n" + landed.to_iso(), again.to_iso());
    }
    landed.to_string();
    landed.to_string("%a %d/%b/%Y %H:%M:%S");
    check_stored(landed, text);

    ZBDate lenient;
    lenient.from_string(text, &base, &config);
    ZBDate strict;
    if (!iszbwarn(ZBDateParser::read_checked(text, &base, &config, strict))) {
        ZBDate plain;
        plain.from_string(text, &base, &config);
        TERVALON_FUZZ_CHECK(strict.to_iso() == plain.to_iso(), "the strict reader and the lenient one disagree",
                            text + "\n" + strict.to_iso(), plain.to_iso());
    }

    // Damaged stored text in a file field.
    ZBDate stored;
    stored.read_stored(text);
    check_stored(stored, text);
    Fuzz::clear_errors();
    return 0;
}
