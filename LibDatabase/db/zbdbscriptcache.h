#pragma once

#include <string>
#include <vector>

namespace Tervalon {

// Evaluates the $=(...) expressions of variable values, keeping what each slot
// (the expression's position in its text) compiled to. The script engine will
// derive from this and run the text as JavaScript; until it is built the base
// uses the small evaluator of ZBExprEvaluator (numbers, strings, arithmetic,
// comparisons, && || !), which is a subset of what the engine will accept, so
// values written now keep their meaning.
class ZBDBScriptCache {
public:
    virtual ~ZBDBScriptCache() = default;
    // The value of text as an expression; a fault gives a user warning and the
    // result "#ERROR".
    virtual int evaluate(const std::string& text, int slot, std::string& result);
    void clear() { m_slot.clear(); }

protected:
    // The texts last evaluated, by slot.
    std::vector<std::string> m_slot;
};

} // namespace Tervalon
