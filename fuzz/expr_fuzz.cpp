// The $=(...) expressions of variable values: the evaluator on the text
// alone, and the same text inside a variable value as an object works it out.
// A value must not change when the expression is put in parentheses, and a
// number the evaluator prints must evaluate to itself, or a value would drift
// each time it is worked out again.
#include "fuzz/fuzzsupport.h"

#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbexprevaluator.h"

#include <algorithm>
#include <cctype>
#include <regex>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

// Only the plain decimal form of a number: a string that merely looks like one
// ('+3', '.1', '007') rightly evaluates to another text, and so does a string of
// more digits than a number holds ('77777777777777777777' is a text, not a
// number the evaluator could have printed).
bool is_plain_number(const std::string& text)
{
    static const std::regex plain("-?(0|[1-9][0-9]*)(\\.[0-9]*[1-9])?");
    if (text == "-0" || !std::regex_match(text, plain))
        return false;
    std::size_t digits = 0;
    for (char c : text)
        digits += std::isdigit(static_cast<unsigned char>(c)) ? 1 : 0;
    const std::size_t leadingZeros = text.find_first_not_of("-0.");
    return digits - (leadingZeros == std::string::npos ? 0 : std::count(text.begin(), text.begin() + leadingZeros, '0')) <= 15;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    std::string result;
    std::string message;
    if (ZBExprEvaluator::evaluate(text, result, message)) {
        std::string again;
        TERVALON_FUZZ_CHECK(ZBExprEvaluator::evaluate("(" + text + ")", again, message) && again == result,
                            "an expression changes its value in parentheses", text + "\n" + result, again);
        if (is_plain_number(result))
            TERVALON_FUZZ_CHECK(ZBExprEvaluator::evaluate(result, again, message) && again == result,
                                "a number from an expression does not evaluate to itself", text + "\n" + result, again);
    }
    Fuzz::clear_errors();

    static ZBDBObject* object = new ZBDBObject();
    std::string value = "$=(" + text + ")";
    object->apply_vars(value, true, nullptr);
    Fuzz::clear_errors();
    return 0;
}
