#pragma once

#include "LibCore/error/zberror.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace Tervalon {
namespace Fuzz {

// Once per process: a scratch HOME, the zone fixed at UTC, a Qt core
// application, an error stack that prints nothing, and now() fixed, so that
// one input always takes the same path.
void initialise();
// Forgets the errors an input raised, so that the stack does not grow over a
// run of millions of inputs.
void clear_errors();
// Stops the run with the input kept when a reader breaks its promise (a round
// trip that does not hold); libFuzzer reports the abort as a crash.
[[noreturn]] void fail(const char* what, const std::string& first, const std::string& second);
// A private folder for targets that must go through files.
const std::string& scratch_dir();

inline std::string text_of(const std::uint8_t* data, std::size_t size)
{
    return std::string(reinterpret_cast<const char*>(data), size);
}

} // namespace Fuzz
} // namespace Tervalon

#define TERVALON_FUZZ_CHECK(cond, what, first, second)                                                              \
    do {                                                                                                             \
        if (!(cond))                                                                                                 \
            ::Tervalon::Fuzz::fail(what, first, second);                                                             \
    } while (false)

// Every target begins with this, so that initialise runs before the first input.
#define TERVALON_FUZZ_INIT                                                                                           \
    extern "C" int LLVMFuzzerInitialize(int*, char***)                                                               \
    {                                                                                                                \
        ::Tervalon::Fuzz::initialise();                                                                              \
        return 0;                                                                                                    \
    }
