// The $=(...) expressions of variable values: the evaluator on the text
// alone, and the same text inside a variable value as an object works it out.
// A number the evaluator gives must evaluate to itself, or a value would
// drift each time it is worked out again.
#include "fuzz/fuzzsupport.h"

#include "LibDatabase/db/zbdbobject.h"
#include "LibDatabase/db/zbexprevaluator.h"

#include <cctype>

using namespace Tervalon;

TERVALON_FUZZ_INIT

namespace {

bool is_number_text(const std::string& text)
{
    if (text.empty())
        return false;
    for (char c : text)
        if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '+' || c == 'e'))
            return false;
    return std::isdigit(static_cast<unsigned char>(text.back()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = Fuzz::text_of(data, size);
    std::string result;
    std::string message;
    if (ZBExprEvaluator::evaluate(text, result, message) && is_number_text(result)) {
        std::string again;
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
